#include "jpeg_huffman.hpp"

#include <algorithm>

namespace kirvo_files {
namespace {

// ITU-T T.81, tables K.3 to K.6: how many codes of each length, and the symbols.
constexpr uint8_t dc_luma[] = {0x00, 0x01, 0x05, 0x01, 0x01, 0x01, 0x01, 0x01, 0x01, 0x00,
                               0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x01, 0x02, 0x03,
                               0x04, 0x05, 0x06, 0x07, 0x08, 0x09, 0x0A, 0x0B};
constexpr uint8_t dc_chroma[] = {0x00, 0x03, 0x01, 0x01, 0x01, 0x01, 0x01, 0x01, 0x01, 0x01,
                                 0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x01, 0x02, 0x03,
                                 0x04, 0x05, 0x06, 0x07, 0x08, 0x09, 0x0A, 0x0B};
constexpr uint8_t ac_luma[] = {
    0x00, 0x02, 0x01, 0x03, 0x03, 0x02, 0x04, 0x03, 0x05, 0x05, 0x04, 0x04, 0x00, 0x00, 0x01,
    0x7D, 0x01, 0x02, 0x03, 0x00, 0x04, 0x11, 0x05, 0x12, 0x21, 0x31, 0x41, 0x06, 0x13, 0x51,
    0x61, 0x07, 0x22, 0x71, 0x14, 0x32, 0x81, 0x91, 0xA1, 0x08, 0x23, 0x42, 0xB1, 0xC1, 0x15,
    0x52, 0xD1, 0xF0, 0x24, 0x33, 0x62, 0x72, 0x82, 0x09, 0x0A, 0x16, 0x17, 0x18, 0x19, 0x1A,
    0x25, 0x26, 0x27, 0x28, 0x29, 0x2A, 0x34, 0x35, 0x36, 0x37, 0x38, 0x39, 0x3A, 0x43, 0x44,
    0x45, 0x46, 0x47, 0x48, 0x49, 0x4A, 0x53, 0x54, 0x55, 0x56, 0x57, 0x58, 0x59, 0x5A, 0x63,
    0x64, 0x65, 0x66, 0x67, 0x68, 0x69, 0x6A, 0x73, 0x74, 0x75, 0x76, 0x77, 0x78, 0x79, 0x7A,
    0x83, 0x84, 0x85, 0x86, 0x87, 0x88, 0x89, 0x8A, 0x92, 0x93, 0x94, 0x95, 0x96, 0x97, 0x98,
    0x99, 0x9A, 0xA2, 0xA3, 0xA4, 0xA5, 0xA6, 0xA7, 0xA8, 0xA9, 0xAA, 0xB2, 0xB3, 0xB4, 0xB5,
    0xB6, 0xB7, 0xB8, 0xB9, 0xBA, 0xC2, 0xC3, 0xC4, 0xC5, 0xC6, 0xC7, 0xC8, 0xC9, 0xCA, 0xD2,
    0xD3, 0xD4, 0xD5, 0xD6, 0xD7, 0xD8, 0xD9, 0xDA, 0xE1, 0xE2, 0xE3, 0xE4, 0xE5, 0xE6, 0xE7,
    0xE8, 0xE9, 0xEA, 0xF1, 0xF2, 0xF3, 0xF4, 0xF5, 0xF6, 0xF7, 0xF8, 0xF9, 0xFA};
constexpr uint8_t ac_chroma[] = {
    0x00, 0x02, 0x01, 0x02, 0x04, 0x04, 0x03, 0x04, 0x07, 0x05, 0x04, 0x04, 0x00, 0x01, 0x02,
    0x77, 0x00, 0x01, 0x02, 0x03, 0x11, 0x04, 0x05, 0x21, 0x31, 0x06, 0x12, 0x41, 0x51, 0x07,
    0x61, 0x71, 0x13, 0x22, 0x32, 0x81, 0x08, 0x14, 0x42, 0x91, 0xA1, 0xB1, 0xC1, 0x09, 0x23,
    0x33, 0x52, 0xF0, 0x15, 0x62, 0x72, 0xD1, 0x0A, 0x16, 0x24, 0x34, 0xE1, 0x25, 0xF1, 0x17,
    0x18, 0x19, 0x1A, 0x26, 0x27, 0x28, 0x29, 0x2A, 0x35, 0x36, 0x37, 0x38, 0x39, 0x3A, 0x43,
    0x44, 0x45, 0x46, 0x47, 0x48, 0x49, 0x4A, 0x53, 0x54, 0x55, 0x56, 0x57, 0x58, 0x59, 0x5A,
    0x63, 0x64, 0x65, 0x66, 0x67, 0x68, 0x69, 0x6A, 0x73, 0x74, 0x75, 0x76, 0x77, 0x78, 0x79,
    0x7A, 0x82, 0x83, 0x84, 0x85, 0x86, 0x87, 0x88, 0x89, 0x8A, 0x92, 0x93, 0x94, 0x95, 0x96,
    0x97, 0x98, 0x99, 0x9A, 0xA2, 0xA3, 0xA4, 0xA5, 0xA6, 0xA7, 0xA8, 0xA9, 0xAA, 0xB2, 0xB3,
    0xB4, 0xB5, 0xB6, 0xB7, 0xB8, 0xB9, 0xBA, 0xC2, 0xC3, 0xC4, 0xC5, 0xC6, 0xC7, 0xC8, 0xC9,
    0xCA, 0xD2, 0xD3, 0xD4, 0xD5, 0xD6, 0xD7, 0xD8, 0xD9, 0xDA, 0xE2, 0xE3, 0xE4, 0xE5, 0xE6,
    0xE7, 0xE8, 0xE9, 0xEA, 0xF2, 0xF3, 0xF4, 0xF5, 0xF6, 0xF7, 0xF8, 0xF9, 0xFA};

} // namespace

Bytes usual_huffman_table(uint32_t kind, uint32_t number) {
    if (kind == 0)
        return number == 0 ? Bytes(dc_luma, sizeof dc_luma) : Bytes(dc_chroma, sizeof dc_chroma);
    return number == 0 ? Bytes(ac_luma, sizeof ac_luma) : Bytes(ac_chroma, sizeof ac_chroma);
}

bool HuffmanTable::make(Bytes table) {
    if (table.size() < 16)
        return false;
    uint32_t code = 0, symbol = 0;
    for (uint32_t length = 1; length <= 16; ++length) {
        first_code[length] = code;
        first_symbol[length] = symbol;
        const uint32_t count = table[length - 1];
        if (code + count > 1u << length)
            return false;
        for (uint32_t i = 0; i < count; ++i, ++code, ++symbol) {
            const uint8_t value = table[16 + symbol];
            symbols[symbol & 255] = value;
            if (length <= look)
                std::fill_n(quick + (code << (look - length)), 1u << (look - length),
                            static_cast<uint16_t>(length << 8 | value));
        }
        end_code[length] = code;
        code <<= 1;
    }
    return true;
}

void HuffmanCode::make(Bytes table) {
    uint32_t code = 0, symbol = 0;
    for (uint32_t length = 1; length <= 16; ++length) {
        for (uint32_t i = 0; i < table[length - 1]; ++i, ++code, ++symbol) {
            bits[table[16 + symbol]] = static_cast<uint16_t>(code);
            lengths[table[16 + symbol]] = static_cast<uint8_t>(length);
        }
        code <<= 1;
    }
}

// ITU-T T.81, figures K.1 to K.4. One more symbol, the rarest, takes the code of ones alone, which no
// table may have.
Bytes SymbolCounts::best_table() {
    constexpr uint32_t symbols = 257;
    int32_t present[symbols], nodes = 0; // symbols that there are
    int32_t next[symbols];               // the symbols below one node, as a list
    uint32_t length[symbols] = {}, of_length[symbols] = {};
    uint64_t weight[symbols];
    counts_[256] = 1;
    for (uint32_t i = 0; i < symbols; ++i) {
        next[i] = -1;
        weight[i] = counts_[i];
        if (weight[i] != 0)
            present[nodes++] = static_cast<int32_t>(i);
    }
    while (true) {
        int32_t least = -1, second = -1;
        for (int32_t k = 0; k < nodes; ++k) {
            const int32_t i = present[k];
            if (weight[i] == 0)
                continue;
            if (least < 0 || weight[i] <= weight[least]) {
                second = least;
                least = i;
            } else if (second < 0 || weight[i] <= weight[second]) {
                second = i;
            }
        }
        if (second < 0)
            break;
        weight[second] += weight[least];
        weight[least] = 0;
        int32_t last = second;
        for (int32_t i = second; i >= 0; last = i, i = next[i])
            ++length[i];
        next[last] = least;
        for (int32_t i = least; i >= 0; i = next[i])
            ++length[i];
    }
    for (uint32_t i = 0; i < symbols; ++i)
        ++of_length[length[i]];
    for (uint32_t i = symbols - 1; i > 16; --i)
        while (of_length[i] > 0) { // a pair moves up, another one goes down with a shorter code
            uint32_t j = i - 2;
            while (of_length[j] == 0)
                --j;
            of_length[i] -= 2;
            ++of_length[i - 1];
            of_length[j + 1] += 2;
            --of_length[j];
        }
    uint32_t longest = 16;
    while (of_length[longest] == 0)
        --longest;
    --of_length[longest]; // of the symbol that is none
    size_t count = 16;
    for (uint32_t i = 1; i <= 16; ++i)
        table_[i - 1] = static_cast<uint8_t>(of_length[i]);
    const int32_t last = nodes - 1; // the one that is none
    for (uint32_t bits = 1; count < 16 + static_cast<size_t>(last); ++bits)
        for (int32_t k = 0; k < last; ++k)
            if (length[present[k]] == bits)
                table_[count++] = static_cast<uint8_t>(present[k]);
    return {table_, count};
}

void HuffmanSteps::make(Bytes table) {
    HuffmanCode code;
    code.make(table);
    for (uint32_t symbol = 0; symbol < 256; ++symbol) {
        const uint32_t length = code.lengths[symbol];
        if (length == 0 || length > look)
            continue;
        const uint32_t run = symbol >> 4, size = symbol & 15;
        const uint32_t coefficients = size == 0 && run != 15 ? end_of_block : run + 1;
        const auto step = static_cast<uint16_t>(coefficients << 9 | size << 5 | (length + size));
        std::fill_n(steps_ + (size_t{code.bits[symbol]} << (look - length)), 1u << (look - length),
                    step);
    }
}

// Eight bytes, of which none is 0xFF; what does not fit is taken again the next time.
bool EntropyBits::fill_at_once() {
    if (marker_ || size_ - at_ < 8 || at_ > size_)
        return false;
    uint64_t word = 0;
    for (uint32_t i = 0; i < 8; ++i)
        word = word << 8 | data_[at_ + i];
    constexpr uint64_t ones = 0x0101010101010101, tops = 0x8080808080808080;
    if (((~word - ones) & word & tops) != 0)
        return false;
    bits_ |= word >> count_;
    const uint32_t taken = (63 - count_) / 8;
    at_ += taken;
    count_ += 8 * taken;
    return true;
}

void EntropyBits::fill() {
    if (fill_at_once())
        return;
    while (count_ <= 56) {
        uint8_t byte = 0;
        if (marker_ || at_ >= size_) {
            starved_by_ += 8;
        } else if (data_[at_] != 0xFF) {
            byte = data_[at_++];
        } else if (at_ + 1 < size_ && data_[at_ + 1] == 0) {
            byte = 0xFF;
            at_ += 2;
        } else {
            marker_ = true;
            starved_by_ += 8;
        }
        bits_ |= static_cast<uint64_t>(byte) << (56 - count_);
        count_ += 8;
    }
}

int32_t EntropyBits::symbol(const HuffmanTable& table) {
    if (count_ < 32)
        fill();
    const uint16_t quick = table.quick[bits_ >> (64 - HuffmanTable::look)];
    if (quick != 0) {
        drop(quick >> 8);
        return quick & 255;
    }
    for (uint32_t length = HuffmanTable::look + 1; length <= 16; ++length) {
        const auto code = static_cast<uint32_t>(bits_ >> (64 - length));
        if (code < table.end_code[length] && code >= table.first_code[length]) {
            drop(length);
            return table
                .symbols[(table.first_symbol[length] + code - table.first_code[length]) & 255];
        }
    }
    if (left() < 16)
        starved_ = true; // the code is cut
    else
        wrong_ = true;
    return -1;
}

int32_t EntropyBits::value(uint32_t size) {
    if (size == 0)
        return 0;
    const auto raw = static_cast<int32_t>(bits_ >> (64 - size));
    drop(size);
    return raw < 1 << (size - 1) ? raw - (1 << size) + 1 : raw;
}

uint32_t EntropyBits::raw(uint32_t count) {
    if (count == 0)
        return 0;
    if (count_ < 32)
        fill();
    const auto bits = static_cast<uint32_t>(bits_ >> (64 - count));
    drop(count);
    return bits;
}

// At most a byte of filling is left, then the next marker of the eight follows.
bool EntropyBits::restart() {
    while (at_ + 1 < size_ && data_[at_] == 0xFF && data_[at_ + 1] == 0xFF)
        ++at_;
    if (at_ + 1 >= size_) {
        starved_ = true;
        return false;
    }
    if (left() >= 8 || data_[at_] != 0xFF || data_[at_ + 1] != (0xD0 | restarts_)) {
        wrong_ = data_[at_ + 1] != 0xD9; // an end in place of it: the rest was cut
        starved_ = !wrong_;
        return false;
    }
    restarts_ = (restarts_ + 1) & 7;
    at_ += 2;
    bits_ = 0;
    count_ = starved_by_ = 0;
    marker_ = false;
    return true;
}

bool EntropyBits::is_at_end() const {
    const auto is_filling = [](uint8_t byte) { return byte == 0 || byte == 0xFF; };
    for (uint32_t i = left() % 8; i + 8 <= left(); i += 8)
        if (!is_filling(static_cast<uint8_t>(bits_ << i >> 56)))
            return false;
    size_t at = at_;
    while (at < size_ && is_filling(data_[at])) {
        if (data_[at] == 0xFF && at + 1 < size_ && !is_filling(data_[at + 1]))
            return true;
        ++at;
    }
    return at >= size_;
}

} // namespace kirvo_files
