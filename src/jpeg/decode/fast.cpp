#include "jpeg/decode/fast.hpp"

#include <algorithm>
#include <bit>
#include <cstring>

#define ALWAYS_INLINE [[gnu::always_inline]] inline

namespace kirvo {

namespace {

using Word = BitBuffer::Word;

static_assert(sizeof(Word) <= DecodeInput::tail_bytes);

Word load_big_endian(const uint8_t* from) {
    Word value;
    std::memcpy(&value, from, sizeof value);
    if constexpr (sizeof value == 8)
        return __builtin_bswap64(value);
    else
        return __builtin_bswap32(value);
}

static_assert(longest_coded_value <= BitBuffer::full);

constexpr Word ones = ~Word{0} / 0xFF; // in every byte

// Right for a word; of its bytes one above a 0xFF may be taken for another.
bool has_ff(Word value) { return ((~value - ones) & value & ones << 7) != 0; }

// How many bits stand before the first 0xFF that there is.
int32_t bits_before_ff(Word value) {
    const Word found = ((value & ~(ones << 7)) + ones) & value & ones << 7;
    return std::countl_zero(found);
}

ALWAYS_INLINE int32_t room_in_bytes(const BitBuffer& bits) {
    return (BitBuffer::width - 1 - bits.count) >> 3;
}

// From one 0xFF to the next, up to a marker or a fill byte, as which the input ends. By value, so
// that the fast path can keep its buffer in registers.
ALWAYS_INLINE BitBuffer refill_over_ff(BitBuffer bits) {
    while (bits.count < BitBuffer::full) {
        if (bits.next[0] != 0xFF) {
            const Word ahead = load_big_endian(bits.next);
            const int32_t taken = std::min(bits_before_ff(ahead), 8 * room_in_bytes(bits));
            bits.word |= (ahead & ~(~Word{0} >> taken)) >> bits.count;
            bits.count += taken;
            bits.next += taken / 8;
        } else if (bits.next[1] == 0) {
            bits.word |= Word{0xFF} << (BitBuffer::full - bits.count);
            bits.count += 8;
            bits.next += 2;
        } else {
            break;
        }
    }
    return bits;
}

// Makes all bits available that a marker does not keep back.
ALWAYS_INLINE void refill(BitBuffer& bits) {
    const Word ahead = load_big_endian(bits.next);
    if (has_ff(ahead)) {
        bits = refill_over_ff(bits);
        return;
    }
    bits.next += room_in_bytes(bits);
    bits.word |= ahead >> bits.count;
    bits.count |= BitBuffer::full;
}

// Where a code and its value may be longer than a full buffer.
ALWAYS_INLINE void refill_for_value(BitBuffer& bits) {
    if constexpr (BitBuffer::full < 2 * longest_code)
        refill(bits);
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

// The entry of the next code; 0 for an error.
ALWAYS_INLINE LookupEntry next_code(const BitBuffer& bits, const Lookup& lookup,
                                    const DecodeTable& table, int32_t row) {
    if (const LookupEntry entry = lookup.find(bits.peek(longest_code)))
        return entry;
    return walk_code(bits, table, row);
}

// Updates the predictor and gives the coefficient.
ALWAYS_INLINE bool read_dc(BitBuffer& bits, const FastReader::Tables& tables, int32_t shift,
                           int16_t& coefficient) {
    refill(bits);
    const LookupEntry entry = next_code(bits, *tables.dc, *tables.coding.dc, dc_row);
    if (entry == 0)
        return false;
    bits.drop(entry_length(entry));
    int16_t difference = entry_value(entry);
    if (const uint32_t size = entry_dc_size(entry)) {
        refill_for_value(bits);
        difference = extend(bits.take(size), size);
    }
    int16_t& predictor = *tables.coding.predictor;
    predictor = wrap16(predictor + difference);
    coefficient = shift16(wrap16(tables.coding.quantisation[0] * predictor), shift);
    return true;
}

// One AC symbol and what belongs to it, at position k, which moves on; by past_block more at the
// end of a block. Where bands may end, eob_run tells for how many blocks more. The bits have just
// been refilled.
ALWAYS_INLINE bool read_coefficient(BitBuffer& bits, const FastReader::Tables& tables,
                                    int32_t shift, int16_t* block, int32_t& k, int32_t* eob_run) {
    const LookupEntry entry = next_code(bits, *tables.ac, *tables.coding.ac, ac_row);
    if (entry == 0)
        return false;
    bits.drop(entry_length(entry));
    const uint32_t run = entry_run(entry);
    int16_t value = entry_value(entry);
    if (!has_ac_value(entry)) {
        switch (entry_kind(entry)) {
        case EntryKind::value: {
            const uint32_t size = entry_ac_size(entry);
            refill_for_value(bits);
            value = extend(bits.take(size), size);
            break;
        }
        case EntryKind::run_of_16:
            k += 16;
            return true;
        case EntryKind::end_of_band:
            if (eob_run == nullptr)
                return false;
            refill_for_value(bits);
            *eob_run = static_cast<int32_t>((1u << run) + bits.take(run) - 1);
            k += past_block;
            return true;
        case EntryKind::end_of_block:
            k += past_block;
            return true;
        }
    }
    k += static_cast<int32_t>(run);
    if (k > 63 || bits.count < 0)
        return false;
    block[block_place[static_cast<size_t>(k)]] =
        shift16(wrap16(tables.coding.quantisation[k] * value), shift);
    ++k;
    return true;
}

// A pair found at position k.
ALWAYS_INLINE void put_pair(const AcPair& pair, int16_t* block, size_t k) {
    const uint8_t* place = &block_place[k];
    block[place[pair.first]] = pair.value[0];
    block[place[pair.second]] = pair.value[1];
}

// One AC symbol of a baseline block, where the lookup gave no pair that lies inside it.
ALWAYS_INLINE bool read_single(BitBuffer& bits, const FastReader::Tables& tables,
                               const AcPair& pair, int16_t* block, size_t& k) {
    refill(bits);
    if (!is_coded_value(pair)) {
        auto position = static_cast<int32_t>(k);
        const bool good = read_coefficient(bits, tables, 0, block, position, nullptr);
        k = static_cast<size_t>(position);
        return good;
    }
    k += pair.first;
    if (k > 63)
        return false;
    bits.drop(pair.length);
    const auto size = static_cast<uint32_t>(pair.value[0]);
    block[block_place[k++]] = extend(bits.take(size), size);
    return true;
}

// The AC coefficients of a baseline block, not multiplied, and a zigzag position after which they are 0. The DC
// place may be overwritten.
ALWAYS_INLINE bool read_ac(BitBuffer& bits, const FastReader::Tables& tables, int16_t* block,
                           uint8_t& last) {
    constexpr int32_t lookups_per_refill = BitBuffer::full / lookup_bits;
    const AcPair* pairs = tables.pairs->entries;
    size_t k = 1;
    do {
        const AcPair* pair;
        refill(bits);
#pragma GCC unroll 8
        for (int32_t i = 0; i < lookups_per_refill; ++i) {
            const uint32_t index = bits.peek(lookup_bits);
            pair = &pairs[index];
            const uint32_t length = tables.pairs->lengths[index];
            const size_t next = k + pair->advance;
            if (next > 63)
                goto special;
            bits.drop(length);
            put_pair(*pair, block, k);
            k = next;
        }
        continue;
    special:
        if (k + pair->second < 63) {
            bits.drop(pair->length);
            put_pair(*pair, block, k);
            k += pair->advance;
            break;
        }
        // Behind the block's last place begins another block.
        if (!read_single(bits, tables, *pair, block, k))
            return false;
    } while (k <= 63);
    last = static_cast<uint8_t>(std::min<size_t>(k < past_block ? 63 : k - past_block - 1, 63));
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
    const int32_t used = entropy.bit_position;
    bits_ = {Word{entropy.current} << used << BitBuffer::full, 8 - used, entered_};
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
    int32_t unread = bits_.count / 8;
    for (; unread != 0 && next != entered_; --unread)
        next = before(next);
    EntropyState& entropy = state_.entropy;
    entropy.bit_position = 8 - bits_.count % 8 - 8 * unread;
    entropy.current = next == entered_ ? entered_byte_ : *before(next);
    state_.input.position = static_cast<size_t>(next - state_.input.bytes);
    moved_ = false;
}

bool FastReader::read_mcu(const Tables* const* tables, int32_t count, Block* blocks,
                          uint8_t* last) {
    const EntropyState& entropy = state_.entropy;
    const Scan& scan = state_.scan;
    if (!usable_ || scan.spectral_start != 0 || scan.spectral_end != 63 || scan.shift != 0 ||
        entropy.eob_run != 0)
        return false;
    if (bits_.next[0] == 0xFF)
        pass_restart();
    return try_mcu(tables, count, blocks, last);
}

bool FastReader::try_mcu(const Tables* const* tables, int32_t count, Block* blocks, uint8_t* last) {
    EntropyState& entropy = state_.entropy;
    BitBuffer bits = bits_;
    int16_t predictors[3];
    std::memcpy(predictors, entropy.predictor, sizeof predictors);
    for (int32_t i = 0; i < count; ++i) {
        int16_t dc = 0;
        if (!read_dc(bits, *tables[i], 0, dc) || !read_ac(bits, *tables[i], blocks[i], last[i]) ||
            bits.count < 0) {
            std::memcpy(entropy.predictor, predictors, sizeof predictors);
            std::memset(blocks, 0, static_cast<size_t>(count) * sizeof(Block));
            return false;
        }
        blocks[i][0] = dc;
    }
    entropy.first_block = count == 1;
    bits_ = bits;
    moved_ = true;
    return true;
}

// Goes behind a restart marker that comes next, as an encoder puts it between two MCUs: less than a
// byte of ones may stand before it, in which no table has a code.
void FastReader::pass_restart() {
    const BitBuffer bits = refill_over_ff(bits_);
    const Word padding = ~(~Word{0} >> bits.count);
    if (bits.count >= 8 || bits.word != padding || bits.next[0] != 0xFF ||
        !is_restart(bits.next[1]))
        return;
    std::fill(std::begin(state_.entropy.predictor), std::end(state_.entropy.predictor), int16_t{0});
    entered_ = bits.next + 2;
    entered_byte_ = 0xFF;
    bits_ = {0, 0, entered_};
    moved_ = true;
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
        int16_t dc;
        if (!read_dc(bits, tables, scan.shift, dc) || bits.count < 0) {
            *tables.coding.predictor = predictor;
            return false;
        }
        block[0] = dc;
    } else {
        int32_t eob_run = 0;
        for (int32_t k = scan.spectral_start; k <= scan.spectral_end;) {
            refill(bits);
            if (!read_coefficient(bits, tables, scan.shift, block, k, &eob_run))
                return false;
        }
        if (bits.count < 0)
            return false;
        entropy.eob_run = eob_run;
    }
    bits_ = bits;
    moved_ = true;
    return true;
}

} // namespace kirvo
