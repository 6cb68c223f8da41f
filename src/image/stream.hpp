// Bytes on their way through the caches.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kirvo {

using CopyBytes = void (*)(uint8_t* to, const uint8_t* from, size_t count);

// Like memmove.
void move_bytes(uint8_t* to, const uint8_t* from, size_t count);

// What copies runs of so many bytes best between blocks that do not overlap: a result that most
// caches cannot hold goes past them, which takes two thirds of the time.
CopyBytes copy_for(size_t run_bytes, uint64_t runs);

// Asks for bytes ahead of their use: the processor does not foresee steps from row to row.
void prefetch(const uint8_t* from, size_t bytes);

} // namespace kirvo
