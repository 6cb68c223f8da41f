// Every export whose memory fails, at each allocation of each call that would succeed: the code, no
// block and no lock left, nothing under way, all settings as they were.

#include "safety/safety.hpp"

using namespace kirvo_test;

namespace {

using Bytes = std::vector<uint8_t>;

void append(Bytes& to, const void* from, size_t count) {
    const auto* bytes = static_cast<const uint8_t*>(from);
    to.insert(to.end(), bytes, bytes + count);
}

// Everything that a caller can set for later calls, by what it does to them: streams of both
// encoders, the filters and the key colour, and the tables and marker that the decoder remembers.
Bytes settings() {
    Pool pool;
    Bytes all;
    uint32_t bytes = 0;
    HGLOBAL stream = JpgCodMainHGLOBAL(pool.add(plain_image(24)), 0, 0, 21, 13, &bytes, nullptr);
    all.push_back(stream != nullptr); // which says that no codec is busy
    append(all, GlobalLock(stream), bytes);
    GlobalUnlock(stream);
    pool.take(stream);

    HGLOBAL image = pool.add(plain_image(24));
    Dib24Mix3X3(image, 5, 5);
    Dib24Mix5X5(image, 12, 8);
    Dib24Add(image, 0, 0, pool.add(plain_image(24)), 0, 0, 21, 5, 4);
    append(all, GlobalLock(image), GlobalSize(image));
    GlobalUnlock(image);
    if (HGLOBAL filtered = DibFilter3x3(image, 0, 0, 21, 13, nullptr); filtered != nullptr) {
        append(all, GlobalLock(filtered), GlobalSize(filtered));
        GlobalUnlock(filtered);
        pool.take(filtered);
    }
    uint16_t tables[2][64] = {};
    all.push_back(static_cast<uint8_t>(JpgDecGetQtable(tables[0], tables[1])));
    append(all, tables, sizeof tables);
    uint32_t position = 0;
    all.push_back(static_cast<uint8_t>(JpgDecGetLastUexMarker(&position)));
    append(all, &position, sizeof position);
    return all;
}

// Outputs that are written before memory fails; all others stay as they were.
bool may_be_written(const Export& what, std::string_view parameter) {
    return parameter == "status" || parameter == "error" ||
           (what.name == "DibReadEx" && parameter == "bits") ||
           (what.name == "DibCountColors" && parameter == "count");
}

class FailingMemory : public SafetyTest {
  protected:
    static void TearDownTestSuite() {
        report("failing memory", {{"calls", calls}, {"allocations_failed", memory().refused()}});
    }

    // Makes the n-th allocation of the call fail. False when it has fewer.
    bool call_without(uint32_t n, const Plan& plan) {
        bool refused;
        {
            Pool pool;
            Call call = plan.prepare(pool, samples());
            const uint64_t before = memory().refused();
            memory().fail(n);
            check(call, plan.name() + ", allocation " + std::to_string(n) + ": ");
            memory().fail(0);
            refused = memory().refused() != before;
            judge(call, refused);
            expect_unlocked(pool);
        }
        expect_nothing_left();
        return refused && !HasFailure();
    }

    void judge(Call& call, bool refused) {
        if (call.succeeded() && refused) {
            EXPECT_TRUE(does_without(call.what())) << current_call;
        } else if (!refused) {
            EXPECT_TRUE(call.succeeded()) << current_call << " gives " << call.status();
        } else {
            EXPECT_EQ(call.status(), call.what().codes.empty() ? KIRVO_OK : KIRVO_NO_MEMORY)
                << current_call;
            expect_outputs_untouched(call);
        }
    }

    // A comment for which there is no memory is none, or is counted only.
    static bool does_without(const Export& what) {
        return what.result == Result::none || what.name == "JpgDecGetComment";
    }

    void expect_outputs_untouched(Call& call) {
        const Export& what = call.what();
        for (size_t i = 0; i < what.parameters.size(); ++i) {
            const Parameter& parameter = what.parameters[i];
            const bool handle = parameter.kind == Kind::output_handle;
            if ((parameter.kind != Kind::output && !handle) || may_be_written(what, parameter.name))
                continue;
            const auto* bytes = static_cast<const uint8_t*>(call.argument(i).pointer);
            for (size_t at = 0; at < parameter.bytes; ++at)
                ASSERT_EQ(bytes[at], handle ? 0 : 0xAB) << current_call << parameter.name;
        }
    }
};

} // namespace

TEST_P(FailingMemory, every_allocation) {
    const std::vector<Plan> plans = plans_for(*GetParam(), samples(), false);
    ASSERT_NE(plans.empty(), !works_elsewhere_only(*GetParam()));
    for (const Plan& plan : plans) {
        { // what the call and what precedes it set stands before
            Pool pool;
            plan.prepare(pool, samples()).make();
        }
        discard_leftovers();
        const Bytes before = settings();

        for (uint32_t n = 1; call_without(n, plan); ++n)
            EXPECT_EQ(settings(), before) << current_call << n;
        if (HasFailure())
            return;
    }
}

// Large blocks may come from elsewhere than small ones.
TEST_F(SafetyTest, large_blocks_that_cannot_be_had) {
    {
        Pool pool;
        HGLOBAL large = DibMemAllocEx(1500, 1000, 24);
        ASSERT_NE(large, nullptr);
        pool.take(large);
        int32_t status = 0;
        for (uint32_t n = 1; n <= 2; ++n) {
            memory().fail(1);
            EXPECT_EQ(n == 1 ? DibMemAllocEx(1600, 1600, 24) : DibConvert32bit(large, &status),
                      nullptr);
            memory().fail(0);
        }
        EXPECT_EQ(status, KIRVO_NO_MEMORY);
        expect_unlocked(pool);
    }
    expect_nothing_left();
}

INSTANTIATE_TEST_SUITE_P(Exports, FailingMemory, testing::ValuesIn(all_exports()), test_name);
