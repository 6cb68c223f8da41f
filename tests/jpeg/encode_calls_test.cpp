// The encoder's entry points: refusals and their order, slices, abort, the busy flag, progress, the
// output block, files.

#include "jpeg/encoding.hpp"
#include "support/progress_recorder.hpp"
#include "support/temp_file.hpp"

using namespace kirvo_test;

namespace {

class Encoder : public Encoding {
  protected:
    static int32_t refusal(HGLOBAL dib, const Region& r) {
        int32_t status = 1;
        EXPECT_EQ(JpgCodFirst(dib, r.left, r.top, r.width, r.height, -1, &status), nullptr);
        uint32_t length = 77;
        int32_t whole_status = 1;
        EXPECT_EQ(JpgCodMainHGLOBAL(dib, r.left, r.top, r.width, r.height, &length, &whole_status),
                  nullptr);
        EXPECT_EQ(whole_status, status);
        EXPECT_EQ(length, 77u);
        const TempFile file(".jpg");
        EXPECT_EQ(JpgCodMainEx(file.name(), dib, r.left, r.top, r.width, r.height, 0, 0), status);
        EXPECT_FALSE(file.exists());
        return status;
    }
    static int32_t grey_refusal(HGLOBAL dib, const Region& r) {
        int32_t status = 1;
        EXPECT_EQ(JpgCodFirst_M(dib, r.left, r.top, r.width, r.height, 0, -1, &status), nullptr);
        uint32_t length = 77;
        int32_t whole_status = 1;
        EXPECT_EQ(
            JpgCodMainHGLOBAL_M(dib, r.left, r.top, r.width, r.height, 0, &length, &whole_status),
            nullptr);
        EXPECT_EQ(whole_status, status);
        const TempFile file(".jpg");
        EXPECT_EQ(JpgCodMainEx_M(file.name(), dib, r.left, r.top, r.width, r.height, 0), status);
        EXPECT_FALSE(file.exists());
        return status;
    }
    // A First call works: nothing is in progress.
    static void expect_idle() {
        const Dib dib = make_dib({1, 1, 24});
        int32_t status = 1;
        EXPECT_NE(JpgCodFirst(dib, 0, 0, 1, 1, -1, &status), nullptr);
        EXPECT_EQ(status, 0);
        EXPECT_EQ(JpgCodNext(-1, nullptr), KIRVO_ABANDONED);
        EXPECT_TRUE(is_unlocked(dib));
    }

    const Dib picture = [] {
        Random random(5);
        return make_random_dib({50, 40, 24}, random);
    }();
    const Dib indexed = [] {
        Random random(6);
        return make_random_dib({50, 40, 8}, random);
    }();
};

} // namespace

TEST_F(Encoder, null_and_freed_handles_are_refused) {
    EXPECT_EQ(refusal(nullptr, {0, 0, 1, 1}), KIRVO_NULL_HANDLE);
    EXPECT_EQ(grey_refusal(nullptr, {0, 0, 1, 1}), KIRVO_NULL_HANDLE);
    EXPECT_EQ(refusal(nullptr, {-1, 0, 0, 1}), KIRVO_NULL_HANDLE); // before the rectangle
    HGLOBAL freed = make_dib({1, 1, 24}).release();
    GlobalFree(freed);
    EXPECT_EQ(refusal(freed, {0, 0, 1, 1}), KIRVO_NULL_HANDLE);
    expect_idle();
}

TEST_F(Encoder, rectangles_without_extent_or_with_negative_corners_are_refused_before_the_depth) {
    const Dib wrong = make_dib({50, 40, 16});
    for (const Region& r : {Region{0, 0, 0, 1},
                            {0, 0, 1, 0},
                            {-1, 0, 1, 1},
                            {0, -1, 1, 1},
                            {0, 0, -5, 1},
                            {0, 0, 1, INT32_MIN}}) {
        EXPECT_EQ(refusal(picture, r), KIRVO_BAD_PARAMETER);
        EXPECT_EQ(refusal(wrong, r), KIRVO_BAD_PARAMETER);
        EXPECT_EQ(grey_refusal(indexed, r), KIRVO_BAD_PARAMETER);
        EXPECT_EQ(grey_refusal(wrong, r), KIRVO_BAD_PARAMETER);
    }
    EXPECT_TRUE(is_unlocked(picture));
    expect_idle();
}

TEST_F(Encoder, other_depths_are_refused_before_the_extent) {
    for (int bits : {1, 4, 16, 32}) {
        const Dib dib = make_dib({10, 10, bits});
        EXPECT_EQ(refusal(dib, {0, 0, 10, 10}), KIRVO_NEEDS_8_24) << bits;
        EXPECT_EQ(refusal(dib, {0, 0, 11, 10}), KIRVO_NEEDS_8_24) << bits;
        EXPECT_EQ(grey_refusal(dib, {0, 0, 10, 10}), KIRVO_NEEDS_8) << bits;
        EXPECT_TRUE(is_unlocked(dib));
    }
    EXPECT_EQ(grey_refusal(picture, {0, 0, 51, 1}), KIRVO_NEEDS_8);
    expect_idle();
}

TEST_F(Encoder, rectangles_outside_the_image_are_refused) {
    for (const Region& r : {Region{0, 0, 51, 1},
                            {0, 0, 1, 41},
                            {1, 0, 50, 1},
                            {0, 1, 1, 40},
                            {50, 0, 1, 1},
                            {INT32_MAX, 0, INT32_MAX, 1},
                            {0, INT32_MAX, 1, 1}}) {
        EXPECT_EQ(refusal(picture, r), KIRVO_BAD_PARAMETER);
        EXPECT_EQ(grey_refusal(indexed, r), KIRVO_BAD_PARAMETER);
    }
    EXPECT_FALSE(encode(picture, {49, 39, 1, 1}).empty()); // touches both edges
    EXPECT_TRUE(is_unlocked(picture));
    EXPECT_TRUE(is_unlocked(indexed));
    expect_idle();
}

TEST_F(Encoder, blocks_smaller_than_their_header_says_are_refused) {
    const Dib dib = make_dib({50, 40, 24, {}, 0, 40, -50});
    EXPECT_EQ(refusal(dib, {0, 0, 1, 1}), KIRVO_BAD_PARAMETER);
    EXPECT_EQ(refusal(dib, {0, 0, 1, -1}), KIRVO_BAD_PARAMETER);
    const Dib small = make_dib({50, 40, 8, {}, 0, 40, -50});
    EXPECT_EQ(refusal(small, {0, 0, 1, 1}), KIRVO_BAD_PARAMETER);
    EXPECT_EQ(grey_refusal(small, {0, 0, 1, 1}), KIRVO_BAD_PARAMETER);
    EXPECT_TRUE(is_unlocked(dib));
    expect_idle();
}

TEST_F(Encoder, the_padding_of_the_last_row_may_be_missing) {
    const Dib dib = make_dib({3, 4, 24, {}, 0, 40, -3});
    EXPECT_EQ(encode(dib, whole(dib)),
              reference_stream(colour_job(make_dib({3, 4, 24}), {0, 0, 3, 4})));
}

TEST_F(Encoder, out_pointers_may_be_null) {
    HGLOBAL block = JpgCodMainHGLOBAL(picture, 0, 0, 50, 40, nullptr, nullptr);
    EXPECT_NE(block, nullptr);
    GlobalFree(block);
    EXPECT_EQ(JpgCodFirst(nullptr, 0, 0, 1, 1, -1, nullptr), nullptr);
    block = JpgCodFirst_M(indexed, 0, 0, 50, 40, 0, -1, nullptr);
    EXPECT_EQ(JpgCodNext_M(0, nullptr), 0);
    EXPECT_EQ(JpgCodNext_M(0, nullptr), 1);
    GlobalFree(block);
}

TEST_F(Encoder, two_mcus_one_a_call_take_three_calls) {
    int32_t status = 1;
    uint32_t length = 99;
    HGLOBAL block = JpgCodFirst(picture, 0, 0, 32, 16, 1, &status);
    EXPECT_EQ(status, 0);
    EXPECT_FALSE(is_unlocked(picture));
    EXPECT_EQ(JpgCodNext(0, &length), 0);
    EXPECT_EQ(JpgCodNext(0, &length), 0);
    EXPECT_EQ(length, 99u);
    EXPECT_EQ(JpgCodNext(0, &length), 1);
    EXPECT_TRUE(is_unlocked(picture));
    EXPECT_TRUE(is_unlocked(block));
    EXPECT_EQ(take_stream(block, length), reference_stream(colour_job(picture, {0, 0, 32, 16})));
    expect_idle();
}

TEST_F(Encoder, all_mcus_in_the_first_call_leave_the_end_to_the_second) {
    int32_t status = 1;
    uint32_t length = 0;
    HGLOBAL block = JpgCodFirst(picture, 0, 0, 50, 40, -1, &status);
    EXPECT_EQ(JpgCodNext(0, &length), 0);
    EXPECT_EQ(JpgCodNext(0, &length), 1);
    EXPECT_EQ(take_stream(block, length), encode(picture, whole(picture)));
}

TEST_F(Encoder, more_mcus_a_call_than_there_are_end_in_the_first_call) {
    int32_t status = 1;
    uint32_t length = 0;
    HGLOBAL block = JpgCodFirst(picture, 0, 0, 50, 40, INT32_MAX, &status);
    EXPECT_EQ(JpgCodNext(0, &length), 1);
    EXPECT_EQ(take_stream(block, length), encode(picture, whole(picture)));
}

TEST_F(Encoder, slices_of_any_size_give_the_same_stream) {
    for (int32_t mode : {1, 2, 4}) {
        JpgCodSetSubsample(mode);
        const std::vector<uint8_t> colour = encode(picture, whole(picture));
        const std::vector<uint8_t> grey = encode_grey(indexed, whole(indexed), 1);
        for (int32_t mcus : {1, 2, 3, 5, 7, 11, 1000}) {
            int32_t status = 1, result, calls = 0;
            uint32_t length = 0;
            HGLOBAL block = JpgCodFirst(picture, 0, 0, 50, 40, mcus, &status);
            do
                ++calls;
            while ((result = JpgCodNext(0, &length)) == 0);
            EXPECT_EQ(result, 1);
            const int32_t across = mode == 1 ? 7 : 4, down = mode == 4 ? 3 : 5;
            EXPECT_EQ(calls, across * down / mcus + 1);
            EXPECT_EQ(take_stream(block, length), colour);

            block = JpgCodFirst_M(indexed, 0, 0, 50, 40, 1, mcus, &status);
            while ((result = JpgCodNext_M(0, &length)) == 0) {
            }
            EXPECT_EQ(result, 1);
            EXPECT_EQ(take_stream(block, length), grey);
        }
    }
}

TEST_F(Encoder, zero_and_negative_mcus_a_call_get_nowhere) {
    for (int32_t mcus : {0, -2, INT32_MIN}) {
        int32_t status = 1;
        uint32_t length = 5;
        ASSERT_NE(JpgCodFirst(picture, 0, 0, 1, 1, mcus, &status), nullptr);
        for (int i = 0; i < 5; ++i)
            EXPECT_EQ(JpgCodNext(0, &length), 0);
        EXPECT_EQ(length, 5u);
        EXPECT_EQ(JpgCodNext(-1, &length), KIRVO_ABANDONED);
    }
    expect_idle();
}

TEST_F(Encoder, any_control_but_minus_1_goes_on) {
    for (int32_t control : {0, 1, 2, -2, INT32_MIN, INT32_MAX}) {
        int32_t status = 1;
        uint32_t length = 0;
        HGLOBAL block = JpgCodFirst(picture, 0, 0, 8, 8, 5, &status);
        EXPECT_EQ(JpgCodNext(control, &length), 1) << control;
        GlobalFree(block);
    }
}

TEST_F(Encoder, the_image_is_read_as_the_encode_gets_to_it) {
    Dib dib = make_dib({32, 16, 24});
    int32_t status = 1;
    uint32_t length = 0;
    HGLOBAL block = JpgCodFirst(dib, 0, 0, 32, 16, 1, &status);
    EXPECT_EQ(JpgCodNext(0, &length), 0);
    for (int32_t x = 0; x < 32; ++x) // the first MCU is done: only the second one changes
        for (int32_t y = 0; y < 16; ++y)
            dib.set_pixel(x, y, 0xFFFFFF);
    while (JpgCodNext(0, &length) == 0) {
    }
    const ReferenceJob job{32, 16, [](int x, int) {
                               const int value = x < 16 ? 0 : 255;
                               return ReferencePixel{value, value, value};
                           }};
    EXPECT_EQ(take_stream(block, length), reference_stream(job));
}

TEST_F(Encoder, the_colour_table_is_read_at_the_start) {
    Dib dib = make_dib({8, 8, 8});
    for (const bool grey : {false, true}) {
        dib.set_colour(0, 100, 150, 200);
        const std::vector<uint8_t> stream =
            grey ? encode_grey(dib, whole(dib), 1) : encode(dib, whole(dib));
        int32_t status = 1;
        uint32_t length = 0;
        HGLOBAL block = grey ? JpgCodFirst_M(dib, 0, 0, 8, 8, 1, 10, &status)
                             : JpgCodFirst(dib, 0, 0, 8, 8, 10, &status);
        dib.set_colour(0, 1, 2, 3);
        EXPECT_EQ(grey ? JpgCodNext_M(0, &length) : JpgCodNext(0, &length), 1);
        EXPECT_EQ(take_stream(block, length), stream);
    }
}

TEST_F(Encoder, abort_frees_everything) {
    for (int calls = 0; calls < 3; ++calls) {
        int32_t status = 1;
        HGLOBAL block = JpgCodFirst(picture, 0, 0, 50, 40, 2, &status);
        ASSERT_NE(block, nullptr);
        for (int i = 0; i < calls; ++i)
            EXPECT_EQ(JpgCodNext(0, nullptr), 0);
        uint32_t length = 3;
        EXPECT_EQ(JpgCodNext(-1, &length), KIRVO_ABANDONED);
        EXPECT_EQ(length, 3u);
        EXPECT_EQ(GlobalLock(block), nullptr);
        EXPECT_TRUE(is_unlocked(picture));
        expect_idle();
    }
    int32_t status = 1;
    HGLOBAL block = JpgCodFirst_M(indexed, 0, 0, 50, 40, 0, 2, &status);
    EXPECT_EQ(JpgCodNext_M(-1, nullptr), KIRVO_ABANDONED);
    EXPECT_EQ(GlobalLock(block), nullptr);
    EXPECT_TRUE(is_unlocked(indexed));
    expect_idle();
}

TEST_F(Encoder, next_without_an_encode_of_its_family_is_refused) {
    uint32_t length = 3;
    EXPECT_EQ(JpgCodNext(0, &length), KIRVO_BAD_PARAMETER);
    EXPECT_EQ(JpgCodNext_M(0, &length), KIRVO_BAD_PARAMETER);
    EXPECT_EQ(JpgCodNext(-1, &length), KIRVO_ABANDONED);
    EXPECT_EQ(JpgCodNext_M(-1, &length), KIRVO_ABANDONED);
    int32_t status = 1;
    HGLOBAL block = JpgCodFirst(picture, 0, 0, 50, 40, -1, &status);
    EXPECT_EQ(JpgCodNext_M(0, &length), KIRVO_BAD_PARAMETER);
    EXPECT_EQ(JpgCodNext(0, &length), 0);
    EXPECT_EQ(length, 3u);
    EXPECT_EQ(JpgCodNext(0, &length), 1);
    EXPECT_EQ(JpgCodNext(0, &length), KIRVO_BAD_PARAMETER); // it is over
    EXPECT_EQ(take_stream(block, length), encode(picture, whole(picture)));
}

TEST_F(Encoder, a_second_encode_is_refused_and_leaves_the_first_alone) {
    const std::vector<uint8_t> stream = encode(picture, whole(picture));
    int32_t status = 1;
    uint32_t length = 0;
    HGLOBAL block = JpgCodFirst(picture, 0, 0, 50, 40, 3, &status);
    EXPECT_EQ(JpgCodNext(0, &length), 0);
    JpgCodSetComment(reinterpret_cast<const uint8_t*>("c"), 1);
    EXPECT_EQ(refusal(picture, {0, 0, 50, 40}), KIRVO_BUSY);
    EXPECT_EQ(refusal(nullptr, {0, 0, 0, 0}), KIRVO_BUSY); // before everything else
    EXPECT_EQ(grey_refusal(indexed, {0, 0, 50, 40}), KIRVO_BUSY);
    while (JpgCodNext(0, &length) == 0) {
    }
    EXPECT_EQ(take_stream(block, length), stream);
    EXPECT_EQ(encode(picture, whole(picture)).size(), stream.size() + 5); // the comment waited
}

TEST_F(Encoder, the_block_is_as_large_as_estimated_and_zero_after_the_stream) {
    struct Case {
        int32_t level;
        uint32_t factor, divisor;
    };
    for (const Case& c :
         {Case{0, 1, 1}, {1, 1, 1}, {2, 4, 7}, {3, 4, 15}, {4, 4, 25}, {5, 4, 40}}) {
        JpgCodSetQEx(c.level);
        const Dib dib = make_dib({601, 409, 24});
        const Dib grey = make_dib({601, 409, 8});
        const uint32_t pixels = 601 * 409;
        const auto size = [&](uint32_t samples) {
            return std::max<uint32_t>(samples * c.factor / c.divisor, 32768) + 1024;
        };
        uint32_t length = 0;
        int32_t status = 1;
        HGLOBAL block = JpgCodMainHGLOBAL(dib, 0, 0, 601, 409, &length, &status);
        EXPECT_GE(GlobalSize(block), size(3 * pixels));
        EXPECT_LE(GlobalSize(block), size(3 * pixels) + 64);
        const std::vector<uint8_t> all = first_bytes(block, GlobalSize(block));
        EXPECT_EQ(std::count(all.begin() + length, all.end(), 0),
                  static_cast<ptrdiff_t>(all.size() - length));
        GlobalFree(block);
        block = JpgCodMainHGLOBAL(grey, 0, 0, 601, 409, &length, &status);
        EXPECT_GE(GlobalSize(block), size(3 * pixels)); // three components all the same
        GlobalFree(block);
        block = JpgCodMainHGLOBAL_M(grey, 0, 0, 601, 409, 0, &length, &status);
        EXPECT_GE(GlobalSize(block), size(pixels));
        EXPECT_LE(GlobalSize(block), size(pixels) + 64);
        GlobalFree(block);
    }
}

TEST_F(Encoder, the_block_of_one_pixel_has_the_least_size_and_room_for_the_comment) {
    const Dib dib = make_dib({1, 1, 24});
    const std::vector<uint8_t> text(5000, 'x');
    JpgCodSetComment(text.data(), 5000);
    uint32_t length = 0;
    HGLOBAL block = JpgCodMainHGLOBAL(dib, 0, 0, 1, 1, &length, nullptr);
    EXPECT_GE(GlobalSize(block), 32768u + 1024 + 5004);
    EXPECT_LE(GlobalSize(block), 32768u + 1024 + 5004 + 64);
    EXPECT_LT(length, 5004u + 700);
    GlobalFree(block);
}

TEST_F(Encoder, a_stream_that_outgrows_its_block_ends_with_no_memory) {
    // Noise at quantisers of 1 takes more than the 3 bytes a pixel that the block has.
    Random random(11);
    const Dib dib = make_random_dib({250, 250, 24}, random);
    JpgCodSetQEx(0);
    JpgCodSetSubsample(1);
    const TempFile file(".jpg");
    EXPECT_EQ(JpgCodMainEx(file.name(), dib, 0, 0, 250, 250, 0, 0), KIRVO_NO_MEMORY);
    EXPECT_FALSE(file.exists());
    int32_t status = 1, result;
    EXPECT_EQ(JpgCodMainHGLOBAL(dib, 0, 0, 250, 250, nullptr, &status), nullptr);
    EXPECT_EQ(status, KIRVO_NO_MEMORY);
    EXPECT_TRUE(is_unlocked(dib));

    ProgressRecorder recorder;
    recorder.watch();
    HGLOBAL block = JpgCodFirst(dib, 0, 0, 250, 250, 10, &status);
    while ((result = JpgCodNext(0, nullptr)) == 0) {
    }
    EXPECT_EQ(result, KIRVO_NO_MEMORY);
    EXPECT_EQ(GlobalLock(block), nullptr);
    EXPECT_TRUE(is_unlocked(dib));
    encode(picture, {0, 0, 16, 16}); // the failure has left the notification on
    EXPECT_EQ(recorder.percents().back(), 100);
    expect_idle();
}

TEST_F(Encoder, a_stream_fits_or_ends_with_no_memory) {
    // Fewer coefficients make the stream shorter, until it fits.
    JpgCodSetQEx(0);
    JpgCodSetSubsample(1);
    const Table ones = filled(1);
    const size_t room = 32768 + 1024;
    size_t longest = 0;
    bool outgrown = false;
    Random random(12);
    const Dib noise = make_random_dib({106, 103, 24}, random);
    for (int32_t count = 64; count >= 1; --count) {
        JpgCodSetQtableEx(ones.data(), ones.data(), count);
        ReferenceJob job = colour_job(noise, whole(noise));
        job.mode = 1;
        job.level = 0;
        job.luminance.fill(1);
        job.chrominance.fill(1);
        job.count = count;
        const std::vector<uint8_t> expected = reference_stream(job);
        int32_t status = 1;
        uint32_t length = 0;
        HGLOBAL block = JpgCodMainHGLOBAL(noise, 0, 0, 106, 103, &length, &status);
        if (expected.size() > room) {
            EXPECT_EQ(status, KIRVO_NO_MEMORY);
            EXPECT_EQ(block, nullptr);
            outgrown = true;
            continue;
        }
        EXPECT_EQ(status, 0);
        EXPECT_EQ(take_stream(block, length), expected);
        longest = std::max(longest, expected.size());
        if (room - longest > 1500)
            break;
    }
    EXPECT_TRUE(outgrown);
    EXPECT_GT(longest, room - 1500);
}

TEST_F(Encoder, progress_counts_mcus) {
    ProgressRecorder recorder;
    const auto expected = [](int mcus) {
        std::vector<int> percents = {0};
        for (int done = 1; done <= mcus; ++done) {
            if (done * 100 / mcus - percents.back() >= 5)
                percents.push_back(done * 100 / mcus);
        }
        percents.push_back(100);
        return percents;
    };
    for (int32_t width : {1, 16, 17, 40, 50}) {
        recorder.watch(3);
        encode(picture, {0, 0, width, 40});
        EXPECT_EQ(recorder.percents(), expected((width + 15) / 16 * 3)) << width;
        EXPECT_EQ(recorder.messages()[0].command, 3u);
        recorder.watch(4);
        encode_grey(indexed, {0, 0, width, 40}, 0);
        EXPECT_EQ(recorder.percents(), expected((width + 7) / 8 * 5)) << width;
    }
    const Dib large = make_dib({700, 200, 8});
    recorder.watch(4);
    encode_grey(large, whole(large), 0);
    EXPECT_EQ(recorder.percents(), expected(88 * 25));
}

TEST_F(Encoder, progress_is_for_one_encode) {
    ProgressRecorder recorder;
    recorder.watch();
    encode(picture, whole(picture));
    const size_t messages = recorder.messages().size();
    encode(picture, whole(picture));
    EXPECT_EQ(recorder.messages().size(), messages);
}

TEST_F(Encoder, progress_of_slices_goes_on_from_call_to_call) {
    ProgressRecorder recorder;
    recorder.watch();
    int32_t status = 1;
    uint32_t length = 0;
    HGLOBAL block = JpgCodFirst(picture, 0, 0, 50, 40, 5, &status); // 12 MCUs
    EXPECT_EQ(recorder.percents(), (std::vector<int>{0}));
    EXPECT_EQ(JpgCodNext(0, &length), 0);
    EXPECT_EQ(recorder.percents(), (std::vector<int>{0, 8, 16, 25, 33, 41}));
    EXPECT_EQ(JpgCodNext(0, &length), 0);
    EXPECT_EQ(JpgCodNext(0, &length), 1);
    EXPECT_EQ(recorder.percents(),
              (std::vector<int>{0, 8, 16, 25, 33, 41, 50, 58, 66, 75, 83, 91, 100, 100}));
    GlobalFree(block);
}

TEST_F(Encoder, each_message_is_sent_right_after_its_mcu) {
    // A handler that paints the image white at 50 percent: the MCUs after the sixth show it.
    Dib dib = make_dib({48, 64, 24});
    ProgressRecorder recorder;
    recorder.on_message = [&](const ProgressMessage& message) {
        if (message.percent == 50) {
            for (int32_t y = 0; y < 64; ++y)
                for (int32_t x = 0; x < 48; ++x)
                    dib.set_pixel(x, y, 0xFFFFFF);
        }
    };
    recorder.watch();
    const std::vector<uint8_t> stream = encode(dib, whole(dib));
    const ReferenceJob job{48, 64, [](int, int y) {
                               const int value = y < 32 ? 0 : 255;
                               return ReferencePixel{value, value, value};
                           }};
    EXPECT_EQ(stream, reference_stream(job));
}

TEST_F(Encoder, a_handler_may_silence_the_rest) {
    ProgressRecorder recorder;
    recorder.on_message = [&](const ProgressMessage& message) {
        if (message.percent >= 25)
            KirvoSetProcess(recorder.window(), 1, 0);
    };
    recorder.watch();
    EXPECT_EQ(encode(picture, whole(picture)),
              reference_stream(colour_job(picture, whole(picture))));
    EXPECT_EQ(recorder.percents(), (std::vector<int>{0, 8, 16, 25}));
}

TEST_F(Encoder, a_handler_that_aborts_ends_the_encode) {
    ProgressRecorder recorder;
    int abort_at = 0;
    recorder.on_message = [&](const ProgressMessage& message) {
        if (message.percent >= abort_at && message.percent < 100) {
            EXPECT_EQ(JpgCodNext(-1, nullptr), KIRVO_ABANDONED);
        }
    };
    for (abort_at = 0; abort_at < 100; abort_at += 25) {
        recorder.watch();
        uint32_t length = 0;
        int32_t status = 1;
        EXPECT_EQ(JpgCodMainHGLOBAL(picture, 0, 0, 50, 40, &length, &status), nullptr);
        EXPECT_EQ(status, KIRVO_ABANDONED);
        EXPECT_TRUE(is_unlocked(picture));
        expect_idle();
    }
}

TEST_F(Encoder, a_handler_that_encodes_is_refused_until_the_end) {
    ProgressRecorder recorder;
    std::vector<int32_t> statuses;
    recorder.on_message = [&](const ProgressMessage&) {
        int32_t status = 1;
        EXPECT_EQ(JpgCodFirst(picture, 0, 0, 1, 1, -1, &status), nullptr);
        statuses.push_back(status);
    };
    recorder.watch();
    EXPECT_EQ(encode(picture, whole(picture)),
              reference_stream(colour_job(picture, whole(picture))));
    EXPECT_EQ(statuses, std::vector<int32_t>(recorder.messages().size(), KIRVO_BUSY));
}

TEST_F(Encoder, abort_switches_progress_off_without_a_message) {
    ProgressRecorder recorder;
    recorder.watch();
    int32_t status = 1;
    ASSERT_NE(JpgCodFirst(picture, 0, 0, 50, 40, 1, &status), nullptr);
    EXPECT_EQ(JpgCodNext(-1, nullptr), KIRVO_ABANDONED);
    encode(picture, whole(picture));
    EXPECT_EQ(recorder.percents(), (std::vector<int>{0}));
}

TEST_F(Encoder, refusals_send_no_message_and_leave_progress_on) {
    ProgressRecorder recorder;
    recorder.watch();
    refusal(picture, {0, 0, 51, 40});
    EXPECT_TRUE(recorder.messages().empty());
    encode(picture, {0, 0, 16, 16});
    EXPECT_EQ(recorder.percents(), (std::vector<int>{0, 100, 100}));
}

TEST_F(Encoder, files_hold_the_stream) {
    const TempFile file(".jpg", std::vector<uint8_t>(100000, 1)); // longer than what replaces it
    const std::vector<uint8_t> stream = encode(picture, {3, 4, 30, 20});
    EXPECT_EQ(JpgCodMainEx(file.name(), picture, 3, 4, 30, 20, -5, INT32_MAX), 0);
    EXPECT_EQ(file.read(), stream);
    EXPECT_EQ(JpgCodGetStatus(nullptr, nullptr), stream.size());
    for (int32_t grey_mode : {0, 1}) {
        EXPECT_EQ(JpgCodMainEx_M(file.name(), indexed, 3, 4, 30, 20, grey_mode), 0);
        EXPECT_EQ(file.read(), encode_grey(indexed, {3, 4, 30, 20}, grey_mode));
    }
}

TEST_F(Encoder, empty_paths_are_refused_before_everything_else) {
    EXPECT_EQ(JpgCodMainEx("", nullptr, 0, 0, 0, 0, 0, 0), KIRVO_BAD_PARAMETER);
    EXPECT_EQ(JpgCodMainEx(nullptr, picture, 0, 0, 1, 1, 0, 0), KIRVO_BAD_PARAMETER);
    EXPECT_EQ(JpgCodMainEx_M("", nullptr, 0, 0, 0, 0, 0), KIRVO_BAD_PARAMETER);
    int32_t status = 1;
    ASSERT_NE(JpgCodFirst(picture, 0, 0, 1, 1, -1, &status), nullptr);
    EXPECT_EQ(JpgCodMainEx("", nullptr, 0, 0, 0, 0, 0, 0), KIRVO_BAD_PARAMETER); // not -17
}

TEST_F(Encoder, files_that_cannot_be_made) {
    const std::string name = temp_folder() + "/no such folder/a.jpg";
    EXPECT_EQ(JpgCodMainEx(name.c_str(), picture, 0, 0, 50, 40, 0, 0), KIRVO_CANNOT_OPEN);
    EXPECT_EQ(JpgCodMainEx_M(name.c_str(), indexed, 0, 0, 50, 40, 0), KIRVO_CANNOT_OPEN);
    EXPECT_TRUE(is_unlocked(picture));
    expect_idle();
}
