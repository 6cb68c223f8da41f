// Point and hue operations when memory fails: the status, and nothing left behind.

#include "image/memory.hpp"

#include "support/dib_builder.hpp"
#include "support/progress_recorder.hpp"

#include <functional>
#include <gtest/gtest.h>

using namespace kirvo_test;

namespace {

using Maker = std::function<HGLOBAL(HGLOBAL, int32_t*)>;

const uint8_t table[256] = {};

const Maker makers[] = {
    [](HGLOBAL dib, int32_t* status) { return Dib24Brightness(dib, 0, 0, 2, 2, 1, status); },
    [](HGLOBAL dib, int32_t* status) { return Dib24Contrast(dib, 0, 0, 2, 2, 1, status); },
    [](HGLOBAL dib, int32_t* status) { return Dib24Monochrome(dib, 0, 0, 2, 2, status); },
    [](HGLOBAL dib, int32_t* status) { return Dib24HalfTone(dib, 0, 0, 2, 2, status); },
    [](HGLOBAL dib, int32_t* status) { return Dib24ToneCtrl(dib, 0, 0, 2, 2, 1, 1, status); },
    [](HGLOBAL dib, int32_t* status) { return Dib24ToneCtrlEx(dib, 0, 0, 2, 2, 1, 1, 1, status); },
    [](HGLOBAL dib, int32_t* status) { return Dib24Gamma(dib, 0, 0, 2, 2, 2.0, status); },
    [](HGLOBAL dib, int32_t* status) { return DibGammaEx(dib, 0, 0, 2, 2, 1, 1, 1, status); },
    [](HGLOBAL dib, int32_t* status) { return DibColorMapEx(dib, 0, 0, 2, 2, table, status); },
    [](HGLOBAL dib, int32_t* status) { return DibModifyHueEx(dib, 0, 0, 2, 2, 0, 0, status); },
};

void expect_no_memory(const Maker& make, const Dib& dib) {
    ProgressRecorder recorder;
    recorder.watch();
    int32_t status = 77;
    kirvo::fail_allocation(1);
    const Dib result(make(dib, &status));
    kirvo::fail_allocation(0);
    EXPECT_EQ(HGLOBAL(result), nullptr);
    EXPECT_EQ(status, KIRVO_NO_MEMORY);
    EXPECT_TRUE(recorder.percents().empty());
    EXPECT_TRUE(is_unlocked(dib));
}

} // namespace

TEST(PointMemory, NoResult) {
    const Dib dib = make_dib({3, 3, 24});
    for (const Maker& make : makers)
        expect_no_memory(make, dib);
}

TEST(PointMemory, NoDuplicateOfAnIndexedImage) {
    const Dib dib = make_dib({3, 3, 8});
    expect_no_memory(makers[7], dib);
    expect_no_memory(makers[8], dib);
}

TEST(PointMemory, SeparateGivesAllImagesOrNone) {
    const Dib dib = make_dib({3, 3, 32});
    for (uint32_t n = 1; n <= 3; ++n) {
        HGLOBAL images[3] = {dib, dib, dib};
        kirvo::fail_allocation(n);
        EXPECT_EQ(Dib24Separate(dib, 0, 0, 3, 3, &images[0], &images[1], &images[2]),
                  KIRVO_NO_MEMORY);
        kirvo::fail_allocation(0);
        for (const HGLOBAL image : images)
            EXPECT_EQ(image, nullptr);
        EXPECT_TRUE(is_unlocked(dib));
    }
}

// Copies are made of rows after 40 bytes of header, which may lie beyond a block whose header
// says 20.
TEST(PointMemory, WhatCannotBeCopiedIsNoMemory) {
    DibSpec spec{3, 3, 24};
    spec.header_size = 20;
    const Dib dib = make_dib(spec);
    int32_t status = 77;
    EXPECT_EQ(DibModifyHueEx(dib, 0, 0, 1, 1, 0, 0, &status), nullptr);
    EXPECT_EQ(status, KIRVO_NO_MEMORY);
    EXPECT_TRUE(is_unlocked(dib));
}
