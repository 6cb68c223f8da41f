// The fixed blur against its weights written out pixel by pixel.
#include "effects/pictures.hpp"

using namespace kirvo_test;

namespace {

int blur(HGLOBAL dib, const Area& area) {
    int32_t status = 99;
    HGLOBAL made = Dib24Gausian(dib, area.x, area.y, area.width, area.height, &status);
    return freed(made, status);
}

// The row above the topmost one of a rectangle one row high: the image's, black beyond its top.
Colour colour_around(const Picture& image, const Area& area, int x, int row) {
    x = std::clamp(x, area.x, area.x + area.width - 1);
    const int lowest = lowest_row(image, area), highest = lowest + area.height - 1;
    if (area.height > 1 || row < lowest)
        row = std::clamp(row, lowest, highest);
    return image.has(x, row) ? image.at(x, row) : Colour{0, 0, 0};
}

uint8_t blurred(const Picture& image, const Area& area, int x, int row, uint8_t Colour::*channel) {
    const auto value = [&](int dx, int dy) {
        return static_cast<int>(colour_around(image, area, x + dx, row + dy).*channel);
    };
    const int corners = value(-1, -1) + value(1, -1) + value(-1, 1) + value(1, 1);
    const int edges = value(0, -1) + value(-1, 0) + value(1, 0) + value(0, 1);
    return static_cast<uint8_t>((11 * corners + 30 * edges + 81 * value(0, 0)) / 256);
}

Picture expected_blur(const Picture& image, const Area& area) {
    Picture result(area.width, area.height);
    for (int r = 0; r < area.height; ++r)
        for (int c = 0; c < area.width; ++c) {
            const int x = area.x + c, row = lowest_row(image, area) + r;
            result.at(c, r) = {blurred(image, area, x, row, &Colour::red),
                               blurred(image, area, x, row, &Colour::green),
                               blurred(image, area, x, row, &Colour::blue)};
        }
    return result;
}

TEST(Blur, WeighsTheNeighboursInsideTheRectangle) {
    Random random(1);
    for (int round = 0; round < 300; ++round) {
        // Spare bytes after the image would be read as the row above its top.
        const int width = random.between(1, 70), height = random.between(1, 8);
        const Dib dib = make_random_dib(
            {.width = width, .height = height, .bits = 24, .padding = random.byte()}, random);
        const auto before = block_bytes(dib);
        const Area area = random_area(random, dib);
        int32_t status = 99;
        const Dib made(Dib24Gausian(dib, area.x, area.y, area.width, area.height, &status));
        ASSERT_EQ(status, 0);
        ASSERT_EQ(block_bytes(made), image_bytes(expected_blur(picture_of(dib), area), 24, {}))
            << width << "x" << height << " at " << area.x << "," << area.y << " " << area.width
            << "x" << area.height;
        ASSERT_EQ(block_bytes(dib), before);
        ASSERT_TRUE(is_unlocked(dib) && is_unlocked(made));
    }
}

TEST(Blur, DarkensAFlatArea) {
    for (const auto& [value, expected] : {std::pair{255, 244}, {100, 95}, {0, 0}, {1, 0}}) {
        Dib dib = make_dib({7, 5, 24});
        for (int y = 0; y < 5; ++y)
            for (int x = 0; x < 7; ++x)
                dib.set_pixel(x, y, static_cast<uint32_t>(value) * 0x010101u);
        int32_t status = 99;
        const Dib made(Dib24Gausian(dib, 1, 1, 5, 3, &status));
        for (int y = 0; y < 3; ++y)
            for (int x = 0; x < 5; ++x)
                EXPECT_EQ(made.pixel(x, y), static_cast<uint32_t>(expected) * 0x010101u);
    }
}

TEST(Blur, ReadsTheImageAboveARectangleOneRowHigh) {
    Dib dib = make_dib({3, 3, 24});
    dib.set_pixel(1, 0, 0xFF); // above
    dib.set_pixel(1, 2, 0xFF); // below, not read
    int32_t status = 99;
    const Dib made(Dib24Gausian(dib, 1, 1, 1, 1, &status));
    // The column is one wide, too: 11 + 30 + 11 of the row above.
    EXPECT_EQ(made.pixel(0, 0), 255u * 52 / 256);
}

TEST(Blur, ReadsBlackAboveTheTopOfTheImage) {
    Dib dib = make_dib({1, 1, 24});
    dib.set_pixel(0, 0, 0xFFFFFF);
    int32_t status = 99;
    const Dib made(Dib24Gausian(dib, 0, 0, 1, 1, &status));
    // All but 11 + 30 + 11.
    EXPECT_EQ(made.pixel(0, 0), 255u * (245 - 52) / 256 * 0x010101u);
}

TEST(Blur, ChecksTheRectangleAndTheDepth) { expect_rectangle_checks({24}, -22, blur); }

TEST(Blur, DoesWithoutAStatusPointer) {
    const Dib dib = make_dib({2, 2, 24});
    const Dib made(Dib24Gausian(dib, 0, 0, 2, 2, nullptr));
    EXPECT_NE(static_cast<HGLOBAL>(made), nullptr);
    EXPECT_EQ(Dib24Gausian(nullptr, 0, 0, 2, 2, nullptr), nullptr);
}

TEST(Blur, ReportsItsRows) {
    const Dib dib = make_dib({3, 9, 24});
    expect_messages(single_pass_percents(7), [&] { blur(dib, {0, 1, 3, 7}); });
}

} // namespace
