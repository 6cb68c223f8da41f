#include "jpeg/decode_rows.hpp"

#include "simd/cpu.hpp"
#include "jpeg/decode_block.hpp"

#include <algorithm>

namespace kirvo {

namespace {

// cos(k * pi / 16) * 2^15; for k = 0, the mean, cos(pi / 4).
constexpr int32_t cosines[8] = {23169, 32137, 30272, 27244, 23169, 18204, 12539, 6392};

// The factor of input u in output x.
constexpr int32_t factor(int32_t x, int32_t u) {
    if (u == 0)
        return cosines[0];
    const int32_t angle = (2 * x + 1) * u % 32; // in steps of pi / 16
    const int32_t folded = angle <= 16 ? angle : 32 - angle;
    return folded <= 8 ? cosines[folded % 8] : -cosines[16 - folded];
}

struct Factors {
    int32_t of[8][8];
};

constexpr Factors factors = [] {
    Factors table = {};
    for (int32_t x = 0; x < 8; ++x) {
        for (int32_t u = 0; u < 8; ++u)
            table.of[x][u] = factor(x, u);
    }
    return table;
}();

// One output of the one-dimensional transform; the sum wraps.
int32_t weighted_sum(const int16_t* input, const int32_t* weights, int32_t scale) {
    uint32_t sum = 0;
    for (int32_t u = 0; u < 8; ++u)
        sum += static_cast<uint32_t>(input[u]) * static_cast<uint32_t>(weights[u] * scale);
    return static_cast<int32_t>(sum);
}

void inverse_dct(const int16_t* block, int32_t, int16_t* samples, ptrdiff_t stride) {
    int16_t columns[8][8]; // after the pass over the rows
    for (size_t row = 0; row < 8; ++row) {
        int16_t input[8];
        for (size_t u = 0; u < 8; ++u)
            input[u] = block[block_place_of(row, u)];
        for (size_t x = 0; x < 8; ++x)
            columns[x][row] = static_cast<int16_t>(weighted_sum(input, factors.of[x], 8) >> 16);
    }
    for (int32_t y = 0; y < 8; ++y) {
        for (int32_t x = 0; x < 8; ++x) {
            const auto sum = static_cast<uint32_t>(weighted_sum(columns[x], factors.of[y], 1));
            samples[y * stride + x] =
                static_cast<int16_t>(static_cast<int32_t>(sum + (1u << 18)) >> 19);
        }
    }
}

// Luma times 65536 changes nothing below the point, so what the chroma adds can be rounded alone.
void chroma_terms(const int16_t* cb, const int16_t* cr, ChromaTerms terms, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        terms.blue[i] = static_cast<int16_t>(128 + (115999 * cb[i] >> 16));
        terms.green[i] = static_cast<int16_t>(128 + ((-22525 * cb[i] - 46812 * cr[i]) >> 16));
        terms.red[i] = static_cast<int16_t>(128 + (91881 * cr[i] >> 16));
    }
}

uint8_t clamp8(int32_t value) {
    return static_cast<uint8_t>(std::clamp(value, 0, 255));
}

void grey(const int16_t* y, uint8_t* bgr, size_t count) {
    for (size_t i = 0; i < count; ++i)
        bgr[3 * i] = bgr[3 * i + 1] = bgr[3 * i + 2] = clamp8(y[i] + 128);
}

template<size_t pixels_per_term>
void colour(const int16_t* y, ChromaTerms terms, uint8_t* bgr, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        const size_t term = i / pixels_per_term;
        bgr[3 * i] = clamp8(y[i] + terms.blue[term]);
        bgr[3 * i + 1] = clamp8(y[i] + terms.green[term]);
        bgr[3 * i + 2] = clamp8(y[i] + terms.red[term]);
    }
}

} // namespace

const DecodeRows decode_rows_scalar = {inverse_dct, chroma_terms, grey, colour<1>, colour<2>};

const DecodeRows& decode_rows() {
    switch (cpu_level()) {
    case CpuLevel::scalar:
        return decode_rows_scalar;
    case CpuLevel::sse2:
        return sse2::decode_rows;
    default:
        return avx2::decode_rows;
    }
}

} // namespace kirvo
