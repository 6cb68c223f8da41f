// JPEG files turned without loss.
#include "files/deep_jpeg.hpp"

#include <filesystem>
#include <fstream>

using namespace kirvo_test;

namespace {

Bytes content(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(file), {});
}

// The source's pixel that a turned picture shows at a place.
uint32_t turned_pixel(const Opened& source, int32_t turning, uint32_t x, uint32_t y) {
    const uint32_t right = source.about.width - 1, bottom = source.about.height - 1;
    switch (turning) {
    case KIRVO_FILES_TURN_90:
        return source.pixel(y, bottom - x);
    case KIRVO_FILES_TURN_180:
        return source.pixel(right - x, bottom - y);
    case KIRVO_FILES_TURN_270:
        return source.pixel(right - y, x);
    case KIRVO_FILES_TURN_FLIP:
        return source.pixel(x, bottom - y);
    case KIRVO_FILES_TURN_MIRROR:
        return source.pixel(right - x, y);
    default:
        return source.pixel(x, y);
    }
}

} // namespace

TEST(Turn, moves_every_pixel_and_loses_nothing) {
    const TempFolder folder;
    const Picture picture(48, 32);
    const Bytes bytes = save(picture.dib, as(KIRVO_FILES_JPEG, 0, 95)).bytes;
    const Opened source(bytes);
    const std::string in = folder.write("in.jpg", bytes), out = folder.path("out.jpg");
    for (int32_t turning = KIRVO_FILES_TURN_UPRIGHT; turning <= KIRVO_FILES_TURN_MIRROR;
         ++turning) {
        ASSERT_EQ(
            KirvoFilesTurn(in.c_str(), out.c_str(), turning, KIRVO_FILES_EDGES_FAIL, 0, nullptr),
            KIRVO_FILES_OK);
        const Opened turned(out);
        ASSERT_EQ(turned.status, KIRVO_FILES_OK);
        for (uint32_t y = 0; y < turned.about.height; ++y)
            for (uint32_t x = 0; x < turned.about.width; ++x) {
                const uint32_t expected = turned_pixel(source, turning, x, y);
                for (int shift : {0, 8, 16}) // the transform's own rounding is not symmetrical
                    ASSERT_NEAR(static_cast<int>(turned.pixel(x, y) >> shift & 255),
                                static_cast<int>(expected >> shift & 255), 3)
                        << turning;
            }
    }
    // Four quarters are the file itself, to the bit.
    std::string last = in;
    for (int i = 0; i < 4; ++i) {
        const std::string next = folder.path(std::to_string(i) + ".jpg");
        KirvoFilesTurn(last.c_str(), next.c_str(), KIRVO_FILES_TURN_90, KIRVO_FILES_EDGES_FAIL, 0,
                       nullptr);
        last = next;
    }
    const Opened round(last);
    for (uint32_t y = 0; y < 32; ++y)
        for (uint32_t x = 0; x < 48; ++x)
            ASSERT_EQ(round.pixel(x, y), source.pixel(x, y));
}

TEST(Turn, edges_fail_are_cut_or_are_kept_with_a_word) {
    const TempFolder folder;
    const Picture picture(50, 35);
    const std::string in = folder.write("in.jpg", save(picture.dib, as(KIRVO_FILES_JPEG)).bytes);
    const std::string out = folder.path("out.jpg");
    EXPECT_EQ(KirvoFilesTurn(in.c_str(), out.c_str(), KIRVO_FILES_TURN_180, KIRVO_FILES_EDGES_FAIL,
                             0, nullptr),
              KIRVO_FILES_EDGE);
    EXPECT_FALSE(std::filesystem::exists(out));
    KirvoFile file = nullptr;
    ASSERT_EQ(KirvoFilesTurn(in.c_str(), out.c_str(), KIRVO_FILES_TURN_180, KIRVO_FILES_EDGES_TRIM,
                             0, &file),
              KIRVO_FILES_OK);
    EXPECT_NE(KirvoFilesNote(file, 0), KIRVO_FILES_NOTE_NONE);
    KirvoFilesClose(file);
    const Opened trimmed(out);
    EXPECT_EQ(trimmed.about.width, 48u);
    EXPECT_EQ(trimmed.about.height, 32u);
    ASSERT_EQ(KirvoFilesTurn(in.c_str(), out.c_str(), KIRVO_FILES_TURN_180, KIRVO_FILES_EDGES_KEEP,
                             0, nullptr),
              KIRVO_FILES_OK);
    EXPECT_EQ(Opened(out).about.width, 50u);
}

TEST(Turn, progressive_files_stay_progressive_and_lose_nothing) {
    const TempFolder folder;
    const Bytes bytes =
        DeepJpeg(48, 32, 3, 1, 1).write_progressive([](uint32_t i, uint32_t x, uint32_t y) {
            return std::fmod(500.0 + 70.0 * x + 31.0 * y * i + (x * y % 5) * 200.0, 4095.0);
        });
    const Opened source(bytes);
    ASSERT_EQ(source.status, KIRVO_FILES_OK);
    const std::string in = folder.write("in.jpg", bytes), out = folder.path("out.jpg");
    for (int32_t turning = KIRVO_FILES_TURN_90; turning <= KIRVO_FILES_TURN_MIRROR; ++turning) {
        ASSERT_EQ(
            KirvoFilesTurn(in.c_str(), out.c_str(), turning, KIRVO_FILES_EDGES_FAIL, 0, nullptr),
            KIRVO_FILES_OK);
        const Opened turned(out);
        ASSERT_EQ(turned.status, KIRVO_FILES_OK) << turned.text(KIRVO_FILES_TEXT_REASON);
        EXPECT_NE(turned.about.flags & KIRVO_FILES_PROGRESSIVE, 0u);
        EXPECT_EQ(turned.about.fileBits, 36u);
        for (uint32_t y = 0; y < turned.about.height; ++y)
            for (uint32_t x = 0; x < turned.about.width; ++x)
                for (int shift : {0, 8, 16}) // sums of the transform come in another order
                    ASSERT_NEAR(
                        static_cast<int>(turned.pixel(x, y) >> shift & 255),
                        static_cast<int>(turned_pixel(source, turning, x, y) >> shift & 255), 1)
                        << turning;
    }
}

TEST(Turn, what_is_damaged_or_lacks_a_pass_is_refused) {
    const TempFolder folder;
    Bytes bytes = DeepJpeg(48, 32, 1, 1, 1).write_progressive([](uint32_t, uint32_t x, uint32_t y) {
        return (x * 61 + y * 37) % 4096;
    });
    const std::string out = folder.path("out.jpg");
    for (const size_t left : {bytes.size() - 30, bytes.size() * 2 / 3, bytes.size() / 3}) {
        bytes.resize(left);
        const std::string in = folder.write("in.jpg", bytes);
        EXPECT_EQ(KirvoFilesTurn(in.c_str(), out.c_str(), KIRVO_FILES_TURN_90,
                                 KIRVO_FILES_EDGES_FAIL, 0, nullptr),
                  KIRVO_FILES_DAMAGED);
        EXPECT_FALSE(std::filesystem::exists(out));
        EXPECT_EQ(content(in), bytes);
    }
}

TEST(Turn, only_jpeg_files_are_turned) {
    const TempFolder folder;
    const Picture picture(16, 16);
    const std::string in = folder.write("a.bmp", save(picture.dib, as(KIRVO_FILES_BMP)).bytes);
    const Bytes before = content(in);
    EXPECT_EQ(KirvoFilesTurn(in.c_str(), in.c_str(), KIRVO_FILES_TURN_90, 0, 0, nullptr),
              KIRVO_FILES_UNSUPPORTED);
    EXPECT_EQ(content(in), before);
}
