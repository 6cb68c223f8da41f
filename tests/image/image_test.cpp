// The image model: new images, colour parts, colour tables, the fixed palette, version, blocks.
#include "support/dib_builder.hpp"

#include <cstring>
#include <gtest/gtest.h>
#include <set>

using namespace kirvo_test;

namespace {

struct Expected {
    int32_t width, height, bits;
    size_t block;
    uint32_t image;
};

std::vector<uint8_t> whole_block(HGLOBAL handle) {
    const auto* bytes = static_cast<const uint8_t*>(GlobalLock(handle));
    std::vector<uint8_t> copy(bytes, bytes + GlobalSize(handle));
    GlobalUnlock(handle);
    return copy;
}

BITMAPINFOHEADER header_with(uint16_t bits, uint32_t compression = BI_RGB, uint32_t used = 0,
                             uint32_t size = 40) {
    BITMAPINFOHEADER header = {};
    header.biSize = size;
    header.biBitCount = bits;
    header.biCompression = compression;
    header.biClrUsed = used;
    return header;
}

} // namespace

TEST(Version, IsOneByteEach) { EXPECT_EQ(GetVerKirvoDll(), 16778242u); }

TEST(NewImage, HasTheStatedSizeAndHeaderAtEveryDepth) {
    const Expected cases[] = {
        {1, 1, 1, 52, 4},   {33, 2, 1, 48 + 16, 16},  {1, 1, 4, 108, 4},  {9, 3, 4, 104 + 24, 24},
        {1, 1, 8, 1068, 4}, {5, 2, 8, 1064 + 16, 16}, {1, 1, 16, 56, 4},  {3, 2, 16, 52 + 16, 16},
        {3, 2, 24, 64, 24}, {1, 5, 24, 40 + 20, 20},  {3, 2, 32, 76, 24}, {1, 1, 32, 56, 4},
    };
    for (const Expected& e : cases) {
        SCOPED_TRACE(testing::Message() << e.width << "x" << e.height << "x" << e.bits);
        const Dib dib(
            DibMemAllocEx(static_cast<uint32_t>(e.width), e.height, static_cast<uint32_t>(e.bits)));
        ASSERT_TRUE(dib);
        EXPECT_TRUE(is_unlocked(dib));
        std::vector<uint8_t> bytes = whole_block(dib);
        ASSERT_GE(bytes.size(), e.block);
#ifndef _WIN32
        EXPECT_EQ(bytes.size(), e.block);
#endif
        BITMAPINFOHEADER want = {};
        want.biSize = 40;
        want.biWidth = e.width;
        want.biHeight = e.height;
        want.biPlanes = 1;
        want.biBitCount = static_cast<WORD>(e.bits);
        want.biCompression = e.bits == 16 || e.bits == 32 ? 3 : 0;
        want.biSizeImage = e.image;
        EXPECT_EQ(std::memcmp(bytes.data(), &want, 40), 0);
        // Colour table, masks and pixels are zero.
        EXPECT_EQ(
            std::vector<uint8_t>(bytes.begin() + 40, bytes.begin() + static_cast<long>(e.block)),
            std::vector<uint8_t>(e.block - 40));
    }
}

TEST(NewImage, RefusesBadSizesAndDepths) {
    EXPECT_EQ(DibMemAllocEx(0, 1, 24), nullptr);
    EXPECT_EQ(DibMemAllocEx(0x80000000u, 1, 24), nullptr); // tested as signed
    EXPECT_EQ(DibMemAllocEx(0xFFFFFFFFu, 1, 24), nullptr);
    EXPECT_EQ(DibMemAllocEx(1, 0, 24), nullptr);
    EXPECT_EQ(DibMemAllocEx(1, -1, 24), nullptr);
    EXPECT_EQ(DibMemAllocEx(1, INT32_MIN, 24), nullptr);
    for (uint32_t bits = 0; bits <= 64; ++bits) {
        const bool good =
            bits == 1 || bits == 4 || bits == 8 || bits == 16 || bits == 24 || bits == 32;
        const Dib dib(DibMemAllocEx(1, 1, bits));
        EXPECT_EQ(static_cast<HGLOBAL>(dib) != nullptr, good) << bits;
    }
    EXPECT_EQ(DibMemAllocEx(1, 1, 0x100018), nullptr);
}

TEST(NewImage, RefusesBlocksThatCannotBe) {
    EXPECT_EQ(DibMemAllocEx(0x7FFFFFFF, 0x7FFFFFFF, 32), nullptr);
    EXPECT_EQ(DibMemAllocEx(262144, 131072, 1), nullptr); // 2^32 wraps to 0 in 32 bits
    EXPECT_EQ(DibMemAllocEx(0x7FFFFFFF, 1, 24), nullptr);
    EXPECT_EQ(DibMemAllocEx(23171, 23171, 32), nullptr);  // 2^31 + 97316 bytes of pixels
    EXPECT_EQ(DibMemAllocEx(0x40000000, 4, 32), nullptr); // 2^34 wraps to 0 in 32 bits
}

TEST(NumberOfColours, FollowsCountThenDepth) {
    const auto count = [](BITMAPINFOHEADER header) { return DibNumColors(&header); };
    EXPECT_EQ(count(header_with(1)), 2);
    EXPECT_EQ(count(header_with(4)), 16);
    EXPECT_EQ(count(header_with(8)), 256);
    EXPECT_EQ(count(header_with(16)), 0);
    EXPECT_EQ(count(header_with(32)), 0);
    EXPECT_EQ(count(header_with(16, BI_BITFIELDS)), 3);
    EXPECT_EQ(count(header_with(32, BI_BITFIELDS)), 3);
    EXPECT_EQ(count(header_with(24)), 0);
    EXPECT_EQ(count(header_with(24, BI_BITFIELDS)), 0);
    EXPECT_EQ(count(header_with(2)), 0);
    EXPECT_EQ(count(header_with(8, BI_RGB, 20)), 20);
    EXPECT_EQ(count(header_with(24, BI_RGB, 5)), 5);
    EXPECT_EQ(count(header_with(32, BI_BITFIELDS, 7)), 7);
    EXPECT_EQ(count(header_with(8, BI_RGB, 0x12345)), 0x2345); // low 16 bits
    EXPECT_EQ(count(header_with(8, BI_RGB, 0x10000)), 0);
    EXPECT_EQ(DibNumColors(nullptr), 0);
}

TEST(ColourPartSize, IsFourBytesAColourAndThreeWithACoreHeader) {
    const auto size = [](BITMAPINFOHEADER header) { return PaletteSize(&header); };
    EXPECT_EQ(size(header_with(1)), 8);
    EXPECT_EQ(size(header_with(4)), 64);
    EXPECT_EQ(size(header_with(8)), 1024);
    EXPECT_EQ(size(header_with(8, BI_RGB, 20)), 80);
    EXPECT_EQ(size(header_with(16)), 0);
    EXPECT_EQ(size(header_with(16, BI_BITFIELDS)), 12);
    EXPECT_EQ(size(header_with(32, BI_BITFIELDS)), 12);
    EXPECT_EQ(size(header_with(24)), 0);
    EXPECT_EQ(size(header_with(8, BI_RGB, 0, 12)), 768);
    EXPECT_EQ(size(header_with(8, BI_RGB, 20, 12)), 60);
    EXPECT_EQ(size(header_with(8, BI_RGB, 20, 108)), 80);
    EXPECT_EQ(size(header_with(8, BI_RGB, 0x4001)), 4); // 65540 keeps 16 bits
    EXPECT_EQ(PaletteSize(nullptr), 0);
}

TEST(QueryBitCount, ReadsTheDepth) {
    for (const int bits : {1, 4, 8, 16, 24, 32})
        EXPECT_EQ(DibQueryBitCount(make_dib({3, 2, bits})), bits);
    EXPECT_EQ(DibQueryBitCount(nullptr), KIRVO_NULL_HANDLE);
    Dib odd = make_dib({3, 2, 24});
    BITMAPINFOHEADER header = odd.header();
    header.biBitCount = 65535;
    odd.set_header(header);
    EXPECT_EQ(DibQueryBitCount(odd), 65535);
    EXPECT_TRUE(is_unlocked(odd));
}

TEST(SetColourTableEntry, WritesBlueGreenRedAndKeepsTheReservedByte) {
    Dib dib = make_dib({2, 2, 8});
    dib.set_colour(255, 1, 2, 3, 77);
    EXPECT_EQ(XPaletteQuad(dib, 255, 0xAA030201), 1);
    const std::vector<uint8_t> bytes = dib.bytes();
    EXPECT_EQ(std::vector<uint8_t>(bytes.begin() + 40 + 4 * 255, bytes.begin() + 40 + 4 * 256),
              (std::vector<uint8_t>{3, 2, 1, 77}));
    EXPECT_EQ(XPaletteQuad(dib, 0, 0x00FF8040), 1);
    EXPECT_EQ(dib.bytes()[40], 0xFF);
    EXPECT_EQ(dib.bytes()[41], 0x80);
    EXPECT_EQ(dib.bytes()[42], 0x40);
    EXPECT_TRUE(is_unlocked(dib));
}

TEST(SetColourTableEntry, RefusesWhatIsNotInTheTable) {
    const Dib eight = make_dib({2, 2, 8});
    EXPECT_EQ(XPaletteQuad(nullptr, 0, 1), 0);
    EXPECT_EQ(XPaletteQuad(eight, -1, 1), 0);
    EXPECT_EQ(XPaletteQuad(eight, 256, 1), 0);
    for (const DibSpec& spec : {DibSpec{5, 5, 4}, DibSpec{5, 5, 1}, DibSpec{5, 5, 24},
                                DibSpec{5, 5, 16}, DibSpec{20, 20, 8, {}, 20}}) {
        const Dib dib = make_dib(spec);
        const int entries = DibNumColors(std::vector<BITMAPINFOHEADER>{dib.header()}.data());
        const std::vector<uint8_t> before = dib.bytes();
        EXPECT_EQ(XPaletteQuad(dib, entries, 0xFFFFFF), 0) << spec.bits;
        EXPECT_EQ(XPaletteQuad(dib, 255, 0xFFFFFF), 0) << spec.bits;
        EXPECT_EQ(dib.bytes(), before);
        if (entries > 0) {
            EXPECT_EQ(XPaletteQuad(dib, entries - 1, 0xFFFFFF), 1) << spec.bits;
        }
        EXPECT_TRUE(is_unlocked(dib));
    }
}

TEST(SetColourTableEntry, StaysInsideABlockThatIsTooShort) {
    const Dib dib = make_dib({1, 1, 8, {}, 0, 40, 0}); // the whole block
    const Dib cut = make_dib({1, 1, 8, {}, 0, 40, -4 - 1020});
    EXPECT_EQ(XPaletteQuad(dib, 255, 1), 1);
#ifndef _WIN32 // sizes of blocks are exact
    EXPECT_EQ(XPaletteQuad(cut, 0, 1), 1);
    EXPECT_EQ(XPaletteQuad(cut, 1, 1), 0);
#endif
}

TEST(SetColourTableEntry, CountsMasksAsEntries) {
    const Dib dib = make_dib({1, 1, 32, masks_888});
    EXPECT_EQ(XPaletteQuad(dib, 2, 0x030201), 1);
    EXPECT_EQ(XPaletteQuad(dib, 3, 0x030201), 0);
    EXPECT_EQ(dib.masks().blue, 0x00010203u);
}

TEST(FixedPalette, HasSystemColoursAtItsEndsAndFlagsBetween) {
    HPALETTE palette = KirvoCreatePalette();
    ASSERT_NE(palette, nullptr);
    PALETTEENTRY entries[256];
    ASSERT_EQ(GetPaletteEntries(palette, 0, 256, entries), 256u);
    const auto colour = [&](int i) {
        return entries[i].peRed << 16 | entries[i].peGreen << 8 | entries[i].peBlue;
    };
    const int first[] = {0x000000, 0x800000, 0x008000, 0x808000, 0x000080,
                         0x800080, 0x008080, 0xC0C0C0, 0xC0DCC0, 0xA4C8F0};
    const int last[] = {0xFFFBF0, 0xA0A0A4, 0x808080, 0xFF0000, 0x00FF00,
                        0xFFFF00, 0x0000FF, 0xFF00FF, 0x00FFFF, 0xFFFFFF};
    for (int i = 0; i < 10; ++i) {
        EXPECT_EQ(colour(i), first[i]);
        EXPECT_EQ(colour(246 + i), last[i]);
    }
    // Some from each row of the table.
    EXPECT_EQ(colour(10), 0x040404);
    EXPECT_EQ(colour(31), 0x990000);
    EXPECT_EQ(colour(32), 0xCC0000);
    EXPECT_EQ(colour(63), 0x990033);
    EXPECT_EQ(colour(95), 0x000066);
    EXPECT_EQ(colour(127), 0xFF00CC);
    EXPECT_EQ(colour(128), 0xCC00FF);
    EXPECT_EQ(colour(159), 0xCCFF99);
    EXPECT_EQ(colour(191), 0x33FFCC);
    EXPECT_EQ(colour(223), 0x33FFFF);
    EXPECT_EQ(colour(239), 0xB2B2B2);
    EXPECT_EQ(colour(245), 0xF8F8F8);
    for (int i = 0; i < 256; ++i)
        EXPECT_EQ(entries[i].peFlags, i < 10 || i >= 246 ? 0 : 4) << i;
    // Cube colours that are absent on purpose; no colour stands twice; and a sum over the whole table
    // that notices any entry in a wrong place.
    std::set<int> distinct;
    uint32_t sum = 0;
    for (int i = 0; i < 256; ++i) {
        for (const int absent : {0x0033FF, 0x00FF33, 0x3300FF, 0x33FF00})
            EXPECT_NE(colour(i), absent);
        distinct.insert(colour(i));
        sum += static_cast<uint32_t>(i + 1) * static_cast<uint32_t>(colour(i));
    }
    EXPECT_EQ(distinct.size(), 256u);
    EXPECT_EQ(sum, 1536537129u);
    EXPECT_TRUE(DeleteObject(palette));
}

#ifndef _WIN32

TEST(Blocks, AreZeroAndExactlyAsLargeAsAsked) {
    for (const size_t size : {size_t{0}, size_t{1}, size_t{4097}, (size_t{2} << 20) + 5}) {
        HGLOBAL block = GlobalAlloc(GHND, size);
        ASSERT_NE(block, nullptr);
        EXPECT_EQ(GlobalSize(block), size);
        const auto* bytes = static_cast<const uint8_t*>(GlobalLock(block));
        ASSERT_NE(bytes, nullptr);
        for (size_t i = 0; i < size; i += 509)
            ASSERT_EQ(bytes[i], 0);
        EXPECT_EQ(GlobalUnlock(block), 0);
        EXPECT_EQ(GlobalFree(block), nullptr);
    }
}

TEST(Blocks, CountTheirLocks) {
    HGLOBAL block = GlobalAlloc(GHND, 10);
    EXPECT_EQ(GlobalLock(block), GlobalLock(block));
    EXPECT_NE(GlobalUnlock(block), 0);
    EXPECT_EQ(GlobalUnlock(block), 0);
    EXPECT_EQ(GlobalUnlock(block), 0);
    GlobalFree(block);
}

TEST(Blocks, WrongAndFreedHandlesAreRecognised) {
    HGLOBAL block = GlobalAlloc(GHND, 10);
    GlobalFree(block);
    HGLOBAL other = GlobalAlloc(GHND, 10); // takes the freed place, with another handle
    EXPECT_NE(block, other);
    char somewhere[64] = {};
    for (HGLOBAL wrong :
         {block, HGLOBAL{nullptr}, static_cast<HGLOBAL>(somewhere),
          reinterpret_cast<HGLOBAL>(uintptr_t{12345}), reinterpret_cast<HGLOBAL>(~uintptr_t{0})}) {
        EXPECT_EQ(GlobalLock(wrong), nullptr);
        EXPECT_EQ(GlobalSize(wrong), 0u);
        EXPECT_EQ(GlobalUnlock(wrong), 0);
        EXPECT_EQ(GlobalFree(wrong), wrong);
        EXPECT_EQ(DibQueryBitCount(wrong), KIRVO_NULL_HANDLE);
    }
    EXPECT_NE(GlobalLock(other), nullptr);
    GlobalFree(other);
    EXPECT_EQ(GlobalAlloc(GMEM_ZEROINIT, 10), nullptr); // not movable
}

TEST(Palettes, AnswerTheirEntriesUntilDeleted) {
    HPALETTE palette = KirvoCreatePalette();
    PALETTEENTRY entries[4] = {};
    EXPECT_EQ(GetPaletteEntries(palette, 0, 0, nullptr), 256u);
    EXPECT_EQ(GetPaletteEntries(palette, 254, 4, entries), 2u);
    EXPECT_EQ(entries[1].peRed, 255);
    EXPECT_EQ(GetPaletteEntries(palette, 256, 1, entries), 0u);
    EXPECT_TRUE(DeleteObject(palette));
    EXPECT_FALSE(DeleteObject(palette));
    EXPECT_EQ(GetPaletteEntries(palette, 0, 4, entries), 0u);
    EXPECT_FALSE(DeleteObject(nullptr));
}

#endif
