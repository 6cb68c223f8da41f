#include "core/memory.hpp"

namespace kirvo {

namespace {

uint32_t allocations_until_failure = 0;

bool told_to_fail() {
    return allocations_until_failure != 0 && --allocations_until_failure == 0;
}

} // namespace

void fail_allocation(uint32_t n) { allocations_until_failure = n; }

HGLOBAL allocate_block(uint64_t bytes, Content content) {
    if (bytes > max_block_bytes || told_to_fail())
        return nullptr;
    compact_memory(bytes);
    if (content == Content::any)
        return allocate_unfilled(static_cast<SIZE_T>(bytes));
    return GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, static_cast<SIZE_T>(bytes));
}

} // namespace kirvo
