#include "jpeg/encode_entropy.hpp"

namespace kirvo {

namespace {

// Small values with their codes have at most 16 + 6 bits: one fits a 32-bit word, two a 64-bit one.
constexpr bool two_fit = BitWriter::word_bits == 64;

// Of a value of any size. The tables have no codes for AC values of category 11, which therefore
// get their magnitude bits alone.
bool put_large(BitWriter& writer, int16_t value, const Bits* symbols) {
    const uint32_t category = category_of(magnitude_of(value));
    if (category > highest_category)
        return false;
    writer.put(symbols[category]);
    writer.flush();
    writer.put(with_magnitude(0, value, category));
    writer.flush();
    return true;
}

constexpr bool is_small(int32_t value) { return value >= -small_values && value < small_values; }

} // namespace

bool put_block(BitWriter& out, const BlockGroup& group, size_t block, const EntropyCodes& codes,
               int16_t& predictor) {
    BitWriter writer = out; // in registers
    const int16_t dc = group.level[0][8 * block];
    if (!put_large(writer, static_cast<int16_t>(dc - predictor), codes.dc.data()))
        return false;
    const int8_t* clamped = group.clamped[block];
    uint32_t last = 0;
    for (uint64_t left = group.nonzero[block] & ~uint64_t{1}; left != 0; left &= left - 1) {
        const auto position = static_cast<uint32_t>(__builtin_ctzll(left));
        uint32_t run = position - last - 1;
        last = position;
        for (; run > 15; run -= 16) {
            writer.put(codes.ac[run_of_sixteen]);
            writer.flush();
        }
        if (is_small(clamped[position])) {
            writer.put(codes.small(run, clamped[position]));
            writer.flush();
        } else {
            const size_t natural = zigzag[position];
            const int16_t level = group.level[natural / 8][8 * block + natural % 8];
            if (!put_large(writer, level, codes.ac.data() + (run << 4)))
                return false;
        }
    }
    if (last != 63) {
        writer.put(codes.ac[end_of_block]);
        writer.flush();
    }
    out = writer;
    predictor = dc;
    return true;
}

} // namespace kirvo
