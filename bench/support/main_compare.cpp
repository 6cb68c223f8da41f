// Runs our rows on two builds of the library in turns:
//
//     kirvo_compare OLD.so NEW.so [--megapixels 12|1] [--turns N] [PATTERN]
//
// PATTERN is a regular expression that a row's name has to contain.
#include "support/lazy_work.hpp"
#include "support/pictures.hpp"
#include "support/two_libraries.hpp"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <malloc.h>
#include <regex>
#include <string>
#include <unistd.h>
#include <vector>

namespace kirvo_bench {

namespace {

struct Measured {
    std::string name;
    LazyWork work;
    double milliseconds[2] = {};
    double ratio = 0; // old over new
};

std::vector<Measured>& all_rows() {
    static std::vector<Measured> rows;
    return rows;
}

double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

// Processor time in milliseconds.
double now() {
    timespec time;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) * 1e-6;
}

double time_of(const Work& work, int runs) {
    const double start = now();
    for (int i = 0; i < runs; ++i)
        work();
    return (now() - start) / runs;
}

// Both libraries take short turns, each first in every second round. What is compared is the two
// turns of a round, between which the machine changes least.
void measure(Measured& row, int rounds) {
    constexpr double shortest_turn = 20;
    const Work* works[2];
    double once = 0;
    for (const int library : {0, 1}) {
        use_library(library);
        works[library] = &row.work.get();
        (*works[library])(); // the memory of all results has been used before
        once = time_of(*works[library], 1);
    }
    const int runs = std::max(1, static_cast<int>(shortest_turn / once));
    std::vector<double> times[2], ratios;
    for (int round = 0; round < rounds; ++round) {
        for (const int turn : {0, 1}) {
            const int library = (round + turn) % 2;
            use_library(library);
            times[library].push_back(time_of(*works[library], runs));
        }
        ratios.push_back(times[0].back() / times[1].back());
    }
    for (const int library : {0, 1})
        row.milliseconds[library] = median(times[library]);
    row.ratio = median(ratios);
}

void print(std::vector<const Measured*> rows) {
    std::sort(rows.begin(), rows.end(),
              [](const Measured* a, const Measured* b) { return a->ratio > b->ratio; });
    std::printf("%-42s %10s %10s %8s\n", "row", "old ms", "new ms", "old/new");
    for (const Measured* row : rows)
        std::printf("%-42s %10.3f %10.3f %8.3f\n", row->name.c_str(), row->milliseconds[0],
                    row->milliseconds[1], row->ratio);
    std::printf("\nold/new above 1: the new build is faster; the worst row is the last\n");
}

} // namespace

Row::Row(const char* name, std::function<Work()> prepare, std::function<double()>) {
    const std::string full = name, ours = "/ours";
    if (full.size() > ours.size() && full.ends_with(ours))
        all_rows().push_back(
            {full.substr(0, full.size() - ours.size()), LazyWork(std::move(prepare))});
}

} // namespace kirvo_bench

int main(int argc, char** argv) {
    using namespace kirvo_bench;
    if (argc < 3) {
        std::fprintf(stderr,
                     "kirvo_compare OLD.so NEW.so [--megapixels 12|1] [--turns N] [PATTERN]\n");
        return 2;
    }
    int rounds = 15;
    std::string pattern;
    for (int i = 3; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument == "--megapixels" && i + 1 < argc)
            set_photo_megapixels(std::atoi(argv[++i]));
        else if (argument == "--turns" && i + 1 < argc)
            rounds = std::max(1, std::atoi(argv[++i]));
        else
            pattern = argument;
    }
    mallopt(M_MMAP_MAX, 0); // used memory stays with the process
    mallopt(M_TRIM_THRESHOLD, INT_MAX);
    load_libraries(argv[1], argv[2]);
    const std::regex wanted(pattern);
    std::vector<const Measured*> measured;
    for (Measured& row : all_rows()) {
        if (!std::regex_search(row.name, wanted))
            continue;
        if (isatty(STDERR_FILENO))
            std::fprintf(stderr, "\r%-60s\r", row.name.c_str());
        measure(row, rounds);
        measured.push_back(&row);
    }
    print(measured);
    return measured.empty() ? 1 : 0;
}
