#include "simd/cpu.hpp"

#include <cpuid.h>
#include <cstdint>

namespace kirvo {

namespace {

struct Registers {
    uint32_t eax, ebx, ecx, edx;
};

Registers cpuid(uint32_t leaf) {
    Registers r = {};
    __get_cpuid_count(leaf, 0, &r.eax, &r.ebx, &r.ecx, &r.edx);
    return r;
}

// Which register states the system saves on a task switch.
uint32_t saved_states() {
    uint32_t low, high;
    __asm__("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
    return low;
}

constexpr uint32_t bit(int n) { return 1u << n; }
constexpr bool has_all(uint32_t value, uint32_t bits) { return (value & bits) == bits; }

} // namespace

CpuLevel detect_cpu_level() {
    const Registers one = cpuid(1);
    if (!has_all(one.edx, bit(26)))
        return CpuLevel::scalar;
    constexpr uint32_t osxsave_and_avx = bit(27) | bit(28);
    if (!has_all(one.ecx, osxsave_and_avx))
        return CpuLevel::sse2;
    constexpr uint32_t ymm_saved = 0x06, zmm_saved = 0xE6;
    const uint32_t saved = saved_states();
    const Registers seven = cpuid(7);
    if (!has_all(saved, ymm_saved) || !has_all(seven.ebx, bit(5)))
        return CpuLevel::sse2;
    constexpr uint32_t f_dq_bw_vl = bit(16) | bit(17) | bit(30) | bit(31);
    constexpr uint32_t vbmi_vpopcntdq = bit(1) | bit(14);
    const bool wide = has_all(saved, zmm_saved) && has_all(seven.ebx, f_dq_bw_vl) &&
                      has_all(seven.ecx, vbmi_vpopcntdq);
    return wide ? CpuLevel::avx512 : CpuLevel::avx2;
}

} // namespace kirvo
