// Huffman coding of quantised blocks.
#pragma once

#include "jpeg/encode_codes.hpp"
#include "jpeg/encode_rows.hpp"

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
    // Moves whole bytes out. Writes a word, whose last bytes the next flush writes again.
    void flush() {
        store(word_ << 1 << (word_bits - 1 - held_));
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

// Codes a block of a group. False, with the writer as it was, when a DC difference or an AC value
// needs a category above 11.
bool put_block(BitWriter& writer, const BlockGroup& group, size_t block,
               const EntropyCodes& codes, int16_t& predictor);

} // namespace kirvo
