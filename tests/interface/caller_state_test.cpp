// What a caller may bring along: a stack aligned to 4 bytes only (on 32 bits; elsewhere the calling
// convention sees to it) and a floating-point unit set to less precision. Each call is made in every
// such state and must answer as it does in the usual one.

#include "support/dib_builder.hpp"

#include <cstring>
#include <gtest/gtest.h>
#include <kirvo.h>

namespace {

using namespace kirvo_test;

struct CallerState {
    uint32_t shift;    // the stack pointer is so many bytes below a multiple of 16
    uint16_t x87_word; // control word of the x87 unit
};

constexpr uint16_t x87_extended = 0x37F, x87_double = 0x27F, x87_single = 0x07F;

constexpr CallerState states[] = {
    {0, x87_extended},  {0, x87_double}, {0, x87_single},
#ifdef __i386__
    {4, x87_extended},  {8, x87_extended}, {12, x87_extended},
#endif
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

#else

template<typename Result, typename... Arguments>
Result call_shifted(uint32_t, Result(WINAPI* function)(Arguments...), Arguments... arguments) {
    return function(arguments...);
}

#endif

void set_x87_word(uint16_t word) { asm volatile("fldcw %0" : : "m"(word)); }

class CallerStates : public testing::TestWithParam<CallerState> {
  protected:
    template<typename Result, typename... Arguments>
    Result call(Result(WINAPI* function)(Arguments...),
                std::type_identity_t<Arguments>... arguments) {
        uint16_t usual;
        asm volatile("fnstcw %0" : "=m"(usual));
        set_x87_word(GetParam().x87_word);
        const Result result = call_shifted<Result, Arguments...>(GetParam().shift, function,
                                                                 arguments...);
        set_x87_word(usual);
        return result;
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
    const Dib image32 = make_random_dib(
        {.width = width, .height = height, .bits = 32, .masks = masks_888}, random);
};

std::string name_of(const testing::TestParamInfo<CallerState>& info) {
    const CallerState& state = info.param;
    return "shift_" + std::to_string(state.shift) + "_x87_" +
           (state.x87_word == x87_extended ? "extended"
            : state.x87_word == x87_double ? "double"
                                           : "single");
}

INSTANTIATE_TEST_SUITE_P(All, CallerStates, testing::ValuesIn(states), name_of);

TEST_P(CallerStates, version) { EXPECT_EQ(call(GetVerKirvoDll), 0x01000402u); }

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

} // namespace
