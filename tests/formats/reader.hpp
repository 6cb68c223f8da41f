// What a reader answers, and what the tests of readers share.
#pragma once

#include "support/dib_builder.hpp"
#include "support/progress_recorder.hpp"
#include "support/temp_file.hpp"
#include "support/temp_folder.hpp"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace kirvo_test {

using Bytes = std::vector<uint8_t>;

constexpr uint32_t untouched = 0xDEADBEEF;

struct Read {
    Dib dib;
    uint32_t width = untouched, height = untouched, bits = untouched;
    int32_t status = 99;
};

inline Read read_targa(const std::string& name) {
    Read r;
    r.dib = Dib(Targa24Read(name.c_str(), &r.width, &r.height, &r.status));
    return r;
}

inline Read read_q0(const std::string& name) {
    Read r;
    r.dib = Dib(Q0Read(name.c_str(), &r.width, &r.height, &r.bits, &r.status));
    return r;
}

inline Read read_raw(const std::string& name) {
    Read r;
    r.dib = Dib(RawRead(name.c_str(), &r.width, &r.height, &r.bits, &r.status));
    return r;
}

// The status, no image, and nothing reported.
inline void expect_failure(const Read& r, int32_t status) {
    EXPECT_EQ(r.status, status);
    EXPECT_EQ(static_cast<HGLOBAL>(r.dib), nullptr);
    EXPECT_EQ(r.width, untouched);
    EXPECT_EQ(r.height, untouched);
    EXPECT_EQ(r.bits, untouched);
}

// A colour for each pixel that no other pixel near it has.
inline uint32_t pixel_colour(int32_t x, int32_t y) {
    return static_cast<uint32_t>((17 * x + 5 * y + 1) & 0xFF) << 16 | // red
           static_cast<uint32_t>((3 * x + 29 * y + 2) & 0xFF) << 8 |  // green
           static_cast<uint32_t>((7 * x + 11 * y + 3) & 0xFF);        // blue
}

// A new 24-bit image of those colours with zero padding, as every reader makes it.
inline void expect_picture(const Read& r, int32_t width, int32_t height) {
    ASSERT_NE(static_cast<HGLOBAL>(r.dib), nullptr);
    EXPECT_EQ(r.status, KIRVO_OK);
    EXPECT_EQ(r.width, static_cast<uint32_t>(width));
    EXPECT_EQ(r.height, static_cast<uint32_t>(height));
    EXPECT_TRUE(is_unlocked(r.dib));
    Dib expected = make_dib({.width = width, .height = height, .bits = 24});
    for (int32_t y = 0; y < height; ++y)
        for (int32_t x = 0; x < width; ++x)
            expected.set_pixel(x, y, pixel_colour(x, y));
    EXPECT_EQ(GlobalSize(r.dib), GlobalSize(expected));
    EXPECT_EQ(r.dib.bytes(), expected.bytes());
}

// The picture's pixels as a file of red, green, blue bytes holds them, from the top down.
inline Bytes rgb_rows(int32_t width, int32_t height) {
    Bytes rows;
    for (int32_t y = 0; y < height; ++y)
        for (int32_t x = 0; x < width; ++x)
            for (const int shift : {16, 8, 0})
                rows.push_back(static_cast<uint8_t>(pixel_colour(x, y) >> shift));
    return rows;
}

inline std::string text(const TempFile& file) { return file.name(); }

// Names that no file has: of each length from 0 on, and longer than any system takes.
inline std::vector<std::string> impossible_names(const std::string& ending) {
    std::vector<std::string> names = {"", "/", ".", "no such folder/file" + ending};
    for (const size_t length : {1, 2, 127, 128, 255, 256, 257, 1000, 4094, 4095, 4096})
        names.push_back(std::string(length, 'n') + ending);
    for (const size_t length : {100, 2000, 4091})
        names.push_back("folder/" + std::string(length, 'n') + "/x" + ending);
    return names;
}

} // namespace kirvo_test
