// A plain view of colours in images, for tests of operations on channels, and what every such
// operation must do, whatever it does to the channels.
#pragma once

#include "support/direct_colour.hpp"
#include "support/progress_recorder.hpp"

#include <algorithm>
#include <functional>
#include <gtest/gtest.h>

namespace kirvo_test {

using ColourFunction = std::function<Colour(Colour)>;

inline Colour rgb(int red, int green, int blue) {
    return {static_cast<uint8_t>(red), static_cast<uint8_t>(green), static_cast<uint8_t>(blue)};
}

struct Area {
    int32_t x, y, width, height;
};

// Images that differ in size, depth, masks and padding, each with a rectangle in it.
inline void for_each_image(std::initializer_list<int> depths, Random& random,
                           const std::function<void(Dib&, const Area&)>& body) {
    static const Masks masks32[] = {masks_888,
                                    masks_bgr888,
                                    {0x3FF00000, 0x000FFC00, 0x000003FF},
                                    {0xF0000000, 0x00F00000, 0x0000F000},
                                    {0xFF, 0, 0xFF000000}};
    static const Masks masks16[] = {masks_555,
                                    masks_565,
                                    {0x000F, 0x00F0, 0x0F00},
                                    {0x8000, 0x7F80, 0x007F},
                                    {0, 0xFF00, 0x00FF}};
    static const DibSpec sizes[] = {{1, 1, 0}, {5, 3, 0}, {67, 4, 0}, {129, 2, 0}, {1100, 1, 0}};
    for (const int bits : depths) {
        for (size_t m = 0; m < (bits == 24 ? 1 : 6); ++m) {
            for (DibSpec spec : sizes) {
                spec.bits = bits;
                spec.padding = 0xC3;
                if (bits != 24 && m != 0)
                    spec.masks = bits == 16 ? masks16[m - 1] : masks32[m - 1];
                if (random.once_in(3))
                    spec.extra_bytes = random.between(0, 9);
                Dib dib = make_random_dib(spec, random);
                Area area{0, 0, spec.width, spec.height};
                if (!random.once_in(3)) {
                    area.x = random.between(0, spec.width - 1);
                    area.y = random.between(0, spec.height - 1);
                    area.width = random.between(1, spec.width - area.x);
                    area.height = random.between(1, spec.height - area.y);
                }
                SCOPED_TRACE(testing::Message()
                             << bits << " bits, masks " << m << ", " << spec.width << " x "
                             << spec.height << ", rectangle " << area.x << "," << area.y << " "
                             << area.width << " x " << area.height);
                body(dib, area);
                if (testing::Test::HasFailure())
                    return;
            }
        }
    }
}

// The result is the rectangle with each colour changed, bits outside the masks and padding 0.
inline void expect_changed(const Dib& result, const Dib& source, const Area& area,
                           const ColourFunction& change, int result_bits = 0) {
    const int bits = source.bits(), to_bits = result_bits != 0 ? result_bits : bits;
    const BITMAPINFOHEADER header = result.header();
    EXPECT_EQ(header.biSize, 40u);
    EXPECT_EQ(header.biWidth, area.width);
    EXPECT_EQ(header.biHeight, area.height);
    EXPECT_EQ(header.biBitCount, to_bits);
    EXPECT_EQ(header.biCompression, DWORD(to_bits == 24 ? BI_RGB : BI_BITFIELDS));
    EXPECT_EQ(header.biSizeImage, DWORD(stride_of(area.width, to_bits) * area.height));
    EXPECT_EQ(header.biClrUsed, 0u);
    const Masks masks = source.masks();
    if (to_bits != 24) {
        EXPECT_EQ(result.masks(), masks);
    }
    Dib expected = make_dib({area.width, area.height, to_bits});
    for (int32_t y = 0; y < area.height; ++y) {
        for (int32_t x = 0; x < area.width; ++x) {
            const Colour before = colour_of(source.pixel(area.x + x, area.y + y), bits, masks);
            expected.set_pixel(x, y, pixel_of(change(before), to_bits, masks));
        }
    }
    EXPECT_EQ(result.rows(), expected.rows());
    EXPECT_TRUE(is_unlocked(result));
}

// A call on an image and a rectangle that makes a new image.
using Maker = std::function<HGLOBAL(HGLOBAL, const Area&, int32_t*)>;

// The operation on every kind of image, pixel by pixel. The source stays as it is.
inline void expect_maker(std::initializer_list<int> depths, const Maker& make,
                         const ColourFunction& change, uint64_t seed, int result_bits = 0) {
    Random random(seed);
    for_each_image(depths, random, [&](Dib& dib, const Area& area) {
        const std::vector<uint8_t> before = dib.bytes();
        int32_t status = 77;
        const Dib result(make(dib, area, &status));
        ASSERT_EQ(status, 0);
        ASSERT_NE(HGLOBAL(result), nullptr);
        EXPECT_EQ(dib.bytes(), before);
        EXPECT_TRUE(is_unlocked(dib));
        expect_changed(result, dib, area, change, result_bits);
    });
}

// Statuses in their order: null handle, signs, depth, extent, block too small; progress; no status
// pointer. The lowest depth that is not accepted comes with its code.
inline void expect_maker_rules(const Maker& make, std::initializer_list<int> accepted,
                               int32_t depth_status) {
    const auto status_of = [&](HGLOBAL dib, const Area& area) {
        int32_t status = 77;
        const Dib result(make(dib, area, &status));
        EXPECT_EQ(HGLOBAL(result) != nullptr, status == 0);
        return status;
    };
    EXPECT_EQ(status_of(nullptr, {-1, 0, 1, 1}), KIRVO_NULL_HANDLE);
    Dib freed = make_dib({2, 2, 24});
    const HGLOBAL invalid = freed.release();
    GlobalFree(invalid);
#ifndef _WIN32
    EXPECT_EQ(status_of(invalid, {0, 0, 1, 1}), KIRVO_NULL_HANDLE);
#endif
    for (const int bits : {1, 4, 8, 16, 24, 32}) {
        SCOPED_TRACE(bits);
        const bool is_accepted =
            std::find(accepted.begin(), accepted.end(), bits) != accepted.end();
        Dib dib = make_dib({9, 7, bits});
        for (const Area& bad : {Area{-1, 0, 1, 1}, Area{0, -1, 1, 1}, Area{0, 0, 0, 1},
                                Area{0, 0, 1, 0}, Area{0, 0, -5, 1}})
            EXPECT_EQ(status_of(dib, bad), KIRVO_BAD_PARAMETER);
        const int32_t outside = is_accepted ? KIRVO_BAD_PARAMETER : depth_status;
        for (const Area& bad : {Area{0, 0, 10, 7}, Area{1, 0, 9, 7}, Area{0, 1, 9, 7},
                                Area{0x7FFFFFFF, 0, 0x7FFFFFFF, 1}})
            EXPECT_EQ(status_of(dib, bad), outside);
        EXPECT_EQ(status_of(dib, {0, 0, 9, 7}), is_accepted ? 0 : depth_status);
        EXPECT_TRUE(is_unlocked(dib));
        EXPECT_EQ(HGLOBAL(Dib(make(dib, {1, 1, 2, 2}, nullptr))) != nullptr, is_accepted);
        DibSpec spec{9, 7, bits};
        spec.extra_bytes = -4;
        const Dib short_block = make_dib(spec);
        EXPECT_EQ(status_of(short_block, {0, 0, 1, 1}), outside);
        if (!is_accepted || bits == 8)
            continue;
        for (const int height : {1, 7, 200}) {
            const Dib tall = make_dib({3, height + 1, bits});
            ProgressRecorder recorder;
            recorder.watch();
            EXPECT_EQ(status_of(tall, {0, 1, 2, height}), 0);
            EXPECT_EQ(recorder.percents(), single_pass_percents(height));
            recorder.watch();
            EXPECT_EQ(status_of(tall, {0, 2, 2, height}), KIRVO_BAD_PARAMETER);
            EXPECT_TRUE(recorder.percents().empty());
        }
    }
}

// The rows of an image with a header of 48 bytes are found after it.
inline void expect_rows_after_header(const Maker& make, const ColourFunction& change) {
    Random random(48);
    DibSpec spec{6, 3, 24};
    spec.header_size = 48;
    const Dib dib = make_random_dib(spec, random);
    const Dib result(make(dib, {1, 1, 4, 2}, nullptr));
    ASSERT_NE(HGLOBAL(result), nullptr);
    expect_changed(result, dib, {1, 1, 4, 2}, change);
}

// The rows of an image with a header of 48 bytes are taken to follow 40.
inline void expect_rows_after_40(const Maker& make, const ColourFunction& change) {
    Random random(40);
    DibSpec spec{6, 3, 24};
    spec.header_size = 48;
    const Dib dib = make_random_dib(spec, random);
    const std::vector<uint8_t> bytes = dib.bytes();
    Dib as_read = make_dib({6, 3, 24});
    as_read.write(40, {bytes.begin() + 40, bytes.end() - 8});
    const Dib result(make(dib, {1, 1, 4, 2}, nullptr));
    ASSERT_NE(HGLOBAL(result), nullptr);
    expect_changed(result, as_read, {1, 1, 4, 2}, change);
}

} // namespace kirvo_test
