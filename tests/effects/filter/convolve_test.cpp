// The kernel filter against sums in wide integers, pixel by pixel.
#include "effects/pictures.hpp"

using namespace kirvo_test;

namespace {

struct Kernel {
    int32_t k[9];
    int32_t divisor;
};

void set(const Kernel& n) {
    SetFilter3x3(n.k[0], n.k[1], n.k[2], n.k[3], n.k[4], n.k[5], n.k[6], n.k[7], n.k[8], n.divisor);
}

int filter(HGLOBAL dib, const Area& area) {
    int32_t status = 99;
    HGLOBAL made = DibFilter3x3(dib, area.x, area.y, area.width, area.height, &status);
    return freed(made, status);
}

uint8_t filtered(const Picture& image, const Kernel& kernel, int x, int row,
                 uint8_t Colour::*channel) {
    int64_t sum = 0;
    for (int i = 0; i < 9; ++i) {
        const int column = x + i % 3 - 1, other = row + i / 3 - 1;
        if (image.has(column, other))
            sum += int64_t{image.at(column, other).*channel} * kernel.k[i];
    }
    const int64_t quotient = sum / (kernel.divisor == 0 ? 1 : kernel.divisor);
    return static_cast<uint8_t>(std::clamp<int64_t>(quotient, 0, 255));
}

Picture expected(const Picture& image, const Kernel& kernel, const Area& area) {
    Picture result(area.width, area.height);
    for (int r = 0; r < area.height; ++r)
        for (int c = 0; c < area.width; ++c) {
            const int x = area.x + c, row = lowest_row(image, area) + r;
            result.at(c, r) = {filtered(image, kernel, x, row, &Colour::red),
                               filtered(image, kernel, x, row, &Colour::green),
                               filtered(image, kernel, x, row, &Colour::blue)};
        }
    return result;
}

void expect_filtered(Random& random, int bits, const Kernel& kernel) {
    const Dib dib = random_image(random, random.between(1, 50), random.between(1, 6), bits);
    const auto before = block_bytes(dib);
    const Area area = random_area(random, dib);
    set(kernel);
    int32_t status = 99;
    const Dib made(DibFilter3x3(dib, area.x, area.y, area.width, area.height, &status));
    ASSERT_EQ(status, 0);
    ASSERT_EQ(block_bytes(made),
              image_bytes(expected(picture_of(dib), kernel, area), bits, dib.masks()));
    ASSERT_EQ(block_bytes(dib), before);
    ASSERT_TRUE(is_unlocked(dib) && is_unlocked(made));
}

// Runs first, in the order of the file.
TEST(KernelFilter, RefusesToRunBeforeItsKernelIsSet) {
    const Dib dib = make_dib({2, 2, 24}), indexed = make_dib({2, 2, 8});
    EXPECT_EQ(filter(dib, {0, 0, 2, 2}), -1);
    EXPECT_EQ(filter(nullptr, {0, 0, 2, 2}), -3) << "the checks of the rectangle come first";
    EXPECT_EQ(filter(indexed, {0, 0, 2, 2}), -41);
}

TEST(KernelFilter, SumsSmallWeightsAtEveryDepth) {
    Random random(1);
    for (int bits : {16, 24, 32})
        for (int round = 0; round < 150; ++round) {
            Kernel kernel;
            for (int32_t& k : kernel.k)
                k = random.between(-14, 14);
            kernel.divisor = random.between(-20, 20);
            ASSERT_NO_FATAL_FAILURE(expect_filtered(random, bits, kernel));
        }
}

TEST(KernelFilter, SumsWeightsOfEverySize) {
    static constexpr int32_t limits[] = {100, 32767, 32768, 65536, 8421504, INT32_MAX};
    Random random(2);
    for (int round = 0; round < 400; ++round) {
        const int32_t limit = random.pick(limits);
        Kernel kernel;
        for (int32_t& k : kernel.k)
            k = random.once_in(3) ? limit : random.between(-limit - (limit > 32767), limit);
        kernel.divisor = random.once_in(4)
                             ? INT32_MIN
                             : random.between(-limit - 1, limit) / random.between(1, 64);
        ASSERT_NO_FATAL_FAILURE(expect_filtered(random, 24, kernel));
    }
}

TEST(KernelFilter, DividesExactlyByEverySmallDivisor) {
    Random random(3);
    for (int divisor = 1; divisor <= 300; ++divisor) {
        ASSERT_NO_FATAL_FAILURE(
            expect_filtered(random, 24, {{1, 16, 2, 20, 50, 20, 1, 16, 2}, divisor}));
        ASSERT_NO_FATAL_FAILURE(
            expect_filtered(random, 24, {{100, 160, 20, 200, 500, 200, 10, 160, 20}, -divisor}));
    }
    for (int divisor : {32639, 32640, 32641, 32767, 32768, 40000, INT32_MAX})
        ASSERT_NO_FATAL_FAILURE(
            expect_filtered(random, 24, {{0, 0, 0, 0, 128, 0, 0, 0, 0}, divisor}));
}

TEST(KernelFilter, PutsItsFirstRowOnTheStoredRowBefore) {
    Dib dib = make_dib({1, 3, 24});
    dib.set_pixel(0, 2, 0x30); // bottom of the picture: stored first
    dib.set_pixel(0, 0, 0x70);
    set({{0, 1, 0, 0, 0, 0, 0, 0, 0}, 1});
    int32_t status = 99;
    const Dib made(DibFilter3x3(dib, 0, 1, 1, 1, &status));
    EXPECT_EQ(made.pixel(0, 0), 0x30u) << "the row below on screen";
}

TEST(KernelFilter, CopiesWithACentreOfOneAndADivisorOfZero) {
    Random random(4);
    for (int bits : {16, 24, 32})
        for (int round = 0; round < 20; ++round)
            ASSERT_NO_FATAL_FAILURE(
                expect_filtered(random, bits, {{0, 0, 0, 0, 1, 0, 0, 0, 0}, 0}));
}

TEST(KernelFilter, DarkensTheBorderOfAMean) {
    Dib dib = make_dib({3, 3, 24});
    for (int i = 0; i < 9; ++i)
        dib.set_pixel(i % 3, i / 3, 90);
    set({{1, 1, 1, 1, 1, 1, 1, 1, 1}, 9});
    int32_t status = 99;
    const Dib made(DibFilter3x3(dib, 0, 0, 3, 3, &status));
    EXPECT_EQ(made.pixel(1, 1), 90u);
    EXPECT_EQ(made.pixel(0, 1), 60u);
    EXPECT_EQ(made.pixel(2, 2), 40u);
}

TEST(KernelFilter, ChecksTheRectangleAndTheDepth) {
    set({{1, 1, 1, 1, 1, 1, 1, 1, 1}, 9});
    expect_rectangle_checks({16, 24, 32}, -41, filter);
}

TEST(KernelFilter, ReportsItsRows) {
    set({{1, 1, 1, 1, 1, 1, 1, 1, 1}, 9});
    const Dib dib = make_dib({3, 40, 32});
    expect_messages(single_pass_percents(33), [&] { filter(dib, {0, 1, 3, 33}); });
}

} // namespace
