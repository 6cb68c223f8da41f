// What the encoder writes the decoder reads, and what it reads can be written again.

#include "jpeg/encoding.hpp"

using namespace kirvo_test;

namespace {

class EncodeDecode : public Encoding {
  protected:
    static Dib decode(const std::vector<uint8_t>& stream) {
        Dib block(GlobalAlloc(GHND, stream.size()));
        block.write(0, stream);
        uint32_t width = 0, height = 0;
        int32_t status = 1;
        Dib image(JpgDecMainHGLOBAL(block, static_cast<int32_t>(stream.size()), &width, &height,
                                    &status));
        EXPECT_EQ(status, 0);
        if (image != nullptr) {
            EXPECT_EQ(static_cast<int32_t>(width), image.width());
            EXPECT_EQ(static_cast<int32_t>(height), image.height());
        }
        return image;
    }
};

int channel(uint32_t pixel, int shift) { return static_cast<int>(pixel >> shift & 255); }

} // namespace

TEST_F(EncodeDecode, random_images_go_there_and_back_again) {
    for (uint64_t seed = 0; seed < 10000; ++seed) {
        Random random(seed);
        const bool grey = random.once_in(4);
        const DibSpec spec{random.between(1, 20), random.between(1, 20), grey ? 8 : 24};
        const Dib dib = make_random_dib(spec, random);
        JpgCodSetSubsample(random.pick({1, 2, 4}));
        JpgCodSetQEx(random.between(0, 5));
        const Dib image = decode(grey ? encode_grey(dib, whole(dib), random.between(0, 1))
                                      : encode(dib, whole(dib)));
        ASSERT_NE(image, nullptr) << seed;
        ASSERT_EQ(image.width(), spec.width) << seed;
        ASSERT_EQ(image.height(), spec.height) << seed;
        ASSERT_FALSE(encode(image, whole(image)).empty()) << seed;
    }
}

TEST_F(EncodeDecode, quantisers_of_1_lose_next_to_nothing) {
    JpgCodSetSubsample(1);
    JpgCodSetQEx(0);
    for (uint64_t seed = 0; seed < 50; ++seed) {
        Random random(seed);
        const Dib dib = make_random_dib({random.between(1, 30), random.between(1, 30), 24}, random);
        const Dib image = decode(encode(dib, whole(dib)));
        for (int32_t y = 0; y < dib.height(); ++y) {
            for (int32_t x = 0; x < dib.width(); ++x) {
                for (int shift : {0, 8, 16})
                    ASSERT_NEAR(channel(image.pixel(x, y), shift), channel(dib.pixel(x, y), shift),
                                8);
            }
        }
    }
}

TEST_F(EncodeDecode, a_grey_stream_yields_the_grey_levels) {
    JpgCodSetQEx(0);
    for (int32_t grey_mode : {0, 1}) {
        Random random(3);
        const Dib dib = make_random_dib({33, 21, 8}, random);
        const Dib image = decode(encode_grey(dib, whole(dib), grey_mode));
        for (int32_t y = 0; y < 21; ++y) {
            for (int32_t x = 0; x < 33; ++x) {
                const uint32_t index = dib.pixel(x, y);
                const int grey =
                    grey_mode == 1 ? table_entry(dib, index).blue : static_cast<int>(index);
                for (int shift : {0, 8, 16})
                    ASSERT_NEAR(channel(image.pixel(x, y), shift), grey, 3);
            }
        }
    }
}

TEST_F(EncodeDecode, a_stream_without_tables_is_read_with_those_of_the_last_encode) {
    // The decoder's tables 0 and 1 are what the last encode has written, grey ones included.
    Random random(4);
    const Dib dib = make_random_dib({16, 16, 24}, random);
    const Dib indexed = make_random_dib({16, 16, 8}, random);
    std::vector<uint8_t> stripped = encode(dib, whole(dib));
    stripped.erase(stripped.begin() + 20, stripped.begin() + 20 + 2 * 69);
    for (const bool grey : {false, true}) {
        Table luminance, chrominance;
        for (size_t i = 0; i < 64; ++i) {
            luminance[i] = static_cast<int16_t>(random.between(1, 255));
            chrominance[i] = static_cast<int16_t>(random.between(1, 255));
        }
        JpgCodSetQtable(luminance.data(), chrominance.data());
        JpgCodSetQEx(0);
        if (grey)
            encode_grey(indexed, whole(indexed), 0);
        else
            encode(dib, whole(dib));
        decode(stripped);
        uint16_t read_luminance[64], read_chrominance[64];
        ASSERT_EQ(JpgDecGetQtable(read_luminance, read_chrominance), 1);
        EXPECT_TRUE(std::equal(luminance.begin(), luminance.end(), read_luminance));
        EXPECT_TRUE(std::equal(chrominance.begin(), chrominance.end(), read_chrominance));
        EXPECT_EQ(JpgDecGetQtableEx(0, read_luminance), -3); // not of the stream itself
    }
}

TEST_F(EncodeDecode, a_decode_in_progress_keeps_encodes_out_and_the_other_way_round) {
    Random random(5);
    const Dib dib = make_random_dib({16, 16, 24}, random);
    const std::vector<uint8_t> stream = encode(dib, whole(dib));
    Dib block(GlobalAlloc(GHND, stream.size()));
    block.write(0, stream);
    const auto size = static_cast<int32_t>(stream.size());
    HGLOBAL image = nullptr;
    int32_t status = 1;
    ASSERT_EQ(JpgDecFirst(block, size, &image), 0);
    EXPECT_EQ(JpgCodFirst(dib, 0, 0, 16, 16, -1, &status), nullptr);
    EXPECT_EQ(status, KIRVO_BUSY);
    EXPECT_EQ(JpgCodNext(-1, nullptr), KIRVO_ABANDONED); // there is no encode to abandon
    EXPECT_EQ(JpgCodFirst(dib, 0, 0, 16, 16, -1, &status), nullptr); // and the decode goes on
    EXPECT_EQ(status, KIRVO_BUSY);
    EXPECT_EQ(JpgDecNext(nullptr, 0, 1, &image), 1);
    GlobalFree(image);
    ASSERT_NE(JpgCodFirst(dib, 0, 0, 16, 16, -1, &status), nullptr);
    EXPECT_EQ(JpgDecFirst(block, size, &image), KIRVO_BUSY);
    EXPECT_EQ(JpgCodNext(-1, nullptr), KIRVO_ABANDONED);
    EXPECT_EQ(JpgDecFirst(block, size, &image), 0);
    EXPECT_EQ(JpgDecNext(nullptr, 0, -1, &image), KIRVO_ABANDONED);
}

TEST_F(EncodeDecode, an_encode_forgotten_by_a_decoder_call_is_replaced_by_the_next) {
    // JpgDecNext ends what is in progress, whatever it is; the encode's blocks go with the next one.
    const Dib dib = make_dib({16, 16, 24});
    int32_t status = 1;
    HGLOBAL image = nullptr;
    HGLOBAL forgotten = JpgCodFirst(dib, 0, 0, 16, 16, -1, &status);
    ASSERT_NE(forgotten, nullptr);
    JpgDecNext(nullptr, 0, -1, &image);
    HGLOBAL block = JpgCodFirst(dib, 0, 0, 16, 16, -1, &status);
    if (status == KIRVO_BUSY) { // the decoder has not touched what is not its own
        EXPECT_EQ(JpgCodNext(-1, nullptr), KIRVO_ABANDONED);
    } else {
        ASSERT_NE(block, nullptr);
        EXPECT_EQ(JpgCodNext(-1, nullptr), KIRVO_ABANDONED);
    }
    EXPECT_TRUE(is_unlocked(dib));
    EXPECT_EQ(GlobalLock(forgotten), nullptr);
}
