#include "jpeg/encode_entropy.hpp"

namespace kirvo {

namespace {

// Small values with their codes have at most 16 + 6 bits, an end of block has 4: a 64-bit word has
// room for two of the former and one of the latter, a 32-bit word for one.
constexpr bool room_for_two = BitWriter::word_bits == 64;

constexpr bool is_small(int32_t value) { return value >= -small_values && value < small_values; }

// A value of any size. The tables have no codes for AC values of category 11, which therefore get
// their magnitude bits alone.
bool put_large(BitWriter& writer, int16_t value, const Bits* symbols) {
    const uint32_t category = category_of(magnitude_of(value));
    if (category > highest_category)
        return false;
    writer.flush();
    writer.put(symbols[category]);
    writer.flush();
    writer.put(with_magnitude(0, value, category));
    return true;
}

bool put_dc(BitWriter& writer, int16_t difference, const EntropyCodes& codes) {
    if (!is_small(difference))
        return put_large(writer, difference, codes.dc.data());
    writer.put(codes.of_small_dc(difference));
    return true;
}

// The AC values of one block from the lowest frequency on.
struct AcValues {
    const BlockGroup& group;
    size_t block;
    const EntropyCodes& codes;
    uint64_t left;
    uint32_t last = 0;

    bool put_next(BitWriter& writer) {
        const auto position = static_cast<uint32_t>(__builtin_ctzll(left));
        left &= left - 1;
        uint32_t run = position - last - 1;
        last = position;
        for (; run > 15; run -= 16) {
            writer.flush();
            writer.put(codes.ac[run_of_sixteen]);
            writer.flush();
        }
        const int8_t value = group.clamped[block][position];
        if (!is_small(value))
            return put_large(writer, level_at(position), codes.ac.data() + (run << 4));
        writer.put(codes.of_small_ac(run, value));
        return true;
    }
    int16_t level_at(uint32_t position) const {
        const size_t natural = zigzag[position];
        return group.level[natural / 8][8 * block + natural % 8];
    }
};

} // namespace

bool put_block(BitWriter& out, const BlockGroup& group, size_t block, const EntropyCodes& codes,
               int16_t& predictor) {
    BitWriter writer = out; // in registers
    const int16_t dc = group.level[0][8 * block];
    if (!put_dc(writer, static_cast<int16_t>(dc - predictor), codes))
        return false;
    writer.flush();
    AcValues values = {group, block, codes, group.nonzero[block] & ~uint64_t{1}};
    while (values.left != 0) {
        if (!values.put_next(writer))
            return false;
        if (room_for_two && values.left != 0 && !values.put_next(writer))
            return false;
        writer.flush();
    }
    if (values.last != 63) {
        writer.put(codes.ac[end_of_block]);
        if (!room_for_two)
            writer.flush();
    }
    out = writer;
    predictor = dc;
    return true;
}

} // namespace kirvo
