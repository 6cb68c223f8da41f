#include "effects/zoom_rows.hpp"

#include "simd/cpu.hpp"

#include <cstring>

namespace kirvo {

namespace {

template<size_t bytes>
void gather(uint8_t* to, const uint8_t* from, const uint32_t* offsets, size_t count) {
    for (size_t i = 0; i < count; ++i, to += bytes)
        std::memcpy(to, from + offsets[i], bytes);
}

// Moves four bytes for three: the fourth of a word is overwritten by the next pixel.
void gather_24(uint8_t* to, const uint8_t* from, const uint32_t* offsets, size_t count) {
    for (; count > 1; --count, ++offsets, to += 3) {
        uint32_t word;
        std::memcpy(&word, from + *offsets - 1, sizeof word);
        word >>= 8;
        std::memcpy(to, &word, sizeof word);
    }
    gather<3>(to, from, offsets, count);
}

void add_row(uint16_t* sums, const uint8_t* row, size_t bytes) {
    for (size_t i = 0; i < bytes; ++i)
        sums[i] = static_cast<uint16_t>(sums[i] + row[i]);
}

template<size_t columns>
void means(uint8_t* to, const uint8_t* from, ptrdiff_t row_step, size_t rows, size_t count,
           int shift) {
    for (size_t i = 0; i < count; ++i, to += 3, from += 3 * columns) {
        uint32_t sums[3] = {};
        const uint8_t* row = from;
        for (size_t k = 0; k < rows; ++k, row += row_step)
            for (size_t at = 0; at < 3 * columns; ++at)
                sums[at % 3] += row[at];
        for (int c = 0; c < 3; ++c)
            to[c] = static_cast<uint8_t>(sums[c] >> shift);
    }
}

} // namespace

const ZoomRows zoom_rows_scalar = {
    {gather<1>, gather<2>, gather_24, gather<4>}, add_row, means<2>, means<4>};

ZoomRows zoom_rows() {
    ZoomRows rows = zoom_rows_scalar;
    if (cpu_level() >= CpuLevel::sse2)
        sse2::improve(rows);
    if (cpu_level() >= CpuLevel::avx2)
        avx2::improve(rows);
    return rows;
}

} // namespace kirvo
