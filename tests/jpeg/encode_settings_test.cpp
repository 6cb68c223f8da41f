// Settings of the encoder: what is accepted, when it takes effect, and what stays.

#include "jpeg/encoding.hpp"

using namespace kirvo_test;

namespace {

class EncoderSettings : public Encoding {
  protected:
    static std::vector<uint8_t> stream_of(const Dib& dib) { return encode(dib, whole(dib)); }

    // The stream of the picture at a mode and a level.
    static std::vector<uint8_t> expected(const Dib& dib, int mode, int level) {
        ReferenceJob job = colour_job(dib, whole(dib));
        job.mode = mode;
        job.level = level;
        return reference_stream(job);
    }

    const Dib picture = [] {
        Random random(3);
        return make_random_dib({40, 33, 24}, random);
    }();
};

// Made when the program starts, before any setting is touched.
struct FreshProcess {
    Dib picture;
    std::vector<uint8_t> untouched, level_0;

    FreshProcess() {
        Random random(17);
        picture = make_random_dib({20, 18, 24}, random);
        untouched = stream();
        JpgCodSetQEx(0);
        level_0 = stream();
        JpgCodSetQEx(4);
    }
    std::vector<uint8_t> stream() const {
        uint32_t length = 0;
        HGLOBAL block = JpgCodMainHGLOBAL(picture, 0, 0, 20, 18, &length, nullptr);
        return take_stream(block, length);
    }
};
const FreshProcess fresh;

bool has_comment(const std::vector<uint8_t>& stream) { return stream[21] == 0xFE; }

} // namespace

TEST_F(EncoderSettings, defaults_are_level_4_mode_4_and_custom_tables_of_ones) {
    EXPECT_EQ(fresh.untouched, expected(fresh.picture, 4, 4));
    ReferenceJob job = colour_job(fresh.picture, whole(fresh.picture));
    job.level = 0;
    job.luminance.fill(1);
    job.chrominance.fill(1);
    EXPECT_EQ(fresh.level_0, reference_stream(job));
}

TEST_F(EncoderSettings, modes_are_1_2_and_4) {
    for (int32_t mode : {1, 2, 4}) {
        EXPECT_EQ(JpgCodSetSubsample(mode), 0);
        EXPECT_EQ(stream_of(picture), expected(picture, mode, 4));
    }
    EXPECT_EQ(JpgCodSetSubsample(2), 0);
    for (int32_t mode : {0, 3, 5, -1, 8, INT32_MIN, INT32_MAX})
        EXPECT_EQ(JpgCodSetSubsample(mode), KIRVO_BAD_PARAMETER);
    EXPECT_EQ(stream_of(picture), expected(picture, 2, 4));
}

TEST_F(EncoderSettings, q_0_to_3_select_levels_2_to_5) {
    for (int32_t q = 0; q <= 3; ++q) {
        EXPECT_EQ(JpgCodSetQ(q), 0);
        EXPECT_EQ(stream_of(picture), expected(picture, 4, q + 2));
    }
    EXPECT_EQ(JpgCodSetQ(1), 0);
    for (int32_t q : {-1, 4, -2, INT32_MIN, INT32_MAX})
        EXPECT_EQ(JpgCodSetQ(q), KIRVO_BAD_PARAMETER);
    EXPECT_EQ(stream_of(picture), expected(picture, 4, 3));
}

TEST_F(EncoderSettings, levels_are_0_to_5) {
    for (int32_t level = 1; level <= 5; ++level) {
        EXPECT_EQ(JpgCodSetQEx(level), 0);
        EXPECT_EQ(stream_of(picture), expected(picture, 4, level));
    }
    EXPECT_EQ(JpgCodSetQEx(1), 0);
    for (int32_t level : {-1, 6, INT32_MIN, INT32_MAX})
        EXPECT_EQ(JpgCodSetQEx(level), KIRVO_BAD_PARAMETER);
    EXPECT_EQ(stream_of(picture), expected(picture, 4, 1));
}

TEST_F(EncoderSettings, custom_tables_take_effect_at_level_0_only) {
    const Table luminance = filled(50), chrominance = filled(70);
    EXPECT_EQ(JpgCodSetQtable(luminance.data(), chrominance.data()), 0);
    EXPECT_EQ(stream_of(picture), expected(picture, 4, 4));
    EXPECT_EQ(JpgCodSetQEx(0), 0);
    ReferenceJob job = colour_job(picture, whole(picture));
    job.level = 0;
    job.luminance.fill(50);
    job.chrominance.fill(70);
    EXPECT_EQ(stream_of(picture), reference_stream(job));
}

TEST_F(EncoderSettings, quantisers_out_of_range_change_nothing) {
    const Table before = filled(9);
    ASSERT_EQ(JpgCodSetQtableEx(before.data(), before.data(), 5), 0);
    JpgCodSetQEx(0);
    const std::vector<uint8_t> unchanged = stream_of(picture);
    const Table good = filled(77);
    for (int16_t entry : {0, 256, -1, INT16_MIN, INT16_MAX}) {
        for (size_t at : {size_t{0}, size_t{30}, size_t{63}}) {
            Table bad = good;
            bad[at] = entry;
            EXPECT_EQ(JpgCodSetQtable(bad.data(), good.data()), KIRVO_BAD_PARAMETER);
            EXPECT_EQ(JpgCodSetQtable(good.data(), bad.data()), KIRVO_BAD_PARAMETER);
            EXPECT_EQ(JpgCodSetQtableEx(bad.data(), good.data(), 64), KIRVO_BAD_PARAMETER);
            EXPECT_EQ(JpgCodSetQtableEx(good.data(), bad.data(), 64), KIRVO_BAD_PARAMETER);
        }
    }
    EXPECT_EQ(JpgCodSetQtable(nullptr, good.data()), KIRVO_BAD_PARAMETER);
    EXPECT_EQ(JpgCodSetQtable(good.data(), nullptr), KIRVO_BAD_PARAMETER);
    EXPECT_EQ(stream_of(picture), unchanged);
}

TEST_F(EncoderSettings, quantisers_1_and_255_are_good) {
    const Table ones = filled(1), most = filled(255);
    EXPECT_EQ(JpgCodSetQtable(ones.data(), most.data()), 0);
    EXPECT_EQ(JpgCodSetQtable(most.data(), ones.data()), 0);
}

TEST_F(EncoderSettings, counts_out_of_range_mean_64) {
    const Table table = filled(6);
    JpgCodSetQEx(0);
    ReferenceJob job = colour_job(picture, whole(picture));
    job.level = 0;
    job.luminance.fill(6);
    job.chrominance.fill(6);
    for (int32_t count : {0, 65, -1, INT32_MIN, INT32_MAX}) {
        EXPECT_EQ(JpgCodSetQtableEx(table.data(), table.data(), 1), 0);
        EXPECT_EQ(JpgCodSetQtableEx(table.data(), table.data(), count), 0);
        EXPECT_EQ(stream_of(picture), reference_stream(job)) << count;
    }
    EXPECT_EQ(JpgCodSetQtableEx(table.data(), table.data(), 1), 0);
    job.count = 1;
    EXPECT_EQ(stream_of(picture), reference_stream(job));
    EXPECT_EQ(JpgCodSetQtable(table.data(), table.data()), 0); // 64 again
    job.count = 64;
    EXPECT_EQ(stream_of(picture), reference_stream(job));
}

TEST_F(EncoderSettings, the_count_of_custom_tables_does_not_touch_other_levels) {
    const Table table = filled(6);
    JpgCodSetQtableEx(table.data(), table.data(), 1);
    EXPECT_EQ(stream_of(picture), expected(picture, 4, 4));
    JpgCodSetQEx(5);
    EXPECT_EQ(stream_of(picture), expected(picture, 4, 5));
}

TEST_F(EncoderSettings, settings_changed_during_an_encode_are_for_the_next_one) {
    const std::vector<uint8_t> stream = stream_of(picture);
    int32_t status = 1;
    uint32_t length = 0;
    HGLOBAL block = JpgCodFirst(picture, 0, 0, 40, 33, 1, &status);
    ASSERT_NE(block, nullptr);
    JpgCodSetSubsample(1);
    JpgCodSetQEx(0);
    const Table coarse = filled(200);
    JpgCodSetQtableEx(coarse.data(), coarse.data(), 1);
    while (JpgCodNext(0, &length) == 0) {
    }
    EXPECT_EQ(take_stream(block, length), stream);
}

TEST_F(EncoderSettings, a_comment_goes_into_one_stream) {
    const uint8_t text[] = {'h', 'i', 0, 0xFF, 0xD9};
    const std::vector<uint8_t> plain = stream_of(picture);
    JpgCodSetComment(text, 5);
    std::vector<uint8_t> expected_stream = plain;
    const std::vector<uint8_t> segment = {0xFF, 0xFE, 0, 7, 'h', 'i', 0, 0xFF, 0xD9};
    expected_stream.insert(expected_stream.begin() + 20, segment.begin(), segment.end());
    EXPECT_EQ(stream_of(picture), expected_stream);
    EXPECT_EQ(stream_of(picture), plain);
}

TEST_F(EncoderSettings, a_comment_goes_into_a_grey_stream_too) {
    Random random(4);
    const Dib dib = make_random_dib({9, 9, 8}, random);
    JpgCodSetComment(reinterpret_cast<const uint8_t*>("x"), 1);
    ReferenceJob job = grey_job(dib, whole(dib), 0);
    job.comment_segment = {0xFF, 0xFE, 0, 3, 'x'};
    EXPECT_EQ(encode_grey(dib, whole(dib), 0), reference_stream(job));
    EXPECT_FALSE(has_comment(encode_grey(dib, whole(dib), 0)));
}

TEST_F(EncoderSettings, a_new_comment_replaces_and_length_0_discards) {
    JpgCodSetComment(reinterpret_cast<const uint8_t*>("old"), 3);
    JpgCodSetComment(reinterpret_cast<const uint8_t*>("n"), 1);
    const std::vector<uint8_t> stream = stream_of(picture);
    EXPECT_EQ(std::vector<uint8_t>(stream.begin() + 20, stream.begin() + 27),
              (std::vector<uint8_t>{0xFF, 0xFE, 0, 3, 'n', 0xFF, 0xDB}));
    JpgCodSetComment(reinterpret_cast<const uint8_t*>("old"), 3);
    JpgCodSetComment(reinterpret_cast<const uint8_t*>("old"), 0);
    EXPECT_FALSE(has_comment(stream_of(picture)));
}

TEST_F(EncoderSettings, the_comment_is_copied_when_it_is_set) {
    uint8_t text[] = {'a', 'b'};
    JpgCodSetComment(text, 2);
    text[0] = 'z';
    EXPECT_EQ(stream_of(picture)[24], 'a');
}

TEST_F(EncoderSettings, comment_lengths_above_65533_wrap_in_the_length_field) {
    for (uint32_t length : {65533u, 65534u, 65535u, 70000u}) {
        SCOPED_TRACE(length);
        std::vector<uint8_t> text(length, 'c');
        text.back() = 'e';
        const std::vector<uint8_t> plain = stream_of(picture);
        JpgCodSetComment(text.data(), length);
        const std::vector<uint8_t> stream = stream_of(picture);
        ASSERT_EQ(stream.size(), plain.size() + length + 4);
        EXPECT_EQ(stream[22], static_cast<uint8_t>((length + 2) >> 8));
        EXPECT_EQ(stream[23], static_cast<uint8_t>(length + 2));
        EXPECT_TRUE(std::equal(text.begin(), text.end(), stream.begin() + 24));
        EXPECT_TRUE(std::equal(plain.begin() + 20, plain.end(), stream.begin() + 24 + length));
    }
}

TEST_F(EncoderSettings, a_comment_without_memory_or_text_is_none) {
    JpgCodSetComment(reinterpret_cast<const uint8_t*>("old"), 3);
    JpgCodSetComment(nullptr, 3);
    EXPECT_FALSE(has_comment(stream_of(picture)));
    JpgCodSetComment(reinterpret_cast<const uint8_t*>("old"), 3);
    JpgCodSetComment(reinterpret_cast<const uint8_t*>("new"), 0xFFFFFFFF); // more than can be had
    EXPECT_FALSE(has_comment(stream_of(picture)));
}

TEST_F(EncoderSettings, a_refused_encode_leaves_the_comment_pending) {
    JpgCodSetComment(reinterpret_cast<const uint8_t*>("c"), 1);
    int32_t status = 0;
    EXPECT_EQ(JpgCodFirst(nullptr, 0, 0, 1, 1, -1, &status), nullptr);
    EXPECT_EQ(JpgCodFirst(picture, 0, 0, 41, 1, -1, &status), nullptr);
    EXPECT_EQ(JpgCodFirst_M(picture, 0, 0, 1, 1, 0, -1, &status), nullptr);
    EXPECT_TRUE(has_comment(stream_of(picture)));
}

TEST_F(EncoderSettings, an_aborted_encode_has_used_the_comment_up) {
    JpgCodSetComment(reinterpret_cast<const uint8_t*>("c"), 1);
    int32_t status = 1;
    ASSERT_NE(JpgCodFirst(picture, 0, 0, 1, 1, -1, &status), nullptr);
    EXPECT_EQ(JpgCodNext(-1, nullptr), KIRVO_ABANDONED);
    EXPECT_FALSE(has_comment(stream_of(picture)));
}

TEST_F(EncoderSettings, status_of_the_whole_image_calls) {
    uint32_t source = 0, output = 0;
    const size_t length = encode(picture, {1, 1, 10, 7}).size();
    EXPECT_EQ(JpgCodGetStatus(&source, &output), length);
    EXPECT_EQ(source, 10u * 7 * 3);
    EXPECT_EQ(output, length);
    EXPECT_EQ(JpgCodGetStatus(nullptr, nullptr), length);

    const Dib grey = make_dib({12, 5, 8});
    const size_t grey_length = encode_grey(grey, whole(grey), 0).size();
    EXPECT_EQ(JpgCodGetStatus(&source, &output), grey_length);
    EXPECT_EQ(source, 60u);
    const size_t colour_length = encode(grey, whole(grey)).size();
    EXPECT_EQ(JpgCodGetStatus(&source, &output), colour_length);
    EXPECT_EQ(source, 60u); // 8 bits: one byte a pixel
}

TEST_F(EncoderSettings, a_piecewise_encode_leaves_the_output_count_alone) {
    uint32_t source = 0, output = 0, length = 0;
    const uint32_t before = static_cast<uint32_t>(encode(picture, {0, 0, 5, 5}).size());
    int32_t status = 1;
    HGLOBAL block = JpgCodFirst(picture, 0, 0, 40, 33, -1, &status);
    JpgCodGetStatus(&source, &output);
    EXPECT_EQ(source, 40u * 33 * 3); // known at once
    while (JpgCodNext(0, &length) == 0) {
    }
    EXPECT_NE(length, before);
    EXPECT_EQ(JpgCodGetStatus(&source, &output), before);
    EXPECT_EQ(output, before);
    GlobalFree(block);
}
