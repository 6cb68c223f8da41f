// The decoder's own copy of the bytes that it was given and has not consumed yet.
#pragma once

#include "core/memory.hpp"
#include "core/status.hpp"

namespace kirvo {

struct DecodeInput {
    HGLOBAL block;
    const uint8_t* bytes; // while locked
    size_t size;
    size_t position; // bytes consumed of this block

    size_t remaining() const { return size - position; }
    bool empty() const { return position == size; }
    uint8_t take() { return bytes[position++]; }

    // Goes on with the unconsumed bytes and then count more; the position starts again at 0. False
    // when there is no memory, which changes nothing.
    bool append(const uint8_t* more, size_t count);
    // Goes on with the count bytes of a block, which becomes the input's own.
    void replace(OwnedBlock own, size_t count);
    void discard() { replace({}, 0); }
};

// Makes the bytes readable for as long as the object lives.
class LockedInput {
  public:
    explicit LockedInput(DecodeInput& input) : lock_(input.block) { input.bytes = lock_.data(); }

  private:
    LockedBlock lock_;
};

// A whole file in a block of its size: -4, -2 or -5 when that fails.
Status read_file(const char* name, OwnedBlock& block, uint32_t& size);

} // namespace kirvo
