// What the tests of colour reduction share: the blocks that results are compared with, and the
// functions under test in one list.
#pragma once

#include "support/direct_colour.hpp"
#include "support/progress_recorder.hpp"

#include <gtest/gtest.h>

namespace kirvo_test {

using Reduce = HGLOBAL(WINAPI*)(HGLOBAL, int32_t*);

// Runs a conversion that must succeed.
inline Dib run(Reduce reduce, const Dib& from) {
    const std::vector<uint8_t> before = block_bytes(from);
    int32_t status = 77;
    Dib result(reduce(from, &status));
    EXPECT_EQ(status, KIRVO_OK);
    EXPECT_EQ(block_bytes(from), before);
    EXPECT_TRUE(is_unlocked(from));
    EXPECT_TRUE(is_unlocked(result));
    return result;
}

inline void expect_refused(Reduce reduce, HGLOBAL from, int32_t expected) {
    int32_t status = 77;
    EXPECT_EQ(reduce(from, &status), nullptr);
    EXPECT_EQ(status, expected);
    EXPECT_EQ(reduce(from, nullptr), nullptr);
    EXPECT_TRUE(from == nullptr || is_unlocked(from));
}

// Rows at the stride that keeps 16 bits of a row's bit count.
inline size_t stride_of_16_bits(int64_t width, int bits) {
    return static_cast<size_t>((width * bits + 31) / 32 * 32 % 65536 / 8);
}

// The block of an indexed image. Rows are written one after the other, bottom first, each over
// what was there.
struct IndexedImage {
    int32_t width, height;
    int bits;
    uint32_t colours_used;
    std::vector<Colour> palette;
    std::vector<uint8_t> indices; // of every pixel, bottom row first

    std::vector<uint8_t> block(size_t stride) const {
        DibSpec spec{width, height, bits};
        std::vector<uint8_t> bytes = block_bytes(make_dib(spec));
        for (int i = 0; i < 4; ++i)
            bytes[32 + size_t(i)] = uint8_t(colours_used >> 8 * i);
        for (size_t i = 0; i < palette.size(); ++i) {
            bytes[40 + 4 * i] = palette[i].blue;
            bytes[41 + 4 * i] = palette[i].green;
            bytes[42 + 4 * i] = palette[i].red;
        }
        const size_t start = 40 + (size_t{4} << bits);
        for (size_t row = 0; row < size_t(height); ++row)
            for (size_t x = 0; x < size_t(width); ++x) {
                const uint8_t index = indices[row * size_t(width) + x];
                uint8_t& byte = bytes[start + row * stride + x * size_t(bits) / 8];
                if (bits == 8)
                    byte = index;
                else if (x % 2 == 0)
                    byte = uint8_t(index << 4);
                else
                    byte = uint8_t(byte + index);
            }
        return bytes;
    }
    std::vector<uint8_t> block() const { return block(size_t(stride_of(width, bits))); }
};

// The images that a conversion from true colour is tested with: 24 bits, and 32 bits with masks of
// all kinds.
inline DibSpec true_colour_spec(int32_t width, int32_t height, Random& random) {
    DibSpec spec{width, height, 24};
    spec.padding = random.byte();
    switch (random.between(0, 5)) {
    case 0:
        return {width, height, 32, masks_888};
    case 1:
        return {width, height, 32, masks_bgr888};
    case 2:
        return {width, height, 32,
                Masks{random.next() & random.next(), random.next() >> random.between(0, 31),
                      random.next() & 0xFF}};
    case 3:
        spec.colours_used = static_cast<uint32_t>(random.between(0, 5));
        return spec;
    default:
        return spec;
    }
}

} // namespace kirvo_test
