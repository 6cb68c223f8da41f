// JPEG files: which decoder, damage, tables and sampling that are kept, qualities and sizes.
#include "files/deep_jpeg.hpp"

#include <cmath>

using namespace kirvo_test;

namespace {

// A stream of Kirvo's encoder, with 8 MCUs between nothing: one plain baseline scan.
Bytes baseline(uint32_t width, uint32_t height, int32_t level, int32_t sampling) {
    const Picture picture(width, height);
    JpgCodSetSubsample(sampling);
    JpgCodSetQEx(level);
    uint32_t count = 0;
    int32_t status = 0;
    HGLOBAL block = JpgCodMainHGLOBAL(picture.dib, 0, 0, static_cast<int32_t>(width),
                                      static_cast<int32_t>(height), &count, &status);
    const auto* data = static_cast<const uint8_t*>(GlobalLock(block));
    Bytes bytes(data, data + count);
    GlobalUnlock(block);
    GlobalFree(block);
    JpgCodSetSubsample(4);
    JpgCodSetQEx(4);
    return bytes;
}

// Where a segment begins; 0 for none.
size_t segment(const Bytes& bytes, uint8_t marker) {
    for (size_t at = 2; at + 4 <= bytes.size() && bytes[at] == 0xFF;
         at += 2 + (size_t{bytes[at + 2]} << 8 | bytes[at + 3])) {
        if (bytes[at + 1] == marker)
            return at;
        if (bytes[at + 1] == 0xDA)
            break;
    }
    return 0;
}

double mean_error(const Opened& opened, uint32_t width, uint32_t height) {
    double sum = 0;
    for (uint32_t y = 0; y < height; ++y)
        for (uint32_t x = 0; x < width; ++x)
            for (int shift : {0, 8, 16})
                sum += std::abs(static_cast<int>(opened.pixel(x, y) >> shift & 255) -
                                static_cast<int>(Picture::colour(x, y) >> shift & 255));
    return sum / (3.0 * width * height);
}

} // namespace

TEST(Jpeg, a_baseline_file_is_decoded_by_kirvo_to_the_bit) {
    const Bytes bytes = baseline(50, 40, 3, 2);
    const Opened opened(bytes);
    ASSERT_EQ(opened.status, KIRVO_FILES_OK) << opened.text(KIRVO_FILES_TEXT_REASON);
    EXPECT_EQ(opened.text(KIRVO_FILES_TEXT_DECODER), "Kirvo");
    EXPECT_EQ(opened.text(KIRVO_FILES_TEXT_VARIANT), "baseline, YCbCr 4:2:2");
    EXPECT_EQ(opened.about.sampleAcross, 2u);
    EXPECT_EQ(opened.about.sampleDown, 1u);
    HGLOBAL block = GlobalAlloc(GHND, bytes.size());
    std::memcpy(GlobalLock(block), bytes.data(), bytes.size());
    GlobalUnlock(block);
    uint32_t width, height;
    int32_t status;
    HGLOBAL direct =
        JpgDecMainHGLOBAL(block, static_cast<int32_t>(bytes.size()), &width, &height, &status);
    ASSERT_EQ(status, KIRVO_OK);
    uint32_t colour = 0;
    for (int32_t y = 0; y < 40; ++y)
        for (int32_t x = 0; x < 50; ++x) {
            DibGetPixelColor(direct, x, y, &colour); // 0x00BBGGRR
            EXPECT_EQ(opened.pixel(static_cast<uint32_t>(x), static_cast<uint32_t>(y)),
                      (colour & 255) << 16 | (colour & 0xFF00) | colour >> 16);
        }
    GlobalFree(direct);
    GlobalFree(block);
}

TEST(Jpeg, a_file_that_ends_early_tells_its_last_whole_row) {
    const Bytes whole = baseline(64, 160, 2, 4);
    const size_t data = segment(whole, 0xDA) + 14;
    uint32_t last = 0;
    for (size_t size = data + 1; size + 2 < whole.size(); size += 37) {
        const Bytes cut(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(size));
        const Opened refused(cut);
        ASSERT_EQ(refused.status, KIRVO_FILES_ENDS_EARLY) << size;
        EXPECT_EQ(refused.about.wholeRows % 16, 0u);
        EXPECT_GE(refused.about.wholeRows, last);
        last = refused.about.wholeRows;
        EXPECT_EQ(refused.text(KIRVO_FILES_TEXT_REASON),
                  "ends early: whole to row " + std::to_string(last) + " of 160");
    }
    EXPECT_GE(last, 128u);
    const Bytes cut(whole.begin(), whole.end() - static_cast<ptrdiff_t>(whole.size() / 4));
    const Opened opened(cut, KIRVO_FILES_KEEP_GOING);
    const Opened all(whole);
    ASSERT_EQ(opened.status, KIRVO_FILES_OK);
    EXPECT_TRUE(opened.has_note(KIRVO_FILES_NOTE_ENDS_EARLY));
    for (uint32_t y = 0; y < opened.about.wholeRows; ++y)
        for (uint32_t x = 0; x < 64; ++x) // another decoder's rounding apart
            for (int shift : {0, 8, 16})
                EXPECT_LE(std::abs(static_cast<int>(opened.pixel(x, y) >> shift & 255) -
                                   static_cast<int>(all.pixel(x, y) >> shift & 255)),
                          6);
}

TEST(Jpeg, without_the_last_marker_the_picture_is_whole) {
    Bytes bytes = baseline(33, 17, 3, 1);
    bytes.resize(bytes.size() - 2);
    EXPECT_EQ(Opened(bytes).status, KIRVO_FILES_OK);
}

TEST(Jpeg, an_end_marker_in_the_middle_is_an_early_end) {
    Bytes bytes = baseline(64, 160, 2, 4);
    const size_t middle = (segment(bytes, 0xDA) + bytes.size()) / 2;
    bytes.resize(middle);
    bytes.insert(bytes.end(), {0xFF, 0xD9});
    EXPECT_EQ(Opened(bytes).status, KIRVO_FILES_ENDS_EARLY);
}

TEST(Jpeg, an_empty_application_segment_and_other_oddities_open) {
    const Bytes plain = baseline(40, 24, 2, 4);
    Bytes empty = plain;
    empty.insert(empty.begin() + 2, {0xFF, 0xE5, 0x00, 0x02});
    Bytes filled = plain;
    filled.insert(filled.begin() + 2, {0xFF, 0xFF});
    Bytes zeros = plain; // components 0, 1, 2
    const size_t frame = segment(zeros, 0xC0), scan = segment(zeros, 0xDA);
    for (size_t i = 0; i < 3; ++i) {
        zeros[frame + 10 + 3 * i] = static_cast<uint8_t>(i);
        zeros[scan + 5 + 2 * i] = static_cast<uint8_t>(i);
    }
    Bytes extended = plain;
    extended[frame + 1] = 0xC1;
    for (const Bytes& bytes : {empty, filled, zeros, extended}) {
        const Opened opened(bytes);
        ASSERT_EQ(opened.status, KIRVO_FILES_OK) << opened.text(KIRVO_FILES_TEXT_REASON);
        EXPECT_TRUE(opened.has_note(KIRVO_FILES_NOTE_DECODER));
        EXPECT_LT(mean_error(opened, 40, 24), 8);
    }
    const Opened alone(zeros, KIRVO_FILES_KIRVO_ONLY);
    EXPECT_TRUE(alone.status != KIRVO_FILES_OK || alone.has_note(KIRVO_FILES_NOTE_REDUCED));
}

TEST(Jpeg, saved_from_a_jpeg_keeps_its_tables_and_sampling) {
    for (int32_t sampling : {1, 2, 4}) {
        const Opened source(baseline(64, 48, 2, sampling));
        const Saved saved = save(source.dib, as(KIRVO_FILES_JPEG), source.file);
        ASSERT_EQ(saved.status, KIRVO_FILES_OK);
        const Opened again(saved.bytes);
        EXPECT_EQ(again.data(KIRVO_FILES_DATA_QUANTISERS),
                  source.data(KIRVO_FILES_DATA_QUANTISERS));
        EXPECT_EQ(again.about.sampleAcross, source.about.sampleAcross);
        EXPECT_EQ(again.about.sampleDown, source.about.sampleDown);
        const Saved fresh = save(source.dib, as(KIRVO_FILES_JPEG, KIRVO_FILES_FRESH), source.file);
        EXPECT_EQ(Opened(fresh.bytes).about.quality, 90u);
    }
}

// T.81, tables K.1 and K.2, row by row.
TEST(Jpeg, quality_50_writes_the_tables_of_annex_k) {
    static const uint8_t luma[8][8] = {
        {16, 11, 10, 16, 24, 40, 51, 61},     {12, 12, 14, 19, 26, 58, 60, 55},
        {14, 13, 16, 24, 40, 57, 69, 56},     {14, 17, 22, 29, 51, 87, 80, 62},
        {18, 22, 37, 56, 68, 109, 103, 77},   {24, 35, 55, 64, 81, 104, 113, 92},
        {49, 64, 78, 87, 103, 121, 120, 101}, {72, 92, 95, 98, 112, 100, 103, 99}};
    static const uint8_t chroma_corner[4][4] = {
        {17, 18, 24, 47}, {18, 21, 26, 66}, {24, 26, 56, 99}, {47, 66, 99, 99}}; // 99 beyond it
    const Bytes stream = save(Picture(20, 20).dib, as(KIRVO_FILES_JPEG, 0, 50)).bytes;
    int tables = 0;
    for (size_t at = 2; at + 4 < stream.size() && stream[at + 1] != 0xDA;) {
        const size_t end = at + 2 + stream[at + 2] * 256u + stream[at + 3];
        for (size_t table = at + 4; stream[at + 1] == 0xDB && table < end; table += 65, ++tables) {
            const bool is_luma = stream[table] == 0;
            size_t i = 1;
            for (int diagonal = 0; diagonal < 15; ++diagonal) // up and down by turns
                for (int step = 0; step <= diagonal; ++step) {
                    const int y = diagonal % 2 == 0 ? diagonal - step : step, x = diagonal - y;
                    if (x > 7 || y > 7)
                        continue;
                    const int expected = is_luma          ? luma[y][x]
                                         : x < 4 && y < 4 ? chroma_corner[y][x]
                                                          : 99;
                    EXPECT_EQ(stream[table + i++], expected) << x << ", " << y;
                }
        }
        at = end;
    }
    EXPECT_EQ(tables, 2);
}

TEST(Jpeg, every_quality_writes_the_tables_of_that_quality) {
    const Picture picture(32, 32);
    for (uint32_t quality : {1u, 10u, 50u, 75u, 90u, 97u, 100u}) {
        const Saved saved = save(picture.dib, as(KIRVO_FILES_JPEG, 0, quality));
        ASSERT_EQ(saved.status, KIRVO_FILES_OK);
        const Opened opened(saved.bytes);
        EXPECT_EQ(opened.about.quality, quality);
        const Bytes tables = opened.data(KIRVO_FILES_DATA_QUANTISERS);
        // The first quantiser of luma is 16 at quality 50, scaled.
        const uint32_t scale = quality < 50 ? 5000 / quality : 200 - 2 * quality;
        const uint32_t first = std::clamp((16 * scale + 50) / 100, 1u, 255u);
        EXPECT_EQ(tables.at(0) | tables.at(1) << 8, static_cast<int>(first));
        EXPECT_EQ(opened.about.sampleAcross, quality >= 90 ? 1u : 2u);
    }
}

TEST(Jpeg, levels_write_the_entropy_coded_data_of_kirvos_encoder) {
    const Picture picture(70, 50);
    for (int32_t level = 1; level <= 5; ++level) {
        KirvoFilesSaveOptions options = as(KIRVO_FILES_JPEG);
        options.level = static_cast<uint32_t>(level);
        options.subsample = 2;
        const Bytes ours = save(picture.dib, options).bytes, own = baseline(70, 50, level, 2);
        const size_t from = segment(ours, 0xDB), own_from = segment(own, 0xDB);
        EXPECT_EQ(Bytes(ours.begin() + static_cast<ptrdiff_t>(from), ours.end()),
                  Bytes(own.begin() + static_cast<ptrdiff_t>(own_from), own.end()))
            << "level " << level;
    }
}

TEST(Jpeg, a_grey_picture_of_noise_is_written_at_every_quality) {
    Picture noise(160, 120, 8);
    auto* data = static_cast<uint8_t*>(GlobalLock(noise.dib));
    uint32_t seed = 1;
    for (uint32_t i = 0; i < 160 * 120; ++i) {
        seed = seed * 1664525 + 1013904223;
        data[40 + 1024 + i] = static_cast<uint8_t>(seed >> 24);
    }
    GlobalUnlock(noise.dib);
    for (uint32_t level = 0; level <= 5; ++level)
        for (uint32_t quality : {100u, 60u}) {
            KirvoFilesSaveOptions options = as(KIRVO_FILES_JPEG, KIRVO_FILES_GREY, quality);
            options.level = level;
            const Saved saved = save(noise.dib, options);
            ASSERT_EQ(saved.status, KIRVO_FILES_OK) << level;
            EXPECT_EQ(Opened(saved.bytes).about.channels, 1u);
        }
}

TEST(Jpeg, a_size_limit_gives_the_best_quality_below_it) {
    const Picture picture(120, 90);
    const size_t free = save(picture.dib, as(KIRVO_FILES_JPEG)).bytes.size();
    KirvoFilesSaveOptions options = as(KIRVO_FILES_JPEG);
    options.sizeLimit = static_cast<uint32_t>(free / 2);
    const Saved saved = save(picture.dib, options);
    ASSERT_EQ(saved.status, KIRVO_FILES_OK);
    EXPECT_LE(saved.bytes.size(), free / 2);
    const uint32_t quality = Opened(saved.bytes).about.quality;
    EXPECT_GT(save(picture.dib, as(KIRVO_FILES_JPEG, 0, quality + 1)).bytes.size(), free / 2);
    options.sizeLimit = 100;
    EXPECT_EQ(save(picture.dib, options).status, KIRVO_FILES_SIZE_LIMIT);
}

TEST(Jpeg, data_that_belongs_to_nothing_is_damage_but_filling_is_not) {
    const Bytes whole = baseline(64, 48, 3, 1);
    const auto with = [&](const Bytes& more) {
        Bytes bytes = whole;
        bytes.insert(bytes.end() - 2, more.begin(), more.end());
        return bytes;
    };
    for (const Bytes& filling : {Bytes{0, 0, 0, 0}, Bytes{0xFF, 0xFF}, Bytes{0, 0xFF}})
        EXPECT_EQ(Opened(with(filling)).status, KIRVO_FILES_OK);
    const Bytes bytes = with({0x5A, 0x5A, 0x5A, 0x5A});
    const Opened refused(bytes);
    EXPECT_EQ(refused.status, KIRVO_FILES_DAMAGED);
    EXPECT_EQ(refused.text(KIRVO_FILES_TEXT_REASON), "damaged: bytes of its data are left over");
    const Opened going(bytes, KIRVO_FILES_KEEP_GOING);
    EXPECT_EQ(going.status, KIRVO_FILES_OK);
    EXPECT_TRUE(going.has_note(KIRVO_FILES_NOTE_DAMAGED));
    const Opened good(whole);
    int64_t different = 0; // another decoder may have taken it
    for (uint32_t y = 0; y < 48; ++y)
        for (uint32_t x = 0; x < 64; ++x)
            for (const uint32_t shift : {0u, 8u, 16u})
                different += std::abs(static_cast<int>(going.pixel(x, y) >> shift & 255) -
                                      static_cast<int>(good.pixel(x, y) >> shift & 255));
    EXPECT_LT(different, 2 * 3 * 64 * 48);
}

namespace {

// A grey block of quantisers 16. Codes of DC: four bits, the size itself; of AC: 00 is the end of the
// block, 01 a number of 7 bits, 10 one of 8.
Bytes one_block(const std::string& bits) {
    Bytes bytes = {0xFF, 0xD8, 0xFF, 0xDB, 0, 67, 0};
    bytes.insert(bytes.end(), 64, 16);
    bytes.insert(bytes.end(), {0xFF, 0xC0, 0, 11, 8, 0, 8, 0, 8, 1, 1, 0x11, 0});
    bytes.insert(bytes.end(), {0xFF, 0xC4, 0, 31, 0x00, 0, 0, 0, 12, 0, 0, 0, 0, 0, 0,  0, 0,
                               0,    0,    0, 0,  0,    1, 2, 3, 4,  5, 6, 7, 8, 9, 10, 11});
    bytes.insert(bytes.end(), {0xFF, 0xC4, 0, 22, 0x10, 0, 3, 0, 0, 0,    0,    0,
                               0,    0,    0, 0,  0,    0, 0, 0, 0, 0x00, 0x07, 0x08});
    bytes.insert(bytes.end(), {0xFF, 0xDA, 0, 8, 1, 1, 0, 0, 63, 0});
    for (size_t at = 0; at < bits.size(); at += 8) {
        std::string byte = bits.substr(at, 8);
        byte.resize(8, '1');
        bytes.push_back(static_cast<uint8_t>(std::stoi(byte, nullptr, 2)));
    }
    bytes.insert(bytes.end(), {0xFF, 0xD9});
    return bytes;
}

} // namespace

TEST(Jpeg, numbers_beyond_any_picture_are_damage) {
    const std::string end = "00";
    for (const std::string& bits : {"0111"
                                    "1001111" +
                                        end, // 79 steps of 16 above grey
                                    "0111"
                                    "0110000" +
                                        end, // and below
                                    "0000"
                                    "01"
                                    "1000000" +
                                        end}) // 64 steps of a wave
        EXPECT_EQ(Opened(one_block(bits)).status, KIRVO_FILES_OK) << bits;
    for (const std::string& bits : {"0111"
                                    "1100000" +
                                        end, // 96 steps
                                    "0111"
                                    "0011111" +
                                        end,
                                    "0000"
                                    "10"
                                    "10000000" +
                                        end}) {
        const Opened refused(one_block(bits));
        EXPECT_EQ(refused.status, KIRVO_FILES_DAMAGED) << bits;
        EXPECT_EQ(refused.text(KIRVO_FILES_TEXT_REASON), "damaged: at most 0 of 8 rows are whole");
        EXPECT_EQ(Opened(one_block(bits), KIRVO_FILES_KEEP_GOING).status, KIRVO_FILES_OK);
    }
}

TEST(Jpeg, what_another_decoder_answers_is_verified) {
    for (const double beyond : {0.0, 700.0}) {
        const auto level = [&](uint32_t, uint32_t x, uint32_t y) {
            return 50.0 + 2 * x + y + (x >= 16 && y >= 16 ? beyond : 0);
        };
        const Bytes files[] = {DeepJpeg(61, 47, 1, 1, 1, 8).write(level),
                               DeepJpeg(61, 47, 1, 1, 1, 8).write_progressive(level)};
        for (const Bytes& bytes : files) {
            const Opened opened(bytes);
            EXPECT_EQ(opened.status, beyond != 0 ? KIRVO_FILES_DAMAGED : KIRVO_FILES_OK)
                << opened.text(KIRVO_FILES_TEXT_REASON);
            const Opened going(bytes, KIRVO_FILES_KEEP_GOING);
            ASSERT_EQ(going.status, KIRVO_FILES_OK);
            EXPECT_EQ(going.has_note(KIRVO_FILES_NOTE_DAMAGED), beyond != 0);
            EXPECT_NEAR(going.pixel(9, 5) & 255, 50 + 18 + 5, 2);
        }
    }
}

TEST(Jpeg, a_height_behind_the_first_scan_counts) {
    const Bytes whole = baseline(50, 40, 3, 2);
    Bytes open_height = whole;
    const size_t frame = segment(whole, 0xC0);
    open_height[frame + 5] = open_height[frame + 6] = 0;
    Bytes told = open_height;
    told.insert(told.end() - 2, {0xFF, 0xDC, 0, 4, 0, 40});
    const Opened opened(told), other(whole);
    ASSERT_EQ(opened.status, KIRVO_FILES_OK) << opened.text(KIRVO_FILES_TEXT_REASON);
    EXPECT_EQ(opened.about.height, 40u);
    EXPECT_EQ(opened.about.wholeRows, 40u);
    for (uint32_t y = 0; y < 40; ++y)
        for (uint32_t x = 0; x < 50; ++x)
            EXPECT_EQ(opened.pixel(x, y), other.pixel(x, y));
    told[told.size() - 3] = 56; // more than there is
    EXPECT_EQ(Opened(told).status, KIRVO_FILES_ENDS_EARLY);
    told[told.size() - 3] = 20;
    EXPECT_EQ(Opened(told).status, KIRVO_FILES_DAMAGED) << "data is left over";
    told[told.size() - 3] = 0;
    EXPECT_NE(Opened(told).status, KIRVO_FILES_OK);
    const Opened untold(open_height);
    EXPECT_EQ(untold.status, KIRVO_FILES_ENDS_EARLY);
    EXPECT_EQ(untold.text(KIRVO_FILES_TEXT_REASON),
              "ends early: its height would follow its first scan");
}

TEST(Jpeg, one_behind_other_bytes_may_be_a_part_of_another_file) {
    Bytes bytes = baseline(24, 16, 3, 1);
    bytes.insert(bytes.begin(), {'8', 'B', 'P', 'S', 0, 1});
    const Opened refused(bytes);
    EXPECT_EQ(refused.status, KIRVO_FILES_NOT_A_PICTURE);
    EXPECT_EQ(refused.text(KIRVO_FILES_TEXT_REASON),
              "not a picture of a known format: a JPEG begins in it, behind 6 other bytes");
}

TEST(Jpeg, a_quantiser_that_is_missing_is_damage) {
    Bytes bytes = baseline(24, 16, 3, 1);
    for (size_t at = 0; at + 1 < bytes.size(); ++at)
        if (bytes[at] == 0xFF && bytes[at + 1] == 0xC0)
            bytes[at + 12] = 3; // of the first component
    const Opened refused(bytes);
    EXPECT_EQ(refused.status, KIRVO_FILES_DAMAGED);
    EXPECT_EQ(refused.text(KIRVO_FILES_TEXT_REASON), "a quantisation table is missing");
}

TEST(Jpeg, lying_headers_and_cuts_anywhere_are_answered) {
    const Bytes whole = baseline(24, 16, 4, 4);
    for (size_t size = 0; size < whole.size(); ++size) {
        const Opened cut(Bytes(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(size)));
        if (size < whole.size() - 3) {
            EXPECT_NE(cut.status, KIRVO_FILES_OK) << size;
        }
    }
    for (size_t at = 2; at < segment(whole, 0xDA) + 14; ++at)
        for (uint8_t value : {0x00, 0x01, 0x7F, 0xFF}) {
            Bytes lying = whole;
            lying[at] = value;
            const Opened opened(lying, KIRVO_FILES_KEEP_GOING); // no crash, no leak
        }
}
