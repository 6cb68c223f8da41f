#include "core/stream.hpp"

#include <algorithm>
#include <cstring>
#include <emmintrin.h>

namespace kirvo::sse2 {

namespace {

constexpr size_t line = 64;

__m128i load(const uint8_t* from) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
}

void stream(uint8_t* to, __m128i bytes) {
    _mm_stream_si128(reinterpret_cast<__m128i*>(to), bytes);
}

} // namespace

// Lines of the cache that are written in part go through it.
void copy_past_caches(uint8_t* to, const uint8_t* from, size_t count) {
    const size_t head = std::min(count, -reinterpret_cast<uintptr_t>(to) % line);
    std::memcpy(to, from, head);
    size_t at = head;
    for (; at + line <= count; at += line) {
        const __m128i a = load(from + at), b = load(from + at + 16), c = load(from + at + 32),
                      d = load(from + at + 48);
        stream(to + at, a);
        stream(to + at + 16, b);
        stream(to + at + 32, c);
        stream(to + at + 48, d);
    }
    std::memcpy(to + at, from + at, count - at);
    _mm_sfence();
}

} // namespace kirvo::sse2
