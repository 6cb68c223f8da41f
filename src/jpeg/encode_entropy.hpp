// Huffman coding of quantised blocks.
#pragma once

#include "jpeg/encode_codes.hpp"
#include "jpeg/encode_rows.hpp"

namespace kirvo {

// The most significant bit of a stream is written first. Bytes are gathered here without stuffing.
class BitWriter {
  public:
    explicit constexpr BitWriter(uint8_t* bytes) : at_(bytes) {}

    // Writes up to 8 bytes at a time.
    void put(Bits bits) {
        accumulator_ = accumulator_ << bits_length(bits) | bits_word(bits);
        held_ += bits_length(bits);
        if (held_ >= 32) {
            held_ -= 32;
            store(static_cast<uint32_t>(accumulator_ >> held_));
        }
    }
    // Fills the last byte up with ones.
    void finish() {
        const uint32_t missing = (0 - held_) & 7;
        put(make_bits((1u << missing) - 1, missing));
        for (; held_ != 0; held_ -= 8)
            *at_++ = static_cast<uint8_t>(accumulator_ >> (held_ - 8));
    }
    uint8_t* at() const { return at_; }
    // Goes on at another place.
    void move_to(uint8_t* bytes) { at_ = bytes; }

  private:
    void store(uint32_t word) {
        word = __builtin_bswap32(word);
        __builtin_memcpy(at_, &word, sizeof word);
        at_ += sizeof word;
    }

    uint64_t accumulator_ = 0;
    uint32_t held_ = 0; // bits of the accumulator that wait, below 32
    uint8_t* at_;
};

// The longest block: every coefficient coded, none with a run.
constexpr size_t longest_block = 64 * 27 / 8;

// Codes one block. False, with nothing to be done about the stream, when a DC difference or an AC
// value needs a category above 11.
bool put_block(BitWriter& writer, const Levels& levels, uint64_t nonzero, const EntropyCodes& codes,
               int16_t& predictor);

} // namespace kirvo
