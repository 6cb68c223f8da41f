// Single pixels and lines at every depth.
#include "support/dib_builder.hpp"

#include <gtest/gtest.h>

using namespace kirvo_test;

namespace {

constexpr uint32_t untouched = 0xDEADBEEF;

struct Read {
    int32_t status;
    uint32_t colour = untouched;
};

Read pixel_colour(HGLOBAL dib, int32_t x, int32_t y) {
    Read read;
    read.status = DibGetPixelColor(dib, x, y, &read.colour);
    return read;
}

uint32_t colour_of(HGLOBAL dib, int32_t x, int32_t y) {
    const Read read = pixel_colour(dib, x, y);
    EXPECT_EQ(read.status, KIRVO_OK);
    return read.colour;
}

int zeros_below(uint32_t mask) {
    int n = 0;
    while (n < 32 && (mask >> n & 1) == 0)
        ++n;
    return n;
}

int ones_from(uint32_t mask, int from) {
    int n = 0;
    while (from + n < 16 && (mask >> (from + n) & 1) != 0)
        ++n;
    return n;
}

uint32_t read_channel(uint32_t pixel, uint32_t mask, int bits) {
    if (mask == 0)
        return 0;
    const int shift = zeros_below(mask);
    const uint32_t value = (pixel & mask) >> shift & 0xFF;
    return bits == 16 ? value << (8 - ones_from(mask, shift)) : value;
}

uint32_t write_channel(uint32_t value, uint32_t mask, int bits) {
    if (mask == 0)
        return 0;
    const int shift = zeros_below(mask);
    if (bits == 16)
        value >>= 8 - ones_from(mask, shift);
    return value << shift & mask;
}

std::vector<DibSpec> direct_specs() {
    return {{7, 3, 24},
            {7, 3, 16},
            {7, 3, 32},
            {7, 3, 16, masks_555},
            {7, 3, 16, masks_565},
            {5, 4, 16, Masks{0x000F, 0x00F0, 0x0F00}},
            {5, 4, 16, Masks{0xE000, 0x00FF, 0x0300}},
            {5, 4, 16, Masks{0x0001, 0x0002, 0x8000}},
            {5, 4, 16, Masks{0x0000, 0x00FF, 0xFF00}},
            {7, 3, 32, masks_888},
            {7, 3, 32, masks_bgr888},
            {5, 4, 32, Masks{0xFF000000, 0x00FF0000, 0x0000FF00}},
            {5, 4, 32, Masks{0x0000001F, 0x000007E0, 0x0000F800}},
            {5, 4, 32, Masks{0x00000000, 0x0FF00000, 0x00000FF0}}};
}

} // namespace

TEST(GetPixel, ReadsIndexedImagesThroughTheColourTable) {
    Random random(1);
    for (const int bits : {1, 4, 8}) {
        for (const int32_t width : {1, 2, 7, 8, 9, 17, 33}) {
            const Dib dib = make_random_dib({width, 3, bits}, random);
            const std::vector<uint8_t> bytes = dib.bytes();
            for (int32_t y = 0; y < 3; ++y) {
                for (int32_t x = 0; x < width; ++x) {
                    const size_t entry = 40 + 4 * dib.pixel(x, y);
                    const uint32_t want = bytes[entry + 2] | bytes[entry + 1] << 8 |
                                          static_cast<uint32_t>(bytes[entry]) << 16;
                    EXPECT_EQ(colour_of(dib, x, y), want) << bits << " " << x << "," << y;
                }
            }
        }
    }
}

TEST(GetPixel, FirstBitOfAByteIsTheLeftmostPixel) {
    Dib dib = make_dib({16, 1, 1});
    dib.set_colour(1, 10, 20, 30);
    const uint8_t second_byte = 0x40; // bit 6
    dib.write(48 + 1, &second_byte, 1);
    EXPECT_EQ(colour_of(dib, 9, 0), 0x1E140Au);
    EXPECT_EQ(colour_of(dib, 8, 0), 0u);
    EXPECT_EQ(colour_of(dib, 10, 0), 0u);
}

TEST(GetPixel, EvenColumnsAreTheHighNibble) {
    Dib dib = make_dib({3, 1, 4});
    dib.set_colour(5, 1, 2, 3);
    dib.set_colour(6, 4, 5, 6);
    const uint8_t row[] = {0x56, 0x60};
    dib.write(104, row, 2);
    EXPECT_EQ(colour_of(dib, 0, 0), 0x030201u);
    EXPECT_EQ(colour_of(dib, 1, 0), 0x060504u);
    EXPECT_EQ(colour_of(dib, 2, 0), 0x060504u);
}

TEST(GetPixel, TopLeftIsTheFirstPixelOfTheLastStoredRow) {
    Dib dib = make_dib({2, 3, 24});
    const uint8_t pixel[] = {1, 2, 3};
    dib.write(40 + 2 * 8, pixel, 3);
    EXPECT_EQ(colour_of(dib, 0, 0), 0x010203u);
}

TEST(GetPixel, SixteenBitChannelsHaveZeroLowBits) {
    Dib dib = make_dib({2, 1, 16});
    dib.set_pixel(0, 0, 0x7FFF);
    dib.set_pixel(1, 0, 0xFFFF);
    EXPECT_EQ(colour_of(dib, 0, 0), 0x00F8F8F8u);
    EXPECT_EQ(colour_of(dib, 1, 0), 0x00F8F8F8u);
    Dib six = make_dib({1, 1, 16, masks_565});
    six.set_pixel(0, 0, 0xFFFF);
    EXPECT_EQ(colour_of(six, 0, 0), 0x00F8FCF8u);
}

TEST(GetPixel, ReadsDirectColourByMasks) {
    Random random(2);
    for (const DibSpec& spec : direct_specs()) {
        const Dib dib = make_random_dib(spec, random);
        const Masks masks = dib.masks();
        for (int32_t y = 0; y < spec.height; ++y) {
            for (int32_t x = 0; x < spec.width; ++x) {
                const uint32_t p = dib.pixel(x, y);
                uint32_t want = (p >> 16 & 0xFF) | (p & 0xFF00) | (p & 0xFF) << 16;
                if (spec.bits != 24)
                    want = read_channel(p, masks.red, spec.bits) |
                           read_channel(p, masks.green, spec.bits) << 8 |
                           read_channel(p, masks.blue, spec.bits) << 16;
                EXPECT_EQ(colour_of(dib, x, y), want) << spec.bits << " " << masks.red;
            }
        }
    }
}

TEST(GetPixel, UsesFewerColoursWhenTheHeaderSaysSo) {
    Dib dib = make_dib({3, 1, 8, {}, 20});
    const uint8_t row[] = {19, 3, 200}; // 200 lies beyond the table: what stands there is read
    dib.write(40 + 80, row, 3);
    dib.set_colour(19, 9, 8, 7);
    EXPECT_EQ(colour_of(dib, 0, 0), 0x070809u);
    EXPECT_EQ(colour_of(dib, 2, 0), 0u); // past the block's end
}

TEST(GetPixel, RowsAreTakenAfterAFortyByteHeader) {
    // A longer header: the rows are still looked for at 40 + the colour part.
    Dib dib = make_dib({1, 1, 24, {}, 0, 60});
    const uint8_t pixel[] = {1, 2, 3};
    dib.write(40, pixel, 3);
    EXPECT_EQ(colour_of(dib, 0, 0), 0x010203u);
    // Masks, on the other hand, are read after the header.
    Dib masked = make_dib({1, 1, 32, masks_bgr888, 0, 60});
    const uint8_t word[] = {1, 2, 3, 0};
    masked.write(52, word, 4);
    EXPECT_EQ(colour_of(masked, 0, 0), 0x030201u);
}

TEST(PixelAccess, RefusesWhatIsOutside) {
    Random random(3);
    for (const int bits : {1, 4, 8, 16, 24, 32}) {
        const Dib dib = make_random_dib({4, 3, bits}, random);
        const std::vector<uint8_t> before = dib.bytes();
        const std::pair<int32_t, int32_t> points[] = {
            {-1, 0}, {0, -1}, {4, 0}, {0, 3}, {INT32_MAX, 0}, {0, INT32_MAX}, {INT32_MIN, 0}};
        for (const auto& [x, y] : points) {
            const Read read = pixel_colour(dib, x, y);
            EXPECT_EQ(read.status, KIRVO_BAD_PARAMETER);
            EXPECT_EQ(read.colour, untouched);
            EXPECT_EQ(DibSetPixelColor(dib, x, y, 0xFFFFFF), KIRVO_BAD_PARAMETER);
            EXPECT_EQ(DibSetLineColor(dib, x, 1, y, 0xFFFFFF), KIRVO_BAD_PARAMETER);
            EXPECT_EQ(DibSetLineColor(dib, 1, x, y, 0xFFFFFF), KIRVO_BAD_PARAMETER);
        }
        EXPECT_EQ(dib.bytes(), before);
        EXPECT_TRUE(is_unlocked(dib));
    }
    EXPECT_EQ(pixel_colour(nullptr, 0, 0).status, KIRVO_BAD_PARAMETER);
    EXPECT_EQ(DibSetPixelColor(nullptr, 0, 0, 0), KIRVO_BAD_PARAMETER);
    EXPECT_EQ(DibSetLineColor(nullptr, 0, 0, 0, 0), KIRVO_BAD_PARAMETER);
}

TEST(PixelAccess, RefusesOtherDepths) {
    for (const int bits : {1, 4, 8}) {
        const Dib dib = make_dib({4, 3, bits});
        EXPECT_EQ(DibSetPixelColor(dib, 0, 0, 1), KIRVO_NEEDS_16_24_32);
        EXPECT_EQ(DibSetPixelColor(dib, 4, 0, 1), KIRVO_BAD_PARAMETER); // range first
        EXPECT_EQ(DibSetLineColor(dib, 0, 3, 0, 1), KIRVO_NEEDS_16_24_32);
        EXPECT_EQ(DibSetLineColor(dib, 0, 4, 0, 1), KIRVO_BAD_PARAMETER);
        EXPECT_EQ(DibSetLineColor(dib, 3, 0, 0, 1), KIRVO_NEEDS_16_24_32);
        EXPECT_TRUE(is_unlocked(dib));
    }
    for (const int bits : {0, 2, 12, 15, 48, 64}) {
        Dib dib = make_dib({4, 3, 32});
        BITMAPINFOHEADER header = dib.header();
        header.biBitCount = static_cast<WORD>(bits);
        dib.set_header(header);
        EXPECT_EQ(pixel_colour(dib, 0, 0).status, KIRVO_BAD_PARAMETER);
        EXPECT_EQ(DibSetPixelColor(dib, 0, 0, 1), KIRVO_NEEDS_16_24_32);
        EXPECT_EQ(DibSetLineColor(dib, 0, 1, 0, 1), KIRVO_NEEDS_16_24_32);
    }
}

TEST(PixelAccess, TakesANullColourPointer) {
    EXPECT_EQ(DibGetPixelColor(make_dib({1, 1, 24}), 0, 0, nullptr), KIRVO_OK);
}

TEST(PixelAccess, RefusesABlockThatIsTooShort) {
#ifndef _WIN32 // sizes of blocks are exact
    for (const int bits : {1, 4, 8, 16, 24, 32}) {
        const int64_t padding = bits == 1 || bits == 8 ? 3
                                : bits == 4            ? 3
                                : bits == 16           ? 2
                                : bits == 24           ? 1
                                                       : 0;
        const Dib enough = make_dib({1, 2, bits, {}, 0, 40, -padding});
        const Dib cut = make_dib({1, 2, bits, {}, 0, 40, -padding - 1});
        EXPECT_EQ(pixel_colour(enough, 0, 0).status, KIRVO_OK) << bits;
        EXPECT_EQ(pixel_colour(cut, 0, 0).status, KIRVO_BAD_PARAMETER) << bits;
        EXPECT_EQ(pixel_colour(cut, 0, 1).status, KIRVO_BAD_PARAMETER) << bits;
    }
#endif
    Dib lies = make_dib({4, 4, 24});
    BITMAPINFOHEADER header = lies.header();
    header.biWidth = header.biHeight = INT32_MAX;
    lies.set_header(header);
    EXPECT_EQ(pixel_colour(lies, 1000000, 1000000).status, KIRVO_BAD_PARAMETER);
    EXPECT_EQ(DibSetPixelColor(lies, 1000000, 1000000, 0), KIRVO_BAD_PARAMETER);
    header.biWidth = header.biHeight = -4;
    lies.set_header(header);
    EXPECT_EQ(pixel_colour(lies, 0, 0).status, KIRVO_BAD_PARAMETER);
}

TEST(SetPixel, WritesOnlyThePixelUnderItsMasks) {
    Random random(4);
    for (const DibSpec& spec : direct_specs()) {
        const Masks masks = make_dib(spec).masks();
        for (int round = 0; round < 20; ++round) {
            const Dib dib = make_random_dib(spec, random);
            Dib want = copy_of(dib);
            const uint32_t colour = random.next();
            const uint32_t red = colour & 0xFF, green = colour >> 8 & 0xFF,
                           blue = colour >> 16 & 0xFF;
            const int32_t x = random.between(0, spec.width - 1);
            const int32_t y = random.between(0, spec.height - 1);
            want.set_pixel(x, y,
                           spec.bits == 24 ? red << 16 | green << 8 | blue
                                           : write_channel(red, masks.red, spec.bits) |
                                                 write_channel(green, masks.green, spec.bits) |
                                                 write_channel(blue, masks.blue, spec.bits));
            EXPECT_EQ(DibSetPixelColor(dib, x, y, colour), KIRVO_OK);
            EXPECT_EQ(dib.bytes(), want.bytes()) << spec.bits << " " << masks.red;
            EXPECT_TRUE(is_unlocked(dib));
        }
    }
}

TEST(SetPixel, WhiteInFiveFiveFive) {
    const Dib dib = make_dib({1, 1, 16});
    EXPECT_EQ(DibSetPixelColor(dib, 0, 0, 0x00FFFFFF), KIRVO_OK);
    EXPECT_EQ(dib.pixel(0, 0), 0x7FFFu);
}

TEST(SetLine, FillsFromFirstToLastColumn) {
    Random random(5);
    for (const DibSpec& spec : direct_specs()) {
        for (int round = 0; round < 20; ++round) {
            const Dib dib = make_random_dib(spec, random);
            const Dib want = copy_of(dib);
            const uint32_t colour = random.next();
            const int32_t x0 = random.between(0, spec.width - 1);
            const int32_t x1 = random.between(0, spec.width - 1);
            const int32_t y = random.between(0, spec.height - 1);
            for (int32_t x = x0; x <= x1; ++x)
                DibSetPixelColor(want, x, y, colour);
            EXPECT_EQ(DibSetLineColor(dib, x0, x1, y, colour), KIRVO_OK);
            EXPECT_EQ(dib.bytes(), want.bytes());
        }
    }
}

TEST(SetLine, BackwardsWritesNothing) {
    Random random(6);
    const Dib dib = make_random_dib({8, 3, 24}, random);
    const std::vector<uint8_t> before = dib.bytes();
    EXPECT_EQ(DibSetLineColor(dib, 5, 2, 1, 0x123456), KIRVO_OK);
    EXPECT_EQ(dib.bytes(), before);
}
