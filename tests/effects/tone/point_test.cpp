// Point operations that make a new image, against the arithmetic of one channel.

#include "effects/colour_model.hpp"

#include <cmath>
#include <limits>

using namespace kirvo_test;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
const double not_a_number = std::numeric_limits<double>::quiet_NaN();

int clamped(int value) { return value < 0 ? 0 : value > 255 ? 255 : value; }

ColourFunction on_each(const std::function<int(int)>& f) {
    return [=](Colour c) { return rgb(f(c.red), f(c.green), f(c.blue)); };
}

Maker brightness(int level) {
    return [=](HGLOBAL dib, const Area& a, int32_t* status) {
        return Dib24Brightness(dib, a.x, a.y, a.width, a.height, level, status);
    };
}

Maker contrast(int level) {
    return [=](HGLOBAL dib, const Area& a, int32_t* status) {
        return Dib24Contrast(dib, a.x, a.y, a.width, a.height, level, status);
    };
}

Maker tone(int32_t numerator, int32_t denominator) {
    return [=](HGLOBAL dib, const Area& a, int32_t* status) {
        return Dib24ToneCtrl(dib, a.x, a.y, a.width, a.height, numerator, denominator, status);
    };
}

Maker factors(double red, double green, double blue) {
    return [=](HGLOBAL dib, const Area& a, int32_t* status) {
        return Dib24ToneCtrlEx(dib, a.x, a.y, a.width, a.height, red, green, blue, status);
    };
}

HGLOBAL monochrome(HGLOBAL dib, const Area& a, int32_t* status) {
    return Dib24Monochrome(dib, a.x, a.y, a.width, a.height, status);
}

HGLOBAL half_tone(HGLOBAL dib, const Area& a, int32_t* status) {
    return Dib24HalfTone(dib, a.x, a.y, a.width, a.height, status);
}

Maker colour_map(const uint8_t* table) {
    return [=](HGLOBAL dib, const Area& a, int32_t* status) {
        return DibColorMapEx(dib, a.x, a.y, a.width, a.height, table, status);
    };
}

Colour one_pixel(const Maker& make, Colour colour) {
    Dib dib = make_dib({1, 1, 24});
    dib.set_pixel(0, 0, pixel_of(colour, 24, {}));
    const Dib result(make(dib, {0, 0, 1, 1}, nullptr));
    EXPECT_NE(HGLOBAL(result), nullptr);
    if (HGLOBAL(result) == nullptr)
        return {};
    return colour_of(result.pixel(0, 0), 24, {});
}

int32_t status_of(const Maker& make, HGLOBAL dib, const Area& area = {0, 0, 1, 1}) {
    int32_t status = 77;
    const Dib result(make(dib, area, &status));
    EXPECT_EQ(HGLOBAL(result) != nullptr, status == 0);
    return status;
}

} // namespace

TEST(Brightness, AddsAShareOf255AndClamps) {
    EXPECT_EQ(one_pixel(brightness(100), {0, 1, 255}), (rgb(255, 255, 255)));
    EXPECT_EQ(one_pixel(brightness(1), {0, 100, 254}), (rgb(2, 102, 255)));
    EXPECT_EQ(one_pixel(brightness(-1), {0, 100, 1}), (rgb(0, 98, 0)));
    EXPECT_EQ(one_pixel(brightness(-50), {127, 128, 255}), (rgb(0, 1, 128)));
    EXPECT_EQ(one_pixel(brightness(0), {1, 2, 3}), (rgb(1, 2, 3)));
}

TEST(Brightness, EveryPixelAtEveryDepth) {
    for (const int level : {-100, -37, 0, 1, 58, 100}) {
        Random random(10);
        for_each_image({24, 32}, random, [&](Dib& dib, const Area& area) {
            if (dib.bits() == 32 && dib.header().biCompression == BI_RGB)
                return; // below
            const Dib result(brightness(level)(dib, area, nullptr));
            ASSERT_NE(HGLOBAL(result), nullptr);
            expect_changed(result, dib, area,
                           on_each([=](int v) { return clamped(v + level * 255 / 100); }));
        });
    }
}

TEST(Brightness, CopiesTheBytesInPlaceOfTheMasksEvenWhereThereAreNone) {
    Random random(11);
    const Dib dib = make_random_dib({5, 2, 32}, random);
    const Dib result(brightness(20)(dib, {2, 0, 3, 2}, nullptr));
    ASSERT_NE(HGLOBAL(result), nullptr);
    // The first three pixels stored, the bottom row's.
    EXPECT_EQ(result.masks(), (Masks{dib.pixel(0, 1), dib.pixel(1, 1), dib.pixel(2, 1)}));
    for (int y = 0; y < 2; ++y) {
        for (int x = 0; x < 3; ++x) {
            const Colour c = colour_of(dib.pixel(2 + x, y), 32, masks_888);
            EXPECT_EQ(result.pixel(x, y), pixel_of(rgb(clamped(c.red + 51), clamped(c.green + 51),
                                                       clamped(c.blue + 51)),
                                                   32, masks_888));
        }
    }
}

TEST(Brightness, BytesPastTheBlockThatStandForMasksAreZero) {
    Dib dib = make_dib({1, 1, 32});
    dib.set_pixel(0, 0, 0x11223344);
    const Dib result(brightness(0)(dib, {0, 0, 1, 1}, nullptr));
    ASSERT_NE(HGLOBAL(result), nullptr);
    EXPECT_EQ(result.masks(), (Masks{0x11223344, 0, 0}));
    EXPECT_EQ(result.pixel(0, 0), 0x00223344u);
}

TEST(Brightness, RefusesLevelsOutOfRangeAfterTheRectangle) {
    const Dib dib = make_dib({2, 2, 24}), grey = make_dib({2, 2, 8});
    for (const int level : {-101, 101, INT32_MAX, INT32_MIN}) {
        EXPECT_EQ(status_of(brightness(level), dib), KIRVO_BAD_PARAMETER);
        EXPECT_EQ(status_of(brightness(level), nullptr), KIRVO_NULL_HANDLE);
        EXPECT_EQ(status_of(brightness(level), grey), KIRVO_NEEDS_24_32);
        EXPECT_EQ(status_of(contrast(level), dib), KIRVO_BAD_PARAMETER);
        EXPECT_EQ(status_of(contrast(level), nullptr), KIRVO_NULL_HANDLE);
        EXPECT_EQ(status_of(contrast(level), grey), KIRVO_NEEDS_24_32);
    }
    EXPECT_TRUE(is_unlocked(dib));
}

TEST(Brightness, KeepsTheCommonRules) {
    expect_maker_rules(brightness(5), {24, 32}, KIRVO_NEEDS_24_32);
    expect_rows_after_header(brightness(0), [](Colour c) { return c; });
}

TEST(Contrast, KeepsMidGrey) {
    EXPECT_EQ(one_pixel(contrast(50), {0, 255, 100}), (rgb(0, 255, 86)));
    EXPECT_EQ(one_pixel(contrast(100), {64, 128, 191}), (rgb(0, 128, 254)));
    EXPECT_EQ(one_pixel(contrast(-100), {0, 17, 255}), (rgb(128, 128, 128)));
    EXPECT_EQ(one_pixel(contrast(0), {0, 17, 255}), (rgb(0, 17, 255)));
    // Both parts are truncated: 99 * 255 / 100 = 252, 128 / 100 = 1.
    EXPECT_EQ(one_pixel(contrast(-1), {255, 1, 0}), (rgb(253, 1, 1)));
}

TEST(Contrast, EveryPixelAtEveryDepth) {
    for (const int level : {-100, -73, -1, 0, 1, 49, 99, 100})
        expect_maker({24, 32}, contrast(level), on_each([=](int v) {
                         return clamped(v * (level + 100) / 100 + -128 * level / 100);
                     }),
                     20);
}

TEST(Contrast, KeepsTheCommonRules) {
    expect_maker_rules(contrast(5), {24, 32}, KIRVO_NEEDS_24_32);
    expect_rows_after_header(contrast(0), [](Colour c) { return c; });
}

TEST(Monochrome, RoundsTheLuminance) {
    EXPECT_EQ(one_pixel(monochrome, {255, 255, 255}), (rgb(255, 255, 255)));
    EXPECT_EQ(one_pixel(monochrome, {0, 0, 0}), (rgb(0, 0, 0)));
    EXPECT_EQ(one_pixel(monochrome, {255, 0, 0}), (rgb(77, 77, 77)));
    EXPECT_EQ(one_pixel(monochrome, {0, 255, 0}), (rgb(149, 149, 149)));
    EXPECT_EQ(one_pixel(monochrome, {0, 0, 255}), (rgb(29, 29, 29)));
}

TEST(Monochrome, EveryPixelAtEveryDepthAs24Bits) {
    expect_maker(
        {24, 32}, monochrome,
        [](Colour c) {
            const int y = (77 * c.red + 150 * c.green + 29 * c.blue + 128) >> 8;
            return rgb(y, y, y);
        },
        30, 24);
}

TEST(Monochrome, KeepsTheCommonRules) {
    expect_maker_rules(monochrome, {24, 32}, KIRVO_NEEDS_24_32);
    expect_rows_after_40(monochrome, [](Colour c) {
        const int y = (77 * c.red + 150 * c.green + 29 * c.blue + 128) >> 8;
        return rgb(y, y, y);
    });
}

TEST(HalfTone, HalvesEveryChannel) {
    EXPECT_EQ(one_pixel(half_tone, {255, 1, 128}), (rgb(127, 0, 64)));
    expect_maker({24, 32}, half_tone, on_each([](int v) { return v >> 1; }), 40);
}

TEST(HalfTone, KeepsTheCommonRules) {
    expect_maker_rules(half_tone, {24, 32}, KIRVO_NEEDS_24_32);
    expect_rows_after_header(half_tone, on_each([](int v) { return v >> 1; }));
}

TEST(ToneByFraction, MultipliesAndStopsAt255) {
    EXPECT_EQ(one_pixel(tone(2, 3), {255, 100, 1}), (rgb(170, 66, 0)));
    EXPECT_EQ(one_pixel(tone(255, 1), {0, 1, 2}), (rgb(0, 255, 255)));
    EXPECT_EQ(one_pixel(tone(1, INT32_MAX), {0, 1, 255}), (rgb(0, 0, 0)));
    const int32_t fractions[][2] = {{1, 1}, {3, 2}, {255, 254}, {7, 200}, {255, 65025}};
    for (const auto& [numerator, denominator] : fractions)
        expect_maker({24, 32}, tone(numerator, denominator),
                     on_each([n = numerator, d = denominator](int v) {
                         const int result = v * n / d;
                         return result >= 255 ? 255 : result;
                     }),
                     50);
}

TEST(ToneByFraction, OverZeroIsBeyond255ExceptForZero) {
    EXPECT_EQ(one_pixel(tone(7, 0), {0, 1, 255}), (rgb(0, 255, 255)));
}

TEST(ToneByFraction, RefusesOtherFractionsAfterTheRectangle) {
    const Dib dib = make_dib({2, 2, 24});
    for (const int32_t numerator : {0, -1, 256, INT32_MAX, INT32_MIN}) {
        EXPECT_EQ(status_of(tone(numerator, 1), dib), KIRVO_BAD_PARAMETER);
        EXPECT_EQ(status_of(tone(numerator, 1), nullptr), KIRVO_NULL_HANDLE);
    }
    EXPECT_EQ(status_of(tone(1, -1), dib), KIRVO_BAD_PARAMETER);
    EXPECT_EQ(status_of(tone(1, INT32_MIN), dib), KIRVO_BAD_PARAMETER);
    EXPECT_EQ(status_of(tone(1, -1), nullptr), KIRVO_NULL_HANDLE);
}

TEST(ToneByFraction, KeepsTheCommonRules) {
    expect_maker_rules(tone(1, 1), {24, 32}, KIRVO_NEEDS_24_32);
    expect_rows_after_header(tone(1, 1), [](Colour c) { return c; });
}

TEST(ToneByFactors, MultipliesEachChannelByItsOwn) {
    EXPECT_EQ(one_pixel(factors(1.5, 0.5, 0.0), {100, 101, 102}), (rgb(150, 50, 0)));
    EXPECT_EQ(one_pixel(factors(2.55, 100.0, 1.0), {100, 3, 255}),
              (rgb(static_cast<int>(2.55 * 100), 255, 255)));
    const auto scaled = [](int v, double factor) {
        const double product = v * factor;
        return product >= 255.0 ? 255 : static_cast<int>(product);
    };
    for (const auto& [red, green, blue] :
         {std::array{1.0, 1.0, 1.0}, std::array{0.1, 1.7, 0.999999}, std::array{1e300, 0.0, 1e-9},
          std::array{1.0 / 3, 2.0 / 3, 4.0 / 3}})
        expect_maker(
            {24, 32}, factors(red, green, blue),
            [=, r = red, g = green, b = blue](Colour c) {
                return rgb(scaled(c.red, r), scaled(c.green, g), scaled(c.blue, b));
            },
            60);
}

TEST(ToneByFactors, InfiniteFactorsGive255ExceptForZero) {
    EXPECT_EQ(one_pixel(factors(infinity, infinity, infinity), {0, 1, 255}), (rgb(0, 255, 255)));
    EXPECT_EQ(one_pixel(factors(std::numeric_limits<double>::max(), -0.0, 1.0), {255, 255, 9}),
              (rgb(255, 0, 9)));
}

TEST(ToneByFactors, RefusesNegativeFactorsAndNaNAfterTheRectangle) {
    const Dib dib = make_dib({2, 2, 24});
    for (const double bad : {-1e-300, -1.0, -infinity, not_a_number}) {
        EXPECT_EQ(status_of(factors(bad, 1, 1), dib), KIRVO_BAD_PARAMETER);
        EXPECT_EQ(status_of(factors(1, bad, 1), dib), KIRVO_BAD_PARAMETER);
        EXPECT_EQ(status_of(factors(1, 1, bad), dib), KIRVO_BAD_PARAMETER);
        EXPECT_EQ(status_of(factors(1, 1, bad), nullptr), KIRVO_NULL_HANDLE);
    }
}

TEST(ToneByFactors, KeepsTheCommonRules) {
    expect_maker_rules(factors(1, 1, 1), {24, 32}, KIRVO_NEEDS_24_32);
    expect_rows_after_header(factors(1, 1, 1), [](Colour c) { return c; });
}

TEST(ColourMap, MapsEveryChannelAtEveryDepth) {
    Random random(70);
    uint8_t table[256];
    random.fill(table, sizeof table);
    expect_maker({16, 24, 32}, colour_map(table), on_each([&](int v) { return table[v]; }), 71);
}

TEST(ColourMap, KeepsTheCommonRules) {
    uint8_t table[256];
    for (int i = 0; i < 256; ++i)
        table[i] = static_cast<uint8_t>(i);
    expect_maker_rules(colour_map(table), {8, 16, 24, 32}, KIRVO_NEEDS_8_16_24_32);
    expect_rows_after_header(colour_map(table), [](Colour c) { return c; });
    const Dib dib = make_dib({2, 2, 24}), few = make_dib({2, 2, 4});
    EXPECT_EQ(status_of(colour_map(nullptr), dib), KIRVO_BAD_PARAMETER);
    EXPECT_EQ(status_of(colour_map(nullptr), nullptr), KIRVO_NULL_HANDLE);
    EXPECT_EQ(status_of(colour_map(nullptr), few), KIRVO_NEEDS_8_16_24_32);
}

TEST(ColourMap, IndexedImagesAreCopiedFromTheTopLeftWithAMappedTable) {
    Random random(72);
    uint8_t table[256];
    random.fill(table, sizeof table);
    const Dib dib = make_random_dib({11, 6, 8}, random);
    ProgressRecorder recorder;
    recorder.watch();
    int32_t status = 77;
    const Dib result(DibColorMapEx(dib, 4, 3, 7, 2, table, &status));
    EXPECT_EQ(status, 0);
    EXPECT_EQ(recorder.percents(), (std::vector{0, 100}));
    ASSERT_NE(HGLOBAL(result), nullptr);
    EXPECT_EQ(result.width(), 7);
    EXPECT_EQ(result.height(), 2);
    for (int y = 0; y < 2; ++y) {
        for (int x = 0; x < 7; ++x)
            EXPECT_EQ(result.pixel(x, y), dib.pixel(x, y));
    }
    const std::vector<uint8_t> before = dib.bytes(), after = result.bytes();
    for (size_t i = 40; i < 40 + 1024; ++i)
        EXPECT_EQ(after[i], i % 4 == 3 ? before[i] : table[before[i]]) << i;
    EXPECT_TRUE(is_unlocked(dib));
    EXPECT_TRUE(is_unlocked(result));
}
