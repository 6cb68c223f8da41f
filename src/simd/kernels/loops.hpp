// How kernels walk their rows.
#pragma once

#include "simd/kernels.hpp"

#include <cstring>

namespace kirvo {
namespace {

template<auto kernel, typename... Arguments>
[[gnu::noinline, gnu::flatten]] void alone(uint8_t* to, const uint8_t* from, size_t count,
                                           Arguments... arguments) {
    kernel(to, from, count, arguments...);
}

// A kernel for any count from one for whole steps, whose loop thus has nothing else to do. The rest
// goes through a buffer. Elements are of `size` bytes; `to` may be `from`.
template<auto whole_steps, size_t size, size_t step, typename... Arguments>
void any_count(uint8_t* to, const uint8_t* from, size_t count, Arguments... arguments) {
    const size_t rest = count % step, whole = count - rest;
    alone<whole_steps, Arguments...>(to, from, whole, arguments...);
    if (rest == 0)
        return;
    uint8_t last[size * step] = {};
    std::memcpy(last, from + size * whole, size * rest);
    alone<whole_steps, Arguments...>(last, last, step, arguments...);
    std::memcpy(to + size * whole, last, size * rest);
}

// Calls block(to, from) for every `step` of whole steps of elements of `size` bytes.
template<size_t size, size_t step, typename F>
[[gnu::always_inline]] inline void each_block(uint8_t* to, const uint8_t* from, size_t count,
                                              const F& block) {
    for (; count != 0; count -= step, to += size * step, from += size * step)
        block(to, from);
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
