// Pixels in another order: backwards, and rows turned into columns.
#pragma once

#include "simd/kernels/loops.hpp"

namespace kirvo {
namespace {

// Pixels gathered one by one, which no level does faster.
template<size_t bytes>
[[gnu::aligned(64)]] void gather(uint8_t* to, const uint8_t* from, const uint32_t* offsets,
                                 size_t pixels) {
    for (size_t i = 0; i < pixels; ++i, to += bytes)
        std::memcpy(to, from + offsets[i], bytes);
}

// Moves four bytes for three: the fourth of a word is overwritten by the next pixel. Aligned since
// the loop takes a quarter more where it lies across two lines of the cache.
[[gnu::aligned(64)]] void gather_24(uint8_t* to, const uint8_t* from, const uint32_t* offsets,
                                    size_t pixels) {
    for (; pixels > 1; --pixels, ++offsets, to += 3) {
        uint32_t word;
        std::memcpy(&word, from + *offsets - 1, sizeof word);
        word >>= 8;
        std::memcpy(to, &word, sizeof word);
    }
    if (pixels != 0)
        std::memcpy(to, from + *offsets, 3);
}

template<typename V>
struct TurnKernels {
    using Register = typename V::Register;

    template<int bytes>
    static void exchange_reversed(uint8_t* left, uint8_t* right_end, size_t pixels) {
        constexpr size_t step = bytes == 3 ? V::size : V::size / bytes;
        for (; pixels >= step; pixels -= step) {
            right_end -= step * bytes;
            exchange<bytes>(left, right_end);
            left += step * bytes;
        }
        scalar::kernels.exchange_reversed[bytes - 1](left, right_end, pixels);
    }

    template<int bytes>
    static void transpose(uint8_t* to, ptrdiff_t to_step, const uint8_t* from, ptrdiff_t from_step,
                          size_t columns, size_t rows) {
        const auto rest = scalar::kernels.transpose[bytes - 1];
        const size_t whole_columns = columns & ~(side - 1), whole_rows = rows & ~(side - 1);
        const auto target = [&](size_t x, size_t k) {
            return to + static_cast<ptrdiff_t>(x) * to_step + k * bytes;
        };
        const auto source = [&](size_t x, size_t k) {
            return from + static_cast<ptrdiff_t>(k) * from_step + x * bytes;
        };
        for (size_t x = 0; x < whole_columns; x += side)
            for (size_t k = 0; k < whole_rows; k += side)
                transpose_square<bytes>(target(x, k), to_step, source(x, k), from_step);
        rest(target(0, whole_rows), to_step, source(0, whole_rows), from_step, whole_columns,
             rows - whole_rows);
        rest(target(whole_columns, 0), to_step, source(whole_columns, 0), from_step,
             columns - whole_columns, rows);
    }

  private:
    static constexpr size_t side = V::words; // of a square: one vector of words

    template<int bytes>
    static void exchange(uint8_t* left, uint8_t* right) {
        if constexpr (bytes == 3) {
            const auto a = V::load_pixels(left), b = V::load_pixels(right);
            V::store_reversed(left, b);
            V::store_reversed(right, a);
        } else {
            const Register a = V::load(left), b = V::load(right);
            V::store(left, V::template reversed<bytes>(b));
            V::store(right, V::template reversed<bytes>(a));
        }
    }
    // Four rows at a time, then four columns: 32-bit code, with eight vectors, keeps the rest in memory.
    template<int bytes>
    static void transpose_square(uint8_t* to, ptrdiff_t to_step, const uint8_t* from,
                                 ptrdiff_t from_step) {
        Register words[side];
#pragma GCC unroll 4
        for (size_t k = 0; k < side; k += 4) {
            Register r[4];
#pragma GCC unroll 4
            for (size_t i = 0; i < 4; ++i, from += from_step)
                r[i] = V::template load_row<bytes>(from);
            const Register low01 = V::zip_low32(r[0], r[1]), low23 = V::zip_low32(r[2], r[3]);
            const Register high01 = V::zip_high32(r[0], r[1]), high23 = V::zip_high32(r[2], r[3]);
            words[k] = V::zip_low64(low01, low23);
            words[k + 1] = V::zip_high64(low01, low23);
            words[k + 2] = V::zip_low64(high01, high23);
            words[k + 3] = V::zip_high64(high01, high23);
        }
#pragma GCC unroll 4
        for (size_t x = 0; x < 4; ++x)
            V::template transpose_parts<4>(words + x);
#pragma GCC unroll 16
        for (size_t x = 0; x < side; ++x, to += to_step)
            V::template store_row<bytes>(to, words[x]);
    }
};

} // namespace
} // namespace kirvo
