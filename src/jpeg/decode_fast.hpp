// The fast entropy decoder: a wide bit buffer and lookup tables, for sound data in the middle of
// the input. Whatever is out of the ordinary (a marker, a fill byte, the end of the input, an
// unknown code) it leaves to the careful reader, in exactly the state in which that would have come
// there.
#pragma once

#include "jpeg/decode_careful.hpp"
#include "jpeg/decode_lookup.hpp"

namespace kirvo {

// Sixty-four bits, the next one highest.
#if __SIZEOF_POINTER__ == 8
struct BitWindow {
    uint64_t word;

    // Of 1 to 32 bits.
    uint32_t peek(uint32_t bits) const { return static_cast<uint32_t>(word >> (64 - bits)); }
    void drop(uint32_t bits) { word <<= bits; }
    // Puts a 32-bit value behind the first `count` bits, which are at most 32.
    void append(uint32_t value, uint32_t count) { word |= uint64_t{value} << (32 - count); }
};
#else
// In two registers, which the compiler would rather have in memory as one number.
struct BitWindow {
    uint32_t high, low;

    uint32_t peek(uint32_t bits) const { return high >> (32 - bits); }
    // Less than 32 bits.
    void drop(uint32_t bits) {
        __asm__("shldl %b2, %1, %0" : "+r"(high) : "r"(low), "c"(bits) : "cc");
        low <<= bits;
    }
    void append(uint32_t value, uint32_t count) {
        high |= count < 32 ? value >> count : 0;
        low |= count != 0 ? value << (32 - count) : 0;
    }
};
#endif

// Bits taken ahead from the input.
struct BitBuffer {
    static constexpr uint32_t half = 32;

    BitWindow window;
    uint32_t count; // of its bits that are there; those below are 0
    const uint8_t* next;

    uint32_t peek(uint32_t bits) const { return window.peek(bits); }
    void drop(uint32_t bits) {
        window.drop(bits);
        count -= bits;
    }
    uint32_t take(uint32_t bits) {
        const uint32_t value = peek(bits);
        drop(bits);
        return value;
    }
};

class FastReader {
  public:
    // Takes over from the careful reader.
    explicit FastReader(DecodeState& state);
    void enter();
    // Hands back to it.
    void leave();

    // Bytes of input that it has not looked at yet.
    size_t ahead() const { return static_cast<size_t>(end_ - bits_.next); }

    // How the blocks of a component are read.
    struct Tables {
        const Lookup* dc;
        const Lookup* ac;
        const PairLookup* pairs; // prepared for baseline blocks only
        BlockCoding coding;
    };
    Tables tables_of(uint32_t dc, uint32_t ac, const BlockCoding& coding);
    Tables baseline_tables_of(uint32_t dc, uint32_t ac, const BlockCoding& coding);

    // Reads the blocks of a baseline MCU and tells the zigzag position after which each is 0. False
    // when the MCU is for the careful reader, which finds everything as it was but the blocks.
    bool read_mcu(const Tables* const* tables, int32_t count, Block* blocks, uint8_t* last);

    // Reads a block of a progressive scan. False as above.
    bool read_block(const Tables& tables, Block& block);

  private:
    DecodeState& state_;
    BitBuffer bits_;
    const uint8_t* end_;
    const uint8_t* entered_; // the input where it took over
    uint8_t entered_byte_;   // the byte before that
    bool moved_;             // since then
    bool usable_;
};

} // namespace kirvo
