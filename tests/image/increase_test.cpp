// Indexed images to 24 bits.
#include "reduce/expected.hpp"

#include <algorithm>

using namespace kirvo_test;

namespace {

void expect_increased(const Dib& from) {
    SCOPED_TRACE(testing::Message()
                 << from.width() << " x " << from.height() << ", " << from.bits() << " bits");
    const std::vector<uint8_t> block = block_bytes(from);
    const auto byte = [&](size_t at) { return at < block.size() ? block[at] : uint8_t{0}; };
    Dib expected = make_dib({from.width(), from.height(), 24});
    for (int32_t y = 0; y < from.height(); ++y)
        for (int32_t x = 0; x < from.width(); ++x) {
            const size_t entry = 40 + 4 * size_t(from.pixel(x, y));
            expected.set_pixel(
                x, y, uint32_t(byte(entry) | byte(entry + 1) << 8 | byte(entry + 2) << 16));
        }
    EXPECT_EQ(block_bytes(run(IncreaseColor16M, from)), block_bytes(expected));
}

TEST(Increase, EveryWidthAtEveryDepth) {
    Random random(1);
    for (const int bits : {1, 4, 8})
        for (int32_t width = 1; width <= 70; ++width) {
            DibSpec spec{width, 1 + width % 5, bits};
            spec.padding = 0xFF;
            expect_increased(make_random_dib(spec, random));
        }
}

TEST(Increase, WideImages) {
    Random random(2);
    for (const int bits : {1, 4, 8})
        for (const int32_t width : {511, 512, 513, 1024, 3001})
            expect_increased(make_random_dib({width, 3, bits}, random));
}

TEST(Increase, IndicesAreNotComparedWithTheNumberOfColours) {
    Random random(3);
    for (const int bits : {1, 4, 8})
        for (const uint32_t colours : {1u, 3u, 200u}) {
            DibSpec spec{19, 3, bits};
            spec.colours_used = colours;
            expect_increased(make_random_dib(spec, random));
        }
}

TEST(Increase, EntriesBeyondTheBlockAreBlack) {
    DibSpec spec{1, 1, 8};
    spec.colours_used = 1;
    Dib from = make_dib(spec);
    from.set_pixel(0, 0, 200);
    expect_increased(from);
    EXPECT_EQ(run(IncreaseColor16M, from).pixel(0, 0), 0u);
}

TEST(Increase, TableFollows40BytesWhateverTheHeadersSize) {
    Random random(4);
    for (const int bits : {1, 4, 8})
        for (const uint32_t header_size : {44u, 108u}) {
            DibSpec spec{11, 3, bits};
            spec.header_size = header_size;
            expect_increased(make_random_dib(spec, random));
        }
}

TEST(Increase, LeftmostPixelIsInTheTopBits) {
    Dib from = make_dib({9, 1, 1});
    from.set_colour(0, 1, 2, 3);
    from.set_colour(1, 4, 5, 6);
    from.write(48, {0x80, 0x7F}); // only the top bit of the second byte is a pixel
    const Dib result = run(IncreaseColor16M, from);
    EXPECT_EQ(result.pixel(0, 0), 0x040506u);
    EXPECT_EQ(result.pixel(1, 0), 0x010203u);
    EXPECT_EQ(result.pixel(8, 0), 0x010203u);
    Dib nibbles = make_dib({2, 1, 4});
    nibbles.set_colour(3, 7, 8, 9);
    nibbles.write(104, {0x30});
    EXPECT_EQ(run(IncreaseColor16M, nibbles).pixel(0, 0), 0x070809u);
    EXPECT_EQ(run(IncreaseColor16M, nibbles).pixel(1, 0), 0u);
}

TEST(Increase, RefusesOtherDepths) {
    for (const int bits : {16, 24, 32, 0, 2, 3, 15})
        expect_refused(IncreaseColor16M, make_dib({4, 4, bits}), KIRVO_NEEDS_1_4_8);
}

TEST(Increase, LastRowMayLackItsPadding) {
    DibSpec spec{5, 2, 8};
    spec.extra_bytes = -3;
    Random random(5);
    expect_increased(make_random_dib(spec, random));
    spec.extra_bytes = -4;
    expect_refused(IncreaseColor16M, make_dib(spec), KIRVO_BAD_PARAMETER);
}

} // namespace
