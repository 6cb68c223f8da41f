// Targa files, read and written.
#include "formats/made_elsewhere.hpp"
#include "formats/reader.hpp"

#include <filesystem>

using namespace kirvo_test;

namespace {

struct Header {
    uint8_t type = 2, depth = 24, descriptor = 0;
    uint8_t id_length = 0, map_type = 0;
};

Bytes targa_header(int32_t width, int32_t height, const Header& h = {}) {
    Bytes header(18);
    header[0] = h.id_length;
    header[1] = h.map_type;
    header[2] = h.type;
    header[12] = static_cast<uint8_t>(width);
    header[13] = static_cast<uint8_t>(width >> 8);
    header[14] = static_cast<uint8_t>(height);
    header[15] = static_cast<uint8_t>(height >> 8);
    header[16] = h.depth;
    header[17] = h.descriptor;
    return header;
}

void append_row(Bytes& file, int32_t width, int32_t y) {
    for (int32_t x = 0; x < width; ++x)
        for (const int shift : {0, 8, 16})
            file.push_back(static_cast<uint8_t>(pixel_colour(x, y) >> shift));
}

Bytes targa(int32_t width, int32_t height, bool from_top, Header h = {}) {
    h.descriptor |= from_top ? 0x20 : 0;
    Bytes file = targa_header(width, height, h);
    for (int32_t i = 0; i < height; ++i)
        append_row(file, width, from_top ? i : height - 1 - i);
    return file;
}

Dib picture(int32_t width, int32_t height) {
    Dib dib = make_dib({.width = width, .height = height, .bits = 24, .padding = 0xA5});
    for (int32_t y = 0; y < height; ++y)
        for (int32_t x = 0; x < width; ++x)
            dib.set_pixel(x, y, pixel_colour(x, y));
    return dib;
}

} // namespace

TEST(Targa24Read, reads_rows_from_the_bottom_up) {
    for (int32_t width = 1; width <= 9; ++width) {
        const TempFile file(".tga", targa(width, 6, false));
        expect_picture(read_targa(text(file)), width, 6);
        EXPECT_FALSE(is_open(file.name()));
    }
}

TEST(Targa24Read, reads_rows_from_the_top_down_into_the_same_image) {
    for (int32_t width = 1; width <= 9; ++width) {
        const TempFile file(".tga", targa(width, 6, true));
        expect_picture(read_targa(text(file)), width, 6);
    }
}

TEST(Targa24Read, reads_narrow_pictures_of_any_height) {
    for (const int32_t width : {1, 2, 3, 600, 682, 683, 1365, 1366})
        for (const int32_t height : {1, 2, 5, 6, 7, 682, 683, 1364, 1365, 1366, 2731})
            if (width < 4 || height < 8) {
                const TempFile file(".tga", targa(width, height, height % 2 == 0));
                expect_picture(read_targa(text(file)), width, height);
            }
}

TEST(Targa24Read, reads_a_single_pixel) {
    const TempFile file(".tga", targa(1, 1, false));
    expect_picture(read_targa(text(file)), 1, 1);
}

TEST(Targa24Read, reads_a_width_and_a_height_above_255) {
    const TempFile wide(".tga", targa(0x102, 2, false));
    expect_picture(read_targa(text(wide)), 0x102, 2);
    const TempFile high(".tga", targa(2, 0x103, true));
    expect_picture(read_targa(text(high)), 2, 0x103);
}

TEST(Targa24Read, ignores_the_rest_of_the_header) {
    Bytes bytes = targa(3, 2, false);
    for (const size_t i : {0, 1, 3, 4, 5, 6, 7, 8, 9, 10, 11})
        bytes[i] = 0xEE;
    bytes[17] = 0xDF; // every bit but the origin's
    const TempFile file(".tga", bytes);
    expect_picture(read_targa(text(file)), 3, 2);
}

TEST(Targa24Read, does_not_skip_an_image_id) {
    Bytes bytes = targa_header(2, 1, {.id_length = 5});
    for (const uint8_t byte : {'i', 'd', '-', '-', 'x'})
        bytes.push_back(byte);
    for (const uint8_t byte : {1, 2, 3, 4, 5, 6})
        bytes.push_back(byte);
    const TempFile file(".tga", bytes);
    const Read r = read_targa(text(file));
    ASSERT_EQ(r.status, KIRVO_OK);
    EXPECT_EQ(r.dib.rows(), (Bytes{'i', 'd', '-', '-', 'x', 1, 0, 0}));
}

TEST(Targa24Read, ignores_what_follows_the_pixels) {
    Bytes bytes = targa(4, 3, false);
    bytes.insert(bytes.end(), 26, 'F');
    const TempFile file(".tga", bytes);
    expect_picture(read_targa(text(file)), 4, 3);
}

TEST(Targa24Read, accepts_image_type_2_alone) {
    for (int type = 0; type < 256; ++type) {
        const TempFile file(".tga", targa(1, 1, false, {.type = static_cast<uint8_t>(type)}));
        EXPECT_EQ(read_targa(text(file)).status, type == 2 ? KIRVO_OK : KIRVO_NOT_TARGA) << type;
    }
}

TEST(Targa24Read, accepts_24_bits_alone) {
    for (int depth = 0; depth < 256; ++depth) {
        const TempFile file(".tga", targa(1, 1, false, {.depth = static_cast<uint8_t>(depth)}));
        EXPECT_EQ(read_targa(text(file)).status, depth == 24 ? KIRVO_OK : KIRVO_NOT_TARGA) << depth;
    }
}

TEST(Targa24Read, refuses_a_width_or_height_of_0_for_want_of_memory) {
    for (const auto& header : {targa_header(0, 5), targa_header(5, 0), targa_header(0, 0)}) {
        const TempFile file(".tga", header);
        expect_failure(read_targa(text(file)), KIRVO_NO_MEMORY);
    }
}

TEST(Targa24Read, refuses_an_image_beyond_2_gigabytes_for_want_of_memory) {
    const TempFile file(".tga", targa_header(65535, 65535));
    expect_failure(read_targa(text(file)), KIRVO_NO_MEMORY);
    EXPECT_FALSE(is_open(file.name()));
}

TEST(Targa24Read, tells_another_type_before_a_bad_size) {
    const TempFile file(".tga", targa_header(0, 0, {.type = 10}));
    expect_failure(read_targa(text(file)), KIRVO_NOT_TARGA);
}

TEST(Targa24Read, tells_a_file_cut_short_anywhere) {
    const Bytes whole = targa(3, 4, true);
    for (size_t length = 0; length < whole.size(); ++length) {
        const TempFile file(".tga", Bytes(whole.begin(), whole.begin() + ptrdiff_t(length)));
        expect_failure(read_targa(text(file)), KIRVO_READ_ERROR);
        EXPECT_FALSE(is_open(file.name()));
    }
}

TEST(Targa24Read, tells_a_narrow_file_cut_short) {
    const Bytes whole = targa(1, 2800, false);
    for (const size_t pixels : {0, 1, 1364, 1365, 1366, 2729, 2730, 2731, 2799})
        for (const size_t more : {0, 1, 2}) {
            const auto length = static_cast<ptrdiff_t>(18 + 3 * pixels + more);
            const TempFile file(".tga", Bytes(whole.begin(), whole.begin() + length));
            expect_failure(read_targa(text(file)), KIRVO_READ_ERROR);
        }
}

TEST(Targa24Read, tells_a_file_that_cannot_be_opened) {
    for (const std::string& name : impossible_names(".tga"))
        expect_failure(read_targa(name), KIRVO_CANNOT_OPEN);
    expect_failure(read_targa(temp_folder()), KIRVO_CANNOT_OPEN);
    int32_t status = 99;
    EXPECT_EQ(Targa24Read(nullptr, nullptr, nullptr, &status), nullptr);
    EXPECT_EQ(status, KIRVO_CANNOT_OPEN);
}

TEST(Targa24Read, takes_null_out_pointers) {
    const TempFile file(".tga", targa(2, 2, false));
    const Dib dib(Targa24Read(file.name(), nullptr, nullptr, nullptr));
    EXPECT_EQ(dib.width(), 2);
    EXPECT_EQ(Targa24Read("", nullptr, nullptr, nullptr), nullptr);
}

TEST(Targa24Read, sends_no_progress) {
    const TempFile file(".tga", targa(2, 50, false));
    ProgressRecorder recorder;
    recorder.watch();
    const Read r = read_targa(text(file));
    EXPECT_EQ(r.status, KIRVO_OK);
    EXPECT_TRUE(recorder.messages().empty());
}

TEST(Targa24Read, reads_what_another_program_wrote) {
    for (const Bytes& bytes : {made_elsewhere::targa_bottom_left, made_elsewhere::targa_top_left}) {
        const TempFile file(".tga", bytes);
        const Read r = read_targa(text(file));
        ASSERT_EQ(r.status, KIRVO_OK);
        ASSERT_EQ(r.width, 7u);
        ASSERT_EQ(r.height, 5u);
        for (int32_t y = 0; y < 5; ++y)
            for (int32_t x = 0; x < 7; ++x)
                EXPECT_EQ(r.dib.pixel(x, y), made_elsewhere::targa_pixel(x, y)) << x << ' ' << y;
    }
}

TEST(Targa24Write, writes_the_whole_image_from_the_bottom_up) {
    for (int32_t width = 1; width <= 9; ++width) {
        const Dib dib = picture(width, 5);
        const TempFile file(".tga");
        EXPECT_EQ(Targa24Write(file.name(), dib, 0, 0, -1, -1), KIRVO_OK);
        EXPECT_EQ(file.read(), targa(width, 5, false));
        EXPECT_EQ(Targa24Write(file.name(), dib, 0, 0, width, 5), KIRVO_OK);
        EXPECT_EQ(file.read(), targa(width, 5, false));
        EXPECT_TRUE(is_unlocked(dib));
        EXPECT_FALSE(is_open(file.name()));
    }
}

TEST(Targa24Write, writes_any_rectangle) {
    const Dib dib = picture(7, 6);
    const TempFile file(".tga");
    for (int32_t y = 0; y < 6; ++y)
        for (int32_t x = 0; x < 7; ++x)
            for (int32_t height = 1; y + height <= 6; ++height)
                for (int32_t width = 1; x + width <= 7; width += 2) {
                    Bytes expected = targa_header(width, height);
                    for (int32_t row = height - 1; row >= 0; --row)
                        for (int32_t column = 0; column < width; ++column)
                            for (const int shift : {0, 8, 16})
                                expected.push_back(static_cast<uint8_t>(
                                    pixel_colour(x + column, y + row) >> shift));
                    ASSERT_EQ(Targa24Write(file.name(), dib, x, y, width, height), KIRVO_OK);
                    ASSERT_EQ(file.read(), expected);
                }
}

TEST(Targa24Write, writes_one_pixel_as_21_bytes) {
    const Dib dib = picture(5, 5);
    const TempFile file(".tga");
    EXPECT_EQ(Targa24Write(file.name(), dib, 2, 3, 1, 1), KIRVO_OK);
    EXPECT_EQ(file.read().size(), 21u);
}

TEST(Targa24Write, is_read_back) {
    const Dib dib = picture(11, 7);
    const TempFile file(".tga");
    ASSERT_EQ(Targa24Write(file.name(), dib, 0, 0, -1, -1), KIRVO_OK);
    expect_picture(read_targa(text(file)), 11, 7);
}

TEST(Targa24Write, replaces_a_longer_file) {
    const Dib dib = picture(2, 2);
    const TempFile file(".tga", Bytes(1000, 7));
    EXPECT_EQ(Targa24Write(file.name(), dib, 0, 0, -1, -1), KIRVO_OK);
    EXPECT_EQ(file.read().size(), 18u + 12u);
}

TEST(Targa24Write, keeps_the_low_16_bits_of_large_sizes) {
    const Dib dib = make_dib({.width = 65538, .height = 1, .bits = 24});
    const TempFile file(".tga");
    EXPECT_EQ(Targa24Write(file.name(), dib, 0, 0, -1, -1), KIRVO_OK);
    const Bytes bytes = file.read();
    EXPECT_EQ(bytes.size(), 18u + 3 * 65538u);
    EXPECT_EQ(Bytes(bytes.begin(), bytes.begin() + 18), targa_header(2, 1));
}

TEST(Targa24Write, takes_the_rows_from_byte_40_whatever_the_header_says) {
    Dib dib = picture(4, 3);
    BITMAPINFOHEADER header = dib.header();
    header.biSize = 124;
    header.biClrUsed = 99;
    dib.set_header(header);
    const TempFile file(".tga");
    EXPECT_EQ(Targa24Write(file.name(), dib, 0, 0, -1, -1), KIRVO_OK);
    EXPECT_EQ(file.read(), targa(4, 3, false));
}

TEST(Targa24Write, does_without_the_padding_of_the_last_row) {
    Dib dib = make_dib({.width = 3, .height = 2, .bits = 24, .extra_bytes = -3});
    for (int32_t y = 0; y < 2; ++y)
        for (int32_t x = 0; x < 3; ++x)
            dib.set_pixel(x, y, pixel_colour(x, y));
    const TempFile file(".tga");
    EXPECT_EQ(Targa24Write(file.name(), dib, 0, 0, -1, -1), KIRVO_OK);
    EXPECT_EQ(file.read(), targa(3, 2, false));
}

TEST(Targa24Write, refuses_a_bad_rectangle) {
    const Dib dib = picture(5, 4);
    const TempFile file(".tga");
    constexpr int32_t big = INT32_MAX;
    const int32_t bad[][4] = {{-1, 0, 1, 1},  {0, -1, 1, 1},  {-1, 0, -1, -1},  {0, -1, -1, -1},
                              {0, 0, 6, 4},   {0, 0, 5, 5},   {1, 0, 5, 4},     {0, 1, 5, 4},
                              {1, 1, -1, -1}, {0, 0, 0, 1},   {0, 0, 1, 0},     {0, 0, -1, 4},
                              {0, 0, 5, -1},  {0, 0, -2, -2}, {big, 0, big, 1}, {1, 1, big, big}};
    for (const auto& r : bad)
        EXPECT_EQ(Targa24Write(file.name(), dib, r[0], r[1], r[2], r[3]), KIRVO_BAD_PARAMETER)
            << r[0] << ' ' << r[1] << ' ' << r[2] << ' ' << r[3];
    EXPECT_FALSE(file.exists());
    EXPECT_TRUE(is_unlocked(dib));
}

TEST(Targa24Write, refuses_a_null_handle_as_a_bad_parameter) {
    EXPECT_EQ(Targa24Write("x.tga", nullptr, 0, 0, -1, -1), KIRVO_BAD_PARAMETER);
    EXPECT_EQ(Targa24Write(nullptr, nullptr, 0, 0, -1, -1), KIRVO_BAD_PARAMETER);
}

TEST(Targa24Write, tells_a_handle_that_cannot_be_locked) {
    const HGLOBAL freed = picture(2, 2).release();
    GlobalFree(freed);
    EXPECT_EQ(Targa24Write("x.tga", freed, 0, 0, -1, -1), KIRVO_NULL_HANDLE);
    EXPECT_EQ(Targa24Write("x.tga", freed, -1, 0, -1, -1), KIRVO_BAD_PARAMETER);
}

TEST(Targa24Write, accepts_24_bits_alone_and_looks_at_the_rectangle_first) {
    for (const int bits : {1, 4, 8, 16, 32}) {
        const Dib dib = make_dib({.width = 5, .height = 5, .bits = bits});
        const TempFile file(".tga");
        EXPECT_EQ(Targa24Write(file.name(), dib, 0, 0, -1, -1), KIRVO_NEEDS_24) << bits;
        EXPECT_EQ(Targa24Write(file.name(), dib, 0, 0, 6, 5), KIRVO_BAD_PARAMETER) << bits;
        EXPECT_FALSE(file.exists());
        EXPECT_TRUE(is_unlocked(dib));
    }
}

TEST(Targa24Write, refuses_a_block_smaller_than_its_header_says) {
    const TempFile file(".tga");
    for (const int64_t missing : {4, 12, 24, 40, 60}) {
        const Dib dib = make_dib({.width = 3, .height = 2, .bits = 24, .extra_bytes = -missing});
        EXPECT_EQ(Targa24Write(file.name(), dib, 0, 0, -1, -1), KIRVO_BAD_PARAMETER) << missing;
        EXPECT_TRUE(is_unlocked(dib));
    }
    Dib lying = picture(3, 2);
    BITMAPINFOHEADER header = lying.header();
    for (const LONG size : {INT32_MAX, INT32_MIN, -1, 0}) {
        header.biWidth = header.biHeight = size;
        lying.set_header(header);
        EXPECT_EQ(Targa24Write(file.name(), lying, 0, 0, 1, 1), KIRVO_BAD_PARAMETER) << size;
        EXPECT_EQ(Targa24Write(file.name(), lying, 0, 0, -1, -1), KIRVO_BAD_PARAMETER) << size;
    }
    EXPECT_FALSE(file.exists());
}

TEST(Targa24Write, tells_a_file_that_cannot_be_made) {
    const Dib dib = picture(2, 2);
    EXPECT_EQ(Targa24Write("no such folder/x.tga", dib, 0, 0, -1, -1), KIRVO_CANNOT_OPEN);
    EXPECT_EQ(Targa24Write(temp_folder().c_str(), dib, 0, 0, -1, -1), KIRVO_CANNOT_OPEN);
    EXPECT_EQ(Targa24Write("", dib, 0, 0, -1, -1), KIRVO_CANNOT_OPEN);
    EXPECT_EQ(Targa24Write(nullptr, dib, 0, 0, -1, -1), KIRVO_CANNOT_OPEN);
    EXPECT_EQ(Targa24Write(std::string(4096, 'n').c_str(), dib, 0, 0, -1, -1), KIRVO_CANNOT_OPEN);
    EXPECT_TRUE(is_unlocked(dib));
}

#ifndef _WIN32
TEST(Targa24Write, tells_a_full_disk) {
    const Dib dib = picture(2, 2);
    EXPECT_EQ(Targa24Write("/dev/full", dib, 0, 0, -1, -1), KIRVO_WRITE_ERROR);
    EXPECT_TRUE(is_unlocked(dib));
    EXPECT_FALSE(is_open("/dev/full"));
}

TEST(Targa24Read, tells_a_file_that_opens_but_cannot_be_read) {
    expect_failure(read_targa("/proc/self/mem"), KIRVO_READ_ERROR);
}
#endif
