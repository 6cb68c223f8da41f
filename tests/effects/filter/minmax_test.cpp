// The maximum and minimum filter against a walk over every square.
#include "effects/pictures.hpp"

using namespace kirvo_test;

namespace {

struct Filter {
    int radius;
    bool maximum, luminance;
};

HGLOBAL run(HGLOBAL dib, const Area& a, const Filter& f, int32_t* status) {
    return DibBlockMxM(dib, a.x, a.y, a.width, a.height, f.radius, f.maximum, f.luminance, status);
}

int status_of(HGLOBAL dib, const Area& area, const Filter& filter) {
    int32_t status = 99;
    HGLOBAL made = run(dib, area, filter, &status);
    return freed(made, status);
}

uint8_t luminance(const Colour& c) {
    return static_cast<uint8_t>(((77 * c.red + 150 * c.green + 29 * c.blue - 32640) >> 8) + 128);
}

Colour extreme(const Picture& image, int x, int row, const Filter& filter) {
    Colour highest{0, 0, 0}, lowest{255, 255, 255}, brightest = highest, darkest = lowest;
    int most = 0, least = 255;
    for (int r = std::max(0, row - filter.radius);
         r <= std::min(image.height - 1, row + filter.radius); ++r)
        for (int c = std::max(0, x - filter.radius);
             c <= std::min(image.width - 1, x + filter.radius); ++c) {
            const Colour& p = image.at(c, r);
            highest = {std::max(highest.red, p.red), std::max(highest.green, p.green),
                       std::max(highest.blue, p.blue)};
            lowest = {std::min(lowest.red, p.red), std::min(lowest.green, p.green),
                      std::min(lowest.blue, p.blue)};
            const int y = luminance(p);
            if (y > most) {
                most = y;
                brightest = p;
            }
            if (y < least) {
                least = y;
                darkest = p;
            }
        }
    if (filter.luminance)
        return filter.maximum ? brightest : darkest;
    return filter.maximum ? highest : lowest;
}

Picture expected(const Picture& image, const Area& area, const Filter& filter) {
    Picture result(area.width, area.height);
    for (int r = 0; r < area.height; ++r)
        for (int c = 0; c < area.width; ++c)
            result.at(c, r) = extreme(image, area.x + c, lowest_row(image, area) + r, filter);
    return result;
}

void expect_filtered(const Dib& dib, const Area& area, const Filter& filter) {
    const auto before = block_bytes(dib);
    int32_t status = 99;
    const Dib made(run(dib, area, filter, &status));
    ASSERT_EQ(status, 0);
    ASSERT_EQ(block_bytes(made), image_bytes(expected(picture_of(dib), area, filter), dib.bits(),
                                             dib.bits() == 24 ? Masks{} : dib.masks()))
        << dib.width() << "x" << dib.height() << "x" << dib.bits() << " at " << area.x << ","
        << area.y << " " << area.width << "x" << area.height << " radius " << filter.radius
        << (filter.maximum ? " maximum" : " minimum") << (filter.luminance ? " luminance" : "");
    ASSERT_EQ(block_bytes(dib), before);
    ASSERT_TRUE(is_unlocked(dib) && is_unlocked(made));
}

// Few colours, many of them of one luminance, so that ties abound.
void flatten(Random& random, Dib& dib) {
    static constexpr uint32_t colours[] = {0x000000, 0x000001, 0x010000, 0x000003, 0x4D0000,
                                           0x008200, 0x4D4D4D, 0xFFFFFF, 0xFFFFFE, 0xFEFFFF};
    const int used = random.between(2, 10), bits = dib.bits(), width = dib.width();
    for (int y = 0; y < dib.height(); ++y)
        for (int x = 0; x < width; ++x) {
            const uint32_t c = colours[random.between(0, used - 1)];
            const Colour colour = {static_cast<uint8_t>(c >> 16), static_cast<uint8_t>(c >> 8),
                                   static_cast<uint8_t>(c)};
            dib.set_pixel(x, y, pixel_of(colour, bits, bits == 24 ? Masks{} : dib.masks()));
        }
}

void expect_random_images(uint64_t seed, int rounds, int largest,
                          std::initializer_list<int> radii) {
    Random random(seed);
    for (int bits : {16, 24, 32})
        for (int round = 0; round < rounds; ++round)
            for (const int radius : radii) {
                Dib dib = random_image(random, random.between(1, largest),
                                       random.between(1, largest), bits);
                if (random.once_in(2))
                    flatten(random, dib);
                const Area area = random_area(random, dib);
                const Filter filter = {radius, random.once_in(2), random.once_in(2)};
                ASSERT_NO_FATAL_FAILURE(expect_filtered(dib, area, filter));
            }
}

TEST(ExtremeFilter, FindsTheExtremesOfSmallSquares) { expect_random_images(1, 40, 24, {1, 2, 3}); }

TEST(ExtremeFilter, FindsTheExtremesOfMiddlingSquares) {
    expect_random_images(2, 15, 40, {7, 8, 15});
}

TEST(ExtremeFilter, FindsTheExtremesOfTheLargestSquares) {
    expect_random_images(3, 3, 40, {31, 63, 64});
}

TEST(ExtremeFilter, GoesOnBeyondABandOfRowsAndAStripOfColumns) {
    Random random(4);
    for (const Filter& filter : {Filter{64, true, false}, Filter{64, false, true},
                                 Filter{1, true, true}, Filter{7, false, false}}) {
        const Dib tall = make_random_dib({3, 300, 24}, random);
        ASSERT_NO_FATAL_FAILURE(expect_filtered(tall, {0, 0, 3, 300}, filter));
        Dib wide = make_random_dib({2100, 3, 24}, random);
        ASSERT_NO_FATAL_FAILURE(expect_filtered(wide, {1, 0, 2098, 3}, filter));
        flatten(random, wide);
        ASSERT_NO_FATAL_FAILURE(expect_filtered(wide, {0, 1, 2100, 1}, filter));
    }
}

TEST(ExtremeFilter, FindsTheExtremesOnBothSidesOfABandsEnd) {
    Random random(5);
    for (const Filter& filter : {Filter{64, true, false}, Filter{64, false, true}}) {
        Dib dib = make_random_dib({2100, 260, 24}, random);
        if (filter.luminance)
            flatten(random, dib);
        const Area area = {9, 1, 2090, 258};
        int32_t status = 99;
        const Dib made(run(dib, area, filter, &status));
        ASSERT_EQ(status, 0);
        const Picture image = picture_of(dib), result = picture_of(made);
        for (const int row : {127, 128, 255, 256})
            for (int x = 0; x < area.width; ++x)
                ASSERT_EQ(result.at(x, row),
                          extreme(image, area.x + x, lowest_row(image, area) + row, filter))
                    << x << "," << row;
    }
}

// Results larger than the caches are written past them.
TEST(ExtremeFilter, SpreadsPointsOfALargePictureAsThoseOfASmallOne) {
    constexpr int32_t width = 2501, height = 2300, radius = 3;
    Dib dots = make_dib({width, height, 24}), squares = make_dib({width, height, 24});
    const struct {
        int32_t x, y;
    } points[] = {{0, 0}, {2500, 2299}, {64, 63}, {1250, 1150}, {2497, 5}};
    for (const auto& point : points) {
        dots.set_pixel(point.x, point.y, 0x80C0E0);
        for (int32_t y = std::max(0, point.y - radius); y <= std::min(height - 1, point.y + radius);
             ++y)
            for (int32_t x = std::max(0, point.x - radius);
                 x <= std::min(width - 1, point.x + radius); ++x)
                squares.set_pixel(x, y, 0x80C0E0);
    }
    int32_t status = 99;
    const Dib made(run(dots, {0, 0, width, height}, {radius, true, false}, &status));
    ASSERT_EQ(status, 0);
    EXPECT_TRUE(made.rows() == squares.rows());
}

TEST(ExtremeFilter, TakesTheFirstOfEqualLuminancesInTheOrderOfStorage) {
    Dib dib = make_dib({3, 3, 24});
    dib.set_pixel(2, 2, 0x000009); // Y 1, lowest on screen
    dib.set_pixel(0, 1, 0x010101); // Y 1
    dib.set_pixel(1, 2, 0x000101); // Y 1, left of the first
    int32_t status = 99;
    const Dib made(DibBlockMxM(dib, 1, 1, 1, 1, 1, 1, 1, &status));
    EXPECT_EQ(made.pixel(0, 0), 0x000101u);
}

TEST(ExtremeFilter, StartsFromBlackAndWhite) {
    for (const uint32_t flat : {0x000001u, 0xFFFFFEu}) {
        Dib dib = make_dib({2, 2, 24});
        for (int i = 0; i < 4; ++i)
            dib.set_pixel(i % 2, i / 2, flat);
        const auto value = [&](int maximum, int by_luminance) {
            int32_t status = 99;
            return Dib(DibBlockMxM(dib, 0, 0, 2, 2, 1, maximum, by_luminance, &status)).pixel(0, 0);
        };
        EXPECT_EQ(value(1, 0), flat);
        EXPECT_EQ(value(0, 0), flat);
        EXPECT_EQ(value(1, 1), flat == 1 ? 0u : flat) << "Y 0 does not win over black";
        EXPECT_EQ(value(0, 1), flat == 1 ? flat : 0xFFFFFFu) << "nor Y 255 over white";
    }
}

TEST(ExtremeFilter, TakesAnyFlagButZero) {
    Random random(5);
    const Dib dib = make_random_dib({6, 6, 24}, random);
    int32_t status = 99;
    const Dib one(DibBlockMxM(dib, 0, 0, 6, 6, 1, 1, 1, &status));
    const Dib other(DibBlockMxM(dib, 0, 0, 6, 6, 1, -7, 256, &status));
    EXPECT_EQ(block_bytes(one), block_bytes(other));
}

TEST(ExtremeFilter, RefusesOtherRadii) {
    const Dib dib = make_dib({3, 3, 24}), indexed = make_dib({3, 3, 8});
    for (const int radius : {0, -1, 65, INT32_MIN, INT32_MAX}) {
        EXPECT_EQ(status_of(dib, {0, 0, 3, 3}, {radius, true, false}), -1);
        EXPECT_EQ(status_of(nullptr, {0, 0, 3, 3}, {radius, true, false}), -3);
        EXPECT_EQ(status_of(indexed, {0, 0, 3, 3}, {radius, true, false}), -41);
    }
    EXPECT_EQ(status_of(dib, {0, 0, 3, 3}, {64, true, false}), 0);
}

TEST(ExtremeFilter, ChecksTheRectangleAndTheDepth) {
    for (const bool by_luminance : {false, true})
        expect_rectangle_checks({16, 24, 32}, -41, [&](HGLOBAL dib, const Area& area) {
            return status_of(dib, area, {1, true, by_luminance});
        });
}

TEST(ExtremeFilter, ReportsItsRows) {
    const Dib dib = make_dib({3, 26, 24});
    for (const bool by_luminance : {false, true})
        expect_messages(single_pass_percents(25), [&] {
            status_of(dib, {0, 1, 3, 25}, {2, false, by_luminance});
        });
}

} // namespace
