#include "jpeg/encode/entropy.hpp"

#include <bit>

namespace kirvo {

namespace {

// What the tables of small values do not tell: a value of any size, far from the one before. The
// tables have no codes for AC values of category 11, which therefore get their magnitude bits alone.
[[gnu::noinline]] bool put_in_steps(BitWriter* writer, size_t distance, int16_t value,
                                    const Bits* symbols) {
    const uint32_t category = category_of(magnitude_of(value));
    if (category > highest_category)
        return false;
    writer->flush();
    for (; distance > 16; distance -= 16) {
        writer->put(symbols[run_of_sixteen]);
        writer->flush();
    }
    writer->put(symbols[16 * (distance - 1) + category]);
    writer->flush();
    writer->put(with_magnitude(0, value, category));
    return true;
}

// Lets the writer stay in registers in between.
bool put_rare(BitWriter& writer, size_t distance, int16_t value, const Bits* symbols) {
    BitWriter copy = writer;
    const bool good = put_in_steps(&copy, distance, value, symbols);
    writer = copy;
    return good;
}

bool put_dc(BitWriter& writer, int16_t difference, const EntropyCodes& codes) {
    if (!is_small(difference))
        return put_rare(writer, 1, difference, codes.dc.data());
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
        const size_t distance = position - last; // one more than the run of zeros
        last = position;
        const Bits bits = codes.small_ac[distance << 8 | group.small[block][position]];
        if (bits == 0) [[unlikely]]
            return put_rare(writer, distance, level_at(position), codes.ac.data());
        writer.put(bits);
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
            if (codes_at_once == 3 && values.left != 0 && !values.put_next(writer))
                return false;
            if (codes_at_once == 3 && values.left != 0 && !values.put_next(writer))
                return false;
            writer.flush();
        }
    }
    if (values.last != 63) {
        writer.put(codes.ac[end_of_block]);
        if (codes_at_once == 1)
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
