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

// Calls block(i) for every step of a count, the second at `next`; the last step is moved back to end
// where the count ends, so that some elements are made twice. False where the count is less than a
// step: nothing is done.
template<size_t step, typename F>
[[gnu::always_inline]] inline bool each_step(size_t count, const F& block, size_t next = step) {
    if (count < step)
        return false;
    const size_t last = count - step;
    for (size_t i = 0, end = last;; i = last, end = count) {
        do {
            block(i);
            i += next;
            next = step;
        } while (i < end);
        if (end == count)
            return true;
    }
}

constexpr size_t line_bytes = 64; // of the cache

// Elements of 1 to 4 bytes from an address to the next line of the cache, or 0 where none begins one.
template<size_t size>
[[gnu::noinline]] size_t elements_to_line(const void* to) {
    const size_t bytes = -reinterpret_cast<uintptr_t>(to) % line_bytes;
    if constexpr (size == 3)
        return bytes * 43 % line_bytes; // 3 * 43 = 2 * 64 + 1
    return bytes % size == 0 ? bytes / size : 0;
}

// As each_step, with all steps but the first and the last written to whole lines of the cache, or to
// whole vectors: one as long as a line would otherwise be written to two of them.
template<size_t step, size_t size, typename F>
[[gnu::always_inline]] inline bool each_aligned_step(const void* to, size_t count, const F& block) {
    const size_t first = elements_to_line<size>(to) % step;
    return each_step<step>(count, block, first != 0 ? first : step);
}

} // namespace
} // namespace kirvo
