// Hue, saturation, value, and the operations on hues.

#include "effects/colour_model.hpp"

#include <tuple>

using namespace kirvo_test;

namespace {

using Triple = std::tuple<int, int, int>;

Triple hsv_of(int32_t red, int32_t green, int32_t blue) {
    int32_t h = 77, s = 77, v = 77;
    RGB2HSV(red, green, blue, &h, &s, &v);
    return {h, s, v};
}

Triple rgb_of(int32_t hue, int32_t saturation, int32_t value) {
    int32_t r = 77, g = 77, b = 77;
    HSV2RGB(hue, saturation, value, &r, &g, &b);
    return {r, g, b};
}

// The conversions written out.
Triple plain_hsv(Colour c) {
    const int v = std::max({c.red, c.green, c.blue});
    const int m = std::min({c.red, c.green, c.blue});
    const int s = v - m;
    if (s == 0)
        return {0, 0, v};
    double h;
    if (v == c.red)
        h = double(c.green - c.blue) / s;
    else if (v == c.green)
        h = double(c.blue - c.red) / s + 2.0;
    else
        h = double(c.red - c.green) / s + 4.0;
    int hue = static_cast<int>(h * 60.0);
    while (hue < 0)
        hue += 360;
    while (hue >= 360)
        hue -= 360;
    return {hue, s, v};
}

Colour plain_rgb(int h, int s, int v) {
    const int sector = h / 60;
    const int f = static_cast<int>(((h - 60 * sector) / 60.0) * s);
    const int m = v - s;
    const Colour colours[] = {rgb(v, m + f, m), rgb(v - f, v, m), rgb(m, v, m + f),
                              rgb(m, v - f, v), rgb(m + f, m, v), rgb(v, m, v - f)};
    return colours[sector];
}

ColourFunction hue_change(int mode, int value) {
    return [=](Colour c) {
        auto [h, s, v] = plain_hsv(c);
        if (mode == 1)
            s = s * 2 / 3;
        if (mode != 2)
            return plain_rgb(value, s, v);
        h += value;
        if (h < 0)
            h += 360;
        while (h >= 360)
            h -= 360;
        return plain_rgb(h, s, v);
    };
}

Maker modify(int mode, int value) {
    return [=](HGLOBAL dib, const Area& a, int32_t* status) {
        return DibModifyHueEx(dib, a.x, a.y, a.width, a.height, mode, value, status);
    };
}

int32_t status_of(int mode, int value, HGLOBAL dib, const Area& area = {0, 0, 1, 1}) {
    int32_t status = 77;
    const Dib result(modify(mode, value)(dib, area, &status));
    EXPECT_EQ(HGLOBAL(result) != nullptr, status == 0);
    return status;
}

} // namespace

TEST(Hsv, OfColours) {
    EXPECT_EQ(hsv_of(255, 0, 0), Triple(0, 255, 255));
    EXPECT_EQ(hsv_of(0, 255, 0), Triple(120, 255, 255));
    EXPECT_EQ(hsv_of(0, 0, 255), Triple(240, 255, 255));
    EXPECT_EQ(hsv_of(255, 0, 255), Triple(300, 255, 255));
    EXPECT_EQ(hsv_of(255, 255, 0), Triple(60, 255, 255));  // red comes first
    EXPECT_EQ(hsv_of(0, 255, 255), Triple(180, 255, 255)); // green before blue
    EXPECT_EQ(hsv_of(9, 9, 9), Triple(0, 0, 9));
    EXPECT_EQ(hsv_of(0, 0, 0), Triple(0, 0, 0));
    EXPECT_EQ(hsv_of(200, 100, 101), Triple(0, 100, 200));   // -0.6 degrees are 0
    EXPECT_EQ(hsv_of(200, 100, 102), Triple(359, 100, 200)); // -1.2 degrees are -1
}

// 2 - 5/6 sixths of the circle are 70 degrees, but a little less in doubles.
TEST(Hsv, HuesAreTruncatedInDoublePrecision) {
    EXPECT_EQ(hsv_of(5, 6, 0), Triple(69, 6, 6));
    EXPECT_EQ(hsv_of(1, 0, 10), Triple(245, 10, 10));
    EXPECT_EQ(hsv_of(1, 2, 0), Triple(90, 2, 2));
}

TEST(Hsv, OfAllColoursOfACoarseCubeAndBack) {
    for (int red = 0; red < 256; red += 5) {
        for (int green = 0; green < 256; green += 3) {
            for (int blue = 0; blue < 256; blue += 5) {
                const Triple hsv = plain_hsv(rgb(red, green, blue));
                ASSERT_EQ(hsv_of(red, green, blue), hsv);
                const auto [h, s, v] = hsv;
                const Colour back = plain_rgb(h, s, v);
                ASSERT_EQ(rgb_of(h, s, v), Triple(back.red, back.green, back.blue));
            }
        }
    }
}

TEST(Hsv, SaturationAndValueAlone) {
    int32_t s = 77, v = 77;
    RGB2SV(10, 250, 40, &s, &v);
    EXPECT_EQ(s, 240);
    EXPECT_EQ(v, 250);
    RGB2SV(7, 7, 7, &s, &v);
    EXPECT_EQ(s, 0);
    EXPECT_EQ(v, 7);
    EXPECT_EQ(RGB2V(1, 2, 3), 3);
    EXPECT_EQ(RGB2V(3, 2, 1), 3);
    EXPECT_EQ(RGB2V(-3, -2, -1), -1);
}

TEST(Hsv, ColoursOfEverySector) {
    EXPECT_EQ(rgb_of(30, 200, 250), Triple(250, 150, 50));
    EXPECT_EQ(rgb_of(90, 200, 250), Triple(150, 250, 50));
    EXPECT_EQ(rgb_of(150, 200, 250), Triple(50, 250, 150));
    EXPECT_EQ(rgb_of(210, 200, 250), Triple(50, 150, 250));
    EXPECT_EQ(rgb_of(270, 200, 250), Triple(150, 50, 250));
    EXPECT_EQ(rgb_of(330, 200, 250), Triple(250, 50, 150));
    EXPECT_EQ(rgb_of(359, 0, 12), Triple(12, 12, 12));
}

TEST(Hsv, HuesOutsideTheCircleAreBlack) {
    for (const int hue : {360, -1, -59, -60, 361, 420, INT32_MAX, INT32_MIN})
        EXPECT_EQ(rgb_of(hue, 100, 200), Triple(0, 0, 0)) << hue;
}

TEST(Hsv, ChannelsAreClamped) {
    EXPECT_EQ(rgb_of(0, 300, 280), Triple(255, 0, 0));
    EXPECT_EQ(rgb_of(90, 1000, 100), Triple(0, 100, 0));
    EXPECT_EQ(rgb_of(0, -100, 200), Triple(200, 255, 255));
    EXPECT_EQ(rgb_of(59, INT32_MAX, INT32_MIN), Triple(0, 0, 0));
    EXPECT_EQ(rgb_of(59, INT32_MIN, INT32_MAX), Triple(255, 255, 255));
}

TEST(Hsv, ExtremeChannelsAreNoHazard) {
    const auto [hue, saturation, value] = hsv_of(INT32_MAX, INT32_MIN, 0);
    EXPECT_EQ(hue, 330); // half of the spread below red
    EXPECT_EQ(saturation, -1);
    EXPECT_EQ(value, INT32_MAX);
    EXPECT_EQ(std::get<0>(hsv_of(INT32_MIN, 0, INT32_MAX)), 209); // a little below half
}

TEST(Hsv, NullPointersAreAllowed) {
    RGB2HSV(1, 2, 3, nullptr, nullptr, nullptr);
    RGB2SV(1, 2, 3, nullptr, nullptr);
    HSV2RGB(1, 2, 3, nullptr, nullptr, nullptr);
}

TEST(ModifyHue, EveryPixelInPlace) {
    const std::pair<int, int> cases[] = {{0, 0},    {0, 200}, {0, 359},     {1, 0},       {1, 77},
                                         {2, 0},    {2, 1},   {2, 359},     {2, 180},     {2, -1},
                                         {2, -259}, {2, -60}, {0, 42 + 60}, {1, 44 + 120}};
    for (const auto& [mode, value] : cases) {
        SCOPED_TRACE(testing::Message() << mode << ", " << value);
        Random random(100);
        for_each_image({24}, random, [&, mode = mode, value = value](Dib& dib, const Area&) {
            Dib expected = copy_of(dib);
            const ColourFunction change = hue_change(mode, value);
            for (int y = 0; y < dib.height(); ++y) {
                for (int x = 0; x < dib.width(); ++x)
                    expected.set_pixel(
                        x, y, pixel_of(change(colour_of(dib.pixel(x, y), 24, {})), 24, {}));
            }
            EXPECT_EQ(DibModifyHue(dib, mode, value), 0);
            EXPECT_EQ(dib.bytes(), expected.bytes()); // padding too
            EXPECT_TRUE(is_unlocked(dib));
        });
    }
}

TEST(ModifyHue, GreysStay) {
    Dib dib = make_dib({256, 1, 24});
    for (int i = 0; i < 256; ++i)
        dib.set_pixel(i, 0, static_cast<uint32_t>(i * 0x010101));
    const std::vector<uint8_t> before = dib.bytes();
    for (int mode = 0; mode < 3; ++mode) {
        EXPECT_EQ(DibModifyHue(dib, mode, 123), 0);
        EXPECT_EQ(dib.bytes(), before);
    }
}

TEST(ModifyHue, StatusesInTheirOrder) {
    const Dib dib = make_dib({2, 2, 24}), deep = make_dib({2, 2, 32});
    EXPECT_EQ(DibModifyHue(nullptr, 7, 1000), KIRVO_NULL_HANDLE);
    for (const int mode : {-1, 3, INT32_MAX, INT32_MIN}) {
        EXPECT_EQ(DibModifyHue(dib, mode, 0), KIRVO_BAD_PARAMETER);
        EXPECT_EQ(DibModifyHue(deep, mode, 0), KIRVO_BAD_PARAMETER);
    }
    for (int mode = 0; mode < 3; ++mode) {
        EXPECT_EQ(DibModifyHue(dib, mode, 360), KIRVO_BAD_PARAMETER);
        EXPECT_EQ(DibModifyHue(dib, mode, 359), 0);
        EXPECT_EQ(DibModifyHue(dib, mode, -1), mode == 2 ? 0 : KIRVO_BAD_PARAMETER);
        EXPECT_EQ(DibModifyHue(dib, mode, 0), 0);
    }
    EXPECT_EQ(DibModifyHue(dib, 2, -259), 0);
    EXPECT_EQ(DibModifyHue(dib, 2, -260), KIRVO_BAD_PARAMETER);
    EXPECT_EQ(DibModifyHue(dib, 2, -359), KIRVO_BAD_PARAMETER);
    for (const int bits : {1, 4, 8, 16, 32})
        EXPECT_EQ(DibModifyHue(make_dib({2, 2, bits}), 0, 0), KIRVO_NEEDS_24);
    DibSpec spec{9, 3, 24};
    spec.extra_bytes = -4;
    EXPECT_EQ(DibModifyHue(make_dib(spec), 0, 0), KIRVO_BAD_PARAMETER);
    EXPECT_TRUE(is_unlocked(dib));
    EXPECT_TRUE(is_unlocked(deep));
}

TEST(ModifyHue, ReportsProgressPerRow) {
    ProgressRecorder recorder;
    for (const int height : {1, 7, 200}) {
        recorder.watch();
        EXPECT_EQ(DibModifyHue(make_dib({2, height, 24}), 2, 5), 0);
        EXPECT_EQ(recorder.percents(), single_pass_percents(height));
    }
    recorder.watch();
    EXPECT_EQ(DibModifyHue(make_dib({2, 2, 32}), 2, 5), KIRVO_NEEDS_24);
    EXPECT_TRUE(recorder.percents().empty());
}

TEST(ModifyHue, PixelsFollowTheHeaderWhateverItsColourCount) {
    Random random(101);
    DibSpec spec{4, 2, 24};
    spec.header_size = 44;
    Dib dib = make_random_dib(spec, random);
    BITMAPINFOHEADER header = dib.header();
    header.biClrUsed = 2; // would put the rows 8 bytes further
    Dib plain = make_dib({4, 2, 24});
    plain.write(40, dib.rows());
    dib.set_header(header);
    EXPECT_EQ(DibModifyHue(plain, 0, 33), 0);
    EXPECT_EQ(DibModifyHue(dib, 0, 33), 0);
    header.biClrUsed = 0;
    dib.set_header(header);
    EXPECT_EQ(dib.rows(), plain.rows());
}

TEST(ModifyHueEx, EveryPixelAtEveryDepth) {
    const std::pair<int, int> cases[] = {{0, 42}, {0, 300}, {1, 144}, {1, 5},
                                         {2, 0},  {2, 100}, {2, 359}};
    for (const auto& [mode, value] : cases) {
        SCOPED_TRACE(testing::Message() << mode << ", " << value);
        Random random(102);
        const ColourFunction change = hue_change(mode, value);
        for_each_image(
            {16, 24, 32}, random, [&, mode = mode, value = value](Dib& dib, const Area& area) {
                const std::vector<uint8_t> before = dib.bytes();
                int32_t status = 77;
                const Dib result(modify(mode, value)(dib, area, &status));
                ASSERT_EQ(status, 0);
                EXPECT_EQ(dib.bytes(), before);
                EXPECT_TRUE(is_unlocked(dib));
                EXPECT_TRUE(is_unlocked(result));
                // A copy of a whole image has its padding, that of a part of it zeros.
                DibSpec spec{area.width, area.height, dib.bits()};
                spec.masks = dib.bits() == 24 ? std::nullopt : std::optional(dib.masks());
                const bool whole = area.width == dib.width() && area.height == dib.height();
                spec.padding = whole ? 0xC3 : 0;
                Dib expected = make_dib(spec);
                for (int y = 0; y < area.height; ++y) {
                    for (int x = 0; x < area.width; ++x) {
                        const Colour c =
                            colour_of(dib.pixel(area.x + x, area.y + y), dib.bits(), dib.masks());
                        expected.set_pixel(x, y, pixel_of(change(c), dib.bits(), dib.masks()));
                    }
                }
                EXPECT_EQ(result.bytes(), expected.bytes());
            });
    }
}

TEST(ModifyHueEx, KeepsTheCommonRules) {
    expect_maker_rules(modify(2, 0), {16, 24, 32}, KIRVO_NEEDS_16_24_32);
}

TEST(ModifyHueEx, RefusesModesAndValuesAfterTheRectangle) {
    const Dib dib = make_dib({2, 2, 24}), grey = make_dib({2, 2, 8});
    const std::pair<int, int> bad[] = {
        {-1, 0}, {3, 0}, {0, 360}, {1, -1}, {2, -1}, {2, 360}, {INT32_MIN, INT32_MIN}};
    for (const auto& [mode, value] : bad) {
        EXPECT_EQ(status_of(mode, value, dib), KIRVO_BAD_PARAMETER);
        EXPECT_EQ(status_of(mode, value, nullptr), KIRVO_NULL_HANDLE);
        EXPECT_EQ(status_of(mode, value, grey), KIRVO_NEEDS_16_24_32);
    }
    EXPECT_EQ(status_of(2, 359, dib), 0);
    EXPECT_TRUE(is_unlocked(dib));
}
