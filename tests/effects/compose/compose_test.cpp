// Composition against a plain formulation, pixel by pixel.
#include "support/dib_builder.hpp"
#include "support/progress_recorder.hpp"

#include <algorithm>
#include <gtest/gtest.h>

using namespace kirvo_test;

namespace {

constexpr Masks masks_narrow{0x7C000000, 0x000F8000, 0x0000001F}; // 5 bits each, gaps between
constexpr Masks masks_wide{0x3FF00000, 0x000FFC00, 0x000003FF};   // 10 bits each

struct Channel {
    uint32_t mask;
    int shift;
    explicit Channel(uint32_t mask) : mask(mask), shift(0) {
        while (shift < 31 && !(mask >> shift & 1))
            ++shift;
    }
    int read(uint32_t pixel) const { return static_cast<int>(((pixel & mask) >> shift) & 0xFF); }
    uint32_t place(int value) const { // beyond the mask if need be
        return mask == 0 ? 0 : static_cast<uint32_t>(value) << shift;
    }
    uint32_t write(int value) const { return (static_cast<uint32_t>(value) << shift) & mask; }
};

int blend(int mode, int s, int d) {
    switch (mode) {
    case 0:
        return std::min(s + d, 255);
    case 1:
        return (s + d) / 2;
    case 3:
        return std::max(d - s, 0);
    default:
        return s;
    }
}

// Red, green, blue.
uint32_t composed(int mode, uint32_t s, uint32_t d, const Channel (&channels)[3], uint32_t key) {
    int from[3], to[3];
    for (int c = 0; c < 3; ++c) {
        from[c] = channels[c].read(s);
        to[c] = channels[c].read(d);
    }
    const bool black = from[0] == 0 && from[1] == 0 && from[2] == 0;
    const bool is_key = from[0] == int(key & 0xFF) && from[1] == int(key >> 8 & 0xFF) &&
                        from[2] == int(key >> 16 & 0xFF);
    if ((mode == 2 && black) || (mode == 4 && is_key))
        return d;
    uint32_t pixel = 0;
    for (int c = 0; c < 3; ++c)
        pixel |= channels[c].place(blend(mode, from[c], to[c]));
    return pixel;
}

std::vector<uint8_t> block(const Dib& dib) {
    const auto* bytes = static_cast<const uint8_t*>(GlobalLock(dib));
    std::vector<uint8_t> copy(bytes, bytes + GlobalSize(dib));
    GlobalUnlock(dib);
    return copy;
}

// Some pixels become the colour.
void sprinkle(Dib& dib, uint32_t pixel, Random& random) {
    for (int y = 0; y < dib.height(); ++y)
        for (int x = 0; x < dib.width(); ++x)
            if (random.once_in(3))
                dib.set_pixel(x, y, pixel);
}

struct Format {
    int bits;
    std::optional<Masks> masks;
};

void check_mode(int mode, const Format& format, const Masks& masks, int max_width, Random& random) {
    const Channel channels[3] = {Channel(masks.red), Channel(masks.green), Channel(masks.blue)};
    DibSpec from_spec{random.between(1, max_width), random.between(1, 6), format.bits,
                      format.masks};
    DibSpec to_spec{random.between(1, max_width), random.between(1, 6), format.bits, format.masks};
    to_spec.padding = 0x99;
    Dib from = make_random_dib(from_spec, random);
    const Dib to = make_random_dib(to_spec, random);
    const uint32_t key = random.once_in(2) ? 0x00010203 : random.next() & 0x1F1F1F;
    const uint32_t key_pixel = channels[0].write(int(key & 0xFF)) |
                               channels[1].write(int(key >> 8 & 0xFF)) |
                               channels[2].write(int(key >> 16 & 0xFF));
    sprinkle(from, mode == 4 ? key_pixel : 0, random);
    if (mode == 4 || random.once_in(2))
        SetKeyColorDib24Add(key | 0x5A000000);
    const int w = random.between(1, std::min(from.width(), to.width()));
    const int h = random.between(1, std::min(from.height(), to.height()));
    const int fx = random.between(0, from.width() - w), fy = random.between(0, from.height() - h);
    const int tx = random.between(0, to.width() - w), ty = random.between(0, to.height() - h);
    Dib expected = copy_of(to);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            expected.set_pixel(tx + x, ty + y,
                               composed(mode, from.pixel(fx + x, fy + y), to.pixel(tx + x, ty + y),
                                        channels, key));
    const auto source = block(from);
    ASSERT_EQ(Dib24Add(to, tx, ty, from, fx, fy, w, h, mode), 0);
    ASSERT_EQ(block(to), block(expected)) << mode << " " << format.bits;
    ASSERT_EQ(block(from), source);
    ASSERT_TRUE(is_unlocked(to) && is_unlocked(from));
}

TEST(Compose, EveryModeBlendsEveryPixelOfTheRectangleAndNothingElse) {
    Random random(1);
    const Format formats[] = {{24, {}},           {32, {}},           {32, masks_888},
                              {32, masks_bgr888}, {32, masks_narrow}, {32, masks_wide}};
    for (const Format& format : formats)
        for (int mode = 0; mode < 5; ++mode)
            for (int round = 0; round < 30; ++round)
                check_mode(mode, format, format.masks.value_or(masks_888), round < 25 ? 40 : 2500,
                           random);
}

Dib one_pixel(uint32_t pixel, int bits = 24) {
    Dib dib = make_dib({1, 1, bits});
    dib.set_pixel(0, 0, pixel);
    return dib;
}

uint32_t composed_pixel(uint32_t onto, uint32_t from, int mode, int bits = 24) {
    const Dib to = one_pixel(onto, bits);
    EXPECT_EQ(Dib24Add(to, 0, 0, one_pixel(from, bits), 0, 0, 1, 1, mode), 0);
    return to.pixel(0, 0);
}

TEST(Compose, BlendsByTheFormulas) {
    // Stored as blue, green, red: the words read red, green, blue.
    EXPECT_EQ(composed_pixel(0x646464, 0xC86432, 0), 0xFFC896u); // 255, 200, 150
    EXPECT_EQ(composed_pixel(0x646464, 0xC86432, 1), 0x96644Bu); // 150, 100, 75
    EXPECT_EQ(composed_pixel(0x646464, 0xC86432, 3), 0x000032u); // 0, 0, 50
    EXPECT_EQ(composed_pixel(0x010203, 0x000000, 2), 0x010203u);
    EXPECT_EQ(composed_pixel(0x010203, 0x000001, 2), 0x000001u);
    EXPECT_EQ(composed_pixel(0x010203, 0x010000, 2), 0x010000u);
    EXPECT_EQ(composed_pixel(0x000000, 0x000001, 1), 0x000000u); // truncated
}

TEST(Compose, KeyColourHasRedInItsLowByte) {
    SetKeyColorDib24Add(0x0000FF);
    EXPECT_EQ(composed_pixel(0x010203, 0xFF0000, 4), 0x010203u);
    EXPECT_EQ(composed_pixel(0x010203, 0x0000FF, 4), 0x0000FFu);
    SetKeyColorDib24Add(0xFF332211);
    EXPECT_EQ(composed_pixel(0x010203, 0x112233, 4), 0x010203u);
    SetKeyColorDib24Add(0);
    EXPECT_EQ(composed_pixel(0x010203, 0x000000, 4), 0x010203u);
}

TEST(Compose, ClearsBitsOutsideTheMasksInWrittenPixelsOnly) {
    EXPECT_EQ(composed_pixel(0xAA010203, 0xBB000000, 0, 32), 0x00010203u);
    EXPECT_EQ(composed_pixel(0xAA010203, 0xBB000000, 2, 32), 0xAA010203u);
    EXPECT_EQ(composed_pixel(0xAA010203, 0xBB000001, 2, 32), 0x00000001u);
    SetKeyColorDib24Add(0x000001); // red 1
    EXPECT_EQ(composed_pixel(0xAA010203, 0xBB010000, 4, 32), 0xAA010203u);
    EXPECT_EQ(composed_pixel(0xAA010203, 0xBB000001, 4, 32), 0x00000001u);
    SetKeyColorDib24Add(0);
}

TEST(Compose, SumBeyondANarrowMaskReachesIntoTheBitsAbove) {
    Dib to = make_dib({1, 1, 32, Masks{0x1F, 0x7E0, 0xF800}});
    Dib from = make_dib({1, 1, 32, Masks{0x1F, 0x7E0, 0xF800}});
    to.set_pixel(0, 0, 0x0000001F);   // red 31
    from.set_pixel(0, 0, 0x00000021); // red 1, green 1
    ASSERT_EQ(Dib24Add(to, 0, 0, from, 0, 0, 1, 1, 0), 0);
    EXPECT_EQ(to.pixel(0, 0), 0x00000020u); // 32 | 1 << 5
}

TEST(Compose, TakesTheMasksOfTheSourceForBothImages) {
    Dib to = make_dib({1, 1, 32, masks_bgr888}), from = make_dib({1, 1, 32, masks_narrow});
    to.set_pixel(0, 0, 0x7C00001F);   // 31, 0, 31 by the source's masks
    from.set_pixel(0, 0, 0x04008001); // 1, 1, 1
    ASSERT_EQ(Dib24Add(to, 0, 0, from, 0, 0, 1, 1, 3), 0);
    EXPECT_EQ(to.pixel(0, 0), 0x7800001Eu);
    EXPECT_EQ(to.masks(), masks_bgr888);
}

TEST(Compose, ChecksHandlesParametersDepthsAndExtentInThisOrder) {
    const Dib dib8 = make_dib({4, 4, 8}), dib16 = make_dib({4, 4, 16}),
              dib24 = make_dib({4, 4, 24}), dib32 = make_dib({4, 4, 32});
    EXPECT_EQ(Dib24Add(nullptr, -1, 0, dib24, 0, 0, 1, 1, 0), -3);
    EXPECT_EQ(Dib24Add(dib24, -1, 0, nullptr, 0, 0, 1, 1, 0), -3);
    EXPECT_EQ(Dib24Add(dib24, 0, 0, nullptr, 0, 0, 1, 1, 9), -3);
    EXPECT_EQ(Dib24Add(dib8, -1, 0, dib24, 0, 0, 1, 1, 0), -1);
    EXPECT_EQ(Dib24Add(dib8, 0, -1, dib24, 0, 0, 1, 1, 0), -1);
    EXPECT_EQ(Dib24Add(dib8, 0, 0, dib24, -1, 0, 1, 1, 0), -1);
    EXPECT_EQ(Dib24Add(dib8, 0, 0, dib24, 0, -1, 1, 1, 0), -1);
    EXPECT_EQ(Dib24Add(dib8, 0, 0, dib24, 0, 0, 0, 1, 0), -1);
    EXPECT_EQ(Dib24Add(dib8, 0, 0, dib24, 0, 0, 1, 0, 0), -1);
    EXPECT_EQ(Dib24Add(dib8, 0, 0, dib24, 0, 0, 1, 1, -1), -1);
    EXPECT_EQ(Dib24Add(dib8, 0, 0, dib24, 0, 0, 1, 1, 5), -1);
    EXPECT_EQ(Dib24Add(dib8, 0, 0, dib8, 0, 0, 9, 9, 0), -42);
    EXPECT_EQ(Dib24Add(dib16, 0, 0, dib16, 0, 0, 1, 1, 0), -42);
    EXPECT_EQ(Dib24Add(dib32, 0, 0, dib24, 0, 0, 1, 1, 0), -42);
    EXPECT_EQ(Dib24Add(dib24, 0, 0, dib24, 1, 0, 4, 1, 0), -1);
    EXPECT_EQ(Dib24Add(dib24, 1, 0, dib24, 0, 0, 4, 1, 0), -1);
    EXPECT_EQ(Dib24Add(dib24, 0, 1, dib24, 0, 0, 1, 4, 0), -1);
    EXPECT_EQ(Dib24Add(dib24, 0, 0, dib24, 0, INT32_MAX, 1, INT32_MAX, 0), -1);
    DibSpec cut{4, 4, 24};
    cut.extra_bytes = -1;
    const Dib small = make_dib(cut);
    EXPECT_EQ(Dib24Add(small, 0, 0, dib24, 0, 0, 1, 1, 0), -1);
    EXPECT_EQ(Dib24Add(dib24, 0, 0, small, 0, 0, 1, 1, 0), -1);
    EXPECT_TRUE(is_unlocked(dib24) && is_unlocked(dib8) && is_unlocked(small));
}

TEST(Compose, OntoItselfReadsEachSourceRowBeforeItIsWritten) {
    Random random(2);
    for (int bits : {24, 32})
        for (int mode = 0; mode < 5; ++mode)
            for (const int width : {7, 60, 2300})
                for (const int move : {-1, 0, 1}) {
                    const Dib dib = make_random_dib({width, 3, bits}, random);
                    Dib expected = copy_of(dib);
                    const Channel channels[3] = {Channel(0xFF0000), Channel(0xFF00), Channel(0xFF)};
                    const int w = width - 2, from = 1, to = 1 + move;
                    for (int y = 0; y < 3; ++y)
                        for (int x = 0; x < w; ++x)
                            expected.set_pixel(to + x, y,
                                               composed(mode, dib.pixel(from + x, y),
                                                        dib.pixel(to + x, y), channels, 0));
                    ASSERT_EQ(Dib24Add(dib, to, 0, dib, from, 0, w, 3, mode), 0);
                    ASSERT_EQ(block(dib), block(expected)) << bits << " " << mode << " " << move;
                }
}

TEST(Compose, ReportsEachRow) {
    const Dib dib = make_dib({3, 7, 24}), other = make_dib({3, 7, 24});
    ProgressRecorder recorder;
    recorder.watch(9);
    ASSERT_EQ(Dib24Add(dib, 0, 0, other, 0, 0, 3, 7, 0), 0);
    EXPECT_EQ(recorder.percents(), (std::vector<int>{0, 14, 28, 42, 57, 71, 85, 100}));
    EXPECT_EQ(recorder.messages().front().command, 9u);
    ASSERT_EQ(Dib24Add(dib, 0, 0, other, 0, 0, 3, 7, 0), 0);
    EXPECT_EQ(recorder.messages().size(), 8u); // one operation only
    recorder.watch();
    EXPECT_EQ(Dib24Add(dib, 0, 0, other, 0, 0, 3, 8, 0), -1);
    EXPECT_TRUE(recorder.messages().empty());
}

} // namespace
