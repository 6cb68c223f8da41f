// Runs the rows and prints one table: medians beside each other, and their ratios.
#include "support/row.hpp"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <map>
#include <memory>
#include <opencv2/core/utility.hpp>
#include <string>
#include <vector>

namespace kirvo_bench {

namespace {

// Prepares at first use and keeps what was prepared.
class LazyWork {
  public:
    explicit LazyWork(std::function<Work()> prepare) : prepare_(std::move(prepare)) {}
    const Work& get() {
        if (!work_)
            work_ = prepare_();
        return work_;
    }

  private:
    std::function<Work()> prepare_;
    Work work_;
};

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    const size_t middle = values.size() / 2;
    return values.size() % 2 != 0 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

class Table : public benchmark::BenchmarkReporter {
  public:
    bool ReportContext(const Context&) override { return true; }

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Iteration)
                continue;
            if (run.error_occurred) {
                std::fprintf(stderr, "%s: %s\n", run.run_name.function_name.c_str(),
                             run.error_message.c_str());
                continue;
            }
            const std::string& name = run.run_name.function_name;
            const size_t slash = name.rfind('/');
            Row& row = rows_[name.substr(0, slash)][name.substr(slash + 1)];
            row.milliseconds.push_back(run.GetAdjustedRealTime());
            row.megapixels = run.counters.at("MP").value;
        }
    }

    void Finalize() override {
        std::printf("%-28s %-16s %10s %10s %10s\n", "operation", "library", "median ms", "MP/s",
                    "ratio");
        for (const auto& [operation, libraries] : rows_) {
            const auto ours = libraries.find("ours");
            if (ours != libraries.end())
                print(operation, "ours", ours->second, 0);
            for (const auto& [library, row] : libraries)
                if (library != "ours")
                    print(operation, library, row,
                          ours == libraries.end() ? 0 : median(ours->second.milliseconds));
        }
        std::printf("\nratio: time of the peer / our time\n");
    }

  private:
    struct Row {
        std::vector<double> milliseconds;
        double megapixels = 0;
    };

    static void print(const std::string& operation, const std::string& library, const Row& row,
                      double ours) {
        const double time = median(row.milliseconds);
        std::printf("%-28s %-16s %10.2f %10.0f", operation.c_str(), library.c_str(), time,
                    row.megapixels / time * 1000);
        if (ours > 0)
            std::printf(" %9.2fx", time / ours);
        std::printf("\n");
    }

    std::map<std::string, std::map<std::string, Row>> rows_;
};

} // namespace

Row::Row(const char* name, std::function<Work()> prepare, double megapixels) {
    auto lazy = std::make_shared<LazyWork>(std::move(prepare));
    benchmark::RegisterBenchmark(name, [lazy, megapixels](benchmark::State& state) {
        const Work& work = lazy->get();
        work(); // so that either side's memory has been used before, whatever ran in between
        for (auto _ : state)
            work();
        state.counters["MP"] = megapixels;
    })->Unit(benchmark::kMillisecond);
}

} // namespace kirvo_bench

int main(int argc, char** argv) {
    // The library works in the caller's thread, so its peers do too.
    cv::setNumThreads(1);
    // Interleaved repetitions, so that a busy moment of the machine hits all rows alike.
    std::vector<char*> arguments{argv[0]};
    std::string defaults[] = {"--benchmark_enable_random_interleaving=true",
                              "--benchmark_repetitions=9", "--benchmark_min_time=0.05"};
    for (std::string& argument : defaults)
        arguments.push_back(argument.data());
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    arguments.push_back(nullptr);
    int count = static_cast<int>(arguments.size()) - 1;
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data()))
        return 2;
    kirvo_bench::Table table;
    benchmark::RunSpecifiedBenchmarks(&table);
    benchmark::Shutdown();
    return 0;
}
