// Streams of every kind, whole and in pieces, against a plain decoder.
#include "jpeg/decode_lockstep.hpp"

#include <algorithm>

using namespace kirvo_test;

namespace {

class EverySampling : public testing::TestWithParam<Sampling> {};

JpegPlan plan_of(Sampling sampling, int width, int height) {
    JpegPlan plan;
    plan.sampling = sampling;
    plan.width = width;
    plan.height = height;
    return plan;
}

std::vector<ScanPlan> plain_scans(Sampling sampling) {
    if (sampling == Sampling::grey)
        return {{{1}, 0, 0}, {{1}, 1, 5}, {{1}, 6, 63}};
    return {{{1, 2, 3}, 0, 0}, {{1}, 1, 5}, {{3}, 1, 63}, {{2}, 1, 63}, {{1}, 6, 63}};
}

TEST_P(EverySampling, BaselineImagesOfManySizes) {
    Lockstep both;
    Random random(100);
    const int sides[][2] = {{1, 1},  {8, 8},   {9, 7},   {16, 16}, {17, 15}, {64, 1},
                            {1, 50}, {63, 33}, {64, 32}, {65, 31}, {130, 40}};
    for (const auto& [width, height] : sides) {
        SCOPED_TRACE(testing::Message() << width << " x " << height);
        EXPECT_EQ(both.run({build_jpeg(plan_of(GetParam(), width, height), random)}), 1);
    }
}

TEST_P(EverySampling, ProgressiveImagesOfManySizes) {
    Lockstep both;
    Random random(101);
    const int sides[][2] = {{1, 1}, {8, 16}, {9, 7}, {24, 24}, {33, 17}, {40, 56}, {130, 40}};
    for (const auto& [width, height] : sides) {
        SCOPED_TRACE(testing::Message() << width << " x " << height);
        JpegPlan plan = plan_of(GetParam(), width, height);
        plan.scans = plain_scans(GetParam());
        EXPECT_EQ(both.run({build_jpeg(plan, random)}), 1);
        plan.restart_every = 2;
        EXPECT_EQ(both.run({build_jpeg(plan, random)}), 1);
    }
}

TEST_P(EverySampling, RestartMarkersWithAndWithoutFillBytes) {
    Lockstep both;
    Random random(102);
    for (int every = 1; every <= 3; ++every) {
        JpegPlan plan = plan_of(GetParam(), 70, 40);
        plan.restart_every = every;
        EXPECT_EQ(both.run({build_jpeg(plan, random)}), 1);
        plan.fill_bytes = true;
        EXPECT_EQ(both.run({build_jpeg(plan, random)}), 1);
    }
}

// Coefficients that overflow 16 bits, and values far outside 0..255.
TEST_P(EverySampling, LargeCoefficientsWrap) {
    Lockstep both;
    Random random(103);
    JpegPlan plan = plan_of(GetParam(), 50, 50);
    plan.largest = 1023;
    plan.coefficients = 64;
    EXPECT_EQ(both.run({build_jpeg(plan, random)}), 1);
}

// In the frame header.
void state_size(Bytes& stream, int width, int height) {
    const uint8_t marker[] = {0xFF, 0xC0};
    const auto at = std::search(stream.begin(), stream.end(), std::begin(marker), std::end(marker));
    const int bytes[] = {height >> 8, height & 255, width >> 8, width & 255};
    std::copy(std::begin(bytes), std::end(bytes), at + 5);
}

// The last byte is read again and again, at any of its bits; predictors go on and wrap.
TEST_P(EverySampling, DataThatEndsLongBeforeThePicture) {
    Lockstep both;
    Random random(107);
    int pictures = 0;
    for (int i = 0; i < 40; ++i) {
        SCOPED_TRACE(testing::Message() << "stream " << i);
        Bytes stream = build_jpeg(plan_of(GetParam(), 20, 20), random);
        state_size(stream, 300, 70);
        stream.erase(stream.end() - random.between(2, 30), stream.end());
        pictures += both.run({stream}) == 1;
    }
    EXPECT_GT(pictures, 10);
}

TEST_P(EverySampling, EveryWayToCutASmallStreamInTwo) {
    Lockstep both;
    Random random(104);
    JpegPlan plan = plan_of(GetParam(), 20, 20);
    plan.comments = {"cut me"};
    plan.restart_every = 2;
    const Bytes stream = build_jpeg(plan, random);
    for (size_t at = 0; at <= stream.size(); ++at) {
        SCOPED_TRACE(testing::Message() << "cut at " << at);
        EXPECT_EQ(both.run(cut(stream, {at}), at % 2 != 0), 1);
    }
}

std::string sampling_name(const testing::TestParamInfo<Sampling>& info) {
    const char* names[] = {"grey", "s1x1", "s2x1", "s1x2", "s2x2", "s2x2_2x1", "s2x2_1x2"};
    return names[static_cast<int>(info.param)];
}

INSTANTIATE_TEST_SUITE_P(Decode, EverySampling, testing::ValuesIn(all_samplings), sampling_name);

// The byte that is read again and again may end bands of blocks.
TEST(DecodeStreams, DataThatEndsLongBeforeThePictureInEndsOfBands) {
    Lockstep both;
    Random random(108);
    int pictures = 0;
    for (int i = 0; i < 200; ++i) {
        SCOPED_TRACE(testing::Message() << "stream " << i);
        Bytes stream = build_jpeg(plan_of(Sampling::grey, 20, 20), random);
        state_size(stream, 300, 70);
        const Bytes scan = {0xFF, 0xDA, 0, 8};
        const auto start = std::search(stream.begin(), stream.end(), scan.begin(), scan.end());
        Bytes header(start, start + 10), books;
        stream.erase(start, stream.end());
        for (uint8_t number = 0; number < 8; ++number) {
            const bool is_dc = number < 4;
            const CodeBook book = random_book(
                is_dc ? Bytes{0, 1, 2} : Bytes{0x00, 0x10, 0x20, 0x01, 0x02, 0x11}, random);
            books.push_back(is_dc ? number : static_cast<uint8_t>(0x10 + number - 4));
            books.insert(books.end(), book.counts.begin(), book.counts.end());
            books.insert(books.end(), book.symbols.begin(), book.symbols.end());
        }
        add_segment(stream, 0xC4, books);
        stream.insert(stream.end(), header.begin(), header.end());
        for (int k = random.between(1, 4); k > 0; --k)
            stream.push_back(static_cast<uint8_t>(random.between(0, 254)));
        pictures += both.run({stream}) == 1;
    }
    EXPECT_GT(pictures, 10);
}

TEST(DecodeStreams, RandomStreamsDecodeAlike) {
    Lockstep both;
    Random random(105);
    for (int i = 0; i < 150; ++i) {
        SCOPED_TRACE(testing::Message() << "stream " << i);
        EXPECT_EQ(both.run({build_jpeg(random_plan(random, 100, i % 3 == 0), random)}), 1);
    }
}

TEST(DecodeStreams, RandomStreamsInRandomPieces) {
    Lockstep both;
    Random random(106);
    for (int i = 0; i < 150; ++i) {
        SCOPED_TRACE(testing::Message() << "stream " << i);
        const Bytes stream = build_jpeg(random_plan(random, 90, i % 3 == 0), random);
        std::vector<size_t> places;
        const int longest = random.once_in(3) ? 40 : 2000;
        for (size_t at = 0; at < stream.size();
             at += static_cast<size_t>(random.between(1, longest)))
            places.push_back(at);
        both.run(cut(stream, places), random.once_in(2));
    }
}

TEST(DecodeStreams, PiecesOfOneSize) {
    Lockstep both;
    Random random(107);
    JpegPlan plan = plan_of(Sampling::s2x2, 120, 90);
    plan.coefficients = 12;
    const Bytes stream = build_jpeg(plan, random);
    ASSERT_GT(stream.size(), 3000u);
    for (size_t size : {1u, 2u, 7u, 100u, 511u, 512u, 513u, 1024u}) {
        std::vector<size_t> places;
        for (size_t at = size; at < stream.size(); at += size)
            places.push_back(at);
        EXPECT_EQ(both.run(cut(stream, places)), 1) << size;
    }
}

// What stands behind the image lets JpgDecFirst finish.
TEST(DecodeStreams, FirstFinishesWithEnoughBytesBehindTheImage) {
    Lockstep both;
    Random random(108);
    JpegPlan plan = plan_of(Sampling::s2x2, 33, 33);
    plan.after.assign(512, 0x55);
    HGLOBAL image = nullptr;
    const Bytes stream = build_jpeg(plan, random);
    EXPECT_EQ(decode_first(stream, &image), 1);
    GlobalFree(image);
    EXPECT_EQ(both.run({stream}), 1);
}

// Tables need not be Huffman codes: over-full ones, all-ones codes, symbols no category has.
TEST(DecodeStreams, OddTables) {
    Lockstep both;
    Random random(109);
    int finished = 0, failed = 0;
    for (int i = 0; i < 600; ++i) {
        SCOPED_TRACE(testing::Message() << "stream " << i);
        JpegPlan plan = random_plan(random, 40, i % 4 == 0);
        Bytes stream = build_jpeg(plan, random);
        Bytes books;
        for (int b = 0; b < 4; ++b) {
            CodeBook book = random_book(b < 2 ? dc_categories(random.between(3, 16))
                                              : ac_symbols(random.once_in(2)),
                                        random);
            for (int edits = random.between(0, 2); edits > 0; --edits) {
                uint8_t& from = book.counts[static_cast<size_t>(random.between(0, 15))];
                uint8_t& to = book.counts[static_cast<size_t>(random.between(0, 15))];
                const int moved = random.between(0, from);
                from = static_cast<uint8_t>(from - moved);
                to = static_cast<uint8_t>(to + moved);
            }
            if (random.once_in(3))
                (random.once_in(2) ? book.symbols.front() : book.symbols.back()) = random.byte();
            books.push_back(static_cast<uint8_t>((b & 1) + (b & 2) * 8));
            books.insert(books.end(), book.counts.begin(), book.counts.end());
            books.insert(books.end(), book.symbols.begin(), book.symbols.end());
        }
        Bytes segment;
        add_segment(segment, 0xC4, books);
        // Just before the first scan header.
        for (size_t at = 2; at + 1 < stream.size(); ++at) {
            if (stream[at] == 0xFF && stream[at + 1] == 0xDA) {
                stream.insert(stream.begin() + static_cast<std::ptrdiff_t>(at), segment.begin(),
                              segment.end());
                break;
            }
        }
        // Data of any bits, without markers.
        for (int d = 0; d < 3000; ++d)
            stream.push_back(static_cast<uint8_t>(random.between(0, 254)));
        (both.run({stream}) == 1 ? finished : failed) += 1;
    }
    EXPECT_GT(finished, 50);
    EXPECT_GT(failed, 50);
}

// Spectral selection, shifts and refinement as a header may state them, in baseline streams too.
TEST(DecodeStreams, OddScanParameters) {
    Lockstep both;
    Random random(110);
    for (int i = 0; i < 400; ++i) {
        SCOPED_TRACE(testing::Message() << "stream " << i);
        const bool progressive = i % 2 == 0;
        Bytes stream = build_jpeg(random_plan(random, 60, progressive), random);
        for (size_t at = 2; at + 1 < stream.size(); ++at) {
            if (stream[at] != 0xFF || stream[at + 1] != 0xDA || !random.once_in(2))
                continue;
            const size_t parameters = at + 2 + stream[at + 3] - 3;
            stream[parameters] =
                static_cast<uint8_t>(random.once_in(2) ? random.between(0, 2) : random.byte());
            stream[parameters + 1] =
                static_cast<uint8_t>(random.once_in(2) ? random.between(0, 70) : random.byte());
            stream[parameters + 2] = random.byte();
        }
        both.run({stream});
    }
}

} // namespace
