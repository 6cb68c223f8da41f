#include "jpeg/decode/careful.hpp"

#include <algorithm>

namespace kirvo {

namespace {

constexpr uint8_t end_of_image = 0xD9, start_of_scan = 0xDA;
constexpr uint8_t highest_dc_category = 16;

} // namespace

Status CarefulReader::prime() {
    entropy_.bit_position = 0;
    entropy_.pending_ff = false;
    entropy_.current = input_.empty() ? 0 : input_.take();
    if (entropy_.current != 0xFF)
        return Status::ok;
    while (!input_.empty()) {
        const uint8_t byte = input_.take();
        if (byte == 0)
            return Status::ok;
        if (byte != 0xFF) {
            unexpected_marker(byte);
            return Status::jpeg_marker;
        }
    }
    entropy_.pending_ff = true;
    return Status::ok;
}

CarefulReader::Read CarefulReader::unexpected_marker(uint8_t marker) {
    state_.unexpected = {static_cast<uint32_t>(input_.position), marker};
    return Read::marker;
}

void CarefulReader::restart() {
    std::fill(std::begin(entropy_.predictor), std::end(entropy_.predictor), int16_t{0});
    walk_.restart();
}

// When the input has ended, the current byte is read again: nothing waits inside an MCU.
CarefulReader::Read CarefulReader::load_byte() {
    entropy_.bit_position = 0;
    while (!input_.empty()) {
        if (!entropy_.pending_ff) {
            entropy_.current = input_.take();
            if (entropy_.current != 0xFF)
                return Read::ok;
        }
        uint8_t byte = 0xFF;
        while (byte == 0xFF && !input_.empty())
            byte = input_.take();
        entropy_.pending_ff = byte == 0xFF;
        if (is_restart(byte)) {
            restart();
            if (entropy_.first_block)
                return Read::restarted;
            continue;
        }
        if (byte == end_of_image)
            state_.stop = true;
        else if (byte == start_of_scan)
            state_.scan_marker = true;
        else if (byte != 0 && byte != 0xFF)
            return unexpected_marker(byte);
        return Read::ok;
    }
    return Read::ok;
}

CarefulReader::Read CarefulReader::next_bit(uint32_t& bit) {
    if (entropy_.bit_position == 8) {
        const Read loaded = load_byte();
        if (loaded != Read::ok)
            return loaded;
    }
    bit = entropy_.current >> (7 - entropy_.bit_position) & 1;
    ++entropy_.bit_position;
    return Read::ok;
}

CarefulReader::Read CarefulReader::receive(uint32_t count, uint32_t& value) {
    value = 0;
    for (; count != 0; --count) {
        uint32_t bit;
        const Read read = next_bit(bit);
        if (read != Read::ok)
            return read;
        value = value << 1 | bit;
    }
    return Read::ok;
}

CarefulReader::Read CarefulReader::read_symbol(const DecodeTable& table, int32_t row,
                                               uint8_t& symbol) {
    walk_ = SymbolWalk::begin();
    for (;;) {
        uint32_t bit;
        const Read read = next_bit(bit);
        if (read != Read::ok)
            return read;
        switch (walk_.step(table, row, bit, symbol)) {
        case SymbolWalk::Outcome::found:
            return Read::ok;
        case SymbolWalk::Outcome::no_such_code:
            return Read::no_such_code;
        case SymbolWalk::Outcome::go_on:
            break;
        }
    }
}

// Puts a dequantised coefficient in its place, or adds it there in a refinement scan.
void CarefulReader::put(Block& block, int32_t k, int16_t value) const {
    int16_t& place = block[block_place[static_cast<size_t>(k)]];
    value = shift16(value, state_.scan.shift);
    place = state_.scan.refined_from != 0 ? wrap16(place + value) : value;
}

CarefulReader::Read CarefulReader::read_dc(const BlockCoding& coding, Block& block) {
    uint8_t category = 0;
    Read read = read_symbol(*coding.dc, dc_row, category);
    if (read != Read::ok)
        return read;
    if (category > highest_dc_category)
        return Read::no_such_code;
    if (category != 0) {
        uint32_t bits;
        read = receive(category, bits);
        if (read != Read::ok)
            return read;
        *coding.predictor = wrap16(*coding.predictor + extend(bits, category));
    }
    put(block, 0, wrap16(coding.quantisation[0] * *coding.predictor));
    return Read::ok;
}

CarefulReader::Read CarefulReader::read_ac(const BlockCoding& coding, int32_t first, Block& block) {
    if (entropy_.eob_run > 0) {
        --entropy_.eob_run;
        return Read::ok;
    }
    for (int32_t k = first; k <= state_.scan.spectral_end; ++k) {
        uint8_t symbol = 0;
        Read read = read_symbol(*coding.ac, ac_row, symbol);
        if (read != Read::ok)
            return read;
        const uint32_t run = symbol >> 4, category = symbol & 15;
        if (category == 0 && run != 15) { // end of block, or of a band of blocks
            uint32_t bits;
            read = receive(run, bits);
            if (read != Read::ok)
                return read;
            entropy_.eob_run = static_cast<int32_t>((1u << run) + bits - 1);
            return Read::ok;
        }
        k += static_cast<int32_t>(run);
        if (category != 0) {
            uint32_t bits;
            read = receive(category, bits);
            if (read != Read::ok)
                return read;
            if (k < 64)
                put(block, k, wrap16(coding.quantisation[k] * extend(bits, category)));
        }
    }
    return Read::ok;
}

CarefulReader::Read CarefulReader::try_block(const BlockCoding& coding, Block& block) {
    int32_t first = state_.scan.spectral_start;
    if (first == 0) {
        const Read read = read_dc(coding, block);
        if (read != Read::ok || state_.scan.spectral_end < 1)
            return read;
        first = 1;
    }
    return read_ac(coding, first, block);
}

Status CarefulReader::read_block(const BlockCoding& coding, Block& block) {
    Read read = try_block(coding, block);
    while (read == Read::restarted) {
        do
            read = load_byte();
        while (read == Read::restarted);
        if (read == Read::ok)
            read = try_block(coding, block);
    }
    switch (read) {
    case Read::marker:
        return Status::jpeg_marker;
    case Read::no_such_code:
        return Status::jpeg_huffman;
    default:
        return Status::ok;
    }
}

} // namespace kirvo
