// BMP files in every variant.
#include "files/bmp_builder.hpp"

using namespace kirvo_test;

namespace {

uint32_t rgb(uint32_t x, uint32_t y) { return (x * 40) << 16 | (y * 70) << 8 | (x * 7 + y); }

void expect_rgb(const Opened& opened, uint32_t bits) {
    ASSERT_EQ(opened.status, KIRVO_FILES_OK) << opened.text(KIRVO_FILES_TEXT_REASON);
    EXPECT_EQ(opened.bits(), bits);
    for (uint32_t y = 0; y < 3; ++y)
        for (uint32_t x = 0; x < 5; ++x)
            EXPECT_EQ(opened.pixel(x, y), rgb(x, y)) << x << ", " << y;
}

Bmp of_24(uint32_t header, bool top_down = false) {
    Bmp bmp;
    bmp.header = header;
    bmp.height = top_down ? -3 : 3;
    bmp.pixels = packed_rows(5, 3, 24, top_down, rgb);
    return bmp;
}

} // namespace

TEST(Bmp, every_header_of_24_bits_gives_the_same_picture) {
    for (uint32_t header : {12u, 16u, 40u, 52u, 56u, 64u, 108u, 124u}) {
        if (header == 16) { // the shortest of OS/2: nothing behind the depth
            Bytes file = of_24(40).file();
            file.erase(file.begin() + 14 + 16, file.begin() + 14 + 40);
            file[14] = 16;
            file[10] = 14 + 16;
            expect_rgb(Opened(file), 24);
        } else {
            expect_rgb(Opened(of_24(header).file()), 24);
        }
    }
}

TEST(Bmp, rows_from_the_top_down_are_turned) { expect_rgb(Opened(of_24(40, true).file()), 24); }

TEST(Bmp, a_gap_before_the_pixels_and_a_palette_at_24_bits_are_skipped) {
    Bmp bmp = of_24(40);
    bmp.gap = 10;
    expect_rgb(Opened(bmp.file()), 24);
    bmp.palette = {0x112233, 0x445566};
    bmp.colours = 2;
    expect_rgb(Opened(bmp.file()), 24);
}

TEST(Bmp, an_offset_that_lies_inside_the_headers_is_not_believed) {
    Bytes file = of_24(124).file();
    file[10] = 54;
    expect_rgb(Opened(file), 24);
}

TEST(Bmp, plain_32_bits_keep_their_pixels_and_get_masks) {
    Bmp bmp;
    bmp.bits = 32;
    bmp.pixels = packed_rows(5, 3, 32, false, rgb);
    const Opened opened(bmp.file());
    expect_rgb(opened, 32);
    EXPECT_EQ(opened.word(40), 0xFF0000u);
    EXPECT_EQ(opened.word(44), 0xFF00u);
    EXPECT_EQ(opened.word(48), 0xFFu);
    EXPECT_EQ(opened.about.flags & KIRVO_FILES_HAS_ALPHA, 0u);
}

TEST(Bmp, plain_16_bits_are_five_five_five) {
    Bmp bmp;
    bmp.bits = 16;
    bmp.pixels = packed_rows(5, 3, 16, false, [](uint32_t x, uint32_t y) { return x * 999 + y; });
    const Opened opened(bmp.file());
    ASSERT_EQ(opened.status, KIRVO_FILES_OK);
    EXPECT_EQ(opened.bits(), 16u);
    EXPECT_EQ(opened.word(40), 0x7C00u);
    EXPECT_EQ(opened.pixel(4, 2), 4u * 999 + 2);
}

// A channel of 8 bits under a mask of n bits: its upper bits.
static uint32_t under(uint32_t mask, uint32_t value) {
    uint32_t shift = 0, bits = 0;
    while ((mask >> shift & 1) == 0)
        ++shift;
    while (shift + bits < 32 && (mask >> (shift + bits) & 1) != 0)
        ++bits;
    const uint64_t most = (uint64_t{1} << bits) - 1;
    return static_cast<uint32_t>((value * most + 127) / 255) << shift;
}
// What is left of it.
static uint32_t restored(uint32_t mask, uint32_t value) {
    uint32_t shift = 0;
    while ((mask >> shift & 1) == 0)
        ++shift;
    const uint64_t most = mask >> shift;
    return static_cast<uint32_t>(((under(mask, value) >> shift) * uint64_t{255} + most / 2) / most);
}

TEST(Bmp, masks_of_one_to_32_bits_anywhere_are_widened) {
    const std::vector<std::vector<uint32_t>> sets = {
        {0xFF, 0xFF00, 0xFF0000},     {0xFF000000, 0xFF0000, 0xFF00},
        {0x3FF00000, 0xFFC00, 0x3FF}, {1, 2, 4},
        {0xF00, 0xF0, 0xF},           {0x7FE00000, 0x1FFC00, 0x3FF},
        {0xFFFF0000, 0xFF00, 0xFF},   {0xFFFFFFFF, 1, 2}};
    for (const auto& masks : sets) {
        Bmp bmp;
        bmp.bits = 32;
        bmp.compression = 3;
        bmp.masks = masks;
        bmp.pixels = packed_rows(5, 3, 32, false, [&](uint32_t x, uint32_t y) {
            const uint32_t colour = rgb(x, y);
            return under(masks[0], colour >> 16) | under(masks[1], colour >> 8 & 255) |
                   under(masks[2], colour & 255);
        });
        const Opened opened(bmp.file());
        ASSERT_EQ(opened.status, KIRVO_FILES_OK);
        EXPECT_EQ(opened.bits(), 32u);
        if (masks[0] == 0xFFFFFFFF)
            continue; // overlapping masks: only that it opens
        for (uint32_t y = 0; y < 3; ++y)
            for (uint32_t x = 0; x < 5; ++x) {
                const uint32_t colour = rgb(x, y);
                EXPECT_EQ(opened.pixel(x, y), restored(masks[0], colour >> 16) << 16 |
                                                  restored(masks[1], colour >> 8 & 255) << 8 |
                                                  restored(masks[2], colour & 255));
            }
    }
}

TEST(Bmp, unusual_masks_of_16_bits_become_24_bits) {
    Bmp bmp;
    bmp.bits = 16;
    bmp.compression = 3;
    bmp.masks = {0xF00, 0xF0, 0xF};
    bmp.pixels = packed_rows(5, 3, 16, false, [](uint32_t x, uint32_t) { return x << 8 | 0xF3; });
    const Opened opened(bmp.file());
    ASSERT_EQ(opened.status, KIRVO_FILES_OK);
    EXPECT_EQ(opened.bits(), 24u);
    EXPECT_EQ(opened.pixel(4, 1), 0x44FF33u); // 4 × 17, 15 × 17, 3 × 17
}

TEST(Bmp, alpha_of_new_headers_is_laid_over_the_background_or_kept) {
    Bmp bmp;
    bmp.header = 124;
    bmp.bits = 32;
    bmp.compression = 3;
    bmp.masks = {0xFF0000, 0xFF00, 0xFF, 0xFF000000};
    bmp.pixels = packed_rows(5, 3, 32, false,
                             [](uint32_t x, uint32_t) { return (x * 51) << 24 | 0x804020; });
    const Opened flat(bmp.file());
    EXPECT_EQ(flat.bits(), 24u);
    EXPECT_TRUE(flat.has_note(KIRVO_FILES_NOTE_ALPHA));
    EXPECT_EQ(flat.pixel(0, 0), 0xFFFFFFu); // nothing of it over white
    EXPECT_EQ(flat.pixel(4, 0), 0x99664Du); // four fifths of it, one of white
    const Opened blue(bmp.file(), KIRVO_FILES_BACKGROUND, 0, 0xFF0000);
    EXPECT_EQ(blue.pixel(0, 2), 0x0000FFu);
    const Opened kept(bmp.file(), KIRVO_FILES_KEEP_ALPHA);
    EXPECT_EQ(kept.bits(), 32u);
    EXPECT_EQ(kept.pixel(2, 1), (2u * 51) << 24 | 0x804020);
}

TEST(Bmp, alpha_that_is_zero_everywhere_was_not_meant) {
    Bmp bmp;
    bmp.header = 108;
    bmp.bits = 32;
    bmp.compression = 3;
    bmp.masks = {0xFF0000, 0xFF00, 0xFF, 0xFF000000};
    bmp.pixels = packed_rows(5, 3, 32, false, rgb);
    const Opened opened(bmp.file(), KIRVO_FILES_KEEP_ALPHA);
    expect_rgb(opened, 32);
    EXPECT_TRUE(opened.has_note(KIRVO_FILES_NOTE_REPAIRED));
}

TEST(Bmp, alpha_bitfields_put_four_masks_behind_the_header) {
    Bmp bmp;
    bmp.bits = 16;
    bmp.compression = 6;
    bmp.masks = {0xF00, 0xF0, 0xF, 0xF000};
    bmp.pixels = packed_rows(5, 3, 16, false, [](uint32_t x, uint32_t) { return x << 12 | 0x123; });
    const Opened kept(bmp.file(), KIRVO_FILES_KEEP_ALPHA);
    ASSERT_EQ(kept.status, KIRVO_FILES_OK);
    EXPECT_EQ(kept.pixel(3, 0), 0x33112233u);
}

TEST(Bmp, palettes_of_every_depth_and_length) {
    for (uint32_t header : {12u, 40u})
        for (uint32_t bits : {1u, 2u, 4u, 8u})
            for (uint32_t colours : {2u, 1u << bits}) {
                Bmp bmp;
                bmp.header = header;
                bmp.bits = bits;
                bmp.colours = colours;
                for (uint32_t i = 0; i < colours; ++i)
                    bmp.palette.push_back(i * 0x010203 + 0x102030);
                const auto index = [&](uint32_t x, uint32_t y) { return (x + y) % colours; };
                bmp.pixels = packed_rows(5, 3, bits, false, index);
                const Opened opened(bmp.file());
                ASSERT_EQ(opened.status, KIRVO_FILES_OK);
                EXPECT_EQ(opened.bits(), bits == 2 ? 4 : bits);
                EXPECT_EQ(opened.about.colours, colours);
                for (uint32_t x = 0; x < 5; ++x)
                    EXPECT_EQ(opened.pixel(x, 2), index(x, 2) * 0x010203 + 0x102030);
            }
}

TEST(Bmp, an_index_beyond_a_short_palette_is_black) {
    Bmp bmp;
    bmp.bits = 8;
    bmp.colours = 1;
    bmp.palette = {0xFFFFFF};
    bmp.pixels = packed_rows(5, 3, 8, false, [](uint32_t x, uint32_t) { return x * 60; });
    const Opened opened(bmp.file());
    EXPECT_EQ(opened.pixel(0, 0), 0xFFFFFFu);
    EXPECT_EQ(opened.pixel(4, 0), 0u);
}

TEST(Bmp, run_lengths_of_8_bits_with_literals_and_jumps) {
    Bmp bmp;
    bmp.width = 6;
    bmp.bits = 8;
    bmp.compression = 1;
    bmp.colours = 4;
    bmp.palette = {0x000001, 0x000002, 0x000003, 0x000004};
    bmp.pixels = {3, 1, 3, 2, 0, 0,             // three, three, end of the row
                  0, 3, 1, 2, 3, 0, 0, 2, 1, 0, // three literals and a byte of filling, one aside
                  2, 1, 0, 0,                   // two, end of the row
                  6, 3, 0, 1};                  // six, end
    const Opened opened(bmp.file());
    ASSERT_EQ(opened.status, KIRVO_FILES_OK) << opened.text(KIRVO_FILES_TEXT_REASON);
    const uint32_t expected[3][6] = {{4, 4, 4, 4, 4, 4}, {2, 3, 4, 1, 2, 2}, {2, 2, 2, 3, 3, 3}};
    for (uint32_t y = 0; y < 3; ++y)
        for (uint32_t x = 0; x < 6; ++x)
            EXPECT_EQ(opened.pixel(x, y), expected[y][x]) << x << ", " << y;
}

TEST(Bmp, run_lengths_of_4_bits_alternate_between_two_colours) {
    Bmp bmp;
    bmp.bits = 4;
    bmp.compression = 2;
    bmp.colours = 4;
    bmp.palette = {0x10, 0x11, 0x12, 0x13};
    bmp.pixels = {5, 0x12, 0, 0, 0, 5, 0x01, 0x23, 0x30, 0, 0, 0, 4, 0x33, 1, 0x00, 0, 1};
    const Opened opened(bmp.file());
    ASSERT_EQ(opened.status, KIRVO_FILES_OK) << opened.text(KIRVO_FILES_TEXT_REASON);
    const uint32_t expected[3][5] = {{3, 3, 3, 3, 0}, {0, 1, 2, 3, 3}, {1, 2, 1, 2, 1}};
    for (uint32_t y = 0; y < 3; ++y)
        for (uint32_t x = 0; x < 5; ++x)
            EXPECT_EQ(opened.pixel(x, y), 0x10 + expected[y][x]) << x << ", " << y;
}

TEST(Bmp, run_lengths_that_leave_the_picture_are_damage) {
    Bmp bmp;
    bmp.bits = 8;
    bmp.compression = 1;
    bmp.colours = 2;
    bmp.palette = {0, 1};
    bmp.pixels = {200, 1, 0, 1};
    EXPECT_EQ(Opened(bmp.file()).status, KIRVO_FILES_DAMAGED);
    const Opened opened(bmp.file(), KIRVO_FILES_KEEP_GOING);
    EXPECT_EQ(opened.status, KIRVO_FILES_OK);
    EXPECT_TRUE(opened.has_note(KIRVO_FILES_NOTE_DAMAGED));
}

TEST(Bmp, a_file_that_ends_early_says_how_many_rows_there_are) {
    Bytes file = of_24(40).file();
    file.resize(file.size() - 16); // the last stored row, which is the top one
    const Opened refused(file);
    EXPECT_EQ(refused.status, KIRVO_FILES_ENDS_EARLY);
    EXPECT_EQ(refused.text(KIRVO_FILES_TEXT_REASON),
              "ends early: only 2 of 3 rows, from the bottom up");
    const Opened opened(file, KIRVO_FILES_KEEP_GOING);
    ASSERT_EQ(opened.status, KIRVO_FILES_OK);
    EXPECT_EQ(opened.about.wholeRows, 2u);
    EXPECT_EQ(opened.pixel(3, 2), rgb(3, 2));
    EXPECT_EQ(opened.pixel(3, 0), 0u);
    Bytes unpadded = of_24(40).file();
    unpadded.pop_back(); // the last row's padding is nobody's loss
    expect_rgb(Opened(unpadded), 24);
}

TEST(Bmp, a_claim_out_of_all_proportion_is_refused_and_informs_at_once) {
    Bmp bmp = of_24(40);
    bmp.width = 27000;
    bmp.height = 26000;
    const Bytes file = bmp.file();
    EXPECT_EQ(Opened(file).status, KIRVO_FILES_CLAIM_TOO_LARGE);
    KirvoFile known = nullptr;
    EXPECT_EQ(
        KirvoFilesInfoMemory(file.data(), static_cast<uint32_t>(file.size()), nullptr, &known),
        KIRVO_FILES_OK);
    KirvoFilesDescription about = {};
    about.size = sizeof about;
    KirvoFilesDescribe(known, &about);
    EXPECT_EQ(about.width, 27000u);
    EXPECT_EQ(about.height, 26000u);
    KirvoFilesClose(known);
}

TEST(Bmp, what_is_not_read_is_refused_with_a_reason) {
    Bmp bmp = of_24(40);
    bmp.compression = 11; // CMYK
    const Opened opened(bmp.file());
    EXPECT_EQ(opened.status, KIRVO_FILES_UNSUPPORTED);
    EXPECT_NE(opened.text(KIRVO_FILES_TEXT_REASON), "");
}

TEST(Bmp, is_saved_at_every_depth_as_it_was) {
    for (uint32_t bits : {8u, 24u, 32u}) {
        const Picture picture(7, 5, bits);
        const Saved saved = save(picture.dib, as(KIRVO_FILES_BMP));
        ASSERT_EQ(saved.status, KIRVO_FILES_OK);
        const Opened opened(saved.bytes);
        ASSERT_EQ(opened.status, KIRVO_FILES_OK);
        EXPECT_EQ(opened.bits(), bits);
        for (uint32_t y = 0; y < 5; ++y)
            for (uint32_t x = 0; x < 7; ++x) {
                const uint32_t colour = Picture::colour(x, y, bits);
                EXPECT_EQ(opened.pixel(x, y), bits == 8 ? colour * 0x010101 : colour & 0xFFFFFF);
            }
    }
}

TEST(Bmp, alpha_is_saved_with_a_header_that_has_it) {
    const Picture picture(7, 5, 32);
    const Saved saved = save(picture.dib, as(KIRVO_FILES_BMP, KIRVO_FILES_WITH_ALPHA));
    const Opened opened(saved.bytes, KIRVO_FILES_KEEP_ALPHA);
    ASSERT_EQ(opened.status, KIRVO_FILES_OK);
    for (uint32_t y = 0; y < 5; ++y)
        for (uint32_t x = 0; x < 7; ++x)
            EXPECT_EQ(opened.pixel(x, y), Picture::colour(x, y, 32));
}
