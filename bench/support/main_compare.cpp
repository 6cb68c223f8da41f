// Runs our rows on two builds of the library in turns:
//
//     kirvo_compare OLD.so NEW.so [--megapixels 12|1|small] [--rounds N] [PATTERN]
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
#include <sys/wait.h>
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

struct Round {
    double milliseconds[2];
};

// The libraries take short turns, each first in every second round.
std::vector<Round> rounds_of(LazyWork& row, int count, int first) {
    constexpr double shortest_turn = 10;
    double once = 0;
    for (const int library : {first, 1 - first}) {
        use_library(library);
        const Work& work = row.get();
        work(); // the memory of all results has been used before
        once = time_of(work, 1);
    }
    const int runs = std::max(1, static_cast<int>(shortest_turn / once));
    std::vector<Round> rounds(static_cast<size_t>(count));
    for (Round& round : rounds) {
        for (const int library : {first, 1 - first}) {
            use_library(library);
            round.milliseconds[library] = time_of(row.get(), runs);
        }
        first = 1 - first;
    }
    return rounds;
}

[[noreturn]] void give_up(const char* what) {
    std::fprintf(stderr, "%s\n", what);
    std::exit(1);
}

// In a process of its own, whose blocks lie elsewhere in the machine's memory than those of the
// next: where they lie is a matter of luck and changes times by several per cent.
void add_session(std::vector<Round>& rounds, LazyWork& row, int count, int first) {
    int ends[2];
    if (pipe(ends) != 0)
        give_up("no pipe");
    const pid_t child = fork();
    if (child == 0) {
        const std::vector<Round> own = rounds_of(row, count, first);
        const size_t bytes = own.size() * sizeof(Round);
        _exit(write(ends[1], own.data(), bytes) == static_cast<ssize_t>(bytes) ? 0 : 1);
    }
    close(ends[1]);
    Round round;
    while (read(ends[0], &round, sizeof round) == static_cast<ssize_t>(sizeof round))
        rounds.push_back(round);
    close(ends[0]);
    int status;
    if (child < 0 || waitpid(child, &status, 0) != child || status != 0)
        give_up("a row ended early");
}

// What is compared is the two turns of a round, between which the machine changes least.
void measure(Measured& row, int rounds_each) {
    constexpr int sessions = 6;
    std::vector<Round> rounds;
    for (int i = 0; i < sessions; ++i)
        add_session(rounds, row.work, rounds_each, i % 2);
    std::vector<double> times[2], ratios;
    for (const Round& round : rounds) {
        for (const int library : {0, 1})
            times[library].push_back(round.milliseconds[library]);
        ratios.push_back(round.milliseconds[0] / round.milliseconds[1]);
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

struct Options {
    const char *old_library, *new_library;
    int rounds = 6; // of each process
    std::regex wanted = std::regex("");
};

[[noreturn]] void explain() {
    std::fprintf(stderr,
                 "kirvo_compare OLD.so NEW.so [--megapixels 12|1|small] [--rounds N] [PATTERN]\n");
    std::exit(2);
}

int number(const char* text) {
    char* end;
    const long value = std::strtol(text, &end, 10);
    if (*end != 0 || value < 1 || value > 1000)
        explain();
    return static_cast<int>(value);
}

std::regex regular_expression(const std::string& text) {
    try {
        return std::regex(text);
    } catch (const std::regex_error&) {
        give_up(("not a regular expression: " + text).c_str());
    }
}

Options options_of(int argc, char** argv) {
    if (argc < 3)
        explain();
    Options options = {argv[1], argv[2]};
    for (int i = 3; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument == "--megapixels" && i + 1 < argc) {
            if (!set_photo_size(argv[++i]))
                explain();
        } else if (argument == "--rounds" && i + 1 < argc) {
            options.rounds = number(argv[++i]);
        } else if (argument.starts_with("-")) {
            explain();
        } else {
            options.wanted = regular_expression(argument);
        }
    }
    return options;
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
    const Options options = options_of(argc, argv);
    mallopt(M_MMAP_MAX, 0); // used memory stays with the process
    mallopt(M_TRIM_THRESHOLD, INT_MAX);
    load_libraries(options.old_library, options.new_library);
    photo_bgr(); // which all processes share
    std::vector<const Measured*> measured;
    for (Measured& row : all_rows()) {
        if (!std::regex_search(row.name, options.wanted))
            continue;
        if (isatty(STDERR_FILENO))
            std::fprintf(stderr, "\r%-60s\r", row.name.c_str());
        measure(row, options.rounds);
        measured.push_back(&row);
    }
    if (measured.empty())
        give_up("no row has such a name");
    print(measured);
    return 0;
}
