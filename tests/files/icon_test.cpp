// Icons and cursors.
#include "files/bmp_builder.hpp"

using namespace kirvo_test;

namespace {

// An icon's bitmap: no file header, twice the height, a mask of a bit a pixel behind the pixels.
Bytes icon_dib(uint32_t bits, const std::vector<uint32_t>& palette, const Bytes& pixels,
               const Bytes& mask, uint32_t size = 4) {
    Bytes bytes;
    add32(bytes, {40, size, 2 * size, 1 | bits << 16, 0, 0, 0, 0, 0, 0});
    for (uint32_t colour : palette)
        add32(bytes, {colour});
    bytes.insert(bytes.end(), pixels.begin(), pixels.end());
    bytes.insert(bytes.end(), mask.begin(), mask.end());
    return bytes;
}

Bytes icon(const std::vector<Bytes>& images, uint32_t type = 1) {
    Bytes file;
    add16(file, {0, type, static_cast<uint32_t>(images.size())});
    auto offset = static_cast<uint32_t>(6 + 16 * images.size());
    for (const Bytes& image : images) {
        add32(file, {0x00000404, 0x00010000});
        add32(file, {static_cast<uint32_t>(image.size()), offset});
        offset += static_cast<uint32_t>(image.size());
    }
    for (const Bytes& image : images)
        file.insert(file.end(), image.begin(), image.end());
    return file;
}

// The left column of each row is transparent.
const Bytes left_mask = {0x80, 0, 0, 0, 0x80, 0, 0, 0, 0x80, 0, 0, 0, 0x80, 0, 0, 0};

} // namespace

TEST(Icon, a_mask_becomes_alpha) {
    const Bytes pixels =
        packed_rows(4, 4, 24, false, [](uint32_t x, uint32_t y) { return 0x101010 * x + y; });
    const Bytes file = icon({icon_dib(24, {}, pixels, left_mask)});
    const Opened kept(file, KIRVO_FILES_KEEP_ALPHA);
    ASSERT_EQ(kept.status, KIRVO_FILES_OK) << kept.text(KIRVO_FILES_TEXT_REASON);
    EXPECT_EQ(kept.bits(), 32u);
    EXPECT_EQ(kept.pixel(0, 2) >> 24, 0u);
    EXPECT_EQ(kept.pixel(3, 2), 0xFF303032u);
    const Opened flat(file);
    EXPECT_EQ(flat.bits(), 24u);
    EXPECT_EQ(flat.pixel(0, 2), 0xFFFFFFu);
    EXPECT_EQ(flat.pixel(3, 2), 0x303032u);
}

TEST(Icon, palettes_of_one_four_and_eight_bits) {
    for (uint32_t bits : {1u, 4u, 8u}) {
        std::vector<uint32_t> palette(size_t{1} << bits, 0x0000FF);
        palette[1] = 0x00FF00;
        const Bytes pixels =
            packed_rows(4, 4, bits, false, [](uint32_t x, uint32_t y) { return (x + y) % 2; });
        const Opened opened(icon({icon_dib(bits, palette, pixels, Bytes(16))}));
        ASSERT_EQ(opened.status, KIRVO_FILES_OK);
        EXPECT_EQ(opened.pixel(0, 0), 0x0000FFu);
        EXPECT_EQ(opened.pixel(1, 0), 0x00FF00u);
    }
}

TEST(Icon, alpha_of_32_bits_counts_more_than_the_mask) {
    const Bytes pixels = packed_rows(
        4, 4, 32, false, [](uint32_t x, uint32_t) { return (x * 80) << 24 | 0xABCDEF; });
    const Opened kept(icon({icon_dib(32, {}, pixels, left_mask)}), KIRVO_FILES_KEEP_ALPHA);
    EXPECT_EQ(kept.pixel(2, 0), 0xA0ABCDEFu);
    EXPECT_EQ(kept.pixel(0, 0) >> 24, 0u);
}

TEST(Icon, the_largest_image_is_taken_or_the_one_that_is_asked_for) {
    const auto of = [](uint32_t size, uint32_t colour) {
        const Bytes pixels =
            packed_rows(size, size, 24, false, [&](uint32_t, uint32_t) { return colour; });
        return icon_dib(24, {}, pixels, Bytes(4 * size), size);
    };
    const Bytes file = icon({of(4, 0x111111), of(8, 0x222222), of(2, 0x333333)});
    const Opened best(file);
    EXPECT_EQ(best.about.width, 8u);
    EXPECT_EQ(best.about.frames, 3u);
    EXPECT_EQ(best.about.frame, 2u);
    EXPECT_EQ(Opened(file, 0, 3).pixel(0, 0), 0x333333u);
    EXPECT_EQ(Opened(file, 0, 4).status, KIRVO_FILES_NO_FRAME);
}

TEST(Icon, a_png_inside_is_read) {
    const Picture picture(9, 9, 32);
    const Saved png = save(picture.dib, as(KIRVO_FILES_PNG, KIRVO_FILES_WITH_ALPHA));
    ASSERT_EQ(png.status, KIRVO_FILES_OK);
    for (uint32_t type : {1u, 2u}) {
        const Opened opened(icon({png.bytes}, type), KIRVO_FILES_KEEP_ALPHA);
        ASSERT_EQ(opened.status, KIRVO_FILES_OK) << opened.text(KIRVO_FILES_TEXT_REASON);
        EXPECT_EQ(opened.about.format, type == 1 ? KIRVO_FILES_ICON : KIRVO_FILES_CURSOR);
        EXPECT_EQ(opened.pixel(3, 4), Picture::colour(3, 4, 32));
    }
}
