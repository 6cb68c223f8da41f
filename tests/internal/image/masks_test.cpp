// Channel masks, colour tables, and rows of pixels as 24-bit rows.
#include "image/pixels.hpp"
#include "support/dib_builder.hpp"

#include <gtest/gtest.h>

using kirvo::LockedDib;
using kirvo::PixelFormat;
using namespace kirvo_test;

namespace {

kirvo::Masks masks_of(const Dib& dib) { return kirvo::masks_of(LockedDib(dib)); }

} // namespace

TEST(Masks16, DefaultsWithoutBitFields) {
    const kirvo::Masks m = masks_of(make_dib({1, 1, 16}));
    EXPECT_EQ(m, (kirvo::Masks{{0x7C00, 0x03E0, 0x001F}, {10, 5, 0}, {3, 3, 3}}));
    EXPECT_EQ(m.sum(), 0x7FFFu);
}

TEST(Masks16, ShiftAndWideningFromTheLowestRunOfOnes) {
    const kirvo::Masks m = masks_of(make_dib({1, 1, 16, masks_565}));
    EXPECT_EQ(m, (kirvo::Masks{{0xF800, 0x07E0, 0x001F}, {11, 5, 0}, {3, 2, 3}}));
    EXPECT_EQ(m.sum(), 0xFFFFu);
    // An empty mask, a full one, one with a gap; only the low 16 bits count.
    const kirvo::Masks odd = masks_of(make_dib({1, 1, 16, Masks{0xABCD0000, 0xFFFF, 0x0F0E}}));
    EXPECT_EQ(odd, (kirvo::Masks{{0, 0xFFFF, 0x0F0E}, {16, 0, 1}, {8, -8, 5}}));
}

TEST(Masks16, FollowTheHeader) {
    const kirvo::Masks m = masks_of(make_dib({1, 1, 16, masks_565, 0, 64}));
    EXPECT_EQ(m.mask[0], 0xF800u);
}

TEST(Masks32, DefaultsAndShifts) {
    EXPECT_EQ(masks_of(make_dib({1, 1, 32})),
              (kirvo::Masks{{0xFF0000, 0xFF00, 0xFF}, {16, 8, 0}, {0, 0, 0}}));
    const kirvo::Masks m = masks_of(make_dib({1, 1, 32, Masks{0x80000000, 0, 0x3FF}}));
    EXPECT_EQ(m, (kirvo::Masks{{0x80000000, 0, 0x3FF}, {31, 32, 0}, {0, 0, 0}}));
    EXPECT_EQ(m.sum(), 0x800003FFu);
}

#ifndef _WIN32
TEST(Masks32, PastTheEndOfTheBlockAreZero) {
    EXPECT_EQ(masks_of(make_dib({1, 1, 32, masks_888, 0, 40, -12})),
              (kirvo::Masks{{0xFF0000, 0, 0}, {16, 32, 32}, {0, 0, 0}}));
}
#endif

TEST(CopyMasks, CarriesOrWritesTheDefaultsOfTheSourceDepth) {
    const auto carried = [](const DibSpec& from, int to_bits) {
        const Dib source = make_dib(from);
        const Dib to(DibMemAllocEx(1, 1, static_cast<uint32_t>(to_bits)));
        kirvo::copy_masks(LockedDib(to), LockedDib(source));
        return to.masks();
    };
    EXPECT_EQ(carried({1, 1, 16}, 16), masks_555);
    EXPECT_EQ(carried({1, 1, 16, masks_565}, 16), masks_565);
    EXPECT_EQ(carried({1, 1, 32}, 32), masks_888);
    EXPECT_EQ(carried({1, 1, 32, masks_bgr888}, 32), masks_bgr888);
    EXPECT_EQ(carried({1, 1, 24}, 32), masks_888); // any depth but 16

    Random random(1);
    const Dib plain = make_random_dib({4, 4, 24}, random);
    const std::vector<uint8_t> before = plain.bytes();
    kirvo::copy_masks(LockedDib(plain), LockedDib(make_dib({1, 1, 32, masks_888})));
    EXPECT_EQ(plain.bytes(), before);
}

TEST(CopyColourTable, CopiesAsManyEntriesAsTheSourceHas) {
    Random random(2);
    for (const uint32_t used : {0u, 1u, 20u, 255u, 256u}) {
        const Dib from = make_random_dib({3, 3, 8, {}, used}, random);
        const Dib to = make_dib({3, 3, 8});
        kirvo::copy_colour_part(LockedDib(to), LockedDib(from));
        std::vector<uint8_t> want = make_dib({3, 3, 8}).bytes();
        const std::vector<uint8_t> source = from.bytes();
        std::copy_n(source.begin() + 40, 4 * (used == 0 ? 256 : used), want.begin() + 40);
        EXPECT_EQ(to.bytes(), want) << used;
    }
}

TEST(CopyColourTable, StaysInsideBothBlocks) {
    Dib from = make_dib({3, 3, 8});
    BITMAPINFOHEADER header = from.header();
    header.biClrUsed = 0xFFFFFFFF;
    from.set_header(header);
    const Dib to = make_dib({3, 3, 8});
    kirvo::copy_colour_part(LockedDib(to), LockedDib(from));
    EXPECT_EQ(to.header().biClrUsed, 0u);
}

TEST(PixelRows, UnpackAndPackByTheChannelRules) {
    Random random(3);
    const DibSpec kinds[] = {{1, 1, 24},
                             {1, 1, 16},
                             {1, 1, 16, masks_565},
                             {1, 1, 16, Masks{0x00F0, 0xF000, 0x000E}},
                             {1, 1, 32},
                             {1, 1, 32, masks_bgr888},
                             {1, 1, 32, Masks{0xFF000000, 0x0000FF00, 0x0000003F}}};
    for (const DibSpec& kind : kinds) {
        const Dib dib = make_dib(kind);
        const PixelFormat format = PixelFormat::of(LockedDib(dib));
        for (const size_t count : {0, 1, 2, 3, 15, 16, 17, 63, 64, 65, 200}) {
            std::vector<uint8_t> row(count * format.bytes() + 16), bgr(count * 3 + 16, 0xCC);
            random.fill(row.data(), row.size());
            kirvo::unpack_row(format, row.data(), bgr.data(), count);
            for (size_t i = 0; i < count; ++i) {
                const kirvo::Rgb want = format.load(row.data() + i * format.bytes());
                EXPECT_EQ((kirvo::Rgb{bgr[3 * i + 2], bgr[3 * i + 1], bgr[3 * i]}), want);
            }
            EXPECT_EQ(std::vector<uint8_t>(bgr.end() - 16, bgr.end()),
                      std::vector<uint8_t>(16, 0xCC));
            random.fill(bgr.data(), bgr.size());
            const std::vector<uint8_t> tail(row.end() - 16, row.end());
            kirvo::pack_row(format, bgr.data(), row.data(), count);
            for (size_t i = 0; i < count; ++i) {
                uint8_t want[4];
                format.store(want, {bgr[3 * i + 2], bgr[3 * i + 1], bgr[3 * i]});
                EXPECT_EQ(std::vector<uint8_t>(want, want + format.bytes()),
                          std::vector<uint8_t>(row.data() + i * format.bytes(),
                                               row.data() + (i + 1) * format.bytes()));
            }
            EXPECT_EQ(std::vector<uint8_t>(row.end() - 16, row.end()), tail);
        }
    }
}

TEST(PixelFormats, ChannelsOfOddMasks) {
    // A 16-bit mask wider than 8 bits scales the other way; a 32-bit channel keeps its low 8 bits.
    const PixelFormat wide = {16, {{0x0FFF, 0xF000, 0}, {0, 12, 16}, {-4, 4, 8}}};
    EXPECT_EQ(wide.channel(0x0ABC, 0), 0xB);
    EXPECT_EQ(wide.channel(0xF000, 1), 0xF0);
    EXPECT_EQ(wide.channel(0xFFFF, 2), 0);
    EXPECT_EQ(wide.under_mask(0xAB, 0), 0xAB0u);
    EXPECT_EQ(wide.under_mask(0xAB, 2), 0u);
    const PixelFormat ten = {32, {{0x3FF00000, 0xFFC00, 0x3FF}, {20, 10, 0}, {0, 0, 0}}};
    EXPECT_EQ(ten.channel(0x12300000, 0), 0x23);
    EXPECT_EQ(ten.under_mask(0xAB, 1), 0xABu << 10);
}
