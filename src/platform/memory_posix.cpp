// Movable global memory away from Windows. Every block is zeroed. Large blocks come straight from
// the system, aligned so that it can back them with huge pages: zeroed on first touch, one page
// fault for 2 MB instead of 512. A few freed ones are kept for the next image of their size, since
// fresh pages cost several times what filling them costs; the system may take them back meanwhile.
#include "platform/handles_posix.hpp"
#include "platform/platform.hpp"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <sys/mman.h>
#include <utility>

namespace {

constexpr size_t huge_page = size_t{2} << 20;

struct Memory {
    void* address;
    size_t mapped; // 0 when it comes from the heap
    bool zero;
};

struct Block {
    Memory memory;
    size_t size;
    uint32_t locks;
};

kirvo::HandleTable<Block> blocks;

#if defined(__has_feature)
#if __has_feature(address_sanitizer) // clang's way of saying so
#define __SANITIZE_ADDRESS__ 1
#endif
#endif

// Sanitizers see overruns of heap blocks only, and take long to prepare huge ones. The memory of
// WebAssembly is one piece without pages: all of it is the heap.
#if defined(__wasm__)
constexpr size_t mapped_from = SIZE_MAX;
#elif defined(__SANITIZE_ADDRESS__)
constexpr size_t mapped_from = size_t{8} << 20;
#else
constexpr size_t mapped_from = huge_page;
#endif

Memory map_huge(size_t bytes) {
    const size_t wanted = (bytes + huge_page - 1) & ~(huge_page - 1);
    void* raw = mmap(nullptr, wanted + huge_page, PROT_READ | PROT_WRITE,
                     MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (raw == MAP_FAILED)
        return {nullptr, 0, true};
    const uintptr_t start = reinterpret_cast<uintptr_t>(raw);
    const uintptr_t aligned = (start + huge_page - 1) & ~uintptr_t{huge_page - 1};
    if (aligned != start)
        munmap(raw, aligned - start);
    const size_t tail = start + huge_page - aligned;
    if (tail != 0)
        munmap(reinterpret_cast<void*>(aligned + wanted), tail);
    void* address = reinterpret_cast<void*>(aligned);
    madvise(address, wanted, MADV_HUGEPAGE);
    return {address, wanted, true};
}

// Mapped memory that has been freed.
class Spares {
  public:
    // Memory of this size or not much more; none when there is no such.
    Memory take(size_t bytes) {
        const kirvo::SpinGuard guard(lock_);
        Memory* best = nullptr;
        for (Memory& spare : kept_) {
            if (spare.mapped >= bytes && spare.mapped / 2 <= bytes &&
                (best == nullptr || spare.mapped < best->mapped))
                best = &spare;
        }
        return best != nullptr ? std::exchange(*best, Memory{}) : Memory{};
    }

    void keep(Memory memory) {
        if (memory.mapped <= largest) {
            if (memory.mapped > held)
                madvise(memory.address, memory.mapped, MADV_FREE);
            memory.zero = false;
            const kirvo::SpinGuard guard(lock_);
            std::swap(memory, *place());
        }
        if (memory.mapped != 0)
            munmap(memory.address, memory.mapped);
    }

  private:
    // An empty place, else that of each in turn.
    Memory* place() {
        Memory* const empty = std::find_if(kept_, kept_ + count,
                                           [](const Memory& spare) { return spare.mapped == 0; });
        return empty != kept_ + count ? empty : &kept_[next_++ % count];
    }

    static constexpr size_t largest = size_t{128} << 20;
    // What is not worth a call of the system, which also takes away the pages' translations.
    static constexpr size_t held = size_t{8} << 20;
    static constexpr uint32_t count = 4;

    Memory kept_[count] = {};
    uint32_t next_ = 0;
    std::atomic_flag lock_ = ATOMIC_FLAG_INIT;
};

Spares spares;

bool comes_from_heap(size_t bytes) { return bytes < mapped_from || bytes >= SIZE_MAX / 2; }

Memory acquire(size_t bytes) {
    if (comes_from_heap(bytes))
        return {std::malloc(bytes == 0 ? 1 : bytes), 0, false};
    const Memory spare = spares.take(bytes);
    return spare.mapped != 0 ? spare : map_huge(bytes);
}

// Clearing much memory that may never be touched takes longer than mapping it.
Memory acquire_zeroed(size_t bytes) {
    if (comes_from_heap(bytes))
        return {std::calloc(1, bytes == 0 ? 1 : bytes), 0, true};
    constexpr size_t cleared_at_most = std::max(size_t{64} << 20, mapped_from);
    if (bytes > cleared_at_most && bytes < SIZE_MAX / 2)
        return map_huge(bytes);
    const Memory memory = acquire(bytes);
    if (memory.address != nullptr && !memory.zero)
        std::memset(memory.address, 0, bytes);
    return memory;
}

void release(const Memory& memory) {
    if (memory.mapped != 0)
        spares.keep(memory);
    else
        std::free(memory.address);
}

HGLOBAL add_block(const Memory& memory, size_t bytes) {
    if (memory.address == nullptr)
        return nullptr;
    HGLOBAL handle = blocks.add({memory, bytes, 0});
    if (handle == nullptr)
        release(memory);
    return handle;
}

} // namespace

HGLOBAL WINAPI GlobalAlloc(UINT flags, SIZE_T bytes) {
    if ((flags & GMEM_MOVEABLE) == 0)
        return nullptr;
    return add_block(acquire_zeroed(bytes), bytes);
}

kirvo::BlockCount kirvo::count_blocks() {
    BlockCount count = {};
    blocks.each([&](const Block& block) {
        ++count.blocks;
        count.locks += block.locks;
    });
    return count;
}

HGLOBAL kirvo::allocate_unfilled(SIZE_T bytes) {
    const Memory memory = acquire(bytes);
#if defined(__SANITIZE_ADDRESS__)
    // Something else each time, so that nothing can depend on it unseen.
    static uint8_t filling = 0x5A;
    if (memory.address != nullptr)
        std::memset(memory.address, filling += 0x3B, bytes);
#endif
    return add_block(memory, bytes);
}

void* kirvo::lock_block(HGLOBAL block, size_t& size) {
    void* address = nullptr;
    blocks.with(block, [&](Block& b) {
        ++b.locks;
        address = b.memory.address;
        size = b.size;
    });
    return address;
}

const void* kirvo::borrow_block(HGLOBAL block, size_t& size) {
    const Block* b = blocks.look_up(block);
    if (b == nullptr)
        return nullptr;
    size = b->size;
    return b->memory.address;
}

LPVOID WINAPI GlobalLock(HGLOBAL block) {
    size_t size;
    return kirvo::lock_block(block, size);
}

BOOL WINAPI GlobalUnlock(HGLOBAL block) {
    bool still_locked = false;
    blocks.with(block, [&](Block& b) {
        if (b.locks != 0)
            --b.locks;
        still_locked = b.locks != 0;
    });
    return still_locked;
}

HGLOBAL WINAPI GlobalFree(HGLOBAL block) {
    Block gone;
    if (block == nullptr)
        return nullptr;
    if (!blocks.remove(block, gone))
        return block;
    release(gone.memory);
    return nullptr;
}

SIZE_T WINAPI GlobalSize(HGLOBAL block) {
    size_t size = 0;
    blocks.with(block, [&](const Block& b) { size = b.size; });
    return size;
}

HANDLE LocalAlloc(UINT, SIZE_T bytes) { return std::calloc(1, bytes); }

HANDLE LocalFree(HANDLE memory) {
    std::free(memory);
    return nullptr;
}
