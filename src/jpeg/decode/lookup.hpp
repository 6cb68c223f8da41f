// What the next few bits of a stream stand for: a symbol, and when they reach that far the value
// behind it too. Made by running the symbol procedure, so that odd tables give what that gives.
#pragma once

#include "jpeg/decode/huffman.hpp"

namespace kirvo {

constexpr uint32_t lookup_bits = 10;

// Longer codes begin with ones: 16 bits from here on are looked up as a whole.
constexpr uint32_t first_long = 0xFC00;

// Bits 0-5: bits of the code, of code and value when the value is here. Bits 6-7: the kind. Bits
// 8-11: run of zeros before the value, or bits that tell the length of a band of empty blocks.
// Bits 12-15 or, of a DC table, 8-12: bits of a value that follows. Bits 16-31: the value. 0: the
// table cannot tell.
using LookupEntry = uint32_t;

enum class EntryKind : uint32_t { value, end_of_block, end_of_band, run_of_16 };

constexpr uint32_t entry_length(LookupEntry e) { return e & 63; }
constexpr EntryKind entry_kind(LookupEntry e) { return static_cast<EntryKind>(e >> 6 & 3); }
constexpr uint32_t entry_run(LookupEntry e) { return e >> 8 & 15; }
constexpr uint32_t entry_ac_size(LookupEntry e) { return e >> 12 & 15; }
constexpr uint32_t entry_dc_size(LookupEntry e) { return e >> 8 & 31; }
constexpr int16_t entry_value(LookupEntry e) { return static_cast<int16_t>(e >> 16); }
// No AC value is 0, so this tells a value from everything else.
constexpr bool has_ac_value(LookupEntry e) { return e >> 16 != 0; }

// What a symbol without its value bits says; 0 for one that is an error.
LookupEntry ac_entry(uint32_t symbol, uint32_t length);
LookupEntry dc_entry(uint32_t symbol, uint32_t length);

struct Lookup {
    LookupEntry entries[1u << lookup_bits];
    LookupEntry long_entries[(1u << longest_code) - first_long];
    bool ready;

    // By as many bits as the longest code has.
    LookupEntry find(uint32_t next_bits) const {
        const LookupEntry entry = entries[next_bits >> (longest_code - lookup_bits)];
        return entry == 0 && next_bits >= first_long ? long_entries[next_bits - first_long] : entry;
    }
    void prepare_ac(const DecodeTable& table) {
        if (!ready)
            make_ac(table);
    }
    void prepare_dc(const DecodeTable& table) {
        if (!ready)
            make_dc(table);
    }

  private:
    void make_ac(const DecodeTable& table);
    void make_dc(const DecodeTable& table);
};

// What the next bits say of a baseline block's AC coefficients when up to two symbols with their
// values lie in them, and perhaps the end of the block behind. Both values are always stored: where
// there is only one, it is there twice; where there is none, a 0 goes to a place that holds 0.
struct AcPair {
    uint8_t length;  // bits of all of it
    uint8_t advance; // of position k, where the zeros begin; past_block more at the block's end
    uint8_t first;   // the values' distances from k
    uint8_t second;
    int16_t value[2];
};

constexpr uint8_t past_block = 128;

// A second distance that no block has room for. Where there is a length, it is that of a code; the
// number of value bits that follow it stands in place of a value, the run in first. Without a length
// the bits are for a single symbol's lookup.
constexpr uint8_t no_pair = 63;

// With its value; as many bits as are always there after a refill.
constexpr uint32_t longest_coded_value = 24;

inline bool is_coded_value(const AcPair& pair) {
    return pair.second == no_pair && pair.length != 0;
}

struct PairLookup {
    uint8_t
        lengths[1u << lookup_bits]; // for which the next lookup waits: they are found sooner here
    AcPair entries[1u << lookup_bits];
    bool ready;

    // From the lookup of the same table.
    void prepare(const Lookup& lookup) {
        if (!ready)
            make(lookup);
    }

  private:
    void make(const Lookup& lookup);
};

// By table number.
struct Lookups {
    Lookup dc[4], ac[4]; // ready: made from the table as it is
    PairLookup ac_pairs[4];

    // The table is another one now.
    void forget(bool of_ac, uint32_t number) {
        (of_ac ? ac : dc)[number].ready = false;
        if (of_ac)
            ac_pairs[number].ready = false;
    }
};

} // namespace kirvo
