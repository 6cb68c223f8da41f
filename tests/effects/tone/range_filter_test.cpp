// Range filters against their tests written out channel by channel.
#include "effects/pictures.hpp"

using namespace kirvo_test;

namespace {

struct Range {
    int lower, upper, mode;

    bool passes(int v) const {
        if (mode == 1)
            return v >= lower && v <= upper;
        if (mode == 2)
            return v < lower || v > upper;
        return true;
    }
    uint32_t packed() const {
        return static_cast<uint32_t>(lower | upper << 8 | mode << 16) | 0xAB000000u;
    }
};

struct Record {
    int flags;
    Range range[3];
};

uint32_t pair(int first, int second) {
    return static_cast<uint16_t>(first) | static_cast<uint32_t>(static_cast<uint16_t>(second))
                                              << 16;
}

HGLOBAL run(HGLOBAL dib, const Area& a, const Record& r, int32_t* status) {
    return Dib24FilterEx(
        dib, a.x, a.y, a.width, a.height, pair(r.flags, r.range[0].lower),
        pair(r.range[0].upper, r.range[0].mode), pair(r.range[1].lower, r.range[1].upper),
        pair(r.range[1].mode, r.range[2].lower), pair(r.range[2].upper, r.range[2].mode), status);
}

int filter_ex(HGLOBAL dib, const Area& area, const Record& record) {
    int32_t status = 99;
    HGLOBAL made = run(dib, area, record, &status);
    return freed(made, status);
}

int filter(HGLOBAL dib, const Area& area, uint32_t red, uint32_t green, uint32_t blue) {
    int32_t status = 99;
    HGLOBAL made =
        Dib24Filter(dib, area.x, area.y, area.width, area.height, red, green, blue, &status);
    return freed(made, status);
}

struct Hsv {
    int h, s, v;
};

Hsv hsv_of(const Colour& c) {
    const int most = std::max({c.red, c.green, c.blue}), least = std::min({c.red, c.green, c.blue});
    const int s = most - least;
    if (s == 0)
        return {0, 0, most};
    double h;
    if (most == c.red)
        h = (c.green - c.blue) / double(s);
    else if (most == c.green)
        h = (c.blue - c.red) / double(s) + 2.0;
    else
        h = (c.red - c.green) / double(s) + 4.0;
    const int degrees = static_cast<int>(h * 60.0);
    return {degrees < 0 ? degrees + 360 : degrees, s, most};
}

Colour colour_from(const Hsv& hsv) {
    const int sector = hsv.h / 60, m = hsv.v - hsv.s;
    const int f = static_cast<int>((hsv.h - 60 * sector) / 60.0 * hsv.s);
    const int rgb[6][3] = {{hsv.v, m + f, m},     {hsv.v - f, hsv.v, m}, {m, hsv.v, m + f},
                           {m, hsv.v - f, hsv.v}, {m + f, m, hsv.v},     {hsv.v, m, hsv.v - f}};
    const int* c = rgb[sector];
    return {static_cast<uint8_t>(c[0]), static_cast<uint8_t>(c[1]), static_cast<uint8_t>(c[2])};
}

uint8_t kept(const Range& range, uint8_t value) { return range.passes(value) ? value : uint8_t{0}; }

Colour filtered(const Record& record, const Colour& c) {
    const Range* r = record.range;
    if (record.flags == 0x202) {
        const Hsv hsv = hsv_of(c);
        const bool passes = r[0].passes(hsv.h) && r[1].passes(hsv.s) && r[2].passes(hsv.v);
        return colour_from(passes ? hsv : Hsv{0, 0, 0});
    }
    if (record.flags == 0x102 &&
        !(r[0].passes(c.red) && r[1].passes(c.green) && r[2].passes(c.blue)))
        return {0, 0, 0};
    return {kept(r[0], c.red), kept(r[1], c.green), kept(r[2], c.blue)};
}

// Channels of 32-bit pixels are ORed together without their masks.
std::vector<uint8_t> expected(const Dib& dib, const Area& area, const Record& record) {
    const Picture image = picture_of(dib);
    const int bits = dib.bits();
    DibSpec spec{area.width, area.height, bits};
    if (bits == 32)
        spec.masks = dib.masks();
    Dib result = make_dib(spec);
    for (int r = 0; r < area.height; ++r)
        for (int c = 0; c < area.width; ++c) {
            const Colour now = filtered(record, image.at(area.x + c, lowest_row(image, area) + r));
            const uint32_t channels[] = {now.red, now.green, now.blue};
            const uint32_t masks[] = {dib.masks().red, dib.masks().green, dib.masks().blue};
            uint32_t pixel = bits == 24 ? pixel_of(now, 24, {}) : 0;
            for (int i = 0; bits == 32 && i < 3; ++i) {
                int shift = 0;
                while (!(masks[i] >> shift & 1))
                    ++shift;
                pixel |= channels[i] << shift;
            }
            result.set_pixel(c, area.height - 1 - r, pixel);
        }
    return block_bytes(result);
}

Range random_range(Random& random, int limit, bool negative) {
    const int a = random.between(negative ? -300 : 0, limit);
    const int b = random.between(a, limit);
    return {a, b, random.between(0, 2)};
}

TEST(RangeFilter, TestsChannelsOneByOne) {
    Random random(1);
    for (int bits : {24, 32})
        for (int round = 0; round < 150; ++round) {
            const Dib dib = random_image(random, random.between(1, 30), random.between(1, 6), bits);
            const auto before = block_bytes(dib);
            const Area area = random_area(random, dib);
            const Record record = {0x101,
                                   {random_range(random, 255, false),
                                    random_range(random, 255, false),
                                    random_range(random, 255, false)}};
            int32_t status = 99;
            const Dib made(Dib24Filter(dib, area.x, area.y, area.width, area.height,
                                       record.range[0].packed(), record.range[1].packed(),
                                       record.range[2].packed(), &status));
            ASSERT_EQ(status, 0);
            ASSERT_EQ(block_bytes(made), expected(dib, area, record));
            ASSERT_EQ(block_bytes(dib), before);
            ASSERT_TRUE(is_unlocked(dib) && is_unlocked(made));
        }
}

TEST(RangeFilter, TestsByRecordInRgbAndHsv) {
    Random random(2);
    static constexpr int flags[] = {0x101, 0x102, 0x202};
    for (int bits : {24, 32})
        for (int round = 0; round < 300; ++round) {
            const Dib dib = random_image(random, random.between(1, 30), random.between(1, 6), bits);
            const Area area = random_area(random, dib);
            Record record = {random.pick(flags), {}};
            record.range[0] = random_range(random, record.flags == 0x202 ? 359 : 255, true);
            record.range[1] = random_range(random, 255, true);
            record.range[2] = random_range(random, 255, true);
            int32_t status = 99;
            const Dib made(run(dib, area, record, &status));
            ASSERT_EQ(status, 0);
            ASSERT_EQ(block_bytes(made), expected(dib, area, record)) << record.flags;
        }
}

TEST(RangeFilter, BlanksRedOutsideItsRangeAlone) {
    Dib dib = make_dib({4, 1, 24});
    const uint32_t reds[] = {99, 100, 200, 201};
    for (int x = 0; x < 4; ++x)
        dib.set_pixel(x, 0, reds[x] << 16 | 0x5566);
    int32_t status = 99;
    const Dib made(Dib24Filter(dib, 0, 0, 4, 1, 0x01C864, 0, 0, &status));
    EXPECT_EQ(made.pixel(0, 0), 0x5566u);
    EXPECT_EQ(made.pixel(1, 0), 0x645566u);
    EXPECT_EQ(made.pixel(2, 0), 0xC85566u);
    EXPECT_EQ(made.pixel(3, 0), 0x5566u);
}

TEST(RangeFilter, ChecksItsRangesBeforeTheHandle) {
    const uint32_t fine = 0x01FF00;
    for (const uint32_t bad : {0x000001u, 0x01C8C9u, 0x03FF00u, 0xFFFF00u}) {
        EXPECT_EQ(filter(nullptr, {0, 0, 1, 1}, bad, fine, fine), -1);
        EXPECT_EQ(filter(nullptr, {0, 0, 1, 1}, fine, bad, fine), -1);
        EXPECT_EQ(filter(nullptr, {0, 0, 1, 1}, fine, fine, bad), -1);
    }
    EXPECT_EQ(filter(nullptr, {0, 0, 1, 1}, fine, fine, fine), -3);
    EXPECT_EQ(filter(nullptr, {0, 0, 1, 1}, 0xFF02FF00u, fine, fine), -3) << "byte 3 is ignored";
}

TEST(RangeFilter, ChecksItsRecordBeforeTheHandle) {
    const auto status_of = [](const Record& r) { return filter_ex(nullptr, {0, 0, 1, 1}, r); };
    const Record fine = {0x101, {{0, 255, 1}, {0, 255, 2}, {0, 255, 0}}};
    EXPECT_EQ(status_of(fine), -3);
    for (const int flags : {0, 1, 2, 0x100, 0x103, 0x201, 0x203, 0x200, 0x301, 0xFFFF}) {
        Record record = fine;
        record.flags = flags;
        EXPECT_EQ(status_of(record), -1);
    }
    for (const int flags : {0x101, 0x102, 0x202})
        for (int i = 0; i < 3; ++i) {
            Record record = fine;
            record.flags = flags;
            const int limit = flags == 0x202 && i == 0 ? 359 : 255;
            record.range[i] = {0, limit, 1};
            EXPECT_EQ(status_of(record), -3);
            record.range[i] = {0, limit + 1, 1};
            EXPECT_EQ(status_of(record), -1);
            record.range[i] = {limit + 1, limit + 1, 0};
            EXPECT_EQ(status_of(record), -1);
            record.range[i] = {5, 4, 0};
            EXPECT_EQ(status_of(record), -1);
            record.range[i] = {-32768, -1, 1};
            EXPECT_EQ(status_of(record), -3) << "negative bounds are accepted";
            record.range[i] = {-1, -2, 1};
            EXPECT_EQ(status_of(record), -1);
            record.range[i] = {0, 255, 3};
            EXPECT_EQ(status_of(record), -1);
            record.range[i] = {0, 255, 0xFFFF};
            EXPECT_EQ(status_of(record), -1);
        }
}

TEST(RangeFilter, ChecksTheRectangleAndTheDepth) {
    expect_rectangle_checks(
        {24, 32}, -42, [](HGLOBAL dib, const Area& area) { return filter(dib, area, 0, 0, 0); });
    for (const int flags : {0x101, 0x102, 0x202})
        expect_rectangle_checks({24, 32}, -42, [&](HGLOBAL dib, const Area& area) {
            return filter_ex(dib, area, {flags, {}});
        });
}

TEST(RangeFilter, ReportsItsRows) {
    const Dib dib = make_dib({3, 12, 24});
    expect_messages(single_pass_percents(11), [&] { filter(dib, {0, 1, 3, 11}, 0, 0, 0); });
    for (const int flags : {0x101, 0x102, 0x202})
        expect_messages(single_pass_percents(11), [&] {
            filter_ex(dib, {0, 1, 3, 11}, {flags, {}});
        });
}

} // namespace
