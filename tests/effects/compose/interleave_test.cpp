// Two images interleaved row by row.
#include "effects/pictures.hpp"

using namespace kirvo_test;

namespace {

struct Field {
    int x, y;
};

HGLOBAL interleave(const Dib& first, Field a, const Dib& second, Field b, int width, int height,
                   int32_t* status) {
    return Dib24InterLeave(first, a.x, a.y, second, b.x, b.y, width, height, status);
}

int interleave_status(HGLOBAL first, Field a, HGLOBAL second, Field b, int width, int height) {
    int32_t status = 99;
    HGLOBAL made = Dib24InterLeave(first, a.x, a.y, second, b.x, b.y, width, height, &status);
    return freed(made, status);
}

// Rows count from the bottom and lie after a header of 40 bytes; a result row is one piece of bytes.
std::vector<uint8_t> expected_rows(const Dib& first, Field a, const Dib& second, Field b, int width,
                                   int height) {
    const int bits = first.bits();
    DibSpec spec{width, 2 * height, bits};
    if (bits == 32)
        spec.masks = first.masks();
    auto result = block_bytes(make_dib(spec));
    const size_t stride = static_cast<size_t>(stride_of(width, bits));
    const size_t start = bits == 32 ? 52 : 40;
    for (int row = 0; row < 2 * height; ++row) {
        const Dib& from = row % 2 == 0 ? first : second;
        const Field field = row % 2 == 0 ? a : b;
        const auto source = block_bytes(from);
        const size_t rows = 40 + from.rows_start() - from.header().biSize;
        for (size_t i = 0; i < stride; ++i) {
            const size_t at =
                rows + static_cast<size_t>(field.y + row / 2) * static_cast<size_t>(from.stride()) +
                static_cast<size_t>(field.x * bits / 8) + i;
            result[start + static_cast<size_t>(row) * stride + i] =
                at < source.size() ? source[at] : uint8_t{0};
        }
    }
    return result;
}

TEST(InterLeave, AlternatesStoredRows) {
    Random random(2);
    for (int bits : {24, 32})
        for (int round = 0; round < 200; ++round) {
            const Dib first =
                random_image(random, random.between(1, 20), random.between(1, 9), bits);
            const Dib second =
                random_image(random, random.between(1, 20), random.between(1, 9), bits);
            const int width = random.between(1, std::min(first.width(), second.width()));
            const int height = random.between(1, std::min(first.height(), second.height()));
            const Field a = {random.between(0, first.width() - width),
                             random.between(0, first.height() - height)};
            const Field b = {random.between(0, second.width() - width),
                             random.between(0, second.height() - height)};
            const auto before1 = block_bytes(first), before2 = block_bytes(second);
            int32_t status = 99;
            const Dib made(interleave(first, a, second, b, width, height, &status));
            ASSERT_EQ(status, 0);
            ASSERT_EQ(block_bytes(made), expected_rows(first, a, second, b, width, height));
            ASSERT_EQ(block_bytes(first), before1);
            ASSERT_EQ(block_bytes(second), before2);
            ASSERT_TRUE(is_unlocked(first) && is_unlocked(second) && is_unlocked(made));
        }
}

TEST(InterLeave, PutsTheFirstImageAtTheBottom) {
    Dib first = make_dib({1, 2, 24}), second = make_dib({1, 1, 24});
    first.set_pixel(0, 1, 0x11); // stored row 0
    first.set_pixel(0, 0, 0x22);
    second.set_pixel(0, 0, 0x33);
    int32_t status = 99;
    const Dib made(interleave(first, {0, 1}, second, {0, 0}, 1, 1, &status));
    EXPECT_EQ(made.height(), 2);
    EXPECT_EQ(made.pixel(0, 1), 0x22u);
    EXPECT_EQ(made.pixel(0, 0), 0x33u);
}

TEST(InterLeave, MayTakeBothFromOneImage) {
    Random random(3);
    const Dib dib = make_random_dib({5, 5, 32}, random);
    int32_t status = 99;
    const Dib made(interleave(dib, {0, 0}, dib, {1, 2}, 4, 3, &status));
    EXPECT_EQ(block_bytes(made), expected_rows(dib, {0, 0}, dib, {1, 2}, 4, 3));
    EXPECT_TRUE(is_unlocked(dib));
}

TEST(InterLeave, ChecksHandlesThenSignsThenDepthsThenSizes) {
    const Dib a = make_dib({4, 4, 24}), b = make_dib({3, 5, 24}), deep = make_dib({4, 4, 32});
    const Dib indexed = make_dib({4, 4, 8}), high = make_dib({4, 4, 16});
    EXPECT_EQ(interleave_status(nullptr, {-1, 0}, a, {0, 0}, 1, 1), -3);
    EXPECT_EQ(interleave_status(a, {-1, 0}, nullptr, {0, 0}, 1, 1), -3);
    for (const Field& bad : {Field{-1, 0}, Field{0, -1}}) {
        EXPECT_EQ(interleave_status(a, bad, deep, {0, 0}, 1, 1), -1);
        EXPECT_EQ(interleave_status(a, {0, 0}, deep, bad, 1, 1), -1);
    }
    EXPECT_EQ(interleave_status(a, {0, 0}, deep, {0, 0}, 0, 1), -1);
    EXPECT_EQ(interleave_status(a, {0, 0}, deep, {0, 0}, 1, 0), -1);
    EXPECT_EQ(interleave_status(a, {0, 0}, deep, {0, 0}, 9, 9), -42);
    EXPECT_EQ(interleave_status(indexed, {0, 0}, indexed, {0, 0}, 1, 1), -42);
    EXPECT_EQ(interleave_status(high, {0, 0}, high, {0, 0}, 9, 1), -42);
    EXPECT_EQ(interleave_status(a, {0, 0}, b, {0, 0}, 3, 4), 0);
    EXPECT_EQ(interleave_status(a, {0, 0}, b, {0, 0}, 4, 4), -1);
    EXPECT_EQ(interleave_status(a, {0, 0}, b, {0, 0}, 3, 5), -1);
    EXPECT_EQ(interleave_status(a, {0, 0}, b, {0, 2}, 3, 4), -1);
    EXPECT_EQ(interleave_status(a, {2, 0}, b, {0, 0}, 3, 1), -1);
    EXPECT_EQ(interleave_status(a, {INT32_MAX, 0}, b, {0, 0}, INT32_MAX, 1), -1);
    const Dib cut = make_dib({.width = 4, .height = 4, .bits = 24, .extra_bytes = -1});
    EXPECT_EQ(interleave_status(a, {0, 0}, cut, {0, 0}, 1, 1), -1);
    EXPECT_TRUE(is_unlocked(a) && is_unlocked(b) && is_unlocked(deep) && is_unlocked(cut));
}

TEST(InterLeave, ReportsPairsOfRows) {
    const Dib dib = make_dib({3, 12, 24});
    expect_messages(single_pass_percents(11), [&] {
        interleave_status(dib, {0, 0}, dib, {0, 1}, 3, 11);
    });
}

} // namespace
