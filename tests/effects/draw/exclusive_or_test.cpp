// A colour XORed over a rectangle.
#include "effects/pictures.hpp"

using namespace kirvo_test;

namespace {

int exclusive_or(HGLOBAL dib, const Area& a, uint32_t colour = 0x123456) {
    return Dib24XOR(dib, a.x, a.y, a.width, a.height, colour);
}

TEST(Xor, FlipsTheColourUnderTheMasks) {
    Random random(1);
    for (int bits : {16, 24, 32})
        for (int round = 0; round < 120; ++round) {
            const Dib dib =
                random_image(random, random.between(1, 400), random.between(1, 5), bits);
            const auto before = block_bytes(dib);
            const Area area = random_area(random, dib);
            const uint32_t colour = random.next();
            const Colour channels = {static_cast<uint8_t>(colour),
                                     static_cast<uint8_t>(colour >> 8),
                                     static_cast<uint8_t>(colour >> 16)};
            const uint32_t word = pixel_of(channels, bits, bits == 24 ? Masks{} : dib.masks());
            Dib expected = copy_of(dib);
            for (int y = area.y; y < area.y + area.height; ++y)
                for (int x = area.x; x < area.x + area.width; ++x)
                    expected.set_pixel(x, y, dib.pixel(x, y) ^ word);
            ASSERT_EQ(exclusive_or(dib, area, colour), 0);
            ASSERT_EQ(block_bytes(dib), block_bytes(expected));
            ASSERT_EQ(exclusive_or(dib, area, colour), 0);
            ASSERT_EQ(block_bytes(dib), before) << "twice restores";
            ASSERT_TRUE(is_unlocked(dib));
        }
}

TEST(Xor, InvertsA24BitImageWithWhite) {
    Dib dib = make_dib({1, 1, 24});
    dib.set_pixel(0, 0, 0x0F1E2D);
    EXPECT_EQ(exclusive_or(dib, {0, 0, 1, 1}, 0xFFFFFF), 0);
    EXPECT_EQ(dib.pixel(0, 0), 0xF0E1D2u);
    EXPECT_EQ(exclusive_or(dib, {0, 0, 1, 1}, 0x0000FF), 0);
    EXPECT_EQ(dib.pixel(0, 0), 0x0FE1D2u) << "red is the low byte of a colour";
}

TEST(Xor, ChecksTheRectangleAndTheDepth) {
    expect_rectangle_checks({16, 24, 32}, -41,
                            [](HGLOBAL dib, const Area& area) { return exclusive_or(dib, area); });
}

TEST(Xor, ReportsItsRows) {
    const Dib dib = make_dib({3, 12, 16});
    expect_messages(single_pass_percents(11), [&] { exclusive_or(dib, {0, 0, 3, 11}); });
}

} // namespace
