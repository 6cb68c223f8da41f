// Grey images beside the system colours.
#include "reduce/expected.hpp"

using namespace kirvo_test;

namespace {

std::vector<Colour> grey_palette() {
    std::vector<Colour> palette(256);
    for (int k = 0; k < 7; ++k)
        palette[size_t(k)] = {uint8_t(k % 2 * 128), uint8_t(k / 2 % 2 * 128),
                              uint8_t(k > 3 ? 128 : 0)};
    palette[7] = {192, 192, 192};
    palette[8] = {192, 220, 192};
    palette[9] = {164, 200, 240};
    for (int k = 10; k <= 245; ++k)
        palette[size_t(k)] = {uint8_t(k + 10), uint8_t(k + 10), uint8_t(k + 10)};
    palette[246] = {255, 251, 240};
    palette[247] = {160, 160, 164};
    palette[248] = {128, 128, 128};
    for (int j = 1; j <= 7; ++j)
        palette[size_t(248 + j)] = {uint8_t(j % 2 * 255), uint8_t(j / 2 % 2 * 255),
                                    uint8_t(j / 4 * 255)};
    return palette;
}

void expect_grey(const Dib& from) {
    SCOPED_TRACE(testing::Message()
                 << from.width() << " x " << from.height() << ", " << from.bits() << " bits");
    std::vector<uint8_t> indices;
    for (const Colour& c : stored_colours(from, {from.rows_start(), size_t(from.stride())})) {
        const int luminance = (29 * c.blue + 150 * c.green + 77 * c.red + 128) / 256;
        indices.push_back(uint8_t(luminance < 20 ? 10 : luminance - 10));
    }
    EXPECT_EQ(block_bytes(run(DecreaseColorMono256, from)),
              (IndexedImage{from.width(), from.height(), 8, 0, grey_palette(), indices}).block());
}

uint32_t slot_of(uint32_t rgb) {
    Dib from = make_dib({1, 1, 24});
    from.set_pixel(0, 0, rgb);
    return run(DecreaseColorMono256, from).pixel(0, 0);
}

TEST(Grey, SlotsOfSingleColours) {
    EXPECT_EQ(slot_of(0x000000), 10u);
    EXPECT_EQ(slot_of(0x131313), 10u);
    EXPECT_EQ(slot_of(0x141414), 10u);
    EXPECT_EQ(slot_of(0x151515), 11u);
    EXPECT_EQ(slot_of(0x808080), 118u);
    EXPECT_EQ(slot_of(0xFFFFFF), 245u);
    EXPECT_EQ(slot_of(0xFF0000), 67u);  // (19635 + 128) / 256 = 77
    EXPECT_EQ(slot_of(0x00FF00), 139u); // (38250 + 128) / 256 = 149
    EXPECT_EQ(slot_of(0x0000FF), 19u);  // (7395 + 128) / 256 = 29
}

TEST(Grey, EveryWidthAndKindOfSource) {
    Random random(1);
    for (int32_t width = 1; width <= 140; ++width)
        expect_grey(make_random_dib(true_colour_spec(width, 1 + width % 4, random), random));
}

TEST(Grey, WideImages) {
    Random random(3);
    for (const int32_t width : {511, 512, 513, 1024, 1500})
        expect_grey(make_random_dib({width, 2, 24}, random));
}

TEST(Grey, RowsWithoutMasksFollowTheHeader) {
    Random random(2);
    expect_grey(make_random_dib({21, 3, 32}, random));
    DibSpec spec{21, 3, 32, masks_bgr888};
    spec.header_size = 108;
    expect_grey(make_random_dib(spec, random));
}

TEST(Grey, EveryValueOfEachChannel) {
    for (int shift = 0; shift < 24; shift += 8) {
        Dib from = make_dib({256, 2, 24});
        for (int x = 0; x < 256; ++x) {
            from.set_pixel(x, 0, uint32_t(x) << shift);
            from.set_pixel(x, 1, ~(uint32_t(x) << shift) & 0xFFFFFF);
        }
        expect_grey(from);
    }
}

} // namespace
