#include "jpeg/decode/lookup.hpp"

#include "jpeg/decode/block.hpp"

#include <algorithm>

namespace kirvo {

namespace {

constexpr LookupEntry pack(uint32_t length, EntryKind kind) {
    return length | static_cast<uint32_t>(kind) << 6;
}

constexpr LookupEntry with_value(LookupEntry entry, int16_t value) {
    return entry | static_cast<uint32_t>(static_cast<uint16_t>(value)) << 16;
}

// Whether codes that begin with these bits and are longer have entries.
bool has_longer(const DecodeTable& table, uint32_t code, uint32_t length) {
    if (length >= lookup_bits && code << (longest_code - length) < first_long)
        return false;
    for (uint32_t longer = length + 1; longer <= longest_code; ++longer) {
        const uint32_t first = code << (longer - length), end = (code + 1) << (longer - length);
        const uint32_t held = table.first_code[longer];
        if (first < held + table.counts[longer] && held < end)
            return true;
    }
    return false;
}

// Fills the entries of all codes by walking through every sequence of bits that has an entry, as
// long as the procedure asks for more.
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
        else if (outcome == SymbolWalk::Outcome::go_on && has_longer(table, code, next.length))
            walk_codes(table, row, next, code, fill_symbol);
    }
}

void fill(Lookup& lookup, uint32_t prefix, uint32_t length, LookupEntry entry) {
    if (length <= lookup_bits) {
        const uint32_t spread = lookup_bits - length;
        std::fill_n(lookup.entries + (prefix << spread), size_t{1} << spread, entry);
    } else {
        const uint32_t spread = longest_code - length;
        std::fill_n(lookup.long_entries + ((prefix << spread) - first_long), size_t{1} << spread,
                    entry);
    }
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
    std::fill(std::begin(long_entries), std::end(long_entries), 0);
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
    std::fill(std::begin(long_entries), std::end(long_entries), 0);
    walk_codes(table, dc_row, SymbolWalk::begin(), 0,
               [this](uint32_t symbol, uint32_t code, uint32_t length) {
                   fill_values(*this, code, length, symbol, dc_entry(symbol, length),
                               pack(length + symbol, EntryKind::value));
               });
    ready = true;
}

namespace {

bool is_whole(LookupEntry entry) {
    return has_ac_value(entry) || (entry != 0 && (entry_kind(entry) == EntryKind::end_of_block ||
                                                  entry_kind(entry) == EntryKind::run_of_16));
}

AcPair single(LookupEntry entry) {
    AcPair pair = {};
    pair.length = static_cast<uint8_t>(entry_length(entry));
    if (has_ac_value(entry)) {
        pair.first = pair.second = static_cast<uint8_t>(entry_run(entry));
        pair.advance = static_cast<uint8_t>(pair.first + 1);
        pair.value[0] = pair.value[1] = entry_value(entry);
    } else {
        pair.advance = entry_kind(entry) == EntryKind::run_of_16 ? 16 : past_block;
    }
    return pair;
}

// What the bits after a pair, and zeros, tell of one symbol more, which is no longer than they are.
LookupEntry following(const Lookup& lookup, const AcPair& pair, uint32_t bits) {
    constexpr uint32_t mask = (1u << lookup_bits) - 1;
    const LookupEntry entry = lookup.entries[bits << pair.length & mask];
    return is_whole(entry) && pair.length + entry_length(entry) <= lookup_bits ? entry : 0;
}

// A value beside the first, or what comes after values.
void append(AcPair& pair, LookupEntry entry) {
    const AcPair next = single(entry);
    if (has_ac_value(entry)) {
        pair.second = static_cast<uint8_t>(pair.advance + next.second);
        pair.value[1] = next.value[1];
    }
    pair.length = static_cast<uint8_t>(pair.length + next.length);
    pair.advance = static_cast<uint8_t>(pair.advance + next.advance);
}

// What is neither whole nor a coded value has no length.
AcPair not_whole(LookupEntry entry) {
    AcPair pair = {0, past_block, 0, no_pair, {}};
    const uint32_t size = entry_ac_size(entry);
    if (entry != 0 && entry_kind(entry) == EntryKind::value &&
        entry_length(entry) + size <= longest_coded_value) {
        pair.length = static_cast<uint8_t>(entry_length(entry));
        pair.first = static_cast<uint8_t>(entry_run(entry));
        pair.value[0] = static_cast<int16_t>(size);
    }
    return pair;
}

AcPair pair_of(const Lookup& lookup, uint32_t bits) {
    const LookupEntry first = lookup.entries[bits];
    if (!is_whole(first))
        return not_whole(first);
    AcPair pair = single(first);
    if (!has_ac_value(first))
        return pair;
    if (const LookupEntry second = following(lookup, pair, bits)) {
        append(pair, second);
        if (!has_ac_value(second))
            return pair;
    }
    const LookupEntry end = following(lookup, pair, bits);
    if (end != 0 && !has_ac_value(end))
        append(pair, end);
    return pair;
}

} // namespace

void PairLookup::make(const Lookup& lookup) {
    for (uint32_t bits = 0; bits < 1u << lookup_bits; ++bits)
        lengths[bits] = (entries[bits] = pair_of(lookup, bits)).length;
    ready = true;
}

} // namespace kirvo
