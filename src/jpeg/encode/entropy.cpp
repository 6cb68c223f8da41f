#include "jpeg/encode/entropy.hpp"

#include <bit>

namespace kirvo {

namespace {

// Small levels with their codes have at most 16 + 6 bits, an end of block has 4: a 64-bit word has
// room for two of the former and one of the latter, a 32-bit word for one.
constexpr bool room_for_two = BitWriter::word_bits == 64;

// A value of any size. The tables have no codes for AC values of category 11, which therefore get
// their magnitude bits alone.
[[gnu::noinline]] bool put_large(BitWriter* writer, int16_t value, const Bits* symbols) {
    const uint32_t category = category_of(magnitude_of(value));
    if (category > highest_category)
        return false;
    writer->flush();
    writer->put(symbols[category]);
    writer->flush();
    writer->put(with_magnitude(0, value, category));
    return true;
}

// Lets the writer stay in registers in between.
bool put_rare(BitWriter& writer, int16_t value, const Bits* symbols) {
    BitWriter copy = writer;
    const bool good = put_large(&copy, value, symbols);
    writer = copy;
    return good;
}

bool put_dc(BitWriter& writer, int16_t difference, const EntropyCodes& codes) {
    if (!is_small(difference))
        return put_rare(writer, difference, codes.dc.data());
    writer.put(codes.small_dc[static_cast<size_t>(difference + small_levels)]);
    return true;
}

// The AC values of one block from the lowest frequency on.
struct AcValues {
    const BlockGroup& group;
    size_t block;
    const EntropyCodes& codes;
    size_t left = 0;  // a bit each for values of a word's worth of places,
    size_t start = 0; // from this one on
    size_t last = 0;

    [[gnu::always_inline]] bool put_next(BitWriter& writer) {
        const size_t position = start + static_cast<unsigned>(std::countr_zero(left));
        left &= left - 1;
        size_t distance = position - last; // one more than the run of zeros
        last = position;
        for (; distance > 16; distance -= 16) {
            writer.flush();
            writer.put(codes.ac[run_of_sixteen]);
            writer.flush();
        }
        const uint8_t small = group.small[block][position];
        if (small >= 2 * small_levels)
            return put_rare(writer, level_at(position), codes.ac.data() + 16 * (distance - 1));
        writer.put(codes.small_ac[distance][small]);
        return true;
    }
    int16_t level_at(size_t position) const {
        const size_t natural = zigzag[position];
        return group.level[natural / 8][8 * block + natural % 8];
    }
};

[[gnu::always_inline]] inline bool put_block(BitWriter& writer, const BlockGroup& group,
                                             size_t block, const EntropyCodes& codes,
                                             int16_t& predictor) {
    const int16_t dc = group.level[0][8 * block];
    if (!put_dc(writer, static_cast<int16_t>(dc - predictor), codes))
        return false;
    predictor = dc;
    writer.flush();
    const uint64_t nonzero = group.nonzero[block] & ~uint64_t{1};
    AcValues values = {group, block, codes};
    for (; values.start < 64; values.start += BitWriter::word_bits) {
        values.left = static_cast<size_t>(nonzero >> values.start);
        while (values.left != 0) {
            if (!values.put_next(writer))
                return false;
            if (room_for_two && values.left != 0 && !values.put_next(writer))
                return false;
            writer.flush();
        }
    }
    if (values.last != 63) {
        writer.put(codes.ac[end_of_block]);
        if (!room_for_two)
            writer.flush();
    }
    return true;
}

} // namespace

bool put_mcu(BitWriter& out, const McuPart* parts, size_t part_count, size_t mcu) {
    BitWriter writer = out; // in registers
    for (const McuPart* part = parts; part != parts + part_count; ++part) {
        for (size_t i = mcu * part->blocks; i < (mcu + 1) * part->blocks; ++i) {
            if (!put_block(writer, part->groups[i / blocks_abreast], i % blocks_abreast,
                           *part->codes, *part->predictor))
                return false;
        }
    }
    out = writer;
    return true;
}

} // namespace kirvo
