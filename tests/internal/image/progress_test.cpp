// The protocol of progress messages.
#include "image/progress.hpp"
#include "support/progress_recorder.hpp"

#include <gtest/gtest.h>

using kirvo::Progress;
using namespace kirvo_test;

namespace {

void work(int n) {
    Progress progress;
    progress.start();
    for (int i = 0; i < n; ++i)
        progress.step(i, n);
    progress.finish();
}

} // namespace

TEST(ProgressMessages, RiseByAtLeastFive) {
    ProgressRecorder recorder;
    recorder.watch(42);
    work(7);
    EXPECT_EQ(recorder.percents(), (std::vector{0, 14, 28, 42, 57, 71, 85, 100}));
    for (const ProgressMessage& message : recorder.messages())
        EXPECT_EQ(message.command, 42u);
    recorder.watch();
    work(200);
    std::vector<int> fives;
    for (int percent = 0; percent <= 100; percent += 5)
        fives.push_back(percent);
    EXPECT_EQ(recorder.percents(), fives);
    recorder.watch();
    work(1);
    EXPECT_EQ(recorder.percents(), (std::vector{0, 100}));
}

TEST(ProgressMessages, AreForOneOperation) {
    ProgressRecorder recorder;
    recorder.watch();
    work(3);
    const size_t first = recorder.messages().size();
    work(3);
    EXPECT_EQ(recorder.messages().size(), first);
    EXPECT_FALSE(kirvo::progress_enabled());
}

TEST(ProgressMessages, PassesShareTheHundredAndTheLastValueSent) {
    ProgressRecorder recorder;
    recorder.watch();
    Progress progress;
    progress.start();
    for (int i = 0; i < 4; ++i)
        progress.step(i, 4, {0, 30});
    for (int i = 0; i < 4; ++i)
        progress.step(i, 4, {30, 70});
    progress.finish();
    // 0 7 15 22 | 30 47 65 82
    EXPECT_EQ(recorder.percents(), (std::vector{0, 7, 15, 22, 30, 47, 65, 82, 100}));
}

TEST(ProgressMessages, HandlerMaySwitchThemOff) {
    ProgressRecorder recorder;
    recorder.watch();
    recorder.on_message = [&](const ProgressMessage& message) {
        if (message.percent >= 28)
            KirvoSetProcess(nullptr, 0, 0);
    };
    work(7);
    EXPECT_EQ(recorder.percents(), (std::vector{0, 14, 28}));
}

TEST(ProgressMessages, HandlerMaySwitchThemOnAgain) {
    ProgressRecorder recorder;
    recorder.watch();
    recorder.on_message = [&](const ProgressMessage& message) {
        if (message.percent == 100) // the flag is cleared after the message
            KirvoSetProcess(recorder.window(), 1, 1);
    };
    work(2);
    EXPECT_FALSE(kirvo::progress_enabled());
}

TEST(ProgressMessages, OnlyAFlagOfOneSwitchesOn) {
    ProgressRecorder recorder;
    for (const int32_t flag : {0, 2, -1, INT32_MAX}) {
        EXPECT_EQ(KirvoSetProcess(recorder.window(), 1, flag), flag);
        work(3);
    }
    EXPECT_TRUE(recorder.messages().empty());
    EXPECT_EQ(KirvoSetProcess(recorder.window(), 9, 1), 1);
    EXPECT_EQ(KirvoSetProcess(nullptr, 10, 0), 0);
    EXPECT_EQ(KirvoSetProcess(nullptr, 11, 2), 2);
    work(3);
    EXPECT_TRUE(recorder.messages().empty());
}

TEST(ProgressMessages, ProductsWrapAt32Bits) {
    ProgressRecorder recorder;
    recorder.watch();
    Progress progress;
    progress.start();
    progress.step(30000000, 40000000); // 3,000,000,000 wraps below 0
    progress.step(50000000, 60000000); // 5,000,000,000 wraps to 705,032,704: 11
    EXPECT_EQ(recorder.percents(), (std::vector{0, 11}));
}
