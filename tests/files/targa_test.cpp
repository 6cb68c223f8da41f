// Targa files in every variant.
#include "files/opened.hpp"

using namespace kirvo_test;

namespace {

struct Targa {
    uint32_t type = 2, bits = 24, descriptor = 0, id = 0, first = 0;
    std::vector<uint32_t> map; // 0xAARRGGBB
    uint32_t map_bits = 24;
    Bytes pixels;

    Bytes file(uint32_t width = 4, uint32_t height = 3) const {
        Bytes bytes = {static_cast<uint8_t>(id), static_cast<uint8_t>(!map.empty()),
                       static_cast<uint8_t>(type)};
        add16(bytes, {first, static_cast<uint32_t>(map.size())});
        bytes.push_back(static_cast<uint8_t>(map.empty() ? 0 : map_bits));
        add16(bytes, {0, 0, width, height});
        bytes.push_back(static_cast<uint8_t>(bits));
        bytes.push_back(static_cast<uint8_t>(descriptor));
        bytes.resize(bytes.size() + id, 0x77);
        for (uint32_t colour : map)
            add_words(bytes, {colour}, (map_bits + 7) / 8);
        bytes.insert(bytes.end(), pixels.begin(), pixels.end());
        return bytes;
    }
};

uint32_t rgb(uint32_t x, uint32_t y) { return (x * 50 + 3) << 16 | (y * 80) << 8 | (x * 9 + y); }

// Pixels in the order of an origin.
Bytes stored(uint32_t descriptor, uint32_t size, uint32_t alpha = 0) {
    Bytes bytes;
    for (uint32_t i = 0; i < 3; ++i)
        for (uint32_t k = 0; k < 4; ++k) {
            const uint32_t x = (descriptor & 0x10) != 0 ? 3 - k : k;
            const uint32_t y = (descriptor & 0x20) != 0 ? i : 2 - i;
            add_words(bytes, {rgb(x, y) | alpha << 24}, size);
        }
    return bytes;
}

void expect_rgb(const Opened& opened, uint32_t bits) {
    ASSERT_EQ(opened.status, KIRVO_FILES_OK) << opened.text(KIRVO_FILES_TEXT_REASON);
    EXPECT_EQ(opened.bits(), bits);
    for (uint32_t y = 0; y < 3; ++y)
        for (uint32_t x = 0; x < 4; ++x)
            EXPECT_EQ(opened.pixel(x, y) & 0xFFFFFF, rgb(x, y)) << x << ", " << y;
}

} // namespace

TEST(Targa, all_four_origins_with_and_without_an_image_id) {
    for (uint32_t descriptor : {0u, 0x10u, 0x20u, 0x30u})
        for (uint32_t id : {0u, 11u, 255u}) {
            Targa targa;
            targa.descriptor = descriptor;
            targa.id = id;
            targa.pixels = stored(descriptor, 3);
            expect_rgb(Opened(targa.file()), 24);
        }
}

TEST(Targa, run_lengths_go_on_over_the_ends_of_rows) {
    Targa targa;
    targa.type = 10;
    targa.descriptor = 0x20;
    targa.pixels = {0x80 + 5, 1, 2, 3, 0x04, 9, 9, 1, 9,    9, 2, 9,
                    9,        3, 9, 9, 4,    9, 9, 5, 0x80, 7, 7, 7};
    const Opened opened(targa.file());
    ASSERT_EQ(opened.status, KIRVO_FILES_OK) << opened.text(KIRVO_FILES_TEXT_REASON);
    for (uint32_t i = 0; i < 12; ++i)
        EXPECT_EQ(opened.pixel(i % 4, i / 4), i < 6    ? 0x030201u
                                              : i < 11 ? (i - 5) << 16 | 0x0909
                                                       : 0x070707u);
}

TEST(Targa, depths_of_true_colour) {
    Targa wide;
    wide.bits = 32;
    wide.pixels = stored(0, 4, 0x55);
    expect_rgb(Opened(wide.file()), 32); // no alpha bits are declared
    wide.descriptor = 8;
    const Opened kept(wide.file(), KIRVO_FILES_KEEP_ALPHA);
    expect_rgb(kept, 32);
    EXPECT_EQ(kept.pixel(1, 1) >> 24, 0x55u);
    EXPECT_EQ(Opened(wide.file()).bits(), 24u);
    for (uint32_t bits : {15u, 16u}) {
        Targa narrow;
        narrow.bits = bits;
        for (uint32_t i = 0; i < 12; ++i)
            add16(narrow.pixels, {0x8000 | i << 10 | 31});
        const Opened opened(narrow.file());
        ASSERT_EQ(opened.status, KIRVO_FILES_OK);
        EXPECT_EQ(opened.bits(), 16u);
        EXPECT_EQ(opened.word(40), 0x7C00u);
        EXPECT_EQ(opened.pixel(1, 2), 1u << 10 | 31); // from the bottom; the top bit is nobody's
    }
}

TEST(Targa, alpha_that_the_extension_area_calls_undefined_is_left_out) {
    Targa targa;
    targa.bits = 32;
    targa.descriptor = 8;
    targa.pixels = stored(0, 4, 0x55);
    for (uint32_t kind : {0u, 1u, 2u, 3u}) {
        Bytes file = targa.file();
        const auto at = static_cast<uint32_t>(file.size());
        file.resize(file.size() + 495);
        file[at + 494] = static_cast<uint8_t>(kind);
        add32(file, {at, 0});
        for (char letter : std::string("TRUEVISION-XFILE.") + '\0')
            file.push_back(static_cast<uint8_t>(letter));
        const Opened opened(file, KIRVO_FILES_KEEP_ALPHA);
        EXPECT_EQ((opened.about.flags & KIRVO_FILES_HAS_ALPHA) != 0, kind == 3);
        expect_rgb(opened, 32);
    }
}

TEST(Targa, grey_and_palettes) {
    Targa grey;
    grey.type = 3;
    grey.bits = 8;
    for (uint32_t i = 0; i < 12; ++i)
        grey.pixels.push_back(static_cast<uint8_t>(i * 20));
    const Opened opened(grey.file());
    EXPECT_EQ(opened.bits(), 8u);
    EXPECT_EQ(opened.pixel(0, 2), 0u);
    EXPECT_EQ(opened.pixel(3, 0), 0xDCDCDCu); // 11 × 20

    for (uint32_t map_bits : {15u, 16u, 24u, 32u}) {
        Targa palette;
        palette.type = 1;
        palette.bits = 8;
        palette.first = 5;
        palette.map_bits = map_bits;
        palette.map = map_bits <= 16 ? std::vector<uint32_t>{0x7C00, 0x03E0}
                                     : std::vector<uint32_t>{0xFF0000, 0x00FF00};
        palette.pixels = {5, 6, 5, 6, 6, 5, 6, 5, 9, 0, 5, 5};
        const Opened indexed(palette.file());
        ASSERT_EQ(indexed.status, KIRVO_FILES_OK);
        EXPECT_EQ(indexed.bits(), 8u);
        EXPECT_EQ(indexed.pixel(0, 2), 0xFF0000u);
        EXPECT_EQ(indexed.pixel(1, 2), 0x00FF00u);
        EXPECT_EQ(indexed.pixel(0, 0), 0u); // no such entry
    }
}

TEST(Targa, sixteen_bit_indices_become_true_colour) {
    Targa targa;
    targa.type = 1;
    targa.bits = 16;
    for (uint32_t i = 0; i < 300; ++i)
        targa.map.push_back(i * 0x010101 & 0xFFFFFF);
    for (uint32_t i = 0; i < 12; ++i)
        add16(targa.pixels, {288 + i});
    const Opened opened(targa.file());
    ASSERT_EQ(opened.status, KIRVO_FILES_OK);
    EXPECT_EQ(opened.bits(), 24u);
    EXPECT_EQ(opened.pixel(2, 2), 290u * 0x010101 & 0xFFFFFF);
}

TEST(Targa, a_file_that_ends_early_is_refused_or_opened_in_part) {
    Targa targa;
    targa.descriptor = 0x20;
    targa.pixels = stored(0x20, 3);
    Bytes file = targa.file();
    file.resize(file.size() - 1);
    EXPECT_EQ(Opened(file).text(KIRVO_FILES_TEXT_REASON), "ends early: whole to row 2 of 3");
    const Opened opened(file, KIRVO_FILES_KEEP_GOING);
    EXPECT_EQ(opened.status, KIRVO_FILES_OK);
    EXPECT_EQ(opened.about.wholeRows, 2u);
    EXPECT_EQ(opened.pixel(2, 1), rgb(2, 1));
}

TEST(Targa, is_saved_at_every_depth_packed_or_plain) {
    for (uint32_t flags : {0u, static_cast<uint32_t>(KIRVO_FILES_RLE)})
        for (uint32_t bits : {8u, 24u, 32u}) {
            const Picture picture(131, 5, bits);
            const Saved saved =
                save(picture.dib, as(KIRVO_FILES_TARGA, flags | KIRVO_FILES_WITH_ALPHA));
            ASSERT_EQ(saved.status, KIRVO_FILES_OK);
            EXPECT_EQ(saved.bytes[2], (bits == 8 ? 3 : 2) + (flags != 0 ? 8 : 0));
            const Opened opened(saved.bytes, KIRVO_FILES_KEEP_ALPHA);
            ASSERT_EQ(opened.status, KIRVO_FILES_OK);
            for (uint32_t x = 0; x < 131; ++x) {
                const uint32_t colour = Picture::colour(x, 3, bits);
                EXPECT_EQ(opened.pixel(x, 3), bits == 8 ? colour * 0x010101 : colour);
            }
        }
}

TEST(Targa, without_alpha_has_no_fourth_byte) {
    const Picture picture(7, 5, 32);
    for (uint32_t flags : {0u, static_cast<uint32_t>(KIRVO_FILES_RLE)}) {
        const Saved saved = save(picture.dib, as(KIRVO_FILES_TARGA, flags));
        ASSERT_EQ(saved.status, KIRVO_FILES_OK);
        EXPECT_EQ(saved.bytes[16], 24);
        const Opened opened(saved.bytes, KIRVO_FILES_KEEP_ALPHA);
        for (uint32_t y = 0; y < 5; ++y)
            for (uint32_t x = 0; x < 7; ++x)
                EXPECT_EQ(opened.pixel(x, y), Picture::colour(x, y));
    }
}

TEST(Targa, keeps_five_bits_of_each_channel_as_they_are) {
    HGLOBAL dib = DibMemAllocEx(32, 1, 16);
    auto* data = static_cast<uint8_t*>(GlobalLock(dib));
    const uint32_t masks[] = {0x7C00, 0x3E0, 0x1F};
    std::memcpy(data + 40, masks, 12);
    const auto pixel = [](uint32_t x) { return x << 10 | (31 - x) << 5 | (x * 7 & 31); };
    for (uint32_t x = 0; x < 32; ++x) {
        data[52 + 2 * x] = static_cast<uint8_t>(pixel(x));
        data[53 + 2 * x] = static_cast<uint8_t>(pixel(x) >> 8);
    }
    GlobalUnlock(dib);
    const Saved saved = save(dib, as(KIRVO_FILES_TARGA));
    GlobalFree(dib);
    ASSERT_EQ(saved.status, KIRVO_FILES_OK);
    for (uint32_t x = 0; x < 32; ++x)
        EXPECT_EQ(saved.bytes[18 + 2 * x] | saved.bytes[19 + 2 * x] << 8,
                  static_cast<int>(pixel(x)));
}
