// Walks rows of 24-bit pixels a vector's worth at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace kirvo {
namespace {

// Calls block(to, from) for every size bytes. The rest goes through a buffer of as many.
template<size_t size, typename F>
void each_block(uint8_t* to, const uint8_t* from, size_t bytes, const F& block) {
    for (; bytes >= size; bytes -= size, to += size, from += size)
        block(to, from);
    if (bytes != 0) {
        uint8_t rest[size] = {};
        std::memcpy(rest, from, bytes);
        block(rest, rest);
        std::memcpy(to, rest, bytes);
    }
}

} // namespace
} // namespace kirvo
