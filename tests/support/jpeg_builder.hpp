// JPEG streams for tests, made of random coefficients and Huffman tables of any shape.
#pragma once

#include "support/jpeg_reference.hpp"
#include "support/random.hpp"

#include <array>
#include <cstdint>
#include <vector>

namespace kirvo_test {

// A Huffman table with its code words.
struct CodeBook {
    std::array<uint8_t, 16> counts{};
    Bytes symbols;
    std::array<uint32_t, 256> code{};
    std::array<int, 256> length{}; // 0: not in the table

    CodeBook() = default;
    CodeBook(const std::array<uint8_t, 16>& counts, const Bytes& symbols);
};

// Codes of random lengths up to 16 for these symbols; none consists of ones alone.
CodeBook random_book(const Bytes& symbols, Random& random);
Bytes dc_categories(int highest = 11);
Bytes ac_symbols(bool with_bands); // runs and sizes to 10, end of block, run of 16; bands of blocks

// Entropy-coded data, most significant bit first, with a 0x00 after each 0xFF.
class EntropyWriter {
  public:
    void put(uint32_t bits, int count);
    void put_symbol(const CodeBook& book, int symbol);
    void put_value(int value, int size); // the bits that follow a symbol of this size
    void align();                        // fills the byte with ones
    void put_marker(int code, int fill_bytes = 0);

    Bytes bytes;

  private:
    uint32_t held_ = 0;
    int count_ = 0;
};

int size_of(int value); // category

enum class Sampling { grey, s1x1, s2x1, s1x2, s2x2, s2x2_2x1, s2x2_1x2 };
constexpr Sampling all_samplings[] = {Sampling::grey,    Sampling::s1x1, Sampling::s2x1,
                                      Sampling::s1x2,    Sampling::s2x2, Sampling::s2x2_2x1,
                                      Sampling::s2x2_1x2};

struct ScanPlan {
    std::vector<int> ids; // of its components
    int ss = 0, se = 63, ah = 0, al = 0;
};

struct JpegPlan {
    int width = 16, height = 16;
    Sampling sampling = Sampling::s2x2;
    std::array<int, 3> ids{1, 2, 3};
    std::array<int, 3> selectors{0, 1, 1};
    int restart_every = 0; // MCUs
    bool fill_bytes = false;
    int coefficients = 6;          // in a block, about
    int largest = 60;              // of an AC value
    std::vector<ScanPlan> scans{}; // progressive when there are any
    std::vector<std::string> comments{};
    Bytes after{}; // bytes behind EOI
};

void add_segment(Bytes& stream, int marker, const Bytes& content);
Bytes build_jpeg(const JpegPlan& plan, Random& random);

// A plan with everything drawn by lot, of at most the given size.
JpegPlan random_plan(Random& random, int largest_side, bool progressive);

} // namespace kirvo_test
