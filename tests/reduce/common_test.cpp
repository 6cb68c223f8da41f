// What all conversions have in common: the order of their checks, progress, what they leave alone.
#include "reduce/expected.hpp"

using namespace kirvo_test;

namespace {

HGLOBAL WINAPI exact256_1(HGLOBAL dib, int32_t* status) {
    return Decrease256PaletteEx(dib, 1, status);
}
HGLOBAL WINAPI exact16_1(HGLOBAL dib, int32_t* status) {
    return Decrease16PaletteEx(dib, 1, status);
}

constexpr Reduce from_true_colour[] = {DecreaseColor256,  DecreaseColor16,    DecreaseColorMono256,
                                       Decrease256Fast,   Decrease256Palette, exact256_1,
                                       Decrease16Palette, exact16_1};

struct Source {
    Reduce reduce;
    int bits;
};
std::vector<Source> sources() {
    std::vector<Source> list = {
        {IncreaseColor16M, 1}, {IncreaseColor16M, 4}, {IncreaseColor16M, 8}};
    for (const Reduce reduce : from_true_colour) {
        list.push_back({reduce, 24});
        list.push_back({reduce, 32});
    }
    return list;
}

DibSpec spec_of(const Source& source, int32_t width, int32_t height) {
    DibSpec spec{width, height, source.bits};
    if (source.bits == 32)
        spec.masks = masks_888;
    return spec;
}

TEST(Reduction, RefusesNullAndFreedHandles) {
    const HGLOBAL freed = make_dib({4, 4, 24}).release();
    GlobalFree(freed);
    for (const Source& source : sources()) {
        expect_refused(source.reduce, nullptr, KIRVO_NULL_HANDLE);
        int32_t status = 77;
        EXPECT_EQ(source.reduce(freed, &status), nullptr);
        EXPECT_EQ(status, KIRVO_NULL_HANDLE);
    }
}

TEST(Reduction, RefusesSourcesThatAreNotTrueColour) {
    for (const Reduce reduce : from_true_colour)
        for (const int bits : {1, 4, 8, 16, 23, 25, 31, 33, 48, 64})
            expect_refused(reduce, make_dib({4, 4, bits}), KIRVO_NEEDS_24_32);
}

TEST(Reduction, DepthComesBeforeSize) {
    for (const Reduce reduce : from_true_colour) {
        Dib from = make_dib({4, 4, 8});
        BITMAPINFOHEADER header = from.header();
        header.biWidth = 0;
        from.set_header(header);
        expect_refused(reduce, from, KIRVO_NEEDS_24_32);
    }
}

TEST(Reduction, ImageWithoutSizeCannotBeAllocated) {
    for (const Source& source : sources())
        for (const auto& [width, height] : {std::pair{0, 4}, {4, 0}, {-4, 4}, {4, -4}}) {
            Dib from = make_dib(spec_of(source, 4, 4));
            BITMAPINFOHEADER header = from.header();
            header.biWidth = width;
            header.biHeight = height;
            from.set_header(header);
            expect_refused(source.reduce, from, KIRVO_NO_MEMORY);
        }
}

TEST(Reduction, BlockSmallerThanItsHeaderSaysIsABadParameter) {
    for (const Source& source : sources()) {
        DibSpec spec = spec_of(source, 32, 4); // no padding at any depth
        spec.extra_bytes = -1;
        expect_refused(source.reduce, make_dib(spec), KIRVO_BAD_PARAMETER);
        Dib huge = make_dib(spec_of(source, 32, 4));
        BITMAPINFOHEADER header = huge.header();
        header.biWidth = header.biHeight = 0x7FFFFFFF;
        huge.set_header(header);
        expect_refused(source.reduce, huge, KIRVO_BAD_PARAMETER);
        header.biWidth = header.biHeight = 4;
        header.biClrUsed = 0xFFFFFFFF;
        if (source.bits >= 24)
            huge.set_header(header);
        if (source.bits >= 24 && source.reduce != DecreaseColor256 &&
            source.reduce != DecreaseColor16 && source.reduce != DecreaseColorMono256)
            expect_refused(source.reduce, huge, KIRVO_BAD_PARAMETER);
    }
}

TEST(Reduction, BlockShorterThanAHeaderIsABadParameterOrAWrongDepth) {
    for (const Source& source : sources())
        for (const size_t size : {1, 12, 20, 39, 40}) {
            const Dib from = make_dib(spec_of(source, 2, 2));
            const std::vector<uint8_t> bytes = block_bytes(from);
            Dib cut(GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, size));
            cut.write(0, {bytes.begin(), bytes.begin() + ptrdiff_t(size)});
            int32_t status = 77;
            EXPECT_EQ(source.reduce(cut, &status), nullptr);
            EXPECT_LT(status, 0);
            EXPECT_TRUE(is_unlocked(cut));
        }
}

TEST(Reduction, ReportsProgressOverTheRows) {
    for (const Source& source : sources())
        for (const int32_t height : {1, 7, 200}) {
            const Dib from = make_dib(spec_of(source, 3, height));
            ProgressRecorder recorder;
            recorder.watch(9);
            const Dib result = run(source.reduce, from);
            EXPECT_EQ(recorder.percents(), single_pass_percents(height));
            const Dib again = run(source.reduce, from);
            EXPECT_EQ(recorder.percents(), single_pass_percents(height));
        }
}

TEST(Reduction, ReportsNothingWhenItFails) {
    ProgressRecorder recorder;
    recorder.watch();
    for (const Source& source : sources()) {
        expect_refused(source.reduce, nullptr, KIRVO_NULL_HANDLE);
        expect_refused(source.reduce, make_dib({2, 2, 16}),
                       source.bits <= 8 ? KIRVO_NEEDS_1_4_8 : KIRVO_NEEDS_24_32);
    }
    EXPECT_EQ(recorder.percents(), std::vector<int>{});
}

} // namespace
