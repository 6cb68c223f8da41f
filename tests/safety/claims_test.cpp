// Headers that claim more than there is: every reader answers at once, and takes no memory for it.
#include "support/dib_builder.hpp"
#include "support/file_calls.hpp"
#include "support/hostile_streams.hpp"
#include "support/stopwatch.hpp"
#include "support/temp_folder.hpp"

#include <cstring>
#include <gtest/gtest.h>

#ifndef _WIN32
#include <sys/resource.h>
#endif

using namespace kirvo_test;

namespace {

constexpr double at_once = 10; // milliseconds

// A busy machine is given some attempts.
template<typename Work>
void expect_at_once(Work work) {
    EXPECT_LT(milliseconds_of(work, 20, at_once), at_once);
}
// The widest square of 24 bits that fits a block.
constexpr int largest = 26754;

std::string size_text(int width, int height) {
    return std::to_string(width) + " " + std::to_string(height);
}

// A sound file with its width and height overwritten; and how the reader answers that.
struct Claim {
    const char* reader;
    size_t width_at, height_at;
    int bytes; // of each number; negative: big-endian
    int32_t of_65535, of_largest;
};

const Claim claims[] = {
    {"DibReadEx", 18, 22, 4, KIRVO_OK, KIRVO_OK}, // nothing is made by that size
    {"Dib24Read", 18, 22, 4, KIRVO_OK, KIRVO_OK},
    {"Targa24Read", 12, 14, 2, KIRVO_NO_MEMORY, KIRVO_READ_ERROR},
    {"RawRead", 8, 10, -2, KIRVO_NOT_RAW, KIRVO_NOT_RAW},
    {"Q0Read", 0, 0, 0, KIRVO_Q0_SIZE, KIRVO_Q0_SIZE},
    {"JpgDecGetSpecEx", 0, 0, -2, KIRVO_OK, KIRVO_OK},
    {"JpgDecGetSpec", 0, 0, -2, KIRVO_OK, KIRVO_OK},
    {"IcoGetInfo", 6, 7, 1, 1, 1},
    {"IcoGetInfoEx", 6, 7, 1, 1, 1},
    {"IcoGetData", 6, 7, 1, KIRVO_READ_ERROR, KIRVO_READ_ERROR}, // the mask alone is larger
};

const FileReader& reader_named(const std::string& name) {
    for (const FileReader& reader : file_readers())
        if (name == reader.name)
            return reader;
    return file_readers().front();
}

void put(Bytes& file, size_t at, int value, int bytes) {
    for (int i = 0; i < std::abs(bytes); ++i)
        file[at + static_cast<size_t>(bytes > 0 ? i : -bytes - 1 - i)] =
            static_cast<uint8_t>(value >> (8 * i));
}

class Claims : public testing::TestWithParam<Claim> {
  protected:
    int32_t answer_to(int size) const {
        const FileReader& reader = reader_named(GetParam().reader);
        const TempFolder folder;
        Bytes file = reader.file;
        size_t width_at = GetParam().width_at, height_at = GetParam().height_at;
        if (std::string(reader.title) == "file.jpg") {
            const uint8_t frame[] = {0xFF, 0xC0};
            height_at = static_cast<size_t>(
                std::search(file.begin(), file.end(), frame, frame + 2) - file.begin() + 5);
            width_at = height_at + 2;
        }
        put(file, width_at, size, GetParam().bytes);
        put(file, height_at, size, GetParam().bytes);
        folder.write(companion_title, size_text(size, size));
        const std::string name = folder.write(reader.title, file);
        int32_t status = 0;
        expect_at_once([&] { status = reader.read(name.c_str()); });
        return status;
    }
};

Dib block_of(const Bytes& bytes) {
    Dib block(GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, bytes.size()));
    std::memcpy(GlobalLock(block), bytes.data(), bytes.size());
    GlobalUnlock(block);
    return block;
}

int32_t decode(const Bytes& stream) {
    int32_t error = 1;
    Dib(JpgDecMainHGLOBAL(block_of(stream), static_cast<int32_t>(stream.size()), nullptr, nullptr,
                          &error));
    return error;
}

} // namespace

TEST_P(Claims, of_65535_pixels_each_way_are_answered_at_once) {
    EXPECT_EQ(answer_to(65535), GetParam().of_65535);
}

TEST_P(Claims, of_the_largest_picture_are_answered_at_once) {
    const int32_t status = answer_to(largest);
    // 2 GB cannot be had everywhere.
    EXPECT_TRUE(status == GetParam().of_largest || status == KIRVO_NO_MEMORY) << status;
}

INSTANTIATE_TEST_SUITE_P(Readers, Claims, testing::ValuesIn(claims),
                         [](const auto& info) { return std::string(info.param.reader); });

TEST(JpegClaims, of_65535_pixels_each_way_are_answered_at_once) {
    for (const bool progressive : {false, true})
        for (const bool colour : {false, true}) {
            Bytes stream = jpeg_header(65535, 65535, progressive, colour);
            stream.insert(stream.end(), {0x3F, 0x3F, 0xFF, 0xD9});
            expect_at_once([&] { EXPECT_EQ(decode(stream), KIRVO_NO_MEMORY); });
        }
}

// Piece by piece a large picture is begun at once, too; it is filled as data comes.
TEST(JpegClaims, of_the_largest_picture_are_answered_at_once) {
    for (const bool colour : {false, true}) {
        Bytes stream = jpeg_header(largest, largest, false, colour);
        stream.resize(stream.size() + 100);
        const Dib data = block_of(stream);
        HGLOBAL image = nullptr;
        expect_at_once([&] {
            const int32_t result = JpgDecFirst(data, static_cast<int32_t>(stream.size()), &image);
            EXPECT_TRUE(result == 0 || result == KIRVO_NO_MEMORY);
            JpgDecNext(nullptr, 0, -1, &image);
        });
    }
}

TEST(EncoderClaims, of_huge_images_are_answered_at_once) {
    BITMAPINFOHEADER header = {};
    header.biSize = 40;
    header.biPlanes = 1;
    header.biBitCount = 24;
    for (const int size : {largest, 65535, INT32_MAX}) {
        header.biWidth = header.biHeight = size;
        Bytes bytes(64);
        std::memcpy(bytes.data(), &header, sizeof header);
        const Dib dib = block_of(bytes);
        uint32_t length;
        int32_t status = 0;
        expect_at_once([&] { Dib(JpgCodMainHGLOBAL(dib, 0, 0, size, size, &length, &status)); });
        EXPECT_EQ(status, KIRVO_BAD_PARAMETER);
    }
}

#if !defined(_WIN32) && !defined(__SANITIZE_ADDRESS__)

// With a limit of 1 GB, the answer is "no memory", or the same as ever.
TEST_P(Claims, are_answered_with_little_memory) {
    rlimit before;
    getrlimit(RLIMIT_AS, &before);
    const rlimit tight{rlim_t{1} << 30, before.rlim_max};
    setrlimit(RLIMIT_AS, &tight);
    const int32_t status = answer_to(largest);
    EXPECT_EQ(answer_to(65535), GetParam().of_65535);
    setrlimit(RLIMIT_AS, &before);
    EXPECT_EQ(status, GetParam().of_largest == KIRVO_READ_ERROR &&
                              std::string(GetParam().reader) == "Targa24Read"
                          ? KIRVO_NO_MEMORY
                          : GetParam().of_largest);
}

// Memory that was asked for is not memory that is used.
TEST_P(Claims, leave_the_memory_of_the_process_as_it_is) {
    const auto most = [] {
        rusage usage;
        getrusage(RUSAGE_SELF, &usage);
        return usage.ru_maxrss; // KB
    };
    answer_to(2);
    const long start = most();
    answer_to(largest);
    EXPECT_LT(most() - start, 4096);
}

#endif
