// Point operations in place, and the separation of channels.

#include "effects/colour_model.hpp"

using namespace kirvo_test;

namespace {

using Changer = std::function<int32_t(HGLOBAL, const Area&)>;

int32_t negative(HGLOBAL dib, const Area& a) {
    return Dib24Negative(dib, a.x, a.y, a.width, a.height);
}

Changer exchange(int mode) {
    return [=](HGLOBAL dib, const Area& a) {
        return Dib24RGBChange(dib, mode, a.x, a.y, a.width, a.height);
    };
}

// What an operation in place must do to the pixels of the rectangle; all else stays.
void expect_changer(std::initializer_list<int> depths, const Changer& change,
                    const std::function<uint32_t(uint32_t, const Masks&, int)>& pixel) {
    Random random(80);
    for_each_image(depths, random, [&](Dib& dib, const Area& area) {
        Dib expected = copy_of(dib);
        for (int32_t y = area.y; y < area.y + area.height; ++y) {
            for (int32_t x = area.x; x < area.x + area.width; ++x)
                expected.set_pixel(x, y, pixel(dib.pixel(x, y), dib.masks(), dib.bits()));
        }
        EXPECT_EQ(change(dib, area), 0);
        EXPECT_EQ(dib.bytes(), expected.bytes());
        EXPECT_TRUE(is_unlocked(dib));
    });
}

void expect_changer_rules(const Changer& change, std::initializer_list<int> accepted,
                          int32_t depth_status) {
    EXPECT_EQ(change(nullptr, {-1, 0, 1, 1}), KIRVO_NULL_HANDLE);
    Random random(81);
    for (const int bits : {1, 4, 8, 16, 24, 32}) {
        SCOPED_TRACE(bits);
        const bool is_accepted =
            std::find(accepted.begin(), accepted.end(), bits) != accepted.end();
        const Dib dib = make_random_dib({9, 7, bits}, random);
        const std::vector<uint8_t> before = dib.bytes();
        for (const Area& bad :
             {Area{-1, 0, 1, 1}, Area{0, -1, 1, 1}, Area{0, 0, 0, 1}, Area{0, 0, 1, 0}})
            EXPECT_EQ(change(dib, bad), KIRVO_BAD_PARAMETER);
        const int32_t outside = is_accepted ? KIRVO_BAD_PARAMETER : depth_status;
        for (const Area& bad :
             {Area{0, 0, 10, 7}, Area{0, 1, 9, 7}, Area{0x7FFFFFFF, 0, 0x7FFFFFFF, 1}})
            EXPECT_EQ(change(dib, bad), outside);
        EXPECT_EQ(dib.bytes(), before);
        EXPECT_TRUE(is_unlocked(dib));
        DibSpec spec{9, 7, bits};
        spec.extra_bytes = -4;
        EXPECT_EQ(change(make_dib(spec), {0, 0, 1, 1}), outside);
        if (!is_accepted)
            continue;
        ProgressRecorder recorder;
        for (const int height : {1, 7, 200}) {
            const Dib tall = make_dib({3, height + 1, bits});
            recorder.watch();
            EXPECT_EQ(change(tall, {0, 1, 2, height}), 0);
            EXPECT_EQ(recorder.percents(), single_pass_percents(height));
        }
    }
}

// With a header of 48 bytes the rows are still taken to follow 40.
void expect_changer_rows_after_40(const Changer& change) {
    Random random(82);
    DibSpec spec{6, 3, 24};
    spec.header_size = 48;
    const Dib dib = make_random_dib(spec, random);
    std::vector<uint8_t> bytes = dib.bytes();
    Dib plain = make_dib({6, 3, 24});
    plain.write(40, {bytes.begin() + 40, bytes.end() - 8});
    ASSERT_EQ(change(plain, {1, 1, 4, 2}), 0);
    ASSERT_EQ(change(dib, {1, 1, 4, 2}), 0);
    const std::vector<uint8_t> rows = plain.rows();
    std::copy(rows.begin(), rows.end(), bytes.begin() + 40);
    EXPECT_EQ(dib.bytes(), bytes);
}

struct Separated {
    Dib red, green, blue;
    int32_t status;
};

Separated separate(HGLOBAL dib, const Area& a) {
    HGLOBAL images[3] = {dib, dib, dib};
    const int32_t status =
        Dib24Separate(dib, a.x, a.y, a.width, a.height, &images[0], &images[1], &images[2]);
    return {Dib(images[0]), Dib(images[1]), Dib(images[2]), status};
}

} // namespace

TEST(Negative, FlipsTheBitsUnderTheMasks) {
    expect_changer({16, 24, 32}, negative, [](uint32_t pixel, const Masks& masks, int bits) {
        if (bits == 24)
            return pixel ^ 0xFFFFFF;
        return pixel ^ ((masks.red + masks.green + masks.blue) & (bits == 16 ? 0xFFFF : ~0u));
    });
}

TEST(Negative, OverlappingMasksAreAdded) {
    DibSpec spec{3, 1, 16};
    spec.masks = Masks{0x00FF, 0x0FF0, 0xFF00};
    Dib dib = make_dib(spec);
    dib.set_pixel(1, 0, 0x1234);
    EXPECT_EQ(negative(dib, {1, 0, 1, 1}), 0);
    EXPECT_EQ(dib.pixel(0, 0), 0u);
    EXPECT_EQ(dib.pixel(1, 0), 0x1234u ^ ((0x00FFu + 0x0FF0u + 0xFF00u) & 0xFFFFu));
    EXPECT_EQ(dib.pixel(2, 0), 0u);
}

TEST(Negative, TwiceIsTheImageAgain) {
    Random random(83);
    for (const int bits : {16, 24, 32}) {
        const Dib dib = make_random_dib({13, 5, bits}, random);
        const std::vector<uint8_t> before = dib.bytes();
        EXPECT_EQ(negative(dib, {2, 1, 11, 4}), 0);
        EXPECT_NE(dib.bytes(), before);
        EXPECT_EQ(negative(dib, {2, 1, 11, 4}), 0);
        EXPECT_EQ(dib.bytes(), before);
    }
}

TEST(Negative, KeepsTheCommonRules) {
    expect_changer_rules(negative, {16, 24, 32}, KIRVO_NEEDS_16_24_32);
    expect_changer_rows_after_40(negative);
}

TEST(RGBChange, ExchangesTheChannels) {
    const ColourFunction modes[] = {
        [](Colour c) { return rgb(c.red, c.blue, c.green); },
        [](Colour c) { return rgb(c.green, c.blue, c.red); },
        [](Colour c) { return rgb(c.green, c.red, c.blue); },
        [](Colour c) { return rgb(c.blue, c.red, c.green); },
        [](Colour c) { return rgb(c.blue, c.green, c.red); },
    };
    for (int mode = 1; mode <= 5; ++mode) {
        SCOPED_TRACE(mode);
        expect_changer({24, 32}, exchange(mode), [&](uint32_t pixel, const Masks& masks, int bits) {
            return pixel_of(modes[mode - 1](colour_of(pixel, bits, masks)), bits, masks);
        });
    }
}

TEST(RGBChange, ModeZeroDoesNothingAndOthersAreRefusedFirst) {
    EXPECT_EQ(exchange(0)(nullptr, {-1, 0, 0, 0}), 0);
    EXPECT_EQ(exchange(-1)(nullptr, {0, 0, 1, 1}), KIRVO_BAD_PARAMETER);
    EXPECT_EQ(exchange(6)(nullptr, {0, 0, 1, 1}), KIRVO_BAD_PARAMETER);
    Random random(84);
    const Dib dib = make_random_dib({4, 4, 32}, random);
    const std::vector<uint8_t> before = dib.bytes();
    ProgressRecorder recorder;
    recorder.watch();
    EXPECT_EQ(exchange(0)(dib, {0, 0, 4, 4}), 0);
    EXPECT_EQ(exchange(6)(dib, {0, 0, 4, 4}), KIRVO_BAD_PARAMETER);
    EXPECT_EQ(dib.bytes(), before);
    EXPECT_TRUE(recorder.percents().empty());
}

TEST(RGBChange, KeepsTheCommonRules) {
    expect_changer_rules(exchange(4), {24, 32}, KIRVO_NEEDS_24_32);
    expect_changer_rows_after_40(exchange(4));
}

TEST(Separate, KeepsOneChannelInEachImage) {
    Random random(85);
    for_each_image({24, 32}, random, [&](Dib& dib, const Area& area) {
        const std::vector<uint8_t> before = dib.bytes();
        const Separated images = separate(dib, area);
        ASSERT_EQ(images.status, 0);
        EXPECT_EQ(dib.bytes(), before);
        EXPECT_TRUE(is_unlocked(dib));
        expect_changed(images.red, dib, area, [](Colour c) { return rgb(c.red, 0, 0); });
        expect_changed(images.green, dib, area, [](Colour c) { return rgb(0, c.green, 0); });
        expect_changed(images.blue, dib, area, [](Colour c) { return rgb(0, 0, c.blue); });
    });
}

TEST(Separate, NullPointersAreAllowed) {
    Random random(86);
    const Dib dib = make_random_dib({4, 4, 24}, random);
    HGLOBAL green = nullptr;
    EXPECT_EQ(Dib24Separate(dib, 0, 0, 4, 4, nullptr, &green, nullptr), 0);
    const Dib image(green);
    expect_changed(image, dib, {0, 0, 4, 4}, [](Colour c) { return rgb(0, c.green, 0); });
    EXPECT_EQ(Dib24Separate(dib, 0, 0, 4, 4, nullptr, nullptr, nullptr), 0);
}

TEST(Separate, KeepsTheCommonRules) {
    expect_changer_rules([](HGLOBAL dib, const Area& area) { return separate(dib, area).status; },
                         {24, 32}, KIRVO_NEEDS_24_32);
    HGLOBAL images[3] = {&images, &images, &images};
    EXPECT_EQ(Dib24Separate(nullptr, 0, 0, 1, 1, &images[0], &images[1], &images[2]),
              KIRVO_NULL_HANDLE);
    for (const HGLOBAL image : images)
        EXPECT_EQ(image, nullptr);
}
