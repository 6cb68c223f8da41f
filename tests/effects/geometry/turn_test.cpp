// Flip, mirror, 180 and 90 degrees against plain formulations in picture coordinates.
#include "support/dib_builder.hpp"
#include "support/progress_recorder.hpp"

#include <algorithm>
#include <gtest/gtest.h>

using namespace kirvo_test;

namespace {

constexpr int depths[] = {8, 16, 24, 32};

using InPlace = int32_t(WINAPI*)(HGLOBAL, int32_t, int32_t, int32_t, int32_t);

struct Turn {
    const char* name;
    InPlace call;
    bool rows, columns; // which it reverses
};

const Turn turns[] = {{"flip", Dib24Flip, true, false},
                      {"mirror", Dib24Mirror, false, true},
                      {"flip and mirror", Dib24FlipMirror, true, true}};

struct Area {
    int32_t x, y, w, h;
};

Area random_area(int32_t width, int32_t height, Random& random) {
    const int32_t w = random.between(1, width), h = random.between(1, height);
    return {random.between(0, width - w), random.between(0, height - h), w, h};
}

std::vector<uint8_t> block(const Dib& dib) {
    const auto* bytes = static_cast<const uint8_t*>(GlobalLock(dib));
    std::vector<uint8_t> copy(bytes, bytes + GlobalSize(dib));
    GlobalUnlock(dib);
    return copy;
}

DibSpec padded(int32_t width, int32_t height, int bits) {
    DibSpec spec{width, height, bits};
    spec.padding = 0xC3;
    if (bits == 16)
        spec.masks = masks_565;
    if (bits == 32)
        spec.masks = masks_bgr888;
    return spec;
}

TEST(Turn, InPlaceMovesEveryPixelOfTheRectangleAndNothingElse) {
    Random random(1);
    for (const Turn& turn : turns)
        for (int bits : depths)
            for (int round = 0; round < 60; ++round) {
                const int32_t width = random.between(1, round < 40 ? 20 : 150);
                const int32_t height = random.between(1, 9);
                const Dib dib = make_random_dib(padded(width, height, bits), random);
                const Area a =
                    round % 5 == 0 ? Area{0, 0, width, height} : random_area(width, height, random);
                Dib expected = copy_of(dib);
                for (int y = 0; y < a.h; ++y)
                    for (int x = 0; x < a.w; ++x)
                        expected.set_pixel(a.x + x, a.y + y,
                                           dib.pixel(a.x + (turn.columns ? a.w - 1 - x : x),
                                                     a.y + (turn.rows ? a.h - 1 - y : y)));
                ASSERT_EQ(turn.call(dib, a.x, a.y, a.w, a.h), 0);
                ASSERT_EQ(block(dib), block(expected)) << turn.name << " " << bits;
                ASSERT_TRUE(is_unlocked(dib));
            }
}

TEST(Turn, LargePicturesAreFlippedAsSmallOnesAre) {
    Random random(5);
    const Dib dib = make_random_dib({1501, 1001, 24}, random);
    const std::vector<uint8_t> before = block(dib);
    ASSERT_EQ(Dib24Flip(dib, 0, 0, 1501, 1001), 0);
    const std::vector<uint8_t> after = block(dib);
    constexpr ptrdiff_t header = 40, stride = 4504, pixels = 3 * 1501;
    for (ptrdiff_t row = 0; row < 1001; ++row)
        ASSERT_TRUE(std::equal(&before[0] + header + row * stride,
                               &before[0] + header + row * stride + pixels,
                               &after[0] + header + (1000 - row) * stride))
            << row;
}

TEST(Turn, FlipMirrorMovesTheCornersAndKeepsTheCentre) {
    Dib dib = make_dib({3, 3, 24});
    for (uint32_t i = 0; i < 9; ++i)
        dib.set_pixel(int32_t(i % 3), int32_t(i / 3), i + 1);
    ASSERT_EQ(Dib24FlipMirror(dib, 0, 0, 3, 3), 0);
    EXPECT_EQ(dib.pixel(2, 2), 1u);
    EXPECT_EQ(dib.pixel(1, 1), 5u);
    EXPECT_EQ(dib.pixel(0, 0), 9u);
    ASSERT_EQ(Dib24Mirror(dib, 1, 0, 1, 3), 0);
    EXPECT_EQ(dib.pixel(1, 0), 8u);
}

TEST(Turn, InPlaceChecksHandleSignsDepthAndExtentInThisOrder) {
    const Dib dib4 = make_dib({4, 4, 4}), dib24 = make_dib({4, 4, 24});
    DibSpec cut{4, 4, 24};
    cut.extra_bytes = -1;
    const Dib small = make_dib(cut);
    for (const Turn& turn : turns) {
        EXPECT_EQ(turn.call(nullptr, -1, 0, 1, 1), -3);
        EXPECT_EQ(turn.call(dib4, -1, 0, 1, 1), -1);
        EXPECT_EQ(turn.call(dib4, 0, -1, 1, 1), -1);
        EXPECT_EQ(turn.call(dib4, 0, 0, 0, 1), -1);
        EXPECT_EQ(turn.call(dib4, 0, 0, 1, 0), -1);
        EXPECT_EQ(turn.call(dib4, 0, 0, 9, 9), -40);
        EXPECT_EQ(turn.call(dib24, 1, 0, 4, 1), -1);
        EXPECT_EQ(turn.call(dib24, 0, 1, 1, 4), -1);
        EXPECT_EQ(turn.call(dib24, 1, 0, INT32_MAX, 1), -1);
        EXPECT_EQ(turn.call(small, 0, 0, 1, 1), -1);
        EXPECT_TRUE(is_unlocked(dib4) && is_unlocked(dib24) && is_unlocked(small));
    }
}

TEST(Turn, FlipsReportTwiceAsFastOverHalfTheRows) {
    ProgressRecorder recorder;
    const Dib dib = make_dib({3, 7, 24});
    for (InPlace flip : {Dib24Flip, Dib24FlipMirror}) {
        recorder.watch();
        ASSERT_EQ(flip(dib, 0, 0, 3, 7), 0);
        EXPECT_EQ(recorder.percents(), (std::vector<int>{0, 28, 57, 100})); // 200 / 7, 400 / 7
        recorder.watch();
        ASSERT_EQ(flip(dib, 0, 0, 3, 1), 0);
        EXPECT_EQ(recorder.percents(), (std::vector<int>{0, 100}));
        recorder.watch();
        ASSERT_EQ(flip(dib, 0, 0, 3, 4), 0);
        EXPECT_EQ(recorder.percents(), (std::vector<int>{0, 50, 100}));
    }
}

TEST(Turn, MirrorReportsEachRow) {
    ProgressRecorder recorder;
    const Dib dib = make_dib({3, 30, 8});
    recorder.watch();
    ASSERT_EQ(Dib24Mirror(dib, 0, 0, 3, 30), 0);
    EXPECT_EQ(recorder.percents(), single_pass_percents(30));
    recorder.watch();
    ASSERT_EQ(Dib24Mirror(dib, 0, 0, 1, 7), 0);
    EXPECT_EQ(recorder.percents(), (std::vector<int>{0, 14, 28, 42, 57, 71, 85, 100}));
}

void check_rotation(const Dib& from, const Area& a, int direction) {
    int32_t status = 9;
    const auto before = block(from);
    const Dib made(Dib24Rotate(from, a.x, a.y, a.w, a.h, direction, &status));
    ASSERT_EQ(status, 0);
    ASSERT_EQ(made.width(), a.h);
    ASSERT_EQ(made.height(), a.w);
    ASSERT_EQ(made.bits(), from.bits());
    Dib expected = copy_of(made);
    for (int32_t r = 0; r < a.w; ++r)
        for (int32_t c = 0; c < a.h; ++c)
            expected.set_pixel(c, r,
                               direction == 0 ? from.pixel(a.x + r, a.y + a.h - 1 - c)
                                              : from.pixel(a.x + a.w - 1 - r, a.y + c));
    ASSERT_EQ(made.rows(), expected.rows()) << from.bits() << " " << direction;
    const int64_t used = int64_t{a.h} * from.bits() / 8;
    const auto rows = made.rows();
    for (int32_t r = 0; r < a.w; ++r)
        for (int64_t i = used; i < made.stride(); ++i)
            ASSERT_EQ(rows[size_t(r * made.stride() + i)], 0);
    ASSERT_EQ(block(from), before);
    ASSERT_TRUE(is_unlocked(made) && is_unlocked(from));
}

TEST(Rotate, TurnsEveryPixelByAQuarter) {
    Random random(2);
    for (int bits : depths)
        for (int direction : {0, 1})
            for (int round = 0; round < 40; ++round) {
                const int32_t limit = round < 25 ? 24 : 90;
                const int32_t width = random.between(1, limit), height = random.between(1, limit);
                const Dib from = make_random_dib(padded(width, height, bits), random);
                check_rotation(from,
                               round % 4 == 0 ? Area{0, 0, width, height}
                                              : random_area(width, height, random),
                               direction);
            }
}

// Such rows meet in a few places of a cache.
TEST(Rotate, TurnsRowsThatLieAPowerOfTwoApart) {
    Random random(4);
    for (int bits : depths)
        for (int direction : {0, 1})
            for (int width : {16384 / bits, 3 * 16384 / bits, 16384 / bits - 1}) {
                const Dib from = make_random_dib(padded(width, 133, bits), random);
                check_rotation(from, {0, 0, width, 133}, direction);
                check_rotation(from, {width - 71, 2, 70, 130}, direction);
            }
}

TEST(Rotate, TurnsLargePicturesAsSmallOnes) {
    Random random(6);
    for (int direction : {0, 1})
        check_rotation(make_random_dib({1603, 1405, 24}, random), {0, 0, 1603, 1405}, direction);
}

TEST(Rotate, ClockwisePutsTheBottomLeftAtTheTopLeft) {
    Dib dib = make_dib({4, 2, 24});
    dib.set_pixel(0, 1, 0x123456);
    dib.set_pixel(0, 0, 0x654321);
    const Dib clockwise(Dib24Rotate(dib, 0, 0, 4, 2, 0, nullptr));
    const Dib counter(Dib24Rotate(dib, 0, 0, 4, 2, 1, nullptr));
    EXPECT_EQ(clockwise.width(), 2);
    EXPECT_EQ(clockwise.height(), 4);
    EXPECT_EQ(clockwise.pixel(0, 0), 0x123456u);
    EXPECT_EQ(clockwise.pixel(1, 0), 0x654321u);
    EXPECT_EQ(counter.pixel(0, 3), 0x654321u);
}

TEST(Rotate, CarriesTheColourPart) {
    Random random(3);
    const Dib from8 = make_random_dib({5, 3, 8}, random);
    const Dib made8(Dib24Rotate(from8, 1, 0, 2, 3, 0, nullptr));
    const auto a = from8.bytes(), b = made8.bytes();
    EXPECT_TRUE(std::equal(a.begin() + 40, a.begin() + 1064, b.begin() + 40));
    EXPECT_EQ(Dib(Dib24Rotate(make_dib({2, 2, 16, masks_565}), 0, 0, 2, 2, 0, nullptr)).masks(),
              masks_565);
    EXPECT_EQ(Dib(Dib24Rotate(make_dib({2, 2, 16}), 0, 0, 2, 2, 0, nullptr)).masks(), masks_555);
    EXPECT_EQ(Dib(Dib24Rotate(make_dib({2, 2, 32, masks_bgr888}), 0, 0, 2, 2, 1, nullptr)).masks(),
              masks_bgr888);
    EXPECT_EQ(Dib(Dib24Rotate(make_dib({2, 2, 32}), 0, 0, 2, 2, 1, nullptr)).masks(), masks_888);
}

TEST(Rotate, ChecksTheDirectionBeforeAllElse) {
    const Dib dib4 = make_dib({4, 4, 4}), dib24 = make_dib({4, 4, 24});
    const auto status_of = [](HGLOBAL dib, Area a, int direction) {
        int32_t status = 9;
        EXPECT_EQ(Dib24Rotate(dib, a.x, a.y, a.w, a.h, direction, &status), nullptr);
        return status;
    };
    EXPECT_EQ(status_of(nullptr, {0, 0, 1, 1}, 2), -1);
    EXPECT_EQ(status_of(nullptr, {0, 0, 1, 1}, -1), -1);
    EXPECT_EQ(status_of(nullptr, {-1, 0, 1, 1}, 0), -3);
    EXPECT_EQ(status_of(dib4, {-1, 0, 1, 1}, 0), -1);
    EXPECT_EQ(status_of(dib4, {0, 0, 9, 9}, 1), -40);
    EXPECT_EQ(status_of(dib24, {0, 1, 4, 4}, 1), -1);
    EXPECT_EQ(Dib24Rotate(nullptr, 0, 0, 1, 1, 0, nullptr), nullptr);
}

TEST(Rotate, ReportsEachSourceRow) {
    ProgressRecorder recorder;
    for (int32_t height : {1, 7, 64, 65, 200}) {
        const Dib dib = make_dib({3, height, 24});
        for (int direction : {0, 1}) {
            recorder.watch();
            const Dib made(Dib24Rotate(dib, 0, 0, 3, height, direction, nullptr));
            EXPECT_EQ(recorder.percents(), single_pass_percents(height));
        }
    }
    recorder.watch();
    recorder.on_message = [](const ProgressMessage& message) {
        if (message.percent >= 10)
            KirvoSetProcess(nullptr, 0, 0);
    };
    const Dib dib = make_dib({3, 100, 24});
    const Dib made(Dib24Rotate(dib, 0, 0, 3, 100, 0, nullptr));
    EXPECT_EQ(recorder.percents(), (std::vector<int>{0, 5, 10}));
}

} // namespace
