// Whole streams, byte for byte, against streams worked out step by step.

#include "jpeg/encoding.hpp"

using namespace kirvo_test;

namespace {

class EncodedStream : public Encoding {};

Table random_table(Random& random) {
    const int32_t highest = random.pick({1, 2, 3, 20, 255});
    Table table;
    for (int16_t& entry : table)
        entry = static_cast<int16_t>(random.between(1, highest));
    return table;
}

std::array<int, 64> widened(const Table& table) {
    std::array<int, 64> wide;
    std::copy(table.begin(), table.end(), wide.begin());
    return wide;
}

// Noise, smooth slopes, flat areas and saturated edges.
void paint(Dib& dib, Random& random) {
    const int32_t kind = random.between(0, 4);
    const uint32_t colours[] = {0x000000, 0xFFFFFF, 0x0000FF, 0xFF0000, 0x00FF00, 0x808080};
    const uint32_t flat = random.pick(colours);
    for (int32_t y = 0; y < dib.height(); ++y) {
        for (int32_t x = 0; x < dib.width(); ++x) {
            if (kind == 1)
                dib.set_pixel(x, y, flat & (dib.bits() == 8 ? 0xFFu : 0xFFFFFFu));
            else if (kind == 2)
                dib.set_pixel(x, y, static_cast<uint32_t>(x * 3 + y) & 255);
            else if (kind == 3 && dib.bits() == 24)
                dib.set_pixel(x, y, colours[(x / 3 + y / 5) % 6]);
        }
    }
}

Region random_region(const Dib& dib, Random& random) {
    if (random.once_in(3))
        return whole(dib);
    Region r;
    r.left = random.between(0, dib.width() - 1);
    r.top = random.between(0, dib.height() - 1);
    r.width = random.between(1, dib.width() - r.left);
    r.height = random.between(1, dib.height() - r.top);
    return r;
}

void random_settings(ReferenceJob& job, Random& random) {
    job.mode = random.pick({1, 2, 4});
    job.level = random.between(0, 5);
    job.count = random.pick({1, 2, 21, 63, 64, 40});
    const Table luminance = random_table(random), chrominance = random_table(random);
    job.luminance = widened(luminance);
    job.chrominance = widened(chrominance);
    ASSERT_EQ(JpgCodSetSubsample(job.mode), 0);
    ASSERT_EQ(JpgCodSetQEx(job.level), 0);
    ASSERT_EQ(JpgCodSetQtableEx(luminance.data(), chrominance.data(), job.count), 0);
}

Dib random_image(int bits, Random& random) {
    DibSpec spec{random.between(1, 70), random.between(1, 50), bits};
    if (bits == 8 && random.once_in(3))
        spec.colours_used = static_cast<uint32_t>(random.between(1, 255));
    if (random.once_in(4))
        spec.header_size = 48;
    Dib dib = make_random_dib(spec, random);
    paint(dib, random);
    return dib;
}

} // namespace

TEST_F(EncodedStream, random_24_bit_images_in_colour) {
    for (uint64_t seed = 0; seed < 150; ++seed) {
        SCOPED_TRACE(seed);
        Random random(seed);
        const Dib dib = random_image(24, random);
        const Region region = random_region(dib, random);
        ReferenceJob job = colour_job(dib, region);
        random_settings(job, random);
        ASSERT_EQ(encode(dib, region), reference_stream(job));
    }
}

TEST_F(EncodedStream, random_8_bit_images_in_colour) {
    for (uint64_t seed = 0; seed < 60; ++seed) {
        SCOPED_TRACE(seed);
        Random random(seed + 1000);
        const Dib dib = random_image(8, random);
        const Region region = random_region(dib, random);
        ReferenceJob job = colour_job(dib, region);
        random_settings(job, random);
        ASSERT_EQ(encode(dib, region), reference_stream(job));
    }
}

TEST_F(EncodedStream, random_8_bit_images_in_grey) {
    for (uint64_t seed = 0; seed < 150; ++seed) {
        SCOPED_TRACE(seed);
        Random random(seed + 2000);
        const Dib dib = random_image(8, random);
        const Region region = random_region(dib, random);
        const int32_t grey_mode = random.pick({0, 1, 2, -1});
        ReferenceJob job = grey_job(dib, region, grey_mode);
        random_settings(job, random);
        ASSERT_EQ(encode_grey(dib, region, grey_mode), reference_stream(job));
    }
}

TEST_F(EncodedStream, images_of_every_small_size) {
    Random random(7);
    for (int32_t mode : {1, 2, 4}) {
        JpgCodSetSubsample(mode);
        for (int32_t width = 1; width <= 18; ++width) {
            for (int32_t height : {1, 2, 7, 8, 9, 15, 16, 17}) {
                SCOPED_TRACE(testing::Message() << mode << ": " << width << " x " << height);
                const Dib dib = make_random_dib({width, height, 24}, random);
                ReferenceJob job = colour_job(dib, whole(dib));
                job.mode = mode;
                ASSERT_EQ(encode(dib, whole(dib)), reference_stream(job));
            }
        }
    }
}

TEST_F(EncodedStream, wide_images) {
    Random random(8);
    for (int32_t mode : {1, 2, 4}) {
        JpgCodSetSubsample(mode);
        JpgCodSetQEx(1);
        for (int32_t width : {255, 256, 257, 511, 513, 1029}) {
            SCOPED_TRACE(testing::Message() << mode << ": " << width);
            Dib dib = make_dib({width, 17, 24});
            for (int32_t y = 0; y < 17; ++y)
                for (int32_t x = 0; x < width; ++x) // pure noise would not fit the block
                    dib.set_pixel(x, y, random.next() & 0x3F3F3F);
            ReferenceJob job = colour_job(dib, whole(dib));
            job.mode = mode;
            job.level = 1;
            ASSERT_EQ(encode(dib, whole(dib)), reference_stream(job));
        }
    }
}

TEST_F(EncodedStream, every_coefficient_count_of_the_custom_tables) {
    Random random(9);
    const Dib dib = make_random_dib({20, 20, 24}, random);
    const Table luminance = filled(3), chrominance = filled(4);
    JpgCodSetQEx(0);
    for (int32_t count = 1; count <= 64; ++count) {
        SCOPED_TRACE(count);
        ASSERT_EQ(JpgCodSetQtableEx(luminance.data(), chrominance.data(), count), 0);
        ReferenceJob job = colour_job(dib, whole(dib));
        job.level = 0;
        job.luminance.fill(3);
        job.chrominance.fill(4);
        job.count = count;
        ASSERT_EQ(encode(dib, whole(dib)), reference_stream(job));
    }
}

TEST_F(EncodedStream, white_pixel_has_these_bytes) {
    Dib dib = make_dib({1, 1, 24});
    dib.set_pixel(0, 0, 0xFFFFFF);
    const std::vector<uint8_t> stream = encode(dib, whole(dib));
    // Four flat luminance blocks of 127: DC 8 * 127 / 9 is 112.9, so 113; category 7 is 11110 and
    // its bits 1110001, then end of block 1010; three times DC 00 and 1010; two chrominance blocks
    // DC 00, end of block 00; ones to the end of the byte.
    // 11110111 00011010 00101000 10100010 10000000 00111111
    const std::vector<uint8_t> tail = {0xF7, 0x1A, 0x28, 0xA2, 0x80, 0x3F, 0xFF, 0xD9};
    ASSERT_EQ(stream.size(), 2u + 18 + 69 + 69 + 19 + 420 + 14 + tail.size());
    EXPECT_EQ(std::vector<uint8_t>(stream.end() - 8, stream.end()), tail);
}

TEST_F(EncodedStream, black_pixel_has_these_bytes) {
    const Dib dib = make_dib({1, 1, 24});
    const std::vector<uint8_t> stream = encode(dib, whole(dib));
    // DC 8 * -128 / 9 is -113.8, so -114: 11110 0001101 1010, then as for white.
    // 11110000 11011010 00101000 10100010 10000000 00111111
    const std::vector<uint8_t> tail = {0xF0, 0xDA, 0x28, 0xA2, 0x80, 0x3F, 0xFF, 0xD9};
    EXPECT_EQ(std::vector<uint8_t>(stream.end() - 8, stream.end()), tail);
}

TEST_F(EncodedStream, a_final_byte_of_ones_is_stuffed) {
    // No code ends in many ones, but a last coefficient of a high frequency ends the block with its
    // own bits, which may be ones.
    JpgCodSetQEx(0);
    bool seen = false;
    for (uint64_t seed = 0; seed < 3000 && !seen; ++seed) {
        Random random(seed);
        const Dib dib = make_random_dib({8, 8, 8}, random);
        const std::vector<uint8_t> stream = encode_grey(dib, whole(dib), 0);
        seen = stream[stream.size() - 4] == 0xFF && stream[stream.size() - 3] == 0;
        if (!seen)
            continue;
        ReferenceJob job = grey_job(dib, whole(dib), 0);
        job.level = 0;
        job.luminance.fill(1);
        EXPECT_EQ(stream, reference_stream(job));
    }
    EXPECT_TRUE(seen);
}

TEST_F(EncodedStream, colour_headers_have_these_bytes) {
    Random random(1);
    const Dib dib = make_random_dib({300, 3, 24}, random);
    JpgCodSetSubsample(2);
    const std::vector<uint8_t> stream = encode(dib, {0, 0, 299, 2});
    const auto part = [&](size_t from, size_t count) {
        return std::vector<uint8_t>(stream.begin() + static_cast<ptrdiff_t>(from),
                                    stream.begin() + static_cast<ptrdiff_t>(from + count));
    };
    using V = std::vector<uint8_t>;
    EXPECT_EQ(part(0, 20),
              (V{0xFF, 0xD8, 0xFF, 0xE0, 0, 16, 'J', 'F', 'I', 'F', 0, 1, 0, 0, 0, 1, 0, 1, 0, 0}));
    EXPECT_EQ(part(20, 11), (V{0xFF, 0xDB, 0, 67, 0, 9, 11, 11, 13, 12, 13}));
    EXPECT_EQ(part(88, 12), (V{113, 0xFF, 0xDB, 0, 67, 1, 11, 13, 13, 15, 14, 15}));
    EXPECT_EQ(part(157, 20),
              (V{128, 0xFF, 0xC0, 0, 17, 8, 0, 2, 1, 43, 3, 1, 0x21, 0, 2, 0x11, 1, 3, 0x11, 1}));
    EXPECT_EQ(part(177, 10), (V{0xFF, 0xC4, 1, 0xA2, 0, 0, 1, 5, 1, 1}));
    EXPECT_EQ(part(597, 14), (V{0xFF, 0xDA, 0, 12, 3, 1, 0, 2, 0x11, 3, 0x11, 0, 63, 0}));
}

TEST_F(EncodedStream, grey_headers_have_these_bytes_and_all_four_huffman_tables) {
    Random random(2);
    const Dib dib = make_random_dib({3, 300, 8}, random);
    const std::vector<uint8_t> stream = encode_grey(dib, whole(dib), 0);
    const auto part = [&](size_t from, size_t count) {
        return std::vector<uint8_t>(stream.begin() + static_cast<ptrdiff_t>(from),
                                    stream.begin() + static_cast<ptrdiff_t>(from + count));
    };
    using V = std::vector<uint8_t>;
    EXPECT_EQ(part(88, 14), (V{113, 0xFF, 0xC0, 0, 11, 8, 1, 44, 0, 3, 1, 1, 0x11, 0}));
    EXPECT_EQ(part(102, 5), (V{0xFF, 0xC4, 1, 0xA2, 0x00}));
    EXPECT_EQ(stream[102 + 4 + 29], 0x01);
    EXPECT_EQ(stream[102 + 4 + 58], 0x10);
    EXPECT_EQ(stream[102 + 4 + 58 + 179], 0x11);
    EXPECT_EQ(part(522, 10), (V{0xFF, 0xDA, 0, 8, 1, 1, 0x00, 0, 63, 0}));
}

TEST_F(EncodedStream, sampling_byte_of_each_mode) {
    const Dib dib = make_dib({1, 1, 24});
    const std::pair<int32_t, uint8_t> modes[] = {{1, 0x11}, {2, 0x21}, {4, 0x22}};
    for (const auto& [mode, byte] : modes) {
        JpgCodSetSubsample(mode);
        EXPECT_EQ(encode(dib, whole(dib))[158 + 11], byte) << mode;
    }
}

TEST_F(EncodedStream, seventeen_columns_make_two_mcus_of_sixteen) {
    // Column 16 alone is white: the second MCU is flat white, as a picture of one white pixel is.
    Dib dib = make_dib({17, 16, 24});
    for (int32_t y = 0; y < 16; ++y)
        dib.set_pixel(16, y, 0xFFFFFF);
    ReferenceJob job{32, 16, [](int x, int) {
                         const int value = x < 16 ? 0 : 255;
                         return ReferencePixel{value, value, value};
                     }};
    const std::vector<uint8_t> padded = reference_stream(job);
    std::vector<uint8_t> stream = encode(dib, whole(dib));
    EXPECT_EQ(stream[158 + 8], 17);
    stream[158 + 8] = 32; // the width in the frame header is all that differs
    EXPECT_EQ(stream, padded);
}

TEST_F(EncodedStream, sizes_beyond_65535_keep_their_low_16_bits) {
    const Dib dib = make_dib({65537, 1, 8});
    const std::vector<uint8_t> stream = encode_grey(dib, whole(dib), 0);
    EXPECT_EQ(stream[89 + 7], 0);
    EXPECT_EQ(stream[89 + 8], 1);
}

TEST_F(EncodedStream, a_colour_table_cut_off_by_the_end_of_the_block_reads_as_black) {
    // One entry is announced, so that the rows follow it; the table goes on into and past them.
    Dib dib = make_dib({4, 1, 8, {}, 1});
    dib.set_colour(0, 10, 20, 30);
    for (int32_t x = 0; x < 4; ++x)
        dib.set_pixel(x, 0, x == 0 ? 1 : 200 + static_cast<uint32_t>(x)); // index 1: the row itself
    EXPECT_EQ(encode(dib, whole(dib)), reference_stream(colour_job(dib, whole(dib))));
    EXPECT_EQ(encode_grey(dib, whole(dib), 1), reference_stream(grey_job(dib, whole(dib), 1)));
}
