// Rectangle copies and duplicates against plain loops over the stored bytes.
#include "support/dib_builder.hpp"

#include <cstring>
#include <gtest/gtest.h>

using namespace kirvo_test;

namespace {

constexpr int depths[] = {8, 16, 24, 32};

std::vector<uint8_t> block(const Dib& dib) {
    const auto* bytes = static_cast<const uint8_t*>(GlobalLock(dib));
    std::vector<uint8_t> copy(bytes, bytes + GlobalSize(dib));
    GlobalUnlock(dib);
    return copy;
}

DibSpec spec(int32_t width, int32_t height, int bits) {
    DibSpec wanted{width, height, bits};
    if (bits == 16)
        wanted.masks = masks_565;
    if (bits == 32)
        wanted.masks = masks_bgr888;
    return wanted;
}

// The byte at `at` of a block, 0 beyond its end.
uint8_t byte_at(const std::vector<uint8_t>& bytes, size_t at) {
    return at < bytes.size() ? bytes[at] : 0;
}

// What the destination of Dib24Copy holds afterwards.
std::vector<uint8_t> expected_copy(const Dib& to, const Dib& from, int left, int top, int width,
                                   int height) {
    std::vector<uint8_t> result = block(to);
    const std::vector<uint8_t> source = block(from);
    const int bits = from.bits();
    const size_t colour_bytes =
        bits == 8 ? (from.header().biClrUsed != 0 ? 4 * from.header().biClrUsed : 1024)
        : bits == 16 || bits == 32 ? 12
                                   : 0;
    for (size_t i = 0; i < colour_bytes; ++i)
        result[40 + i] = source[40 + i];
    const auto stride = static_cast<size_t>(stride_of(width, bits));
    const auto source_stride = static_cast<size_t>(from.stride());
    const bool whole = width == from.width() && height == from.height();
    for (int row = 0; row < height; ++row)
        for (size_t i = 0; i < stride; ++i) {
            const size_t read =
                whole
                    ? from.rows_start() + static_cast<size_t>(row) * stride + i
                    : from.rows_start() +
                          static_cast<size_t>(from.height() - top - height + row) * source_stride +
                          static_cast<size_t>(left * bits / 8) + i;
            const size_t write = to.rows_start() + static_cast<size_t>(row) * stride + i;
            if (write < result.size())
                result[write] = byte_at(source, read);
        }
    return result;
}

TEST(Copy, FillsADestinationOfTheRectanglesSizeWithTheFollowingBytesInItsPadding) {
    Random random(1);
    for (int bits : depths)
        for (int round = 0; round < 60; ++round) {
            const int32_t w = random.between(1, 19), h = random.between(1, 9);
            const Dib from = make_random_dib(spec(w, h, bits), random);
            const int32_t width = random.between(1, w), height = random.between(1, h);
            const int32_t left = random.between(0, w - width), top = random.between(0, h - height);
            const Dib to = make_random_dib(spec(width, height, bits), random);
            const auto expected = expected_copy(to, from, left, top, width, height);
            const auto source = block(from);
            ASSERT_EQ(Dib24Copy(to, from, left, top, width, height), 0);
            ASSERT_EQ(block(to), expected) << bits;
            ASSERT_EQ(block(from), source);
            ASSERT_TRUE(is_unlocked(to) && is_unlocked(from));
        }
}

TEST(Copy, OfTheSourcesSizeIgnoresTheCorner) {
    Random random(2);
    for (int bits : depths) {
        DibSpec wanted = spec(7, 4, bits);
        wanted.padding = 0xA5;
        const Dib from = make_random_dib(wanted, random);
        const Dib to = make_dib(spec(7, 4, bits));
        ASSERT_EQ(Dib24Copy(to, from, 5, 100, 7, 4), 0);
        EXPECT_EQ(block(to), block(from));
        EXPECT_EQ(Dib24Copy(to, from, -1, 0, 7, 4), -1);
        EXPECT_EQ(Dib24Copy(to, from, 0, -1, 7, 4), -1);
    }
}

TEST(Copy, DoesNotLookAtTheDestinationsSize) {
    Random random(3);
    const Dib from = make_random_dib(spec(9, 6, 24), random);
    const Dib to = make_dib(spec(100, 2, 24)); // room for 600 bytes, says 100 x 2
    const auto expected = expected_copy(to, from, 2, 1, 5, 4);
    ASSERT_EQ(Dib24Copy(to, from, 2, 1, 5, 4), 0);
    EXPECT_EQ(block(to), expected);
    EXPECT_EQ(to.width(), 100);
}

TEST(Copy, IntoADestinationTooSmallIsRefusedAndWritesNothing) {
    Random random(4);
    for (int bits : depths) {
        const Dib from = make_random_dib(spec(9, 16, bits), random);
        const Dib to = make_random_dib(spec(9, 5, bits), random);
        const auto before = block(to);
        EXPECT_EQ(Dib24Copy(to, from, 0, 0, 9, 16), -1);
        EXPECT_EQ(block(to), before);
        EXPECT_TRUE(is_unlocked(to) && is_unlocked(from));
    }
}

TEST(Copy, FromABlockShorterThanItsHeaderSaysIsRefused) {
    Random random(5);
    DibSpec wanted = spec(8, 5, 24);
    wanted.extra_bytes = -1;
    const Dib from = make_random_dib(wanted, random);
    const Dib to = make_random_dib(spec(8, 5, 24), random);
    const auto before = block(to);
    EXPECT_EQ(Dib24Copy(to, from, 0, 0, 8, 5), -1);
    EXPECT_EQ(Dib24CopyEx(to, 0, 0, from, 0, 0, 2, 2), -1);
    EXPECT_EQ(Dib24CopyEx(from, 0, 0, to, 0, 0, 2, 2), -1);
    EXPECT_EQ(block(to), before);
    int32_t status = 9;
    EXPECT_EQ(Dib24DupEx(from, 0, 0, 2, 2, &status), nullptr);
    EXPECT_EQ(status, -1);
}

TEST(Copy, ReadsBytesPastTheSourceAsZero) {
    Random random(6);
    DibSpec wanted = spec(5, 3, 24); // 15 bytes a row and one of padding
    wanted.extra_bytes = -1;         // which the last row lacks
    const Dib from = make_random_dib(wanted, random);
    const Dib to = make_dib(spec(3, 1, 24));
    const auto expected = expected_copy(to, from, 2, 0, 3, 1);
    ASSERT_EQ(Dib24Copy(to, from, 2, 0, 3, 1), 0); // 9 bytes, 3 of padding
    EXPECT_EQ(block(to), expected);
    const Dib all = make_random_dib(spec(5, 3, 24), random);
    ASSERT_EQ(Dib24Copy(all, from, 0, 0, 5, 3), 0);
    EXPECT_EQ(block(all).back(), 0);
    EXPECT_EQ(Dib24Copy(from, all, 0, 0, 5, 3), 0);
}

TEST(Copy, ChecksHandlesSignsDepthsAndExtentInThisOrder) {
    const Dib dib8 = make_dib(spec(4, 4, 8)), dib24 = make_dib(spec(4, 4, 24)),
              dib4 = make_dib(spec(4, 4, 4)), dib1 = make_dib(spec(4, 4, 1));
    EXPECT_EQ(Dib24Copy(nullptr, dib24, -1, 0, 1, 1), -3);
    EXPECT_EQ(Dib24Copy(dib24, nullptr, -1, 0, 1, 1), -3);
    EXPECT_EQ(Dib24Copy(dib8, dib24, -1, 0, 1, 1), -1);
    EXPECT_EQ(Dib24Copy(dib8, dib24, 0, 0, 0, 1), -1);
    EXPECT_EQ(Dib24Copy(dib8, dib24, 0, 0, 1, 0), -1);
    EXPECT_EQ(Dib24Copy(dib8, dib24, 0, 0, 9, 9), -40);
    EXPECT_EQ(Dib24Copy(dib4, dib4, 0, 0, 1, 1), -40);
    EXPECT_EQ(Dib24Copy(dib1, dib1, 0, 0, 1, 1), -40);
    EXPECT_EQ(Dib24Copy(dib24, dib24, 0, 0, 5, 1), -1);
    EXPECT_EQ(Dib24Copy(dib24, dib24, 0, 3, 1, 2), -1);
    EXPECT_EQ(Dib24Copy(dib24, dib24, INT32_MAX, 0, INT32_MAX, 1), -1);
    EXPECT_EQ(Dib24CopyEx(nullptr, -1, 0, dib24, 0, 0, 1, 1), -3);
    EXPECT_EQ(Dib24CopyEx(dib24, -1, 0, nullptr, 0, 0, 1, 1), -3);
    EXPECT_EQ(Dib24CopyEx(dib8, -1, 0, dib24, 0, 0, 1, 1), -1);
    EXPECT_EQ(Dib24CopyEx(dib8, 0, -1, dib24, 0, 0, 1, 1), -1);
    EXPECT_EQ(Dib24CopyEx(dib8, 0, 0, dib24, -1, 0, 1, 1), -1);
    EXPECT_EQ(Dib24CopyEx(dib8, 0, 0, dib24, 0, -1, 1, 1), -1);
    EXPECT_EQ(Dib24CopyEx(dib8, 0, 0, dib24, 0, 0, 0, 1), -1);
    EXPECT_EQ(Dib24CopyEx(dib8, 0, 0, dib24, 0, 0, 1, 0), -1);
    EXPECT_EQ(Dib24CopyEx(dib8, 0, 0, dib24, 0, 0, 9, 1), -40);
    EXPECT_EQ(Dib24CopyEx(dib4, 0, 0, dib4, 0, 0, 1, 1), -40);
    EXPECT_EQ(Dib24CopyEx(dib24, 0, 0, dib24, 1, 0, 4, 1), -1);
    EXPECT_EQ(Dib24CopyEx(dib24, 1, 0, dib24, 0, 0, 4, 1), -1);
    EXPECT_EQ(Dib24CopyEx(dib24, 0, 2, dib24, 0, 0, 1, 3), -1);
    EXPECT_EQ(Dib24CopyEx(dib24, 0, INT32_MAX, dib24, 0, 0, 1, 1), -1);
}

TEST(Copy, KeepsTheColourTableAtTheSourcesNumberOfEntries) {
    Random random(7);
    DibSpec wanted = spec(4, 3, 8);
    wanted.colours_used = 20;
    const Dib from = make_random_dib(wanted, random);
    const Dib to = make_random_dib(spec(2, 2, 8), random);
    const auto expected = expected_copy(to, from, 1, 1, 2, 2);
    ASSERT_EQ(Dib24Copy(to, from, 1, 1, 2, 2), 0);
    EXPECT_EQ(block(to), expected);
    EXPECT_EQ(to.header().biClrUsed, 0u);
}

TEST(Copy, LeavesADestinationWithoutMasksWithoutThem) {
    Random random(8);
    const Dib from = make_random_dib(spec(4, 3, 32), random);
    const Dib to = make_dib({4, 3, 32});
    ASSERT_EQ(Dib24Copy(to, from, 0, 0, 4, 3), 0);
    EXPECT_EQ(to.rows(), from.rows());
    EXPECT_EQ(to.rows_start(), 40u);
}

// Bottom row first, one whole row after the other.
void copy_stored_rows(Dib& to, int to_x, int to_y, const Dib& from, int x, int y, int width,
                      int height) {
    for (int row = height - 1; row >= 0; --row) {
        std::vector<uint32_t> pixels;
        for (int i = 0; i < width; ++i)
            pixels.push_back(from.pixel(x + i, y + row));
        for (int i = 0; i < width; ++i)
            to.set_pixel(to_x + i, to_y + row, pixels[static_cast<size_t>(i)]);
    }
}

TEST(CopyEx, CopiesExactlyTheRectangle) {
    Random random(9);
    for (int bits : depths)
        for (int round = 0; round < 60; ++round) {
            const int32_t w = random.between(1, 19), h = random.between(1, 9);
            const int32_t tw = random.between(1, 19), th = random.between(1, 9);
            const Dib from = make_random_dib(spec(w, h, bits), random);
            DibSpec wanted = spec(tw, th, bits);
            wanted.padding = 0x77;
            const Dib to = make_random_dib(wanted, random);
            const int32_t width = random.between(1, std::min(w, tw)),
                          height = random.between(1, std::min(h, th));
            if (width == w && w == tw && height == h && h == th)
                continue;
            const int32_t x = random.between(0, w - width), y = random.between(0, h - height);
            const int32_t tx = random.between(0, tw - width), ty = random.between(0, th - height);
            Dib expected = copy_of(to);
            expected.write(40, block(from).data() + 40, from.rows_start() - 40);
            copy_stored_rows(expected, tx, ty, from, x, y, width, height);
            ASSERT_EQ(Dib24CopyEx(to, tx, ty, from, x, y, width, height), 0);
            ASSERT_EQ(block(to), block(expected)) << bits;
        }
}

TEST(CopyEx, OfTheSizeOfBothCopiesThePaddingAndIgnoresTheCorners) {
    Random random(10);
    for (int bits : depths) {
        DibSpec wanted = spec(7, 3, bits);
        wanted.padding = 0x5A;
        const Dib from = make_random_dib(wanted, random);
        const Dib to = make_random_dib(spec(7, 3, bits), random);
        ASSERT_EQ(Dib24CopyEx(to, 3, 9, from, 50, 1, 7, 3), 0);
        EXPECT_EQ(block(to), block(from));
    }
}

TEST(CopyEx, OntoItselfWorksRowByRow) {
    Random random(11);
    for (int bits : depths)
        for (int round = 0; round < 60; ++round) {
            const int32_t w = random.between(1, 12), h = random.between(1, 12);
            const Dib dib = make_random_dib(spec(w, h, bits), random);
            const int32_t width = random.between(1, w), height = random.between(1, h);
            const int32_t x = random.between(0, w - width), y = random.between(0, h - height);
            const int32_t tx = random.between(0, w - width), ty = random.between(0, h - height);
            Dib expected = copy_of(dib);
            if (width != w || height != h)
                copy_stored_rows(expected, tx, ty, expected, x, y, width, height);
            ASSERT_EQ(Dib24CopyEx(dib, tx, ty, dib, x, y, width, height), 0);
            ASSERT_EQ(block(dib), block(expected)) << bits;
        }
}

TEST(Copy, OntoItselfWorksRowByRow) {
    Random random(12);
    for (int bits : depths)
        for (int round = 0; round < 40; ++round) {
            const int32_t w = random.between(1, 12), h = random.between(1, 12);
            const Dib dib = make_random_dib(spec(w, h, bits), random);
            const int32_t width = random.between(1, w), height = random.between(1, h);
            const int32_t x = random.between(0, w - width), y = random.between(0, h - height);
            const auto expected = expected_copy(dib, copy_of(dib), x, y, width, height);
            ASSERT_EQ(Dib24Copy(dib, dib, x, y, width, height), 0);
            ASSERT_EQ(block(dib), expected) << bits;
        }
}

TEST(DupEx, MakesANewImageOfTheRectangle) {
    Random random(13);
    for (int bits : depths)
        for (int round = 0; round < 40; ++round) {
            const int32_t w = random.between(1, 19), h = random.between(1, 9);
            DibSpec wanted = spec(w, h, bits);
            wanted.padding = 0x3C;
            const Dib from = make_random_dib(wanted, random);
            const int32_t width = random.between(1, w), height = random.between(1, h);
            const int32_t x = random.between(0, w - width), y = random.between(0, h - height);
            const bool whole = width == w && height == h;
            Dib expected = make_dib(spec(width, height, bits));
            copy_stored_rows(expected, 0, 0, from, x, y, width, height);
            int32_t status = 9;
            const Dib made(Dib24DupEx(from, x, y, width, height, &status));
            ASSERT_EQ(status, 0);
            ASSERT_NE(HGLOBAL(made), nullptr);
            ASSERT_EQ(made.rows(), whole ? from.rows() : expected.rows());
            ASSERT_EQ(made.width(), width);
            ASSERT_EQ(made.height(), height);
            ASSERT_EQ(made.bits(), bits);
            if (bits != 24) {
                const auto source = block(from), result = block(made);
                ASSERT_EQ(
                    std::memcmp(source.data() + 40, result.data() + 40, from.rows_start() - 40), 0);
            }
            ASSERT_TRUE(is_unlocked(made) && is_unlocked(from));
        }
}

TEST(DupEx, WritesTheMasksThatAnImageWithoutThemHas) {
    Random random(14);
    const Dib from16 = make_random_dib({3, 2, 16}, random),
              from32 = make_random_dib({3, 2, 32}, random);
    const Dib made16(Dib24DupEx(from16, 0, 0, 3, 2, nullptr));
    const Dib made32(Dib24DupEx(from32, 1, 0, 2, 2, nullptr));
    EXPECT_EQ(made16.masks(), masks_555);
    EXPECT_EQ(made16.header().biCompression, 3u);
    EXPECT_EQ(made16.rows(), from16.rows());
    EXPECT_EQ(made32.masks(), masks_888);
    EXPECT_EQ(made32.pixel(0, 0), from32.pixel(1, 0));
}

TEST(DupEx, FindsTheRowsOf40HeaderBytesAndTheColourTableAfterTheHeader) {
    Random random(15);
    DibSpec wanted{4, 2, 24};
    wanted.header_size = 52;
    wanted.extra_bytes = 0;
    const Dib from = make_random_dib(wanted, random);
    const Dib made(Dib24DupEx(from, 0, 0, 4, 2, nullptr));
    const auto source = block(from);
    EXPECT_EQ(made.rows(), std::vector<uint8_t>(source.begin() + 40, source.begin() + 40 + 24));
}

TEST(DupEx, ChecksTheRectangleBeforeTheDepth) {
    const Dib dib4 = make_dib(spec(4, 4, 4)), dib24 = make_dib(spec(4, 4, 24));
    const auto status_of = [](HGLOBAL dib, int32_t x, int32_t y, int32_t w, int32_t h) {
        int32_t status = 9;
        EXPECT_EQ(Dib24DupEx(dib, x, y, w, h, &status), nullptr);
        return status;
    };
    EXPECT_EQ(status_of(nullptr, -1, 0, 1, 1), -3);
    EXPECT_EQ(status_of(dib4, -1, 0, 1, 1), -1);
    EXPECT_EQ(status_of(dib4, 0, -1, 1, 1), -1);
    EXPECT_EQ(status_of(dib4, 0, 0, 0, 1), -1);
    EXPECT_EQ(status_of(dib4, 0, 0, 1, 0), -1);
    EXPECT_EQ(status_of(dib4, 0, 0, 5, 1), -1);
    EXPECT_EQ(status_of(dib4, 0, 1, 1, 4), -1);
    EXPECT_EQ(status_of(dib4, 0, 0, 4, 4), -40);
    EXPECT_EQ(status_of(dib24, 1, 0, 4, 4), -1);
    EXPECT_EQ(status_of(dib24, 1, 0, INT32_MAX, 4), -1);
    EXPECT_EQ(Dib24DupEx(nullptr, 0, 0, 1, 1, nullptr), nullptr);
}

} // namespace
