// Huffman coding of quantised blocks.
#pragma once

#include "jpeg/encode/codes.hpp"
#include "simd/kernel_types.hpp"

namespace kirvo {

// Gathers bits, the most significant of a stream first, in bytes without stuffing. What is put
// between two flushes must fit beside the seven bits that a flush may leave.
class BitWriter {
  public:
    using Word = std::conditional_t<sizeof(void*) == 8, uint64_t, uint32_t>;
    static constexpr uint32_t word_bits = 8 * sizeof(Word);

    explicit constexpr BitWriter(uint8_t* bytes) : at_(bytes) {}

    void put(Bits bits) {
        word_ = word_ << bits_length(bits) | bits_word(bits);
        held_ += bits_length(bits);
    }
    // Moves whole bytes out. Writes a word, of which the next flush writes what is not whole again:
    // all of it, and anything may stand there, when no bits wait.
    void flush() {
        store(word_ << ((0 - held_) % word_bits));
        at_ += held_ / 8;
        held_ %= 8;
    }
    // Fills the last byte up with ones.
    void finish() {
        const uint32_t missing = (0 - held_) % 8;
        put(make_bits((1u << missing) - 1, missing));
        flush();
    }
    uint8_t* at() const { return at_; }
    // Goes on at another place.
    void move_to(uint8_t* bytes) { at_ = bytes; }

  private:
    void store(Word word) {
        if constexpr (sizeof(Word) == 8)
            word = __builtin_bswap64(word);
        else
            word = __builtin_bswap32(word);
        __builtin_memcpy(at_, &word, sizeof word);
    }

    Word word_ = 0; // its low bits wait; those above them have been written
    uint32_t held_ = 0;
    uint8_t* at_;
};

// The longest block, every coefficient coded with as many bits as a symbol can have, and what a
// flush writes beyond.
constexpr size_t longest_block = 64 * 27 / 8 + sizeof(BitWriter::Word);

// The blocks that an MCU has of one plane, or of one row of blocks of it.
struct McuPart {
    const BlockGroup* groups; // of MCUs side by side
    size_t blocks;            // of one MCU
    const EntropyCodes* codes;
    int16_t* predictor;
};

// Codes the parts of an MCU in turn. False, with the writer as it was, when a DC difference or an
// AC value needs a category above 11.
bool put_mcu(BitWriter& writer, const McuPart* parts, size_t part_count, size_t mcu);

} // namespace kirvo
