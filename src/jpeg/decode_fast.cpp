#include "jpeg/decode_fast.hpp"

#include <algorithm>
#include <cstring>

#define ALWAYS_INLINE [[gnu::always_inline]] inline
#if __SIZEOF_POINTER__ == 8
#define PAIR_LOOP ALWAYS_INLINE
#else
#define PAIR_LOOP [[gnu::noinline]]
#endif

namespace kirvo {

namespace {

static_assert(sizeof(uint32_t) <= DecodeInput::tail_bytes);

uint32_t load_big_endian(const uint8_t* from) {
    uint32_t value;
    std::memcpy(&value, from, sizeof value);
    return __builtin_bswap32(value);
}

// Never misses one.
bool may_hold_ff(uint32_t value) { return ((~value - 0x01010101) & value & 0x80808080) != 0; }

// A byte at a time up to a marker or a fill byte, as which the input ends. By value, so that the
// fast path can keep its buffer in registers.
[[gnu::noinline]] BitBuffer refill_bytes(BitBuffer bits) {
    while (bits.count < BitBuffer::half) {
        const uint8_t byte = bits.next[0];
        if (byte == 0xFF && bits.next[1] != 0)
            break;
        bits.next += byte == 0xFF ? 2 : 1;
        bits.window.append(uint32_t{byte} << 24, bits.count);
        bits.count += 8;
    }
    return bits;
}

// Makes half a word of bits available, enough for a symbol and its value. False when the next bytes
// must be looked at one by one.
ALWAYS_INLINE bool refill_word(BitBuffer& bits) {
    if (bits.count >= BitBuffer::half)
        return true;
    const uint32_t ahead = load_big_endian(bits.next);
    if (may_hold_ff(ahead))
        return false;
    bits.window.append(ahead, bits.count);
    bits.count += BitBuffer::half;
    bits.next += sizeof ahead;
    return true;
}

// False when the data ends before that.
ALWAYS_INLINE bool refill(BitBuffer& bits) {
    if (refill_word(bits))
        return true;
    bits = refill_bytes(bits);
    return bits.count >= BitBuffer::half;
}

// A code that the lookup does not tell: longer, or none.
[[gnu::noinline]] LookupEntry walk_code(BitBuffer bits, const DecodeTable& table, int32_t row) {
    SymbolWalk walk = SymbolWalk::begin();
    uint8_t symbol;
    for (uint32_t i = 0; i < longest_code; ++i) {
        switch (walk.step(table, row, bits.take(1), symbol)) {
        case SymbolWalk::Outcome::found:
            return row == dc_row ? dc_entry(symbol, walk.length) : ac_entry(symbol, walk.length);
        case SymbolWalk::Outcome::no_such_code:
            return 0;
        case SymbolWalk::Outcome::go_on:
            break;
        }
    }
    return 0;
}

// Updates the predictor and gives the coefficient.
ALWAYS_INLINE bool read_dc(BitBuffer& bits, const FastReader::Tables& tables, int32_t shift,
                           int16_t& coefficient) {
    if (!refill(bits))
        return false;
    LookupEntry entry = (*tables.dc)[bits.peek(lookup_bits)];
    if (entry == 0) {
        entry = walk_code(bits, *tables.coding.dc, dc_row);
        if (entry == 0)
            return false;
    }
    bits.drop(entry_length(entry));
    int16_t difference = entry_value(entry);
    if (const uint32_t size = entry_dc_size(entry)) {
        difference = extend(bits.take(size), size);
    }
    int16_t& predictor = *tables.coding.predictor;
    predictor = wrap16(predictor + difference);
    coefficient = shift16(wrap16(tables.coding.quantisation[0] * predictor), shift);
    return true;
}

// One AC symbol and what belongs to it, at position k, which moves on; beyond every block at the
// end of one. Where bands may end, eob_run tells for how many blocks more.
ALWAYS_INLINE bool read_coefficient(BitBuffer& bits, const FastReader::Tables& tables,
                                    int32_t shift, int16_t* block, int32_t& k, int32_t* eob_run) {
    constexpr int32_t past_block = 256;
    if (!refill(bits))
        return false;
    LookupEntry entry = (*tables.ac)[bits.peek(lookup_bits)];
    if (entry == 0) {
        entry = walk_code(bits, *tables.coding.ac, ac_row);
        if (entry == 0)
            return false;
    }
    bits.drop(entry_length(entry));
    const uint32_t run = entry_run(entry);
    int16_t value = entry_value(entry);
    if (!has_ac_value(entry)) {
        switch (entry_kind(entry)) {
        case EntryKind::value: {
            const uint32_t size = entry_ac_size(entry);
            value = extend(bits.take(size), size);
            break;
        }
        case EntryKind::run_of_16:
            k += 16;
            return true;
        case EntryKind::end_of_band:
            if (eob_run == nullptr)
                return false;
            *eob_run = static_cast<int32_t>((1u << run) + bits.take(run) - 1);
            k = past_block;
            return true;
        case EntryKind::end_of_block:
            k = past_block;
            return true;
        }
    }
    k += static_cast<int32_t>(run);
    if (k > 63)
        return false;
    block[block_place[static_cast<size_t>(k)]] =
        shift16(wrap16(tables.coding.quantisation[k] * value), shift);
    ++k;
    return true;
}

// Reads pairs of symbols as long as lookups tell them and no byte ahead may be stuffed. False when
// that is over before the block is, with all places before k done with. In 32-bit code a function
// that calls none has a register more.
PAIR_LOOP bool read_pairs(BitBuffer& stream, const FastReader::Tables& tables, int16_t* block,
                          int32_t& position, int32_t& last) {
    constexpr uint32_t lookups_per_refill = BitBuffer::half / lookup_bits;
    const AcPair* pairs = tables.pairs->entries;
    const uint16_t* quantisation = tables.coding.quantisation;
    BitBuffer bits = stream; // in registers
    int32_t k = position;
    bool ended = false;
    while (!ended && refill_word(bits)) {
        uint32_t lookups = lookups_per_refill;
        do {
            const AcPair& pair = pairs[bits.peek(lookup_bits)];
            const int32_t first = k + pair.first;
            if (first >= 63) // the first value may be the last of the block
                goto over;
            bits.drop(pair.length);
            const int32_t second = k + pair.second;
            block[block_place[static_cast<size_t>(first)]] =
                wrap16(quantisation[first] * pair.value[0]);
            block[block_place[static_cast<size_t>(second)]] =
                wrap16(quantisation[second] * pair.value[1]);
            k += static_cast<int32_t>(pair.advance);
            if (k > 63) {
                last = k - 1 - static_cast<int32_t>(pair.advance - pair.last);
                ended = true;
                break;
            }
        } while (--lookups != 0);
    }
over:
    stream = bits;
    position = k;
    return ended;
}

// The AC coefficients of a baseline block, and a zigzag position after which they are 0. The DC
// place may be overwritten.
ALWAYS_INLINE bool read_ac(BitBuffer& bits, const FastReader::Tables& tables, int16_t* block,
                           int32_t& last) {
    int32_t k = 1;
    while (!read_pairs(bits, tables, block, k, last)) {
        last = k - 1;
        if (!read_coefficient(bits, tables, 0, block, k, nullptr))
            return false;
        if (k > 64)
            return true; // the end of the block
        last = k - 1;
        if (k == 64)
            return true;
    }
    return true;
}

} // namespace

FastReader::FastReader(DecodeState& state)
    : state_(state), end_(state.input.bytes + state.input.size) {
    enter();
}

FastReader::Tables FastReader::tables_of(uint32_t dc, uint32_t ac, const BlockCoding& coding) {
    Lookup& dc_lookup = state_.buffers.lookups.dc[dc];
    Lookup& ac_lookup = state_.buffers.lookups.ac[ac];
    dc_lookup.prepare_dc(state_.dc_tables[dc]);
    ac_lookup.prepare_ac(state_.ac_tables[ac]);
    return {&dc_lookup, &ac_lookup, nullptr, coding};
}

FastReader::Tables FastReader::baseline_tables_of(uint32_t dc, uint32_t ac,
                                                  const BlockCoding& coding) {
    Tables tables = tables_of(dc, ac, coding);
    PairLookup& pairs = state_.buffers.lookups.ac_pairs[ac];
    pairs.prepare(*tables.ac);
    tables.pairs = &pairs;
    return tables;
}

void FastReader::enter() {
    const EntropyState& entropy = state_.entropy;
    entered_ = state_.input.bytes + state_.input.position;
    entered_byte_ = entropy.current;
    moved_ = false;
    usable_ = !entropy.pending_ff && state_.scan.refined_from == 0;
    const uint32_t used = static_cast<uint32_t>(entropy.bit_position);
    bits_.count = 8 - used;
    bits_.window = {};
    if (used != 8)
        bits_.window.append(static_cast<uint32_t>(entropy.current) << (24 + used), 0);
    bits_.next = entered_;
}

// Gives back the bytes of which no bit has been taken; never that which was the current one when it
// took over. The last bit taken lies in the current byte.
void FastReader::leave() {
    if (!moved_)
        return;
    const auto before = [this](const uint8_t* at) {
        return at - (at[-1] == 0 && at - entered_ > 1 && at[-2] == 0xFF ? 2 : 1);
    };
    const uint8_t* next = bits_.next;
    uint32_t unread = bits_.count / 8;
    for (; unread != 0 && next != entered_; --unread)
        next = before(next);
    EntropyState& entropy = state_.entropy;
    entropy.bit_position = static_cast<int32_t>(8 - bits_.count % 8 - 8 * unread);
    entropy.current = next == entered_ ? entered_byte_ : *before(next);
    state_.input.position = static_cast<size_t>(next - state_.input.bytes);
    moved_ = false;
}

bool FastReader::read_mcu(const Tables* const* tables, int32_t count, Block* blocks,
                          uint8_t* last) {
    EntropyState& entropy = state_.entropy;
    const Scan& scan = state_.scan;
    if (!usable_ || scan.spectral_start != 0 || scan.spectral_end != 63 || scan.shift != 0 ||
        entropy.eob_run != 0)
        return false;
    BitBuffer bits = bits_;
    int16_t predictors[3];
    std::copy(std::begin(entropy.predictor), std::end(entropy.predictor), predictors);
    for (int32_t i = 0; i < count; ++i) {
        int32_t highest = 0;
        int16_t dc = 0;
        if (!read_dc(bits, *tables[i], 0, dc) || !read_ac(bits, *tables[i], blocks[i], highest)) {
            std::copy(std::begin(predictors), std::end(predictors), entropy.predictor);
            std::memset(blocks, 0, static_cast<size_t>(count) * sizeof(Block));
            return false;
        }
        blocks[i][0] = dc;
        last[i] = static_cast<uint8_t>(std::min(highest, 63));
    }
    entropy.first_block = count == 1;
    bits_ = bits;
    moved_ = true;
    return true;
}

bool FastReader::read_block(const Tables& tables, Block& block) {
    const Scan& scan = state_.scan;
    EntropyState& entropy = state_.entropy;
    const bool with_dc = scan.spectral_start == 0;
    if (!with_dc && entropy.eob_run > 0) {
        --entropy.eob_run;
        return true;
    }
    if (!usable_ || with_dc != (scan.spectral_end == 0))
        return false;
    BitBuffer bits = bits_;
    if (with_dc) {
        const int16_t predictor = *tables.coding.predictor;
        if (!read_dc(bits, tables, scan.shift, block[0])) {
            *tables.coding.predictor = predictor;
            return false;
        }
    } else {
        for (int32_t k = scan.spectral_start; k <= scan.spectral_end;) {
            if (!read_coefficient(bits, tables, scan.shift, block, k, &entropy.eob_run))
                return false;
        }
    }
    bits_ = bits;
    moved_ = true;
    return true;
}

} // namespace kirvo
