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

TEST(DeepJpeg, a_progressive_one_is_the_same_as_its_sequential_brother) {
    for (const uint32_t components : {1u, 3u}) {
        const auto level = [](uint32_t i, uint32_t x, uint32_t y) {
            return std::fmod(900.0 + 20.0 * x + 11.0 * y * i + (x * y % 7) * 130.0, 4095.0);
        };
        const Opened one(DeepJpeg(61, 37, components, 1, 1).write(level));
        const Opened other(DeepJpeg(61, 37, components, 1, 1).write_progressive(level));
        ASSERT_EQ(other.status, KIRVO_FILES_OK) << other.text(KIRVO_FILES_TEXT_REASON);
        EXPECT_NE(other.about.flags & KIRVO_FILES_PROGRESSIVE, 0u);
        for (uint32_t y = 0; y < 37; ++y)
            for (uint32_t x = 0; x < 61; ++x)
                ASSERT_EQ(other.pixel(x, y), one.pixel(x, y)) << x << " " << y;
    }
}

TEST(DeepJpeg, a_progressive_one_that_lacks_its_last_passes_is_refused) {
    Bytes bytes = DeepJpeg(40, 40, 1, 1, 1).write_progressive(ramp);
    size_t last_scan = bytes.size() - 2;
    while (bytes[last_scan] != 0xFF || bytes[last_scan + 1] != 0xDA)
        --last_scan;
    bytes.resize(last_scan);
    const Bytes cut = bytes;
    bytes.insert(bytes.end(), {0xFF, 0xD9});
    for (const Bytes& each : {cut, bytes}) {
        EXPECT_EQ(Opened(each).status, KIRVO_FILES_ENDS_EARLY);
        EXPECT_EQ(Opened(each, KIRVO_FILES_KEEP_GOING).status, KIRVO_FILES_OK);
    }
}

TEST(DeepJpeg, passes_that_do_not_follow_each_other_are_damage) {
    const Bytes good = DeepJpeg(24, 24, 1, 1, 1).write_progressive(ramp);
    std::vector<size_t> scans;
    for (size_t at = 0; at + 1 < good.size(); ++at)
        if (good[at] == 0xFF && good[at + 1] == 0xDA)
            scans.push_back(at);
    ASSERT_EQ(scans.size(), 6u);
    Bytes twice(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(scans[1]));
    twice.insert(twice.end(), good.begin() + static_cast<std::ptrdiff_t>(scans[0]), good.end());
    EXPECT_EQ(Opened(twice).status, KIRVO_FILES_DAMAGED);
    for (const auto& [place, value] :
         {std::pair{7u, 70}, {6u, 9}, {8u, 0x0F}, {8u, 0x42}, {5u, 7}}) {
        Bytes bad = good;
        bad[scans[1] + place] = static_cast<uint8_t>(value); // of the band from 1 to 5
        EXPECT_EQ(Opened(bad).status, KIRVO_FILES_DAMAGED) << place;
    }
}
