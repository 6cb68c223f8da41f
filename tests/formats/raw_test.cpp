// RAW files.
#include "formats/reader.hpp"

#include <filesystem>

#ifndef _WIN32
#include <sys/stat.h>
#include <unistd.h>
#endif

using namespace kirvo_test;

namespace {

Bytes raw_header(int32_t width, int32_t height, int32_t palette = 0) {
    Bytes header = {'m', 'h', 'w', 'a', 'n', 'h', 0, 4};
    for (const int32_t value : {width, height, palette}) {
        header.push_back(static_cast<uint8_t>(value >> 8));
        header.push_back(static_cast<uint8_t>(value));
    }
    header.resize(32);
    return header;
}

Bytes raw(int32_t width, int32_t height) {
    Bytes file = raw_header(width, height);
    const Bytes rows = rgb_rows(width, height);
    file.insert(file.end(), rows.begin(), rows.end());
    return file;
}

Read read_bytes(const Bytes& bytes) {
    const TempFile file(".raw", bytes);
    Read r = read_raw(file.name());
    EXPECT_FALSE(is_open(file.name()));
    return r;
}

} // namespace

TEST(RawRead, reads_red_green_blue_rows_from_the_top_down) {
    for (int32_t width = 1; width <= 40; ++width) {
        const Read r = read_bytes(raw(width, 3));
        expect_picture(r, width, 3);
        EXPECT_EQ(r.bits, 24u);
    }
}

TEST(RawRead, reads_narrow_pictures_of_any_height) {
    for (const int32_t width : {1, 2, 3, 600, 682, 683, 1365, 1366})
        for (const int32_t height : {1, 2, 5, 6, 7, 682, 683, 1364, 1365, 1366, 2731})
            if (width < 4 || height < 8)
                expect_picture(read_bytes(raw(width, height)), width, height);
}

TEST(RawRead, takes_sizes_with_the_high_byte_first) {
    expect_picture(read_bytes(raw(0x102, 2)), 0x102, 2);
    expect_picture(read_bytes(raw(2, 0x103)), 2, 0x103);
}

TEST(RawRead, ignores_the_version_and_the_rest_of_the_header) {
    Bytes bytes = raw(3, 2);
    for (size_t i = 0; i < 32; ++i)
        if (i == 6 || i == 7 || i >= 14)
            bytes[i] = 0xEE;
    expect_picture(read_bytes(bytes), 3, 2);
}

TEST(RawRead, ignores_what_follows_the_pixels) {
    Bytes bytes = raw(3, 2);
    bytes.insert(bytes.end(), 7, 0xEE);
    expect_picture(read_bytes(bytes), 3, 2);
}

TEST(RawRead, wants_every_byte_of_the_magic) {
    for (size_t i = 0; i < 6; ++i) {
        Bytes bytes = raw(3, 2);
        bytes[i] ^= 0x20;
        expect_failure(read_bytes(bytes), KIRVO_NOT_RAW);
    }
}

TEST(RawRead, wants_no_palette) {
    for (const int32_t palette : {1, 0x100, 0xFFFF}) {
        Bytes bytes = raw(3, 2);
        const Bytes header = raw_header(3, 2, palette);
        std::copy(header.begin(), header.end(), bytes.begin());
        expect_failure(read_bytes(bytes), KIRVO_RAW_PALETTE);
    }
}

TEST(RawRead, tells_magic_before_palette_before_length) {
    Bytes all_wrong = raw_header(9, 9, 1);
    expect_failure(read_bytes(all_wrong), KIRVO_RAW_PALETTE);
    all_wrong[0] = 'x';
    expect_failure(read_bytes(all_wrong), KIRVO_NOT_RAW);
}

TEST(RawRead, tells_a_file_cut_short_anywhere) {
    const Bytes whole = raw(3, 2);
    for (size_t length = 0; length < whole.size(); ++length)
        expect_failure(read_bytes(Bytes(whole.begin(), whole.begin() + ptrdiff_t(length))),
                       length < 32 ? KIRVO_READ_ERROR : KIRVO_NOT_RAW);
}

TEST(RawRead, holds_the_largest_size_against_the_file) {
    expect_failure(read_bytes(raw_header(65535, 65535)), KIRVO_NOT_RAW);
    expect_failure(read_bytes(raw_header(37838, 37838)), KIRVO_NOT_RAW);
}

TEST(RawRead, has_no_memory_for_a_size_of_0) {
    for (const auto& header : {raw_header(0, 0), raw_header(0, 7), raw_header(7, 0)})
        expect_failure(read_bytes(header), KIRVO_NO_MEMORY);
}

TEST(RawRead, tells_a_file_that_cannot_be_opened) {
    for (const std::string& name : impossible_names(".raw"))
        expect_failure(read_raw(name), KIRVO_CANNOT_OPEN);
    expect_failure(read_raw(temp_folder()), KIRVO_CANNOT_OPEN);
    int32_t status = 99;
    EXPECT_EQ(RawRead(nullptr, nullptr, nullptr, nullptr, &status), nullptr);
    EXPECT_EQ(status, KIRVO_CANNOT_OPEN);
}

TEST(RawRead, takes_null_out_pointers) {
    const TempFile file(".raw", raw(3, 2));
    const Dib dib(RawRead(file.name(), nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(dib.width(), 3);
    EXPECT_EQ(RawRead(nullptr, nullptr, nullptr, nullptr, nullptr), nullptr);
}

TEST(RawRead, sends_progress_by_rows_and_switches_it_off) {
    ProgressRecorder recorder;
    for (const int32_t height : {1, 7, 21, 200}) {
        const TempFile file(".raw", raw(2, height));
        recorder.watch();
        EXPECT_EQ(read_raw(file.name()).status, KIRVO_OK);
        EXPECT_EQ(recorder.percents(), single_pass_percents(height));
        const size_t sent = recorder.messages().size();
        EXPECT_EQ(read_raw(file.name()).status, KIRVO_OK);
        EXPECT_EQ(recorder.messages().size(), sent);
    }
}

TEST(RawRead, falls_silent_when_a_handler_switches_progress_off) {
    const TempFile file(".raw", raw(2, 20));
    ProgressRecorder recorder;
    recorder.on_message = [](const ProgressMessage& message) {
        if (message.percent == 20)
            KirvoSetProcess(nullptr, 0, 0);
    };
    recorder.watch();
    expect_picture(read_raw(file.name()), 2, 20);
    EXPECT_EQ(recorder.percents(), (std::vector{0, 5, 10, 15, 20}));
}

TEST(RawRead, tells_a_file_that_shrinks_while_it_is_read) {
    const TempFile file(".raw", raw(100, 100));
    ProgressRecorder recorder;
    recorder.on_message = [&](const ProgressMessage& message) {
        if (message.percent == 0)
            std::filesystem::resize_file(file.name(), 32 + 299);
    };
    recorder.watch();
    expect_failure(read_raw(file.name()), KIRVO_READ_ERROR);
    EXPECT_EQ(recorder.percents(), (std::vector{0}));
    EXPECT_FALSE(is_open(file.name()));
}

TEST(RawRead, reads_no_row_before_its_message) {
    for (const int32_t width : {1, 100}) {
        const TempFile file(".raw", raw(width, 100));
        ProgressRecorder recorder;
        recorder.on_message = [&](const ProgressMessage& message) {
            if (message.percent == 50) // the row of the message is there, the next is not
                std::filesystem::resize_file(file.name(),
                                             static_cast<uintmax_t>(32 + width * 3 * 51));
        };
        recorder.watch();
        expect_failure(read_raw(file.name()), KIRVO_READ_ERROR);
        EXPECT_EQ(recorder.percents(), (std::vector{0, 5, 10, 15, 20, 25, 30, 35, 40, 45, 50}));
    }
}

#ifdef _WIN32

namespace {

class Writer { // has the file open for writing and lets others do the same
  public:
    explicit Writer(const TempFile& file)
        : handle_(CreateFileA(file.name(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                              nullptr, OPEN_EXISTING, 0, nullptr)) {
        EXPECT_NE(handle_, INVALID_HANDLE_VALUE);
    }
    ~Writer() { CloseHandle(handle_); }

  private:
    HANDLE handle_;
};

} // namespace

TEST(Sharing, raw_files_may_be_open_for_writing_elsewhere_and_others_may_not) {
    const TempFile file(".raw", raw(3, 2));
    const Writer writer(file);
    expect_picture(read_raw(file.name()), 3, 2);
    EXPECT_EQ(read_targa(file.name()).status, KIRVO_CANNOT_OPEN);
    EXPECT_EQ(IcoGetInfo(file.name(), nullptr, 0), KIRVO_CANNOT_OPEN);
}

TEST(RawRead, takes_paths_of_up_to_127_characters) {
    const TempFolder folder;
    const size_t used = folder.path("").size();
    for (const size_t length : {126, 127, 128, 200}) {
        const std::string name = folder.write(std::string(length - used, 'r'), raw(3, 2));
        ASSERT_EQ(name.size(), length);
        EXPECT_EQ(read_raw(name).status, length <= 127 ? KIRVO_OK : KIRVO_CANNOT_OPEN) << length;
    }
}

#else

TEST(Permissions, an_unreadable_file_cannot_be_opened) {
    const TempFolder folder;
    const std::string name = folder.write("p.q0", raw(3, 2));
    folder.write("p.IPR", "1 1");
    chmod(name.c_str(), 0);
    const bool was_root = geteuid() == 0;
    ASSERT_TRUE(!was_root || seteuid(65534) == 0);
    const int32_t statuses[] = {read_raw(name).status, read_q0(name).status,
                                read_targa(name).status, IcoGetInfo(name.c_str(), nullptr, 0)};
    ASSERT_TRUE(!was_root || seteuid(0) == 0);
    for (const int32_t status : statuses)
        EXPECT_EQ(status, KIRVO_CANNOT_OPEN);
}

TEST(RawRead, tells_a_file_that_opens_but_cannot_be_read) {
    expect_failure(read_raw("/proc/self/mem"), KIRVO_READ_ERROR);
}

#endif
