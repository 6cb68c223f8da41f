// Sharpening and edges against the stated passes over whole planes.
#include "effects/pictures.hpp"

#include <array>
#include <cstdlib>

using namespace kirvo_test;

namespace {

int sharpen(HGLOBAL dib, const Area& area, int mode = 0) {
    int32_t status = 99;
    return freed(Dib24Sharpen(dib, area.x, area.y, area.width, area.height, mode, &status), status);
}

int sharpen_more(HGLOBAL dib, const Area& area, int strength = 3) {
    int32_t status = 99;
    return freed(Dib24SharpenEx(dib, area.x, area.y, area.width, area.height, strength, &status),
                 status);
}

int colour_edge(HGLOBAL dib, const Area& area, int threshold = 5, int mode = 0) {
    int32_t status = 99;
    return freed(
        Dib24ColorEdge(dib, area.x, area.y, area.width, area.height, threshold, mode, &status),
        status);
}

// The luminance of a rectangle, and the nine values around a place in it.
struct Plane {
    int width, height;
    std::vector<int> values;

    Plane(const Picture& image, const Area& area) : width(area.width), height(area.height) {
        for (int r = 0; r < height; ++r)
            for (int c = 0; c < width; ++c) {
                const Colour& p = image.at(area.x + c, lowest_row(image, area) + r);
                values.push_back((29 * p.blue + 150 * p.green + 77 * p.red + 128) / 256);
            }
    }
    // p0 to p8, the row below first. Nothing (0) lies above the only row of a plane.
    std::array<int, 9> around(int column, int row) const {
        std::array<int, 9> p;
        for (int i = 0; i < 9; ++i) {
            const int x = std::clamp(column + i % 3 - 1, 0, width - 1);
            int y = row + i / 3 - 1;
            if (height == 1 && y == 1) {
                p[static_cast<size_t>(i)] = 0;
                continue;
            }
            y = std::clamp(y, 0, height - 1);
            p[static_cast<size_t>(i)] = values[static_cast<size_t>(y * width + x)];
        }
        return p;
    }
    int laplacian(int column, int row) const {
        const auto p = around(column, row);
        return 4 * p[4] - (p[1] + p[3] + p[5] + p[7]);
    }
    int gradient(int column, int row) const {
        const auto p = around(column, row);
        return p[5] + p[7] - p[1] - p[3] + 2 * (p[8] - p[0]);
    }
};

uint8_t raised(uint8_t channel, int by) {
    return static_cast<uint8_t>(std::clamp(channel + by, 0, 255));
}

Picture expected_sharpening(const Picture& image, const Area& area, int divisor) {
    const Plane plane(image, area);
    Picture result(area.width, area.height);
    for (int r = 0; r < area.height; ++r)
        for (int c = 0; c < area.width; ++c) {
            const Colour& p = image.at(area.x + c, lowest_row(image, area) + r);
            const int e = plane.laplacian(c, r) / divisor;
            result.at(c, r) = {raised(p.red, e), raised(p.green, e), raised(p.blue, e)};
        }
    return result;
}

Picture expected_edges(const Picture& image, const Area& area, int mode) {
    const Plane plane(image, area);
    Picture result(area.width, area.height);
    for (int r = 0; r < area.height; ++r)
        for (int c = 0; c < area.width; ++c) {
            const int v = mode == 2 ? plane.gradient(c, r) : plane.laplacian(c, r);
            int grey = std::clamp(v, -127, 127) + 128;
            if (mode == 3)
                grey = 255 - std::abs(std::clamp(v, -255, 255));
            if (mode == 4)
                grey = 255 - std::clamp(v, 0, 255);
            if (mode == 5)
                grey = 255 - std::abs(std::clamp(v, -255, 0));
            const auto g = static_cast<uint8_t>(grey);
            result.at(c, r) = {g, g, g};
        }
    return result;
}

// White everywhere, padding included, but for the pixels kept.
std::vector<uint8_t> expected_colour_edge(const Picture& image, const Area& area, int64_t threshold,
                                          int mode) {
    const Plane plane(image, area);
    Picture result(area.width, area.height);
    for (int r = 0; r < area.height; ++r)
        for (int c = 0; c < area.width; ++c) {
            const int64_t l = plane.laplacian(c, r);
            const bool kept = (mode == 0 && (l < -threshold || l > threshold)) ||
                              (mode == 1 && l > threshold) || (mode == 2 && l < -threshold);
            result.at(c, r) = kept ? image.at(area.x + c, area.y + r) : Colour{255, 255, 255};
        }
    auto bytes = image_bytes(result, 24, {});
    const auto stride = static_cast<size_t>(stride_of(area.width, 24));
    for (size_t row = 0; row < static_cast<size_t>(area.height); ++row)
        for (size_t i = static_cast<size_t>(3 * area.width); i < stride; ++i)
            bytes[40 + row * stride + i] = 255;
    return bytes;
}

// Smooth enough that small differences of luminance occur beside large ones.
Dib random_scene(Random& random) {
    Dib dib = random_image(random, random.between(1, 45), random.between(1, 8), 24);
    const int width = dib.width(), height = dib.height();
    if (random.once_in(2))
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                dib.set_pixel(x, y, dib.pixel(x, y) & 0x1F1F1F);
    return dib;
}

TEST(Sharpen, AddsAnEighthOfTheLaplacian) {
    Random random(1);
    for (int round = 0; round < 200; ++round) {
        const Dib dib = random_scene(random);
        const auto before = block_bytes(dib);
        const Area area = random_area(random, dib);
        int32_t status = 99;
        const Dib made(Dib24Sharpen(dib, area.x, area.y, area.width, area.height, 0, &status));
        ASSERT_EQ(status, 0);
        ASSERT_EQ(block_bytes(made),
                  image_bytes(expected_sharpening(picture_of(dib), area, 8), 24, {}));
        ASSERT_EQ(block_bytes(dib), before);
        ASSERT_TRUE(is_unlocked(dib) && is_unlocked(made));
    }
}

TEST(Sharpen, ShowsEdgesInGrey) {
    Random random(2);
    for (int round = 0; round < 200; ++round) {
        const Dib dib = random_scene(random);
        const Area area = random_area(random, dib);
        for (int mode = 1; mode <= 5; ++mode) {
            int32_t status = 99;
            const Dib made(
                Dib24Sharpen(dib, area.x, area.y, area.width, area.height, mode, &status));
            ASSERT_EQ(status, 0);
            ASSERT_EQ(block_bytes(made),
                      image_bytes(expected_edges(picture_of(dib), area, mode), 24, {}))
                << mode;
        }
    }
}

TEST(Sharpen, GivesMiddleGreyOrWhiteOnAFlatArea) {
    Dib dib = make_dib({4, 3, 24});
    for (int i = 0; i < 12; ++i)
        dib.set_pixel(i % 4, i / 4, 0x405060);
    for (const auto& [mode, grey] : {std::pair{1, 0x808080u},
                                     {2, 0x808080u},
                                     {3, 0xFFFFFFu},
                                     {4, 0xFFFFFFu},
                                     {5, 0xFFFFFFu}}) {
        int32_t status = 99;
        const Dib made(Dib24Sharpen(dib, 0, 0, 4, 3, mode, &status));
        for (int i = 0; i < 12; ++i)
            EXPECT_EQ(made.pixel(i % 4, i / 4), grey);
    }
}

TEST(Sharpen, RisesTowardsTheUpperRightInModeTwo) {
    Dib dib = make_dib({3, 3, 24});
    dib.set_pixel(2, 0, 0x101010); // Y 16
    int32_t status = 99;
    const Dib made(Dib24Sharpen(dib, 0, 0, 3, 3, 2, &status));
    EXPECT_EQ(made.pixel(1, 1), 0x010101u * (128 + 2 * 16));
}

TEST(Sharpen, HandlesASingleColumn) {
    Dib dib = make_dib({2, 3, 24});
    dib.set_pixel(0, 1, 0x101010); // Y 16; its left and right neighbours are itself
    dib.set_pixel(1, 1, 0xFFFFFF);
    int32_t status = 99;
    const Dib made(Dib24Sharpen(dib, 0, 0, 1, 3, 1, &status));
    EXPECT_EQ(made.pixel(0, 1), 0x010101u * (128 + 2 * 16));
    EXPECT_EQ(made.pixel(0, 0), 0x010101u * (128 - 16));
}

TEST(Sharpen, FindsNothingAboveASingleRow) {
    Dib dib = make_dib({3, 3, 24});
    for (int i = 0; i < 9; ++i)
        dib.set_pixel(i % 3, i / 3, 0x101010);
    int32_t status = 99;
    const Dib made(Dib24Sharpen(dib, 0, 1, 3, 1, 1, &status));
    EXPECT_EQ(made.pixel(1, 0), 0x010101u * (128 + 16));
}

TEST(Sharpen, RefusesOtherModes) {
    const Dib dib = make_dib({2, 2, 24}), indexed = make_dib({2, 2, 8});
    for (int mode : {-1, 6, INT32_MIN, INT32_MAX}) {
        EXPECT_EQ(sharpen(dib, {0, 0, 2, 2}, mode), -1);
        EXPECT_EQ(sharpen(nullptr, {0, 0, 2, 2}, mode), -3);
        EXPECT_EQ(sharpen(indexed, {0, 0, 2, 2}, mode), -22);
    }
}

TEST(SharpenMore, DividesByItsStrength) {
    Random random(3);
    for (int round = 0; round < 200; ++round) {
        const Dib dib = random_scene(random);
        const Area area = random_area(random, dib);
        for (const auto& [strength, divisor] :
             {std::pair{0, 8}, {1, 6}, {2, 4}, {3, 2}, {4, 8}, {7, 8}, {-1, 8}, {INT32_MIN, 8}}) {
            int32_t status = 99;
            const Dib made(
                Dib24SharpenEx(dib, area.x, area.y, area.width, area.height, strength, &status));
            ASSERT_EQ(status, 0);
            ASSERT_EQ(block_bytes(made),
                      image_bytes(expected_sharpening(picture_of(dib), area, divisor), 24, {}))
                << strength;
        }
    }
}

TEST(ColourEdge, KeepsColoursOfTheMirroredBandAtEdges) {
    Random random(4);
    static constexpr int thresholds[] = {0,    1,    7,  40,  300,       1020,
                                         1021, 5000, -1, -30, INT32_MAX, INT32_MIN};
    for (int round = 0; round < 400; ++round) {
        const Dib dib = random_scene(random);
        const auto before = block_bytes(dib);
        const Area area = random_area(random, dib);
        const int threshold = random.pick(thresholds), mode = random.between(-1, 4);
        int32_t status = 99;
        const Dib made(
            Dib24ColorEdge(dib, area.x, area.y, area.width, area.height, threshold, mode, &status));
        ASSERT_EQ(status, 0);
        ASSERT_EQ(block_bytes(made), expected_colour_edge(picture_of(dib), area, threshold, mode))
            << threshold << " " << mode;
        ASSERT_EQ(block_bytes(dib), before);
    }
}

TEST(ColourEdge, TakesItsColoursAsFarFromTheBottomAsTheRectangleIsFromTheTop) {
    Dib dib = make_dib({3, 5, 24});
    dib.set_pixel(1, 1, 0x404040); // an edge in the top rows ...
    dib.set_pixel(1, 3, 0x0000AA); // ... takes its colour from stored row 1
    int32_t status = 99;
    const Dib made(Dib24ColorEdge(dib, 0, 0, 3, 3, 100, 1, &status));
    EXPECT_EQ(made.pixel(1, 1), 0x0000AAu);
    EXPECT_EQ(made.pixel(0, 0), 0xFFFFFFu);
}

TEST(Edges, CheckTheRectangleAndTheDepth) {
    expect_rectangle_checks({24}, -22, [](HGLOBAL dib, const Area& a) { return sharpen(dib, a); });
    expect_rectangle_checks({24}, -22,
                            [](HGLOBAL dib, const Area& a) { return sharpen(dib, a, 3); });
    expect_rectangle_checks({24}, -22,
                            [](HGLOBAL dib, const Area& a) { return sharpen_more(dib, a); });
    expect_rectangle_checks({24}, -22,
                            [](HGLOBAL dib, const Area& a) { return colour_edge(dib, a); });
}

std::vector<int> passes(int rows, std::initializer_list<std::pair<int, int>> split) {
    std::vector<int> percents{0};
    for (const auto& [base, share] : split)
        expect_steps(percents, rows, base, share);
    percents.push_back(100);
    return percents;
}

TEST(Edges, ReportTheirPasses) {
    for (int rows : {1, 2, 3, 7, 19, 64}) {
        const Dib dib = make_dib({3, rows + 2, 24});
        const Area area = {0, 1, 3, rows};
        const auto three = passes(rows, {{0, 30}, {30, 40}, {70, 30}});
        const auto two = passes(rows, {{0, 30}, {30, 70}});
        expect_messages(three, [&] { sharpen(dib, area); });
        expect_messages(three, [&] { sharpen_more(dib, area); });
        expect_messages(two, [&] { sharpen(dib, area, 4); });
        expect_messages(two, [&] { colour_edge(dib, area); });
    }
}

} // namespace
