#include "image/memory.hpp"

#include <algorithm>
#include <utility>

namespace kirvo {

namespace {

uint32_t allocations_until_failure = 0, allocations_asked_for = 0;
uint64_t largest_block = max_block_bytes;

bool told_to_fail() { return allocations_until_failure != 0 && --allocations_until_failure == 0; }

} // namespace

void fail_allocation(uint32_t n) { allocations_until_failure = n; }

void limit_allocation(uint64_t bytes) { largest_block = std::min(bytes, max_block_bytes); }

uint32_t count_allocations() { return std::exchange(allocations_asked_for, 0); }

HGLOBAL allocate_block(uint64_t bytes, Content content) {
    ++allocations_asked_for;
    if (bytes > largest_block || told_to_fail())
        return nullptr;
    compact_memory(bytes);
    if (content == Content::any)
        return allocate_unfilled(static_cast<SIZE_T>(bytes));
    return GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, static_cast<SIZE_T>(bytes));
}

} // namespace kirvo
