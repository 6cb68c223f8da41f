#include "support/memory_watch.hpp"

#include "support/import_patch.hpp"

#include <cstdlib>
#include <cstring>
#include <kirvo.h>
#include <map>
#include <memory>
#include <vector>

#ifndef _WIN32
#include <sys/mman.h>
#endif

namespace kirvo_test {

namespace {

constexpr size_t page = 4096;
constexpr uint8_t untouched = 0xC5;

// Memory that ends at a page without access. What is freed is used again for its size.
class GuardedPages {
  public:
    uint8_t* allocate(size_t bytes) {
        const size_t pages = (bytes + page - 1) / page + 1;
        std::vector<uint8_t*>& spare = spares_[pages];
        if (spare.empty())
            spare.push_back(map(pages));
        uint8_t* first = spare.back();
        spare.pop_back();
        std::memset(first, untouched, (pages - 1) * page);
        uint8_t* block = first + (pages - 1) * page - bytes;
        std::memset(block, 0, bytes);
        blocks_[block] = {first, pages};
        return block;
    }

    // False when it is not from here.
    bool release(void* memory) {
        const auto found = blocks_.find(static_cast<uint8_t*>(memory));
        if (found == blocks_.end())
            return false;
        const auto [first, pages] = found->second;
        for (const uint8_t* at = first; at != found->first; ++at) {
            if (*at != untouched) {
                ++damaged;
                break;
            }
        }
        spares_[pages].push_back(first);
        blocks_.erase(found);
        return true;
    }

    uint64_t damaged = 0;

  private:
    static uint8_t* map(size_t pages) {
#ifdef _WIN32
        auto* memory =
            static_cast<uint8_t*>(VirtualAlloc(nullptr, pages * page, MEM_RESERVE, PAGE_NOACCESS));
        VirtualAlloc(memory, (pages - 1) * page, MEM_COMMIT, PAGE_READWRITE);
#else
        auto* memory = static_cast<uint8_t*>(mmap(nullptr, pages * page, PROT_READ | PROT_WRITE,
                                                  MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        mprotect(memory + (pages - 1) * page, page, PROT_NONE);
#endif
        return memory;
    }

    std::map<uint8_t*, std::pair<uint8_t*, size_t>> blocks_;
    std::map<size_t, std::vector<uint8_t*>> spares_;
};

struct {
    bool guard;
    uint32_t until_failure, allocations;
    uint64_t refused;
    int64_t blocks;
    GuardedPages pages;
    std::vector<std::unique_ptr<ImportPatch>> patches;
} watch;

constexpr size_t guarded_at_most = size_t{1} << 20;

bool refuse() {
    ++watch.allocations;
    if (watch.until_failure == 0 || --watch.until_failure != 0)
        return false;
    ++watch.refused;
    return true;
}

template<typename Block>
Block counted(Block block) {
    watch.blocks += block != nullptr;
    return block;
}

template<typename Function>
void replace(const char* module, const char* name, Function function) {
    watch.patches.push_back(
        std::make_unique<ImportPatch>(module, name, reinterpret_cast<void*>(function)));
}

#ifdef _WIN32

// The functions themselves; the program's own imports are replaced too.
#define SYSTEM_FUNCTION(library, name)                                                             \
    const auto system_##name = reinterpret_cast<decltype(&name)>(                                  \
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA(library), #name)))

SYSTEM_FUNCTION("kernel32", GlobalAlloc);
SYSTEM_FUNCTION("kernel32", GlobalLock);
SYSTEM_FUNCTION("kernel32", GlobalUnlock);
SYSTEM_FUNCTION("kernel32", GlobalSize);
SYSTEM_FUNCTION("kernel32", GlobalFree);
SYSTEM_FUNCTION("kernel32", LocalAlloc);
SYSTEM_FUNCTION("kernel32", LocalFree);
SYSTEM_FUNCTION("gdi32", CreatePalette);
SYSTEM_FUNCTION("gdi32", DeleteObject);

// Guarded blocks of global memory. Their handles are odd, which those of the system never are.
struct GuardedBlock {
    uint8_t* bytes; // null when it has none
    size_t size;
    uint32_t locks;
};

std::map<HGLOBAL, GuardedBlock> guarded;

GuardedBlock* find(HGLOBAL handle) {
    const auto found = guarded.find(handle);
    return found != guarded.end() ? &found->second : nullptr;
}

HGLOBAL WINAPI global_alloc(UINT flags, SIZE_T bytes) {
    static uintptr_t made = 0;
    if (refuse())
        return nullptr;
    if (!watch.guard || bytes > guarded_at_most)
        return counted(system_GlobalAlloc(flags, bytes));
    const auto handle = reinterpret_cast<HGLOBAL>(0x10003 + (made++ << 3));
    guarded[handle] = {bytes != 0 ? watch.pages.allocate(bytes) : nullptr, bytes, 0};
    return counted(handle);
}

LPVOID WINAPI global_lock(HGLOBAL handle) {
    GuardedBlock* block = find(handle);
    if (block == nullptr)
        return system_GlobalLock(handle);
    block->locks += block->bytes != nullptr;
    return block->bytes;
}

BOOL WINAPI global_unlock(HGLOBAL handle) {
    GuardedBlock* block = find(handle);
    if (block == nullptr)
        return system_GlobalUnlock(handle);
    return block->locks != 0 && --block->locks != 0;
}

SIZE_T WINAPI global_size(HGLOBAL handle) {
    const GuardedBlock* block = find(handle);
    return block != nullptr ? block->size : system_GlobalSize(handle);
}

HGLOBAL WINAPI global_free(HGLOBAL handle) {
    GuardedBlock* block = find(handle);
    if (block == nullptr) {
        const HGLOBAL left = system_GlobalFree(handle);
        watch.blocks -= handle != nullptr && left == nullptr;
        return left;
    }
    if (block->bytes != nullptr)
        watch.pages.release(block->bytes);
    guarded.erase(handle);
    --watch.blocks;
    return nullptr;
}

HLOCAL WINAPI local_alloc(UINT flags, SIZE_T bytes) {
    return refuse() ? nullptr : counted(system_LocalAlloc(flags, bytes));
}

HLOCAL WINAPI local_free(HLOCAL block) {
    watch.blocks -= block != nullptr;
    return system_LocalFree(block);
}

HPALETTE WINAPI create_palette(const LOGPALETTE* palette) {
    return refuse() ? nullptr : counted(system_CreatePalette(palette));
}

BOOL WINAPI delete_object(HGDIOBJ object) {
    watch.blocks -= object != nullptr;
    return system_DeleteObject(object);
}

void replace_all() {
    for (const char* module : {static_cast<const char*>(nullptr), "Kirvo.dll"}) {
        replace(module, "GlobalAlloc", global_alloc);
        replace(module, "GlobalLock", global_lock);
        replace(module, "GlobalUnlock", global_unlock);
        replace(module, "GlobalSize", global_size);
        replace(module, "GlobalFree", global_free);
        replace(module, "LocalAlloc", local_alloc);
        replace(module, "LocalFree", local_free);
        replace(module, "CreatePalette", create_palette);
        replace(module, "DeleteObject", delete_object);
    }
}

#else

void* watched_calloc(size_t count, size_t size) {
    if (refuse())
        return nullptr;
    const size_t bytes = count * size;
    return counted(watch.guard && bytes <= guarded_at_most ? watch.pages.allocate(bytes)
                                                           : std::calloc(count, size));
}

void* watched_malloc(size_t bytes) { return refuse() ? nullptr : counted(std::malloc(bytes)); }

void watched_free(void* memory) {
    watch.blocks -= memory != nullptr;
    if (!watch.pages.release(memory))
        std::free(memory);
}

// Large blocks, which the library may keep for later when they are freed: not counted.
void* watched_mmap(void* at, size_t bytes, int access, int flags, int file, off_t offset) {
    return refuse() ? MAP_FAILED : mmap(at, bytes, access, flags, file, offset);
}

void replace_all() {
    replace("libkirvo", "calloc", watched_calloc);
    replace("libkirvo", "malloc", watched_malloc);
    replace("libkirvo", "free", watched_free);
    replace("libkirvo", "mmap", watched_mmap);
}

// The library's tables of handles grow without ever shrinking: they are made large beforehand.
void grow_tables() {
    std::vector<HGLOBAL> blocks(2000);
    for (HGLOBAL& block : blocks)
        block = GlobalAlloc(GHND, 1);
    for (HGLOBAL block : blocks)
        GlobalFree(block);
    DeleteObject(KirvoCreatePalette());
}

#endif

} // namespace

MemoryWatch::MemoryWatch() {
#ifndef _WIN32
    grow_tables();
#endif
    watch.guard = false;
    watch.until_failure = watch.allocations = 0;
    watch.refused = watch.pages.damaged = 0;
    watch.blocks = 0;
    replace_all();
    if (!watch.patches.back()->in_place() && !watch.patches.front()->in_place())
        std::abort(); // not the shared library
}

MemoryWatch::~MemoryWatch() { watch.patches.clear(); }

void MemoryWatch::guard([[maybe_unused]] bool on) {
#ifndef __SANITIZE_ADDRESS__
    watch.guard = on;
#endif
}

void MemoryWatch::fail(uint32_t n) {
    watch.until_failure = n;
    watch.allocations = 0;
}

uint32_t MemoryWatch::allocations() const { return watch.allocations; }
uint64_t MemoryWatch::refused() const { return watch.refused; }
int64_t MemoryWatch::blocks() const { return watch.blocks; }
uint64_t MemoryWatch::damaged() const { return watch.pages.damaged; }

} // namespace kirvo_test
