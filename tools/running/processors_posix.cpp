#include "running/processors.hpp"

#include <algorithm>
#include <sched.h>
#include <unistd.h>

size_t number_of_processors() {
#ifdef __linux__
    cpu_set_t allowed;
    if (sched_getaffinity(0, sizeof allowed, &allowed) == 0)
        return static_cast<size_t>(std::max(CPU_COUNT(&allowed), 1));
#endif
    return static_cast<size_t>(std::max(sysconf(_SC_NPROCESSORS_ONLN), 1L));
}
