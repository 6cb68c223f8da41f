// Memory that cannot be had, at every allocation of a decode.
#include "image/memory.hpp"
#include "support/dib_builder.hpp"
#include "support/jpeg_builder.hpp"
#include "support/temp_file.hpp"

#include <cstring>
#include <gtest/gtest.h>

using namespace kirvo_test;

namespace {

Bytes stream_of(bool progressive) {
    Random random(1);
    JpegPlan plan;
    plan.comments = {"one", "two"};
    if (progressive)
        plan.scans = {{{1, 2, 3}, 0, 0}, {{1}, 1, 63}};
    return build_jpeg(plan, random);
}

Dib block_of(const Bytes& bytes) {
    Dib block(GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, bytes.size()));
    std::memcpy(GlobalLock(block), bytes.data(), bytes.size());
    GlobalUnlock(block);
    return block;
}

class DecodeWithoutMemory : public testing::TestWithParam<bool> {
  protected:
    void TearDown() override {
        kirvo::fail_allocation(0);
        JpgDecGetCommentEnable(0);
    }
};

// Runs an operation with the first, second, ... allocation failing until it succeeds; returns how
// often it failed. Comments that find no memory are counted only, and fail nothing.
template<typename Operation>
int failures_until_success(Operation operation, int expected_error) {
    for (int n = 1;; ++n) {
        kirvo::fail_allocation(static_cast<uint32_t>(n));
        int32_t error = 0;
        const Dib image(operation(&error));
        kirvo::fail_allocation(0);
        if (image != nullptr) {
            EXPECT_EQ(error, 0);
            return n - 1;
        }
        EXPECT_EQ(error, expected_error);
    }
}

TEST_P(DecodeWithoutMemory, FromMemory) {
    const Bytes stream = stream_of(GetParam());
    const Dib data = block_of(stream);
    const auto decode = [&](int32_t* error) {
        return JpgDecMainHGLOBAL(data, static_cast<int32_t>(stream.size()), nullptr, nullptr,
                                 error);
    };
    // The input, the image, and the coefficients.
    EXPECT_EQ(failures_until_success(decode, -2), GetParam() ? 3 : 2);
    EXPECT_TRUE(is_unlocked(data));
    int32_t error = 1;
    EXPECT_NE(Dib(decode(&error)), nullptr); // not busy
}

TEST_P(DecodeWithoutMemory, FromAFile) {
    const TempFile file(".jpg", stream_of(GetParam()));
    const auto decode = [&](int32_t* error) {
        return JpgDecMainEx(file.name(), nullptr, nullptr, error);
    };
    EXPECT_EQ(failures_until_success(decode, -2), GetParam() ? 3 : 2);
}

TEST_P(DecodeWithoutMemory, CommentsAreCountedOnly) {
    const Bytes stream = stream_of(GetParam());
    const Dib data = block_of(stream);
    JpgDecGetCommentEnable(1);
    kirvo::fail_allocation(2); // the first comment, after the input
    int32_t error = 1;
    const Dib image(
        JpgDecMainHGLOBAL(data, static_cast<int32_t>(stream.size()), nullptr, nullptr, &error));
    EXPECT_EQ(error, 0);
    EXPECT_EQ(JpgDecCommentCounts(), 2);
    EXPECT_EQ(JpgDecGetComment(0), nullptr);
    EXPECT_NE(JpgDecGetComment(1), nullptr);
}

TEST_P(DecodeWithoutMemory, FurtherPieces) {
    const Bytes stream = stream_of(GetParam());
    const Dib data = block_of(stream);
    HGLOBAL image = nullptr;
    EXPECT_EQ(JpgDecFirst(data, 10, &image), 0);
    kirvo::fail_allocation(1);
    EXPECT_EQ(JpgDecNext(data, static_cast<int32_t>(stream.size()), 0, &image), -2);
    EXPECT_EQ(JpgDecFirst(data, 10, &image), 0); // not busy
    EXPECT_EQ(JpgDecNext(nullptr, 0, -1, &image), -16);
}

TEST_P(DecodeWithoutMemory, StreamInformation) {
    const TempFile file(".jpg", stream_of(GetParam()));
    JpgDecSpec spec;
    kirvo::fail_allocation(1);
    EXPECT_EQ(JpgDecGetSpecEx(file.name(), &spec), -2);
    EXPECT_EQ(JpgDecGetSpecEx(file.name(), &spec), 0);
}

INSTANTIATE_TEST_SUITE_P(Decode, DecodeWithoutMemory, testing::Bool());

} // namespace
