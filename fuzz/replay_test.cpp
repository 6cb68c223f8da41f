// Every file of fuzz/corpus and fuzz/regressions through its target, without a fuzzer; those of the
// corpus again with each of their allocations failing in turn.
#include "support.hpp"

#include "memory.hpp"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>

using namespace kirvo_fuzz;
namespace files = std::filesystem;

namespace {

std::vector<files::path> files_in(const files::path& folder) {
    std::vector<files::path> found;
    if (files::is_directory(folder))
        for (const auto& entry : files::directory_iterator(folder))
            found.push_back(entry.path());
    std::sort(found.begin(), found.end());
    return found;
}

using Replay = void (*)(const Target& target, const Bytes& bytes);

void as_it_is(const Target& target, const Bytes& bytes) {
    target.run_case(bytes.data(), bytes.size());
}

uint32_t count_allocations() {
    return kirvo::count_allocations() + kirvo_files::count_allocations();
}

void with_each_allocation_failing(const Target& target, const Bytes& bytes) {
    count_allocations();
    as_it_is(target, bytes);
    const uint32_t count = count_allocations();
    for (wanted_failure = 1; wanted_failure <= count; ++wanted_failure)
        as_it_is(target, bytes);
    wanted_failure = 0;
}

class Inputs : public testing::Test {
  public:
    Inputs(const Target& target, Replay replay, std::vector<files::path> inputs)
        : target_(target), replay_(replay), inputs_(std::move(inputs)) {}

    void TestBody() override {
        EXPECT_FALSE(inputs_.empty());
        for (const files::path& input : inputs_) {
            std::ifstream file(input, std::ios::binary);
            current_case = input.c_str();
            replay_(target_, {std::istreambuf_iterator<char>(file), {}});
        }
    }

  private:
    const Target& target_;
    const Replay replay_;
    const std::vector<files::path> inputs_;
};

void add_test(const char* suite, const std::string& name, const Target& target, Replay replay,
              const std::vector<files::path>& inputs) {
    testing::RegisterTest(suite, name.c_str(), nullptr, nullptr, __FILE__, __LINE__,
                          [&target, replay, inputs]() -> testing::Test* {
                              return new Inputs(target, replay, inputs);
                          });
}

} // namespace

// Two tests for each corpus, and one for each regression.
int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const files::path folder = KIRVO_FUZZ_FOLDER;
    for (const Target* target : Target::all()) {
        const std::vector<files::path> corpus = files_in(folder / "corpus" / target->name());
        add_test("FuzzCorpus", target->name(), *target, as_it_is, corpus);
        add_test("FuzzMemory", target->name(), *target, with_each_allocation_failing, corpus);
        for (const files::path& input : files_in(folder / "regressions" / target->name()))
            add_test("FuzzRegression", target->name() + ("/" + input.filename().string()), *target,
                     as_it_is, {input});
    }
    return RUN_ALL_TESTS();
}
