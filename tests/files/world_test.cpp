// Hostile and odd files through KirvoFiles, in the ways in which programs open them, the viewer among
// them.
#include "files/opened.hpp"
#include "support/world_files.hpp"

#include <ctime>

using namespace kirvo_test;

namespace {

constexpr double longest_seconds = 5; // of the processor, under a sanitizer too

class FilesOfTheWorld : public testing::TestWithParam<uint32_t> {};

} // namespace

TEST_P(FilesOfTheWorld, open_or_are_refused_in_words) {
    for (const WorldFile& world : world_files()) {
        const std::clock_t before = std::clock();
        const Opened opened(world.name, GetParam());
        if (opened.status == KIRVO_FILES_OK) {
            EXPECT_EQ(save(opened.dib, as(KIRVO_FILES_BMP), opened.file).status, KIRVO_FILES_OK)
                << world.name;
        } else {
            EXPECT_NE(opened.text(KIRVO_FILES_TEXT_REASON), "") << world.name;
        }
        const double seconds = static_cast<double>(std::clock() - before) / CLOCKS_PER_SEC;
        EXPECT_LT(seconds, longest_seconds) << world.name;
    }
}

// The viewer keeps going.
INSTANTIATE_TEST_SUITE_P(Flags, FilesOfTheWorld,
                         testing::Values(0, KIRVO_FILES_KEEP_GOING,
                                         KIRVO_FILES_KEEP_GOING | KIRVO_FILES_KEEP_ALPHA));
