// The decoder's own copy of the bytes that it was given and has not consumed yet.
#pragma once

#include "image/memory.hpp"
#include "image/status.hpp"

#include <cstring>

namespace kirvo {

struct DecodeInput {
    // Stands behind the bytes, so that reading a word ahead stays inside the block and finds the
    // end of the entropy-coded data there.
    static constexpr size_t tail_bytes = 8;
    static constexpr uint8_t tail = 0xFF;

    HGLOBAL block; // locked
    uint8_t* start;
    size_t capacity;
    uint8_t* bytes; // in the block, where positions count from
    size_t size;
    size_t position; // bytes consumed
    size_t room;     // for more bytes behind these

    size_t remaining() const { return size - position; }
    bool empty() const { return position == size; }
    uint8_t take() { return bytes[position++]; }

    // Goes on with the unconsumed bytes and then count more; the position starts again at 0. False
    // when there is no memory, which changes nothing. Takes time for the new bytes only, on
    // average.
    bool append(const uint8_t* more, size_t count) {
        if (count > room && !make_room(count))
            return false;
        if (count == 1) // not worth a call
            bytes[size] = *more;
        else
            std::memcpy(bytes + size, more, count);
        set(bytes + position, remaining() + count, room - count);
        return true;
    }
    // Goes on with the first count bytes of a block, which becomes the input's own and has room for
    // the tail.
    void replace(OwnedBlock own, size_t count);
    void discard() { replace({}, 0); }

  private:
    bool make_room(size_t count);
    void set(uint8_t* from, size_t count, size_t more) {
        bytes = from;
        size = count;
        position = 0;
        room = more;
        std::memset(from + count, tail, tail_bytes);
    }
};

// A whole file in a block with room for the tail: -4, -2 or -5 when that fails.
Status read_file(const char* name, OwnedBlock& block, uint32_t& size);

} // namespace kirvo
