// Row kernels of the encoder at every level of the processor.

#include "jpeg/encode_rows.hpp"

#include "internal/cpu_levels.hpp"
#include "internal/guarded.hpp"
#include "jpeg/encoding.hpp"
#include "jpeg/tables.hpp"

#include <cstring>
#include <memory>

using namespace kirvo;
using namespace kirvo_test;

namespace {

int floor_divided(int value, int divisor) {
    return value >= 0 ? value / divisor : -((-value + divisor - 1) / divisor);
}

int8_t y_of(int r, int g, int b) {
    return static_cast<int8_t>(floor_divided(77 * r + 150 * g + 29 * b + 128, 256) - 128);
}
int8_t cb_of(int r, int g, int b) {
    return static_cast<int8_t>(floor_divided(128 * b - 85 * g - 43 * r + 127, 256));
}
int8_t cr_of(int r, int g, int b) {
    return static_cast<int8_t>(floor_divided(128 * r - 107 * g - 21 * b + 127, 256));
}

void expect_converted(const uint8_t* bgr, size_t count, size_t offset) {
    Guarded y(count, offset), cb(count, offset + 1), cr(count, offset + 2);
    const auto samples = [](Guarded& row) { return reinterpret_cast<int8_t*>(row.data()); };
    encode_rows().convert(bgr, count, samples(y), samples(cb), samples(cr));
    for (size_t i = 0; i < count; ++i) {
        const int b = bgr[3 * i], g = bgr[3 * i + 1], r = bgr[3 * i + 2];
        ASSERT_EQ(samples(y)[i], y_of(r, g, b)) << r << ' ' << g << ' ' << b;
        ASSERT_EQ(samples(cb)[i], cb_of(r, g, b)) << r << ' ' << g << ' ' << b;
        ASSERT_EQ(samples(cr)[i], cr_of(r, g, b)) << r << ' ' << g << ' ' << b;
    }
    ASSERT_TRUE(y.intact() && cb.intact() && cr.intact());
}

void fill_samples(int8_t* samples, size_t count, Random& random) {
    const int kind = random.between(0, 4);
    for (size_t i = 0; i < count; ++i) {
        switch (kind) {
        case 0: // extremes at random
            samples[i] = random.once_in(2) ? INT8_MIN : INT8_MAX;
            break;
        case 1: // extremes in stripes and squares
            samples[i] = (i / static_cast<size_t>(random.between(1, 3)) + i / 64) % 2 ? INT8_MIN
                                                                                      : INT8_MAX;
            break;
        case 2:
            samples[i] = static_cast<int8_t>(random.between(-3, 3));
            break;
        case 3:
            samples[i] = static_cast<int8_t>(i * 3 + i / 64 * 5);
            break;
        default:
            samples[i] = static_cast<int8_t>(random.byte());
        }
    }
}

Quantiser random_quantiser(Random& random) {
    uint8_t table[64];
    const int32_t highest = random.pick({1, 2, 3, 4, 30, 255});
    for (uint8_t& entry : table)
        entry = static_cast<uint8_t>(random.between(1, highest));
    Quantiser quantiser;
    quantiser.set(table, random.pick({1, 21, 63, 64, 64, 64}));
    return quantiser;
}

} // namespace

TEST(EncodeRows, colours_are_converted) {
    std::vector<uint8_t> bgr;
    for (int r = 0; r < 256; r += 5)
        for (int g = 0; g < 256; g += 5)
            for (int b = 0; b < 256; b += 5)
                bgr.insert(bgr.end(), {static_cast<uint8_t>(b), static_cast<uint8_t>(g),
                                       static_cast<uint8_t>(r)});
    at_every_cpu_level([&](CpuLevel) { expect_converted(bgr.data(), bgr.size() / 3, 0); });
}

TEST(EncodeRows, rows_of_any_length_and_alignment_are_converted) {
    Random random(1);
    at_every_cpu_level([&](CpuLevel) {
        for (size_t count = 0; count < 210; ++count) {
            // An exact block, so that a read beside it is found.
            const std::unique_ptr<uint8_t[]> bgr(new uint8_t[3 * count]);
            random.fill(bgr.get(), 3 * count);
            expect_converted(bgr.get(), count, count % 7);
        }
    });
}

TEST(EncodeRows, chroma_is_halved_with_rounding) {
    Random random(2);
    at_every_cpu_level([&](CpuLevel) {
        for (size_t count = 1; count <= 128; ++count) {
            int8_t upper[256], lower[256], half[128];
            fill_samples(upper, 256, random);
            fill_samples(lower, 256, random);
            encode_rows().halve_across(upper, count, half);
            for (size_t i = 0; i < count; ++i)
                ASSERT_EQ(half[i], floor_divided(upper[2 * i] + upper[2 * i + 1] + 1, 2));
            encode_rows().halve_both(upper, lower, count, half);
            for (size_t i = 0; i < count; ++i)
                ASSERT_EQ(half[i], floor_divided(upper[2 * i] + upper[2 * i + 1] + lower[2 * i] +
                                                     lower[2 * i + 1] + 2,
                                                 4));
        }
    });
}

TEST(EncodeRows, reciprocals_give_the_rounded_quotient_of_every_magnitude) {
    for (int q = 1; q < 256; ++q) {
        uint8_t table[64];
        std::memset(table, q, sizeof table);
        Quantiser quantiser;
        quantiser.set(table, 63);
        for (size_t n : {size_t{0}, size_t{35}, size_t{62}}) {
            ASSERT_EQ(quantiser.divisor[n], q);
            for (uint32_t magnitude = 0; magnitude < 4096; ++magnitude) {
                const uint32_t biased = (magnitude + quantiser.bias[n / 8][n % 8]) & 0xFFFF;
                const uint32_t level = (biased * quantiser.reciprocal[n / 8][n % 8] >> 16) *
                                           quantiser.scale[n / 8][n % 8] >>
                                       16;
                const auto divisor = static_cast<uint32_t>(q);
                ASSERT_EQ(level, (magnitude + divisor / 2) / divisor) << q << ' ' << magnitude;
            }
        }
        ASSERT_EQ(quantiser.divisor[63], 0); // the 64th is not coded
        for (size_t block = 0; block < group_blocks; ++block) {
            ASSERT_EQ(quantiser.reciprocal[7][8 * block + 7], 0);
            ASSERT_EQ(quantiser.reciprocal[7][8 * block + 6], quantiser.reciprocal[7][6]);
            ASSERT_EQ(quantiser.scale[7][8 * block + 6], quantiser.scale[7][6]);
            ASSERT_EQ(quantiser.bias[7][8 * block + 6], quantiser.bias[7][6]);
        }
    }
}

TEST(EncodeRows, every_level_makes_the_same_blocks) {
    Random random(3);
    constexpr size_t groups = 3, stride = 8 * group_blocks * groups + 5;
    for (int round = 0; round < 400; ++round) {
        SCOPED_TRACE(round);
        int8_t samples[8 * stride];
        fill_samples(samples, sizeof samples, random);
        const Quantiser quantiser = random_quantiser(random);
        const auto expected = std::make_unique<BlockGroup[]>(groups);
        encode_rows_scalar.code_groups(samples, stride, groups, quantiser, expected.get());
        at_every_cpu_level([&](CpuLevel) {
            const auto made = std::make_unique<BlockGroup[]>(groups + 1);
            std::memset(static_cast<void*>(made.get()), 0x5A, (groups + 1) * sizeof(BlockGroup));
            encode_rows().code_groups(samples, stride, groups, quantiser, made.get());
            for (size_t g = 0; g < groups; ++g) {
                ASSERT_EQ(std::memcmp(made[g].level, expected[g].level, sizeof made[g].level), 0);
                for (size_t block = 0; block < group_blocks; ++block) {
                    const uint64_t nonzero = expected[g].nonzero[block];
                    ASSERT_EQ(made[g].nonzero[block], nonzero);
                    for (size_t k = 0; k < 64; ++k) {
                        if (nonzero >> k & 1) {
                            ASSERT_EQ(made[g].small[block][k], expected[g].small[block][k]);
                        }
                    }
                }
            }
            ASSERT_EQ(made[groups].nonzero[0], 0x5A5A5A5A5A5A5A5Au); // untouched
        });
    }
}

TEST(EncodeRows, small_levels_are_told_from_others) {
    // A flat block of -128 has DC -1024; quantisers of 1 to 20 take it through all sizes.
    at_every_cpu_level([&](CpuLevel) {
        for (int q = 1; q <= 20; ++q) {
            for (const int8_t value : {INT8_MIN, INT8_MAX}) {
                int8_t samples[8 * 32];
                std::memset(samples, value, sizeof samples);
                uint8_t table[64];
                std::memset(table, q, sizeof table);
                Quantiser quantiser;
                quantiser.set(table, 64);
                BlockGroup group;
                encode_rows().code_groups(samples, 32, 1, quantiser, &group);
                const int dc = value == INT8_MIN ? -((1024 + q / 2) / q) : (1016 + q / 2) / q;
                ASSERT_EQ(group.level[0][0], dc);
                ASSERT_EQ(group.nonzero[0], 1u);
                if (dc >= -64 && dc < 64)
                    ASSERT_EQ(group.small[0][0], dc + 64);
                else
                    ASSERT_GE(group.small[0][0], 128);
            }
        }
    });
}

TEST(EncodeRows, every_level_writes_the_same_streams) {
    for (uint64_t seed = 0; seed < 12; ++seed) {
        SCOPED_TRACE(seed);
        Random random(seed);
        const Dib dib = make_random_dib({random.between(1, 90), random.between(1, 40), 24}, random);
        ReferenceJob job = colour_job(dib, whole(dib));
        job.mode = random.pick({1, 2, 4});
        job.level = random.between(1, 5);
        const std::vector<uint8_t> expected = reference_stream(job);
        at_every_cpu_level([&](CpuLevel) {
            reset_encoder();
            JpgCodSetSubsample(job.mode);
            JpgCodSetQEx(job.level);
            ASSERT_EQ(encode(dib, whole(dib)), expected);
        });
    }
    reset_encoder();
}
