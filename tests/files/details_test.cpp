// Single fields of files put together by hand, and what must be told and shown of each.
#include "files/opened.hpp"
#include "support/dib_builder.hpp"

#include <algorithm>

using namespace kirvo_test;

namespace {

void add(Bytes& to, const Bytes& more) { to.insert(to.end(), more.begin(), more.end()); }
void add_words(Bytes& to, const char* words) {
    to.insert(to.end(), words, words + std::strlen(words));
}

Bytes jpeg(uint32_t bits = 24) {
    const Picture picture(40, 24, bits);
    return save(picture.dib, as(KIRVO_FILES_JPEG)).bytes;
}

// Where a JPEG's segments begin.
std::vector<size_t> segments(const Bytes& bytes, uint8_t marker) {
    std::vector<size_t> found;
    for (size_t at = 2; at + 4 <= bytes.size() && bytes[at] == 0xFF;
         at += 2 + (size_t{bytes[at + 2]} << 8 | bytes[at + 3])) {
        if (bytes[at + 1] == marker)
            found.push_back(at);
        if (bytes[at + 1] == 0xDA)
            break;
    }
    return found;
}
Bytes segment(uint8_t marker, const Bytes& body) {
    const auto size = static_cast<uint32_t>(body.size() + 2);
    Bytes all = {0xFF, marker, static_cast<uint8_t>(size >> 8), static_cast<uint8_t>(size)};
    add(all, body);
    return all;
}
Bytes with_segment(Bytes bytes, const Bytes& added) {
    bytes.insert(bytes.begin() + 2, added.begin(), added.end());
    return bytes;
}

// A part of an ICC profile in a JPEG.
Bytes profile_part(uint8_t number, uint8_t of, const Bytes& body) {
    Bytes all;
    add_words(all, "ICC_PROFILE");
    add(all, {0, number, of});
    add(all, body);
    return segment(0xE2, all);
}

// A TIFF file: entries, then the pixels, then the values that are longer than four bytes.
class TiffFile {
  public:
    explicit TiffFile(bool little = true) : little_(little) {}
    void number(uint32_t tag, uint32_t type, uint32_t value) {
        entries_.push_back({tag, type, 1, number_bytes(value, type == 3 ? 2 : 4)});
    }
    void bytes(uint32_t tag, uint32_t type, uint32_t count, const Bytes& value) {
        entries_.push_back({tag, type, count, value});
    }
    void words(uint32_t tag, const std::string& text) {
        Bytes value(text.begin(), text.end());
        value.push_back(0);
        bytes(tag, 2, static_cast<uint32_t>(value.size()), value);
    }
    Bytes file(uint32_t width, uint32_t height, uint32_t model, const Bytes& pixels) {
        number(256, 4, width);
        number(257, 4, height);
        number(259, 3, 1);
        number(262, 3, model);
        const size_t pixels_at = 8 + 2 + 12 * (entries_.size() + 3) + 4;
        number(273, 4, static_cast<uint32_t>(pixels_at));
        number(278, 4, height);
        number(279, 4, static_cast<uint32_t>(pixels.size()));
        std::sort(entries_.begin(), entries_.end(),
                  [](const Entry& a, const Entry& b) { return a.tag < b.tag; });
        Bytes all =
            little_ ? Bytes{'I', 'I', 42, 0, 8, 0, 0, 0} : Bytes{'M', 'M', 0, 42, 0, 0, 0, 8};
        Bytes behind = pixels;
        add(all, number_bytes(static_cast<uint32_t>(entries_.size()), 2));
        for (const Entry& entry : entries_) {
            add(all, number_bytes(entry.tag, 2));
            add(all, number_bytes(entry.type, 2));
            add(all, number_bytes(entry.count, 4));
            Bytes value = entry.value;
            if (value.size() > 4) {
                behind.resize((behind.size() + 1) / 2 * 2);
                value = number_bytes(static_cast<uint32_t>(pixels_at + behind.size()), 4);
                add(behind, entry.value);
            }
            value.resize(4);
            add(all, value);
        }
        add(all, {0, 0, 0, 0});
        add(all, behind);
        return all;
    }
    Bytes number_bytes(uint32_t value, uint32_t count) const {
        Bytes result;
        for (uint32_t i = 0; i < count; ++i)
            result.push_back(static_cast<uint8_t>(value >> 8 * (little_ ? i : count - 1 - i)));
        return result;
    }

  private:
    struct Entry {
        uint32_t tag, type, count;
        Bytes value;
    };
    bool little_;
    std::vector<Entry> entries_;
};

// Pixels of two bits as a GIF packs them, the table of codes begun anew before each.
Bytes gif_pixels(const std::vector<uint32_t>& pixels) {
    Bytes packed;
    uint32_t held = 0, count = 0;
    const auto put = [&](uint32_t code) {
        held |= code << count;
        for (count += 3; count >= 8; count -= 8, held >>= 8)
            packed.push_back(static_cast<uint8_t>(held));
    };
    for (uint32_t pixel : pixels) {
        put(4);
        put(pixel);
    }
    put(5);
    packed.push_back(static_cast<uint8_t>(held));
    EXPECT_LT(packed.size(), 256u);
    Bytes all = {2, static_cast<uint8_t>(packed.size())};
    add(all, packed);
    all.push_back(0);
    return all;
}
constexpr uint32_t gif_colours[] = {0x102030, 0xFF0000, 0x00FF00, 0x0000FF};
Bytes gif_table() {
    Bytes table;
    for (uint32_t colour : gif_colours)
        add(table, {static_cast<uint8_t>(colour >> 16), static_cast<uint8_t>(colour >> 8),
                    static_cast<uint8_t>(colour)});
    return table;
}
Bytes gif_head(uint32_t width, uint32_t height, bool table) {
    Bytes all = {'G', 'I', 'F', '8', '9', 'a'};
    add16(all, {width, height});
    add(all, {static_cast<uint8_t>(table ? 0x81 : 0x01), 0, 0});
    if (table)
        add(all, gif_table());
    return all;
}
Bytes gif_frame(uint32_t width, uint32_t height, uint8_t flags,
                const std::vector<uint32_t>& pixels) {
    Bytes all = {0x2C};
    add16(all, {0, 0, width, height});
    all.push_back(flags);
    if ((flags & 0x80) != 0)
        add(all, gif_table());
    add(all, gif_pixels(pixels));
    return all;
}

Bytes targa(uint32_t type, uint32_t bits, uint32_t map_bits, const Bytes& rest, uint8_t alpha = 0) {
    Bytes all = {0, static_cast<uint8_t>(map_bits != 0), static_cast<uint8_t>(type)};
    add16(all, {0, map_bits != 0 ? 2u : 0u});
    all.push_back(static_cast<uint8_t>(map_bits));
    add16(all, {0, 0, 2, 1});
    add(all, {static_cast<uint8_t>(bits), alpha});
    add(all, rest);
    return all;
}

} // namespace

TEST(Handover, a_picture_comes_unlocked) {
    const Opened opened(jpeg());
    ASSERT_EQ(opened.status, KIRVO_FILES_OK);
    EXPECT_TRUE(is_unlocked(opened.dib));
}

TEST(BmpDetails, a_header_that_is_cut_is_told_as_a_header) {
    const Picture picture(5, 3);
    const Bytes whole = save(picture.dib, as(KIRVO_FILES_BMP)).bytes;
    const Opened none(Bytes(whole.begin(), whole.begin() + 20));
    EXPECT_EQ(none.status, KIRVO_FILES_ENDS_EARLY);
    for (ptrdiff_t size = 21; size < 30; ++size) // up to the depth, which is needed
        EXPECT_EQ(Opened(Bytes(whole.begin(), whole.begin() + size)).text(KIRVO_FILES_TEXT_REASON),
                  none.text(KIRVO_FILES_TEXT_REASON))
            << size;
}

TEST(JpegDetails, all_four_quantisation_tables_are_told) {
    Bytes body = {3};
    for (uint8_t i = 0; i < 64; ++i)
        body.push_back(static_cast<uint8_t>(i + 1));
    const Opened opened(with_segment(jpeg(), segment(0xDB, body)));
    ASSERT_EQ(opened.status, KIRVO_FILES_OK);
    const Bytes tables = opened.data(KIRVO_FILES_DATA_QUANTISERS);
    ASSERT_EQ(tables.size(), 3u * 128);
    EXPECT_EQ(tables[256], 1);        // the top left corner comes first
    EXPECT_EQ(tables[256 + 126], 64); // the bottom right one last
}

TEST(JpegDetails, a_profile_in_parts_is_whole_or_none) {
    const Bytes first = {1, 2, 3}, second = {4, 5};
    const Bytes turned_round =
        with_segment(with_segment(jpeg(), profile_part(1, 2, first)), profile_part(2, 2, second));
    EXPECT_EQ(Opened(turned_round).data(KIRVO_FILES_DATA_ICC), (Bytes{1, 2, 3, 4, 5}));
    EXPECT_TRUE(
        Opened(with_segment(jpeg(), profile_part(1, 2, first))).data(KIRVO_FILES_DATA_ICC).empty());
    EXPECT_TRUE(Opened(with_segment(jpeg(), profile_part(2, 2, second)))
                    .data(KIRVO_FILES_DATA_ICC)
                    .empty());
}

TEST(JpegDetails, the_highest_huffman_tables_serve_as_well) {
    Bytes bytes = jpeg(8); // one component with the tables 0
    bytes[segments(bytes, 0xC0).at(0) + 1] = 0xC1;
    for (size_t table : segments(bytes, 0xC4)) {
        const size_t end = table + 2 + bytes[table + 2] * 256u + bytes[table + 3];
        for (size_t at = table + 4; at < end;) {
            if ((bytes[at] & 15) == 0)
                bytes[at] |= 3;
            size_t symbols = 0;
            for (size_t i = 1; i <= 16; ++i)
                symbols += bytes[at + i];
            at += 17 + symbols;
        }
    }
    bytes[segments(bytes, 0xDA).at(0) + 6] = 0x33;
    const Opened opened(bytes), plain(jpeg(8));
    ASSERT_EQ(opened.status, KIRVO_FILES_OK) << opened.text(KIRVO_FILES_TEXT_REASON);
    for (uint32_t y = 0; y < 24; y += 5)
        for (uint32_t x = 0; x < 40; x += 3)
            EXPECT_NEAR(static_cast<int>(opened.pixel(x, y) & 255),
                        static_cast<int>(plain.pixel(x, y) & 255), 2);
}

#ifndef _WIN32 // where another encoder has a hand in it
TEST(JpegDetails, quantisers_of_sixteen_bits_go_along) {
    Bytes bytes = jpeg(8);
    const size_t table = segments(bytes, 0xDB).at(0);
    Bytes body = {0x10};
    for (size_t i = 0; i < 64; ++i)
        add(body, {0, bytes[table + 5 + i]});
    body[1 + 2 * 63] = 1; // 256 more for the last coefficient, which the picture has not
    bytes.erase(bytes.begin() + static_cast<ptrdiff_t>(table),
                bytes.begin() + static_cast<ptrdiff_t>(table) + 2 + 67);
    const Bytes wide = segment(0xDB, body);
    bytes.insert(bytes.begin() + static_cast<ptrdiff_t>(table), wide.begin(), wide.end());
    bytes[segments(bytes, 0xC0).at(0) + 1] = 0xC1;
    Bytes another = {1}; // which no component has
    another.resize(65, 10);
    for (const Bytes& file : {bytes, with_segment(bytes, segment(0xDB, another))}) {
        const Opened source(file);
        ASSERT_EQ(source.status, KIRVO_FILES_OK) << source.text(KIRVO_FILES_TEXT_REASON);
        Bytes tables = source.data(KIRVO_FILES_DATA_QUANTISERS);
        tables.resize(128);
        EXPECT_EQ(tables[127], 1);
        const Saved saved = save(source.dib, as(KIRVO_FILES_JPEG), source.file);
        ASSERT_EQ(saved.status, KIRVO_FILES_OK);
        Bytes kept = Opened(saved.bytes).data(KIRVO_FILES_DATA_QUANTISERS);
        kept.resize(128);
        EXPECT_EQ(kept, tables);
    }
}
#endif

TEST(JpegDetails, dots_an_inch_have_two_bytes_in_each_direction) {
    const Picture picture(8, 8);
    KirvoFilesSaveOptions options = as(KIRVO_FILES_JPEG);
    options.dpiAcross = 600;
    options.dpiDown = 1200;
    const Opened opened(save(picture.dib, options).bytes);
    EXPECT_EQ(opened.about.dpiAcross, 600);
    EXPECT_EQ(opened.about.dpiDown, 1200);
}

// A profile of one tag: the description, in UTF-16.
TEST(MetadataDetails, the_name_of_a_profile_is_told) {
    Bytes profile(128);
    const auto add32_high = [&](uint32_t value) {
        for (int shift : {24, 16, 8, 0})
            profile.push_back(static_cast<uint8_t>(value >> shift));
    };
    std::memcpy(profile.data() + 16, "RGB ", 4);
    add32_high(1);
    add_words(profile, "desc");
    add32_high(144);
    add32_high(28 + 10);
    add_words(profile, "mluc");
    for (uint32_t value : {0u, 1u, 12u, 0x656E5553u, 10u, 28u})
        add32_high(value);
    add(profile, {0, 'A', 0, 'b', 0x30, 0x42, 0, 'c', 0, 'd'}); // one letter is no Latin one
    const Opened opened(with_segment(jpeg(), profile_part(1, 1, profile)));
    EXPECT_EQ(opened.text(KIRVO_FILES_TEXT_PROFILE), "Ab?cd");
}

namespace {
// EXIF whose one value of interest is the aperture.
std::string exposure_of(uint32_t type, uint32_t count, const Bytes& value) {
    Bytes exif = {'I', 'I', 42, 0, 8, 0, 0, 0};
    add16(exif, {1, 0x8769, 4});
    add32(exif, {1, 26, 0});
    add16(exif, {1, 0x829D, type});
    add32(exif, {count});
    if (value.size() > 4) {
        add32(exif, {44, 0});
        add(exif, value);
    } else {
        add(exif, value);
        exif.resize(48);
    }
    Bytes body;
    add_words(body, "Exif");
    add(body, {0, 0});
    add(body, exif);
    return Opened(with_segment(jpeg(), segment(0xE1, body))).text(KIRVO_FILES_TEXT_EXPOSURE);
}
} // namespace

TEST(MetadataDetails, numbers_of_every_kind_are_understood) {
    EXPECT_EQ(exposure_of(5, 1, {28, 0, 0, 0, 10, 0, 0, 0}), "f/2.8");
    EXPECT_EQ(exposure_of(10, 1, {28, 0, 0, 0, 10, 0, 0, 0}), "f/2.8");
    EXPECT_EQ(exposure_of(3, 1, {4, 0}), "f/4");
    EXPECT_EQ(exposure_of(2, 2, {'4', 0}), "");                 // a text
    EXPECT_EQ(exposure_of(99, 1, {4, 0, 0, 0}), "");            // nobody knows
    EXPECT_EQ(exposure_of(5, 1, {4, 0, 0, 0, 0, 0, 0, 0}), ""); // divided by 0
}

// Two rows of two bits a pixel: 0x1B 0x40, 0xE4 0x80.
static void expect_four_greys(const Opened& opened) {
    ASSERT_EQ(opened.status, KIRVO_FILES_OK) << opened.text(KIRVO_FILES_TEXT_REASON);
    const uint32_t levels[2][5] = {{0, 1, 2, 3, 1}, {3, 2, 1, 0, 2}};
    for (uint32_t y = 0; y < 2; ++y)
        for (uint32_t x = 0; x < 5; ++x)
            EXPECT_EQ(opened.pixel(x, y), levels[y][x] * 0x555555);
    EXPECT_EQ(opened.bits(), 4u);
}

TEST(PngDetails, greys_of_two_bits_are_read) {
    expect_four_greys(Opened(Bytes{
        0x89, 0x50, 0x4E, 0x47, 0x0D, 0x0A, 0x1A, 0x0A, 0,    0,    0,    0x0D, 0x49, 0x48, 0x44,
        0x52, 0,    0,    0,    5,    0,    0,    0,    2,    2,    0,    0,    0,    0,    0xFF,
        0xB1, 0x51, 0x20, 0,    0,    0,    0x11, 0x49, 0x44, 0x41, 0x54, 0x78, 1,    1,    6,
        0,    0xF9, 0xFF, 0,    0x1B, 0x40, 0,    0xE4, 0x80, 3,    0xD5, 1,    0xC0, 0xFF, 0xED,
        0x45, 0x5D, 0,    0,    0,    0,    0x49, 0x45, 0x4E, 0x44, 0xAE, 0x42, 0x60, 0x82}));
}

#ifndef _WIN32 // whose systems do not all know such pictures
TEST(TiffDetails, pixels_of_two_bits_are_read) {
    TiffFile grey;
    grey.number(258, 3, 2);
    expect_four_greys(Opened(grey.file(5, 2, 1, {0x1B, 0x40, 0xE4, 0x80})));
    TiffFile colours;
    const Bytes twos = {2, 0, 2, 0, 2, 0};
    colours.bytes(258, 3, 3, twos);
    colours.number(277, 3, 3);
    const Opened rgb(colours.file(2, 1, 2, {0x1B, 0x90})); // 0 1 2, 3 2 1
    ASSERT_EQ(rgb.status, KIRVO_FILES_OK) << rgb.text(KIRVO_FILES_TEXT_REASON);
    EXPECT_EQ(rgb.pixel(0, 0), 0x0055AAu);
    EXPECT_EQ(rgb.pixel(1, 0), 0xFFAA55u);
}
#endif

TEST(TiffDetails, what_it_says_of_its_camera_becomes_exif_in_either_byte_order) {
    for (bool little : {true, false}) {
        TiffFile file(little);
        file.number(258, 3, 8);
        file.words(271, "Somebody");
        file.words(272, "No. 1");
        const Opened opened(file.file(2, 1, 1, {10, 20}));
        ASSERT_EQ(opened.status, KIRVO_FILES_OK) << opened.text(KIRVO_FILES_TEXT_REASON);
        EXPECT_EQ(opened.text(KIRVO_FILES_TEXT_CAMERA), "Somebody No. 1");
        const Saved saved = save(opened.dib, as(KIRVO_FILES_JPEG), opened.file);
        EXPECT_EQ(Opened(saved.bytes).text(KIRVO_FILES_TEXT_CAMERA), "Somebody No. 1") << little;
    }
}

TEST(PngDetails, only_an_interlaced_file_is_told_as_such) {
    const Picture picture(8, 8);
    Bytes bytes = save(picture.dib, as(KIRVO_FILES_PNG)).bytes;
    const Opened plain(bytes);
    EXPECT_EQ(plain.about.flags & KIRVO_FILES_PROGRESSIVE, 0u);
    EXPECT_EQ(plain.text(KIRVO_FILES_TEXT_VARIANT), "true colour, 8 bits a channel");
    bytes[28] = 1; // the headers alone are looked at
    KirvoFile file = nullptr;
    KirvoFilesDescription about = {};
    about.size = sizeof about;
    KirvoFilesInfoMemory(bytes.data(), static_cast<uint32_t>(bytes.size()), nullptr, &file);
    KirvoFilesDescribe(file, &about);
    EXPECT_NE(about.flags & KIRVO_FILES_PROGRESSIVE, 0u);
    KirvoFilesClose(file);
}

TEST(GifDetails, rows_that_are_interlaced_come_to_their_places) {
    std::vector<uint32_t> stored;
    for (uint32_t y : {0u, 8u, 4u, 2u, 6u, 1u, 3u, 5u, 7u, 9u})
        stored.push_back(y % 4);
    Bytes bytes = gif_head(1, 10, true);
    add(bytes, gif_frame(1, 10, 0x40, stored));
    bytes.push_back(0x3B);
    const Opened opened(bytes);
    ASSERT_EQ(opened.status, KIRVO_FILES_OK) << opened.text(KIRVO_FILES_TEXT_REASON);
    EXPECT_NE(opened.about.flags & KIRVO_FILES_PROGRESSIVE, 0u);
    for (uint32_t y = 0; y < 10; ++y)
        EXPECT_EQ(opened.pixel(0, y), gif_colours[y % 4]) << y;
}

TEST(GifDetails, one_colour_may_be_transparent) {
    Bytes bytes = gif_head(4, 1, true);
    add(bytes, {0x21, 0xF9, 4, 1, 0, 0, 2, 0}); // the third
    add(bytes, gif_frame(4, 1, 0, {0, 1, 2, 3}));
    bytes.push_back(0x3B);
    const Opened over(bytes, KIRVO_FILES_BACKGROUND, 0, 0xEFCDAB);
    ASSERT_EQ(over.status, KIRVO_FILES_OK) << over.text(KIRVO_FILES_TEXT_REASON);
    for (uint32_t x : {0u, 1u, 3u})
        EXPECT_EQ(over.pixel(x, 0), gif_colours[x]);
    EXPECT_EQ(over.pixel(2, 0), 0xABCDEFu);
    const Opened kept(bytes, KIRVO_FILES_KEEP_ALPHA);
    EXPECT_EQ(kept.pixel(1, 0), 0xFFFF0000u);
    EXPECT_EQ(kept.pixel(2, 0) >> 24, 0u);
}

TEST(GifDetails, a_frame_may_have_its_own_colours_and_frames_are_counted) {
    Bytes bytes = gif_head(2, 1, false);
    add(bytes, gif_frame(2, 1, 0x81, {1, 3}));
    Bytes one = bytes;
    one.push_back(0x3B);
    const Opened alone(one);
    ASSERT_EQ(alone.status, KIRVO_FILES_OK) << alone.text(KIRVO_FILES_TEXT_REASON);
    EXPECT_EQ(alone.about.frames, 1u);
    EXPECT_FALSE(alone.has_note(KIRVO_FILES_NOTE_FRAMES));
    EXPECT_EQ(alone.pixel(0, 0), gif_colours[1]);
    EXPECT_EQ(alone.pixel(1, 0), gif_colours[3]);
    for (uint32_t frame : {0u, 2u})
        add(bytes, gif_frame(2, 1, 0x81, {frame, frame}));
    bytes.push_back(0x3B);
    const Opened many(bytes);
    EXPECT_EQ(many.about.frames, 3u);
    EXPECT_TRUE(many.has_note(KIRVO_FILES_NOTE_FRAMES));
    EXPECT_EQ(many.pixel(0, 0), gif_colours[1]); // the first
}

TEST(TargaDetails, palettes_have_indices_and_entries_of_certain_sizes) {
    EXPECT_EQ(Opened(targa(1, 8, 24, {1, 2, 3, 4, 5, 6, 0, 1})).pixel(1, 0), 0x060504u);
    Bytes rest(20);
    add_words(rest, "TRUEVISION-XFILE."); // nothing else can be meant
    rest.push_back(0);
    for (uint32_t map_bits : {8u, 12u})
        EXPECT_EQ(Opened(targa(1, 8, map_bits, rest)).status, KIRVO_FILES_UNSUPPORTED);
    for (uint32_t bits : {4u, 24u})
        EXPECT_EQ(Opened(targa(1, bits, 24, rest)).status, KIRVO_FILES_UNSUPPORTED);
}

TEST(TargaDetails, alpha_that_is_nowhere_is_opaque) {
    const Bytes bytes = targa(2, 32, 0, {30, 20, 10, 0, 60, 50, 40, 0}, 8);
    const Opened over(bytes, KIRVO_FILES_BACKGROUND, 0, 0xFFFFFF);
    ASSERT_EQ(over.status, KIRVO_FILES_OK);
    EXPECT_EQ(over.pixel(0, 0) & 0xFFFFFF, 0x0A141Eu);
    EXPECT_EQ(over.about.flags & KIRVO_FILES_HAS_ALPHA, 0u);
    const Opened kept(bytes, KIRVO_FILES_KEEP_ALPHA);
    EXPECT_EQ(kept.bits(), over.bits()); // as every picture without alpha
    EXPECT_EQ(kept.pixel(1, 0), over.pixel(1, 0));
    const Opened some(targa(2, 32, 0, {30, 20, 10, 0, 60, 50, 40, 255}, 8), KIRVO_FILES_KEEP_ALPHA);
    EXPECT_EQ(some.pixel(1, 0), 0xFF28323Cu);
    EXPECT_EQ(some.pixel(0, 0) >> 24, 0u);
}

TEST(TargaDetails, indices_of_fewer_bits_than_a_byte_are_saved_as_bytes) {
    for (uint32_t bits : {1u, 4u}) {
        HGLOBAL dib = DibMemAllocEx(11, 2, bits);
        auto* data = static_cast<uint8_t*>(GlobalLock(dib));
        const uint32_t colours = 1u << bits;
        for (uint32_t i = 0; i < colours; ++i)
            for (uint32_t k = 0; k < 3; ++k)
                data[40 + 4 * i + k] = static_cast<uint8_t>(16 * i + 5 * k);
        const auto index = [&](uint32_t x, uint32_t y) { return (3 * x + 5 * y + 1) % colours; };
        const size_t stride = (11 * bits + 31) / 32 * 4;
        for (uint32_t y = 0; y < 2; ++y)
            for (uint32_t x = 0; x < 11; ++x)
                data[40 + 4 * colours + stride * (1 - y) + x * bits / 8] |=
                    static_cast<uint8_t>(index(x, y) << (8 - bits - x * bits % 8));
        GlobalUnlock(dib);
        const Opened opened(save(dib, as(KIRVO_FILES_TARGA)).bytes);
        ASSERT_EQ(opened.status, KIRVO_FILES_OK);
        for (uint32_t y = 0; y < 2; ++y)
            for (uint32_t x = 0; x < 11; ++x)
                EXPECT_EQ(opened.pixel(x, y), (16 * index(x, y) + 10) << 16 |
                                                  (16 * index(x, y) + 5) << 8 | 16 * index(x, y));
        GlobalFree(dib);
    }
}

TEST(FormatDetails, heif_and_avif_are_known_by_their_brands) {
    for (const char* brand : {"heic", "mif1", "avif"}) {
        Bytes bytes = {0, 0, 0, 24};
        add_words(bytes, "ftyp");
        add_words(bytes, brand);
        bytes.resize(64);
        const Opened opened(bytes);
        EXPECT_EQ(opened.about.format, KIRVO_FILES_HEIF) << brand;
        EXPECT_NE(opened.status, KIRVO_FILES_NOT_A_PICTURE);
    }
}
