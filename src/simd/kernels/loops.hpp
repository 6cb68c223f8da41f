// How kernels walk their rows.
#pragma once

#include "simd/kernels.hpp"

#include <cstring>

namespace kirvo {
namespace {

// Each helper calls its block in one place only, so that the compiler inlines it and takes what stays
// the same out of the loop.

// Calls block(to, from) for every `step` bytes; `to` may be `from`. The rest goes through a buffer.
template<size_t step, typename F>
[[gnu::always_inline]] inline void each_block(uint8_t* to, const uint8_t* from, size_t bytes,
                                              const F& block) {
    uint8_t rest[step];
    for (; bytes != 0; to += step, from += step) {
        const bool whole = bytes >= step;
        if (!whole)
            std::memcpy(rest, from, bytes);
        block(whole ? to : rest, whole ? from : rest);
        if (!whole) {
            std::memcpy(to, rest, bytes);
            break;
        }
        bytes -= step;
    }
}

// Calls block(i) for every step of a count; the last step is moved back to end where the count ends,
// so that some elements are made twice. False where the count is less than a step: nothing is done.
template<size_t step, typename F>
[[gnu::always_inline]] inline bool each_step(size_t count, const F& block) {
    if (count < step)
        return false;
    for (size_t i = 0; i < count; i += step)
        block(i + step <= count ? i : count - step);
    return true;
}

} // namespace
} // namespace kirvo
