// What the safety tests share: one watch over the memory of the whole program, the samples, and the
// checks after every call.
#pragma once

#include "support/dib_builder.hpp"
#include "support/memory_watch.hpp"
#include "support/valid_calls.hpp"

#include <csignal>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <gtest/gtest.h>

namespace kirvo_test {

// Lasts as long as the program: blocks that it has placed may be freed at any time.
inline MemoryWatch& memory() {
    static MemoryWatch* const watch = new MemoryWatch;
    return *watch;
}

// The call that is being made, for the message of a crash.
inline std::string current_call;

inline void name_crashes() {
#ifndef __SANITIZE_ADDRESS__
    const auto report = [](int signal) {
        std::fprintf(stderr, "signal %d in %s\n", signal, current_call.c_str());
        std::_Exit(3);
    };
    std::signal(SIGSEGV, report);
    std::signal(SIGFPE, report);
    std::signal(SIGILL, report);
#endif
}

inline std::string test_name(const testing::TestParamInfo<const Export*>& info) {
    return std::string(info.param->name);
}

inline std::vector<const Export*> all_exports() {
    std::vector<const Export*> all;
    for (const Export& what : exports())
        all.push_back(&what);
    return all;
}

// A test of one export. Its calls go through `check`, which holds each against what is promised of
// all; when the pool has gone, `finish` looks for what is left of it.
class SafetyTest : public testing::TestWithParam<const Export*> {
  protected:
    SafetyTest() {
        name_crashes();
        discard_leftovers();
        memory().guard(true);
        blocks_before_ = memory().blocks();
        damaged_before_ = memory().damaged();
    }
    ~SafetyTest() override { memory().guard(false); }

    static const Samples& samples() {
        static const Samples all;
        return all;
    }

    // Makes the call and judges the answer. False when something is wrong.
    bool check(Call& call, const std::string& circumstances = "") {
        current_call = circumstances + call.text();
        const std::clock_t before = std::clock(); // of the processor, where the system counts it
        call.make();
        const double seconds = static_cast<double>(std::clock() - before) / CLOCKS_PER_SEC;
        ++calls;
        succeeded += call.succeeded();
        EXPECT_EQ(call.problem(), "") << current_call << " gives " << call.status();
        EXPECT_LT(seconds, longest_call) << current_call;
        return !HasFailure();
    }

    // No lock left on a block of the pool, once no codec operation is under way.
    void expect_unlocked(const Pool& pool) {
        end_codec_operations();
        for (HGLOBAL block : pool.owned())
            EXPECT_TRUE(GlobalSize(block) == 0 || is_unlocked(block)) << current_call;
    }

    // After the pool: every block is gone, and nothing beside the blocks has changed.
    void expect_nothing_left() {
        discard_leftovers();
        EXPECT_EQ(memory().blocks(), blocks_before_) << current_call;
        EXPECT_EQ(memory().damaged(), damaged_before_) << current_call;
    }

    // Figures of a suite, which it prints and records in the end.
    static void SetUpTestSuite() { calls = succeeded = 0; }
    static void report(const char* suite,
                       std::initializer_list<std::pair<const char*, uint64_t>> figures) {
        std::printf("%s: %zu exports", suite, exports().size());
        for (const auto& [name, figure] : figures) {
            const std::string text = std::to_string(figure);
            std::printf(", %s %s", text.c_str(), name);
            RecordProperty(name, text);
        }
        std::printf("\n");
    }
    static inline uint64_t calls = 0, succeeded = 0;

  private:
    static constexpr double longest_call = 5; // in seconds
    int64_t blocks_before_;
    uint64_t damaged_before_;
};

} // namespace kirvo_test
