// JPEG of 12 bits a channel.
#include "files/deep_jpeg.hpp"

using namespace kirvo_test;

namespace {

double ramp(uint32_t, uint32_t x, uint32_t y) { return (x * 61 + y * 37) % 4096; }

uint32_t as_byte(double level) { return static_cast<uint32_t>(std::lround(level * 255 / 4095)); }

} // namespace

TEST(DeepJpeg, grey_of_12_bits_is_reduced_to_8) {
    const Bytes bytes = DeepJpeg(61, 47, 1, 1, 1).write([](uint32_t, uint32_t x, uint32_t y) {
        return 65.0 * x + 2.5 * y;
    });
    const Opened opened(bytes);
    ASSERT_EQ(opened.status, KIRVO_FILES_OK) << opened.text(KIRVO_FILES_TEXT_REASON);
    EXPECT_EQ(opened.about.dibBits, 8u);
    EXPECT_EQ(opened.about.fileBits, 12u);
    EXPECT_EQ(opened.text(KIRVO_FILES_TEXT_VARIANT),
              "extended sequential, grey, 12 bits a channel");
    EXPECT_TRUE(opened.has_note(KIRVO_FILES_NOTE_REDUCED));
    for (uint32_t y = 0; y < 47; ++y)
        for (uint32_t x = 0; x < 61; ++x) {
            const uint32_t level = as_byte(std::min(65.0 * x + 2.5 * y, 4095.0));
            EXPECT_NEAR(opened.pixel(x, y) & 255, level, 1) << x << " " << y;
        }
}

TEST(DeepJpeg, colours_follow_their_formula_at_every_sampling) {
    for (const auto& [across, down] : {std::pair{1u, 1u}, {2u, 1u}, {1u, 2u}, {2u, 2u}, {4u, 1u}}) {
        // Chroma is the same over areas that every sampling keeps.
        const auto level = [](uint32_t i, uint32_t x, uint32_t y) {
            return i == 0   ? 900 + 20.0 * x + 11.0 * y
                   : i == 1 ? (x < 32 ? 700.0 : 2300.0)
                            : (y < 16 ? 2500.0 : 1800.0);
        };
        const Opened opened(DeepJpeg(61, 37, 3, across, down).write(level));
        ASSERT_EQ(opened.status, KIRVO_FILES_OK) << opened.text(KIRVO_FILES_TEXT_REASON);
        EXPECT_EQ(opened.about.dibBits, 24u);
        for (uint32_t y = 0; y < 37; ++y)
            for (uint32_t x = 0; x < 61; ++x) {
                const double light = level(0, x, y), blue = level(1, x, y) - 2048,
                             red = level(2, x, y) - 2048;
                const double rgb[] = {light + 1.402 * red, light - 0.344136 * blue - 0.714136 * red,
                                      light + 1.772 * blue};
                for (uint32_t i = 0; i < 3; ++i)
                    EXPECT_NEAR(opened.pixel(x, y) >> (16 - 8 * i) & 255,
                                as_byte(std::clamp(rgb[i], 0.0, 4095.0)), 1)
                        << across << down << " " << x << " " << y << " " << i;
            }
    }
}

TEST(DeepJpeg, black_and_white_lie_side_by_side) {
    const Opened opened(DeepJpeg(32, 8, 1, 1, 1).write([](uint32_t, uint32_t x, uint32_t) {
        return x / 8 % 2 == 0 ? 0.0 : 4095.0;
    }));
    ASSERT_EQ(opened.status, KIRVO_FILES_OK) << opened.text(KIRVO_FILES_TEXT_REASON);
    for (uint32_t x = 0; x < 32; ++x)
        EXPECT_EQ(opened.pixel(x, 3) & 255, x / 8 % 2 == 0 ? 0u : 255u);
}

TEST(DeepJpeg, restart_markers_are_followed) {
    const Bytes plain = DeepJpeg(64, 40, 1, 1, 1).write(ramp);
    const Opened one(plain), other(DeepJpeg(64, 40, 1, 1, 1).write(ramp, 3));
    ASSERT_EQ(other.status, KIRVO_FILES_OK) << other.text(KIRVO_FILES_TEXT_REASON);
    for (uint32_t y = 0; y < 40; ++y)
        for (uint32_t x = 0; x < 64; ++x)
            EXPECT_EQ(one.pixel(x, y), other.pixel(x, y));
}

TEST(DeepJpeg, one_that_ends_early_tells_its_last_whole_row) {
    Bytes bytes = DeepJpeg(64, 160, 1, 1, 1).write(ramp);
    bytes.resize(bytes.size() / 2);
    const Opened refused(bytes);
    EXPECT_EQ(refused.status, KIRVO_FILES_ENDS_EARLY);
    EXPECT_EQ(refused.about.wholeRows % 8, 0u);
    EXPECT_GE(refused.about.wholeRows, 64u);
    EXPECT_LE(refused.about.wholeRows, 88u);
    const Opened opened(bytes, KIRVO_FILES_KEEP_GOING);
    EXPECT_EQ(opened.status, KIRVO_FILES_OK);
    EXPECT_TRUE(opened.has_note(KIRVO_FILES_NOTE_ENDS_EARLY));
}

TEST(DeepJpeg, a_progressive_one_is_refused_in_words) {
    Bytes bytes = DeepJpeg(16, 16, 1, 1, 1).write(ramp);
    for (size_t at = 0; at + 1 < bytes.size(); ++at)
        if (bytes[at] == 0xFF && bytes[at + 1] == 0xC1)
            bytes[at + 1] = 0xC2;
    const Opened refused(bytes);
    EXPECT_EQ(refused.status, KIRVO_FILES_UNSUPPORTED);
    EXPECT_EQ(refused.text(KIRVO_FILES_TEXT_REASON),
              "this kind of JPEG is not read: progressive, grey, 12 bits a channel");
}
