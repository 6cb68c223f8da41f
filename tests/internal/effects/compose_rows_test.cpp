// Every blending kernel at every level of the processor against plain loops.
#include "effects/compose_rows.hpp"

#include "internal/cpu_levels.hpp"
#include "internal/guarded.hpp"
#include "support/random.hpp"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>

using namespace kirvo;
using namespace kirvo_test;

namespace {

struct Blend {
    ComposeRows::Bytes ComposeRows::*kernel;
    int (*expected)(int to, int from);
};

const Blend blends[] = {
    {&ComposeRows::add, [](int to, int from) { return std::min(to + from, 255); }},
    {&ComposeRows::average, [](int to, int from) { return (to + from) / 2; }},
    {&ComposeRows::subtract, [](int to, int from) { return std::max(to - from, 0); }},
};

} // namespace

TEST(ComposeRows, blend_every_pair_of_bytes) {
    std::vector<uint8_t> to(65536), from(65536);
    for (size_t i = 0; i < 65536; ++i) {
        to[i] = static_cast<uint8_t>(i);
        from[i] = static_cast<uint8_t>(i >> 8);
    }
    at_every_cpu_level([&](CpuLevel) {
        for (const Blend& blend : blends) {
            std::vector<uint8_t> result = to;
            (compose_rows().*blend.kernel)(result.data(), from.data(), result.size());
            for (size_t i = 0; i < 65536; ++i)
                ASSERT_EQ(result[i], blend.expected(to[i], from[i]));
        }
    });
}

TEST(ComposeRows, blend_every_count_and_nothing_beside_it) {
    Random random(1);
    at_every_cpu_level([&](CpuLevel) {
        for (const Blend& blend : blends)
            for (size_t count = 0; count < 140; ++count) {
                Guarded to(count, count % 7), from(count, count % 5);
                random.fill(to.data(), count);
                random.fill(from.data(), count);
                std::vector<uint8_t> expected(count);
                for (size_t i = 0; i < count; ++i)
                    expected[i] =
                        static_cast<uint8_t>(blend.expected(to.data()[i], from.data()[i]));
                (compose_rows().*blend.kernel)(to.data(), from.data(), count);
                ASSERT_EQ(to.content(), expected);
                ASSERT_TRUE(to.intact() && from.intact());
            }
    });
}

// Channels take few values, so that many bytes match the key and few whole pixels do.
TEST(ComposeRows, replace_all_but_whole_keys) {
    Random random(2);
    at_every_cpu_level([&](CpuLevel) {
        for (size_t count = 0; count < 140; ++count) {
            Guarded to(3 * count, count % 7), from(3 * count, count % 5);
            const uint8_t key[3] = {1, static_cast<uint8_t>(random.between(0, 2)), 2};
            for (size_t i = 0; i < 3 * count; ++i) {
                to.data()[i] = random.byte();
                from.data()[i] = static_cast<uint8_t>(random.between(0, 2));
            }
            std::vector<uint8_t> expected = to.content();
            for (size_t i = 0; i < count; ++i)
                if (std::memcmp(from.data() + 3 * i, key, 3) != 0)
                    std::memcpy(expected.data() + 3 * i, from.data() + 3 * i, 3);
            compose_rows().replace(to.data(), from.data(), count, key);
            ASSERT_EQ(to.content(), expected) << count;
            ASSERT_TRUE(to.intact() && from.intact());
        }
    });
}
