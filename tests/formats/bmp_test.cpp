// BMP files, read and written.
#include "support/dib_builder.hpp"
#include "support/temp_file.hpp"

#include <cstring>
#include <filesystem>
#include <gtest/gtest.h>

using namespace kirvo_test;

namespace {

using Bytes = std::vector<uint8_t>;

constexpr uint32_t untouched = 0xDEADBEEF;

struct ReadResult {
    Dib dib;
    uint32_t width = untouched, height = untouched, bits = untouched;
    int32_t status = 99;
};

ReadResult read_bmp(const char* name) {
    ReadResult r;
    r.dib = Dib(DibReadEx(name, &r.width, &r.height, &r.bits, &r.status));
    return r;
}

ReadResult read_bmp24(const char* name) {
    ReadResult r;
    r.dib = Dib(Dib24Read(name, &r.width, &r.height, &r.status));
    return r;
}

void append_u32(Bytes& to, uint32_t value) {
    for (int i = 0; i < 4; ++i)
        to.push_back(static_cast<uint8_t>(value >> (8 * i)));
}

Bytes file_header(size_t colour_part, size_t image) {
    Bytes header = {'B', 'M'};
    append_u32(header, static_cast<uint32_t>(54 + colour_part + image));
    append_u32(header, 0);
    append_u32(header, static_cast<uint32_t>(54 + colour_part));
    return header;
}

size_t written_colour_part(int bits, uint32_t used) {
    switch (bits) {
    case 24:
        return 0;
    case 16:
    case 32:
        return 12;
    default:
        return 4 * (used != 0 ? used : 1u << bits);
    }
}

// What the file must hold, by plain arithmetic on the block; missing bytes are 0.
Bytes expected_file(const Dib& dib, int32_t x, int32_t y, int32_t w, int32_t h) {
    Bytes block = dib.bytes();
    const BITMAPINFOHEADER header = dib.header();
    const int bits = header.biBitCount;
    const size_t colours = written_colour_part(bits, header.biClrUsed);
    const auto stride = static_cast<size_t>(stride_of(w, bits));
    const auto from_stride = static_cast<size_t>(stride_of(header.biWidth, bits));
    block.resize(40 + colours + from_stride * static_cast<size_t>(header.biHeight) + 4096);
    Bytes file = file_header(colours, stride * static_cast<size_t>(h));
    BITMAPINFOHEADER written = header;
    written.biWidth = w;
    written.biHeight = h;
    const auto* raw = reinterpret_cast<const uint8_t*>(&written);
    file.insert(file.end(), raw, raw + 40);
    file.insert(file.end(), block.begin() + 40, block.begin() + 40 + static_cast<long>(colours));
    const int32_t column = bits == 1 ? (x + 7) / 8 : bits == 4 ? (x + 1) / 2 : x * bits / 8;
    for (int32_t row = header.biHeight - (y + h); row < header.biHeight - y; ++row) {
        const size_t start =
            40 + colours + static_cast<size_t>(row) * from_stride + static_cast<size_t>(column);
        file.insert(file.end(), block.begin() + static_cast<long>(start),
                    block.begin() + static_cast<long>(start + stride));
    }
    return file;
}

std::vector<DibSpec> all_kinds() {
    return {{17, 5, 1},
            {9, 4, 4},
            {6, 3, 8},
            {6, 3, 8, {}, 20},
            {3, 3, 4, {}, 5},
            {9, 2, 1, {}, 1},
            {5, 3, 16, masks_565},
            {4, 4, 24},
            {5, 7, 24},
            {3, 3, 32, masks_888},
            {1, 1, 24},
            {1, 1, 1},
            {1, 1, 8},
            {1, 1, 16, masks_555},
            {1, 1, 32, masks_bgr888}};
}

} // namespace

TEST(WriteBmp, WholeImageIsTheBlockBehindAFileHeader) {
    Random random(1);
    for (const DibSpec& spec : all_kinds()) {
        const Dib dib = make_random_dib(spec, random);
        const Bytes before = dib.bytes();
        for (const bool by_size : {false, true}) {
            const TempFile file(".bmp");
            EXPECT_EQ(by_size ? DibWriteEx(file.name(), dib, 0, 0, spec.width, spec.height)
                              : DibWriteEx(file.name(), dib, 0, 0, -1, -1),
                      KIRVO_OK);
            EXPECT_EQ(file.read(), expected_file(dib, 0, 0, spec.width, spec.height)) << spec.bits;
        }
        EXPECT_EQ(dib.bytes(), before);
        EXPECT_TRUE(is_unlocked(dib));
    }
}

TEST(WriteBmp, EveryRectangleOfSmallImages) {
    Random random(2);
    for (const DibSpec& kind : all_kinds()) {
        const Dib dib = make_random_dib(kind, random);
        const TempFile file(".bmp");
        for (int round = 0; round < 25; ++round) {
            const int32_t x = random.between(0, kind.width - 1);
            const int32_t y = random.between(0, kind.height - 1);
            const int32_t w = random.between(1, kind.width - x);
            const int32_t h = random.between(1, kind.height - y);
            ASSERT_EQ(DibWriteEx(file.name(), dib, x, y, w, h), KIRVO_OK);
            EXPECT_EQ(file.read(), expected_file(dib, x, y, w, h))
                << kind.bits << ": " << x << "," << y << "," << w << "," << h;
        }
    }
}

TEST(WriteBmp, RectangleKeepsTheSourcesImageSize) {
    Random random(3);
    const Dib dib = make_random_dib({10, 10, 24}, random);
    const TempFile file(".bmp");
    EXPECT_EQ(DibWriteEx(file.name(), dib, 1, 1, 3, 2), KIRVO_OK);
    const Bytes bytes = file.read();
    ASSERT_EQ(bytes.size(), 78u);
    BITMAPINFOHEADER header;
    std::memcpy(&header, bytes.data() + 14, 40);
    EXPECT_EQ(header.biSizeImage, 320u);
    EXPECT_EQ(header.biWidth, 3);
    EXPECT_EQ(header.biHeight, 2);
}

TEST(WriteBmp, FourBitRectangleStartsAtTheNextWholeByte) {
    Dib dib = make_dib({16, 1, 4});
    const uint8_t row[] = {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF};
    dib.write(104, row, 8);
    const TempFile file(".bmp");
    EXPECT_EQ(DibWriteEx(file.name(), dib, 3, 0, 4, 1), KIRVO_OK);
    const Bytes bytes = file.read();
    EXPECT_EQ(Bytes(bytes.end() - 4, bytes.end()), (Bytes{0x45, 0x67, 0x89, 0xAB}));
}

TEST(WriteBmp, ColourTableOfA24BitImageIsLeftOut) {
    Random random(4);
    const Dib dib = make_random_dib({4, 2, 24, {}, 3}, random);
    const TempFile file(".bmp");
    EXPECT_EQ(DibWriteEx(file.name(), dib, 0, 0, -1, -1), KIRVO_OK);
    const Bytes bytes = file.read();
    EXPECT_EQ(bytes.size(), 54u + 24);
    EXPECT_EQ(bytes[14 + 32], 3); // biClrUsed
}

TEST(WriteBmp, SixteenAndThirtyTwoBitsAlwaysCarryTwelveBytes) {
    Random random(5);
    for (const int bits : {16, 32}) {
        const Dib dib = make_random_dib({2, 2, bits}, random); // without masks
        const TempFile file(".bmp");
        EXPECT_EQ(DibWriteEx(file.name(), dib, 0, 0, -1, -1), KIRVO_OK);
        EXPECT_EQ(file.read(), expected_file(dib, 0, 0, 2, 2));
        EXPECT_EQ(DibWriteEx(file.name(), dib, 1, 1, 1, 1), KIRVO_OK);
        EXPECT_EQ(file.read(), expected_file(dib, 1, 1, 1, 1));
    }
}

TEST(WriteBmp, HeaderIsTakenAsFortyBytes) {
    Random random(6);
    const Dib dib = make_random_dib({4, 2, 24, {}, 0, 60}, random);
    const TempFile file(".bmp");
    EXPECT_EQ(DibWriteEx(file.name(), dib, 0, 0, -1, -1), KIRVO_OK);
    EXPECT_EQ(file.read(), expected_file(dib, 0, 0, 4, 2));
}

TEST(WriteBmp, RefusesBadParametersInOrder) {
    const TempFile file(".bmp");
    const Dib dib = make_dib({4, 4, 24});
    EXPECT_EQ(DibWriteEx(file.name(), nullptr, 0, 0, -1, -1), KIRVO_BAD_PARAMETER);
    EXPECT_EQ(DibWriteEx(file.name(), dib, -1, 0, 1, 1), KIRVO_BAD_PARAMETER);
    EXPECT_EQ(DibWriteEx(file.name(), dib, 0, -1, 1, 1), KIRVO_BAD_PARAMETER);
    EXPECT_EQ(DibWriteEx(file.name(), dib, 0, 0, 5, 4), KIRVO_BAD_PARAMETER);
    EXPECT_EQ(DibWriteEx(file.name(), dib, 0, 0, 4, 5), KIRVO_BAD_PARAMETER);
    EXPECT_EQ(DibWriteEx(file.name(), dib, 1, 0, 4, 4), KIRVO_BAD_PARAMETER);
    EXPECT_EQ(DibWriteEx(file.name(), dib, 0, 1, 4, 4), KIRVO_BAD_PARAMETER);
    EXPECT_EQ(DibWriteEx(file.name(), dib, INT32_MAX, 0, INT32_MAX, 1), KIRVO_BAD_PARAMETER);
    EXPECT_EQ(DibWriteEx(file.name(), dib, 1, 0, -1, -1), KIRVO_BAD_PARAMETER); // whole, from 1 on
    EXPECT_EQ(DibWriteEx(file.name(), dib, 0, 0, -1, 5), KIRVO_BAD_PARAMETER);
    EXPECT_EQ(DibWriteEx(file.name(), dib, 0, 0, 4, -1), KIRVO_BAD_PARAMETER);
    EXPECT_EQ(DibWriteEx(file.name(), dib, 0, 0, 0, 4), KIRVO_BAD_PARAMETER);
    EXPECT_FALSE(file.exists());

    Dib odd = make_dib({4, 4, 24});
    BITMAPINFOHEADER header = odd.header();
    header.biBitCount = 2;
    odd.set_header(header);
    EXPECT_EQ(DibWriteEx(file.name(), odd, 0, 0, 9, 9), KIRVO_NOT_BMP); // before the extent
    EXPECT_EQ(DibWriteEx(file.name(), odd, -1, 0, 9, 9), KIRVO_BAD_PARAMETER);
    EXPECT_FALSE(file.exists());
    EXPECT_TRUE(is_unlocked(odd));
    EXPECT_TRUE(is_unlocked(dib));
}

TEST(WriteBmp, HandleThatCannotBeLocked) {
    HGLOBAL freed = make_dib({4, 4, 24}).release();
    GlobalFree(freed);
    EXPECT_EQ(DibWriteEx(TempFile(".bmp").name(), freed, 0, 0, -1, -1), KIRVO_NULL_HANDLE);
}

TEST(WriteBmp, FileThatCannotBeCreated) {
    const Dib dib = make_dib({4, 4, 24});
    EXPECT_EQ(DibWriteEx("no/such/folder/x.bmp", dib, 0, 0, -1, -1), KIRVO_CANNOT_OPEN);
    EXPECT_EQ(DibWriteEx("no/such/folder/x.bmp", dib, 1, 1, 2, 2), KIRVO_CANNOT_OPEN);
    EXPECT_EQ(DibWriteEx(temp_folder().c_str(), dib, 0, 0, -1, -1), KIRVO_CANNOT_OPEN);
    EXPECT_EQ(DibWriteEx("", dib, 0, 0, -1, -1), KIRVO_CANNOT_OPEN);
    EXPECT_EQ(DibWriteEx(nullptr, dib, 0, 0, -1, -1), KIRVO_CANNOT_OPEN);
    EXPECT_TRUE(is_unlocked(dib));
}

#ifndef _WIN32
TEST(WriteBmp, FullDisk) {
    const Dib dib = make_dib({400, 400, 24});
    EXPECT_EQ(DibWriteEx("/dev/full", dib, 0, 0, -1, -1), KIRVO_WRITE_ERROR);
    EXPECT_EQ(DibWriteEx("/dev/full", dib, 1, 1, 2, 2), KIRVO_WRITE_ERROR);
    EXPECT_TRUE(is_unlocked(dib));
}

TEST(WriteBmp, BlockShorterThanItsHeaderSays) {
    Random random(7);
    for (const int bits : {1, 4, 8, 16, 24, 32}) {
        const TempFile file(".bmp");
        const std::optional<Masks> masks = bits == 16   ? std::optional(masks_565)
                                           : bits == 32 ? std::optional(masks_888)
                                                        : std::nullopt;
        const Dib cut = make_random_dib({9, 3, bits, masks, 0, 40, -8}, random);
        EXPECT_EQ(DibWriteEx(file.name(), cut, 0, 0, -1, -1), KIRVO_BAD_PARAMETER) << bits;
        EXPECT_EQ(DibWriteEx(file.name(), cut, 0, 0, 1, 1), KIRVO_BAD_PARAMETER) << bits;
        EXPECT_FALSE(file.exists());
    }
    // Only the padding of the last row is missing: it is written as zeros.
    const TempFile file(".bmp");
    const Dib padless = make_random_dib({9, 3, 24, {}, 0, 40, -1}, random);
    EXPECT_EQ(DibWriteEx(file.name(), padless, 0, 0, -1, -1), KIRVO_OK);
    EXPECT_EQ(file.read(), expected_file(padless, 0, 0, 9, 3));
}
#endif

TEST(WriteBmp, LyingHeadersAreRefused) {
    const TempFile file(".bmp");
    Dib dib = make_dib({4, 4, 8});
    BITMAPINFOHEADER header = dib.header();
    header.biClrUsed = 0xFFFFFFFF;
    dib.set_header(header);
    EXPECT_EQ(DibWriteEx(file.name(), dib, 0, 0, -1, -1), KIRVO_BAD_PARAMETER);
    header.biClrUsed = 0;
    header.biWidth = header.biHeight = INT32_MAX;
    dib.set_header(header);
    EXPECT_EQ(DibWriteEx(file.name(), dib, 0, 0, -1, -1), KIRVO_BAD_PARAMETER);
    EXPECT_EQ(DibWriteEx(file.name(), dib, 0, 0, 1, 1), KIRVO_BAD_PARAMETER);
    header.biWidth = 4;
    header.biHeight = -4;
    dib.set_header(header);
    EXPECT_EQ(DibWriteEx(file.name(), dib, 0, 0, -1, -1), KIRVO_BAD_PARAMETER);
    EXPECT_FALSE(file.exists());
}

TEST(WriteBmp24, HasItsOwnCodes) {
    const TempFile file(".bmp");
    EXPECT_EQ(Dib24Write(file.name(), nullptr, 0, 0, -1, -1), KIRVO_NULL_HANDLE);
    for (const int bits : {1, 4, 8, 16, 32})
        EXPECT_EQ(Dib24Write(file.name(), make_dib({4, 4, bits}), -1, 0, 1, 1), KIRVO_NEEDS_24);
    Random random(8);
    const Dib dib = make_random_dib({5, 4, 24}, random);
    EXPECT_EQ(Dib24Write(file.name(), dib, -1, 0, 1, 1), KIRVO_BAD_PARAMETER);
    EXPECT_FALSE(file.exists());
    EXPECT_EQ(Dib24Write(file.name(), dib, 1, 1, 3, 2), KIRVO_OK);
    EXPECT_EQ(file.read(), expected_file(dib, 1, 1, 3, 2));
}

TEST(ReadBmp, GivesBackWhatWasWritten) {
    Random random(9);
    for (const DibSpec& spec : all_kinds()) {
        const Dib dib = make_random_dib(spec, random);
        const TempFile file(".bmp");
        ASSERT_EQ(DibWriteEx(file.name(), dib, 0, 0, -1, -1), KIRVO_OK);
        const ReadResult r = read_bmp(file.name());
        EXPECT_EQ(r.status, KIRVO_OK);
        EXPECT_EQ(r.width, static_cast<uint32_t>(spec.width));
        EXPECT_EQ(r.height, static_cast<uint32_t>(spec.height));
        EXPECT_EQ(r.bits, static_cast<uint32_t>(spec.bits));
        ASSERT_TRUE(r.dib);
        EXPECT_EQ(r.dib.bytes(), dib.bytes());
        EXPECT_TRUE(is_unlocked(r.dib));
    }
}

TEST(ReadBmp, BlockIsTheFileWithoutItsFirstFourteenBytes) {
    Bytes content = file_header(0, 12);
    content[10] = 99; // bfOffBits is not consulted
    BITMAPINFOHEADER header = {};
    header.biSize = 12345;
    header.biWidth = 2;
    header.biHeight = -2;
    header.biBitCount = 24;
    header.biCompression = 7;
    const auto* raw = reinterpret_cast<const uint8_t*>(&header);
    content.insert(content.end(), raw, raw + 40);
    for (int i = 0; i < 57; ++i) // more than the pixels need
        content.push_back(static_cast<uint8_t>(i));
    const TempFile file(".bmp", content);
    const ReadResult r = read_bmp(file.name());
    EXPECT_EQ(r.status, KIRVO_OK);
    EXPECT_EQ(r.width, 2u);
    EXPECT_EQ(r.height, static_cast<uint32_t>(-2));
    ASSERT_TRUE(r.dib);
    const size_t size = content.size() - 14;
    ASSERT_GE(GlobalSize(r.dib), size);
#ifndef _WIN32
    EXPECT_EQ(GlobalSize(r.dib), size);
#endif
    const auto* bytes = static_cast<const uint8_t*>(GlobalLock(r.dib));
    EXPECT_EQ(std::memcmp(bytes, content.data() + 14, size), 0);
    GlobalUnlock(r.dib);
}

TEST(ReadBmp, EveryShortFileHasItsStatus) {
    Random random(10);
    const Dib dib = make_random_dib({3, 2, 24}, random);
    const TempFile whole(".bmp");
    ASSERT_EQ(DibWriteEx(whole.name(), dib, 0, 0, -1, -1), KIRVO_OK);
    const Bytes content = whole.read();
    for (size_t size = 0; size <= content.size(); ++size) {
        const TempFile file(".bmp",
                            Bytes(content.begin(), content.begin() + static_cast<long>(size)));
        const ReadResult r = read_bmp(file.name());
        if (size < 14)
            EXPECT_EQ(r.status, KIRVO_READ_ERROR) << size;
        else if (size < 14 + 15) // the low byte of the depth is not there
            EXPECT_EQ(r.status, KIRVO_NOT_BMP) << size;
        else
            EXPECT_EQ(r.status, KIRVO_OK) << size; // the layout is trusted
        EXPECT_EQ(static_cast<HGLOBAL>(r.dib) != nullptr, r.status == KIRVO_OK);
    }
}

TEST(ReadBmp, SignatureComesBeforeEverythingBehindIt) {
    const TempFile file(".bmp", Bytes(14, 'B'));
    EXPECT_EQ(read_bmp(file.name()).status, KIRVO_NOT_BMP);
    file.write(Bytes(13, 'B'));
    EXPECT_EQ(read_bmp(file.name()).status, KIRVO_READ_ERROR);
    Bytes swapped(100, 0);
    swapped[0] = 'M';
    swapped[1] = 'B';
    file.write(swapped);
    const ReadResult r = read_bmp(file.name());
    EXPECT_EQ(r.status, KIRVO_NOT_BMP);
    EXPECT_EQ(r.bits, untouched);
}

TEST(ReadBmp, DepthIsReportedEvenWhenItIsRefused) {
    for (int bits = 0; bits <= 64; ++bits) {
        Bytes content = file_header(0, 0);
        content.resize(54 + 16);
        content[14] = 40;
        content[14 + 4] = 1;
        content[14 + 8] = 1;
        content[14 + 14] = static_cast<uint8_t>(bits);
        const TempFile file(".bmp", content);
        const ReadResult r = read_bmp(file.name());
        const bool good =
            bits == 1 || bits == 4 || bits == 8 || bits == 16 || bits == 24 || bits == 32;
        EXPECT_EQ(r.status, good ? KIRVO_OK : KIRVO_NOT_BMP);
        EXPECT_EQ(r.bits, static_cast<uint32_t>(bits));
        EXPECT_EQ(r.width, good ? 1u : untouched);
        EXPECT_EQ(r.height, good ? 1u : untouched);
    }
}

TEST(ReadBmp, MissingFilesAndFolders) {
    for (const std::string& name :
         {std::string("no such file.bmp"), std::string(), temp_folder()}) {
        const ReadResult r = read_bmp(name.c_str());
        EXPECT_EQ(r.status, KIRVO_CANNOT_OPEN) << name;
        EXPECT_EQ(r.width, untouched);
        EXPECT_FALSE(r.dib);
    }
    EXPECT_EQ(read_bmp(nullptr).status, KIRVO_CANNOT_OPEN);
    EXPECT_EQ(read_bmp(std::string(4096, 'x').c_str()).status, KIRVO_CANNOT_OPEN);
}

TEST(ReadBmp, TakesNullPointers) {
    Random random(11);
    const Dib dib = make_random_dib({3, 2, 24}, random);
    const TempFile file(".bmp");
    ASSERT_EQ(DibWriteEx(file.name(), dib, 0, 0, -1, -1), KIRVO_OK);
    EXPECT_TRUE(Dib(DibReadEx(file.name(), nullptr, nullptr, nullptr, nullptr)));
    EXPECT_TRUE(Dib(Dib24Read(file.name(), nullptr, nullptr, nullptr)));
    EXPECT_FALSE(Dib(DibReadEx("no such file", nullptr, nullptr, nullptr, nullptr)));
}

TEST(ReadBmp24, RefusesOtherDepths) {
    Random random(12);
    for (const int bits : {1, 4, 8, 16, 24, 32}) {
        const Dib dib = make_random_dib({3, 2, bits}, random);
        const TempFile file(".bmp");
        ASSERT_EQ(DibWriteEx(file.name(), dib, 0, 0, -1, -1), KIRVO_OK);
        const ReadResult r = read_bmp24(file.name());
        EXPECT_EQ(r.status, bits == 24 ? KIRVO_OK : KIRVO_NEEDS_24);
        EXPECT_EQ(static_cast<HGLOBAL>(r.dib) != nullptr, bits == 24);
    }
    EXPECT_EQ(read_bmp24("no such file").status, KIRVO_CANNOT_OPEN);
    EXPECT_EQ(read_bmp24(TempFile(".bmp", Bytes(20, 'B')).name()).status, KIRVO_NOT_BMP);
    EXPECT_EQ(read_bmp24(TempFile(".bmp", Bytes(3, 'B')).name()).status, KIRVO_READ_ERROR);
}
