// What fails inside: every allocation in turn, writing, every byte that may be cut off or lie.
#include "files/bmp_builder.hpp"
#include "files/deep_jpeg.hpp"

#include "memory.hpp"
#include "system.hpp"

#include <filesystem>
#include <fstream>

using namespace kirvo_test;

namespace {

// Lets every allocation of a call fail in turn. Without memory nothing is left behind; an answer of
// success is one whose result does not need what failed (a text, a note).
template<typename Call>
void fail_in_turn(Call call) {
    kirvo_files::count_allocations();
    ASSERT_EQ(call(), KIRVO_FILES_OK);
    const uint32_t all = kirvo_files::count_allocations();
    ASSERT_GT(all, 2u);
    for (uint32_t n = 1; n <= all; ++n) {
        kirvo_files::fail_allocation(n);
        const int32_t status = call();
        kirvo_files::fail_allocation(0);
        EXPECT_TRUE(status == KIRVO_FILES_OK || status == KIRVO_FILES_NO_MEMORY ||
                    status == KIRVO_FILES_UNSUPPORTED)
            << "allocation " << n << ": " << status;
    }
}

int32_t open_and_close(const Bytes& bytes, uint32_t flags) {
    const KirvoFilesOpenOptions options = {sizeof options, flags, 0, 0};
    HGLOBAL dib = nullptr;
    KirvoFile file = nullptr;
    const int32_t status = KirvoFilesOpenMemory(bytes.data(), static_cast<uint32_t>(bytes.size()),
                                                &options, &dib, &file);
    EXPECT_EQ(dib != nullptr, status == KIRVO_FILES_OK);
    if (dib != nullptr)
        GlobalFree(dib);
    KirvoFilesClose(file);
    return status;
}

std::vector<Bytes> samples() {
    std::vector<Bytes> all;
    const Picture colour(20, 12), alpha(20, 12, 32), grey(20, 12, 8);
    for (int32_t format = KIRVO_FILES_BMP; format <= KIRVO_FILES_WEBP; ++format)
        if ((KirvoFilesAbilities(format) & KIRVO_FILES_WRITES) != 0)
            for (HGLOBAL dib : {colour.dib, alpha.dib, grey.dib})
                all.push_back(
                    save(dib, as(format, KIRVO_FILES_WITH_ALPHA | KIRVO_FILES_RLE)).bytes);
    Bmp packed;
    packed.bits = 8;
    packed.compression = 1;
    packed.colours = 2;
    packed.palette = {0, 0xFFFFFF};
    packed.pixels = {5, 1, 0, 0, 0, 5, 1, 0, 1, 0, 1, 0, 0, 0, 5, 0, 0, 1};
    all.push_back(packed.file());
    all.push_back(DeepJpeg(20, 12, 3, 2, 2).write([](uint32_t i, uint32_t x, uint32_t y) {
        return i == 0 ? 100.0 * x + 50 * y : 2048.0;
    }));
    return all;
}

} // namespace

TEST(Faults, opening_survives_every_failing_allocation) {
    for (const Bytes& bytes : samples())
        for (uint32_t flags : {0u, static_cast<uint32_t>(KIRVO_FILES_KEEP_ALPHA)})
            fail_in_turn([&] { return open_and_close(bytes, flags); });
}

TEST(Faults, saving_survives_every_failing_allocation) {
    const Picture colour(20, 12), grey(20, 12, 8);
    const Bytes profile(3000, 7);
    KirvoFile source = nullptr;
    KirvoFilesSetData(&source, KIRVO_FILES_DATA_ICC, profile.data(), 3000);
    for (int32_t format = KIRVO_FILES_BMP; format <= KIRVO_FILES_WEBP; ++format)
        if ((KirvoFilesAbilities(format) & KIRVO_FILES_WRITES) != 0)
            for (HGLOBAL dib : {colour.dib, grey.dib})
                fail_in_turn([&] { return save(dib, as(format), source).status; });
    KirvoFilesClose(source);
}

TEST(Faults, a_full_disk_leaves_what_was_there_and_nothing_else) {
    const TempFolder folder;
    const std::string name = folder.write("x.bmp", std::string("as it was"));
    const Picture picture(20, 12);
    for (uint64_t after : {0, 1, 100, 700}) {
        kirvo_files::fail_writing(kirvo_files::WriteFault::disk_full, after);
        KirvoFile file = nullptr;
        EXPECT_EQ(KirvoFilesSave(name.c_str(), picture.dib, nullptr, nullptr, &file),
                  KIRVO_FILES_DISK_FULL);
        char words[300];
        KirvoFilesText(file, KIRVO_FILES_TEXT_REASON, 0, words, sizeof words);
        EXPECT_EQ(std::string(words).find(name), 0u);
        KirvoFilesClose(file);
        kirvo_files::fail_writing(kirvo_files::WriteFault::none, 0);
        std::ifstream now(name);
        EXPECT_EQ(std::string(std::istreambuf_iterator<char>(now), {}), "as it was");
        const auto list = std::filesystem::directory_iterator(folder.path(""));
        EXPECT_EQ(std::distance(begin(list), end(list)), 1);
    }
}

TEST(Faults, short_writes_are_gone_on_with) {
    const TempFolder folder;
    const Picture picture(20, 12);
    for (const char* title : {"x.bmp", "x.jpg", "x.tga"}) {
        kirvo_files::fail_writing(kirvo_files::WriteFault::short_write, 0);
        const std::string name = folder.path(title);
        EXPECT_EQ(KirvoFilesSave(name.c_str(), picture.dib, nullptr, nullptr, nullptr),
                  KIRVO_FILES_OK);
        kirvo_files::fail_writing(kirvo_files::WriteFault::none, 0);
        EXPECT_EQ(Opened(name).status, KIRVO_FILES_OK);
    }
}

TEST(Faults, cut_at_every_byte_and_with_every_header_byte_lying) {
    for (const Bytes& bytes : samples()) {
        for (size_t size = 0; size < bytes.size(); ++size)
            open_and_close(Bytes(bytes.begin(), bytes.begin() + static_cast<ptrdiff_t>(size)),
                           KIRVO_FILES_KEEP_GOING);
        for (size_t at = 0; at < bytes.size() && at < 160; ++at)
            for (uint8_t value : {0x00, 0x01, 0x7F, 0x80, 0xFF}) {
                Bytes lying = bytes;
                lying[at] = value;
                open_and_close(lying, KIRVO_FILES_KEEP_GOING | KIRVO_FILES_KEEP_ALPHA);
            }
    }
}
