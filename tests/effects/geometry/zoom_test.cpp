// Zoom against plain formulations, pixel by pixel.
#include "support/dib_builder.hpp"
#include "support/direct_colour.hpp"
#include "support/progress_recorder.hpp"

#include <algorithm>
#include <functional>
#include <gtest/gtest.h>

using namespace kirvo_test;

namespace {

constexpr int depths[] = {8, 16, 24, 32};

struct Area {
    int32_t x, y, w, h;
};

std::vector<uint8_t> block(const Dib& dib) {
    const auto* bytes = static_cast<const uint8_t*>(GlobalLock(dib));
    std::vector<uint8_t> copy(bytes, bytes + GlobalSize(dib));
    GlobalUnlock(dib);
    return copy;
}

HGLOBAL zoom(const Dib& dib, const Area& a, int32_t w, int32_t h, int32_t* status = nullptr) {
    return Dib24ZoomEx(dib, a.x, a.y, a.w, a.h, w, h, status);
}

HGLOBAL zoom2(const Dib& dib, const Area& a, int32_t w, int32_t h, int32_t smooth,
              int32_t* status = nullptr) {
    return Dib24ZoomEx2(dib, a.x, a.y, a.w, a.h, w, h, status, smooth);
}

int32_t column_of(const Area& a, int32_t w, int32_t i) {
    const double sx = double(w) / a.w;
    return int32_t(i / sx + a.x);
}

int32_t row_of(const Area& a, int32_t h, int32_t j) {
    const double sy = double(h) / a.h;
    return a.y + int32_t(j / sy);
}

using PixelAt = std::function<uint32_t(int32_t i, int32_t j)>;

// Compares every pixel, and the padding, which a new image has as 0.
void expect_image(const Dib& made, int32_t w, int32_t h, int bits, const PixelAt& pixel) {
    ASSERT_NE(HGLOBAL(made), nullptr);
    ASSERT_EQ(made.width(), w);
    ASSERT_EQ(made.height(), h);
    ASSERT_EQ(made.bits(), bits);
    Dib expected = make_dib(
        {w, h, bits, bits == 16 || bits == 32 ? std::optional<Masks>(made.masks()) : std::nullopt});
    for (int32_t j = 0; j < h; ++j)
        for (int32_t i = 0; i < w; ++i)
            expected.set_pixel(i, j, pixel(i, j));
    ASSERT_EQ(made.rows(), expected.rows()) << bits;
    ASSERT_TRUE(is_unlocked(made));
}

DibSpec spec_of(int32_t width, int32_t height, int bits, Random& random) {
    DibSpec spec{width, height, bits};
    spec.padding = 0xB7;
    const Masks masks16[] = {
        masks_555, masks_565, {0x000F, 0x00F0, 0xFF00}, {0x1FF, 0xE00, 0xF000}};
    const Masks masks32[] = {
        masks_888, masks_bgr888, {0xFF000000, 0x3FC00, 0xFF}, {0x3FF00000, 0x000FFC00, 0x000003FF}};
    if (bits == 16 && !random.once_in(5))
        spec.masks = random.pick(masks16);
    if (bits == 32 && !random.once_in(5))
        spec.masks = random.pick(masks32);
    return spec;
}

Area random_area(int32_t width, int32_t height, Random& random) {
    if (random.once_in(3))
        return {0, 0, width, height};
    const int32_t w = random.between(1, width), h = random.between(1, height);
    return {random.between(0, width - w), random.between(0, height - h), w, h};
}

TEST(Zoom, TakesTheNearestPixelAtEveryDepth) {
    Random random(1);
    for (int bits : depths)
        for (int round = 0; round < 120; ++round) {
            const int32_t width = random.between(1, round < 90 ? 20 : 90);
            const int32_t height = random.between(1, 12);
            const Dib from = make_random_dib(spec_of(width, height, bits, random), random);
            const Area a = random_area(width, height, random);
            const int32_t w = random.between(1, round < 90 ? 45 : 300), h = random.between(1, 25);
            if (w == a.w && h == a.h)
                continue;
            const auto before = block(from);
            const auto pixel = [&](int32_t i, int32_t j) {
                return from.pixel(column_of(a, w, i), row_of(a, h, j));
            };
            int32_t status = 9;
            const Dib made(zoom(from, a, w, h, &status));
            ASSERT_EQ(status, 0);
            ASSERT_NO_FATAL_FAILURE(expect_image(made, w, h, bits, pixel));
            status = 9;
            const Dib made2(zoom2(from, a, w, h, round % 3 - 1 == 1 ? 2 : 0, &status));
            ASSERT_EQ(status, 0);
            ASSERT_EQ(block(made2), block(made));
            ASSERT_EQ(block(from), before);
            ASSERT_TRUE(is_unlocked(from));
        }
}

TEST(Zoom, RepeatsPixelsTwiceAsLarge) {
    Dib dib = make_dib({2, 2, 24});
    for (uint32_t i = 0; i < 4; ++i)
        dib.set_pixel(int32_t(i % 2), int32_t(i / 2), i + 1);
    const Dib made(zoom(dib, {0, 0, 2, 2}, 4, 4));
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 4; ++x)
            EXPECT_EQ(made.pixel(x, y), uint32_t(1 + x / 2 + 2 * (y / 2)));
}

TEST(Zoom, CarriesTheColourPart) {
    Random random(2);
    DibSpec spec{5, 3, 8};
    spec.colours_used = 9;
    const Dib from8 = make_random_dib(spec, random);
    const auto a = block(from8);
    const Dib copies[] = {Dib(zoom(from8, {0, 0, 5, 3}, 2, 2)),
                          Dib(zoom2(from8, {0, 0, 5, 3}, 2, 2, 1))};
    for (const Dib& made : copies) {
        const auto b = block(made);
        EXPECT_TRUE(std::equal(a.begin() + 40, a.begin() + 76, b.begin() + 40));
        EXPECT_EQ(b[76], 0);
        EXPECT_EQ(made.header().biClrUsed, 0u);
    }
    for (int smooth : {0, 1}) {
        EXPECT_EQ(Dib(zoom2(make_dib({4, 4, 16}), {0, 0, 4, 4}, 2, 2, smooth)).masks(), masks_555);
        EXPECT_EQ(Dib(zoom2(make_dib({4, 4, 16, masks_565}), {0, 0, 4, 4}, 2, 2, smooth)).masks(),
                  masks_565);
        EXPECT_EQ(Dib(zoom2(make_dib({4, 4, 32}), {0, 0, 4, 4}, 2, 2, smooth)).masks(), masks_888);
    }
}

TEST(Zoom, ToTheSameSizeCopiesAndLeavesTheStatusAlone) {
    Random random(3);
    for (int bits : depths) {
        const Dib from = make_random_dib(spec_of(7, 5, bits, random), random);
        for (const Area& a : {Area{0, 0, 7, 5}, Area{2, 1, 3, 3}}) {
            int32_t status = 77;
            const Dib made(zoom(from, a, a.w, a.h, &status));
            EXPECT_EQ(status, 77);
            const Dib made2(zoom2(from, a, a.w, a.h, 1, &status));
            EXPECT_EQ(status, 77);
            const Dib expected = Dib(DibMemAllocEx(uint32_t(a.w), a.h, uint32_t(bits)));
            ASSERT_EQ(Dib24Copy(expected, from, a.x, a.y, a.w, a.h), 0);
            EXPECT_EQ(block(made), block(expected));
            EXPECT_EQ(block(made2), block(expected));
            for (int y = 0; y < a.h; ++y)
                for (int x = 0; x < a.w; ++x)
                    EXPECT_EQ(made.pixel(x, y), from.pixel(a.x + x, a.y + y));
        }
    }
}

TEST(Zoom, WritesTheStatusOfEveryFailure) {
    const Dib dib4 = make_dib({4, 4, 4}), dib24 = make_dib({4, 4, 24});
    DibSpec cut{4, 4, 24};
    cut.extra_bytes = -1;
    const Dib small = make_dib(cut);
    const auto expect = [](int32_t expected, HGLOBAL dib, Area a, int32_t w, int32_t h) {
        int32_t status = 9;
        EXPECT_EQ(Dib24ZoomEx(dib, a.x, a.y, a.w, a.h, w, h, &status), nullptr);
        EXPECT_EQ(status, expected);
        for (int smooth : {0, 1}) {
            status = 9;
            EXPECT_EQ(Dib24ZoomEx2(dib, a.x, a.y, a.w, a.h, w, h, &status, smooth), nullptr);
            EXPECT_EQ(status, expected);
        }
        EXPECT_EQ(Dib24ZoomEx(dib, a.x, a.y, a.w, a.h, w, h, nullptr), nullptr);
    };
    expect(-1, nullptr, {0, 0, 1, 1}, 0, 1);
    expect(-1, nullptr, {0, 0, 1, 1}, 1, -1);
    expect(-3, nullptr, {-1, 0, 1, 1}, 2, 2);
    expect(-1, dib4, {-1, 0, 1, 1}, 2, 2);
    expect(-40, dib4, {0, 0, 9, 9}, 2, 2);
    expect(-1, dib24, {0, 1, 4, 4}, 4, 4);
    expect(-1, dib24, {1, 0, 4, 4}, 2, 2);
    expect(-1, small, {0, 0, 1, 1}, 2, 2);
    expect(-2, dib24, {0, 0, 4, 4}, INT32_MAX, INT32_MAX);
    expect(-2, dib24, {0, 0, 4, 4}, 40000, 40000);
    expect(-2, dib24, {0, 0, 4, 4}, 1, 0x20000000);
    EXPECT_TRUE(is_unlocked(dib4) && is_unlocked(dib24) && is_unlocked(small));
}

TEST(Zoom, ReportsEachRowOfTheResult) {
    ProgressRecorder recorder;
    const Dib dib = make_dib({40, 80, 24});
    recorder.watch();
    Dib made(zoom(dib, {0, 0, 4, 40}, 2, 7));
    EXPECT_EQ(recorder.percents(), (std::vector<int>{0, 14, 28, 42, 57, 71, 85, 100}));
    for (int smooth : {0, 1}) {
        recorder.watch();
        made = Dib(zoom2(dib, {0, 0, 40, 80}, 7, 33, smooth));
        EXPECT_EQ(recorder.percents(), single_pass_percents(33));
    }
    recorder.watch();
    made = Dib(zoom(dib, {0, 0, 4, 40}, 4, 40)); // a copy sends nothing
    EXPECT_TRUE(recorder.messages().empty());
}

// Coordinates above 32767 wrap to negative ones. The bytes that they lead to are taken where these
// lie in the image's block, and the nearest pixel of the picture elsewhere.
struct WrappedPixel {
    const std::vector<uint8_t> block;
    int32_t width, height, bytes, first; // where the lowest row begins

    uint32_t at(int32_t x, int32_t y) const {
        const int32_t stride = (width * bytes + 3) / 4 * 4;
        const auto offset = [&](int64_t column, int64_t row) {
            return first + (height - 1 - row) * stride + column * bytes;
        };
        int64_t from = offset(static_cast<int16_t>(x), static_cast<int16_t>(y));
        if (from < 0 || from + bytes > static_cast<int64_t>(block.size()))
            from = offset(std::max<int32_t>(static_cast<int16_t>(x), 0),
                          std::max<int32_t>(static_cast<int16_t>(y), 0));
        uint32_t word = 0;
        for (int32_t i = 0; i < bytes; ++i)
            word |= uint32_t{block[static_cast<size_t>(from + i)]} << 8 * i;
        return word;
    }
};

TEST(Zoom, CutsCoordinatesTo16Bits) {
    Random random(4);
    Dib wide = make_random_dib({70000, 1, 8}, random);
    const WrappedPixel wrapped = {block_bytes(wide), 70000, 1, 1, 40 + 1024};
    const Dib made(zoom(wide, {100, 0, 69900, 1}, 69900, 2));
    const Dib full(zoom2(wide, {100, 0, 69900, 1}, 69900, 2, 0));
    for (int32_t i = 0; i < 69900; ++i) {
        ASSERT_EQ(made.pixel(i, 0), wrapped.at(i + 100, 0)) << i;
        ASSERT_EQ(full.pixel(i, 1), wide.pixel(i + 100, 0)) << i;
    }
    EXPECT_EQ(made.pixel(66000, 0), wide.pixel(564, 0));
    EXPECT_EQ(made.pixel(32667, 1), wide.pixel(32767, 0));
    EXPECT_EQ(made.pixel(32668, 1), wide.pixel(0, 0));
    EXPECT_EQ(made.pixel(65435, 1), block_bytes(wide)[40 + 1023]); // column -1: the colour table
    EXPECT_EQ(made.pixel(64372, 1), block_bytes(wide)[0]);         // column -1064: the header
    EXPECT_EQ(made.pixel(64371, 1), wide.pixel(0, 0));
}

TEST(Zoom, NegativeColumnsLieInTheStoredRowBelow) {
    Random random(5);
    for (const int bits : {8, 16, 24, 32}) {
        Dib wide = make_random_dib({40001, 3, bits}, random);
        const int32_t stride = (40001 * bits / 8 + 3) / 4 * 4;
        const auto first = static_cast<int32_t>(block_bytes(wide).size()) - 3 * stride;
        const WrappedPixel wrapped = {block_bytes(wide), 40001, 3, bits / 8, first};
        const Dib made(zoom(wide, {0, 0, 40001, 3}, 40001, 6));
        for (int32_t i = 0; i < 40001; i += i < 32700 ? 1000 : 1)
            for (int32_t j = 0; j < 6; ++j)
                ASSERT_EQ(made.pixel(i, j), wrapped.at(i, j / 2)) << bits << ": " << i << ", " << j;
        // The top row's column -25536, which is 14465 pixels into the row below less the padding.
        if (bits == 32) {
            EXPECT_EQ(made.pixel(40000, 0), wide.pixel(40001 - 25536, 1));
        }
    }
}

TEST(Zoom, NegativeRowsLieAboveTheTopRowWhereTheBlockGoesOn) {
    Random random(6);
    for (const int32_t extra : {0, 4 * 100, 4 * 40000}) {
        DibSpec spec = {1, 70000, 8};
        spec.extra_bytes = extra;
        Dib tall = make_random_dib(spec, random);
        const WrappedPixel wrapped = {block_bytes(tall), 1, 70000, 1, 40 + 1024};
        const Dib made(zoom(tall, {0, 0, 1, 70000}, 2, 70000));
        for (int32_t j = 0; j < 70000; j += 7)
            ASSERT_EQ(made.pixel(1, j), wrapped.at(0, j)) << extra << ": " << j;
    }
}

// ---- boxes ----

struct Channel {
    uint32_t mask;
    int shift, width;
    Channel(uint32_t mask, int bits) : mask(mask), shift(0), width(0) {
        while (shift < bits && !(mask >> shift & 1))
            ++shift;
        while (shift + width < bits && (mask >> (shift + width) & 1))
            ++width;
    }
};

// One channel of a pixel word, widened to 8 bits at 16, and back.
uint32_t read(uint32_t pixel, const Channel& channel, int bits) {
    const uint32_t value = ((pixel & channel.mask) >> channel.shift) & 0xFF;
    if (bits != 16)
        return value;
    return channel.width <= 8 ? value << (8 - channel.width) & 0xFF : value >> (channel.width - 8);
}

uint32_t written(uint32_t value, const Channel& channel, int bits) {
    if (bits == 16)
        value = channel.width <= 8 ? value >> (8 - channel.width) : value << (channel.width - 8);
    return (value << channel.shift) & channel.mask;
}

// Pixel (x, y) of the stored row, which may lie in its padding. Beyond the block it is 0.
uint32_t stored_pixel(const std::vector<uint8_t>& rows, const Dib& dib, int32_t x, int32_t y) {
    const auto bytes = size_t(dib.bits() / 8);
    const size_t at = size_t(dib.height() - 1 - y) * size_t(dib.stride()) + size_t(x) * bytes;
    uint32_t value = 0;
    for (size_t i = 0; i < bytes; ++i)
        if (at + i < rows.size())
            value |= uint32_t(rows[at + i]) << (8 * i);
    return value;
}

void check_box(const Dib& from, const Area& a, int32_t w, int32_t h) {
    const int bits = from.bits(), bytes = bits / 8;
    const Masks masks = bits == 24 ? masks_888 : from.masks();
    const Channel channels[] = {{masks.red, bits}, {masks.green, bits}, {masks.blue, bits}};
    const auto rows = from.rows();
    const int32_t bx = (w + a.w - 1) / w, by = (h + a.h - 1) / h;
    int32_t status = 9;
    const Dib made(zoom2(from, a, w, h, 1, &status));
    ASSERT_EQ(status, 0);
    expect_image(made, w, h, bits, [&](int32_t i, int32_t j) {
        const int32_t xs = column_of(a, w, i), ys = row_of(a, h, j);
        uint64_t sums[3] = {}, count = 0;
        for (int32_t y = ys; y < ys + by && y < from.height(); ++y)
            for (int32_t x = xs; x < xs + bx && (x + 1) * bytes <= from.stride(); ++x, ++count)
                for (int c = 0; c < 3; ++c)
                    sums[c] += read(stored_pixel(rows, from, x, y), channels[c], bits);
        uint32_t pixel = 0;
        for (int c = 0; c < 3; ++c)
            pixel |= written(uint32_t(sums[c] / count), channels[c], bits);
        return pixel;
    });
}

TEST(ZoomBox, TakesTheTruncatedMeanOfEachBox) {
    Random random(5);
    for (int bits : {16, 24, 32})
        for (int round = 0; round < 120; ++round) {
            const int32_t width = random.between(1, round < 90 ? 24 : 150);
            const int32_t height = random.between(1, 20);
            const Dib from = make_random_dib(spec_of(width, height, bits, random), random);
            const Area a = random_area(width, height, random);
            const int32_t w = random.between(1, a.w), h = random.between(1, a.h);
            if (w == a.w && h == a.h)
                continue;
            ASSERT_NO_FATAL_FAILURE(check_box(from, a, w, h));
        }
}

TEST(ZoomBox, HalvesAndQuartersAtEveryWidth) {
    Random random(6);
    for (int bits : {16, 24, 32})
        for (int factor : {2, 3, 4})
            for (int32_t w = 1; w < 45; ++w) {
                const Dib from = make_random_dib(
                    spec_of(w * factor + random.between(0, 5), 2 * factor + 1, bits, random),
                    random);
                ASSERT_NO_FATAL_FAILURE(check_box(
                    from, {random.between(0, from.width() - w * factor), 0, w * factor, 2 * factor},
                    w, 2));
            }
}

TEST(ZoomBox, OfFourPixelsIsTheirTruncatedMean) {
    Dib dib = make_dib({4, 4, 24});
    const uint32_t values[] = {1, 2, 3, 5}; // sum 11
    for (int i = 0; i < 4; ++i)
        dib.set_pixel(i % 2, i / 2, values[i] * 0x010101);
    dib.set_pixel(2, 0, 0xFFFFFF);
    const Dib smooth(zoom2(dib, {0, 0, 4, 4}, 2, 2, 1));
    EXPECT_EQ(smooth.pixel(0, 0), 0x020202u);
    EXPECT_EQ(smooth.pixel(1, 0), 0x3F3F3Fu); // 255 / 4
    EXPECT_EQ(smooth.pixel(0, 1), 0u);
    const Dib nearest(zoom2(dib, {0, 0, 4, 4}, 2, 2, 0));
    EXPECT_EQ(nearest.pixel(0, 0), 0x010101u);
    EXPECT_EQ(nearest.pixel(1, 0), 0xFFFFFFu);
}

TEST(ZoomBox, IsForReductionsOfDirectColourOnly) {
    Random random(7);
    const Dib dib24 = make_random_dib({6, 6, 24}, random),
              dib8 = make_random_dib({6, 6, 8}, random);
    const Area all{0, 0, 6, 6};
    for (const auto& [w, h] : {std::pair(3, 7), std::pair(7, 3), std::pair(9, 9)})
        EXPECT_EQ(block(Dib(zoom2(dib24, all, w, h, 1))), block(Dib(zoom2(dib24, all, w, h, 0))));
    EXPECT_EQ(block(Dib(zoom2(dib8, all, 3, 3, 1))), block(Dib(zoom2(dib8, all, 3, 3, 0))));
    EXPECT_NE(block(Dib(zoom2(dib24, all, 6, 3, 1))), block(Dib(zoom2(dib24, all, 6, 3, 0))));
    EXPECT_NE(block(Dib(zoom2(dib24, all, 3, 6, 1))), block(Dib(zoom2(dib24, all, 3, 6, 0))));
}

TEST(ZoomBox, ReadsMissingPaddingOfTheLastRowAsZero) {
    Random random(8);
    for (int bits : {16, 24}) {
        DibSpec spec{3, 3, bits};
        spec.padding = 0xFF;
        spec.extra_bytes = bits == 16 ? -2 : -3;
        const Dib from = make_random_dib(spec, random);
        ASSERT_NO_FATAL_FAILURE(check_box(from, {2, 0, 1, 3}, 1, 1));
        ASSERT_NO_FATAL_FAILURE(check_box(from, {0, 0, 3, 3}, 2, 2));
    }
}

TEST(ZoomBox, HoldsSumsOfLargeBoxes) {
    Random random(9);
    for (const auto& [w, h] : {std::pair(3, 700), std::pair(700, 3), std::pair(2, 70000)}) {
        const Dib from = make_random_dib({w, h, 24}, random);
        ASSERT_NO_FATAL_FAILURE(check_box(from, {0, 0, w, h}, 1, 1));
    }
    Dib white = make_dib({4000, 4300, 24}); // the sum of a channel exceeds 32 bits
    std::vector<uint8_t> row(12000, 0xFF);
    for (size_t y = 0; y < 4300; ++y)
        white.write(40 + y * 12000, row);
    EXPECT_EQ(Dib(zoom2(white, {0, 0, 4000, 4300}, 1, 1, 1)).pixel(0, 0), 0xFFFFFFu);
    EXPECT_EQ(Dib(zoom2(white, {0, 0, 4000, 4300}, 1, 20, 1)).pixel(0, 7), 0xFFFFFFu);
}

// 33000 x 257 x 255 is a little more than 2^31.
TEST(ZoomBox, HoldsSumsOfWideBoxesOfFewRows) {
    Dib white = make_dib({33000, 257, 24});
    white.write(40, std::vector<uint8_t>(size_t{33000} * 3 * 257, 0xFF));
    EXPECT_EQ(Dib(zoom2(white, {0, 0, 33000, 257}, 1, 1, 1)).pixel(0, 0), 0xFFFFFFu);
}

} // namespace
