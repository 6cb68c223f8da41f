// Pictures as plain colours, and the checks that every operation on a rectangle has in common.
#pragma once

#include "support/direct_colour.hpp"
#include "support/progress_recorder.hpp"

#include <algorithm>
#include <gtest/gtest.h>

namespace kirvo_test {

struct Area {
    int32_t x, y, width, height;
};

// Colours row by row as they are stored, bottom row first.
struct Picture {
    int width, height;
    std::vector<Colour> colours;

    Picture(int w, int h) : width(w), height(h), colours(static_cast<size_t>(w * h)) {}
    bool has(int x, int row) const { return x >= 0 && x < width && row >= 0 && row < height; }
    Colour& at(int x, int row) { return colours[static_cast<size_t>(row * width + x)]; }
    const Colour& at(int x, int row) const { return colours[static_cast<size_t>(row * width + x)]; }
};

inline Picture picture_of(const Dib& dib) {
    Picture picture(dib.width(), dib.height());
    picture.colours = stored_colours(dib, {dib.rows_start(), static_cast<size_t>(dib.stride())});
    return picture;
}

// The bytes of a new image with these pixels, made from a source of the given depth and masks.
inline std::vector<uint8_t> image_bytes(const Picture& picture, int bits, const Masks& masks) {
    DibSpec spec{picture.width, picture.height, bits};
    if (bits != 24)
        spec.masks = masks;
    Dib dib = make_dib(spec);
    for (int row = 0; row < picture.height; ++row)
        for (int x = 0; x < picture.width; ++x)
            dib.set_pixel(x, picture.height - 1 - row, pixel_of(picture.at(x, row), bits, masks));
    return block_bytes(dib);
}

// An image of any layout that the depth allows: usual and unusual masks, or none; headers longer
// than 40 bytes; coloured padding, or none after the last row; spare bytes after the image.
inline Dib random_image(Random& random, int width, int height, int bits) {
    static constexpr Masks masks16[] = {masks_555,
                                        masks_565,
                                        {0x001F, 0x07E0, 0xF800},
                                        {0x0F00, 0x00F0, 0x000F},
                                        {0xFC00, 0x03FF, 0}};
    static constexpr Masks masks32[] = {masks_888,
                                        masks_bgr888,
                                        {0x3FF00000, 0xFFC00, 0x3FF},
                                        {0xFF000000, 0xFF0000, 0xFF00},
                                        {0xF00000, 0xF000, 0x1F0}};
    DibSpec spec{width, height, bits};
    if ((bits == 16 || bits == 32) && !random.once_in(4))
        spec.masks = bits == 16 ? random.pick(masks16) : random.pick(masks32);
    if (random.once_in(4))
        spec.header_size = 40 + 4 * static_cast<uint32_t>(random.between(1, 21));
    if (random.once_in(2))
        spec.padding = random.byte();
    const auto padding = stride_of(width, bits) - (int64_t{width} * bits + 7) / 8;
    spec.extra_bytes = random.once_in(3) ? -padding : random.once_in(3) ? 40 : 0;
    return make_random_dib(spec, random);
}

inline Area random_area(Random& random, const Dib& dib) {
    if (random.once_in(5))
        return {0, 0, dib.width(), dib.height()};
    Area area;
    area.width = random.once_in(5) ? 1 : random.between(1, dib.width());
    area.height = random.once_in(5) ? 1 : random.between(1, dib.height());
    area.x = random.between(0, dib.width() - area.width);
    area.y = random.between(0, dib.height() - area.height);
    return area;
}

// The rectangle's first stored row in the image.
inline int lowest_row(const Picture& image, const Area& area) {
    return image.height - area.y - area.height;
}

// The checks of an operation on a rectangle of the given depths. call(dib, area) answers its status
// and frees what it makes.
template<typename Call>
void expect_rectangle_checks(std::initializer_list<int> depths, int wrong_depth, const Call& call) {
    EXPECT_EQ(call(nullptr, Area{0, 0, 1, 1}), -3);
    EXPECT_EQ(call(nullptr, Area{-1, 0, 0, 1}), -3) << "the handle comes first";
    for (const int bits : {1, 4, 8, 16, 24, 32}) {
        SCOPED_TRACE(bits);
        const bool accepted = std::find(depths.begin(), depths.end(), bits) != depths.end();
        const Dib dib = make_dib({5, 4, bits});
        const auto before = block_bytes(dib);
        for (const Area& bad : {Area{-1, 0, 1, 1}, Area{0, -1, 1, 1}, Area{0, 0, 0, 1},
                                Area{0, 0, 1, 0}, Area{0, 0, -1, 1}, Area{0, 0, 1, -1}})
            EXPECT_EQ(call(dib, bad), -1) << "signs come before the depth";
        for (const Area& outside :
             {Area{0, 0, 6, 4}, Area{0, 0, 5, 5}, Area{1, 0, 5, 4}, Area{0, 1, 5, 4},
              Area{5, 0, 1, 1}, Area{0, 4, 1, 1}, Area{INT32_MAX, 0, INT32_MAX, 1},
              Area{0, INT32_MAX, 1, INT32_MAX}})
            EXPECT_EQ(call(dib, outside), accepted ? -1 : wrong_depth);
        EXPECT_EQ(call(dib, Area{4, 3, 1, 1}), accepted ? 0 : wrong_depth);
        EXPECT_TRUE(is_unlocked(dib));
        if (!accepted) {
            EXPECT_EQ(block_bytes(dib), before);
        }
        const auto padding = stride_of(5, bits) - (5 * bits + 7) / 8;
        const Dib fits = make_dib({.width = 5, .height = 4, .bits = bits, .extra_bytes = -padding});
        EXPECT_EQ(call(fits, Area{0, 0, 1, 1}), accepted ? 0 : wrong_depth);
        const Dib cut =
            make_dib({.width = 5, .height = 4, .bits = bits, .extra_bytes = -padding - 1});
        EXPECT_EQ(call(cut, Area{0, 0, 1, 1}), accepted ? -1 : wrong_depth);
        EXPECT_TRUE(is_unlocked(cut));
    }
}

// Checks the messages of a watched call, which ends the registration.
template<typename Call>
void expect_messages(const std::vector<int>& percents, const Call& call) {
    ProgressRecorder recorder;
    recorder.watch();
    call();
    EXPECT_EQ(recorder.percents(), percents);
    call();
    EXPECT_EQ(recorder.percents(), percents) << "one registration watches one operation";
}

// Frees what a call has made, if anything, and gives the status that it reported.
inline int freed(HGLOBAL made, const int32_t& status) {
    EXPECT_EQ(made != nullptr, status == 0);
    if (made != nullptr)
        GlobalFree(made);
    return status;
}

} // namespace kirvo_test
