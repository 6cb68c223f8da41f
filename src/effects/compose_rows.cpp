#include "effects/compose_rows.hpp"

#include "simd/cpu.hpp"

#include <algorithm>

namespace kirvo {

namespace {

void add(uint8_t* to, const uint8_t* from, size_t count) {
    for (size_t i = 0; i < count; ++i)
        to[i] = static_cast<uint8_t>(std::min(to[i] + from[i], 255));
}

void average(uint8_t* to, const uint8_t* from, size_t count) {
    for (size_t i = 0; i < count; ++i)
        to[i] = static_cast<uint8_t>((to[i] + from[i]) >> 1);
}

void subtract(uint8_t* to, const uint8_t* from, size_t count) {
    for (size_t i = 0; i < count; ++i)
        to[i] = static_cast<uint8_t>(std::max(to[i] - from[i], 0));
}

void replace(uint8_t* to, const uint8_t* from, size_t pixels, const uint8_t* key) {
    for (size_t i = 0; i < pixels; ++i, to += 3, from += 3)
        if (!std::equal(key, key + 3, from))
            std::copy(from, from + 3, to);
}

} // namespace

const ComposeRows compose_rows_scalar = {add, average, subtract, replace};

const ComposeRows& compose_rows() {
    switch (cpu_level()) {
    case CpuLevel::scalar:
        return compose_rows_scalar;
    case CpuLevel::sse2:
        return sse2::compose_rows;
    default:
        return avx2::compose_rows;
    }
}

} // namespace kirvo
