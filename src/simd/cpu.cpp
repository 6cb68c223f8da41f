#include "simd/cpu.hpp"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace kirvo {

namespace {

CpuLevel environment_cap() {
#define NAME(level) #level,
    static constexpr const char* names[] = {KIRVO_LEVELS(NAME)};
#undef NAME
    if (const char* word = std::getenv("KIRVO_CPU")) {
        for (int i = 0; i < cpu_levels; ++i) {
            if (std::strcmp(word, names[i]) == 0)
                return static_cast<CpuLevel>(i);
        }
    }
    return highest_cpu_level;
}

CpuLevel highest() {
    static const CpuLevel found = std::min(detect_cpu_level(), environment_cap());
    return found;
}

CpuLevel cap = highest_cpu_level;

} // namespace

CpuLevel cpu_level() { return std::min(highest(), cap); }

void lower_cpu_level(CpuLevel new_cap) { cap = new_cap; }

} // namespace kirvo
