// Histograms and colour counts against plain counting.
#include "effects/pictures.hpp"

#include <array>
#include <set>

using namespace kirvo_test;

namespace {

using Counters = std::array<uint32_t, 256>;

int histogram(HGLOBAL dib, const Area& a, Counters& red, Counters& green, Counters& blue) {
    return DibHistgram(dib, a.x, a.y, a.width, a.height, red.data(), green.data(), blue.data());
}

TEST(Histogram, CountsChannelValues) {
    Random random(1);
    for (int bits : {8, 16, 24, 32})
        for (int round = 0; round < 100; ++round) {
            const bool large = round % 10 == 0; // several thousand pixels are counted together
            const Dib dib = random_image(random, random.between(1, large ? 700 : 60),
                                         random.between(1, large ? 90 : 9), bits);
            const auto block = block_bytes(dib);
            const Area area = random_area(random, dib);
            Counters expected[3] = {};
            for (int y = area.y; y < area.y + area.height; ++y)
                for (int x = area.x; x < area.x + area.width; ++x) {
                    const uint32_t pixel = dib.pixel(x, y);
                    Colour c;
                    if (bits == 8) {
                        const size_t entry = dib.header().biSize + 4 * pixel;
                        c = {block[entry + 2], block[entry + 1], block[entry]};
                    } else {
                        c = colour_of(pixel, bits, bits == 24 ? Masks{} : dib.masks());
                    }
                    ++expected[0][c.red];
                    ++expected[1][c.green];
                    ++expected[2][c.blue];
                }
            Counters found[3];
            random.fill(found, sizeof found);
            ASSERT_EQ(histogram(dib, area, found[0], found[1], found[2]), 0);
            for (int c = 0; c < 3; ++c)
                ASSERT_EQ(found[c], expected[c]) << bits;
            ASSERT_EQ(block_bytes(dib), block);
            ASSERT_TRUE(is_unlocked(dib));
        }
}

TEST(Histogram, LeavesOutWhatIsNotWanted) {
    const Dib dib = make_dib({3, 2, 24});
    Counters green = {};
    EXPECT_EQ(DibHistgram(dib, 0, 0, 3, 2, nullptr, green.data(), nullptr), 0);
    EXPECT_EQ(green[0], 6u);
    EXPECT_EQ(DibHistgram(dib, 0, 0, 3, 2, nullptr, nullptr, nullptr), 0);
}

TEST(Histogram, ChecksTheRectangleAndTheDepthAndLeavesTheCountersOnFailure) {
    Counters counters[3];
    const auto run = [&](HGLOBAL dib, const Area& area) {
        for (Counters& c : counters)
            c.fill(77);
        const int status = histogram(dib, area, counters[0], counters[1], counters[2]);
        for (const Counters& c : counters)
            EXPECT_EQ(c[0] == 77, status != 0);
        return status;
    };
    expect_rectangle_checks({8, 16, 24, 32}, -40, run);
}

TEST(Histogram, ReportsItsRows) {
    Counters counters[3];
    for (const int bits : {8, 24}) {
        const Dib dib = make_dib({3, 12, bits});
        expect_messages(single_pass_percents(11), [&] {
            histogram(dib, {0, 1, 3, 11}, counters[0], counters[1], counters[2]);
        });
    }
}

uint32_t count(const Dib& dib) {
    uint32_t colours = 99;
    EXPECT_EQ(DibCountColors(dib, &colours), 0);
    EXPECT_TRUE(is_unlocked(dib));
    return colours;
}

// Limits the pixels to some of their bits, so that colours repeat.
Dib repetitive_image(Random& random, int bits) {
    Dib dib = random_image(random, random.between(1, 40), random.between(1, 8), bits);
    const uint32_t keep = random.next() & random.next();
    const int width = dib.width(), height = dib.height();
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            dib.set_pixel(x, y, dib.pixel(x, y) & keep);
    return dib;
}

TEST(ColourCount, CountsIndexesAndColours) {
    Random random(2);
    for (int bits : {1, 4, 8, 24, 32})
        for (int round = 0; round < 120; ++round) {
            const Dib dib = repetitive_image(random, bits);
            std::set<uint32_t> seen;
            for (int y = 0; y < dib.height(); ++y)
                for (int x = 0; x < dib.width(); ++x) {
                    uint32_t pixel = dib.pixel(x, y);
                    if (bits == 32)
                        pixel = pixel_of(colour_of(pixel, 32, dib.masks()), 24, {});
                    seen.insert(pixel);
                }
            ASSERT_EQ(count(dib), seen.size()) << bits;
        }
}

TEST(ColourCount, CountsWordsFromTwelveBytesAfterTheHeader) {
    Random random(3);
    for (int round = 0; round < 200; ++round) {
        const Dib dib = repetitive_image(random, 16);
        const auto block = block_bytes(dib);
        std::set<uint32_t> seen;
        for (int row = 0; row < dib.height(); ++row)
            for (int x = 0; x < dib.width(); ++x) {
                const size_t at =
                    dib.header().biSize + 12u + static_cast<size_t>(dib.stride() * row + 2 * x);
                const auto byte = [&](size_t i) { return i < block.size() ? block[i] : 0u; };
                seen.insert(byte(at) | byte(at + 1) << 8);
            }
        ASSERT_EQ(count(dib), seen.size());
    }
}

TEST(ColourCount, CountsBitsOutsideTheMasksOf16BitsOnly) {
    Dib words = make_dib({2, 1, 16, masks_555});
    words.set_pixel(0, 0, 0x8000);
    EXPECT_EQ(count(words), 2u);
    Dib deep = make_dib({2, 1, 32, masks_888});
    deep.set_pixel(0, 0, 0xFF000000);
    EXPECT_EQ(count(deep), 1u);
}

TEST(ColourCount, IgnoresFillBits) {
    for (const int bits : {1, 4, 8}) {
        Dib dib = make_dib({.width = 1, .height = 2, .bits = bits, .padding = 0xFF});
        dib.write(dib.rows_start(), std::vector<uint8_t>{static_cast<uint8_t>(0xFF >> bits)});
        EXPECT_EQ(count(dib), 1u) << bits;
    }
}

TEST(ColourCount, ReachesTheExtremes) {
    EXPECT_EQ(count(make_dib({5, 5, 24})), 1u);
    Dib all16 = make_dib({256, 256, 16, masks_565});
    Dib all24 = make_dib({512, 256, 24});
    for (uint32_t i = 0; i < 0x10000; ++i)
        all16.write(52 + 2 * i, &i, 2);
    for (uint32_t i = 0; i < 0x20000; ++i) {
        const uint32_t colour = i * 0x7F;
        all24.write(40 + 3 * i, &colour, 3);
    }
    EXPECT_EQ(count(all16), 65536u);
    EXPECT_EQ(count(all24), 0x20000u);
}

TEST(ColourCount, AnswersZeroOnFailure) {
    const auto failed = [](HGLOBAL dib) {
        uint32_t colours = 99;
        const int status = DibCountColors(dib, &colours);
        EXPECT_EQ(colours, 0u);
        return status;
    };
    EXPECT_EQ(failed(nullptr), -3);
    for (const int bits : {1, 4, 8, 16, 24, 32}) {
        const Dib cut = make_dib({.width = 8, .height = 3, .bits = bits, .extra_bytes = -4});
        EXPECT_EQ(failed(cut), -1);
        EXPECT_TRUE(is_unlocked(cut));
    }
    EXPECT_EQ(failed(make_dib({8, 3, 2})), -1);
    EXPECT_EQ(failed(make_dib({8, 3, 48})), -1);
    EXPECT_EQ(DibCountColors(make_dib({1, 1, 24}), nullptr), 0);
}

} // namespace
