// Exact palettes: slots in the order of appearance, system colours beforehand in mode 0.
#include "reduce/expected.hpp"

#include <optional>

using namespace kirvo_test;

namespace {

HGLOBAL WINAPI exact256_0(HGLOBAL dib, int32_t* status) {
    return Decrease256PaletteEx(dib, 0, status);
}
HGLOBAL WINAPI exact256_1(HGLOBAL dib, int32_t* status) {
    return Decrease256PaletteEx(dib, 1, status);
}
HGLOBAL WINAPI exact16_0(HGLOBAL dib, int32_t* status) {
    return Decrease16PaletteEx(dib, 0, status);
}
HGLOBAL WINAPI exact16_1(HGLOBAL dib, int32_t* status) {
    return Decrease16PaletteEx(dib, 1, status);
}

struct Kind {
    Reduce reduce;
    int bits, mode;
    int32_t failure;
};
constexpr Kind kinds[] = {{exact256_0, 8, 0, KIRVO_MORE_THAN_256},
                          {exact256_1, 8, 1, KIRVO_MORE_THAN_256},
                          {exact16_0, 4, 0, KIRVO_MORE_THAN_16},
                          {exact16_1, 4, 1, KIRVO_MORE_THAN_16}};

struct Preset {
    int slot;
    Colour colour;
};
const std::vector<Preset> presets256 = {
    {0, {0, 0, 0}},         {1, {128, 0, 0}},       {2, {0, 128, 0}},     {3, {128, 128, 0}},
    {4, {0, 0, 128}},       {5, {128, 0, 128}},     {6, {0, 128, 128}},   {7, {192, 192, 192}},
    {247, {160, 160, 164}}, {248, {128, 128, 128}}, {249, {255, 0, 0}},   {250, {0, 255, 0}},
    {251, {255, 255, 0}},   {252, {0, 0, 255}},     {253, {255, 0, 255}}, {254, {0, 255, 255}},
    {255, {255, 255, 255}}};
const std::vector<Preset> presets16 = {
    {0, {0, 0, 0}},       {1, {128, 0, 0}},    {2, {0, 128, 0}},    {3, {128, 128, 0}},
    {4, {0, 0, 128}},     {5, {128, 0, 128}},  {6, {0, 128, 128}},  {7, {128, 128, 128}},
    {8, {192, 192, 192}}, {9, {255, 0, 0}},    {10, {0, 255, 0}},   {11, {255, 255, 0}},
    {12, {0, 0, 255}},    {13, {255, 0, 255}}, {14, {0, 255, 255}}, {15, {255, 255, 255}}};

size_t rows_start(const Dib& from) {
    return from.header().biSize + 4 * from.header().biClrUsed + (from.bits() == 32 ? 12 : 0);
}

// The block of the result by linear searches; none when the colours do not fit.
std::optional<std::vector<uint8_t>> expected_block(const Kind& kind, const Dib& from) {
    const size_t slots = kind.bits == 8 ? 256 : 16;
    std::vector<Colour> table(slots);
    std::vector<std::pair<Colour, int>> searched;
    if (kind.mode == 0)
        for (const Preset& preset : kind.bits == 8 ? presets256 : presets16) {
            table[size_t(preset.slot)] = preset.colour;
            searched.push_back({preset.colour, preset.slot});
        }
    int last_used = kind.mode == 1 ? -1 : kind.bits == 8 ? 7 : 15;
    const int last_allowed = kind.bits == 4 ? 15 : kind.mode == 0 ? 246 : 255;
    std::vector<uint8_t> indices;
    for (const Colour& colour :
         stored_colours(from, {rows_start(from), stride_of_16_bits(from.width(), from.bits())})) {
        int slot = -1;
        for (const auto& [known, its_slot] : searched)
            if (known == colour) {
                slot = its_slot;
                break;
            }
        if (slot < 0) {
            slot = ++last_used;
            if (slot > last_allowed)
                return {};
            table[size_t(slot)] = colour;
            searched.push_back({colour, slot});
        }
        indices.push_back(uint8_t(slot));
    }
    return IndexedImage{from.width(), from.height(), kind.bits, uint32_t(slots), table, indices}
        .block(stride_of_16_bits(from.width(), kind.bits));
}

// True when the colours fitted.
bool expect_exact(const Kind& kind, const Dib& from) {
    SCOPED_TRACE(testing::Message() << from.width() << " x " << from.height() << ", " << from.bits()
                                    << " bits to " << kind.bits << ", mode " << kind.mode);
    const auto expected = expected_block(kind, from);
    if (expected)
        EXPECT_EQ(block_bytes(run(kind.reduce, from)), *expected);
    else
        expect_refused(kind.reduce, from, kind.failure);
    return expected.has_value();
}

// Pixels picked from the given colours (0xRRGGBB).
Dib image_of(const DibSpec& spec, const std::vector<uint32_t>& colours, Random& random) {
    Dib dib = make_dib(spec);
    for (int32_t y = 0; y < spec.height; ++y)
        for (int32_t x = 0; x < spec.width; ++x) {
            const uint32_t rgb = colours[size_t(random.between(0, int32_t(colours.size()) - 1))];
            const Colour colour = {uint8_t(rgb >> 16), uint8_t(rgb >> 8), uint8_t(rgb)};
            dib.set_pixel(x, y, pixel_of(colour, spec.bits, spec.masks.value_or(masks_888)));
        }
    return dib;
}

std::vector<uint32_t> colours_with_presets(size_t count, bool presets, Random& random) {
    std::vector<uint32_t> colours;
    while (colours.size() < count) {
        if (presets && random.once_in(2)) {
            const Colour& c = presets256[size_t(random.between(0, 16))].colour;
            colours.push_back(uint32_t(c.red << 16 | c.green << 8 | c.blue));
        } else {
            colours.push_back(random.next() & 0xFFFFFF);
        }
    }
    return colours;
}

// n distinct colours, none a preset, from the left in the bottom row.
Dib row_of_distinct(int n) {
    Dib dib = make_dib({n, 1, 24});
    for (int x = 0; x < n; ++x)
        dib.set_pixel(x, 0,
                      0x010203u + 0x000700u * uint32_t(x % 16) + 0x050000u * uint32_t(x / 16));
    return dib;
}

TEST(Exact, RandomImages) {
    Random random(1);
    int fitted = 0;
    for (int i = 0; i < 300; ++i) {
        const Kind& kind = random.pick(kinds);
        const auto count = static_cast<size_t>(
            kind.bits == 4 ? random.between(1, 18) : random.pick({1, 2, 30, 230, 250, 256, 257}));
        const DibSpec spec = true_colour_spec(random.between(1, 60), random.between(1, 30), random);
        fitted += expect_exact(
            kind, image_of(spec, colours_with_presets(count, random.once_in(2), random), random));
    }
    EXPECT_GT(fitted, 100);
    EXPECT_LT(fitted, 290);
}

TEST(Exact, ImagesOfPresets) {
    Random random(2);
    std::vector<uint32_t> colours;
    for (const Preset& preset : presets16)
        colours.push_back(
            uint32_t(preset.colour.red << 16 | preset.colour.green << 8 | preset.colour.blue));
    for (const Kind& kind : kinds)
        for (int32_t width = 1; width <= 20; ++width)
            EXPECT_TRUE(expect_exact(kind, image_of({width, 3, 24}, colours, random)));
}

TEST(Exact, SlotsFollowTheFirstAppearanceFromTheBottomLeft) {
    Dib from = make_dib({2, 2, 24});
    from.set_pixel(0, 1, 0x112233);
    from.set_pixel(1, 1, 0x445566);
    from.set_pixel(0, 0, 0x778899);
    from.set_pixel(1, 0, 0x112233);
    for (const auto& [kind, first] : {std::pair{kinds[0], 8u}, {kinds[1], 0u}, {kinds[3], 0u}}) {
        const Dib result = run(kind.reduce, from);
        EXPECT_EQ(result.pixel(0, 1), first);
        EXPECT_EQ(result.pixel(1, 1), first + 1);
        EXPECT_EQ(result.pixel(0, 0), first + 2);
        EXPECT_EQ(result.pixel(1, 0), first);
    }
}

TEST(Exact, BlackAndWhiteIn16Colours) {
    Dib from = make_dib({3, 1, 24});
    from.set_pixel(0, 0, 0xFFFFFF);
    const Dib presets = run(Decrease16Palette, from);
    EXPECT_EQ(presets.pixel(0, 0), 15u);
    EXPECT_EQ(presets.pixel(1, 0), 0u);
    const Dib found = run(exact16_1, from);
    EXPECT_EQ(found.pixel(0, 0), 0u);
    EXPECT_EQ(found.pixel(1, 0), 1u);
    const std::vector<uint8_t> block = block_bytes(found);
    EXPECT_EQ((std::vector<uint8_t>{block.begin() + 40, block.begin() + 48}),
              (std::vector<uint8_t>{255, 255, 255, 0, 0, 0, 0, 0}));
    EXPECT_EQ(block[104], 0x01); // white, black
    EXPECT_EQ(block[105], 0x10); // black, and nothing
    EXPECT_EQ(found.header().biClrUsed, 16u);
}

TEST(Exact, GreysOfThe16PresetsAreSwapped) {
    Dib from = make_dib({2, 1, 24});
    from.set_pixel(0, 0, 0x808080);
    from.set_pixel(1, 0, 0xC0C0C0);
    const Dib in16 = run(Decrease16Palette, from), in256 = run(Decrease256Palette, from);
    EXPECT_EQ(in16.pixel(0, 0), 7u);
    EXPECT_EQ(in16.pixel(1, 0), 8u);
    EXPECT_EQ(in256.pixel(0, 0), 248u);
    EXPECT_EQ(in256.pixel(1, 0), 7u);
}

TEST(Exact, NumberOfFreeSlots) {
    EXPECT_TRUE(expect_exact(kinds[0], row_of_distinct(239)));
    EXPECT_FALSE(expect_exact(kinds[0], row_of_distinct(240)));
    EXPECT_TRUE(expect_exact(kinds[1], row_of_distinct(240)));
    EXPECT_TRUE(expect_exact(kinds[1], row_of_distinct(256)));
    EXPECT_FALSE(expect_exact(kinds[1], row_of_distinct(257)));
    EXPECT_FALSE(expect_exact(kinds[2], row_of_distinct(1)));
    EXPECT_TRUE(expect_exact(kinds[3], row_of_distinct(16)));
    EXPECT_FALSE(expect_exact(kinds[3], row_of_distinct(17)));
}

TEST(Exact, ShortFormsAreMode0) {
    Random random(3);
    const Dib from = image_of({30, 5, 24}, colours_with_presets(60, true, random), random);
    EXPECT_EQ(block_bytes(run(Decrease256Palette, from)), *expected_block(kinds[0], from));
    const Dib grey = image_of({9, 5, 24}, {0x808080, 0xFF00FF}, random);
    EXPECT_EQ(block_bytes(run(Decrease16Palette, grey)), *expected_block(kinds[2], grey));
    expect_refused(Decrease16Palette, from, KIRVO_MORE_THAN_16);
    expect_refused(Decrease256Palette, row_of_distinct(240), KIRVO_MORE_THAN_256);
}

TEST(Exact, ModeIsTestedBeforeTheHandle) {
    for (const int32_t mode : {-1, 2, 0x7FFFFFFF}) {
        int32_t status = 77;
        EXPECT_EQ(Decrease256PaletteEx(nullptr, mode, &status), nullptr);
        EXPECT_EQ(status, KIRVO_BAD_PARAMETER);
        status = 77;
        EXPECT_EQ(Decrease16PaletteEx(nullptr, mode, &status), nullptr);
        EXPECT_EQ(status, KIRVO_BAD_PARAMETER);
        EXPECT_EQ(Decrease256PaletteEx(nullptr, mode, nullptr), nullptr);
        EXPECT_EQ(Decrease16PaletteEx(nullptr, mode, nullptr), nullptr);
    }
}

TEST(Exact, RowsTooWideFor16BitsOverlap) {
    Random random(4);
    // However their bytes meet in overlapping rows, they make system colours.
    const std::vector<uint32_t> colours = {0, 0xFF, 0xFF00, 0xFF0000, 0xFFFF00, 0xFFFFFF};
    for (const Kind& kind : kinds)
        for (const auto& [width, bits] : {std::pair{2729, 24},
                                          {2730, 24},
                                          {2760, 24},
                                          {8189, 24},
                                          {8300, 24},
                                          {16376, 24},
                                          {16377, 24},
                                          {16401, 24},
                                          {2047, 32},
                                          {2048, 32},
                                          {2051, 32}}) {
            DibSpec spec{width, 3, bits};
            if (bits == 32)
                spec.masks = masks_bgr888;
            EXPECT_TRUE(expect_exact(kind, image_of(spec, colours, random)));
        }
}

TEST(Exact, ThirtyTwoBitsWithoutMasksAreReadTwelveBytesFurtherOn) {
    Random random(5);
    const std::vector<uint32_t> colours = {0, 0xFF, 0xFF00, 0x808080};
    for (const Kind& kind : kinds)
        for (int32_t width = 1; width <= 5; ++width)
            for (int32_t height = 1; height <= 5; ++height)
                EXPECT_TRUE(expect_exact(kind, image_of({width, height, 32}, colours, random)));
}

TEST(Exact, ColourTablesAndLongHeadersMoveTheRows) {
    Random random(6);
    const std::vector<uint32_t> colours = {0, 0xFF, 0xFF00, 0x808080};
    for (const Kind& kind : kinds)
        for (const uint32_t header_size : {40u, 108u})
            for (const uint32_t used : {0u, 3u, 20u}) {
                DibSpec spec{9, 3, 24};
                spec.header_size = header_size;
                spec.colours_used = used;
                EXPECT_TRUE(expect_exact(kind, image_of(spec, colours, random)));
            }
}

TEST(Exact, FailureEndsTheProgressWhereItStands) {
    Dib from = make_dib({17, 10, 24});
    for (int x = 0; x < 17; ++x)
        from.set_pixel(x, 4, 0x010101u * uint32_t(x + 1)); // the sixth stored row
    ProgressRecorder recorder;
    recorder.watch();
    int32_t status = 77;
    EXPECT_EQ(Decrease16PaletteEx(from, 1, &status), nullptr);
    EXPECT_EQ(status, KIRVO_MORE_THAN_16);
    EXPECT_EQ(recorder.percents(), (std::vector{0, 10, 20, 30, 40, 50}));
    // Still registered.
    const Dib result(Decrease256PaletteEx(make_dib({1, 1, 24}), 1, &status));
    EXPECT_EQ(recorder.percents(), (std::vector{0, 10, 20, 30, 40, 50, 0, 100}));
}

} // namespace
