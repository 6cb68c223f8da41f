// The Huffman tables in the two forms that an encode needs: the DHT segment that every stream
// carries, and the code words, derived from the same lists as T.81, Annex C, says.
#pragma once

#include "jpeg/tables.hpp"
#include "simd/kernel_types.hpp"

#include <algorithm>

namespace kirvo {

// Bits to write, packed: the low 5 bits count them, the others hold them. No symbol with its
// magnitude bits is longer than 27 bits. An absent symbol has no bits.
using Bits = uint32_t;
constexpr Bits make_bits(uint32_t word, uint32_t length) { return word << 5 | length; }
constexpr uint32_t bits_word(Bits bits) { return bits >> 5; }
constexpr uint32_t bits_length(Bits bits) { return bits & 31; }

constexpr uint32_t end_of_block = 0x00;
constexpr uint32_t run_of_sixteen = 0xF0;
constexpr uint32_t highest_category = 11;

// Code words by symbol: the category of a DC difference, or run * 16 + category of an AC value.
template<size_t size, int N>
constexpr std::array<Bits, size> code_words(const HuffmanTable<N>& table) {
    std::array<Bits, size> words = {};
    uint32_t code = 0;
    size_t next = 0;
    for (uint32_t length = 1; length <= 16; ++length, code <<= 1) {
        for (int i = 0; i < table.counts[length - 1]; ++i)
            words[table.symbols[next++]] = make_bits(code++, length);
    }
    return words;
}

// The number of bits in a magnitude.
constexpr uint32_t category_of(uint32_t magnitude) {
    return magnitude == 0 ? 0 : 32 - static_cast<uint32_t>(__builtin_clz(magnitude));
}

constexpr uint32_t magnitude_of(int32_t value) {
    return static_cast<uint32_t>(value < 0 ? -value : value);
}

// A symbol's code word followed by the low bits of the value, or of value - 1 when negative.
constexpr Bits with_magnitude(Bits symbol, int32_t value, uint32_t category) {
    const auto low = static_cast<uint32_t>(value < 0 ? value - 1 : value);
    return make_bits(bits_word(symbol) << category | (low & ((1u << category) - 1)),
                     bits_length(symbol) + category);
}

// Small levels have their code words with the magnitude bits ready.
constexpr bool is_small(int32_t level) { return level >= -small_levels && level < small_levels; }

// So many values with their codes have room in a word beside 7 bits that wait.
constexpr uint32_t codes_at_once = sizeof(void*) == 8 ? 3 : 1;
constexpr uint32_t longest_at_once = (8 * sizeof(void*) - 7) / codes_at_once;

struct EntropyCodes {
    std::array<Bits, dc_symbols> dc;
    std::array<Bits, 256> ac;
    std::array<Bits, 2 * small_levels> small_dc; // by difference + small_levels
    // By distance from the value before and byte of BlockGroup::small. 0: to be put in steps.
    std::array<Bits, 64 * 256> small_ac;
};

[[gnu::cold]] inline EntropyCodes entropy_codes(const HuffmanTable<dc_symbols>& dc,
                                                const HuffmanTable<ac_symbols>& ac) {
    EntropyCodes codes = {code_words<dc_symbols>(dc), code_words<256>(ac), {}, {}};
    for (int32_t level = -small_levels; level < small_levels; ++level) {
        const uint32_t category = category_of(magnitude_of(level));
        const auto index = static_cast<size_t>(level + small_levels);
        codes.small_dc[index] = with_magnitude(codes.dc[category], level, category);
        for (uint32_t run = 0; run < 16; ++run) {
            const Bits bits = with_magnitude(codes.ac[run << 4 | category], level, category);
            codes.small_ac[(run + 1) << 8 | index] =
                bits_length(bits) <= longest_at_once ? bits : 0;
        }
    }
    return codes;
}

// FF C4, the length, then the four tables.
inline constexpr size_t dht_bytes = 420;

constexpr std::array<uint8_t, dht_bytes> make_dht() {
    std::array<uint8_t, dht_bytes> segment = {0xFF, 0xC4, (dht_bytes - 2) >> 8,
                                              (dht_bytes - 2) & 0xFF};
    auto at = segment.begin() + 4;
    const auto add = [&at](uint8_t class_and_id, const auto& table) {
        *at++ = class_and_id;
        at = std::copy(table.counts.begin(), table.counts.end(), at);
        at = std::copy(table.symbols.begin(), table.symbols.end(), at);
    };
    add(0x00, luminance_dc);
    add(0x01, chrominance_dc);
    add(0x10, luminance_ac);
    add(0x11, chrominance_ac);
    return segment;
}

inline constexpr std::array<uint8_t, dht_bytes> dht_segment = make_dht();

} // namespace kirvo
