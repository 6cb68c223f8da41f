// The definition of the kernels that look at neighbours or several rows, or move pixels.
#pragma once

#include "simd/kernels.hpp"

#include <algorithm>
#include <cstring>

namespace kirvo::scalar {
namespace {

uint8_t clamped(int64_t value) { return static_cast<uint8_t>(std::clamp<int64_t>(value, 0, 255)); }

void blur(uint8_t* to, ThreeRows rows, size_t bytes) {
    for (size_t i = 0; i < bytes; ++i) {
        const uint8_t *b = rows[0] + i, *c = rows[1] + i, *a = rows[2] + i;
        const int32_t corners = b[-3] + b[3] + a[-3] + a[3], edges = b[0] + a[0] + c[-3] + c[3];
        to[i] = static_cast<uint8_t>((11 * corners + 30 * edges + 81 * c[0]) >> 8);
    }
}

void convolve(uint8_t* to, ThreeRows rows, size_t bytes, const Convolution& by) {
    for (size_t i = 0; i < bytes; ++i) {
        int32_t sum = 0;
        for (int k = 0; k < 9; ++k)
            sum += by.weight[k] * (rows[k / 3] + i)[3 * (k % 3) - 3];
        const auto value = static_cast<uint64_t>(std::max(sum, 0));
        to[i] =
            clamped(static_cast<int64_t>(by.divides ? (value * by.multiplier) >> by.shift : value));
    }
}

void laplacian(int16_t* to, ThreeRows rows, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        const uint8_t* c = rows[1] + i;
        to[i] = static_cast<int16_t>(4 * c[0] - (rows[0][i] + c[-1] + c[1] + rows[2][i]));
    }
}

void gradient(int16_t* to, ThreeRows rows, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        const uint8_t *b = rows[0] + i, *c = rows[1] + i, *a = rows[2] + i;
        to[i] = static_cast<int16_t>(c[1] + a[0] - b[0] - c[-1] + 2 * (a[1] - b[-1]));
    }
}

void correction(uint8_t* plus, uint8_t* minus, const int16_t* laplacian, size_t count,
                int divisor) {
    for (size_t i = 0; i < count; ++i) {
        const int change = laplacian[i] / divisor;
        plus[i] = clamped(change);
        minus[i] = clamped(-change);
    }
}

void dark_edges(uint8_t* to, const int16_t* v, size_t count, int16_t low, int16_t high) {
    for (size_t i = 0; i < count; ++i)
        to[i] = static_cast<uint8_t>(255 - std::abs(std::min(std::max(v[i], low), high)));
}

void relief(uint8_t* to, const int16_t* v, size_t count) {
    for (size_t i = 0; i < count; ++i)
        to[i] = static_cast<uint8_t>(std::clamp<int>(v[i], -127, 127) + 128);
}

void between(uint8_t* to, const int16_t* v, size_t count, int16_t low, int16_t high) {
    for (size_t i = 0; i < count; ++i)
        to[i] = v[i] >= low && v[i] <= high ? 255 : 0;
}

enum Extreme { highest, lowest };
template<Extreme which, typename T>
T of(T a, T b) {
    return which == highest ? std::max(a, b) : std::min(a, b);
}

template<typename T, Extreme which>
void join(T* to, const T* runs, size_t count, size_t step, size_t run, size_t side) {
    for (size_t i = 0; i < count; ++i) {
        to[i] = runs[i + step * (side - run)];
        for (size_t k = 0; k < side - run; k += run)
            to[i] = of<which>(to[i], runs[i + step * k]);
    }
}

template<typename T, Extreme which, size_t windows>
void pick_rows(T* const* to, const T* const* rows, size_t n, size_t count) {
    for (size_t k = 0; k <= windows && to[k] != nullptr; ++k) {
        const size_t first = k < windows ? k : n - 1, end = k < windows ? k + n : n + windows - 1;
        std::copy_n(rows[first], count, to[k]);
        for (size_t row = first + 1; row < end; ++row)
            for (size_t i = 0; i < count; ++i)
                to[k][i] = of<which>(to[k][i], rows[row][i]);
    }
}

template<typename Sum>
void add_to_sums(Sum* sums, const uint8_t* row, size_t count) {
    for (size_t i = 0; i < count; ++i)
        sums[i] = static_cast<Sum>(sums[i] + row[i]);
}

template<size_t columns, size_t bytes>
void means(uint8_t* to, const uint8_t* from, ptrdiff_t row_step, size_t rows, size_t count,
           int shift) {
    for (size_t i = 0; i < count; ++i, to += bytes, from += bytes * columns) {
        uint32_t sums[bytes] = {};
        const uint8_t* row = from;
        for (size_t k = 0; k < rows; ++k, row += row_step)
            for (size_t at = 0; at < bytes * columns; ++at)
                sums[at % bytes] += row[at];
        for (size_t c = 0; c < bytes; ++c)
            to[c] = static_cast<uint8_t>(sums[c] >> shift);
    }
}

template<size_t bytes>
void exchange_reversed(uint8_t* left, uint8_t* right_end, size_t pixels) {
    for (; pixels != 0; --pixels, left += bytes) {
        right_end -= bytes;
        std::swap_ranges(left, left + bytes, right_end);
    }
}

template<size_t bytes>
void transpose(uint8_t* to, ptrdiff_t to_step, const uint8_t* from, ptrdiff_t from_step,
               size_t columns, size_t rows) {
    for (size_t x = 0; x < columns; ++x, to += to_step, from += bytes) {
        const uint8_t* pixel = from;
        for (size_t k = 0; k < rows; ++k, pixel += from_step)
            std::memcpy(to + k * bytes, pixel, bytes);
    }
}

} // namespace
} // namespace kirvo::scalar
