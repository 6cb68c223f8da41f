// New images of one colour and gradients against their formulas.
#include "effects/pictures.hpp"

using namespace kirvo_test;

namespace {

Colour colour_from(uint32_t c) {
    return {static_cast<uint8_t>(c), static_cast<uint8_t>(c >> 8), static_cast<uint8_t>(c >> 16)};
}

uint8_t between(int start, int end, int64_t i, int64_t count) {
    return static_cast<uint8_t>(count < 2 ? start : start + (end - start) * i / (count - 1));
}

Colour between(const Colour& a, const Colour& b, int64_t i, int64_t count) {
    return {between(a.red, b.red, i, count), between(a.green, b.green, i, count),
            between(a.blue, b.blue, i, count)};
}

// 16- and 32-bit images have zero masks and are black.
std::vector<uint8_t> made_bytes(const Picture& picture, int bits) {
    return image_bytes(picture, bits, {0, 0, 0});
}

struct Size {
    int width, height;
};

Size random_size(Random& random) {
    return {random.once_in(4) ? 1 : random.between(1, 300),
            random.once_in(4) ? 1 : random.between(1, 12)};
}

TEST(Solid, FillsWithTheColour) {
    Random random(1);
    for (int bits : {16, 24, 32})
        for (int round = 0; round < 20; ++round) {
            const auto [width, height] = random_size(random);
            const uint32_t colour = random.next();
            Picture expected(width, height);
            std::fill(expected.colours.begin(), expected.colours.end(), colour_from(colour));
            int32_t status = 99;
            const Dib made(Dib24Solid(width, height, bits, colour, &status));
            ASSERT_EQ(status, 0);
            ASSERT_EQ(block_bytes(made), made_bytes(expected, bits));
        }
}

TEST(Gradients, RunFromLeftToRight) {
    Random random(2);
    for (int bits : {16, 24, 32})
        for (int round = 0; round < 40; ++round) {
            const auto [width, height] = random_size(random);
            const uint32_t start = random.next(), end = random.next();
            Picture expected(width, height);
            for (int row = 0; row < height; ++row)
                for (int x = 0; x < width; ++x)
                    expected.at(x, row) = between(colour_from(start), colour_from(end), x, width);
            int32_t status = 99;
            const Dib made(Dib24Gradation1(width, height, bits, start, end, &status));
            ASSERT_EQ(status, 0);
            ASSERT_EQ(block_bytes(made), made_bytes(expected, bits));
        }
}

TEST(Gradients, RunFromTopToBottom) {
    Random random(3);
    for (int bits : {16, 24, 32})
        for (int round = 0; round < 40; ++round) {
            const auto [height, width] = random_size(random);
            const uint32_t start = random.next(), end = random.next();
            Picture expected(width, height);
            for (int y = 0; y < height; ++y)
                for (int x = 0; x < width; ++x)
                    expected.at(x, height - 1 - y) =
                        between(colour_from(start), colour_from(end), y, height);
            int32_t status = 99;
            const Dib made(Dib24Gradation2(width, height, bits, start, end, &status));
            ASSERT_EQ(status, 0);
            ASSERT_EQ(block_bytes(made), made_bytes(expected, bits));
        }
}

TEST(Gradients, SpanFourCorners) {
    Random random(4);
    for (int bits : {16, 24, 32})
        for (int round = 0; round < 60; ++round) {
            const auto [width, height] = random_size(random);
            uint32_t c[4];
            for (uint32_t& colour : c)
                colour = round % 3 == 0 ? 0xC08040 : random.next();
            Picture expected(width, height);
            for (int row = 0; row < height; ++row) {
                const Colour left = between(colour_from(c[2]), colour_from(c[0]), row, height);
                const Colour right = between(colour_from(c[3]), colour_from(c[1]), row, height);
                for (int x = 0; x < width; ++x)
                    expected.at(x, row) = between(left, right, x, width);
            }
            int32_t status = 99;
            const Dib made(Dib24Gradation3(width, height, bits, c[0], c[1], c[2], c[3], &status));
            ASSERT_EQ(status, 0);
            ASSERT_EQ(block_bytes(made), made_bytes(expected, bits));
        }
}

TEST(Gradients, MeetTheirEnds) {
    int32_t status = 99;
    const Dib wide(Dib24Gradation1(256, 1, 24, 0, 0xFFFFFF, &status));
    for (uint32_t i = 0; i < 256; ++i)
        EXPECT_EQ(wide.pixel(static_cast<int>(i), 0), i * 0x010101u);
    const Dib three(Dib24Gradation1(3, 1, 24, 0, 0xFFFFFF, &status));
    EXPECT_EQ(three.pixel(1, 0), 0x7F7F7Fu);
    const Dib back(Dib24Gradation1(3, 1, 24, 0xFFFFFF, 0, &status));
    EXPECT_EQ(back.pixel(1, 0), 0x808080u) << "truncated towards the start";
    const Dib corners(Dib24Gradation3(2, 2, 24, 0x0000FF, 0x00FF00, 0xFF0000, 0xFFFFFF, &status));
    EXPECT_EQ(corners.pixel(0, 0), 0xFF0000u) << "red is the low byte of a colour";
    EXPECT_EQ(corners.pixel(1, 0), 0x00FF00u);
    EXPECT_EQ(corners.pixel(0, 1), 0x0000FFu);
    EXPECT_EQ(corners.pixel(1, 1), 0xFFFFFFu);
}

TEST(Gradients, RefuseBadSizesAndDepths) {
    const auto statuses = [](int width, int height, int bits) {
        int32_t s[4] = {99, 99, 99, 99};
        freed(Dib24Solid(width, height, bits, 1, &s[0]), s[0]);
        freed(Dib24Gradation1(width, height, bits, 1, 2, &s[1]), s[1]);
        freed(Dib24Gradation2(width, height, bits, 1, 2, &s[2]), s[2]);
        freed(Dib24Gradation3(width, height, bits, 1, 2, 3, 4, &s[3]), s[3]);
        return std::vector<int>(s, s + 4);
    };
    const std::vector<int> bad(4, -1), fine(4, 0), too_large(4, -2);
    for (const int size : {0, -1, INT32_MIN}) {
        EXPECT_EQ(statuses(size, 1, 24), bad);
        EXPECT_EQ(statuses(1, size, 24), bad);
    }
    for (const int bits : {0, 1, 4, 8, 15, 23, 25, 48, -24, INT32_MIN})
        EXPECT_EQ(statuses(1, 1, bits), bad);
    for (const int bits : {16, 24, 32})
        EXPECT_EQ(statuses(1, 1, bits), fine);
    EXPECT_EQ(statuses(INT32_MAX, 2, 32), too_large);
    EXPECT_EQ(statuses(100000, 100000, 24), too_large);
}

TEST(Gradients, ReportNothingButWhatTurningThemReports) {
    ProgressRecorder recorder;
    recorder.watch();
    int32_t status = 99;
    const Dib a(Dib24Solid(4, 9, 24, 7, &status));
    const Dib b(Dib24Gradation1(4, 9, 24, 7, 8, &status));
    const Dib c(Dib24Gradation3(4, 9, 24, 7, 8, 9, 10, &status));
    EXPECT_TRUE(recorder.messages().empty());
    const Dib d(Dib24Gradation2(4, 9, 24, 7, 8, &status));
    EXPECT_EQ(recorder.percents(), single_pass_percents(4));
}

} // namespace
