// Runs the rows on Windows, where there is no Google Benchmark:
//
//     kirvo_bench [--megapixels 12|1|small] [PATTERN]
//
// Rows whose name the regular expression matches take turns, so that a busy moment of the machine
// hits all of them alike.
#include "support/lazy_work.hpp"
#include "support/pictures.hpp"
#include "support/table.hpp"

#include <cstdio>
#include <cstring>
#include <regex>
#include <windows.h>

namespace kirvo_bench {

namespace {

constexpr int repetitions = 5;
constexpr double least_milliseconds = 200; // of a repetition: the clock has coarse ticks

struct Measured {
    std::string name;
    LazyWork work;
    std::function<double()> megapixels;
};

std::vector<Measured>& all_rows() {
    static std::vector<Measured> rows;
    return rows;
}

// CPU time of this process in milliseconds.
double cpu_time() {
    FILETIME created, exited, kernel, user;
    GetProcessTimes(GetCurrentProcess(), &created, &exited, &kernel, &user);
    const auto milliseconds = [](const FILETIME& time) {
        return (time.dwHighDateTime * 4294967296.0 + time.dwLowDateTime) / 1e4;
    };
    return milliseconds(kernel) + milliseconds(user);
}

// Milliseconds of one run.
double measure(const Work& work) {
    work(); // so that either side's memory has been used before, whatever ran in between
    const double start = cpu_time();
    for (int runs = 1;; ++runs) {
        work();
        const double passed = cpu_time() - start;
        if (passed >= least_milliseconds)
            return passed / runs;
    }
}

} // namespace

Row::Row(const char* name, std::function<Work()> prepare, std::function<double()> megapixels) {
    all_rows().push_back({name, LazyWork(std::move(prepare)), std::move(megapixels)});
}

} // namespace kirvo_bench

int main(int argc, char** argv) {
    using namespace kirvo_bench;
    int first = 1;
    if (argc > 2 && std::strcmp(argv[1], "--megapixels") == 0) {
        if (!set_photo_size(argv[2])) {
            std::fprintf(stderr, "--megapixels 12, 1 or small\n");
            return 2;
        }
        first = 3;
    }
    const std::regex wanted(argc > first ? argv[first] : "");
    Table table;
    for (int i = 0; i < repetitions; ++i) {
        for (Measured& row : all_rows()) {
            if (std::regex_search(row.name, wanted))
                table.add(row.name, measure(row.work.get()), row.megapixels());
        }
    }
    table.print();
    return 0;
}
