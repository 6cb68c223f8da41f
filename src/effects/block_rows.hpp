// Row kernels of operations on blocks of pixels, one set per instruction level. Sources and
// destinations do not overlap, except where said.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kirvo {

// The largest (or smallest) of two rows, element by element.
template<typename T>
using PickRow = void (*)(T* to, const T* a, const T* b, size_t count);

// Of four rows, which may overlap each other.
template<typename T>
using PickFourRows = void (*)(T* to, const T* a, const T* b, const T* c, const T* d, size_t count);

// Takes a row into the running extreme, which is updated in place; `to` becomes the extreme of that
// and a further row.
template<typename T>
using PickTwoRows = void (*)(T* to, T* running, const T* row, const T* other, size_t count);

struct BlockRows {
    PickRow<uint8_t> highest8, lowest8;
    PickTwoRows<uint8_t> highest_two8, lowest_two8;
    PickFourRows<uint8_t> highest_four8, lowest_four8;
    PickRow<uint16_t> highest16;
    PickTwoRows<uint16_t> highest_two16;
    PickFourRows<uint32_t> highest_four32; // of numbers below 2^31
    // sums[i] += row[i]
    void (*add)(uint32_t* sums, const uint8_t* row, size_t count);
};

extern const BlockRows baseline_block_rows;
namespace avx2 {
extern const BlockRows block_rows;
}
namespace avx512 {
extern const BlockRows block_rows;
}

// The set for the CPU level of now.
const BlockRows& block_rows();

} // namespace kirvo
