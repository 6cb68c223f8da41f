// Callers that do what nobody expects: progress handlers that call back into the library, pointers
// that are null, codec calls out of turn. Every answer is a result or a documented code.

#include "safety/safety.hpp"
#include "support/progress_recorder.hpp"

#include <functional>

using namespace kirvo_test;

namespace {

class HostileCallers : public SafetyTest {
  protected:
    static void TearDownTestSuite() {
        report("hostile callers", {{"calls", calls}, {"handlers_that_called_back", messages}});
    }
    static inline uint64_t messages = 0;
};

// What a handler may do with a call that is under way.
struct Handler {
    const char* name;
    std::function<void(Call& under_way, Pool&, const Plan&, ProgressRecorder&)> handle;
};

bool is_of(const Call& call, std::string_view family) {
    return call.what().name.substr(0, family.size()) == family;
}

HGLOBAL image_of(Call& call) {
    const size_t i = call.what().find("dib");
    return i != Export::none ? const_cast<void*>(call.argument(i).pointer) : nullptr;
}

void start_codecs(Pool& pool) {
    int32_t status = 0;
    for (const int bits : {24, 8}) {
        HGLOBAL image = pool.add(plain_image(bits));
        pool.take(JpgCodMainHGLOBAL(image, 0, 0, 21, 13, nullptr, &status));
        EXPECT_TRUE(status == KIRVO_OK || status == KIRVO_BUSY) << current_call;
        HGLOBAL stream = JpgCodFirst(image, 0, 0, 21, 13, 1, &status);
        EXPECT_EQ(stream == nullptr, status == KIRVO_BUSY) << current_call;
        JpgCodFirst_M(image, 0, 0, 21, 13, 0, 1, &status);
    }
    HGLOBAL decoded = nullptr;
    EXPECT_EQ(JpgDecFirst(pool.add(plain_image(1)), 5, &decoded), KIRVO_BUSY) << current_call;
}

const Handler handlers[] = {
    {"switches off", [](Call&, Pool&, const Plan&,
                        ProgressRecorder& recorder) { KirvoSetProcess(recorder.window(), 1, 0); }},
    {"switches on again",
     [](Call&, Pool&, const Plan&, ProgressRecorder& recorder) {
         KirvoSetProcess(recorder.window(), 2, 1);
     }},
    {"goes on",
     [](Call& call, Pool& pool, const Plan&, ProgressRecorder&) {
         HGLOBAL image = nullptr;
         const int32_t result = JpgDecNext(nullptr, 0, 1, &image); // 1: that of an earlier decode
         EXPECT_TRUE(result < 0 || !is_of(call, "JpgDec")) << current_call;
         for (auto* next : {JpgCodNext, JpgCodNext_M}) {
             if (next(0, nullptr) == 1) {
                 pool.take(pool.stream_under_way);
                 pool.stream_under_way = nullptr;
             }
         }
     }},
    {"abandons",
     [](Call&, Pool&, const Plan&, ProgressRecorder&) {
         EXPECT_EQ(JpgCodNext(-1, nullptr), KIRVO_ABANDONED);
         EXPECT_EQ(JpgCodNext_M(-1, nullptr), KIRVO_ABANDONED);
         HGLOBAL image = nullptr;
         EXPECT_EQ(JpgDecNext(nullptr, 0, -1, &image), KIRVO_ABANDONED);
     }},
    {"starts codecs",
     [](Call& call, Pool& pool, const Plan&, ProgressRecorder&) {
         if (is_of(call, "Jpg")) {
             start_codecs(pool);
         } else {
             HGLOBAL image = pool.add(plain_image(24));
             pool.take(JpgCodMainHGLOBAL(image, 0, 0, 21, 13, nullptr, nullptr));
         }
     }},
    {"abandons and starts another",
     [](Call&, Pool& pool, const Plan&, ProgressRecorder&) {
         end_codec_operations();
         int32_t status = 0;
         JpgCodFirst(pool.add(plain_image(24)), 0, 0, 21, 13, 1, &status);
         EXPECT_TRUE(status == KIRVO_OK || status == KIRVO_BUSY);
     }},
    {"reads its image",
     [](Call& call, Pool&, const Plan& plan, ProgressRecorder&) {
         if (HGLOBAL image = image_of(call); image != nullptr) {
             uint32_t colour = 0;
             EXPECT_EQ(DibQueryBitCount(image), plan.bits) << current_call;
             EXPECT_EQ(DibGetPixelColor(image, 20, 12, &colour), KIRVO_OK) << current_call;
         }
     }},
    {"changes its image",
     [](Call& call, Pool&, const Plan&, ProgressRecorder&) {
         if (HGLOBAL image = image_of(call); image != nullptr) {
             Dib24Flip(image, 0, 0, 21, 13);
             Dib24Negative(image, 0, 0, 21, 13);
         }
     }},
    {"changes settings",
     [](Call&, Pool&, const Plan&, ProgressRecorder&) {
         SetFilter3x3(9, -8, 7, -6, 5, -4, 3, -2, 1, 3);
         SetKeyColorDib24Add(0xFFFFFF);
         JpgCodSetQEx(1);
         JpgCodSetSubsample(1);
         JpgCodSetComment(reinterpret_cast<const uint8_t*>("x"), 1);
         JpgDecCommentFree();
         JpgDecGetCommentEnable(1);
     }},
    {"asks for a file",
     [](Call& call, Pool&, const Plan&, ProgressRecorder&) {
         JpgDecSpec spec;
         const int32_t status = JpgDecGetSpecEx("no such file", &spec);
         EXPECT_EQ(status, is_of(call, "JpgDec") ? KIRVO_BUSY : KIRVO_CANNOT_OPEN) << current_call;
     }},
    {"does the same once more",
     [](Call& call, Pool& pool, const Plan& plan, ProgressRecorder&) {
         if (!is_of(call, "Jpg")) {
             static const Samples samples;
             Call again = plan.prepare(pool, samples);
             again.make();
             EXPECT_EQ(again.problem(), "") << current_call;
         }
     }},
};

} // namespace

TEST_P(HostileCallers, handlers_that_call_back) {
    for (const Plan& plan : plans_for(*GetParam(), samples(), true)) {
        for (const Handler& handler : handlers) {
            {
                Pool pool;
                Call call = plan.prepare(pool, samples());
                ProgressRecorder recorder;
                bool handling = false; // messages of what the handler does are left alone
                recorder.on_message = [&](const ProgressMessage&) {
                    if (!std::exchange(handling, true)) {
                        ++messages;
                        handler.handle(call, pool, plan, recorder);
                        handling = false;
                    }
                };
                recorder.watch();
                check(call, plan.name() + " told by a handler that " + handler.name + ": ");
                recorder.on_message = nullptr;
                expect_unlocked(pool);
            }
            JpgCodSetQEx(4);
            JpgCodSetSubsample(4);
            SetKeyColorDib24Add(0);
            expect_nothing_left();
            if (HasFailure())
                return;
        }
    }
}

// Each address null, and all of them at once. Outputs are not needed for the work; inputs are.
TEST_P(HostileCallers, null_pointers) {
    const Export& what = *GetParam();
    for (const Plan& plan : plans_for(what, samples(), true)) {
        const size_t count = what.parameters.size();
        for (size_t which = 0; which <= count && !HasFailure(); ++which) {
            {
                Pool pool;
                Call call = plan.prepare(pool, samples());
                bool inputs = false, changed = false;
                for (size_t i = 0; i < count; ++i) {
                    const Kind kind = what.parameters[i].kind;
                    const bool output = kind == Kind::output || kind == Kind::output_handle;
                    const bool number = kind == Kind::position || kind == Kind::extent ||
                                        kind == Kind::size || kind == Kind::number ||
                                        kind == Kind::real;
                    if (number || kind == Kind::window || (which != i && which != count))
                        continue;
                    call.argument(i).pointer = nullptr;
                    inputs |= !output;
                    changed = true;
                }
                if (changed) {
                    check(call, plan.name() + ": ");
                    EXPECT_TRUE(call.succeeded() || inputs) << current_call;
                }
                expect_unlocked(pool);
            }
            expect_nothing_left();
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Exports, HostileCallers, testing::ValuesIn(all_exports()), test_name);

namespace {

// The calls that go on with an operation, in an order that never fits.
class OutOfTurn : public SafetyTest {
  protected:
    // No encode is under way.
    void expect_no_encode() {
        uint32_t bytes = 77;
        EXPECT_LT(JpgCodNext(0, &bytes), 0);
        EXPECT_LT(JpgCodNext_M(0, &bytes), 0);
        EXPECT_LT(JpgCodNext(-1, &bytes), 0);
        EXPECT_LT(JpgCodNext_M(-1, &bytes), 0);
        EXPECT_EQ(bytes, 77u);
    }
    // No decode is under way, and none has finished.
    void expect_no_decode() {
        HGLOBAL image = data;
        for (const int32_t final : {0, 1, -1, 5}) {
            EXPECT_LT(JpgDecNext(data, 10, final, &image), 0);
            EXPECT_EQ(image, nullptr);
            EXPECT_LT(JpgDecNext(nullptr, 0, final, nullptr), 0);
        }
    }
    void forget_finished_decode() {
        HGLOBAL image = nullptr;
        EXPECT_EQ(JpgDecFirst(data, 10, &image), 0);
        EXPECT_EQ(JpgDecNext(data, -1, 0, &image), KIRVO_BAD_PARAMETER);
    }

    // The encode under way goes on to its end.
    void finish_encode(HGLOBAL stream) {
        int32_t result;
        do
            result = JpgCodNext(0, nullptr);
        while (result == 0);
        EXPECT_EQ(result, 1);
        pool.take(stream);
    }

    Pool pool;
    HGLOBAL data = pool.add(samples().stream());
    const int32_t size = static_cast<int32_t>(samples().stream().size());
    HGLOBAL colour = pool.add(plain_image(24));
    HGLOBAL indexed = pool.add(plain_image(8));
};

} // namespace

TEST_F(OutOfTurn, without_a_first_call) {
    forget_finished_decode();
    expect_no_encode();
    expect_no_decode();
}

TEST_F(OutOfTurn, after_an_abort) {
    int32_t status = 1;
    ASSERT_NE(JpgCodFirst(colour, 0, 0, 21, 13, 1, &status), nullptr);
    EXPECT_EQ(JpgCodNext(-1, nullptr), KIRVO_ABANDONED);
    expect_no_encode();
    ASSERT_NE(JpgCodFirst_M(indexed, 0, 0, 21, 13, 0, 1, &status), nullptr);
    EXPECT_EQ(JpgCodNext_M(-1, nullptr), KIRVO_ABANDONED);
    expect_no_encode();
    HGLOBAL image = nullptr;
    ASSERT_EQ(JpgDecFirst(data, size - 5, &image), 0);
    EXPECT_EQ(JpgDecNext(nullptr, 0, -1, &image), KIRVO_ABANDONED);
    expect_no_decode();
    expect_no_encode();
    expect_unlocked(pool);
}

TEST_F(OutOfTurn, after_completion) {
    pool.take(JpgCodMainHGLOBAL(colour, 0, 0, 21, 13, nullptr, nullptr));
    expect_no_encode();
    HGLOBAL image = nullptr, again = nullptr;
    ASSERT_EQ(JpgDecFirst(data, size, &image), 0);
    ASSERT_EQ(JpgDecNext(nullptr, 0, 1, &image), 1);
    pool.take(image);
    EXPECT_EQ(JpgDecNext(data, size, 0, &again), 1); // the finished image once more
    EXPECT_EQ(again, image);
    EXPECT_LT(JpgDecNext(nullptr, 0, -1, &again), 0);
    EXPECT_EQ(DibQueryBitCount(image), 24);
    expect_no_encode();
}

TEST_F(OutOfTurn, of_the_other_family) {
    forget_finished_decode();
    int32_t status = 1;
    HGLOBAL image = nullptr;
    HGLOBAL stream = JpgCodFirst(colour, 0, 0, 21, 13, -1, &status);
    ASSERT_NE(stream, nullptr);
    EXPECT_LT(JpgCodNext_M(0, nullptr), 0);
    EXPECT_LT(JpgDecNext(data, size, 0, &image), 0);
    EXPECT_EQ(JpgDecFirst(data, size, &image), KIRVO_BUSY);
    EXPECT_EQ(JpgCodFirst_M(indexed, 0, 0, 21, 13, 0, -1, &status), nullptr);
    EXPECT_EQ(status, KIRVO_BUSY);
    finish_encode(stream);

    ASSERT_EQ(JpgDecFirst(data, size, &image), 0);
    expect_no_encode();
    EXPECT_EQ(JpgDecNext(nullptr, 0, 1, &image), 1);
    pool.take(image);
}

// The other codec's abort does not end an operation.
TEST_F(OutOfTurn, an_abort_of_the_other_codec) {
    int32_t status = 1;
    HGLOBAL image = nullptr;
    HGLOBAL stream = JpgCodFirst(colour, 0, 0, 21, 13, -1, &status);
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(JpgDecNext(nullptr, 0, -1, &image), KIRVO_ABANDONED);
    EXPECT_EQ(JpgDecFirst(data, size, &image), KIRVO_BUSY);
    finish_encode(stream);
    ASSERT_EQ(JpgDecFirst(data, size, &image), 0);
    EXPECT_EQ(JpgCodNext(-1, nullptr), KIRVO_ABANDONED);
    EXPECT_EQ(JpgDecNext(nullptr, 0, 1, &image), 1);
    pool.take(image);
}
