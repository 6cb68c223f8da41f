#include "kernels/guarded_pages.hpp"

#include <cstdlib>

#ifdef _WIN32
#include <windows.h>
#else
#include <sys/mman.h>
#endif

namespace kirvo_test {

namespace {

constexpr size_t page = 4096;

#ifdef _WIN32
void* take(size_t bytes) {
    return VirtualAlloc(nullptr, bytes, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
}
void give_back(void* memory, size_t) { VirtualFree(memory, 0, MEM_RELEASE); }
void forbid(void* place) {
    DWORD before;
    if (!VirtualProtect(place, page, PAGE_NOACCESS, &before))
        std::abort();
}
#else
void* take(size_t bytes) {
    void* memory = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return memory == MAP_FAILED ? nullptr : memory;
}
void give_back(void* memory, size_t bytes) { munmap(memory, bytes); }
void forbid(void* place) {
    if (mprotect(place, page, PROT_NONE) != 0)
        std::abort();
}
#endif

} // namespace

GuardedPages::GuardedPages(size_t bytes) {
    const size_t usable = (bytes + page - 1) / page * page;
    auto* memory = static_cast<uint8_t*>(take(usable + 2 * page));
    if (memory == nullptr)
        std::abort();
    begin_ = memory + page;
    end_ = begin_ + usable;
    forbid(memory);
    forbid(end_);
}

GuardedPages::~GuardedPages() {
    give_back(begin_ - page, static_cast<size_t>(end_ - begin_) + 2 * page);
}

} // namespace kirvo_test
