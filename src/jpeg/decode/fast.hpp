// The fast entropy decoder: a wide bit buffer and lookup tables, for sound data in the middle of
// the input. Whatever is out of the ordinary (a marker inside an MCU, a fill byte, the end of the
// input, an unknown code) it leaves to the careful reader, in exactly the state in which that would
// have come there.
#pragma once

#include "jpeg/decode/careful.hpp"
#include "jpeg/decode/lookup.hpp"

namespace kirvo {

// Bits taken ahead from the input.
struct BitBuffer {
    using Word = size_t;
    static constexpr int32_t width = 8 * sizeof(Word);
    static constexpr int32_t full = width - 8; // that many a refill makes sure of

    Word word;     // the next bit highest
    int32_t count; // of its bits that are there; those below are 0, or right already. Negative when
                   // more have been taken than came before a marker
    const uint8_t* next;

    // Of 1 to 16 bits.
    uint32_t peek(uint32_t bits) const { return static_cast<uint32_t>(word >> (width - bits)); }
    void drop(uint32_t bits) {
        word <<= bits;
        count -= static_cast<int32_t>(bits);
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
    bool try_mcu(const Tables* const* tables, int32_t count, Block* blocks, uint8_t* last);
    void pass_restart();

    DecodeState& state_;
    BitBuffer bits_;
    const uint8_t* end_;
    const uint8_t* entered_; // the input where it took over
    uint8_t entered_byte_;   // the byte before that
    bool moved_;             // since then
    bool usable_;
};

} // namespace kirvo
