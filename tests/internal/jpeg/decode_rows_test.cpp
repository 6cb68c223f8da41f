// Every decoding kernel at every level of the processor against a plain formulation.
#include "internal/cpu_levels.hpp"
#include "jpeg/decode_block.hpp"
#include "jpeg/decode_rows.hpp"
#include "support/random.hpp"

#include <algorithm>
#include <cmath>
#include <vector>

using namespace kirvo;
using namespace kirvo_test;

namespace {

constexpr int64_t constants[] = {32768, 32137, 30272, 27244, 23169, 18204, 12539, 6392, 0};

int64_t factor(int x, int u) {
    if (u == 0)
        return constants[4];
    int angle = (2 * x + 1) * u % 32;
    if (angle > 16)
        angle = 32 - angle;
    return angle <= 8 ? constants[angle] : -constants[16 - angle];
}

int64_t wrap32(int64_t value) { return static_cast<int32_t>(static_cast<uint32_t>(value)); }

// natural: row by row. The sums of both passes wrap at 32 bits.
void plain_inverse_dct(const int16_t* natural, int16_t* samples) {
    int64_t rows[64];
    for (int r = 0; r < 8; ++r)
        for (int x = 0; x < 8; ++x) {
            int64_t sum = 0;
            for (int u = 0; u < 8; ++u)
                sum += natural[r * 8 + u] * factor(x, u) * 8;
            rows[r * 8 + x] = wrap32(sum) >> 16;
        }
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x) {
            int64_t sum = 1 << 18;
            for (int v = 0; v < 8; ++v)
                sum += rows[v * 8 + x] * factor(y, v);
            samples[y * 8 + x] = static_cast<int16_t>(wrap32(sum) >> 19);
        }
}

void expect_inverse_dct(const int16_t* natural) {
    Block block = {};
    int last = 0;
    for (int k = 0; k < 64; ++k) {
        const int16_t value = natural[zigzag[static_cast<size_t>(k)]];
        block[block_place[static_cast<size_t>(k)]] = value;
        if (value != 0)
            last = k;
    }
    int16_t expected[64];
    plain_inverse_dct(natural, expected);
    at_every_cpu_level([&](CpuLevel) {
        constexpr int stride = 13, guard = 0x5A5A;
        for (int told : {last, (last + 63) / 2, 63}) {
            std::vector<int16_t> samples(8 * stride + 2, guard);
            decode_rows().inverse_dct(block, told, samples.data() + 1, stride);
            for (int y = 0; y < 8; ++y)
                for (int x = 0; x < stride; ++x) {
                    const int16_t got = samples[static_cast<size_t>(1 + y * stride + x)];
                    ASSERT_EQ(got, x < 8 ? expected[y * 8 + x] : guard)
                        << "row " << y << " column " << x << " last " << told;
                }
            ASSERT_EQ(samples[0], guard);
        }
    });
}

TEST(DecodeRows, InverseTransformOfRandomBlocks) {
    Random random(1);
    for (int i = 0; i < 4000 && !HasFatalFailure(); ++i) {
        int16_t natural[64] = {};
        const int range = 1 << random.between(1, 15);
        for (int n = random.between(1, 64); n > 0; --n)
            natural[random.between(0, i % 2 != 0 ? 63 : random.between(0, 63))] =
                static_cast<int16_t>(random.between(-range, range - 1));
        expect_inverse_dct(natural);
    }
}

// Zigzag positions up to each one, so that every shortcut is taken.
TEST(DecodeRows, InverseTransformOfSparseBlocks) {
    Random random(2);
    for (int last = 0; last < 64; ++last)
        for (int i = 0; i < 20 && !HasFatalFailure(); ++i) {
            int16_t natural[64] = {};
            for (int k = 0; k <= last; ++k)
                natural[zigzag[static_cast<size_t>(k)]] =
                    static_cast<int16_t>(random.next() >> (16 + i / 2));
            expect_inverse_dct(natural);
        }
}

TEST(DecodeRows, InverseTransformOfExtremes) {
    Random random(3);
    for (int16_t value : {int16_t{-32768}, int16_t{32767}, int16_t{1}, int16_t{-1}})
        for (int place = 0; place < 64; ++place) {
            int16_t natural[64] = {};
            natural[place] = value;
            expect_inverse_dct(natural);
        }
    for (int i = 0; i < 300 && !HasFatalFailure(); ++i) {
        int16_t natural[64];
        for (int16_t& value : natural)
            value = random.once_in(2) ? int16_t{-32768} : int16_t{32767};
        expect_inverse_dct(natural);
    }
}

// Every DC value there is.
TEST(DecodeRows, FlatBlocks) {
    for (int dc = -32768; dc < 32768 && !HasFatalFailure(); dc += 7) {
        const int16_t natural[64] = {static_cast<int16_t>(dc)};
        expect_inverse_dct(natural);
    }
}

constexpr size_t most = 160;

uint8_t clamp(int64_t value) { return static_cast<uint8_t>(std::clamp<int64_t>(value, 0, 255)); }

// What the plain formula makes of one pixel; shifts round down.
void plain_pixel(int64_t y, int64_t cb, int64_t cr, uint8_t* bgr) {
    const int64_t t = (y + 128) * 65536;
    bgr[0] = clamp((t + 115999 * cb) >> 16);
    bgr[1] = clamp((t - 22525 * cb - 46812 * cr) >> 16);
    bgr[2] = clamp((t + 91881 * cr) >> 16);
}

enum class Kind { grey, colour, wide };

void run_row(Kind kind, const std::vector<int16_t>& y, const std::vector<int16_t>& cb,
             const std::vector<int16_t>& cr, size_t count) {
    std::vector<uint8_t> expected(3 * count);
    for (size_t i = 0; i < count; ++i) {
        const size_t c = kind == Kind::wide ? i / 2 : i;
        if (kind == Kind::grey)
            std::fill_n(&expected[3 * i], 3, clamp(y[i] + 128));
        else
            plain_pixel(y[i], cb[c], cr[c], &expected[3 * i]);
    }
    at_every_cpu_level([&](CpuLevel) {
        const DecodeRows& rows = decode_rows();
        std::vector<int16_t> planes[3];
        for (auto& plane : planes)
            plane.resize(most + 64);
        const ChromaTerms terms = {planes[0].data(), planes[1].data(), planes[2].data()};
        rows.chroma_terms(cb.data(), cr.data(), terms, kind == Kind::wide ? (count + 1) / 2 : count);
        for (size_t shift : {0u, 1u, 2u, 3u}) {
            std::vector<uint8_t> bgr(shift + 3 * count + 16, 0x77);
            uint8_t* to = bgr.data() + shift;
            if (kind == Kind::grey)
                rows.grey(y.data(), to, count);
            else
                (kind == Kind::wide ? rows.colour_wide : rows.colour)(y.data(), terms, to, count);
            ASSERT_TRUE(std::equal(expected.begin(), expected.end(), to)) << "count " << count;
            for (size_t i = 0; i < bgr.size(); ++i)
                if (i < shift || i >= shift + 3 * count) {
                    ASSERT_EQ(bgr[i], 0x77) << "byte " << i << ", count " << count;
                }
        }
    });
}

TEST(DecodeRows, PixelsOfEveryCount) {
    Random random(4);
    for (size_t count = 0; count <= 130; ++count)
        for (Kind kind : {Kind::grey, Kind::colour, Kind::wide}) {
            std::vector<int16_t> planes[3];
            for (auto& plane : planes) {
                plane.resize(most + 64);
                const int range = random.once_in(3) ? 4096 : 200;
                for (int16_t& sample : plane)
                    sample = static_cast<int16_t>(random.between(-range, range - 1));
            }
            run_row(kind, planes[0], planes[1], planes[2], count);
        }
}

// Every chroma value that a transform yields, with luma that brings the result into 0..255.
TEST(DecodeRows, EveryChromaValue) {
    std::vector<int16_t> y(most + 64), cb(most + 64), cr(most + 64);
    Random random(5);
    for (int first = -4096; first < 4096 && !HasFatalFailure(); first += 160)
        for (size_t i = 0; i < most; ++i) {
            cb[i] = static_cast<int16_t>(std::min(first + static_cast<int>(i), 4095));
            cr[i] = static_cast<int16_t>(random.between(-4096, 4095));
            if (i + 1 < most)
                continue;
            for (int channel = 0; channel < 3; ++channel) {
                for (size_t k = 0; k < most; ++k) {
                    const double term = channel == 0   ? 1.77 * cb[k]
                                        : channel == 1 ? -0.3437 * cb[k] - 0.7143 * cr[k]
                                                       : 1.402 * cr[k];
                    y[k] = static_cast<int16_t>(
                        std::clamp(random.between(-10, 10) - term, -4096.0, 4095.0));
                }
                run_row(Kind::colour, y, cb, cr, most);
                run_row(Kind::colour, y, cr, cb, most);
            }
        }
}

} // namespace
