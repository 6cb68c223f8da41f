// Runs a test at every level of the processor.
#pragma once

#include "simd/cpu.hpp"

#include <gtest/gtest.h>

namespace kirvo_test {

// Calls body(level) at each level that the machine has, lowest first.
template<typename Body>
void at_every_cpu_level(Body body) {
    using kirvo::CpuLevel;
    static constexpr const char* names[] = {"scalar", "sse2", "avx2", "avx512"};
    for (int i = 0; i < 4; ++i) {
        const auto level = static_cast<CpuLevel>(i);
        kirvo::lower_cpu_level(level);
        if (kirvo::cpu_level() != level)
            break;
        SCOPED_TRACE(names[i]);
        body(level);
    }
    kirvo::lower_cpu_level(CpuLevel::avx512);
}

} // namespace kirvo_test
