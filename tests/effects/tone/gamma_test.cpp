// Gamma correction.

#include "effects/colour_model.hpp"

#include <bit>
#include <cmath>
#include <limits>

using namespace kirvo_test;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
const double not_a_number = std::numeric_limits<double>::quiet_NaN();

Maker corrected_by(double value) {
    return [=](HGLOBAL dib, const Area& a, int32_t* status) {
        return Dib24Gamma(dib, a.x, a.y, a.width, a.height, value, status);
    };
}

Maker corrected_by_channel(double red, double green, double blue) {
    return [=](HGLOBAL dib, const Area& a, int32_t* status) {
        return DibGammaEx(dib, a.x, a.y, a.width, a.height, red, green, blue, status);
    };
}

int corrected(int level, double gamma) {
    if (std::bit_cast<uint64_t>(gamma) == std::bit_cast<uint64_t>(1.0))
        return level;
    return static_cast<int>(255.0 * std::pow(level / 255.0, gamma));
}

// What a gamma makes of the levels 0 to 255, found with an image of one row.
std::vector<int> levels(double value) {
    Dib dib = make_dib({256, 1, 24});
    for (int i = 0; i < 256; ++i)
        dib.set_pixel(i, 0, static_cast<uint32_t>(i * 0x010101));
    const Dib result(corrected_by(value)(dib, {0, 0, 256, 1}, nullptr));
    std::vector<int> found;
    for (int i = 0; i < 256; ++i)
        found.push_back(static_cast<int>(result.pixel(i, 0) & 0xFF));
    return found;
}

int32_t status_of(const Maker& make, HGLOBAL dib) {
    int32_t status = 77;
    const Dib result(make(dib, {0, 0, 1, 1}, &status));
    EXPECT_EQ(HGLOBAL(result) != nullptr, status == 0);
    return status;
}

} // namespace

TEST(Gamma, LevelsFollowThePower) {
    const std::vector<int> two = levels(2.0);
    EXPECT_EQ(two[0], 0);
    EXPECT_EQ(two[1], 0);
    EXPECT_EQ(two[16], 1); // 256 / 255
    EXPECT_EQ(two[128], 64);
    EXPECT_EQ(two[254], 253);
    EXPECT_EQ(two[255], 255);
    const std::vector<int> half = levels(0.5);
    EXPECT_EQ(half[1], 15); // the root of 255
    EXPECT_EQ(half[64], 127);
    EXPECT_EQ(half[255], 255);
}

TEST(Gamma, OneIsTheIdentity) {
    const std::vector<int> one = levels(1.0);
    for (int i = 0; i < 256; ++i)
        EXPECT_EQ(one[static_cast<size_t>(i)], i);
}

// The next doubles to 1 are not 1: whole levels fall short where the product rounds down.
TEST(Gamma, OneIsComparedBitForBit) {
    const std::vector<int> above = levels(std::nextafter(1.0, 2.0));
    const std::vector<int> below = levels(std::nextafter(1.0, 0.0));
    int lower_above = 0, lower_below = 0;
    for (int i = 0; i < 256; ++i) {
        const int a = above[static_cast<size_t>(i)], b = below[static_cast<size_t>(i)];
        EXPECT_TRUE(a == i || a == i - 1) << i;
        EXPECT_TRUE(b == i || b == i - 1) << i;
        lower_above += a != i;
        lower_below += b != i;
    }
    EXPECT_EQ(lower_above, 178);
    EXPECT_EQ(lower_below, 0);
}

TEST(Gamma, EndsOfTheRange) {
    for (const double zero : {0.0, -0.0}) {
        for (const int level : levels(zero))
            EXPECT_EQ(level, 255);
    }
    const std::vector<int> all = levels(infinity), large = levels(1e300);
    for (size_t i = 0; i < 256; ++i) {
        EXPECT_EQ(all[i], i == 255 ? 255 : 0);
        EXPECT_EQ(large[i], i == 255 ? 255 : 0);
    }
    const std::vector<int> tiny = levels(1e-300);
    EXPECT_EQ(tiny[0], 0);
    EXPECT_EQ(tiny[1], 255);
}

TEST(Gamma, AllLevelsOfManyGammas) {
    for (int hundredths = 1; hundredths <= 500; hundredths += 7) {
        const double value = hundredths / 100.0;
        const std::vector<int> found = levels(value);
        for (int i = 0; i < 256; ++i)
            EXPECT_EQ(found[static_cast<size_t>(i)], corrected(i, value)) << i << " " << value;
    }
}

// One number for all systems.
TEST(Gamma, LevelsAreTheSameEverywhere) {
    uint64_t digest = 0xCBF29CE484222325;
    const auto add = [&](double value) {
        for (const int level : levels(value))
            digest = (digest ^ static_cast<uint64_t>(level)) * 0x100000001B3;
    };
    for (int i = 0; i < 400; ++i)
        add(i / 40.0);
    for (int i = -40; i <= 40; ++i) {
        add(1.0 + i * 0x1p-52);
        add(2.0 + i * 0x1p-51);
        add(0.5 + i * 0x1p-53);
        add(1.0 + i * 1e-9);
    }
    EXPECT_EQ(digest, 3862966880294780692u);
}

TEST(Gamma, EveryPixel) {
    for (const double value : {0.0, 0.45, 1.0, 2.2})
        expect_maker(
            {24}, corrected_by(value),
            [=](Colour c) {
                return rgb(corrected(c.red, value), corrected(c.green, value),
                           corrected(c.blue, value));
            },
            90);
}

TEST(Gamma, KeepsTheCommonRules) {
    expect_maker_rules(corrected_by(1.0), {24}, KIRVO_NEEDS_24);
    expect_rows_after_header(corrected_by(1.0), [](Colour c) { return c; });
}

TEST(Gamma, RefusesNegativeValuesAndNaNAfterTheRectangle) {
    const Dib dib = make_dib({2, 2, 24}), deep = make_dib({2, 2, 32}), few = make_dib({2, 2, 4});
    for (const double bad : {-1e-300, -1.0, -infinity, not_a_number}) {
        EXPECT_EQ(status_of(corrected_by(bad), dib), KIRVO_BAD_PARAMETER);
        EXPECT_EQ(status_of(corrected_by(bad), nullptr), KIRVO_NULL_HANDLE);
        EXPECT_EQ(status_of(corrected_by(bad), deep), KIRVO_NEEDS_24);
        EXPECT_EQ(status_of(corrected_by_channel(bad, 1, 1), dib), KIRVO_BAD_PARAMETER);
        EXPECT_EQ(status_of(corrected_by_channel(1, bad, 1), dib), KIRVO_BAD_PARAMETER);
        EXPECT_EQ(status_of(corrected_by_channel(1, 1, bad), dib), KIRVO_BAD_PARAMETER);
        EXPECT_EQ(status_of(corrected_by_channel(1, 1, bad), nullptr), KIRVO_NULL_HANDLE);
        EXPECT_EQ(status_of(corrected_by_channel(1, 1, bad), few), KIRVO_NEEDS_8_16_24_32);
    }
    EXPECT_TRUE(is_unlocked(dib));
}

TEST(ChannelGamma, EveryPixelAtEveryDepth) {
    for (const auto& [red, green, blue] :
         {std::array{1.0, 1.0, 1.0}, std::array{0.4, 1.0, 2.5}, std::array{1.8, 0.0, 0.7}})
        expect_maker(
            {16, 24, 32}, corrected_by_channel(red, green, blue),
            [r = red, g = green, b = blue](Colour c) {
                return rgb(corrected(c.red, r), corrected(c.green, g), corrected(c.blue, b));
            },
            91);
}

TEST(ChannelGamma, KeepsTheCommonRules) {
    expect_maker_rules(corrected_by_channel(1, 1, 1), {8, 16, 24, 32}, KIRVO_NEEDS_8_16_24_32);
    expect_rows_after_header(corrected_by_channel(1, 1, 1), [](Colour c) { return c; });
}

TEST(ChannelGamma, IndexedImagesKeepTheirPixelsAndGetACorrectedTable) {
    Random random(92);
    const Dib dib = make_random_dib({11, 6, 8}, random);
    ProgressRecorder recorder;
    recorder.watch();
    int32_t status = 77;
    const Dib result(DibGammaEx(dib, 4, 3, 7, 2, 0.5, 1.0, 2.0, &status));
    EXPECT_EQ(status, 0);
    EXPECT_EQ(recorder.percents(), (std::vector{0, 100}));
    ASSERT_NE(HGLOBAL(result), nullptr);
    EXPECT_EQ(result.width(), 7);
    EXPECT_EQ(result.height(), 2);
    for (int y = 0; y < 2; ++y) {
        for (int x = 0; x < 7; ++x)
            EXPECT_EQ(result.pixel(x, y), dib.pixel(4 + x, 3 + y));
    }
    const std::vector<uint8_t> before = dib.bytes(), after = result.bytes();
    for (size_t i = 40; i < 40 + 1024; i += 4) {
        EXPECT_EQ(after[i], corrected(before[i], 2.0)); // blue
        EXPECT_EQ(after[i + 1], before[i + 1]);
        EXPECT_EQ(after[i + 2], corrected(before[i + 2], 0.5));
        EXPECT_EQ(after[i + 3], before[i + 3]);
    }
    EXPECT_TRUE(is_unlocked(dib));
    EXPECT_TRUE(is_unlocked(result));
}

TEST(ChannelGamma, All256EntriesAreTakenHoweverManyAreUsed) {
    Random random(93);
    DibSpec spec{8, 4, 8};
    spec.colours_used = 4;
    const Dib dib = make_random_dib(spec, random);
    const Dib result(DibGammaEx(dib, 0, 0, 8, 4, 2.0, 2.0, 2.0, nullptr));
    ASSERT_NE(HGLOBAL(result), nullptr);
    EXPECT_EQ(result.header().biClrUsed, 0u);
    // 4 entries and 32 pixels follow the header; bytes past the end count as 0.
    const std::vector<uint8_t> before = dib.bytes(), after = result.bytes();
    for (size_t i = 0; i < 1024; ++i) {
        const int entry = 40 + i < before.size() ? before[40 + i] : 0;
        EXPECT_EQ(after[40 + i], i % 4 == 3 ? entry : corrected(entry, 2.0)) << i;
    }
    EXPECT_EQ(result.rows(), dib.rows());
}
