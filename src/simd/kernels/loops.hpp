// How kernels walk their rows.
#pragma once

#include "simd/kernels.hpp"

#include <cstring>

namespace kirvo {
namespace {

// Calls block(to, from) for every `step` bytes; `to` may be `from`. The rest goes through a buffer.
template<size_t step, typename F>
[[gnu::always_inline]] inline void each_block(uint8_t* to, const uint8_t* from, size_t bytes,
                                              const F& block) {
    for (; bytes >= step; bytes -= step, to += step, from += step)
        block(to, from);
    if (bytes != 0) {
        uint8_t rest[step] = {};
        std::memcpy(rest, from, bytes);
        block(rest, rest);
        std::memcpy(to, rest, bytes);
    }
}

// Calls block(i) for every step of a count; the last step is moved back to end where the count ends,
// so that some elements are made twice. False where the count is less than a step: nothing is done.
template<size_t step, typename F>
[[gnu::always_inline]] inline bool each_step(size_t count, const F& block) {
    if (count < step)
        return false;
    size_t i = 0;
    for (; i + step <= count; i += step)
        block(i);
    if (i != count)
        block(count - step);
    return true;
}

} // namespace
} // namespace kirvo
