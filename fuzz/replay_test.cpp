// Every file of fuzz/corpus and fuzz/regressions through its target, without a fuzzer.
#include "support.hpp"

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

class Replay : public testing::Test {
  public:
    Replay(const Target& target, std::vector<files::path> inputs)
        : target_(target), inputs_(std::move(inputs)) {}

    void TestBody() override {
        EXPECT_FALSE(inputs_.empty());
        for (const files::path& input : inputs_) {
            std::ifstream file(input, std::ios::binary);
            const Bytes bytes{std::istreambuf_iterator<char>(file), {}};
            current_case = input.c_str();
            target_.run_case(bytes.data(), bytes.size());
        }
    }

  private:
    const Target& target_;
    std::vector<files::path> inputs_;
};

void add_test(const char* suite, const std::string& name, const Target& target,
              const std::vector<files::path>& inputs) {
    testing::RegisterTest(
        suite, name.c_str(), nullptr, nullptr, __FILE__, __LINE__,
        [&target, inputs]() -> testing::Test* { return new Replay(target, inputs); });
}

} // namespace

// One test for each corpus, and one for each regression.
int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const files::path folder = KIRVO_FUZZ_FOLDER;
    for (const Target* target : Target::all()) {
        add_test("FuzzCorpus", target->name(), *target,
                 files_in(folder / "corpus" / target->name()));
        for (const files::path& input : files_in(folder / "regressions" / target->name()))
            add_test("FuzzRegression", target->name() + ("/" + input.filename().string()), *target,
                     {input});
    }
    return RUN_ALL_TESTS();
}
