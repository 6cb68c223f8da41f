// Callers of the 32-bit DLL guarantee a stack aligned to 4 bytes only. Each call here is made with
// the stack at every alignment modulo 16 and must answer as ever. On 64 bits, where the calling
// convention fixes the alignment, the calls are made as they are.

#include "support/dib_builder.hpp"

#include <cstring>
#include <gtest/gtest.h>
#include <kirvo.h>

namespace {

using namespace kirvo_test;

#ifdef __i386__

constexpr int shifts[] = {0, 4, 8, 12};

// Calls a stdcall function with its arguments, given as words, after moving the stack down to
// `shift` bytes below a multiple of 16.
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
Result call(int shift, Result(WINAPI* function)(Arguments...),
            std::type_identity_t<Arguments>... arguments) {
    uint32_t words[2 * sizeof...(Arguments) + 1] = {};
    uint32_t count = 0;
    [[maybe_unused]] const auto append = [&](const auto& argument) {
        std::memcpy(words + count, &argument, sizeof argument);
        count += (sizeof argument + 3) / 4;
    };
    (append(arguments), ...);
    const uint32_t word =
        call_words(reinterpret_cast<void*>(function), words, count, static_cast<uint32_t>(shift));
    Result result;
    std::memcpy(&result, &word, sizeof result);
    return result;
}

#else

constexpr int shifts[] = {0}; // the calling convention sees to the alignment

template<typename Result, typename... Arguments>
Result call(int, Result(WINAPI* function)(Arguments...),
            std::type_identity_t<Arguments>... arguments) {
    return function(arguments...);
}

#endif

class StackAlignment : public testing::TestWithParam<int> {
  protected:
    Random random{2026};
    int shift = GetParam();
};

INSTANTIATE_TEST_SUITE_P(Shifts, StackAlignment, testing::ValuesIn(shifts));

TEST_P(StackAlignment, Version) { EXPECT_EQ(call(shift, GetVerKirvoDll), 0x01000402u); }

TEST_P(StackAlignment, Allocation) {
    const Dib dib(call(shift, DibMemAllocEx, 641, 479, 24));
    ASSERT_NE(static_cast<HGLOBAL>(dib), nullptr);
    EXPECT_EQ(dib.width(), 641);
    EXPECT_EQ(dib.height(), 479);
}

TEST_P(StackAlignment, Pixels) {
    for (const int bits : {16, 24, 32}) {
        Dib dib = make_random_dib({.width = 333, .height = 3, .bits = bits}, random);
        EXPECT_EQ(call(shift, DibSetLineColor, dib, 2, 330, 1, 0xF8F8F8), KIRVO_OK);
        uint32_t colour = 0;
        EXPECT_EQ(call(shift, DibGetPixelColor, dib, 330, 1, &colour), KIRVO_OK);
        EXPECT_EQ(colour, 0xF8F8F8u);
    }
}

TEST_P(StackAlignment, Palette) {
    const HPALETTE palette = call(shift, KirvoCreatePalette);
    ASSERT_NE(palette, nullptr);
    PALETTEENTRY entry{};
    EXPECT_EQ(GetPaletteEntries(palette, 255, 1, &entry), 1u);
    EXPECT_EQ(entry.peGreen, 255);
    DeleteObject(palette);
}

} // namespace
