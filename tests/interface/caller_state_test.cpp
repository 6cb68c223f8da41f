// What a caller may bring along: a stack aligned to 4 bytes only (on 32 bits; elsewhere the calling
// convention sees to it) and floating-point units set to less precision, to no denormals, to traps
// or to another rounding. Each call is made in every such state, must answer as it does in the usual
// one (but for the rounding), and must leave the state as it was.

#include "support/dib_builder.hpp"
#include "support/valid_calls.hpp"

#include <cstring>
#include <gtest/gtest.h>
#include <kirvo.h>

namespace {

using namespace kirvo_test;

struct CallerState {
    uint32_t shift;    // the stack pointer is so many bytes below a multiple of 16
    uint16_t x87_word; // control word of the x87 unit
    uint32_t mxcsr;    // control word of the SSE unit
    const char* name;
};

constexpr uint16_t x87_usual = 0x37F;
constexpr uint32_t sse_usual = 0x1F80;

constexpr CallerState states[] = {
    {0, x87_usual, sse_usual, "usual"},
    {0, 0x27F, sse_usual, "x87_double"},
    {0, 0x07F, sse_usual, "x87_single"},
    {0, 0x1372, 0x1900, "traps"}, // for invalid operations, divisions by zero and overflow
    {0, x87_usual, 0x9FC0, "no_denormals"},
#ifdef __i386__
    {4, x87_usual, sse_usual, "stack_4"},
    {8, x87_usual, sse_usual, "stack_8"},
    {12, x87_usual, sse_usual, "stack_12"},
#endif
};

// In these, results may be others.
constexpr CallerState rounding_states[] = {
    {0, 0x77F, 0x3F80, "rounds_down"},
    {0, 0xF7F, 0x7F80, "truncates"},
};

#ifdef __i386__

// Calls a stdcall function with its arguments given as words.
uint32_t call_words(void* function, const uint32_t* words, uint32_t count, uint32_t shift) {
    uint32_t result;
    asm volatile("movl %%esp, %%edi\n\t"
                 "andl $-16, %%esp\n\t"
                 "subl %[shift], %%esp\n\t"
                 "1: testl %[count], %[count]\n\t"
                 "jz 2f\n\t"
                 "pushl -4(%[words], %[count], 4)\n\t"
                 "decl %[count]\n\t"
                 "jmp 1b\n\t"
                 "2: call *%[function]\n\t"
                 "movl %%edi, %%esp"
                 : "=a"(result), [count] "+c"(count), [function] "+d"(function)
                 : [words] "S"(words), [shift] "b"(shift)
                 : "edi", "cc", "memory", "xmm0", "xmm1", "xmm2", "xmm3", "xmm4", "xmm5", "xmm6",
                   "xmm7");
    return result;
}

template<typename Result, typename... Arguments>
Result call_shifted(uint32_t shift, Result(WINAPI* function)(Arguments...),
                    Arguments... arguments) {
    uint32_t words[2 * sizeof...(Arguments) + 1] = {};
    uint32_t count = 0;
    [[maybe_unused]] const auto append = [&](const auto& argument) {
        std::memcpy(words + count, &argument, sizeof argument);
        count += (sizeof argument + 3) / 4;
    };
    (append(arguments), ...);
    const uint32_t word = call_words(reinterpret_cast<void*>(function), words, count, shift);
    Result result;
    std::memcpy(&result, &word, sizeof result);
    return result;
}

Value call_shifted(uint32_t shift, Call& call) {
    uint32_t words[2 * Export::most_parameters];
    uint32_t count = 0;
    for (size_t i = 0; i < call.what().parameters.size(); ++i) {
        const uint32_t bytes = call.what().parameters[i].width;
        std::memcpy(words + count, &call.argument(i), bytes);
        count += (bytes + 3) / 4;
    }
    return {call_words(reinterpret_cast<void*>(call.what().function), words, count, shift)};
}

#else

Value call_shifted(uint32_t, Call& call) { return call.what().call(&call.argument(0)); }

template<typename Result, typename... Arguments>
Result call_shifted(uint32_t, Result(WINAPI* function)(Arguments...), Arguments... arguments) {
    return function(arguments...);
}

#endif

// The state of the floating-point units, set for as long as the object lives.
class FloatingPoint {
  public:
    explicit FloatingPoint(const CallerState& state) {
        before_ = {x87_word(), mxcsr()};
        set({state.x87_word, state.mxcsr});
    }
    ~FloatingPoint() { set(before_); }
    FloatingPoint(const FloatingPoint&) = delete;
    FloatingPoint& operator=(const FloatingPoint&) = delete;

    static uint16_t x87_word() {
        uint16_t word;
        asm volatile("fnstcw %0" : "=m"(word));
        return word;
    }
    // Without the flags of what has happened.
    static uint32_t mxcsr() {
        uint32_t word;
        asm volatile("stmxcsr %0" : "=m"(word));
        return word & ~0x3Fu;
    }
    // A bit pair for each x87 register: 3 is empty.
    static uint16_t x87_tags() {
        struct {
            uint16_t control, unused, status, unused2, tags, unused3[9];
        } environment;
        asm volatile("fnstenv %0\n\tfldenv %0" : "+m"(environment));
        return environment.tags;
    }

  private:
    struct Words {
        uint16_t x87;
        uint32_t sse;
    };
    static void set(const Words& words) {
        asm volatile("fnclex\n\tfldcw %0\n\tldmxcsr %1" : : "m"(words.x87), "m"(words.sse));
    }
    Words before_;
};

// Everything that a call has left in the pool and in the memory of its arguments.
std::vector<uint8_t> outcome(Call& call, const Pool& pool) {
    std::vector<uint8_t> all;
    const auto append = [&](const void* bytes, size_t count) {
        const auto* from = static_cast<const uint8_t*>(bytes);
        all.insert(all.end(), from, from + count);
    };
    for (HGLOBAL block : pool.owned()) {
        append(GlobalLock(block), GlobalSize(block));
        GlobalUnlock(block);
    }
    for (size_t i = 0; i < call.what().parameters.size(); ++i) {
        if (call.what().parameters[i].kind == Kind::output)
            append(call.argument(i).pointer, call.what().parameters[i].bytes);
    }
    const auto result = static_cast<uint32_t>(call.result().number);
    if (call.what().result == kirvo_test::Result::code)
        append(&result, sizeof result);
    return all;
}

class CallerStates : public testing::TestWithParam<CallerState> {
  protected:
    template<typename Result, typename... Arguments>
    Result call(Result(WINAPI* function)(Arguments...),
                std::type_identity_t<Arguments>... arguments) {
        const FloatingPoint state(GetParam());
        return call_shifted<Result, Arguments...>(GetParam().shift, function, arguments...);
    }

    // A function that makes an image: its arguments without the final status pointer.
    template<typename... Arguments, typename... Given>
    void expect_same_image(HGLOBAL(WINAPI* function)(HGLOBAL, Arguments...), const Dib& from,
                           Given... given) {
        int32_t status = 1, usual_status = 1;
        const Dib usual(function(from, given..., &usual_status));
        const Dib made(call(function, from, given..., &status));
        ASSERT_EQ(usual_status, KIRVO_OK);
        ASSERT_EQ(status, KIRVO_OK);
        EXPECT_EQ(made.bytes(), usual.bytes());
    }

    // A function that changes an image.
    template<typename... Arguments, typename... Given>
    void expect_same_change(int32_t(WINAPI* function)(HGLOBAL, Arguments...), const Dib& image,
                            Given... given) {
        const Dib usual = copy_of(image), changed = copy_of(image);
        ASSERT_EQ(function(usual, given...), KIRVO_OK);
        ASSERT_EQ(call(function, changed, given...), KIRVO_OK);
        EXPECT_EQ(changed.bytes(), usual.bytes());
    }

    static constexpr int width = 333, height = 37;
    Random random{2026};
    const Dib image24 = make_random_dib({.width = width, .height = height, .bits = 24}, random);
    const Dib image16 = make_random_dib({.width = width, .height = height, .bits = 16}, random);
    const Dib image32 =
        make_random_dib({.width = width, .height = height, .bits = 32, .masks = masks_888}, random);
};

INSTANTIATE_TEST_SUITE_P(All, CallerStates, testing::ValuesIn(states),
                         [](const auto& info) { return std::string(info.param.name); });

TEST_P(CallerStates, version) { EXPECT_EQ(call(GetVerKirvoDll), uint32_t{KIRVO_VERSION}); }

TEST_P(CallerStates, allocation) {
    const Dib dib(call(DibMemAllocEx, 641, 479, 24));
    ASSERT_NE(static_cast<HGLOBAL>(dib), nullptr);
    EXPECT_EQ(dib.width(), 641);
    EXPECT_EQ(dib.height(), 479);
}

TEST_P(CallerStates, lines_and_pixels) {
    for (const Dib* image : {&image16, &image24, &image32}) {
        expect_same_change(DibSetLineColor, *image, 2, 330, 1, 0xF8F8F8u);
        uint32_t colour = 0;
        EXPECT_EQ(call(DibGetPixelColor, *image, 330, 1, &colour), KIRVO_OK);
    }
}

TEST_P(CallerStates, palette) {
    const HPALETTE palette = call(KirvoCreatePalette);
    ASSERT_NE(palette, nullptr);
    PALETTEENTRY entry{};
    EXPECT_EQ(GetPaletteEntries(palette, 255, 1, &entry), 1u);
    EXPECT_EQ(entry.peGreen, 255);
    DeleteObject(palette);
}

TEST_P(CallerStates, depths) {
    expect_same_image(DibConvert16bit, image24);
    expect_same_image(DibConvert24bit, image16);
    expect_same_image(DibConvert32bit, image24);
    expect_same_image(DibCutDepth, image24, 3, 4, 5);
}

TEST_P(CallerStates, geometry) {
    expect_same_image(Dib24DupEx, image32, 3, 1, 300, 30);
    expect_same_change(Dib24Flip, image24, 1, 1, 330, 35);
    expect_same_change(Dib24Mirror, image16, 1, 1, 330, 35);
    expect_same_image(Dib24Rotate, image24, 0, 0, width, height, 1);
    expect_same_image(Dib24ZoomEx, image24, 0, 0, width, height, 517, 91);
    int32_t status = 0, usual_status = 0;
    const Dib usual(Dib24ZoomEx2(image24, 0, 0, width, height, 100, 17, &usual_status, 1));
    const Dib made(call(Dib24ZoomEx2, image24, 0, 0, width, height, 100, 17, &status, 1));
    EXPECT_EQ(made.bytes(), usual.bytes());
}

TEST_P(CallerStates, tones) {
    for (const double gamma : {0.1, 0.45454545, 0.7, 1.8, 2.2, 3.0}) {
        expect_same_image(Dib24Gamma, image24, 0, 0, width, height, gamma);
        expect_same_image(DibGammaEx, image32, 0, 0, width, height, gamma, 1 / gamma, 1.1);
    }
    expect_same_image(Dib24ToneCtrlEx, image24, 0, 0, width, height, 1.1, 0.3, 1.7);
    expect_same_image(DibModifyHueEx, image24, 0, 0, width, height, 1, 77);
    expect_same_change(DibModifyHue, image24, 1, 77);
}

TEST_P(CallerStates, jpeg) {
    uint32_t bytes = 0, usual_bytes = 0;
    int32_t status = 0;
    HGLOBAL usual = JpgCodMainHGLOBAL(image24, 0, 0, width, height, &usual_bytes, &status);
    HGLOBAL stream = call(JpgCodMainHGLOBAL, image24, 0, 0, width, height, &bytes, &status);
    ASSERT_EQ(status, KIRVO_OK);
    ASSERT_EQ(bytes, usual_bytes);
    EXPECT_EQ(std::memcmp(GlobalLock(stream), GlobalLock(usual), bytes), 0);
    GlobalUnlock(stream);
    GlobalUnlock(usual);

    uint32_t made_width = 0, made_height = 0;
    const auto size = static_cast<int32_t>(bytes);
    const Dib usual_image(JpgDecMainHGLOBAL(stream, size, &made_width, &made_height, &status));
    const Dib image(call(JpgDecMainHGLOBAL, stream, size, &made_width, &made_height, &status));
    ASSERT_EQ(status, KIRVO_OK);
    EXPECT_EQ(image.bytes(), usual_image.bytes());
    GlobalFree(stream);
    GlobalFree(usual);
}

// A way to make each export work at each depth.
const std::vector<Plan>& all_plans(const Samples& samples) {
    static const std::vector<Plan> plans = [&] {
        std::vector<Plan> all;
        for (const Export& what : exports()) {
            const std::vector<Plan> its = plans_for(what, samples, true);
            all.insert(all.end(), its.begin(), its.end());
        }
        return all;
    }();
    return plans;
}

// Calls every export in a state, which must be left as it was.
void call_all(const CallerState& state, bool same_results) {
    static const Samples samples;
    ASSERT_GT(all_plans(samples).size(), exports().size());
    for (const Plan& plan : all_plans(samples)) {
        Pool usual_pool, pool;
        Call usual = plan.prepare(usual_pool, samples);
        usual.make();
        const std::vector<uint8_t> usual_outcome = outcome(usual, usual_pool);
        discard_leftovers();

        Call call = plan.prepare(pool, samples);
        Value result;
        uint16_t x87_word, x87_tags;
        uint32_t mxcsr;
        {
            const FloatingPoint units(state);
            result = call_shifted(state.shift, call);
            x87_word = FloatingPoint::x87_word();
            x87_tags = FloatingPoint::x87_tags();
            mxcsr = FloatingPoint::mxcsr();
        }
        call.made(result);
        EXPECT_EQ(x87_word, state.x87_word) << plan.name();
        EXPECT_EQ(mxcsr, state.mxcsr) << plan.name();
        EXPECT_EQ(x87_tags, 0xFFFF) << plan.name();
        if (same_results) {
            EXPECT_EQ(outcome(call, pool), usual_outcome) << plan.name();
        }
        discard_leftovers();
    }
}

TEST_P(CallerStates, every_export) { call_all(GetParam(), true); }

TEST(RoundingStates, every_export) {
    for (const CallerState& state : rounding_states)
        call_all(state, false);
}

} // namespace
