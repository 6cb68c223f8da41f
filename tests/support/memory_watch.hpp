// Stands between the library and the system's memory while it exists: counts blocks, makes any
// allocation fail, and places blocks so that a byte read or written outside one is found.
//
// Works on the shared library (it replaces what the library imports), so in the public tests only.
#pragma once

#include <cstdint>
#include <string>

namespace kirvo_test {

class MemoryWatch {
  public:
    MemoryWatch();
    ~MemoryWatch();
    MemoryWatch(const MemoryWatch&) = delete;
    MemoryWatch& operator=(const MemoryWatch&) = delete;

    // Blocks from now on end where a page begins that cannot be touched, and the bytes before them
    // are looked after: for memory of calls too short for the system to give page by page. The
    // address sanitizer does as much by itself.
    void guard(bool on);
    // Makes the n-th allocation from now fail (1 is the next); 0: none.
    void fail(uint32_t n);
    // How often an allocation was asked for since fail or the beginning, and how many were refused
    // since the beginning.
    uint32_t allocations() const;
    uint64_t refused() const;
    // Blocks that exist, of those made meanwhile.
    int64_t blocks() const;
    // Guarded blocks whose surroundings were found changed.
    uint64_t damaged() const;
};

} // namespace kirvo_test
