// Hostile and odd files through every export that reads one, and through the decoder as streams.
#include "safety/safety.hpp"
#include "support/world_files.hpp"

#include <algorithm>

using namespace kirvo_test;

namespace {

bool reads_files(const Export& what) {
    return std::any_of(what.parameters.begin(), what.parameters.end(),
                       [](const Parameter& one) { return one.kind == Kind::file_read; });
}

std::vector<const Export*> readers() {
    std::vector<const Export*> all = all_exports();
    std::erase_if(all, [](const Export* what) { return !reads_files(*what); });
    return all;
}

// Reads and changes what a reader has made, or has been given as such.
void use(Pool& pool) {
    for (HGLOBAL image : std::vector(pool.owned())) {
        uint32_t count = 0;
        int32_t status = 0;
        DibCountColors(image, &count);
        pool.take(IncreaseColor16M(image, &status));
    }
}

class FilesOfTheWorld : public SafetyTest {
  protected:
    static void TearDownTestSuite() {
        report("files of the world", {{"files", world_files().size()}, {"calls", calls}});
    }
};

class StreamsOfTheWorld : public testing::Test {};

} // namespace

TEST_P(FilesOfTheWorld, are_answered_as_documented) {
    ASSERT_GT(world_files().size(), 500u);
    for (const WorldFile& file : world_files()) {
        for (const int32_t index : {0, 1, -1}) {
            Pool pool;
            Call call = Plan{GetParam(), 24, 0}.prepare(pool, samples());
            call.argument("name").pointer = file.name.c_str();
            const bool has_index = GetParam()->find("index") != Export::none;
            if (has_index)
                call.argument("index") = {static_cast<uint64_t>(int64_t{index})};
            ASSERT_TRUE(check(call, file.name + ": "));
            use(pool);
            if (!has_index)
                break;
        }
    }
    expect_nothing_left();
}

INSTANTIATE_TEST_SUITE_P(Readers, FilesOfTheWorld, testing::ValuesIn(readers()), test_name);

TEST(StreamsOfTheWorld, decode_whole_and_in_pieces_or_are_refused) {
    for (const WorldFile& file : world_files()) {
        Pool pool;
        const auto size = static_cast<int32_t>(file.bytes.size());
        const HGLOBAL data = pool.add(file.bytes);
        int32_t error = 1;
        const HGLOBAL whole = JpgDecMainHGLOBAL(data, size, nullptr, nullptr, &error);
        pool.take(whole);
        ASSERT_EQ(whole != nullptr, error == KIRVO_OK) << file.name;
        ASSERT_LE(error, 0) << file.name;

        int32_t result = 0;
        HGLOBAL image = nullptr;
        constexpr size_t piece = 1000;
        for (size_t at = 0; result == 0 && at < file.bytes.size(); at += piece) {
            const auto from = file.bytes.begin() + static_cast<ptrdiff_t>(at);
            const auto to = from + std::min<ptrdiff_t>(piece, file.bytes.end() - from);
            const HGLOBAL part = pool.add({from, to});
            const auto bytes = static_cast<int32_t>(to - from);
            result =
                at == 0 ? JpgDecFirst(part, bytes, &image) : JpgDecNext(part, bytes, 0, &image);
        }
        for (int again = 0; result == 0 && again < 3; ++again)
            result = JpgDecNext(nullptr, 0, 1, &image);
        if (result == 1)
            pool.take(image);
        end_codec_operations();
        ASSERT_TRUE(result == 1 || result < 0) << file.name;
        use(pool);
    }
    discard_leftovers();
}
