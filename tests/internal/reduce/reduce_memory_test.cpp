// Conversions when memory cannot be had: each allocation in turn fails.
#include "image/memory.hpp"
#include "support/dib_builder.hpp"

#include <gtest/gtest.h>

using namespace kirvo_test;

namespace {

using Convert = HGLOBAL(WINAPI*)(HGLOBAL, int32_t*);

// Number of allocations that fail before the conversion succeeds.
uint32_t failures(Convert convert, const DibSpec& spec) {
    const Dib from = make_dib(spec);
    for (uint32_t n = 1; n <= 10; ++n) {
        int32_t status = 77;
        kirvo::fail_allocation(n);
        const Dib result(convert(from, &status));
        kirvo::fail_allocation(0);
        EXPECT_TRUE(is_unlocked(from));
        if (status == KIRVO_OK) {
            EXPECT_NE(result, nullptr);
            return n - 1;
        }
        EXPECT_EQ(status, KIRVO_NO_MEMORY);
        EXPECT_EQ(result, nullptr);
    }
    return 10;
}

HGLOBAL WINAPI cut_depth(HGLOBAL dib, int32_t* status) { return DibCutDepth(dib, 1, 2, 3, status); }

TEST(ReduceMemory, EveryAllocationMayFail) {
    constexpr Convert reductions[] = {DecreaseColor256, DecreaseColor16,    DecreaseColorMono256,
                                      Decrease256Fast,  Decrease256Palette, Decrease16Palette};
    for (const Convert convert : reductions) {
        EXPECT_GE(failures(convert, {5, 3, 24}), 1u);
        EXPECT_GE(failures(convert, {5, 3, 32, masks_888}), 1u);
    }
    EXPECT_GE(failures(DecreaseColor256, {5, 3, 24}), 2u);
    EXPECT_GE(failures(DecreaseColor16, {5, 3, 24}), 2u);
    EXPECT_GE(failures(IncreaseColor16M, {5, 3, 8}), 1u);
}

TEST(DepthMemory, EveryAllocationMayFail) {
    EXPECT_GE(failures(DibConvert24bit, {5, 3, 16}), 1u);
    EXPECT_GE(failures(DibConvert24bit, {5, 3, 32}), 1u);
    EXPECT_GE(failures(DibConvert16bit, {5, 3, 24}), 1u);
    EXPECT_GE(failures(DibConvert32bit, {5, 3, 24}), 1u);
    EXPECT_GE(failures(cut_depth, {5, 3, 24}), 1u);
}

} // namespace
