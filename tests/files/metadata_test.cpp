// EXIF, profiles, XMP, comments and resolution: told, carried, brought up to date. Orientation.
#include "files/opened.hpp"
#include "support/stopwatch.hpp"

using namespace kirvo_test;

namespace {

// EXIF of either byte order.
class ExifWriter {
  public:
    explicit ExifWriter(bool little) : little_(little) {
        bytes = little ? Bytes{'I', 'I', 42, 0, 8, 0, 0, 0} : Bytes{'M', 'M', 0, 42, 0, 0, 0, 8};
    }
    void put(uint32_t value, uint32_t size) {
        for (uint32_t i = 0; i < size; ++i)
            bytes.push_back(static_cast<uint8_t>(value >> 8 * (little_ ? i : size - 1 - i)));
    }
    void entry(uint32_t tag, uint32_t type, uint32_t count, uint32_t value) {
        put(tag, 2);
        put(type, 2);
        put(count, 4);
        if (type == 3 && count == 1) {
            put(value, 2);
            put(0, 2);
        } else {
            put(value, 4);
        }
    }
    Bytes bytes;

  private:
    bool little_;
};

constexpr uint32_t first_at = 8, inner_at = 8 + 2 + 5 * 12 + 4, gps_at = inner_at + 2 + 6 * 12 + 4,
                   values_at = gps_at + 2 + 4 * 12 + 4, second_at = values_at + 120,
                   thumbnail_at = second_at + 2 + 2 * 12 + 4;

Bytes exif(bool little, uint32_t orientation) {
    ExifWriter out(little);
    out.put(5, 2);
    out.entry(0x010F, 2, 6, values_at);     // "Maker"
    out.entry(0x0110, 2, 8, values_at + 8); // "Model X"
    out.entry(0x0112, 3, 1, orientation);
    out.entry(0x8769, 4, 1, inner_at);
    out.entry(0x8825, 4, 1, gps_at);
    out.put(second_at, 4);
    EXPECT_EQ(out.bytes.size(), inner_at);
    out.put(6, 2);
    out.entry(0x829A, 5, 1, values_at + 16); // 1/250 s
    out.entry(0x829D, 5, 1, values_at + 24); // f/2.8
    out.entry(0x8827, 3, 1, 400);
    out.entry(0x9003, 2, 20, values_at + 32); // the date
    out.entry(0xA002, 4, 1, 9999);
    out.entry(0xA003, 3, 1, 8888);
    out.put(0, 4);
    EXPECT_EQ(out.bytes.size(), gps_at);
    out.put(4, 2);
    out.entry(1, 2, 2, little ? 'S' : 'S' << 24);
    out.entry(2, 5, 3, values_at + 56);
    out.entry(3, 2, 2, little ? 'E' : 'E' << 24);
    out.entry(4, 5, 3, values_at + 80);
    out.put(0, 4);
    EXPECT_EQ(out.bytes.size(), values_at);
    const auto text = [&](const char* words, size_t room) {
        const size_t end = out.bytes.size() + room;
        out.bytes.insert(out.bytes.end(), words, words + std::strlen(words));
        out.bytes.resize(end);
    };
    text("Maker", 8);
    text("Model X", 8);
    for (uint32_t number : {1u, 250u, 28u, 10u})
        out.put(number, 4);
    text("2023:05:01 12:30:00", 24);
    for (uint32_t number : {33u, 1u, 30u, 1u, 0u, 1u, 151u, 1u, 15u, 1u, 36u, 1u})
        out.put(number, 4);
    out.bytes.resize(second_at);
    out.put(2, 2);
    out.entry(0x0201, 4, 1, thumbnail_at);
    out.entry(0x0202, 4, 1, 50);
    out.put(0, 4);
    out.bytes.resize(thumbnail_at + 50, 0xAB);
    return out.bytes;
}

// A JPEG of four corners: each of 8 x 8 pixels in another colour, 24 x 16 in all.
Bytes corners(const Bytes& with_exif) {
    const Picture picture(24, 16);
    auto* data = static_cast<uint8_t*>(GlobalLock(picture.dib));
    const uint8_t colours[2][3][3] = {{{200, 0, 0}, {0, 200, 0}, {0, 0, 200}},
                                      {{200, 200, 0}, {0, 200, 200}, {90, 90, 90}}};
    for (uint32_t y = 0; y < 16; ++y)
        for (uint32_t x = 0; x < 24; ++x)
            for (uint32_t i = 0; i < 3; ++i)
                data[40 + 72 * (15 - y) + 3 * x + 2 - i] = colours[y / 8][x / 8][i];
    GlobalUnlock(picture.dib);
    KirvoFile file = nullptr;
    EXPECT_EQ(KirvoFilesSetData(&file, KIRVO_FILES_DATA_EXIF, with_exif.data(),
                                static_cast<uint32_t>(with_exif.size())),
              KIRVO_FILES_OK);
    const Saved saved = save(picture.dib, as(KIRVO_FILES_JPEG, 0, 100), file);
    KirvoFilesClose(file);
    return saved.bytes;
}

// Which of the six fields a pixel belongs to.
uint32_t field(uint32_t colour) {
    const auto on = [&](int shift) { return (colour >> shift & 255) > 130; };
    const uint32_t key = on(16) * 4u + on(8) * 2u + on(0);
    return key == 4 ? 0 : key == 2 ? 1 : key == 1 ? 2 : key == 6 ? 3 : key == 3 ? 4 : 5;
}

// A TIFF file of one grey pixel with an EXIF directory of so many entries, each of a tag of its own,
// the highest first, and with the same value of so many bytes.
Bytes tiff_with_many_entries(uint32_t count, uint32_t value_bytes) {
    constexpr uint32_t inner = 8 + 2 + 10 * 12 + 4;
    ExifWriter out(true);
    out.put(10, 2);
    for (const uint32_t tag : {256, 257, 259, 262, 277, 278})
        out.entry(tag, 3, 1, 1);
    out.entry(258, 3, 1, 8);
    out.entry(273, 4, 1, 0);
    out.entry(279, 4, 1, 1);
    out.entry(0x8769, 4, 1, inner);
    out.put(0, 4);
    EXPECT_EQ(out.bytes.size(), inner);
    out.put(count, 2);
    const uint32_t value_at = inner + 2 + 12 * count + 4;
    for (uint32_t i = count; i-- > 0;)
        out.entry(i, 7, value_bytes, value_bytes > 4 ? value_at : i);
    out.put(0, 4);
    out.bytes.resize(value_at + value_bytes, 0xAB);
    return out.bytes;
}

} // namespace

TEST(Metadata, exif_is_told_in_both_byte_orders) {
    for (bool little : {true, false}) {
        const Opened opened(corners(exif(little, 1)));
        ASSERT_EQ(opened.status, KIRVO_FILES_OK);
        EXPECT_EQ(opened.text(KIRVO_FILES_TEXT_CAMERA), "Maker Model X");
        EXPECT_EQ(opened.text(KIRVO_FILES_TEXT_DATE), "2023-05-01 12:30:00");
        EXPECT_EQ(opened.text(KIRVO_FILES_TEXT_EXPOSURE), "1/250 s, f/2.8, ISO 400");
        EXPECT_EQ(opened.text(KIRVO_FILES_TEXT_PLACE), "-33.50000, 151.26000");
        EXPECT_NEAR(opened.about.latitude, -33.5, 1e-9);
        EXPECT_NEAR(opened.about.longitude, 151.26, 1e-9);
    }
}

TEST(Metadata, every_orientation_is_turned_upright) {
    // Which field of the stored picture (three across, two down) is shown where.
    const std::vector<std::vector<std::vector<uint32_t>>> shown = {
        {{0, 1, 2}, {3, 4, 5}},   {{2, 1, 0}, {5, 4, 3}},   {{5, 4, 3}, {2, 1, 0}},
        {{3, 4, 5}, {0, 1, 2}},   {{0, 3}, {1, 4}, {2, 5}}, {{3, 0}, {4, 1}, {5, 2}},
        {{5, 2}, {4, 1}, {3, 0}}, {{2, 5}, {1, 4}, {0, 3}}};
    for (uint32_t orientation = 1; orientation <= 8; ++orientation) {
        // Saving from a source that was not turned leaves the tag alone.
        const Bytes file = corners(exif(true, orientation));
        const Opened opened(file);
        ASSERT_EQ(opened.status, KIRVO_FILES_OK);
        EXPECT_EQ(opened.about.orientation, orientation);
        const auto& expected = shown[orientation - 1];
        ASSERT_EQ(opened.about.height, 8 * expected.size());
        ASSERT_EQ(opened.about.width, 8 * expected[0].size());
        for (uint32_t y = 0; y < opened.about.height; ++y)
            for (uint32_t x = 0; x < opened.about.width; ++x)
                EXPECT_EQ(field(opened.pixel(x, y)), expected[y / 8][x / 8]) << orientation;
        EXPECT_EQ(opened.has_note(KIRVO_FILES_NOTE_TURNED), orientation != 1);
        const Opened stored(file, KIRVO_FILES_NO_TURN);
        EXPECT_EQ(stored.about.width, 24u);
        EXPECT_EQ(field(stored.pixel(0, 0)), 0u);
    }
}

TEST(Metadata, goes_along_upright_without_thumbnail_and_with_new_sizes) {
    const Opened source(corners(exif(false, 6)));
    for (int32_t format : {KIRVO_FILES_JPEG, KIRVO_FILES_PNG, KIRVO_FILES_TIFF, KIRVO_FILES_WEBP}) {
        if ((KirvoFilesAbilities(format) & KIRVO_FILES_WRITES) == 0)
            continue;
        const Saved saved = save(source.dib, as(format), source.file);
        ASSERT_EQ(saved.status, KIRVO_FILES_OK) << format;
        const Opened again(saved.bytes);
        ASSERT_EQ(again.status, KIRVO_FILES_OK) << format << again.text(KIRVO_FILES_TEXT_REASON);
        EXPECT_EQ(again.about.orientation, 1u) << format;
        EXPECT_EQ(again.about.width, 16u) << format;
        EXPECT_EQ(again.text(KIRVO_FILES_TEXT_CAMERA), "Maker Model X") << format;
        EXPECT_EQ(again.text(KIRVO_FILES_TEXT_DATE), "2023-05-01 12:30:00") << format;
        EXPECT_EQ(again.text(KIRVO_FILES_TEXT_PLACE), "-33.50000, 151.26000") << format;
        const Bytes block = again.data(KIRVO_FILES_DATA_EXIF);
        EXPECT_EQ(std::count(block.begin(), block.end(), 0xAB), 0) << "the thumbnail, " << format;
        const Saved stripped = save(source.dib, as(format, KIRVO_FILES_STRIP), source.file);
        EXPECT_TRUE(Opened(stripped.bytes).data(KIRVO_FILES_DATA_EXIF).empty()) << format;
    }
    for (int32_t format : {KIRVO_FILES_BMP, KIRVO_FILES_TARGA})
        EXPECT_EQ(save(source.dib, as(format), source.file).notes.size(), 1u);
}

TEST(Metadata, sizes_in_exif_become_those_of_the_picture) {
    const Opened source(corners(exif(true, 1)));
    const Picture other(100, 40);
    const Saved saved = save(other.dib, as(KIRVO_FILES_JPEG), source.file);
    const Bytes block = Opened(saved.bytes).data(KIRVO_FILES_DATA_EXIF);
    ASSERT_GT(block.size(), inner_at + 2 + 6 * 12);
    EXPECT_EQ(block[first_at + 2 + 5 * 12] | block[first_at + 2 + 5 * 12 + 1], 0)
        << "no second directory";
    EXPECT_EQ(block[inner_at + 2 + 4 * 12 + 8], 100);
    EXPECT_EQ(block[inner_at + 2 + 5 * 12 + 8], 40);
}

TEST(Metadata, profile_xmp_comment_and_resolution_go_along) {
    Bytes profile(70000);
    for (size_t i = 0; i < profile.size(); ++i)
        profile[i] = static_cast<uint8_t>(i * 7);
    std::memcpy(profile.data() + 16, "RGB ", 4);
    const std::string xmp = "<x:xmpmeta>写真</x:xmpmeta>", comment = "a comment";
    KirvoFile source = nullptr;
    KirvoFilesSetData(&source, KIRVO_FILES_DATA_ICC, profile.data(), 70000);
    KirvoFilesSetData(&source, KIRVO_FILES_DATA_XMP, xmp.data(), static_cast<uint32_t>(xmp.size()));
    KirvoFilesSetData(&source, KIRVO_FILES_DATA_COMMENT, comment.data(), 9);
    const Picture picture(20, 10);
    for (int32_t format : {KIRVO_FILES_JPEG, KIRVO_FILES_PNG, KIRVO_FILES_TIFF, KIRVO_FILES_WEBP}) {
        if ((KirvoFilesAbilities(format) & KIRVO_FILES_WRITES) == 0)
            continue;
        KirvoFilesSaveOptions options = as(format);
        options.dpiAcross = 300;
        options.dpiDown = 150;
        const Saved saved = save(picture.dib, options, source);
        ASSERT_EQ(saved.status, KIRVO_FILES_OK);
        const Opened again(saved.bytes);
        ASSERT_EQ(again.status, KIRVO_FILES_OK) << format;
#ifdef _WIN32
        if (format != KIRVO_FILES_PNG) // how the system hands a PNG's profile out is its affair
#endif
            EXPECT_EQ(again.data(KIRVO_FILES_DATA_ICC), profile) << format;
        const Bytes told = again.data(KIRVO_FILES_DATA_XMP);
        EXPECT_EQ(std::string(told.begin(), told.end()), xmp) << format;
        if (format != KIRVO_FILES_WEBP) {
            EXPECT_NEAR(again.about.dpiAcross, 300, 0.1) << format;
            EXPECT_NEAR(again.about.dpiDown, 150, 0.1) << format;
        }
        if (format == KIRVO_FILES_JPEG) {
            const Bytes words = again.data(KIRVO_FILES_DATA_COMMENT);
            EXPECT_EQ(std::string(words.begin(), words.end()), comment);
        }
    }
    KirvoFilesClose(source);
}

TEST(Metadata, hostile_exif_is_answered_whatever_it_says) {
    const Bytes good = exif(true, 6);
    const Picture picture(8, 8);
    uint32_t seed = 5;
    for (uint32_t round = 0; round < 3000; ++round) {
        Bytes bad = good;
        for (uint32_t i = 0; i < 1 + round % 5; ++i) {
            seed = seed * 1664525 + 1013904223;
            bad[(seed >> 8) % bad.size()] = static_cast<uint8_t>(seed >> 24);
        }
        bad.resize(round % 3 == 0 ? (seed >> 10) % bad.size() : bad.size());
        KirvoFile file = nullptr;
        KirvoFilesSetData(&file, KIRVO_FILES_DATA_EXIF, bad.data(),
                          static_cast<uint32_t>(bad.size()));
        const Saved saved = save(picture.dib, as(KIRVO_FILES_JPEG), file);
        EXPECT_EQ(saved.status, KIRVO_FILES_OK);
        EXPECT_EQ(Opened(saved.bytes).status, KIRVO_FILES_OK);
        KirvoFilesClose(file);
    }
}

TEST(Metadata, exif_of_as_many_entries_as_there_can_be_takes_no_longer_for_each) {
    const Opened few(tiff_with_many_entries(100, 4));
    ASSERT_EQ(few.status, KIRVO_FILES_OK);
    const size_t around = few.data(KIRVO_FILES_DATA_EXIF).size() - 100 * 12;
    const double start = milliseconds();
    const Opened many(tiff_with_many_entries(65535, 4));
    EXPECT_LT(milliseconds() - start, 1000);
    const Bytes exif = many.data(KIRVO_FILES_DATA_EXIF);
    EXPECT_GT(exif.size(), around + 65500 * 12); // all but those that lead elsewhere
}

TEST(Metadata, exif_whose_entries_share_a_value_is_no_longer_than_its_file) {
    const Bytes file = tiff_with_many_entries(5000, 50000);
    const Opened opened(file);
    EXPECT_EQ(opened.status, KIRVO_FILES_OK);
    EXPECT_LT(opened.data(KIRVO_FILES_DATA_EXIF).size(), 2 * file.size());
}
