// Error diffusion to 256 and 16 colours against a literal formulation: three buffers of two rows of
// 32-bit cells, thresholds tested one after the other, 16-bit sums.
#include "reduce/expected.hpp"

#include <array>
#include <map>

using namespace kirvo_test;

namespace {

using Sums = std::array<int16_t, 3>; // red, green, blue

// The slots of the cube positions that do not stand in the slot of their own number.
const std::map<int, int> moved_positions = {
    {1, 111},   {2, 108},   {3, 1},     {4, 18},    {5, 249},   {6, 126},   {7, 208},
    {8, 30},    {9, 35},    {18, 4},    {21, 5},    {30, 252},  {35, 253},  {108, 2},
    {111, 3},   {126, 6},   {129, 248}, {208, 7},   {216, 250}, {221, 251}, {246, 254},
    {247, 221}, {248, 129}, {249, 21},  {250, 216}, {251, 255}};

int slot_of(int green, int blue, int red) {
    const int position = 36 * green + 6 * blue + red;
    const auto moved = moved_positions.find(position);
    return moved == moved_positions.end() ? position : moved->second;
}

// Red or blue: 6 levels.
int quantise6(int16_t& value) {
    constexpr int thresholds[] = {192, 128, 96, 64, 32}, levels[] = {255, 192, 128, 96, 64};
    for (int i = 0; i < 5; ++i)
        if (value >= thresholds[i]) {
            value = int16_t(value - levels[i]);
            return 5 - i;
        }
    return 0;
}

int quantise7(int16_t& value) {
    constexpr int thresholds[] = {192, 160, 128, 96, 64, 32},
                  levels[] = {255, 192, 160, 128, 96, 64};
    for (int i = 0; i < 6; ++i)
        if (value >= thresholds[i]) {
            value = int16_t(value - levels[i]);
            return 6 - i;
        }
    return 0;
}

uint8_t quantise_to_256(Sums& sums) {
    const int red = quantise6(sums[0]);
    const int blue = quantise6(sums[2]);
    const int green = quantise7(sums[1]);
    return uint8_t(slot_of(green, blue, red));
}

uint8_t quantise_to_16(Sums& sums) {
    constexpr int weights[] = {1, 2, 4};
    int code = 8;
    for (int c = 0; c < 3; ++c)
        if (sums[size_t(c)] > 128) {
            sums[size_t(c)] = int16_t(sums[size_t(c)] - 255);
            code += weights[c];
        }
    if (code != 8)
        return uint8_t(code);
    code = 0;
    for (int c = 0; c < 3; ++c)
        if (sums[size_t(c)] > 64) {
            sums[size_t(c)] = int16_t(sums[size_t(c)] - 128);
            code += weights[c];
        }
    return uint8_t(code == 7 ? 8 : code);
}

template<typename Quantise>
std::vector<uint8_t> diffuse(const Dib& from, Quantise quantise) {
    const int width = from.width(), height = from.height();
    const std::vector<Colour> colours =
        stored_colours(from, {from.rows_start(), size_t(from.stride())});
    std::vector<uint8_t> indices(colours.size());
    // cells[channel][row 0 or 1][column + 1]
    std::vector<std::vector<std::vector<int32_t>>> cells(
        3, std::vector<std::vector<int32_t>>(2, std::vector<int32_t>(size_t(width) + 2)));
    int ahead = -1;
    for (int row = 0; row < height; ++row) {
        for (int step = 0; step < width; ++step) {
            const int x = ahead < 0 ? width - 1 - step : step;
            const Colour& colour = colours[size_t(row * width + x)];
            const int pixel[] = {colour.red, colour.green, colour.blue};
            Sums sums;
            for (size_t c = 0; c < 3; ++c)
                sums[c] = int16_t(pixel[c] + int16_t(cells[c][0][size_t(x + 1)]));
            indices[size_t(row * width + x)] = quantise(sums);
            for (size_t c = 0; c < 3; ++c) {
                cells[c][0][size_t(x + 1 + ahead)] += sums[c] >> 1;
                cells[c][1][size_t(x + 1)] += sums[c] >> 2;
                cells[c][1][size_t(x + 1 + ahead)] += sums[c] >> 3;
                cells[c][1][size_t(x + 1 - ahead)] += sums[c] >> 4;
            }
        }
        for (auto& rows : cells) {
            rows[0] = rows[1];
            rows[1].assign(rows[1].size(), 0);
        }
        ahead = -ahead;
    }
    return indices;
}

std::vector<Colour> palette_of_256() {
    constexpr uint8_t greens[] = {0, 64, 96, 128, 160, 192, 255};
    constexpr uint8_t others[] = {0, 64, 96, 128, 192, 255};
    std::vector<Colour> palette(256);
    for (int g = 0; g < 7; ++g)
        for (int b = 0; b < 6; ++b)
            for (int r = 0; r < 6; ++r)
                palette[size_t(slot_of(g, b, r))] = {others[r], greens[g], others[b]};
    palette[8] = {192, 220, 192};
    palette[9] = {164, 200, 240};
    palette[246] = {255, 251, 240};
    palette[247] = {160, 160, 164};
    return palette;
}

const std::vector<Colour> palette_of_16 = {
    {0, 0, 0},     {128, 0, 0},     {0, 128, 0},     {128, 128, 0},  {0, 0, 128}, {128, 0, 128},
    {0, 128, 128}, {192, 192, 192}, {128, 128, 128}, {255, 0, 0},    {0, 255, 0}, {255, 255, 0},
    {0, 0, 255},   {255, 0, 255},   {0, 255, 255},   {255, 255, 255}};

void expect_diffused(const Dib& from) {
    SCOPED_TRACE(testing::Message()
                 << from.width() << " x " << from.height() << ", " << from.bits() << " bits");
    EXPECT_EQ(block_bytes(run(DecreaseColor256, from)),
              (IndexedImage{from.width(), from.height(), 8, 0, palette_of_256(),
                            diffuse(from, quantise_to_256)})
                  .block());
    EXPECT_EQ(block_bytes(run(DecreaseColor16, from)),
              (IndexedImage{from.width(), from.height(), 4, 0, palette_of_16,
                            diffuse(from, quantise_to_16)})
                  .block());
}

Dib flat(int32_t width, int32_t height, uint8_t red, uint8_t green, uint8_t blue) {
    Dib dib = make_dib({width, height, 24});
    for (int32_t y = 0; y < height; ++y)
        for (int32_t x = 0; x < width; ++x)
            dib.set_pixel(x, y, uint32_t(red << 16 | green << 8 | blue));
    return dib;
}

TEST(Diffusion, EverySizeOfSmallImages) {
    Random random(1);
    for (int32_t width = 1; width <= 20; ++width)
        for (int32_t height = 1; height <= 6; ++height)
            expect_diffused(make_random_dib({width, height, 24}, random));
}

TEST(Diffusion, OnePixelColumnsAndRows) {
    Random random(2);
    expect_diffused(make_random_dib({1, 300, 24}, random));
    expect_diffused(make_random_dib({300, 1, 24}, random));
    expect_diffused(make_random_dib({1, 300, 32, masks_888}, random));
    expect_diffused(make_random_dib({2, 300, 24}, random));
}

TEST(Diffusion, RandomImagesOfEveryKind) {
    Random random(3);
    for (int i = 0; i < 150; ++i)
        expect_diffused(make_random_dib(
            true_colour_spec(random.between(1, 90), random.between(1, 30), random), random));
}

TEST(Diffusion, SmoothAndDarkImages) {
    Dib from = make_dib({256, 40, 24});
    for (int32_t y = 0; y < 40; ++y)
        for (int32_t x = 0; x < 256; ++x)
            from.set_pixel(x, y, uint32_t(x << 16 | (255 - x) << 8 | (x / 4 + y)));
    expect_diffused(from);
}

// Errors at their largest: every channel value that leaves an extreme one, beside and under others.
TEST(Diffusion, LargestErrors) {
    Random random(4);
    constexpr uint8_t values[] = {0, 1, 31, 32, 33, 63, 64, 65, 66, 127, 128, 129, 191, 192, 255};
    for (int i = 0; i < 20; ++i) {
        Dib from = make_dib({61, 60, 24});
        const bool flat_rows = i % 2 == 0;
        for (int32_t y = 0; y < 60; ++y) {
            const uint32_t low = random.pick(values), high = random.pick(values);
            for (int32_t x = 0; x < 61; ++x) {
                const uint32_t b = flat_rows ? low : random.pick(values);
                const uint32_t g = flat_rows ? high : random.pick(values);
                from.set_pixel(x, y, b | g << 8 | (flat_rows ? low : random.pick(values)) << 16);
            }
        }
        expect_diffused(from);
    }
}

TEST(Diffusion, FlatImagesOfEveryGrey) {
    for (int grey = 0; grey < 256; grey += 3)
        expect_diffused(flat(31, 31, uint8_t(grey), uint8_t(grey), uint8_t(255 - grey)));
}

TEST(Diffusion, RowsFollowHeaderAndColourPart) {
    Random random(5);
    for (const uint32_t header_size : {36u, 44u, 108u})
        for (const uint32_t colours : {0u, 7u}) {
            DibSpec spec{9, 4, 24};
            spec.header_size = header_size;
            spec.colours_used = colours;
            spec.extra_bytes = 8;
            expect_diffused(make_random_dib(spec, random));
            spec.bits = 32;
            expect_diffused(make_random_dib(spec, random));
            if (header_size >= 40) {
                spec.masks = masks_bgr888;
                spec.colours_used = 0;
                expect_diffused(make_random_dib(spec, random));
            }
        }
}

TEST(Diffusion, RowsWithoutMasksFollowTheHeader) {
    Random random(6);
    expect_diffused(make_random_dib({5, 3, 32}, random));
}

TEST(Diffusion, LastRowMayLackItsPadding) {
    Random random(7);
    const Dib full = make_random_dib({5, 3, 24}, random);
    DibSpec spec{5, 3, 24};
    spec.extra_bytes = -1;
    Dib cut = make_dib(spec);
    cut.write(0, block_bytes(full));
    expect_diffused(cut);
}

// Worked out by hand.
TEST(Diffusion, ChannelsGoUpToTheNextLevel) {
    EXPECT_EQ(run(DecreaseColor256, flat(1, 1, 128, 128, 128)).pixel(0, 0), 172u);
    EXPECT_EQ(run(DecreaseColor256, flat(1, 1, 192, 192, 192)).pixel(0, 0), 255u);
    EXPECT_EQ(run(DecreaseColor256, flat(1, 1, 100, 0, 0)).pixel(0, 0),
              1u); // 128, slot of position 3
    EXPECT_EQ(run(DecreaseColor256, flat(1, 1, 31, 31, 31)).pixel(0, 0), 0u);
    EXPECT_EQ(run(DecreaseColor256, flat(1, 1, 0, 32, 0)).pixel(0, 0), 36u);
    EXPECT_EQ(run(DecreaseColor256, flat(1, 1, 0, 0, 32)).pixel(0, 0), 126u);
}

TEST(Diffusion, ErrorsOfTheFirstPixelReachItsNeighbours) {
    // The bottom row runs right to left. 128 becomes 192 and leaves -64: the left neighbour loses
    // 32; above, the same column loses 16, the left one 8 (and 16 for its own -32), the right
    // one 4.
    Dib from = make_dib({3, 2, 24});
    from.set_pixel(1, 1, 0x800000);
    from.set_pixel(0, 1, 0x3F0000); // 63 - 32 = 31: black, leaves 31
    const Dib result = run(DecreaseColor256, from);
    EXPECT_EQ(result.pixel(2, 1), 0u);
    EXPECT_EQ(result.pixel(1, 1), 18u); // (192, 0, 0) is in slot 18
    EXPECT_EQ(result.pixel(0, 1), 0u);
    from.set_pixel(0, 1, 0x400000); // 64 - 32 = 32: (64, 0, 0) in slot 111
    EXPECT_EQ(run(DecreaseColor256, from).pixel(0, 1), 111u);
}

TEST(Diffusion, WhiteBlackAndGreys) {
    for (const auto& [level, slot256, slot16] : {std::tuple{0, 0u, 0u}, {255, 255u, 15u}}) {
        const Dib from = flat(7, 5, uint8_t(level), uint8_t(level), uint8_t(level));
        const Dib in256 = run(DecreaseColor256, from), in16 = run(DecreaseColor16, from);
        for (int32_t y = 0; y < 5; ++y)
            for (int32_t x = 0; x < 7; ++x) {
                EXPECT_EQ(in256.pixel(x, y), slot256);
                EXPECT_EQ(in16.pixel(x, y), slot16);
            }
    }
    const Dib middle = run(DecreaseColor16, flat(7, 5, 128, 128, 128));
    for (int32_t y = 0; y < 5; ++y)
        for (int32_t x = 0; x < 7; ++x)
            EXPECT_EQ(middle.pixel(x, y), 8u);
}

TEST(Diffusion, BrightBranchKeepsTheWholeValueOfOtherChannels) {
    // Red 129 makes the pixel bright; green 128 is not above the threshold and becomes 0, its whole
    // value goes on: half of it makes the left neighbour's green 64 + 1 > 64.
    Dib from = make_dib({2, 1, 24});
    from.set_pixel(1, 0, 0x818000);
    from.set_pixel(0, 0, 0x000100);
    const Dib result = run(DecreaseColor16, from);
    EXPECT_EQ(result.pixel(1, 0), 9u);
    EXPECT_EQ(result.pixel(0, 0), 2u);
}

TEST(Diffusion, SixteenColoursNeverUseTheLightGrey) {
    Random random(8);
    for (int i = 0; i < 10; ++i) {
        const Dib result = run(DecreaseColor16, make_random_dib({40, 40, 24}, random));
        for (int32_t y = 0; y < 40; ++y)
            for (int32_t x = 0; x < 40; ++x)
                ASSERT_NE(result.pixel(x, y), 7u);
    }
}

TEST(Diffusion, SystemColoursStandInTheirSlots) {
    const Dib result = run(DecreaseColor256, flat(1, 1, 0, 0, 0));
    const std::vector<uint8_t> block = block_bytes(result);
    const auto colour = [&](size_t slot) {
        return block[40 + 4 * slot + 2] << 16 | block[40 + 4 * slot + 1] << 8 |
               block[40 + 4 * slot];
    };
    constexpr int low[] = {0x000000, 0x800000, 0x008000, 0x808000, 0x000080,
                           0x800080, 0x008080, 0xC0C0C0, 0xC0DCC0, 0xA4C8F0};
    constexpr int high[] = {0xFFFBF0, 0xA0A0A4, 0x808080, 0xFF0000, 0x00FF00,
                            0xFFFF00, 0x0000FF, 0xFF00FF, 0x00FFFF, 0xFFFFFF};
    for (size_t i = 0; i < 10; ++i) {
        EXPECT_EQ(colour(i), low[i]);
        EXPECT_EQ(colour(246 + i), high[i]);
    }
}

} // namespace
