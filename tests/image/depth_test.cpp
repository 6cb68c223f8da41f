// Depth conversion against a literal formulation over the bytes of the block.
#include "support/direct_colour.hpp"
#include "support/progress_recorder.hpp"

#include <cstring>
#include <gtest/gtest.h>

using namespace kirvo_test;

namespace {

using Convert = HGLOBAL(WINAPI*)(HGLOBAL, int32_t*);

struct Conversion {
    int from, to;
    Convert convert;
};
constexpr Conversion conversions[] = {{16, 24, DibConvert24bit}, {32, 24, DibConvert24bit},
                                      {24, 16, DibConvert16bit}, {32, 16, DibConvert16bit},
                                      {16, 32, DibConvert32bit}, {24, 32, DibConvert32bit}};

Masks target_masks(int bits) { return bits == 16 ? masks_565 : masks_888; }

// Where the pixels of a source are taken from.
size_t source_start(const Dib& from) {
    const BITMAPINFOHEADER header = from.header();
    const bool masks = header.biCompression == BI_BITFIELDS;
    if (from.bits() == 24)
        return 40 + header.biClrUsed * (header.biSize == 12 ? 3 : 4);
    return header.biSize + (from.bits() == 32 || masks ? 12 : 0);
}

// The whole block of the result.
std::vector<uint8_t> expected_block(const Dib& from, int bits) {
    const int32_t width = from.width(), height = from.height();
    DibSpec spec{width, height, bits};
    if (bits != 24)
        spec.masks = target_masks(bits);
    Dib result = make_dib(spec);
    const std::vector<Colour> colours =
        stored_colours(from, {source_start(from), static_cast<size_t>(from.stride())});
    for (int32_t row = 0; row < height; ++row)
        for (int32_t x = 0; x < width; ++x) {
            const Colour& c = colours[static_cast<size_t>(row * width + x)];
            const uint32_t pixel = bits == 16
                                       ? (c.red / 8u) << 11 | (c.green / 4u) << 5 | c.blue / 8u
                                       : c.red * 0x10000u + c.green * 0x100u + c.blue;
            result.set_pixel(x, height - 1 - row, pixel);
        }
    return block_bytes(result);
}

void expect_converted(const Conversion& conversion, const Dib& from) {
    SCOPED_TRACE(testing::Message() << conversion.from << " to " << conversion.to << ", "
                                    << from.width() << " x " << from.height());
    const std::vector<uint8_t> before = block_bytes(from);
    int32_t status = 77;
    const Dib result(conversion.convert(from, &status));
    ASSERT_EQ(status, KIRVO_OK);
    ASSERT_NE(result, nullptr);
    EXPECT_EQ(block_bytes(result), expected_block(from, conversion.to));
    EXPECT_EQ(block_bytes(from), before);
    EXPECT_TRUE(is_unlocked(from));
    EXPECT_TRUE(is_unlocked(result));
}

void expect_refused(Convert convert, HGLOBAL from, int32_t expected) {
    int32_t status = 77;
    EXPECT_EQ(convert(from, &status), nullptr);
    EXPECT_EQ(status, expected);
    EXPECT_EQ(convert(from, nullptr), nullptr);
    EXPECT_TRUE(from == nullptr || is_unlocked(from));
}

// One pixel in, one pixel out.
uint32_t convert_pixel(Convert convert, const DibSpec& spec, uint32_t pixel) {
    Dib from = make_dib(spec);
    from.set_pixel(0, 0, pixel);
    const Dib result(convert(from, nullptr));
    return result.pixel(0, 0);
}

TEST(DepthConversion, ValuesOfSinglePixels) {
    EXPECT_EQ(convert_pixel(DibConvert16bit, {1, 1, 24}, 0x563412), 0x51A2u);
    EXPECT_EQ(convert_pixel(DibConvert32bit, {1, 1, 24}, 0x563412), 0x00563412u);
    EXPECT_EQ(convert_pixel(DibConvert24bit, {1, 1, 16, masks_565}, 0xFFFF), 0xF8FCF8u);
    EXPECT_EQ(convert_pixel(DibConvert24bit, {1, 1, 16}, 0x7C00), 0xF80000u);
    EXPECT_EQ(convert_pixel(DibConvert32bit, {1, 1, 16}, 0x7C00), 0xF80000u);
    EXPECT_EQ(convert_pixel(DibConvert24bit, {1, 1, 16}, 0xFFFF), 0xF8F8F8u);
    EXPECT_EQ(convert_pixel(DibConvert24bit, {1, 1, 32, masks_888}, 0xFF123456), 0x123456u);
    EXPECT_EQ(convert_pixel(DibConvert24bit, {1, 1, 32, masks_bgr888}, 0xFF123456), 0x563412u);
    EXPECT_EQ(convert_pixel(DibConvert16bit, {1, 1, 32, masks_888}, 0xFFFFFF), 0xFFFFu);
    EXPECT_EQ(convert_pixel(DibConvert16bit, {1, 1, 32, masks_888}, 0x070307), 0u);
}

TEST(DepthConversion, EverySizeOfSmallImages) {
    Random random(1);
    for (const Conversion& conversion : conversions)
        for (int32_t width = 1; width <= 40; ++width) {
            DibSpec spec{width, 1 + width % 3, conversion.from};
            spec.padding = 0xEE; // of the source; the result's is 0
            if (conversion.from != 24)
                spec.masks = target_masks(conversion.from);
            expect_converted(conversion, make_random_dib(spec, random));
        }
}

TEST(DepthConversion, AnyMasks) {
    constexpr Masks unusual16[] = {masks_555,
                                   {0x001F, 0x03E0, 0x7C00},
                                   {0x0F00, 0x00F0, 0x000F},
                                   {0xFFC0, 0x003E, 0x0001},
                                   {0xFFFF, 0x8001, 0x0000},
                                   {0x12347C00, 0xFFFF03E0, 0x0001001F}};
    constexpr Masks unusual32[] = {masks_bgr888,
                                   {0xFF000000, 0x00FF0000, 0x0000FF00},
                                   {0x3FF00000, 0x000FFC00, 0x000003FF},
                                   {0xFFFFFFFF, 0x80000001, 0x00000000},
                                   {0xF0000000, 0x0000001F, 0x00018000}};
    Random random(2);
    for (const Conversion& conversion : conversions) {
        if (conversion.from == 16)
            for (const Masks& masks : unusual16)
                expect_converted(conversion, make_random_dib({37, 3, 16, masks}, random));
        if (conversion.from == 32)
            for (const Masks& masks : unusual32)
                expect_converted(conversion, make_random_dib({37, 3, 32, masks}, random));
    }
}

TEST(DepthConversion, SixteenBitsWithoutMasksAre555) {
    Random random(3);
    expect_converted(conversions[0], make_random_dib({9, 4, 16}, random));
    expect_converted(conversions[4], make_random_dib({9, 4, 16}, random));
}

// The source ends where its header says, 12 bytes before its last pixels are looked for.
TEST(DepthConversion, ThirtyTwoBitsWithoutMasksAreReadTwelveBytesFurtherOn) {
    Random random(4);
    for (int32_t width = 1; width <= 9; ++width)
        for (int32_t height = 1; height <= 5; ++height)
            for (const int64_t extra : {0, 1, 5, 11, 12, 20}) {
                DibSpec spec{width, height, 32};
                spec.extra_bytes = extra;
                Dib from = make_random_dib(spec, random);
                from.write(from.promised_bytes(), std::vector<uint8_t>(size_t(extra), 0xDD));
                expect_converted(conversions[1], from);
                expect_converted(conversions[3], from);
            }
}

TEST(DepthConversion, ReadsPixelsMissingAtTheEndAsBlack) {
    Dib from = make_dib({4, 1, 32});
    for (int x = 0; x < 4; ++x)
        from.set_pixel(x, 0, 0x010101u * unsigned(x + 1));
    const Dib result(DibConvert24bit(from, nullptr));
    EXPECT_EQ(result.pixel(0, 0), 0x040404u);
    EXPECT_EQ(result.pixel(1, 0), 0u);
    EXPECT_EQ(result.pixel(3, 0), 0u);
}

TEST(DepthConversion, ColourTablesAndLongHeadersMoveThePixels) {
    Random random(5);
    for (const Conversion& conversion : conversions)
        for (const uint32_t header_size : {36u, 40u, 44u, 108u})
            for (const uint32_t colours : {0u, 1u, 3u, 20u})
                for (const bool masks : {false, true}) {
                    if (masks && conversion.from == 24)
                        continue;
                    DibSpec spec{11, 3, conversion.from};
                    spec.header_size = header_size;
                    spec.colours_used = colours;
                    spec.extra_bytes = 16;
                    if (masks)
                        spec.masks = target_masks(conversion.from);
                    Dib from = make_dib(spec);
                    const size_t pixels =
                        std::max(size_t{40}, size_t{header_size}) + (masks ? 12 : 0);
                    std::vector<uint8_t> bytes(block_bytes(from).size() - pixels);
                    random.fill(bytes.data(), bytes.size());
                    from.write(pixels, bytes);
                    expect_converted(conversion, from);
                }
}

TEST(DepthConversion, LastRowMayLackItsPadding) {
    Random random(6);
    for (const Conversion& conversion : conversions) {
        DibSpec spec{5, 2, conversion.from};
        if (conversion.from != 24)
            spec.masks = target_masks(conversion.from);
        const int64_t padding = stride_of(5, spec.bits) - 5 * spec.bits / 8;
        Dib full = make_random_dib(spec, random);
        spec.extra_bytes = -padding;
        Dib cut = make_dib(spec);
        cut.write(0, block_bytes(full));
        expect_converted(conversion, cut);
        spec.extra_bytes = -padding - 1;
        expect_refused(conversion.convert, make_dib(spec), KIRVO_BAD_PARAMETER);
    }
}

TEST(DepthConversion, RefusesOtherDepths) {
    for (const int bits : {1, 4, 8, 24, 0, 2, 12, 48})
        expect_refused(DibConvert24bit, make_dib({4, 4, bits}), KIRVO_NEEDS_16_32);
    for (const int bits : {1, 4, 8, 16, 25, 64})
        expect_refused(DibConvert16bit, make_dib({4, 4, bits}), KIRVO_NEEDS_24_32);
    for (const int bits : {1, 4, 8, 32, 15, 25})
        expect_refused(DibConvert32bit, make_dib({4, 4, bits}), KIRVO_NEEDS_16_24);
}

TEST(DepthConversion, DepthComesBeforeSize) {
    Dib from = make_dib({4, 4, 8});
    BITMAPINFOHEADER header = from.header();
    header.biWidth = header.biHeight = 0;
    from.set_header(header);
    expect_refused(DibConvert16bit, from, KIRVO_NEEDS_24_32);
}

TEST(DepthConversion, RefusesNullAndFreedHandles) {
    const HGLOBAL freed = make_dib({4, 4, 24}).release();
    GlobalFree(freed);
    for (const Convert convert : {DibConvert24bit, DibConvert16bit, DibConvert32bit}) {
        expect_refused(convert, nullptr, KIRVO_NULL_HANDLE);
        int32_t status = 77;
        EXPECT_EQ(convert(freed, &status), nullptr);
        EXPECT_EQ(status, KIRVO_NULL_HANDLE);
    }
}

TEST(DepthConversion, ImageWithoutSizeCannotBeAllocated) {
    for (const Conversion& conversion : conversions)
        for (const auto& [width, height] : {std::pair{0, 4}, {4, 0}, {-4, 4}, {4, -4}}) {
            Dib from = make_dib({4, 4, conversion.from});
            BITMAPINFOHEADER header = from.header();
            header.biWidth = width;
            header.biHeight = height;
            from.set_header(header);
            expect_refused(conversion.convert, from, KIRVO_NO_MEMORY);
        }
}

TEST(DepthConversion, BlockSmallerThanItsHeaderSaysIsABadParameter) {
    for (const Conversion& conversion : conversions) {
        DibSpec spec{8, 4, conversion.from}; // no padding at any depth
        if (conversion.from != 24)
            spec.masks = target_masks(conversion.from);
        spec.extra_bytes = -1;
        expect_refused(conversion.convert, make_dib(spec), KIRVO_BAD_PARAMETER);
        Dib huge = make_dib({8, 4, conversion.from});
        BITMAPINFOHEADER header = huge.header();
        header.biWidth = header.biHeight = 0x7FFFFFFF;
        huge.set_header(header);
        expect_refused(conversion.convert, huge, KIRVO_BAD_PARAMETER);
    }
}

TEST(DepthConversion, ReportsProgressOverTheRows) {
    for (const Conversion& conversion : conversions)
        for (const int32_t height : {1, 7, 200}) {
            const Dib from = make_dib({2, height, conversion.from});
            ProgressRecorder recorder;
            recorder.watch(5);
            const Dib result(conversion.convert(from, nullptr));
            EXPECT_EQ(recorder.percents(), single_pass_percents(height));
            const Dib again(conversion.convert(from, nullptr));
            EXPECT_EQ(recorder.percents(), single_pass_percents(height));
        }
}

TEST(DepthConversion, ReportsNothingWhenItFails) {
    ProgressRecorder recorder;
    recorder.watch();
    expect_refused(DibConvert24bit, make_dib({2, 2, 24}), KIRVO_NEEDS_16_32);
    expect_refused(DibConvert24bit, nullptr, KIRVO_NULL_HANDLE);
    EXPECT_EQ(recorder.percents(), std::vector<int>{});
}

TEST(DepthConversion, RandomImages) {
    Random random(7);
    for (int i = 0; i < 300; ++i) {
        const Conversion& conversion = random.pick(conversions);
        DibSpec spec{random.between(1, 90), random.between(1, 6), conversion.from};
        spec.padding = random.byte();
        if (conversion.from != 24 && !random.once_in(4))
            spec.masks = Masks{random.next() & random.next(), random.next() & random.next(),
                               random.next() >> random.between(0, 31)};
        expect_converted(conversion, make_random_dib(spec, random));
    }
}

// DibCutDepth

constexpr uint8_t top_bits[] = {0, 0x80, 0xC0, 0xE0, 0xF0, 0xF8, 0xFC, 0xFE, 0xFF};

void expect_cut(const Dib& from, int red, int green, int blue) {
    SCOPED_TRACE(testing::Message()
                 << red << ", " << green << ", " << blue << " bits, width " << from.width());
    Dib expected = make_dib({from.width(), from.height(), 24});
    const size_t start = 40 + 4 * from.header().biClrUsed;
    const std::vector<uint8_t> block = block_bytes(from);
    std::vector<uint8_t> rows(block.begin() + static_cast<ptrdiff_t>(start), block.end());
    rows.resize(block_bytes(expected).size() - 40); // what is missing is 0
    expected.write(40, rows);
    for (int32_t y = 0; y < from.height(); ++y)
        for (int32_t x = 0; x < from.width(); ++x) {
            const uint32_t mask =
                top_bits[red] * 0x10000u + top_bits[green] * 0x100u + top_bits[blue];
            expected.set_pixel(x, y, expected.pixel(x, y) & mask);
        }
    int32_t status = 77;
    const Dib result(DibCutDepth(from, red, green, blue, &status));
    ASSERT_EQ(status, KIRVO_OK);
    EXPECT_EQ(block_bytes(result), block_bytes(expected));
    EXPECT_EQ(block_bytes(from), block);
    EXPECT_TRUE(is_unlocked(from));
}

int32_t cut_status(HGLOBAL from, int red, int green, int blue) {
    int32_t status = 77;
    EXPECT_EQ(DibCutDepth(from, red, green, blue, &status), nullptr);
    EXPECT_EQ(DibCutDepth(from, red, green, blue, nullptr), nullptr);
    return status;
}

TEST(CutDepth, EveryNumberOfBits) {
    Random random(8);
    const Dib from = make_random_dib({256, 2, 24}, random);
    for (int bits = 0; bits <= 8; ++bits) {
        expect_cut(from, bits, 8, 8);
        expect_cut(from, 8, bits, 8);
        expect_cut(from, 8, 8, bits);
        expect_cut(from, bits, bits, bits);
    }
}

TEST(CutDepth, EveryWidthKeepsThePaddingOfTheSource) {
    Random random(9);
    for (int32_t width = 1; width <= 70; ++width) {
        DibSpec spec{width, 3, 24};
        spec.padding = 0xFF;
        expect_cut(make_random_dib(spec, random), 3, 0, 6);
    }
}

TEST(CutDepth, AllBitsGiveTheSameImage) {
    Random random(10);
    const Dib from = make_random_dib({13, 5, 24}, random);
    const Dib result(DibCutDepth(from, 8, 8, 8, nullptr));
    EXPECT_EQ(block_bytes(result), block_bytes(from));
}

TEST(CutDepth, PixelsFollowTheColourTable) {
    Random random(11);
    DibSpec spec{6, 2, 24};
    spec.colours_used = 5;
    expect_cut(make_random_dib(spec, random), 2, 4, 1);
}

TEST(CutDepth, PixelsFollowFortyBytesOfAnyHeader) {
    Random random(12);
    for (const uint32_t header_size : {36u, 44u, 108u})
        for (const uint32_t colours : {0u, 3u}) {
            DibSpec spec{7, 3, 24};
            spec.header_size = header_size;
            spec.colours_used = colours;
            spec.extra_bytes = 16;
            Dib from = make_dib(spec);
            std::vector<uint8_t> bytes(block_bytes(from).size() - 40);
            random.fill(bytes.data(), bytes.size());
            from.write(40, bytes);
            expect_cut(from, 5, 2, 7);
        }
}

TEST(CutDepth, LastRowMayLackItsPadding) {
    Random random(13);
    for (int32_t width = 1; width <= 8; ++width) {
        DibSpec spec{width, 2, 24};
        const int64_t padding = stride_of(width, 24) - 3 * width;
        const Dib full = make_random_dib(spec, random);
        spec.extra_bytes = -padding;
        Dib cut = make_dib(spec);
        cut.write(0, block_bytes(full));
        expect_cut(cut, 4, 8, 1);
        spec.extra_bytes = -padding - 1;
        EXPECT_EQ(cut_status(make_dib(spec), 8, 8, 8), KIRVO_BAD_PARAMETER);
    }
}

TEST(CutDepth, CountsAreTestedBeforeTheHandle) {
    for (const int bits : {-1, 9, 0x7FFFFFFF, -0x7FFFFFFF - 1}) {
        EXPECT_EQ(cut_status(nullptr, bits, 8, 8), KIRVO_BAD_PARAMETER);
        EXPECT_EQ(cut_status(nullptr, 8, bits, 8), KIRVO_BAD_PARAMETER);
        EXPECT_EQ(cut_status(nullptr, 8, 8, bits), KIRVO_BAD_PARAMETER);
    }
    EXPECT_EQ(cut_status(nullptr, 8, 8, 8), KIRVO_NULL_HANDLE);
}

TEST(CutDepth, RefusesOtherDepthsAndBadBlocks) {
    for (const int bits : {1, 4, 8, 16, 32})
        EXPECT_EQ(cut_status(make_dib({3, 3, bits}), 1, 2, 3), KIRVO_NEEDS_24);
    DibSpec spec{4, 4, 24};
    spec.extra_bytes = -1;
    EXPECT_EQ(cut_status(make_dib(spec), 1, 2, 3), KIRVO_BAD_PARAMETER);
    Dib from = make_dib({4, 4, 24});
    BITMAPINFOHEADER header = from.header();
    header.biHeight = 0;
    from.set_header(header);
    EXPECT_EQ(cut_status(from, 1, 2, 3), KIRVO_BAD_PARAMETER);
}

TEST(CutDepth, ReportsNoProgress) {
    ProgressRecorder recorder;
    recorder.watch();
    const Dib from = make_dib({3, 30, 24});
    const Dib result(DibCutDepth(from, 1, 1, 1, nullptr));
    EXPECT_EQ(recorder.percents(), std::vector<int>{});
}

} // namespace
