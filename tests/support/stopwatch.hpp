// Time that work takes.
#pragma once

#include <algorithm>
#include <chrono>

#ifndef _WIN32
#include <ctime>
#endif

namespace kirvo_test {

// That of this process where the system tells it exactly, so that a busy machine does not count.
inline double milliseconds() {
#ifndef _WIN32
    timespec time;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) * 1e-6;
#else
    const std::chrono::duration<double, std::milli> time =
        std::chrono::steady_clock::now().time_since_epoch();
    return time.count();
#endif
}

// The shortest of a few runs, the last of which is the first that is short enough.
template<typename Work>
double milliseconds_of(Work work, int runs = 3, double enough = 0) {
    double shortest = 1e9;
    for (; runs != 0 && shortest > enough; --runs) {
        const double start = milliseconds();
        work();
        shortest = std::min(shortest, milliseconds() - start);
    }
    return shortest;
}

} // namespace kirvo_test
