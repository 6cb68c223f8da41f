// Mosaics against their walks over blocks, byte by byte.
#include "effects/pictures.hpp"

using namespace kirvo_test;

namespace {

using Mosaic = HGLOBAL(WINAPI*)(HGLOBAL, int32_t, int32_t, int32_t, int32_t, int32_t, int32_t*);

int status_of(Mosaic mosaic, HGLOBAL dib, const Area& a, int block) {
    int32_t status = 99;
    return freed(mosaic(dib, a.x, a.y, a.width, a.height, block, &status), status);
}

// A new image as the library makes it from a source: masks or colour table carried over.
Dib like(const Dib& dib, int width, int height) {
    const int bits = dib.bits();
    DibSpec spec{width, height, bits};
    if (bits == 16 || bits == 32)
        spec.masks = dib.masks();
    Dib made = make_dib(spec);
    if (bits == 8) {
        const auto source = block_bytes(dib);
        const size_t used = dib.header().biClrUsed;
        const size_t bytes = 4 * (used != 0 ? used : 256);
        const auto from = source.begin() + dib.header().biSize;
        made.write(40, std::vector<uint8_t>(from, from + static_cast<ptrdiff_t>(bytes)));
    }
    return made;
}

std::vector<uint8_t> expected_samples(const Dib& dib, const Area& area, int block) {
    Dib result = like(dib, area.width, area.height);
    for (int y = 0; y < area.height; ++y)
        for (int x = 0; x < area.width; ++x)
            result.set_pixel(x, y,
                             dib.pixel(area.x + x / block * block, area.y + y / block * block));
    return block_bytes(result);
}

// Pixels addressed by stored row and byte, padding included.
struct Store {
    size_t start, stride, bytes;
    std::vector<uint8_t> block;

    explicit Store(const Dib& dib)
        : start(dib.rows_start()), stride(static_cast<size_t>(dib.stride())),
          bytes(static_cast<size_t>(dib.bits() / 8)), block(block_bytes(dib)) {}
    bool fits(int column) const { return (static_cast<size_t>(column) + 1) * bytes <= stride; }
    size_t at(int row, int column) const {
        return start + static_cast<size_t>(row) * stride + static_cast<size_t>(column) * bytes;
    }
    uint32_t pixel(int row, int column) const {
        uint32_t value = 0;
        for (size_t b = 0; b < bytes; ++b)
            if (at(row, column) + b < block.size())
                value |= static_cast<uint32_t>(block[at(row, column) + b]) << 8 * b;
        return value;
    }
    void set(int row, int column, uint32_t value) {
        for (size_t b = 0; b < bytes; ++b)
            block[at(row, column) + b] = static_cast<uint8_t>(value >> 8 * b);
    }
};

std::vector<uint8_t> expected_averages(const Dib& dib, const Area& area, int n) {
    const int bits = dib.bits();
    const Masks masks = bits == 16 || bits == 32 ? dib.masks() : Masks{};
    const Store source(dib);
    Store result(like(dib, area.width, area.height));
    const int top = dib.height() - area.y - 1, bottom = dib.height() - area.y - area.height;
    for (int row = top; row >= bottom; row -= n)
        for (int left = area.x; left < area.x + area.width; left += n) {
            uint32_t red = 0, green = 0, blue = 0, count = 0;
            for (int r = row; r > row - n && r >= 0; --r)
                for (int c = left; c < left + n && source.fits(c); ++c, ++count) {
                    const uint32_t pixel = source.pixel(r, c);
                    if (bits == 8) {
                        red += pixel;
                        continue;
                    }
                    const Colour colour = colour_of(pixel, bits, masks);
                    red += colour.red;
                    green += colour.green;
                    blue += colour.blue;
                }
            const Colour average = {static_cast<uint8_t>(red / count),
                                    static_cast<uint8_t>(green / count),
                                    static_cast<uint8_t>(blue / count)};
            const uint32_t pixel = bits == 8 ? average.red : pixel_of(average, bits, masks);
            for (int r = row - bottom; r > row - bottom - n && r >= 0; --r)
                for (int c = left - area.x; c < left - area.x + n && result.fits(c); ++c)
                    result.set(r, c, pixel);
        }
    return result.block;
}

void expect_mosaic(const Dib& dib, const Area& area, int block, Mosaic mosaic,
                   const std::vector<uint8_t>& expected) {
    const auto before = block_bytes(dib);
    int32_t status = 99;
    const Dib made(mosaic(dib, area.x, area.y, area.width, area.height, block, &status));
    ASSERT_EQ(status, 0);
    ASSERT_EQ(block_bytes(made), expected)
        << dib.width() << "x" << dib.height() << "x" << dib.bits() << " at " << area.x << ","
        << area.y << " " << area.width << "x" << area.height << " block " << block;
    ASSERT_EQ(block_bytes(dib), before);
    ASSERT_TRUE(is_unlocked(dib) && is_unlocked(made));
}

int random_block(Random& random) {
    static constexpr int blocks[] = {2, 3, 4, 5, 7, 16, 100, 1024};
    return random.pick(blocks);
}

TEST(SampleMosaic, SpreadsTheTopLeftPixelOfEachBlock) {
    Random random(1);
    for (int bits : {8, 16, 24, 32})
        for (int round = 0; round < 120; ++round) {
            const Dib dib =
                random_image(random, random.between(1, 25), random.between(1, 12), bits);
            const Area area = random_area(random, dib);
            const int block = random_block(random);
            const auto expected = expected_samples(dib, area, block);
            ASSERT_NO_FATAL_FAILURE(expect_mosaic(dib, area, block, DibMosaicEx, expected));
            if (bits == 24) {
                ASSERT_NO_FATAL_FAILURE(expect_mosaic(dib, area, block, Dib24Mosaic, expected));
            }
        }
}

TEST(AverageMosaic, AveragesBlocksClippedToTheImageAndItsStride) {
    Random random(2);
    for (int bits : {8, 16, 24, 32})
        for (int round = 0; round < 250; ++round) {
            const Dib dib =
                random_image(random, random.between(1, 25), random.between(1, 12), bits);
            const Area area = random_area(random, dib);
            const int block = random_block(random);
            ASSERT_NO_FATAL_FAILURE(
                expect_mosaic(dib, area, block, DibMosaicEx2, expected_averages(dib, area, block)));
        }
}

TEST(AverageMosaic, CountsThreePaddingBytesAsAPixel) {
    Dib dib = make_dib({.width = 3, .height = 1, .bits = 24, .padding = 80});
    int32_t status = 99;
    const Dib made(DibMosaicEx2(dib, 0, 0, 3, 1, 4, &status));
    EXPECT_EQ(made.pixel(0, 0), 0x141414u) << "80 / 4";
    EXPECT_EQ(made.rows(), std::vector<uint8_t>(12, 20)) << "and fills those of the result";
}

TEST(AverageMosaic, ReadsPixelsBeyondTheRectangle) {
    Dib dib = make_dib({4, 4, 32});
    for (int i = 0; i < 16; ++i)
        dib.set_pixel(i % 4, i / 4, i % 4 < 2 && i / 4 < 2 ? 0 : 100);
    int32_t status = 99;
    const Dib made(DibMosaicEx2(dib, 1, 1, 1, 1, 2, &status));
    EXPECT_EQ(made.pixel(0, 0), 75u);
}

TEST(Mosaics, DuplicateTheRectangleForBlocksOfOne) {
    Random random(3);
    for (int bits : {8, 16, 24, 32}) {
        Dib dib = make_random_dib({.width = 9, .height = 5, .bits = bits, .padding = 7}, random);
        for (const Area& area : {Area{2, 1, 6, 3}, Area{0, 0, 9, 5}}) {
            int32_t status = 99;
            const Dib copy(Dib24DupEx(dib, area.x, area.y, area.width, area.height, &status));
            const auto expected = block_bytes(copy);
            expect_mosaic(dib, area, 1, DibMosaicEx, expected);
            expect_mosaic(dib, area, 1, DibMosaicEx2, expected);
            if (bits == 24)
                expect_mosaic(dib, area, 1, Dib24Mosaic, expected);
        }
    }
}

TEST(Mosaics, RefuseBadBlockSizes) {
    const Dib dib = make_dib({3, 3, 24}), indexed = make_dib({3, 3, 4});
    const Area all = {0, 0, 3, 3};
    for (const Mosaic mosaic : {Dib24Mosaic, DibMosaicEx, DibMosaicEx2})
        for (const int block : {0, -1, INT32_MIN}) {
            EXPECT_EQ(status_of(mosaic, dib, all, block), -1);
            EXPECT_EQ(status_of(mosaic, nullptr, all, block), -3);
            EXPECT_EQ(status_of(mosaic, indexed, all, block), mosaic == Dib24Mosaic ? -22 : -40);
        }
    EXPECT_EQ(status_of(DibMosaicEx2, dib, all, 1024), 0);
    EXPECT_EQ(status_of(DibMosaicEx2, dib, all, 1025), -1);
    EXPECT_EQ(status_of(DibMosaicEx, dib, all, INT32_MAX), 0);
}

TEST(Mosaics, CheckTheRectangleAndTheDepth) {
    for (const int block : {1, 2}) {
        expect_rectangle_checks({24}, -22, [&](HGLOBAL dib, const Area& area) {
            return status_of(Dib24Mosaic, dib, area, block);
        });
        for (const Mosaic mosaic : {DibMosaicEx, DibMosaicEx2})
            expect_rectangle_checks({8, 16, 24, 32}, -40, [&](HGLOBAL dib, const Area& area) {
                return status_of(mosaic, dib, area, block);
            });
    }
}

TEST(Mosaics, ReportRowsOrRowsOfBlocks) {
    const Dib dib = make_dib({3, 30, 24});
    const Area area = {0, 2, 3, 28};
    expect_messages(single_pass_percents(28), [&] { status_of(DibMosaicEx, dib, area, 3); });
    std::vector<int> blocks{0};
    int last = 0;
    for (int done = 0; done < 28; done += 3)
        if (100 * done / 28 - last >= 5)
            blocks.push_back(last = 100 * done / 28);
    blocks.push_back(100);
    expect_messages(blocks, [&] { status_of(DibMosaicEx2, dib, area, 3); });
}

TEST(Mosaics, SendNothingForADuplicate) {
    ProgressRecorder recorder;
    recorder.watch();
    const Dib dib = make_dib({3, 3, 24});
    status_of(DibMosaicEx, dib, {0, 0, 3, 3}, 1);
    status_of(DibMosaicEx2, dib, {0, 0, 3, 3}, 1);
    EXPECT_TRUE(recorder.messages().empty());
}

} // namespace
