// Huffman codes of JPEG: tables, the bits of a scan, and the tables that encoders usually use.
#pragma once

#include "jpeg_headers.hpp"

namespace kirvo_files {

// Codes of up to 9 bits by one look; longer ones by their lengths.
class HuffmanTable {
  public:
    // From 16 counts and the symbols; false for what is no code.
    bool make(Bytes table);

    static constexpr uint32_t look = 9;
    uint16_t quick[1 << look] = {}; // length and symbol
    uint32_t first_code[17] = {}, end_code[17] = {}, first_symbol[17] = {};
    uint8_t symbols[256] = {};
};

// The code of each symbol; length 0 for one that has none.
struct HuffmanCode {
    uint16_t bits[256] = {};
    uint8_t lengths[256] = {};
    void make(Bytes table);
};

// The symbols' counts, and the best table for them: 16 counts of lengths and the symbols.
class SymbolCounts {
  public:
    void add(uint32_t symbol) { ++counts_[symbol]; }
    Bytes best_table();

  private:
    uint32_t counts_[257] = {};
    uint8_t table_[16 + 256] = {};
};

// How far each code of AC leads when its value is passed over: bits of the stream, and coefficients.
class HuffmanSteps {
  public:
    static constexpr uint32_t look = 11;
    static constexpr uint32_t end_of_block = 100; // more coefficients than any run leads over

    void make(Bytes table);
    uint16_t at(uint64_t bits) const { return steps_[bits >> (64 - look)]; }
    static uint32_t bits(uint16_t step) { return step & 31u; }
    static uint32_t size(uint16_t step) { return step >> 5 & 15u; } // of the value
    static uint32_t coefficients(uint16_t step) { return step >> 9; }

  private:
    uint16_t steps_[1 << look] = {}; // 0 where the code is longer, or none
};

// The table of ITU-T T.81 annex K: kind 0 for DC, 1 for AC; number 0 for luma, 1 for chroma.
Bytes usual_huffman_table(uint32_t kind, uint32_t number);

// The bits of a scan. Behind the end of the data, or a marker, they are 0 and it is starved.
class EntropyBits {
  public:
    EntropyBits(Bytes bytes, uint64_t at)
        : data_(bytes.data()), at_(static_cast<size_t>(at)), size_(bytes.size()) {}

    // The next symbol; -1 where there is no such code.
    int32_t symbol(const HuffmanTable& table);
    // The number that so many bits stand for, right behind its symbol.
    int32_t value(uint32_t size);
    // Up to 16 bits as they are.
    uint32_t raw(uint32_t count);
    // Passes over a code and its value; 0, at the same place, where the table does not have it.
    uint16_t step(const HuffmanSteps& steps, uint32_t& coefficient) {
        if (count_ < 32)
            fill();
        const uint16_t step = steps.at(bits_);
        bits_ <<= HuffmanSteps::bits(step);
        count_ -= HuffmanSteps::bits(step);
        coefficient += HuffmanSteps::coefficients(step);
        return step;
    }
    // Goes on behind the restart marker that is next.
    bool restart();

    // Whether nothing but filling comes before the next marker.
    bool is_at_end() const;

    // What is left of the data has become less than nothing, and stays so.
    bool starved() const { return starved_ || count_ < starved_by_; }
    bool wrong() const { return wrong_; }
    void found_wrong() { wrong_ = !starved(); }
    size_t at() const { return at_; }

  private:
    void fill();
    bool fill_at_once();
    void drop(uint32_t n) {
        bits_ <<= n;
        count_ -= n;
        if (count_ < starved_by_)
            starved_ = true;
    }
    uint32_t left() const { return count_ > starved_by_ ? count_ - starved_by_ : 0; }

    const uint8_t* data_;
    size_t at_, size_;
    uint64_t bits_ = 0;
    uint32_t count_ = 0, starved_by_ = 0, restarts_ = 0;
    bool marker_ = false, starved_ = false, wrong_ = false;
};

} // namespace kirvo_files
