// Rows of pixels of any masks to other depths, against the channel rules taken literally.

#include "image/pixels.hpp"

#include "support/direct_colour.hpp"
#include "support/random.hpp"

#include <gtest/gtest.h>
#include <vector>

using namespace kirvo;
using namespace kirvo_test;

namespace {

// Masks as the tests of the library's users name them.
kirvo_test::Masks named(const uint32_t (&masks)[3]) { return {masks[0], masks[1], masks[2]}; }

// Position of a mask's lowest one bit, and the length of the run of ones from there.
int low_zeros(uint32_t mask, int bits) {
    int n = 0;
    while (n < bits && !(mask >> n & 1))
        ++n;
    return n;
}

PixelFormat format_of(int bits, const uint32_t (&masks)[3]) {
    PixelFormat format = {bits, {}};
    for (int c = 0; c < 3; ++c) {
        const int low = low_zeros(masks[c], bits);
        const int run = low == bits ? 0 : low_zeros(~(masks[c] >> low), bits - low);
        format.masks.mask[c] = masks[c];
        format.masks.shift[c] = low;
        format.masks.widen[c] = bits == 16 ? 8 - run : 0;
    }
    return format;
}

std::vector<uint8_t> expected_unpacked(const std::vector<uint8_t>& row, int bits,
                                       const uint32_t (&masks)[3]) {
    const size_t bytes = static_cast<size_t>(bits) / 8;
    std::vector<uint8_t> bgr;
    for (size_t i = 0; i + bytes <= row.size(); i += bytes) {
        uint32_t pixel = 0;
        for (size_t b = 0; b < bytes; ++b)
            pixel += static_cast<uint32_t>(row[i + b]) << 8 * b;
        const Colour colour = colour_of(pixel, bits, named(masks));
        bgr.insert(bgr.end(), {colour.blue, colour.green, colour.red});
    }
    return bgr;
}

std::vector<uint8_t> expected_packed(const std::vector<uint8_t>& bgr, int bits,
                                     const uint32_t (&masks)[3]) {
    std::vector<uint8_t> row;
    for (size_t i = 0; i < bgr.size(); i += 3) {
        const uint32_t pixel = pixel_of({bgr[i + 2], bgr[i + 1], bgr[i]}, bits, named(masks));
        for (int b = 0; b < bits / 8; ++b)
            row.push_back(static_cast<uint8_t>(pixel >> 8 * b));
    }
    return row;
}

std::vector<uint8_t> random_row(size_t bytes, Random& random) {
    std::vector<uint8_t> row(bytes);
    random.fill(row.data(), bytes);
    return row;
}

void check_both_ways(int bits, const uint32_t (&masks)[3], size_t count, Random& random) {
    const PixelFormat format = format_of(bits, masks);
    const std::vector<uint8_t> row = random_row(format.bytes() * count, random);
    std::vector<uint8_t> bgr(3 * count);
    unpack_row(format, row.data(), bgr.data(), count);
    EXPECT_EQ(bgr, expected_unpacked(row, bits, masks));

    bgr = random_row(3 * count, random);
    std::vector<uint8_t> packed(row.size());
    pack_row(format, bgr.data(), packed.data(), count);
    EXPECT_EQ(packed, expected_packed(bgr, bits, masks));
}

constexpr uint32_t usual16[][3] = {{0x7C00, 0x03E0, 0x001F}, {0xF800, 0x07E0, 0x001F}};
constexpr uint32_t usual32[][3] = {{0xFF0000, 0x00FF00, 0x0000FF}};
constexpr uint32_t unusual16[][3] = {{0x001F, 0x03E0, 0x7C00}, {0x0F00, 0x00F0, 0x000F},
                                     {0xFFC0, 0x003E, 0x0001}, {0xFFFF, 0xFFFF, 0xFFFF},
                                     {0x0000, 0x8000, 0x0001}, {0x8001, 0x0505, 0x7FFE},
                                     {0x1FF0, 0x0000, 0xFF00}};
constexpr uint32_t unusual32[][3] = {
    {0x0000FF, 0x00FF00, 0xFF0000},       {0xFF000000, 0xFF0000, 0xFF00},
    {0x3FF00000, 0x000FFC00, 0x000003FF}, {0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF},
    {0x00000000, 0x80000000, 0x00000001}, {0xF0F0F0F0, 0x00018001, 0x0000001F},
    {0xFE000000, 0x000001FE, 0x7FFFFFFE}};

template<size_t n>
void check_all(int bits, const uint32_t (&formats)[n][3]) {
    Random random(17);
    for (const auto& masks : formats) {
        SCOPED_TRACE(testing::Message()
                     << std::hex << masks[0] << ' ' << masks[1] << ' ' << masks[2]);
        check_both_ways(bits, masks, 1021, random);
    }
}

TEST(PixelRows, UsualMasksOf16BitPixels) { check_all(16, usual16); }
TEST(PixelRows, UsualMasksOf32BitPixels) { check_all(32, usual32); }
TEST(PixelRows, UnusualMasksOf16BitPixels) { check_all(16, unusual16); }
TEST(PixelRows, UnusualMasksOf32BitPixels) { check_all(32, unusual32); }

// From any masks to any masks of the other depth: read as colours, written as pixels.
void check_across(int from_bits, const uint32_t (&from_masks)[3], int to_bits,
                  const uint32_t (&to_masks)[3], Random& random) {
    constexpr size_t count = 45;
    const PixelFormat from = format_of(from_bits, from_masks), to = format_of(to_bits, to_masks);
    const std::vector<uint8_t> row = random_row(from.bytes() * count, random);
    std::vector<uint8_t> found(to.bytes() * count);
    convert_row(from, row.data(), to, found.data(), count);
    EXPECT_EQ(found,
              expected_packed(expected_unpacked(row, from_bits, from_masks), to_bits, to_masks));
}

TEST(PixelRows, Between16And32Bits) {
    Random random(9);
    check_across(16, usual16[1], 32, usual32[0], random);
    check_across(32, usual32[0], 16, usual16[1], random);
    for (const auto& masks16 : unusual16)
        for (const auto& masks32 : unusual32) {
            check_across(16, masks16, 32, masks32, random);
            check_across(32, masks32, 16, masks16, random);
        }
    for (int i = 0; i < 300; ++i) {
        uint32_t masks16[3], masks32[3];
        for (int c = 0; c < 3; ++c) {
            masks16[c] = (random.next() & random.next()) >> random.between(16, 31);
            masks32[c] = random.next() >> random.between(0, 31) << random.between(0, 31);
        }
        check_across(16, masks16, 32, masks32, random);
        check_across(32, masks32, 16, masks16, random);
    }
}

TEST(PixelRows, RandomMasks) {
    Random random(5);
    for (int i = 0; i < 300 && !testing::Test::HasFailure(); ++i) {
        const int bits = i % 2 ? 16 : 32;
        uint32_t masks[3];
        for (uint32_t& mask : masks)
            mask = (random.next() & random.next()) >> (bits == 16 ? 16 : 0);
        check_both_ways(bits, masks, static_cast<size_t>(random.between(1, 100)), random);
    }
}

TEST(PixelRows, EveryWordOf16Bits) {
    std::vector<uint8_t> row, bgr(3 * 65536);
    for (uint32_t word = 0; word < 65536; ++word) {
        row.push_back(static_cast<uint8_t>(word));
        row.push_back(static_cast<uint8_t>(word >> 8));
    }
    for (const auto& masks : usual16) {
        unpack_row(format_of(16, masks), row.data(), bgr.data(), 65536);
        EXPECT_EQ(bgr, expected_unpacked(row, 16, masks));
    }
}

TEST(PixelRows, RowsOf24BitPixelsAreCopied) {
    Random random(3);
    const std::vector<uint8_t> from = random_row(150, random);
    std::vector<uint8_t> to(150);
    unpack_row({24, {}}, from.data(), to.data(), 50);
    EXPECT_EQ(to, from);
    unpack_row({24, {}}, to.data(), to.data(), 50);
    EXPECT_EQ(to, from);
    std::vector<uint8_t> back(150);
    pack_row({24, {}}, to.data(), back.data(), 50);
    EXPECT_EQ(back, from);
}

// Values worked out by hand.
TEST(PixelRows, FreedLowBitsAreZero) {
    const uint8_t row[2] = {0xFF, 0xFF};
    uint8_t bgr[3];
    unpack_row(format_of(16, usual16[0]), row, bgr, 1);
    EXPECT_EQ((std::vector<uint8_t>{bgr, bgr + 3}), (std::vector<uint8_t>{248, 248, 248}));
    unpack_row(format_of(16, usual16[1]), row, bgr, 1);
    EXPECT_EQ((std::vector<uint8_t>{bgr, bgr + 3}), (std::vector<uint8_t>{248, 252, 248}));
}

TEST(PixelRows, WideMasksGiveTheirLowEightBits) {
    const uint8_t row[4] = {0x12, 0x9A, 0xF5, 0x3C}; // 0x3CF59A12
    uint8_t bgr[3];
    unpack_row(format_of(32, unusual32[2]), row, bgr, 1);
    EXPECT_EQ(bgr[0], 0x12); // 0x212
    EXPECT_EQ(bgr[1], 0x66); // 0x166
    EXPECT_EQ(bgr[2], 0xCF); // 0x3CF
}

} // namespace
