#include "jpeg/decode_lookup.hpp"

#include "jpeg/decode_block.hpp"

#include <algorithm>

namespace kirvo {

namespace {

constexpr LookupEntry pack(uint32_t length, EntryKind kind) {
    return length | static_cast<uint32_t>(kind) << 6;
}

constexpr LookupEntry with_value(LookupEntry entry, int16_t value) {
    return entry | static_cast<uint32_t>(static_cast<uint16_t>(value)) << 16;
}

// Fills the entries of all codes by walking through every sequence of bits up to the lookup's
// length, as long as the procedure asks for more.
template<typename FillSymbol>
void walk_codes(const DecodeTable& table, int32_t row, SymbolWalk walk, uint32_t prefix,
                const FillSymbol& fill_symbol) {
    for (uint32_t bit = 0; bit < 2; ++bit) {
        SymbolWalk next = walk;
        uint8_t symbol = 0;
        const auto outcome = next.step(table, row, bit, symbol);
        const uint32_t code = prefix << 1 | bit;
        if (outcome == SymbolWalk::Outcome::found)
            fill_symbol(symbol, code, next.length);
        else if (outcome == SymbolWalk::Outcome::go_on && next.length < lookup_bits)
            walk_codes(table, row, next, code, fill_symbol);
    }
}

void fill(Lookup& lookup, uint32_t prefix, uint32_t length, LookupEntry entry) {
    const uint32_t spread = lookup_bits - length;
    std::fill_n(lookup.entries + (prefix << spread), size_t{1} << spread, entry);
}

// Entries of one symbol; size value bits follow its code.
void fill_values(Lookup& lookup, uint32_t code, uint32_t length, uint32_t size,
                 LookupEntry without_value, LookupEntry frame) {
    if (size == 0 || length + size > lookup_bits) {
        fill(lookup, code, length, without_value);
        return;
    }
    for (uint32_t bits = 0; bits < 1u << size; ++bits)
        fill(lookup, code << size | bits, length + size, with_value(frame, extend(bits, size)));
}

} // namespace

LookupEntry ac_entry(uint32_t symbol, uint32_t length) {
    const uint32_t run = symbol >> 4, size = symbol & 15;
    if (size != 0)
        return pack(length, EntryKind::value) | run << 8 | size << 12;
    if (run == 15)
        return pack(length, EntryKind::run_of_16);
    return pack(length, run == 0 ? EntryKind::end_of_block : EntryKind::end_of_band) | run << 8;
}

LookupEntry dc_entry(uint32_t symbol, uint32_t length) {
    return symbol <= 16 ? pack(length, EntryKind::value) | symbol << 8 : 0;
}

void Lookup::make_ac(const DecodeTable& table) {
    std::fill(std::begin(entries), std::end(entries), 0);
    walk_codes(table, ac_row, SymbolWalk::begin(), 0,
               [this](uint32_t symbol, uint32_t code, uint32_t length) {
                   const uint32_t run = symbol >> 4, size = symbol & 15;
                   fill_values(*this, code, length, size, ac_entry(symbol, length),
                               pack(length + size, EntryKind::value) | run << 8);
               });
    ready = true;
}

void Lookup::make_dc(const DecodeTable& table) {
    std::fill(std::begin(entries), std::end(entries), 0);
    walk_codes(table, dc_row, SymbolWalk::begin(), 0,
               [this](uint32_t symbol, uint32_t code, uint32_t length) {
                   fill_values(*this, code, length, symbol, dc_entry(symbol, length),
                               pack(length + symbol, EntryKind::value));
               });
    ready = true;
}

namespace {

constexpr uint32_t past_block = 64;

bool is_whole(LookupEntry entry) {
    return has_ac_value(entry) || (entry != 0 && (entry_kind(entry) == EntryKind::end_of_block ||
                                                  entry_kind(entry) == EntryKind::run_of_16));
}

AcPair single(LookupEntry entry) {
    AcPair pair = {};
    pair.length = static_cast<uint8_t>(entry_length(entry));
    if (has_ac_value(entry)) {
        pair.first = pair.second = static_cast<uint8_t>(entry_run(entry));
        pair.last = static_cast<uint8_t>(pair.first + 1);
        pair.advance = pair.first + 1u;
        pair.value[0] = pair.value[1] = entry_value(entry);
    } else {
        pair.advance = entry_kind(entry) == EntryKind::run_of_16 ? 16 : past_block;
    }
    return pair;
}

} // namespace

void PairLookup::make(const Lookup& lookup) {
    constexpr uint32_t mask = (1u << lookup_bits) - 1;
    for (uint32_t bits = 0; bits <= mask; ++bits) {
        const LookupEntry first = lookup[bits];
        AcPair& pair = entries[bits];
        if (!is_whole(first)) {
            pair = {};
            pair.first = no_pair;
            continue;
        }
        pair = single(first);
        // The bits after the first symbol, and zeros; they tell the second one when that is no
        // longer than they are.
        const LookupEntry second = lookup[bits << pair.length & mask];
        if (!has_ac_value(first) || !is_whole(second) ||
            pair.length + entry_length(second) > lookup_bits)
            continue;
        const AcPair next = single(second);
        if (has_ac_value(second)) {
            pair.second = static_cast<uint8_t>(pair.advance + next.second);
            pair.last = static_cast<uint8_t>(pair.second + 1);
            pair.value[1] = next.value[1];
        }
        pair.length = static_cast<uint8_t>(pair.length + next.length);
        pair.advance += next.advance;
    }
    ready = true;
}

} // namespace kirvo
