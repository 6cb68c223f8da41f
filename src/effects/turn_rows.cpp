#include "effects/turn_rows.hpp"

#include "simd/cpu.hpp"

#include <algorithm>
#include <cstring>

namespace kirvo {

namespace {

template<size_t bytes>
void exchange_reversed(uint8_t* left, uint8_t* right_end, size_t count) {
    for (; count != 0; --count, left += bytes) {
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

const TurnRows turn_rows_scalar = {
    {exchange_reversed<1>, exchange_reversed<2>, exchange_reversed<3>, exchange_reversed<4>},
    {transpose<1>, transpose<2>, transpose<3>, transpose<4>}};

TurnRows turn_rows() {
    TurnRows rows = turn_rows_scalar;
    if (cpu_level() >= CpuLevel::avx2)
        avx2::improve(rows);
    if (cpu_level() == CpuLevel::avx512 && cpu_has_vbmi())
        avx512::improve(rows);
    return rows;
}

} // namespace kirvo
