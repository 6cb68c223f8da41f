// Ordered dither to the library's palette.
#include "reduce/expected.hpp"

using namespace kirvo_test;

namespace {

// [x mod 8][stored row mod 8]
constexpr int thresholds[8][8] = {{0, 38, 9, 47, 2, 40, 11, 50},  {25, 12, 35, 22, 27, 15, 37, 24},
                                  {6, 44, 3, 41, 8, 47, 5, 43},   {31, 19, 28, 15, 34, 21, 31, 18},
                                  {1, 39, 11, 49, 0, 39, 10, 48}, {27, 14, 36, 23, 26, 13, 35, 23},
                                  {7, 46, 4, 43, 7, 45, 3, 42},   {33, 20, 30, 17, 32, 19, 29, 16}};

// The library's palette as the system knows it.
const std::vector<Colour>& library_palette() {
    static const std::vector<Colour> colours = [] {
        const HPALETTE palette = KirvoCreatePalette();
        PALETTEENTRY entries[256];
        EXPECT_EQ(GetPaletteEntries(palette, 0, 256, entries), 256u);
        DeleteObject(palette);
        std::vector<Colour> list;
        for (const PALETTEENTRY& entry : entries)
            list.push_back({entry.peRed, entry.peGreen, entry.peBlue});
        return list;
    }();
    return colours;
}

uint8_t slot_of(int red, int green, int blue) {
    const Colour colour = {uint8_t(51 * red), uint8_t(51 * green), uint8_t(51 * blue)};
    if (colour == Colour{51, 255, 0} || colour == Colour{0, 255, 51})
        return 250;
    if (colour == Colour{51, 0, 255} || colour == Colour{0, 51, 255})
        return 252;
    std::vector<uint8_t> slots;
    for (size_t i = 0; i < 256; ++i)
        if (library_palette()[i] == colour)
            slots.push_back(uint8_t(i));
    EXPECT_EQ(slots.size(), 1u);
    return slots.front();
}

int level_of(int value, int threshold) { return value / 51 + (value % 51 > threshold ? 1 : 0); }

size_t rows_start(const Dib& from) {
    return from.header().biSize + 4 * from.header().biClrUsed + (from.bits() == 32 ? 12 : 0);
}

void expect_halftone(const Dib& from) {
    const int32_t width = from.width(), height = from.height();
    SCOPED_TRACE(testing::Message() << width << " x " << height << ", " << from.bits() << " bits");
    std::vector<uint8_t> slots(216);
    for (int i = 0; i < 216; ++i)
        slots[size_t(i)] = slot_of(i % 6, i / 6 % 6, i / 36);
    const std::vector<Colour> colours =
        stored_colours(from, {rows_start(from), stride_of_16_bits(width, from.bits())});
    std::vector<uint8_t> indices;
    for (int32_t row = 0; row < height; ++row)
        for (int32_t x = 0; x < width; ++x) {
            const Colour& c = colours[size_t(row) * size_t(width) + size_t(x)];
            const int threshold = thresholds[x % 8][row % 8];
            indices.push_back(
                slots[size_t(level_of(c.red, threshold) + 6 * level_of(c.green, threshold) +
                             36 * level_of(c.blue, threshold))]);
        }
    const IndexedImage expected{width, height, 8, 256, library_palette(), indices};
    EXPECT_EQ(block_bytes(run(Decrease256Fast, from)), expected.block(stride_of_16_bits(width, 8)));
}

TEST(Halftone, EveryWidthAndKindOfSource) {
    Random random(1);
    for (int32_t width = 1; width <= 70; ++width)
        expect_halftone(make_random_dib(true_colour_spec(width, 1 + width % 11, random), random));
}

TEST(Halftone, EveryValueAtEveryThreshold) {
    for (int shift = 0; shift < 24; shift += 8) {
        Dib from = make_dib({2048, 8, 24});
        for (int x = 0; x < 2048; ++x)
            for (int y = 0; y < 8; ++y)
                from.set_pixel(x, y, uint32_t(x / 8) << shift);
        expect_halftone(from);
    }
}

TEST(Halftone, RowsTooWideFor16BitsOverlap) {
    Random random(2);
    for (const int32_t width : {2729, 2730, 2731, 2800, 5461, 8188, 8189, 8200, 8500})
        expect_halftone(make_random_dib({width, 3, 24}, random));
    for (const int32_t width : {2047, 2048, 2049, 2100, 4096, 8189})
        expect_halftone(make_random_dib({width, 3, 32, masks_888}, random));
    DibSpec cut{2730, 2, 24};
    cut.extra_bytes = -2; // the padding
    expect_halftone(make_random_dib(cut, random));
}

TEST(Halftone, ThirtyTwoBitsWithoutMasksAreReadTwelveBytesFurtherOn) {
    Random random(3);
    for (int32_t width = 1; width <= 5; ++width)
        for (int32_t height = 1; height <= 5; ++height)
            for (const int64_t extra : {0, 1, 12, 20}) {
                DibSpec spec{width, height, 32};
                spec.extra_bytes = extra;
                Dib from = make_random_dib(spec, random);
                from.write(from.promised_bytes(), std::vector<uint8_t>(size_t(extra), 0xDD));
                expect_halftone(from);
            }
}

TEST(Halftone, ColourTablesAndLongHeadersMoveTheRows) {
    Random random(4);
    for (const int bits : {24, 32})
        for (const uint32_t header_size : {36u, 40u, 108u})
            for (const uint32_t colours : {0u, 3u, 20u, 300u}) {
                DibSpec spec{7, 3, bits};
                spec.header_size = header_size;
                spec.colours_used = colours;
                spec.extra_bytes = 16;
                expect_halftone(make_random_dib(spec, random));
                if (bits == 32 && header_size >= 40) {
                    spec.masks = masks_bgr888;
                    expect_halftone(make_random_dib(spec, random));
                }
            }
}

Dib flat(uint32_t rgb) {
    Dib from = make_dib({16, 16, 24});
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 16; ++x)
            from.set_pixel(x, y, rgb);
    return from;
}

TEST(Halftone, MultiplesOf51AreNeverRaised) {
    const Dib white = run(Decrease256Fast, flat(0xFFFFFF));
    const Dib green = run(Decrease256Fast, flat(0x00FF33)); // missing in the palette: pure green
    const Dib level = run(Decrease256Fast, flat(0x336699));
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 16; ++x) {
            EXPECT_EQ(white.pixel(x, y), 255u);
            EXPECT_EQ(green.pixel(x, y), 250u);
            EXPECT_EQ(library_palette()[level.pixel(x, y)], (Colour{0x33, 0x66, 0x99}));
        }
}

TEST(Halftone, AllButOneThresholdRaise50) {
    const Dib result = run(Decrease256Fast, flat(0x323232));
    for (int row = 0; row < 16; ++row)
        for (int x = 0; x < 16; ++x) {
            const bool raised = x % 8 != 0 || row % 8 != 7;
            EXPECT_EQ(library_palette()[result.pixel(x, 15 - row)],
                      raised ? (Colour{51, 51, 51}) : (Colour{0, 0, 0}));
        }
}

} // namespace
