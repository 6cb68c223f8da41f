// The mix brush against its formula, neighbour by neighbour.
#include "effects/pictures.hpp"

#include <functional>

using namespace kirvo_test;

namespace {

constexpr int32_t default3[9] = {9, 8, 9, 8, 10, 8, 9, 8, 9};
constexpr int32_t default5[25] = {5, 6, 7, 6, 5, 6, 8, 9, 8, 6, 7, 9, 10,
                                  9, 7, 6, 8, 9, 8, 6, 5, 6, 7, 6, 5};

uint8_t clamped(int64_t value) { return static_cast<uint8_t>(std::clamp<int64_t>(value, 0, 255)); }

uint8_t mixed(uint8_t neighbour, uint8_t centre, int64_t m) {
    return clamped((neighbour * m + centre * (10 - m)) / 10);
}

// Mask rows run from the top of the picture.
std::vector<uint8_t> expected(const Dib& dib, int x, int y, const int32_t* mask, int size) {
    Dib result = copy_of(dib);
    const int bits = dib.bits();
    const Masks masks = bits == 24 ? Masks{} : dib.masks();
    const Colour centre = colour_of(dib.pixel(x, y), bits, masks);
    for (int i = 0; i < size * size; ++i) {
        const int column = x + i % size - size / 2, line = y + i / size - size / 2;
        if (column < 0 || column >= dib.width() || line < 0 || line >= dib.height())
            continue;
        const int64_t m = mask[i];
        const Colour old = colour_of(dib.pixel(column, line), bits, masks);
        Colour now = {mixed(old.red, centre.red, m), mixed(old.green, centre.green, m),
                      mixed(old.blue, centre.blue, m)};
        if (column == x && line == y)
            now = {clamped(old.red * m / 10), clamped(old.green * m / 10),
                   clamped(old.blue * m / 10)};
        result.set_pixel(column, line, pixel_of(now, bits, masks));
    }
    return block_bytes(result);
}

void expect_mixed(Random& random, int bits, const int32_t* mask3, const int32_t* mask5) {
    const Dib dib = random_image(random, random.between(1, 9), random.between(1, 9), bits);
    const int x = random.between(0, dib.width() - 1), y = random.between(0, dib.height() - 1);
    auto wanted = expected(dib, x, y, mask3, 3);
    ASSERT_EQ(Dib24Mix3X3(dib, x, y), 0);
    ASSERT_EQ(block_bytes(dib), wanted);
    wanted = expected(dib, x, y, mask5, 5);
    ASSERT_EQ(Dib24Mix5X5(dib, x, y), 0);
    ASSERT_EQ(block_bytes(dib), wanted);
    ASSERT_TRUE(is_unlocked(dib));
}

// Runs first, in the order of the file.
TEST(MixBrush, StartsWithItsDefaultMasks) {
    Random random(1);
    for (int bits : {16, 24, 32})
        for (int round = 0; round < 100; ++round)
            ASSERT_NO_FATAL_FAILURE(expect_mixed(random, bits, default3, default5));
}

TEST(MixBrush, TakesAFifthOfTheCentreBesideAndATenthAcross) {
    Dib dib = make_dib({3, 3, 24});
    dib.set_pixel(1, 1, 100);
    ASSERT_EQ(Dib24Mix3X3(dib, 1, 1), 0);
    EXPECT_EQ(dib.pixel(1, 0), 20u);
    EXPECT_EQ(dib.pixel(0, 0), 10u);
    EXPECT_EQ(dib.pixel(1, 1), 100u);
}

TEST(MixBrush, LaysAsymmetricMasksInPictureOrder) {
    const int32_t mask[9] = {10, 0, 10, 10, 10, 10, 10, 10, 10};
    Dib24Mix3X3SetMask(mask);
    Dib dib = make_dib({3, 3, 24});
    dib.set_pixel(1, 1, 77);
    ASSERT_EQ(Dib24Mix3X3(dib, 1, 1), 0);
    EXPECT_EQ(dib.pixel(1, 0), 77u) << "above on screen";
    EXPECT_EQ(dib.pixel(1, 2), 0u);
}

TEST(MixBrush, IsExactForEveryWeight) {
    Random random(2);
    for (int round = 0; round < 300; ++round) {
        int32_t mask3[9], mask5[25];
        for (int32_t& m : mask3)
            m = random.once_in(3) ? static_cast<int32_t>(random.next()) : random.between(-30, 30);
        for (int32_t& m : mask5)
            m = random.once_in(9)   ? INT32_MIN
                : random.once_in(9) ? INT32_MAX
                                    : random.between(-30, 30);
        Dib24Mix3X3SetMask(mask3);
        Dib24Mix5X5SetMask(mask5);
        static constexpr int depths[] = {16, 24, 32};
        ASSERT_NO_FATAL_FAILURE(expect_mixed(random, random.pick(depths), mask3, mask5));
    }
}

TEST(MixBrush, KeepsItsMaskWhenGivenNone) {
    Dib24Mix3X3SetMask(default3);
    Dib24Mix5X5SetMask(default5);
    Dib24Mix3X3SetMask(nullptr);
    Dib24Mix5X5SetMask(nullptr);
    Random random(3);
    ASSERT_NO_FATAL_FAILURE(expect_mixed(random, 24, default3, default5));
}

TEST(MixBrush, ChecksThePointAndTheDepth) {
    for (const auto& mix : {Dib24Mix3X3, Dib24Mix5X5}) {
        EXPECT_EQ(mix(nullptr, 0, 0), -3);
        for (int bits : {1, 4, 8, 16, 24, 32}) {
            const int wrong = bits < 16 ? -41 : -1;
            const Dib dib = make_dib({3, 2, bits});
            EXPECT_EQ(mix(dib, -1, 0), -1);
            EXPECT_EQ(mix(dib, 0, -1), -1);
            EXPECT_EQ(mix(dib, 3, 0), wrong);
            EXPECT_EQ(mix(dib, 0, 2), wrong);
            EXPECT_EQ(mix(dib, 2, 1), bits < 16 ? -41 : 0);
            const Dib cut = make_dib({.width = 4, .height = 2, .bits = bits, .extra_bytes = -4});
            EXPECT_EQ(mix(cut, 0, 0), wrong);
            EXPECT_TRUE(is_unlocked(dib) && is_unlocked(cut));
        }
    }
}

TEST(MixBrush, SendsNoMessages) {
    ProgressRecorder recorder;
    recorder.watch();
    const Dib dib = make_dib({3, 3, 24});
    Dib24Mix3X3(dib, 1, 1);
    EXPECT_TRUE(recorder.messages().empty());
}

} // namespace
