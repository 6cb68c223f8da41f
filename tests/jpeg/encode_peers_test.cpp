// Other decoders read what the encoder writes: djpeg and stb_image, where they are installed. What
// they read differs from the picture by no more than the quantisers allow: the squared error of a
// block's samples is that of its coefficients, each at most half a quantiser off.
#ifndef _WIN32

#include "jpeg/encoding.hpp"
#include "support/temp_file.hpp"

#include <cmath>
#include <cstdlib>

#if __has_include(<stb/stb_image.h>)
#define STB_IMAGE_IMPLEMENTATION
#define STB_IMAGE_STATIC
#define STBI_ONLY_JPEG
#pragma GCC diagnostic ignored "-Wunused-function"
#include <stb/stb_image.h>
#define HAVE_STB 1
#else
#define HAVE_STB 0
#endif

using namespace kirvo_test;

namespace {

struct Pixels {
    int width = 0, height = 0, channels = 0;
    std::vector<uint8_t> bytes; // from the top, red first
};

// The picture and its stream.
struct Coded {
    Pixels picture;
    std::vector<uint8_t> stream;
    double luminance_error, chrominance_error; // root mean squares allowed
};

class PeerDecoders : public Encoding {};

// What a quantiser can put off, and half for the rounding of either transform.
double allowed(int quantiser) { return quantiser / 2.0 + 1; }

// Squares of 2 x 2 pixels of one colour, so that smaller chroma loses nothing.
Coded coded_colour(int mode, int quantiser, Random& random) {
    const int width = random.between(1, 40), height = random.between(1, 40);
    Dib dib = make_dib({width, height, 24});
    Coded coded = {{width, height, 3, {}}, {}, 0, 0};
    std::vector<uint32_t> squares(21 * 21);
    for (uint32_t& colour : squares)
        colour = random.next() & 0xFFFFFF;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const uint32_t colour = squares[static_cast<size_t>(y / 2 * 21 + x / 2)];
            dib.set_pixel(x, y, colour);
            for (int shift : {16, 8, 0})
                coded.picture.bytes.push_back(static_cast<uint8_t>(colour >> shift));
        }
    }
    const Table table = filled(static_cast<int16_t>(quantiser));
    JpgCodSetSubsample(mode);
    JpgCodSetQEx(0);
    JpgCodSetQtable(table.data(), table.data());
    coded.stream = encode(dib, whole(dib));
    // Padding is coded too, so that the error of the pixels may be that of whole MCUs.
    const double area =
        static_cast<double>((width + 15) / 16 * 16 * ((height + 15) / 16 * 16)) / (width * height);
    coded.luminance_error = coded.chrominance_error = allowed(quantiser) * std::sqrt(area);
    return coded;
}

Coded coded_grey(int quantiser, Random& random) {
    const int width = random.between(1, 40), height = random.between(1, 40);
    const Dib dib = make_random_dib({width, height, 8}, random);
    Coded coded = {{width, height, 1, {}}, {}, 0, 0};
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            coded.picture.bytes.push_back(static_cast<uint8_t>(dib.pixel(x, y)));
    const Table table = filled(static_cast<int16_t>(quantiser));
    JpgCodSetQEx(0);
    JpgCodSetQtable(table.data(), table.data());
    coded.stream = encode_grey(dib, whole(dib), 0);
    const double area =
        static_cast<double>((width + 7) / 8 * 8 * ((height + 7) / 8 * 8)) / (width * height);
    coded.luminance_error = allowed(quantiser) * std::sqrt(area);
    return coded;
}

double root_mean_square(const Pixels& a, const Pixels& b, int channel) {
    double sum = 0;
    const size_t step = static_cast<size_t>(a.channels);
    for (size_t i = static_cast<size_t>(channel); i < a.bytes.size(); i += step)
        sum += (a.bytes[i] - b.bytes[i]) * (a.bytes[i] - b.bytes[i]);
    return std::sqrt(sum / static_cast<double>(a.width * a.height));
}

void expect_close(const Coded& coded, const Pixels& decoded) {
    ASSERT_EQ(decoded.width, coded.picture.width);
    ASSERT_EQ(decoded.height, coded.picture.height);
    ASSERT_EQ(decoded.channels, coded.picture.channels);
    ASSERT_EQ(decoded.bytes.size(), coded.picture.bytes.size());
    const double y = coded.luminance_error, c = coded.chrominance_error;
    if (decoded.channels == 1) {
        EXPECT_LE(root_mean_square(coded.picture, decoded, 0), y);
        return;
    }
    EXPECT_LE(root_mean_square(coded.picture, decoded, 0), y + 1.402 * c + 1); // red
    EXPECT_LE(root_mean_square(coded.picture, decoded, 1), y + (0.344 + 0.714) * c + 1);
    EXPECT_LE(root_mean_square(coded.picture, decoded, 2), y + 1.772 * c + 1);
}

template<typename Decode>
void for_many_streams(Decode decode) {
    for (uint64_t seed = 0; seed < 24; ++seed) {
        SCOPED_TRACE(seed);
        Random random(seed);
        const int quantiser = random.pick({2, 8, 40});
        if (seed % 4 == 3)
            decode(coded_grey(quantiser, random));
        else
            decode(coded_colour(1 << (seed % 4), quantiser, random));
    }
}

bool installed(const char* program) {
    return std::system(("command -v " + std::string(program) + " >/dev/null").c_str()) == 0;
}

// "P5" or "P6", width, height, 255, each followed by one space or line end.
Pixels parse_pnm(const std::vector<uint8_t>& file) {
    Pixels pixels;
    int offset = 0;
    char kind = 0;
    const std::string text(file.begin(), file.end());
    if (std::sscanf(text.c_str(), "P%c %d %d 255%n", &kind, &pixels.width, &pixels.height,
                    &offset) == 3) {
        pixels.channels = kind == '6' ? 3 : 1;
        pixels.bytes.assign(file.begin() + offset + 1, file.end());
    }
    return pixels;
}

} // namespace

TEST_F(PeerDecoders, djpeg_reads_without_a_warning) {
    if (!installed("djpeg"))
        GTEST_SKIP() << "djpeg is not installed";
    for_many_streams([](const Coded& coded) {
        const TempFile stream(".jpg", coded.stream), pnm(".pnm"), messages(".txt");
        const std::string command = std::string("djpeg -nosmooth -pnm -outfile ") + pnm.name() +
                                    " " + stream.name() + " 2>" + messages.name();
        ASSERT_EQ(std::system(command.c_str()), 0);
        ASSERT_TRUE(messages.read().empty());
        expect_close(coded, parse_pnm(pnm.read()));
    });
}

TEST_F(PeerDecoders, djpeg_reads_every_level_and_a_comment) {
    if (!installed("djpeg"))
        GTEST_SKIP() << "djpeg is not installed";
    Random random(99);
    Dib dib = make_dib({61, 45, 24});
    for (int y = 0; y < 45; ++y)
        for (int x = 0; x < 61; ++x)
            dib.set_pixel(x, y, random.next() & 0x3F3F3F);
    for (int level = 1; level <= 5; ++level) {
        JpgCodSetQEx(level);
        JpgCodSetComment(reinterpret_cast<const uint8_t*>("made for a test"), 15);
        const TempFile stream(".jpg", encode(dib, whole(dib))), messages(".txt");
        const std::string command =
            std::string("djpeg -pnm -outfile /dev/null ") + stream.name() + " 2>" + messages.name();
        EXPECT_EQ(std::system(command.c_str()), 0);
        EXPECT_TRUE(messages.read().empty());
    }
}

#if HAVE_STB
TEST_F(PeerDecoders, stb_image_reads_the_same_pixels) {
    for_many_streams([](const Coded& coded) {
        Pixels decoded;
        unsigned char* bytes =
            stbi_load_from_memory(coded.stream.data(), static_cast<int>(coded.stream.size()),
                                  &decoded.width, &decoded.height, &decoded.channels, 0);
        ASSERT_NE(bytes, nullptr) << stbi_failure_reason();
        decoded.bytes.assign(bytes, bytes + decoded.width * decoded.height * decoded.channels);
        stbi_image_free(bytes);
        // It always smooths chroma, so that squares of colour are not squares any more.
        Coded smoothed = coded;
        if (coded.stream[158 + 11] != 0x11 && decoded.channels == 3)
            smoothed.chrominance_error += 80;
        expect_close(smoothed, decoded);
    });
}
#endif

#endif
