// kirvo_soak [COUNT] [SEED]: COUNT (20000) mixed operations on random images in one process, sound
// calls and hostile ones, with progress messages, files and codec operations in pieces. What the
// process holds is looked at again and again: after the first part, which counts as warming up, it
// must not grow. Ends with 1 when it did, or when an answer was none that is documented.
#include "support/file_calls.hpp"
#include "support/memory_watch.hpp"
#include "support/progress_recorder.hpp"
#include "support/valid_calls.hpp"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <set>

#ifdef _WIN32
#include <psapi.h>
#include <windows.h>
#else
#include <malloc.h>
#endif

using namespace kirvo_test;

namespace {

constexpr long default_count = 20000;
constexpr int lines = 10; // of the table; the first of them is the warming up

// What the process holds; the system's own reserves may make the memory differ a little.
struct Holdings {
    long resident_kb, heap_kb;
    int handles;
    long objects; // of the windows and of drawing
    long blocks;
};
constexpr long slack_kb = 4096;

#ifdef _WIN32

Holdings holdings(const MemoryWatch& watch) {
    PROCESS_MEMORY_COUNTERS memory = {};
    K32GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof memory);
    const HANDLE self = GetCurrentProcess();
    const DWORD objects =
        GetGuiResources(self, GR_GDIOBJECTS) + GetGuiResources(self, GR_USEROBJECTS);
    return {static_cast<long>(memory.WorkingSetSize / 1024),
            static_cast<long>(memory.PagefileUsage / 1024), open_handles(),
            static_cast<long>(objects), static_cast<long>(watch.blocks())};
}

#else

// Without what the system may take back at any time.
long resident_kb() {
    std::ifstream memory("/proc/self/smaps_rollup");
    long all = 0, lazily_freed = 0, kb = 0;
    for (std::string word; memory >> word;) {
        if (word == "Rss:" && memory >> kb)
            all = kb;
        else if (word == "LazyFree:" && memory >> kb)
            lazily_freed = kb;
    }
    return all - lazily_freed;
}

Holdings holdings(const MemoryWatch& watch) {
    return {resident_kb(), static_cast<long>(mallinfo2().uordblks / 1024), open_handles(), 0,
            static_cast<long>(watch.blocks())};
}

#endif

class Soak {
  public:
    explicit Soak(uint64_t seed) : choices_(seed) {
        for (const Export& what : exports())
            for (const Plan& plan : plans_for(what, samples_, true))
                plans_.push_back(plan);
    }

    void run(long operations) {
        for (long done = 0; done < operations; ++done) {
            Pool pool;
            pool.files_read = samples_.all_files();
            pool.files_written = samples_.all_targets();
            pool.streams = {samples_.stream()};
            pool.windows = {recorder_.window()};
            if (choices_.once_in(3))
                recorder_.watch();
            if (choices_.once_in(4))
                make_hostile(pool);
            else
                make_sound(pool);
        }
        discard_leftovers();
        recorder_.watch();
        KirvoSetProcess(nullptr, 0, 0);
    }

    long calls = 0, worked = 0, problems = 0;
    std::set<std::string_view> names; // of exports that did their work

  private:
    void make_hostile(Pool& pool) {
        const auto all = exports();
        Call call(all[choices_.below(static_cast<uint32_t>(all.size()))], pool);
        call.draw(choices_);
        make(call);
    }

    // Every other time on random images, as a whole or as any part of them.
    void make_sound(Pool& pool) {
        const Plan& plan = choices_.pick(plans_);
        Call call = plan.prepare(pool, samples_);
        if (choices_.once_in(2)) {
            const auto parameters = plan.what->parameters;
            for (size_t i = 0; i < parameters.size(); ++i)
                if (parameters[i].kind == Kind::image)
                    call.argument(i).pointer = pool.add(random_image(plan.bits, choices_));
            for (size_t i = 0; i < parameters.size(); ++i)
                if (parameters[i].kind == Kind::extent)
                    call.draw(choices_, i);
        }
        make(call);
    }

    void make(Call& call) {
        const std::string text = call.text();
        call.make();
        ++calls;
        if (call.succeeded()) {
            ++worked;
            names.insert(call.what().name);
        }
        if (const std::string problem = call.problem(); !problem.empty()) {
            ++problems;
            std::printf("%s gives %d: %s\n", text.c_str(), call.status(), problem.c_str());
        }
    }

    const Samples samples_;
    RandomChoices choices_;
    ProgressRecorder recorder_;
    std::vector<Plan> plans_;
};

// Where valgrind or a sanitizer stands in for the system's heap, that tells of none in use, and
// what it keeps is no concern of ours.
bool own_heap(const Holdings& now) {
#ifdef __SANITIZE_ADDRESS__
    return false;
#else
    return now.heap_kb != 0;
#endif
}

bool grew(const Holdings& from, const Holdings& to) {
    const bool more_memory =
        to.resident_kb > from.resident_kb + slack_kb || to.heap_kb > from.heap_kb + slack_kb;
    return (own_heap(to) && more_memory) || to.handles > from.handles ||
           to.objects > from.objects || to.blocks > from.blocks;
}

} // namespace

int main(int argc, char** argv) {
    const long count = argc > 1 ? std::atol(argv[1]) : default_count;
    const uint64_t seed = argc > 2 ? std::strtoull(argv[2], nullptr, 0) : 1;
    const auto start = std::chrono::steady_clock::now();
    const MemoryWatch watch;
    Soak soak(seed);
    Holdings warm = {}, now = {};
    std::printf("%10s %12s %12s %8s %8s %8s\n", "operations", "resident KB", "in use KB", "handles",
                "objects", "blocks");
    for (int line = 1; line <= lines; ++line) {
        soak.run(count * line / lines - count * (line - 1) / lines);
        now = holdings(watch);
        if (line == 1)
            warm = now;
        std::printf("%10ld %12ld %12ld %8d %8ld %8ld\n", soak.calls, now.resident_kb, now.heap_kb,
                    now.handles, now.objects, now.blocks);
    }
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
    std::printf("%ld of them worked, of %zu exports; %ld answers were wrong; %.1f s; %s\n",
                soak.worked, soak.names.size(), soak.problems, time.count(),
                grew(warm, now) ? "what the process holds grew" : "flat");
    return soak.problems != 0 || grew(warm, now) ? 1 : 0;
}
