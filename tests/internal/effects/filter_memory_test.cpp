// Filters and patterns when memory fails: the status, and nothing left behind.
#include "image/memory.hpp"

#include "support/dib_builder.hpp"
#include "support/progress_recorder.hpp"

#include <functional>
#include <gtest/gtest.h>

using namespace kirvo_test;

namespace {

using Maker = std::function<HGLOBAL(HGLOBAL, int32_t*)>;

// Fails each allocation of a call in turn until one succeeds.
void expect_no_memory(const char* name, int bits, const Maker& make) {
    SCOPED_TRACE(name);
    SCOPED_TRACE(bits);
    const Dib dib = make_dib({3, 3, bits});
    for (uint32_t n = 1;; ++n) {
        ProgressRecorder recorder;
        recorder.watch();
        int32_t status = 77;
        kirvo::fail_allocation(n);
        const Dib made(make(dib, &status));
        kirvo::fail_allocation(0);
        EXPECT_TRUE(is_unlocked(dib));
        if (status == 0) {
            EXPECT_GT(n, 1u) << "nothing was allocated";
            EXPECT_NE(HGLOBAL(made), nullptr);
            return;
        }
        ASSERT_EQ(status, KIRVO_NO_MEMORY) << n;
        EXPECT_EQ(HGLOBAL(made), nullptr) << n;
        ASSERT_LT(n, 20u);
    }
}

TEST(FilterMemory, NoNeighbourhoodNoResult) {
    SetFilter3x3(0, 0, 0, 0, 1, 0, 0, 0, 0, 1);
    expect_no_memory("blur", 24,
                     [](HGLOBAL dib, int32_t* s) { return Dib24Gausian(dib, 0, 0, 3, 3, s); });
    for (const int bits : {16, 24, 32})
        expect_no_memory("kernel", bits,
                         [](HGLOBAL dib, int32_t* s) { return DibFilter3x3(dib, 0, 0, 3, 3, s); });
    for (const int mode : {0, 1, 3})
        expect_no_memory("sharpen", 24, [&](HGLOBAL dib, int32_t* s) {
            return Dib24Sharpen(dib, 0, 0, 3, 3, mode, s);
        });
    expect_no_memory("sharpen more", 24,
                     [](HGLOBAL dib, int32_t* s) { return Dib24SharpenEx(dib, 0, 0, 3, 3, 1, s); });
    expect_no_memory("colour edge", 24, [](HGLOBAL dib, int32_t* s) {
        return Dib24ColorEdge(dib, 0, 0, 3, 3, 1, 0, s);
    });
    for (const int bits : {24, 32}) {
        expect_no_memory("ranges", bits, [](HGLOBAL dib, int32_t* s) {
            return Dib24Filter(dib, 0, 0, 3, 3, 0, 0, 0, s);
        });
        for (const uint32_t flags : {0x101u, 0x102u, 0x202u})
            expect_no_memory("record", bits, [&](HGLOBAL dib, int32_t* s) {
                return Dib24FilterEx(dib, 0, 0, 3, 3, flags, 0, 0, 0, 0, s);
            });
    }
}

TEST(FilterMemory, NoBlocksNoResult) {
    for (const int bits : {8, 16, 24, 32})
        for (const int block : {1, 2}) {
            expect_no_memory("samples", bits, [&](HGLOBAL dib, int32_t* s) {
                return DibMosaicEx(dib, 0, 0, 3, 3, block, s);
            });
            expect_no_memory("averages", bits, [&](HGLOBAL dib, int32_t* s) {
                return DibMosaicEx2(dib, 0, 0, 3, 3, block, s);
            });
        }
    for (const int bits : {16, 24, 32})
        for (const int luminance : {0, 1})
            expect_no_memory("extremes", bits, [&](HGLOBAL dib, int32_t* s) {
                return DibBlockMxM(dib, 0, 0, 3, 3, 2, 1, luminance, s);
            });
    for (const int bits : {24, 32})
        expect_no_memory("interleave", bits, [](HGLOBAL dib, int32_t* s) {
            return Dib24InterLeave(dib, 0, 0, dib, 0, 0, 3, 3, s);
        });
}

TEST(FilterMemory, NoPattern) {
    for (const int bits : {16, 24, 32}) {
        expect_no_memory("solid", bits,
                         [&](HGLOBAL, int32_t* s) { return Dib24Solid(3, 2, bits, 1, s); });
        expect_no_memory("gradient 1", bits,
                         [&](HGLOBAL, int32_t* s) { return Dib24Gradation1(3, 2, bits, 1, 2, s); });
        expect_no_memory("gradient 2", bits,
                         [&](HGLOBAL, int32_t* s) { return Dib24Gradation2(3, 2, bits, 1, 2, s); });
        expect_no_memory("gradient 3", bits, [&](HGLOBAL, int32_t* s) {
            return Dib24Gradation3(3, 2, bits, 1, 2, 3, 4, s);
        });
    }
}

TEST(FilterMemory, NoSetOfColours) {
    for (const int bits : {16, 24, 32}) {
        const Dib dib = make_dib({3, 3, bits});
        uint32_t count = 77;
        kirvo::fail_allocation(1);
        EXPECT_EQ(DibCountColors(dib, &count), KIRVO_NO_MEMORY);
        kirvo::fail_allocation(0);
        EXPECT_EQ(count, 0u);
        EXPECT_TRUE(is_unlocked(dib));
    }
}

} // namespace
