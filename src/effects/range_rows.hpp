// Rows of 24-bit pixels of which those stay whose three values lie in ranges; the others become
// black. Any count, any alignment; both rows may be the same.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kirvo {

// Values that pass: those from lowest to lowest + extent, or all the others.
struct Span {
    int32_t lowest, extent; // both from 0 on
    bool outside;

    bool passes(int32_t value) const {
        return (value >= lowest && value <= lowest + extent) != outside;
    }
};

struct RangeRows {
    // Spans of red, green and blue.
    void (*rgb)(uint8_t* to, const uint8_t* from, size_t pixels, const Span (&spans)[3]);
    // Spans of hue, saturation and value. What stays is made from these again.
    void (*hsv)(uint8_t* to, const uint8_t* from, size_t pixels, const Span (&spans)[3]);
};

// The rows for this machine.
const RangeRows& range_rows();

extern const RangeRows scalar_range_rows;
namespace sse2 {
extern const RangeRows range_rows;
}
namespace avx2 {
extern const RangeRows range_rows;
}
namespace avx512 {
extern const RangeRows range_rows; // needs VBMI
}

} // namespace kirvo
