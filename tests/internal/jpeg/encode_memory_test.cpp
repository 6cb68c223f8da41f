// An encode whose memory fails leaves nothing behind.

#include "image/memory.hpp"

#include "jpeg/encoding.hpp"
#include "support/temp_file.hpp"

using namespace kirvo_test;

namespace {

class EncodeMemory : public Encoding {
  protected:
    void TearDown() override {
        kirvo::fail_allocation(0);
        Encoding::TearDown();
    }
    void expect_idle() {
        EXPECT_TRUE(is_unlocked(picture));
        EXPECT_TRUE(is_unlocked(indexed));
        EXPECT_FALSE(encode(picture, whole(picture)).empty());
    }
    const Dib picture = make_dib({20, 20, 24});
    const Dib indexed = make_dib({20, 20, 8});
};

} // namespace

TEST_F(EncodeMemory, every_call_answers_no_memory_and_leaves_the_codec_idle) {
    // An encode allocates once.
    int32_t status = 0;
    const TempFile file(".jpg");
    kirvo::fail_allocation(1);
    EXPECT_EQ(JpgCodFirst(picture, 0, 0, 20, 20, -1, &status), nullptr);
    EXPECT_EQ(status, KIRVO_NO_MEMORY);
    expect_idle();
    kirvo::fail_allocation(1);
    EXPECT_EQ(JpgCodFirst_M(indexed, 0, 0, 20, 20, 1, -1, &status), nullptr);
    EXPECT_EQ(status, KIRVO_NO_MEMORY);
    expect_idle();
    kirvo::fail_allocation(1);
    EXPECT_EQ(JpgCodMainHGLOBAL(indexed, 0, 0, 20, 20, nullptr, &status), nullptr);
    EXPECT_EQ(status, KIRVO_NO_MEMORY);
    expect_idle();
    kirvo::fail_allocation(1);
    EXPECT_EQ(JpgCodMainHGLOBAL_M(indexed, 0, 0, 20, 20, 0, nullptr, &status), nullptr);
    EXPECT_EQ(status, KIRVO_NO_MEMORY);
    expect_idle();
    kirvo::fail_allocation(1);
    EXPECT_EQ(JpgCodMainEx(file.name(), picture, 0, 0, 20, 20, 0, 0), KIRVO_NO_MEMORY);
    expect_idle();
    kirvo::fail_allocation(1);
    EXPECT_EQ(JpgCodMainEx_M(file.name(), indexed, 0, 0, 20, 20, 0), KIRVO_NO_MEMORY);
    EXPECT_FALSE(file.exists());
    expect_idle();
    kirvo::fail_allocation(2); // there is no second one
    EXPECT_EQ(JpgCodMainEx(file.name(), picture, 0, 0, 20, 20, 0, 0), KIRVO_OK);
}

TEST_F(EncodeMemory, a_failed_start_keeps_the_comment_but_reports_its_source_bytes) {
    JpgCodSetComment(reinterpret_cast<const uint8_t*>("c"), 1);
    int32_t status = 0;
    kirvo::fail_allocation(1);
    EXPECT_EQ(JpgCodFirst(picture, 0, 0, 10, 10, -1, &status), nullptr);
    uint32_t source = 0;
    JpgCodGetStatus(&source, nullptr);
    EXPECT_EQ(source, 300u);
    EXPECT_EQ(encode(picture, whole(picture))[21], 0xFE);
}

TEST_F(EncodeMemory, a_comment_without_memory_is_none_and_the_old_one_is_gone) {
    JpgCodSetComment(reinterpret_cast<const uint8_t*>("old"), 3);
    kirvo::fail_allocation(1);
    JpgCodSetComment(reinterpret_cast<const uint8_t*>("new"), 3);
    EXPECT_NE(encode(picture, whole(picture))[21], 0xFE);
}
