// Copies, turns and zooms when memory fails: the status, and nothing left behind.
#include "image/memory.hpp"

#include "support/dib_builder.hpp"
#include "support/progress_recorder.hpp"

#include <functional>
#include <gtest/gtest.h>

using namespace kirvo_test;

namespace {

using Maker = std::function<HGLOBAL(HGLOBAL, int32_t*)>;

// Fails every allocation of the call in turn.
void expect_no_memory(const Maker& make, const Dib& dib) {
    for (uint32_t n = 1;; ++n) {
        ProgressRecorder recorder;
        recorder.watch();
        int32_t status = 77;
        kirvo::fail_allocation(n);
        const Dib result(make(dib, &status));
        kirvo::fail_allocation(0);
        EXPECT_TRUE(is_unlocked(dib));
        if (HGLOBAL(result) != nullptr) {
            EXPECT_GT(n, 1u);
            return;
        }
        EXPECT_EQ(status, KIRVO_NO_MEMORY) << n;
        EXPECT_TRUE(recorder.percents().empty());
    }
}

} // namespace

TEST(GeometryMemory, makers_answer_no_memory_at_every_allocation) {
    Random random(1);
    for (int bits : {8, 16, 24, 32}) {
        const Dib dib = make_random_dib({6, 6, bits}, random);
        expect_no_memory(
            [](HGLOBAL from, int32_t* status) { return Dib24DupEx(from, 1, 1, 3, 3, status); },
            dib);
        expect_no_memory(
            [](HGLOBAL from, int32_t* status) { return Dib24Rotate(from, 1, 1, 3, 3, 0, status); },
            dib);
        for (const int size : {2, 3, 5, 9})
            for (const int smooth : {0, 1})
                expect_no_memory(
                    [=](HGLOBAL from, int32_t* status) {
                        return Dib24ZoomEx2(from, 0, 0, 6, 6, size, size, status, smooth);
                    },
                    dib);
        expect_no_memory(
            [](HGLOBAL from, int32_t* status) {
                return Dib24ZoomEx(from, 0, 0, 6, 6, 6, 6, status);
            },
            dib);
    }
}

TEST(GeometryMemory, flips_need_a_row_whatever_the_height) {
    Random random(2);
    const Dib dib = make_random_dib({5, 4, 24}, random);
    const auto before = dib.bytes();
    ProgressRecorder recorder;
    recorder.watch();
    for (const auto turn : {Dib24Flip, Dib24FlipMirror})
        for (const int height : {1, 4}) {
            kirvo::fail_allocation(1);
            EXPECT_EQ(turn(dib, 0, 0, 5, height), KIRVO_NO_MEMORY);
            kirvo::fail_allocation(0);
            EXPECT_TRUE(is_unlocked(dib));
        }
    kirvo::fail_allocation(1);
    EXPECT_EQ(Dib24Mirror(dib, 0, 0, 1, 4), KIRVO_OK); // which needs none
    kirvo::fail_allocation(0);
    EXPECT_EQ(dib.bytes(), before);
}
