// Times of kernels on data that fits into the first cache.
#include "kernels/harness.hpp"

#include "support/stopwatch.hpp"

#include <cstdio>

namespace kirvo_test {

namespace {

double shortest; // milliseconds of one call

void measure_call(const std::function<void()>& call) {
    size_t calls = 1;
    double time = 0;
    const auto repeat = [&] {
        const double start = milliseconds();
        for (size_t i = 0; i < calls; ++i)
            call();
        return milliseconds() - start;
    };
    constexpr double long_enough = 2;
    while ((time = repeat()) < long_enough)
        calls *= 2;
    for (int i = 0; i < 7; ++i)
        time = std::min(time, repeat());
    shortest = time / static_cast<double>(calls);
}

double nanoseconds_an_item(const AnyCase& kernel, const Level& level) {
    constexpr size_t usual_count = 2048;
    Trial trial({.count = std::min(usual_count, kernel.most)}, 1, measure_call);
    kernel.call(level.table, trial);
    return shortest * 1e6 / static_cast<double>(trial.items);
}

} // namespace

void measure(const std::string& word) {
    std::printf("%-22s%-10s", "ns", "for each");
    for (const Level& level : levels())
        std::printf("%9s", level.name);
    std::printf("   times as fast as scalar\n");
    for (const AnyCase& kernel : all_cases()) {
        if (kernel.name.find(word) == std::string::npos)
            continue;
        std::printf("%-22s%-10s", kernel.name.c_str(), kernel.unit);
        std::vector<double> times;
        for (const Level& level : levels()) {
            times.push_back(nanoseconds_an_item(kernel, level));
            std::printf("%9.3f", times.back());
            std::fflush(stdout);
        }
        std::printf("  ");
        for (size_t i = 1; i < times.size(); ++i)
            std::printf(" %.1f", times[0] / times[i]);
        std::printf("\n");
    }
}

} // namespace kirvo_test
