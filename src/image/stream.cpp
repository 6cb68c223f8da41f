#include "image/stream.hpp"

#include "simd/kernels.hpp"

#include <cstring>

namespace kirvo {

void move_bytes(uint8_t* to, const uint8_t* from, size_t count) { std::memmove(to, from, count); }

CopyBytes copy_for(size_t run_bytes, uint64_t runs) {
    constexpr uint64_t beyond_caches = 16 << 20;
    constexpr size_t worth_while = 1024;
    const bool past_caches = run_bytes >= worth_while && run_bytes * runs >= beyond_caches;
    return past_caches ? kernels().copy_past_caches : move_bytes;
}

void prefetch(const uint8_t* from, size_t bytes) {
    constexpr size_t line = 64;
    for (size_t at = 0; at < bytes; at += line)
        __builtin_prefetch(from + at);
}

} // namespace kirvo
