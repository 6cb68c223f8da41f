#include "effects/turn_rows.hpp"

#include <immintrin.h>

namespace kirvo::avx2 {

namespace {

__m128i load(const uint8_t* from) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
}
__m128i load_8(const uint8_t* from) {
    return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(from));
}
void store(uint8_t* to, __m128i bytes) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), bytes);
}
void store_8(uint8_t* to, __m128i bytes) {
    _mm_storel_epi64(reinterpret_cast<__m128i*>(to), bytes);
}

// A run of pixels in as few whole vectors as end on a pixel.
template<int bytes>
struct Run {
    static constexpr size_t size = 16; // bytes
    __m128i vector;

    void load_from(const uint8_t* from) { vector = load(from); }
    void store_reversed(uint8_t* to) const {
        alignas(16) static constexpr auto index = [] {
            struct {
                uint8_t of[16];
            } made{};
            for (int i = 0; i < 16; ++i)
                made.of[i] = static_cast<uint8_t>((16 / bytes - 1 - i / bytes) * bytes + i % bytes);
            return made;
        }();
        store(to, _mm_shuffle_epi8(vector, load(index.of)));
    }
};

template<>
struct Run<3> {
    static constexpr size_t size = 48;
    __m128i vector[3];

    void load_from(const uint8_t* from) {
        for (int i = 0; i < 3; ++i)
            vector[i] = load(from + 16 * i);
    }
    // Each result takes its bytes from the vectors that hold them; the others give 0 there.
    void store_reversed(uint8_t* to) const {
        alignas(16) static constexpr auto index = [] {
            struct {
                uint8_t of[3][3][16];
            } made{};
            for (int i = 0; i < 48; ++i)
                for (int v = 0; v < 3; ++v) {
                    const int from = (15 - i / 3) * 3 + i % 3;
                    made.of[i / 16][v][i % 16] =
                        static_cast<uint8_t>(from / 16 == v ? from % 16 : 0x80);
                }
            return made;
        }();
        const auto part = [&](int result, int v) {
            return _mm_shuffle_epi8(vector[v], load(index.of[result][v]));
        };
        store(to, _mm_or_si128(part(0, 1), part(0, 2)));
        store(to + 16, _mm_or_si128(_mm_or_si128(part(1, 0), part(1, 1)), part(1, 2)));
        store(to + 32, _mm_or_si128(part(2, 0), part(2, 1)));
    }
};

template<int bytes>
void exchange_reversed(uint8_t* left, uint8_t* right_end, size_t count) {
    constexpr size_t size = Run<bytes>::size;
    for (; count >= size / bytes; count -= size / bytes) {
        right_end -= size;
        Run<bytes> a, b;
        a.load_from(left);
        b.load_from(right_end);
        b.store_reversed(left);
        a.store_reversed(right_end);
        left += size;
    }
    turn_rows_scalar.exchange_reversed[bytes - 1](left, right_end, count);
}

constexpr size_t side = 8; // of a tile: one vector of words

// Eight pixels as words; the top bytes of 3-byte pixels may hold anything.
template<int bytes>
__m256i load_words(const uint8_t* from) {
    if constexpr (bytes == 1)
        return _mm256_cvtepu8_epi32(load_8(from));
    if constexpr (bytes == 2)
        return _mm256_cvtepu16_epi32(load(from));
    if constexpr (bytes == 4)
        return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from));
    const __m256i spread = _mm256_setr_epi8(0, 1, 2, -1, 3, 4, 5, -1, 6, 7, 8, -1, 9, 10, 11, -1, 4,
                                            5, 6, -1, 7, 8, 9, -1, 10, 11, 12, -1, 13, 14, 15, -1);
    return _mm256_shuffle_epi8(
        _mm256_inserti128_si256(_mm256_castsi128_si256(load(from)), load(from + 8), 1), spread);
}

template<int bytes>
void store_words(uint8_t* to, __m256i words) {
    if constexpr (bytes == 4)
        return _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), words);
    // The kept bytes of each half move to its start, then the halves together.
    const __m256i close_up = _mm256_broadcastsi128_si256(
        bytes == 1   ? _mm_setr_epi8(0, 4, 8, 12, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1)
        : bytes == 2 ? _mm_setr_epi8(0, 1, 4, 5, 8, 9, 12, 13, -1, -1, -1, -1, -1, -1, -1, -1)
                     : _mm_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1));
    const __m256i join = bytes == 1   ? _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7)
                         : bytes == 2 ? _mm256_setr_epi32(0, 1, 4, 5, 2, 3, 6, 7)
                                      : _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 3, 7);
    const __m256i pixels = _mm256_permutevar8x32_epi32(_mm256_shuffle_epi8(words, close_up), join);
    if constexpr (bytes == 1)
        return store_8(to, _mm256_castsi256_si128(pixels));
    store(to, _mm256_castsi256_si128(pixels));
    if constexpr (bytes == 3)
        store_8(to + 16, _mm256_extracti128_si256(pixels, 1));
}

void transpose_words(__m256i (&v)[side]) {
    __m256i t[side];
    for (size_t i = 0; i < side; i += 4) {
        const __m256i low01 = _mm256_unpacklo_epi32(v[i], v[i + 1]);
        const __m256i high01 = _mm256_unpackhi_epi32(v[i], v[i + 1]);
        const __m256i low23 = _mm256_unpacklo_epi32(v[i + 2], v[i + 3]);
        const __m256i high23 = _mm256_unpackhi_epi32(v[i + 2], v[i + 3]);
        t[i] = _mm256_unpacklo_epi64(low01, low23);
        t[i + 1] = _mm256_unpackhi_epi64(low01, low23);
        t[i + 2] = _mm256_unpacklo_epi64(high01, high23);
        t[i + 3] = _mm256_unpackhi_epi64(high01, high23);
    }
    for (size_t i = 0; i < 4; ++i) {
        v[i] = _mm256_permute2x128_si256(t[i], t[i + 4], 0x20);
        v[i + 4] = _mm256_permute2x128_si256(t[i], t[i + 4], 0x31);
    }
}

template<int bytes>
void transpose_tile(uint8_t* to, ptrdiff_t to_step, const uint8_t* from, ptrdiff_t from_step) {
    __m256i words[side];
    for (size_t k = 0; k < side; ++k, from += from_step)
        words[k] = load_words<bytes>(from);
    transpose_words(words);
    for (size_t x = 0; x < side; ++x, to += to_step)
        store_words<bytes>(to, words[x]);
}

template<int bytes>
void transpose(uint8_t* to, ptrdiff_t to_step, const uint8_t* from, ptrdiff_t from_step,
               size_t columns, size_t rows) {
    const auto rest = turn_rows_scalar.transpose[bytes - 1];
    const size_t whole_columns = columns & ~(side - 1), whole_rows = rows & ~(side - 1);
    const auto target = [&](size_t x, size_t k) {
        return to + static_cast<ptrdiff_t>(x) * to_step + k * bytes;
    };
    const auto source = [&](size_t x, size_t k) {
        return from + static_cast<ptrdiff_t>(k) * from_step + x * bytes;
    };
    for (size_t x = 0; x < whole_columns; x += side)
        for (size_t k = 0; k < whole_rows; k += side)
            transpose_tile<bytes>(target(x, k), to_step, source(x, k), from_step);
    rest(target(0, whole_rows), to_step, source(0, whole_rows), from_step, whole_columns,
         rows - whole_rows);
    rest(target(whole_columns, 0), to_step, source(whole_columns, 0), from_step,
         columns - whole_columns, rows);
}

} // namespace

void improve(TurnRows& rows) {
    rows = {
        {exchange_reversed<1>, exchange_reversed<2>, exchange_reversed<3>, exchange_reversed<4>},
        {transpose<1>, transpose<2>, transpose<3>, transpose<4>}};
}

} // namespace kirvo::avx2
