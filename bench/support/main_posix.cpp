// Runs the rows with Google Benchmark: kirvo_bench [--megapixels 12|1|small] [ITS ARGUMENTS]
#include "support/lazy_work.hpp"
#include "support/pictures.hpp"
#include "support/table.hpp"

#include <benchmark/benchmark.h>
#include <climits>
#include <cstdio>
#include <cstring>
#include <malloc.h>
#include <memory>
#include <opencv2/core/utility.hpp>

namespace kirvo_bench {

namespace {

class Reporter : public benchmark::BenchmarkReporter {
  public:
    bool ReportContext(const Context&) override { return true; }

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            const char* name = run.run_name.function_name.c_str();
            if (run.error_occurred)
                std::fprintf(stderr, "%s: %s\n", name, run.error_message.c_str());
            else if (run.run_type == Run::RT_Iteration)
                table_.add(name, run.GetAdjustedCPUTime(), run.counters.at("MP").value);
        }
    }

    void Finalize() override { table_.print(); }

  private:
    Table table_;
};

} // namespace

Row::Row(const char* name, std::function<Work()> prepare, std::function<double()> megapixels) {
    auto lazy = std::make_shared<LazyWork>(std::move(prepare));
    benchmark::RegisterBenchmark(name, [lazy, megapixels](benchmark::State& state) {
        const Work& work = lazy->get();
        work(); // so that either side's memory has been used before, whatever ran in between
        for (auto _ : state)
            work();
        state.counters["MP"] = megapixels();
    })->Unit(benchmark::kMillisecond);
}

} // namespace kirvo_bench

int main(int argc, char** argv) {
    // The library works in the caller's thread, so its peers do too.
    cv::setNumThreads(1);
    // Results go to memory that has been used before, as ours do: with an allocator that asks the
    // system anew for each picture, fresh pages would take most of the peers' time.
    mallopt(M_MMAP_MAX, 0);
    mallopt(M_TRIM_THRESHOLD, INT_MAX);
    if (argc > 2 && std::strcmp(argv[1], "--megapixels") == 0) {
        if (!kirvo_bench::set_photo_size(argv[2])) {
            std::fprintf(stderr, "--megapixels 12, 1 or small\n");
            return 2;
        }
        argv[2] = argv[0];
        argv += 2;
        argc -= 2;
    }
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
    kirvo_bench::Reporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
