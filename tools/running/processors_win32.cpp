#include "running/processors.hpp"

#include <windows.h>

size_t number_of_processors() {
    DWORD_PTR allowed = 0, present = 0;
    size_t count = 0;
    if (GetProcessAffinityMask(GetCurrentProcess(), &allowed, &present)) {
        for (; allowed != 0; allowed &= allowed - 1)
            ++count;
    }
    return count == 0 ? 1 : count;
}
