#include "jpeg/encode_entropy.hpp"

namespace kirvo {

namespace {

bool put_dc(BitWriter& writer, int16_t level, const EntropyCodes& codes, int16_t& predictor) {
    const auto difference = static_cast<int16_t>(level - predictor);
    predictor = level;
    const uint32_t category = category_of(magnitude_of(difference));
    if (category > highest_category)
        return false;
    writer.put(with_magnitude(codes.dc[category], difference, category));
    return true;
}

// The tables have no codes for category 11, which therefore gets its magnitude bits alone.
bool put_large_ac(BitWriter& writer, int16_t level, uint32_t run, const EntropyCodes& codes) {
    const uint32_t category = category_of(magnitude_of(level));
    if (category > highest_category)
        return false;
    writer.put(with_magnitude(codes.ac[run << 4 | category], level, category));
    return true;
}

constexpr bool is_small(int16_t level) { return level >= -small_values && level < small_values; }

} // namespace

bool put_block(BitWriter& out, const Levels& levels, uint64_t nonzero, const EntropyCodes& codes,
               int16_t& predictor) {
    BitWriter writer = out; // in registers
    if (!put_dc(writer, levels[0], codes, predictor))
        return false;
    uint32_t last = 0;
    for (uint64_t left = nonzero & ~uint64_t{1}; left != 0; left &= left - 1) {
        const auto position = static_cast<uint32_t>(__builtin_ctzll(left));
        uint32_t run = position - last - 1;
        last = position;
        for (; run > 15; run -= 16)
            writer.put(codes.ac[run_of_sixteen]);
        const int16_t level = levels[position];
        if (is_small(level))
            writer.put(codes.small(run, level));
        else if (!put_large_ac(writer, level, run, codes))
            return false;
    }
    if (last != 63)
        writer.put(codes.ac[end_of_block]);
    out = writer;
    return true;
}

} // namespace kirvo
