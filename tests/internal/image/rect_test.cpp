// The check that opens nearly every operation, and views of short blocks.
#include "image/dib.hpp"
#include "support/dib_builder.hpp"

#include <cstring>
#include <gtest/gtest.h>

using kirvo::LockedDib;
using kirvo::Rect;
using kirvo::RowStart;
using kirvo::Status;
using namespace kirvo_test;

namespace {

using Check = Status (*)(const LockedDib&, const Rect&, RowStart);

struct Member {
    Check check;
    std::vector<int> depths;
    Status otherwise;
};

const Member members[] = {
    {kirvo::check_rect_24, {24}, Status::needs_24},
    {kirvo::check_rect_8_24, {8, 24}, Status::needs_8_24},
    {kirvo::check_rect_24_32, {24, 32}, Status::needs_24_32},
    {kirvo::check_rect_16_to_32, {16, 24, 32}, Status::needs_16_24_32},
    {kirvo::check_rect_8_to_32, {8, 16, 24, 32}, Status::needs_8_16_24_32},
};

Status run(Check check, HGLOBAL handle, const Rect& rect, RowStart start = RowStart::after_header) {
    return check(LockedDib(handle), rect, start);
}

} // namespace

TEST(RectangleCheck, AcceptsItsDepthsAndNamesThem) {
    for (const Member& m : members) {
        for (int bits = 0; bits <= 40; ++bits) {
            Dib dib = make_dib({6, 4, 32, {}, 0, 40, 2000});
            BITMAPINFOHEADER header = dib.header();
            header.biBitCount = static_cast<WORD>(bits);
            dib.set_header(header);
            const bool accepted =
                std::find(m.depths.begin(), m.depths.end(), bits) != m.depths.end();
            EXPECT_EQ(run(m.check, dib, {0, 0, 6, 4}), accepted ? Status::ok : m.otherwise);
            // Signs are tested before the depth, the extent after it.
            EXPECT_EQ(run(m.check, dib, {0, 0, 0, 4}), Status::bad_parameter);
            EXPECT_EQ(run(m.check, dib, {0, 0, 7, 4}),
                      accepted ? Status::bad_parameter : m.otherwise);
        }
    }
}

TEST(RectangleCheck, NullHandleWinsOverEverything) {
    for (const Member& m : members)
        EXPECT_EQ(run(m.check, nullptr, {-1, -1, 0, 0}), Status::null_handle);
}

TEST(RectangleCheck, Extent) {
    const Dib dib = make_dib({6, 4, 24});
    const auto check = [&](const Rect& rect) { return run(kirvo::check_rect_24, dib, rect); };
    EXPECT_EQ(check({0, 0, 6, 4}), Status::ok);
    EXPECT_EQ(check({5, 3, 1, 1}), Status::ok);
    for (const Rect& bad :
         {Rect{-1, 0, 1, 1}, Rect{0, -1, 1, 1}, Rect{0, 0, 0, 1}, Rect{0, 0, 1, 0},
          Rect{0, 0, -1, 1}, Rect{0, 0, 1, -1}, Rect{0, 0, 7, 4}, Rect{0, 0, 6, 5},
          Rect{1, 0, 6, 4}, Rect{0, 1, 6, 4}, Rect{6, 0, 1, 1}, Rect{INT32_MAX, 0, 1, 1},
          Rect{0, INT32_MAX, 1, INT32_MAX}, Rect{INT32_MAX, 0, INT32_MAX, 1}})
        EXPECT_EQ(check(bad), Status::bad_parameter);
    EXPECT_TRUE(is_unlocked(dib));
}

#ifndef _WIN32 // sizes of blocks are exact

TEST(RectangleCheck, BlockMustHoldEveryPixelButNotTheLastPadding) {
    for (const int bits : {8, 16, 24, 32}) {
        const auto padding = stride_of(5, bits) - 5 * bits / 8;
        const Dib enough = make_dib({5, 3, bits, {}, 0, 40, -padding});
        const Dib cut = make_dib({5, 3, bits, {}, 0, 40, -padding - 1});
        EXPECT_EQ(run(kirvo::check_rect_8_to_32, enough, {0, 0, 1, 1}), Status::ok) << bits;
        EXPECT_EQ(run(kirvo::check_rect_8_to_32, cut, {0, 0, 1, 1}), Status::bad_parameter) << bits;
    }
}

TEST(RectangleCheck, RowStartRulesDifferByTheHeader) {
    const Dib longer = make_dib({5, 3, 24, {}, 0, 60, -20}); // ends where a 40-byte header's would
    EXPECT_EQ(run(kirvo::check_rect_24, longer, {0, 0, 1, 1}, RowStart::after_40), Status::ok);
    EXPECT_EQ(run(kirvo::check_rect_24, longer, {0, 0, 1, 1}, RowStart::after_header),
              Status::bad_parameter);
    Dib huge = make_dib({5, 3, 24});
    BITMAPINFOHEADER header = huge.header();
    header.biSize = 0xFFFFFFFF;
    huge.set_header(header);
    EXPECT_EQ(run(kirvo::check_rect_24, huge, {0, 0, 1, 1}, RowStart::after_header),
              Status::bad_parameter);
}

TEST(View, FieldsPastAShortBlockAreZero) {
    for (size_t size = 0; size < 60; ++size) {
        HGLOBAL block = GlobalAlloc(GHND, size);
        std::memset(GlobalLock(block), 0x18, size);
        GlobalUnlock(block);
        const LockedDib dib(block);
        EXPECT_EQ(dib.header.biBitCount, size >= 16 ? 0x1818 : size == 15 ? 0x18 : 0);
        EXPECT_EQ(dib.header.biSize, size >= 4 ? 0x18181818u : (1ull << (8 * size)) / 255 * 0x18);
        EXPECT_FALSE(dib.holds_rows(RowStart::after_header));
        GlobalFree(block);
    }
}

TEST(View, BytesPastTheEndReadZeroAndAreNotWritten) {
    HGLOBAL block = GlobalAlloc(GHND, 10);
    {
        const LockedDib dib(block);
        const uint8_t ones[8] = {1, 1, 1, 1, 1, 1, 1, 1};
        dib.write_bytes(6, ones, 8);
        dib.write_bytes(10, ones, 8);
        dib.write_bytes(UINT64_MAX, ones, 8);
        uint8_t read[8];
        dib.read_bytes(4, read, 8);
        EXPECT_EQ(std::vector<uint8_t>(read, read + 8),
                  (std::vector<uint8_t>{0, 0, 1, 1, 1, 1, 0, 0}));
        dib.read_bytes(UINT64_MAX, read, 8);
        EXPECT_EQ(std::vector<uint8_t>(read, read + 8), std::vector<uint8_t>(8));
    }
    GlobalFree(block);
}

#endif

TEST(View, LyingSizesDoNotOverflow) {
    Dib dib = make_dib({4, 4, 24});
    for (const int32_t w : {INT32_MIN, -1, 0, 4, 0x10000, 0x55555556, INT32_MAX}) {
        for (const int32_t h : {INT32_MIN, -1, 0, 4, 0x10000, 0x40000000, INT32_MAX}) {
            BITMAPINFOHEADER header = dib.header();
            header.biWidth = w;
            header.biHeight = h;
            dib.set_header(header);
            EXPECT_EQ(LockedDib(dib).holds_rows(RowStart::after_header), w == 4 && h == 4);
        }
    }
}

TEST(Memory, FailsOnDemandAndOnlyOnce) {
    kirvo::fail_allocation(2);
    EXPECT_TRUE(kirvo::new_dib(1, 1, 24));
    EXPECT_FALSE(kirvo::new_dib(1, 1, 24));
    EXPECT_TRUE(kirvo::new_dib(1, 1, 24));
}
