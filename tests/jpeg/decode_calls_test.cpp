// The calls: order, busy flag, abandonment, results, progress.
#include "jpeg/decode_lockstep.hpp"
#include "support/temp_file.hpp"

#include <functional>

using namespace kirvo_test;

namespace {

Bytes sample(int width = 40, int height = 30, Sampling sampling = Sampling::s2x2) {
    Random random(400);
    JpegPlan plan;
    plan.width = width;
    plan.height = height;
    plan.sampling = sampling;
    plan.coefficients = 10;
    return build_jpeg(plan, random);
}

TEST(DecodeCalls, FirstAndNextAndMainAgree) {
    const Bytes stream = sample();
    HGLOBAL pieces = nullptr;
    EXPECT_EQ(decode_first(stream, &pieces), 0);
    EXPECT_EQ(pieces, nullptr);
    EXPECT_EQ(decode_next({}, 1, &pieces), 1);
    const Dib by_pieces(pieces);
    ASSERT_NE(by_pieces, nullptr);

    uint32_t width = 0, height = 0;
    int32_t error = 1;
    const Dib data = block_of(stream);
    const Dib at_once(
        JpgDecMainHGLOBAL(data, static_cast<int32_t>(stream.size()), &width, &height, &error));
    EXPECT_EQ(error, 0);
    EXPECT_EQ(width, 40u);
    EXPECT_EQ(height, 30u);
    EXPECT_TRUE(at_once.bytes() == by_pieces.bytes());
    EXPECT_TRUE(is_unlocked(data));

    const TempFile file(".jpg", stream);
    width = height = 0;
    error = 1;
    const Dib from_file(JpgDecMainEx(file.name(), &width, &height, &error));
    EXPECT_EQ(error, 0);
    EXPECT_EQ(width, 40u);
    EXPECT_EQ(height, 30u);
    EXPECT_TRUE(from_file.bytes() == by_pieces.bytes());
}

TEST(DecodeCalls, OutPointersMayBeNull) {
    const Bytes stream = sample();
    const Dib data = block_of(stream);
    Dib image(
        JpgDecMainHGLOBAL(data, static_cast<int32_t>(stream.size()), nullptr, nullptr, nullptr));
    EXPECT_NE(image, nullptr);
    EXPECT_EQ(JpgDecMainEx("no such file.jpg", nullptr, nullptr, nullptr), nullptr);
    EXPECT_EQ(decode_first(stream, nullptr), 0);
    EXPECT_EQ(decode_next({}, -1, nullptr), -16);
}

TEST(DecodeCalls, NothingIsDecodedBelowTheReserve) {
    ProgressRecorder recorder;
    recorder.watch();
    const Bytes stream = sample(64, 64, Sampling::s1x1);
    size_t data = 2;
    while (stream[data + 1] != 0xDA)
        data += 2 + stream[data + 2] * 256u + stream[data + 3];
    data += 2 + stream[data + 3];
    ASSERT_GT(stream.size(), data + 700);
    HGLOBAL image = nullptr;
    // 511 bytes behind the first byte of data: it has begun, but no MCU has been read.
    EXPECT_EQ(decode_first(Bytes(stream.begin(),
                                 stream.begin() + static_cast<std::ptrdiff_t>(data + 1 + 511)),
                           &image),
              0);
    EXPECT_EQ(recorder.percents(), std::vector{0});
    EXPECT_EQ(
        decode_next(Bytes(stream.begin() + static_cast<std::ptrdiff_t>(data + 512), stream.end()),
                    1, &image),
        1);
    EXPECT_EQ(recorder.percents().back(), 100);
    GlobalFree(image);
}

TEST(DecodeCalls, OneDecodeAtATime) {
    const Bytes stream = sample();
    HGLOBAL image = nullptr, other = reinterpret_cast<HGLOBAL>(8);
    EXPECT_EQ(decode_first(stream, &image), 0);
    EXPECT_EQ(decode_first(stream, &other), -17);
    EXPECT_EQ(other, reinterpret_cast<HGLOBAL>(8));
    uint32_t width = 7;
    int32_t error = 0;
    const Dib data = block_of(stream);
    EXPECT_EQ(JpgDecMainHGLOBAL(data, static_cast<int32_t>(stream.size()), &width, &width, &error),
              nullptr);
    EXPECT_EQ(error, -17);
    const TempFile file(".jpg", stream);
    EXPECT_EQ(JpgDecMainEx(file.name(), &width, &width, &error), nullptr);
    EXPECT_EQ(error, -17);
    EXPECT_EQ(width, 7u);
    EXPECT_EQ(JpgDecFirst(nullptr, -1, &other), -17); // before any other fault
    EXPECT_EQ(decode_next({}, 1, &image), 1);         // the first one is whole
    const Dib result(image);
    EXPECT_EQ(result.width(), 40);
}

TEST(DecodeCalls, NoEncodeBesideADecode) {
    const Bytes stream = sample();
    HGLOBAL image = nullptr;
    Random random(1);
    const Dib picture = make_random_dib({8, 8, 24}, random);
    int32_t error = 0;
    uint32_t size = 0;
    EXPECT_EQ(decode_first(stream, &image), 0);
    EXPECT_EQ(JpgCodMainHGLOBAL(picture, 0, 0, 8, 8, &size, &error), nullptr);
    EXPECT_EQ(error, -17);
    EXPECT_EQ(decode_next({}, -1, &image), -16);
    const Dib encoded(JpgCodMainHGLOBAL(picture, 0, 0, 8, 8, &size, &error));
    EXPECT_EQ(error, 0);
}

TEST(DecodeCalls, Abandonment) {
    const Bytes stream = sample(64, 64, Sampling::s1x1);
    HGLOBAL image = reinterpret_cast<HGLOBAL>(8);
    for (size_t size : {0u, 1u, 100u, 700u, 1000u}) {
        EXPECT_EQ(
            decode_first(Bytes(stream.begin(), stream.begin() + static_cast<std::ptrdiff_t>(size)),
                         &image),
            0);
        EXPECT_EQ(decode_next({}, -1, &image), -16);
        EXPECT_EQ(image, nullptr);
    }
    EXPECT_EQ(decode_next({}, -1, &image), -16); // nothing is under way
    EXPECT_EQ(decode_first(stream, &image), 0);
    EXPECT_EQ(decode_next({}, 1, &image), 1);
    GlobalFree(image);
}

TEST(DecodeCalls, NextWithoutDataEndsTheDecode) {
    const Bytes stream = sample();
    HGLOBAL image = nullptr;
    for (int final_flag : {0, 2, -2}) {
        EXPECT_EQ(decode_first(stream, &image), 0);
        EXPECT_EQ(decode_next({}, final_flag, &image), -3);
        EXPECT_EQ(decode_next({}, 1, &image), -3);
    }
    const Dib data = block_of(stream);
    EXPECT_EQ(decode_first(stream, &image), 0);
    EXPECT_EQ(JpgDecNext(data, 0, 0, &image), -3); // data without a size
    EXPECT_EQ(decode_first(stream, &image), 0);
    EXPECT_EQ(decode_next({}, 1, &image), 1);
    GlobalFree(image);
}

TEST(DecodeCalls, NextAfterTheEndGivesTheSameImage) {
    HGLOBAL image = nullptr, again = nullptr;
    EXPECT_EQ(decode_first(sample(), &image), 0);
    EXPECT_EQ(decode_next({}, 1, &image), 1);
    EXPECT_EQ(decode_next({}, 0, &again), 1);
    EXPECT_EQ(again, image);
    EXPECT_EQ(decode_next({}, -1, &again), -16);
    const Dib result(image);
    EXPECT_EQ(result.width(), 40); // still there
}

TEST(DecodeCalls, BadPieces) {
    const Bytes stream = sample();
    const Dib data = block_of(stream);
    HGLOBAL image = reinterpret_cast<HGLOBAL>(8);
    EXPECT_EQ(JpgDecFirst(nullptr, 5, &image), -3);
    EXPECT_EQ(JpgDecFirst(nullptr, -5, &image), -3);
    EXPECT_EQ(JpgDecFirst(data, -1, &image), -1);
    EXPECT_EQ(JpgDecFirst(data, static_cast<int32_t>(GlobalSize(data)) + 1, &image), -1);
    EXPECT_EQ(image, reinterpret_cast<HGLOBAL>(8));
    EXPECT_EQ(decode_first(stream, &image), 0); // not busy
    EXPECT_EQ(JpgDecNext(data, -1, 1, &image), -1);
    EXPECT_EQ(decode_first(stream, &image), 0);
    EXPECT_EQ(JpgDecNext(data, static_cast<int32_t>(GlobalSize(data)) + 1, 1, &image), -1);
    EXPECT_TRUE(is_unlocked(data));
    int32_t error = 0;
    EXPECT_EQ(JpgDecMainHGLOBAL(nullptr, 5, nullptr, nullptr, &error), nullptr);
    EXPECT_EQ(error, -3);
    EXPECT_EQ(JpgDecMainHGLOBAL(data, -5, nullptr, nullptr, &error), nullptr);
    EXPECT_EQ(error, -1);
}

TEST(DecodeCalls, Files) {
    uint32_t width = 7, height = 8;
    int32_t error = 0;
    EXPECT_EQ(JpgDecMainEx("no such file.jpg", &width, &height, &error), nullptr);
    EXPECT_EQ(error, -4);
    EXPECT_EQ(JpgDecMainEx(nullptr, &width, &height, &error), nullptr);
    EXPECT_EQ(error, -4);
    const TempFile empty(".jpg", {});
    EXPECT_EQ(JpgDecMainEx(empty.name(), &width, &height, &error), nullptr);
    EXPECT_EQ(error, -10);
    Bytes cut_short = sample();
    cut_short.resize(30);
    const TempFile file(".jpg", cut_short);
    EXPECT_EQ(JpgDecMainEx(file.name(), &width, &height, &error), nullptr);
    EXPECT_EQ(error, -13);
    EXPECT_EQ(width, 7u);
    EXPECT_EQ(height, 8u);
}

TEST(DecodeCalls, StreamInformationEndsADecodeUnderWay) {
    const Bytes stream = sample(64, 64, Sampling::s1x1);
    const TempFile file(".jpg", sample());
    HGLOBAL image = nullptr;
    for (size_t size : {50u, 800u, 1200u})
        for (int final_flag : {-1, 1, 0}) {
            EXPECT_EQ(decode_first(
                          Bytes(stream.begin(), stream.begin() + static_cast<std::ptrdiff_t>(size)),
                          &image),
                      0);
            JpgDecSpec spec;
            EXPECT_EQ(JpgDecGetSpecEx(file.name(), &spec), 0);
            int32_t result = decode_next(final_flag == 0 ? stream : Bytes(), final_flag, &image);
            GlobalFree(image);
            if (result == 0)
                result = decode_next({}, -1, &image);
            EXPECT_NE(result, 0);
            EXPECT_EQ(decode_first(stream, &image), 0);
            EXPECT_EQ(JpgDecGetSpecEx("no such file.jpg", &spec), -4);
            EXPECT_EQ(decode_next({}, 1, &image), -10); // it has to begin again
        }
}

TEST(DecodeCalls, ProgressOfABaselineStream) {
    ProgressRecorder recorder;
    recorder.watch(9);
    const Bytes stream = sample(70, 8, Sampling::grey); // 9 MCUs
    HGLOBAL image = nullptr;
    EXPECT_EQ(decode_first(stream, &image), 0);
    EXPECT_EQ(decode_next({}, 1, &image), 1);
    GlobalFree(image);
    EXPECT_EQ(recorder.percents(), (std::vector{0, 11, 22, 33, 44, 55, 66, 77, 88, 100}));
    EXPECT_EQ(recorder.messages()[0].command, 9u);
    EXPECT_EQ(decode_first(stream, &image), 0);
    EXPECT_EQ(decode_next({}, 1, &image), 1);
    GlobalFree(image);
    EXPECT_EQ(recorder.messages().size(), 10u); // one operation only
}

TEST(DecodeCalls, ProgressOfManyMcus) {
    ProgressRecorder recorder;
    recorder.watch();
    HGLOBAL image = nullptr;
    EXPECT_EQ(decode_first(sample(160, 160, Sampling::grey), &image), 0); // 400 MCUs
    EXPECT_EQ(decode_next({}, 1, &image), 1);
    GlobalFree(image);
    std::vector<int> expected;
    for (int percent = 0; percent <= 100; percent += 5)
        expected.push_back(percent);
    EXPECT_EQ(recorder.percents(), expected);
}

// By the luma coefficients that finished scans have covered.
TEST(DecodeCalls, ProgressOfAProgressiveStream) {
    Random random(401);
    JpegPlan plan;
    plan.scans = {{{1, 2, 3}, 0, 0}, {{1}, 1, 3}, {{2}, 1, 63}, {{1}, 4, 31}, {{1}, 32, 63}};
    ProgressRecorder recorder;
    recorder.watch();
    HGLOBAL image = nullptr;
    int32_t result = decode_first(build_jpeg(plan, random), &image);
    if (result == 0)
        result = decode_next({}, 1, &image);
    EXPECT_EQ(result, 1);
    GlobalFree(image);
    // After the scans 1, 4, 4, 32 and 64 of 64 are covered; 100 is sent once more at the end.
    EXPECT_EQ(recorder.percents(), (std::vector{0, 6, 50, 100, 100}));
}

TEST(DecodeCalls, NoProgressOnFaultsOfTheHeader) {
    ProgressRecorder recorder;
    recorder.watch();
    HGLOBAL image = nullptr;
    EXPECT_EQ(decode_first({0xFF, 0xD8, 0xFF, 0xD9}, &image), -12);
    EXPECT_TRUE(recorder.messages().empty());
}

TEST(DecodeCalls, AHandlerMaySilenceTheRest) {
    ProgressRecorder recorder;
    recorder.watch();
    recorder.on_message = [](const ProgressMessage& message) {
        if (message.percent >= 20)
            KirvoSetProcess(nullptr, 0, 0);
    };
    HGLOBAL image = nullptr;
    EXPECT_EQ(decode_first(sample(160, 160, Sampling::grey), &image), 0);
    EXPECT_EQ(decode_next({}, 1, &image), 1);
    GlobalFree(image);
    EXPECT_EQ(recorder.percents(), (std::vector{0, 5, 10, 15, 20}));
}

// Both kinds of stream, and what a handler does at each percentage of its decode.
void decode_told(const std::function<void(const ProgressMessage&)>& handler,
                 const std::function<void(int32_t result, HGLOBAL image)>& expect) {
    for (const bool progressive : {false, true}) {
        Random random(405);
        JpegPlan plan;
        plan.width = plan.height = 80;
        if (progressive)
            plan.scans = {{{1, 2, 3}, 0, 0}, {{1}, 1, 63}};
        ProgressRecorder recorder;
        recorder.watch();
        recorder.on_message = handler;
        HGLOBAL image = nullptr;
        int32_t result = decode_first(build_jpeg(plan, random), &image);
        if (result == 0)
            result = decode_next({}, 1, &image);
        expect(result, image);
        GlobalFree(image);
    }
}

TEST(DecodeCalls, AHandlerThatAbandonsEndsTheDecode) {
    for (const int at : {0, 5, 50, 100}) {
        const auto abandon = [&](const ProgressMessage& message) {
            HGLOBAL image = &image;
            if (message.percent >= at) {
                EXPECT_EQ(JpgDecNext(nullptr, 0, -1, &image), KIRVO_ABANDONED);
                EXPECT_EQ(image, nullptr);
                EXPECT_EQ(decode_first({0xFF}, &image), KIRVO_BUSY); // until the handler returns
            }
        };
        decode_told(abandon, [](int32_t result, HGLOBAL image) {
            EXPECT_EQ(result, KIRVO_ABANDONED);
            EXPECT_EQ(image, nullptr);
        });
        HGLOBAL image = nullptr;
        EXPECT_EQ(decode_first({0xFF}, &image), 0); // not busy
        EXPECT_EQ(decode_next({}, -1, &image), KIRVO_ABANDONED);
    }
}

TEST(DecodeCalls, AHandlerIsRefusedAnythingElse) {
    const TempFile file(".jpg", sample(16, 16, Sampling::grey));
    const auto disturb = [&](const ProgressMessage&) {
        HGLOBAL image = nullptr;
        EXPECT_EQ(decode_first({0xFF}, &image), KIRVO_BUSY);
        EXPECT_EQ(decode_next({0xFF}, 0, &image), KIRVO_BUSY);
        EXPECT_EQ(JpgDecNext(nullptr, 0, 1, &image), KIRVO_BUSY);
        JpgDecSpec spec;
        EXPECT_EQ(JpgDecGetSpecEx(file.name(), &spec), KIRVO_BUSY);
        EXPECT_EQ(JpgDecMainEx(file.name(), nullptr, nullptr, nullptr), nullptr);
    };
    decode_told(disturb, [](int32_t result, HGLOBAL image) {
        EXPECT_EQ(result, 1);
        EXPECT_NE(image, nullptr);
    });
}

// A scan header with Ah above 0 ends the gathering: only its first MCU is still read.
TEST(DecodeCalls, RefinementScansEndAProgressiveStream) {
    Lockstep both;
    Random random(402);
    JpegPlan plan;
    plan.width = plan.height = 60;
    plan.scans = {{{1, 2, 3}, 0, 0, 0, 1}, {{1}, 1, 63, 0, 1}, {{1}, 1, 63, 1, 0}};
    Bytes stream = build_jpeg(plan, random);
    EXPECT_EQ(both.run({stream}), 1);
    stream.resize(stream.size() - 20); // what follows is never read
    stream.insert(stream.end(), 40, 0xFF);
    EXPECT_EQ(both.run({stream}), 1);
}

TEST(DecodeCalls, AProgressiveScanMustNameDefinedTables) {
    Random random(403);
    JpegPlan plan;
    plan.sampling = Sampling::grey;
    plan.scans = {{{1}, 0, 0}, {{1}, 1, 63}};
    Bytes stream = build_jpeg(plan, random);
    size_t last_scan = stream.size();
    while (stream[last_scan - 1] != 0xFF || stream[last_scan] != 0xDA)
        --last_scan;
    stream[last_scan + 5] = 0x02; // AC table 2
    HGLOBAL image = nullptr;
    EXPECT_EQ(decode_first(stream, &image), 0);
    EXPECT_EQ(decode_next({}, 1, &image), -14);
}

TEST(DecodeCalls, AProgressiveStreamWithoutItsEnd) {
    Random random(404);
    JpegPlan plan;
    plan.scans = {{{1, 2, 3}, 0, 0}};
    Bytes stream = build_jpeg(plan, random);
    stream.resize(stream.size() - 2); // no EOI
    HGLOBAL image = nullptr;
    EXPECT_EQ(decode_first(stream, &image), 0);
    EXPECT_EQ(decode_next({}, 1, &image), -13);
}

TEST(DecodeCalls, SetNoblockDoesNothing) { JpgDecSetNoblock(1, 2, 3); }

} // namespace
