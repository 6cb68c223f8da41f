// The kernels of filters and blocks at every level of the processor, against one element at a time.
#include "effects/block_rows.hpp"
#include "effects/filter_rows.hpp"

#include "internal/cpu_levels.hpp"
#include "internal/guarded.hpp"
#include "support/random.hpp"

#include <algorithm>
#include <cstdlib>
#include <cstring>

using namespace kirvo;
using namespace kirvo_test;

namespace {

// Elements at any address, random or extreme.
template<typename T>
std::vector<T> values(Random& random, size_t count, int64_t low, int64_t high) {
    std::vector<T> all(count);
    const bool extreme = random.once_in(3);
    for (T& value : all)
        value = static_cast<T>(
            extreme ? (random.once_in(2) ? low : high)
                    : low + static_cast<int64_t>(random.next64() %
                                                 static_cast<uint64_t>(high - low + 1)));
    return all;
}

// Runs a kernel that writes count elements at every level and length, between guards.
template<typename T, typename Kernel, typename Plain>
void expect_elements(size_t per_item, const Kernel& kernel, const Plain& plain) {
    at_every_cpu_level([&](CpuLevel) {
        for (size_t items = 0; items < 300; items += 1 + items / 50) {
            const size_t count = items * per_item;
            Guarded to(count * sizeof(T), (items % 16) * sizeof(T));
            kernel(reinterpret_cast<T*>(to.data()), items);
            ASSERT_TRUE(to.intact()) << items;
            std::vector<T> found(count);
            if (count != 0)
                std::memcpy(found.data(), to.data(), count * sizeof(T));
            for (size_t i = 0; i < count; ++i)
                ASSERT_EQ(int64_t{found[i]}, int64_t{plain(i)}) << i << " of " << items;
        }
    });
}

constexpr size_t longest = 300;

// Three rows with room of one pixel at both ends.
struct Rows3 {
    std::vector<uint8_t> bytes[3];
    const uint8_t* rows[3];

    explicit Rows3(Random& random) {
        for (int i = 0; i < 3; ++i) {
            bytes[i] = values<uint8_t>(random, 3 * longest + 6, 0, 255);
            rows[i] = bytes[i].data() + 3;
        }
    }
    int at(int row, size_t i, int offset) const {
        return bytes[row][static_cast<size_t>(static_cast<int>(i) + 3 + offset)];
    }
};

uint8_t clamped(int64_t value) { return static_cast<uint8_t>(std::clamp<int64_t>(value, 0, 255)); }

TEST(FilterRows, Blur) {
    Random random(1);
    for (int round = 0; round < 4; ++round) {
        const Rows3 r(random);
        expect_elements<uint8_t>(
            3, [&](uint8_t* to, size_t n) { filter_rows().blur(to, r.rows, 3 * n); },
            [&](size_t i) {
                const int corners = r.at(0, i, -3) + r.at(0, i, 3) + r.at(2, i, -3) + r.at(2, i, 3);
                const int edges = r.at(0, i, 0) + r.at(2, i, 0) + r.at(1, i, -3) + r.at(1, i, 3);
                return (11 * corners + 30 * edges + 81 * r.at(1, i, 0)) / 256;
            });
    }
}

void expect_convolution(Random& random, bool wide, int limit, uint32_t divisor) {
    const Rows3 r(random);
    Convolution by = {};
    for (int16_t& weight : by.weight)
        weight = static_cast<int16_t>(random.between(-limit, limit));
    const int bits = wide ? 31 : 15;
    int log = 0;
    while ((uint64_t{1} << log) < divisor)
        ++log;
    by.divides = divisor > 1;
    by.shift = bits + log;
    by.multiplier =
        static_cast<uint32_t>(((uint64_t{1} << by.shift) + divisor - 1) / divisor);
    expect_elements<uint8_t>(
        3,
        [&](uint8_t* to, size_t n) {
            const FilterRows& rows = filter_rows();
            (wide ? rows.convolve32 : rows.convolve16)(to, r.rows, 3 * n, by);
        },
        [&](size_t i) {
            int64_t sum = 0;
            for (int k = 0; k < 9; ++k)
                sum += by.weight[k] * r.at(k / 3, i, 3 * (k % 3) - 3);
            return clamped(sum / divisor);
        });
}

TEST(FilterRows, Convolution) {
    Random random(2);
    for (const uint32_t divisor : {1u, 2u, 3u, 7u, 9u, 16u, 20u, 127u, 128u, 129u, 1000u, 32767u}) {
        expect_convolution(random, false, 14, divisor);
        expect_convolution(random, true, 200, divisor);
        expect_convolution(random, true, 32767, divisor);
    }
    expect_convolution(random, true, 32767, 1u << 31);
}

TEST(FilterRows, Luminance) {
    Random random(3);
    for (int round = 0; round < 4; ++round) {
        const auto bgr = values<uint8_t>(random, 3 * longest, 0, 255);
        expect_elements<uint8_t>(
            1, [&](uint8_t* to, size_t n) { filter_rows().luminance(to, bgr.data(), n); },
            [&](size_t i) {
                return (29 * bgr[3 * i] + 150 * bgr[3 * i + 1] + 77 * bgr[3 * i + 2] + 128) / 256;
            });
    }
}

TEST(FilterRows, LaplacianAndGradient) {
    Random random(4);
    for (int round = 0; round < 4; ++round) {
        const Rows3 r(random);
        expect_elements<int16_t>(
            1, [&](int16_t* to, size_t n) { filter_rows().laplacian(to, r.rows, n); },
            [&](size_t i) {
                return 4 * r.at(1, i, 0) -
                       (r.at(0, i, 0) + r.at(1, i, -1) + r.at(1, i, 1) + r.at(2, i, 0));
            });
        expect_elements<int16_t>(
            1, [&](int16_t* to, size_t n) { filter_rows().gradient(to, r.rows, n); },
            [&](size_t i) {
                return r.at(1, i, 1) + r.at(2, i, 0) - r.at(0, i, 0) - r.at(1, i, -1) +
                       2 * (r.at(2, i, 1) - r.at(0, i, -1));
            });
    }
}

TEST(FilterRows, Correction) {
    Random random(5);
    for (const int divisor : {2, 4, 6, 8}) {
        const auto slope = values<int16_t>(random, longest, -1020, 1020);
        uint8_t spare[longest];
        expect_elements<uint8_t>(
            1,
            [&](uint8_t* to, size_t n) {
                filter_rows().correction(to, spare, slope.data(), n, divisor);
            },
            [&](size_t i) { return clamped(slope[i] / divisor); });
        expect_elements<uint8_t>(
            1,
            [&](uint8_t* to, size_t n) {
                filter_rows().correction(spare, to, slope.data(), n, divisor);
            },
            [&](size_t i) { return clamped(-(slope[i] / divisor)); });
    }
    for (int round = 0; round < 4; ++round) {
        const auto from = values<uint8_t>(random, longest, 0, 255);
        auto plus = values<uint8_t>(random, longest, 0, 255);
        auto minus = values<uint8_t>(random, longest, 0, 255);
        for (size_t i = 0; i < longest; ++i)
            (random.once_in(2) ? plus : minus)[i] = 0;
        expect_elements<uint8_t>(
            1,
            [&](uint8_t* to, size_t n) {
                filter_rows().correct(to, from.data(), plus.data(), minus.data(), n);
            },
            [&](size_t i) { return clamped(from[i] + plus[i] - minus[i]); });
    }
}

TEST(FilterRows, GreyValuesOfEdges) {
    Random random(6);
    for (int round = 0; round < 4; ++round) {
        const auto v = values<int16_t>(random, longest, -1020, 1020);
        for (const auto& [low, high] : {std::pair<int16_t, int16_t>{-255, 255}, {0, 255}, {-255, 0}})
            expect_elements<uint8_t>(
                1,
                [&](uint8_t* to, size_t n) { filter_rows().dark_edges(to, v.data(), n, low, high); },
                [&](size_t i) { return 255 - std::abs(std::clamp(v[i], low, high)); });
        expect_elements<uint8_t>(
            1, [&](uint8_t* to, size_t n) { filter_rows().relief(to, v.data(), n); },
            [&](size_t i) { return std::clamp<int>(v[i], -127, 127) + 128; });
        for (const auto& [low, high] :
             {std::pair<int16_t, int16_t>{-100, 100}, {INT16_MIN, 1020}, {5, -5}, {0, INT16_MAX}})
            expect_elements<uint8_t>(
                1,
                [&](uint8_t* to, size_t n) { filter_rows().between(to, v.data(), n, low, high); },
                [&](size_t i) { return v[i] >= low && v[i] <= high ? 255 : 0; });
    }
}

TEST(FilterRows, TripleAndVeil) {
    Random random(7);
    const auto from = values<uint8_t>(random, longest, 0, 255);
    const auto veil = values<uint8_t>(random, longest, 0, 255);
    expect_elements<uint8_t>(
        3, [&](uint8_t* to, size_t n) { filter_rows().triple(to, from.data(), n); },
        [&](size_t i) { return from[i / 3]; });
    expect_elements<uint8_t>(
        1, [&](uint8_t* to, size_t n) { filter_rows().veil(to, from.data(), veil.data(), n); },
        [&](size_t i) { return from[i] | veil[i]; });
}

template<typename T>
struct Four {
    std::vector<T> a, b, c, d;
    Four(Random& random, int64_t high)
        : a(values<T>(random, longest, 0, high)), b(values<T>(random, longest, 0, high)),
          c(values<T>(random, longest, 0, high)), d(values<T>(random, longest, 0, high)) {}
};

// Runs one of the kernels that pick extremes; plain picks from a list of values.
template<typename T, typename Plain>
void expect_pick(Random& random, PickRow<T> BlockRows::*row, PickTwoRows<T> BlockRows::*two,
                 const Plain& plain) {
    const Four<T> f(random, std::numeric_limits<T>::max());
    expect_elements<T>(
        1, [&](T* to, size_t n) { (block_rows().*row)(to, f.a.data(), f.b.data(), n); },
        [&](size_t i) { return plain({f.a[i], f.b[i]}); });
    std::vector<T> running;
    expect_elements<T>(
        1,
        [&](T* to, size_t n) {
            running = f.a;
            (block_rows().*two)(to, running.data(), f.b.data(), f.c.data(), n);
            for (size_t i = 0; i < longest; ++i)
                ASSERT_EQ(running[i], i < n ? plain({f.a[i], f.b[i]}) : f.a[i]);
        },
        [&](size_t i) { return plain({f.a[i], f.b[i], f.c[i]}); });
}

template<typename T, typename Plain>
void expect_four(Random& random, int64_t high, PickFourRows<T> BlockRows::*four,
                 const Plain& plain) {
    const Four<T> f(random, high);
    expect_elements<T>(
        1,
        [&](T* to, size_t n) {
            (block_rows().*four)(to, f.a.data(), f.b.data(), f.c.data(), f.d.data(), n);
        },
        [&](size_t i) { return plain({f.a[i], f.b[i], f.c[i], f.d[i]}); });
}

TEST(BlockRows, Extremes) {
    const auto highest8 = [](std::initializer_list<uint8_t> v) { return std::max(v); };
    const auto lowest8 = [](std::initializer_list<uint8_t> v) { return std::min(v); };
    const auto highest16 = [](std::initializer_list<uint16_t> v) { return std::max(v); };
    const auto highest32 = [](std::initializer_list<uint32_t> v) { return std::max(v); };
    Random random(8);
    for (int round = 0; round < 4; ++round) {
        expect_pick<uint8_t>(random, &BlockRows::highest8, &BlockRows::highest_two8, highest8);
        expect_pick<uint8_t>(random, &BlockRows::lowest8, &BlockRows::lowest_two8, lowest8);
        expect_pick<uint16_t>(random, &BlockRows::highest16, &BlockRows::highest_two16, highest16);
        expect_four<uint8_t>(random, 255, &BlockRows::highest_four8, highest8);
        expect_four<uint8_t>(random, 255, &BlockRows::lowest_four8, lowest8);
        expect_four<uint32_t>(random, INT32_MAX, &BlockRows::highest_four32, highest32);
    }
}

TEST(BlockRows, Sums) {
    Random random(9);
    const auto start = values<uint32_t>(random, longest, 0, 1 << 30);
    const auto row = values<uint8_t>(random, longest, 0, 255);
    expect_elements<uint32_t>(
        1,
        [&](uint32_t* to, size_t n) {
            std::memcpy(to, start.data(), n * sizeof *to);
            block_rows().add(to, row.data(), n);
        },
        [&](size_t i) { return start[i] + row[i]; });
}

} // namespace
