// Files that fail their readers and writers: the stated code, every handle closed, nothing locked,
// and on the disk what had been written before.
#include "support/dib_builder.hpp"
#include "support/exports.hpp"
#include "support/file_calls.hpp"
#include "support/progress_recorder.hpp"
#include "support/temp_file.hpp"
#include "support/temp_folder.hpp"

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <set>

#ifdef _WIN32
#include <windows.h>
#else
#include <csignal>
#include <fcntl.h>
#include <sys/fsuid.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

using namespace kirvo_test;
namespace files = std::filesystem;

namespace {

// Finds what a test leaves open. What is opened once for good by a first call does not count.
class HandleCount : public testing::Test {
  protected:
    HandleCount() {
        const TempFolder folder;
        for (const FileReader& reader : file_readers())
            reader.read(folder.write(reader.title, reader.file).c_str());
        for (const FileWriter& writer : file_writers())
            writer.write(folder.path("written").c_str());
        before_ = open_handles();
    }
    ~HandleCount() override { EXPECT_EQ(open_handles(), before_); }

  private:
    int before_;
};

class FileReaders : public HandleCount, public testing::WithParamInterface<FileReader> {
  protected:
    FileReaders() { folder.write(companion_title, companion_text); }

    const FileReader& reader = GetParam();
    const TempFolder folder;
};

class FileWriters : public HandleCount, public testing::WithParamInterface<FileWriter> {
  protected:
    // What the writer writes when nothing is in its way.
    std::vector<uint8_t> whole_file() const {
        const TempFile file;
        EXPECT_EQ(writer.write(file.name()), KIRVO_OK);
        return file.read();
    }

    const FileWriter& writer = GetParam();
    const TempFolder folder;
};

std::vector<std::string> names_of_no_file(const TempFolder& folder) {
    return {folder.path("missing/file"), folder.path(std::string(300, 'n')),
            folder.path(std::string(5000, 'n')), folder.path("file/below"), ""};
}

} // namespace

TEST(FileCalls, are_all_exports_that_take_the_name_of_a_file) {
    std::set<std::string> expected{"PcdRead"}, here;
    for (const FileReader& reader : file_readers())
        expected.insert(reader.name);
    for (const FileWriter& writer : file_writers())
        expected.insert(std::string(writer.name).substr(0, std::string(writer.name).find("_of")));
    for (const Export& what : exports())
        for (const Parameter& parameter : what.parameters)
            if (parameter.kind == Kind::file_read || parameter.kind == Kind::file_written)
                here.insert(std::string(what.name));
    EXPECT_EQ(here, expected);
}

TEST_P(FileReaders, read_a_sound_file) {
    EXPECT_EQ(reader.read(folder.write(reader.title, reader.file).c_str()), reader.success);
}

TEST_P(FileReaders, answer_a_file_that_ends_early) {
    for (size_t bytes = 0; bytes <= reader.file.size(); ++bytes) {
        const auto cut = std::vector<uint8_t>(
            reader.file.begin(), reader.file.begin() + static_cast<std::ptrdiff_t>(bytes));
        const int32_t expected = reader.of_cut_file(bytes);
        EXPECT_EQ(reader.read(folder.write(reader.title, cut).c_str()),
                  expected == KIRVO_OK ? reader.success : expected)
            << bytes;
    }
}

TEST_P(FileReaders, answer_a_missing_file) {
    EXPECT_EQ(reader.read(folder.path(reader.title).c_str()), KIRVO_CANNOT_OPEN);
    for (const std::string& name : names_of_no_file(folder))
        EXPECT_EQ(reader.read(name.c_str()), reader.of_no_companion) << name;
    EXPECT_EQ(reader.read(nullptr), reader.of_no_companion);
}

TEST_P(FileReaders, answer_a_folder) {
    files::create_directory(folder.path(reader.title));
    EXPECT_EQ(reader.read(folder.path(reader.title).c_str()), KIRVO_CANNOT_OPEN);
}

TEST_P(FileWriters, write_where_they_may) { EXPECT_GT(whole_file().size(), 18u); }

TEST_P(FileWriters, replace_what_was_there) {
    const std::string name = folder.write("file", std::vector<uint8_t>(5000, 1));
    EXPECT_EQ(writer.write(name.c_str()), KIRVO_OK);
    EXPECT_EQ(files::file_size(name), whole_file().size());
}

TEST_P(FileWriters, answer_names_that_no_file_can_have) {
    folder.write("file", "");
    for (const std::string& name : names_of_no_file(folder)) {
        const int32_t expected = name.empty() ? writer.of_no_name : KIRVO_CANNOT_OPEN;
        EXPECT_EQ(writer.write(name.c_str()), expected) << name;
    }
    EXPECT_EQ(writer.write(nullptr), writer.of_no_name);
}

TEST_P(FileWriters, answer_a_folder) {
    EXPECT_EQ(writer.write(folder.path(".").c_str()), KIRVO_CANNOT_OPEN);
    EXPECT_EQ(writer.write(folder.path("").c_str()), KIRVO_CANNOT_OPEN);
}

// The reader has seen the size when the first message comes.
TEST_P(FileReaders, answer_a_file_that_shrinks_while_it_is_read) {
    const std::string name = folder.write(reader.title, reader.file);
    ProgressRecorder recorder;
    recorder.on_message = [&](const ProgressMessage&) {
        std::error_code refused;
        files::resize_file(name, reader.file.size() - 1, refused);
    };
    recorder.watch();
    const int32_t status = reader.read(name.c_str());
    if (recorder.messages().empty() || files::file_size(name) == reader.file.size())
        EXPECT_EQ(status, reader.success); // read at one go, or protected by the system
    else if (std::string(reader.title) == "file.jpg")
        EXPECT_EQ(status, reader.success); // was read before
    else
        EXPECT_EQ(status, KIRVO_READ_ERROR);
}

#ifndef _WIN32

TEST_P(FileReaders, answer_devices_at_once) {
    const auto read_by_name = [&](const char* name) {
        // By another name, so that there is a companion.
        const std::string link = folder.path(reader.title);
        files::create_symlink(name, link);
        const int32_t status = reader.read(link.c_str());
        files::remove(link);
        return status;
    };
    EXPECT_EQ(read_by_name("/dev/null"), reader.of_no_bytes);
    EXPECT_EQ(read_by_name("/dev/zero"), reader.of_zeros);
    ASSERT_EQ(mkfifo(folder.path("pipe").c_str(), 0600), 0);
    EXPECT_EQ(read_by_name(folder.path("pipe").c_str()), reader.of_no_bytes);
}

TEST_P(FileReaders, answer_a_file_that_may_not_be_read) {
    const std::string name = folder.write(reader.title, reader.file);
    files::permissions(name, files::perms::none);
    const auto user = setfsuid(65534);
    EXPECT_EQ(reader.read(name.c_str()), KIRVO_CANNOT_OPEN);
    setfsuid(static_cast<uid_t>(user));
}

TEST_P(FileWriters, answer_a_full_disk) { EXPECT_EQ(writer.write("/dev/full"), KIRVO_WRITE_ERROR); }

TEST_P(FileWriters, answer_a_size_limit_and_leave_what_fits) {
    const auto whole = whole_file();
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit before;
    getrlimit(RLIMIT_FSIZE, &before);
    for (size_t limit = 0; limit <= whole.size(); ++limit) {
        const TempFile file;
        const rlimit tight{limit, before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &tight);
        const int32_t status = writer.write(file.name());
        setrlimit(RLIMIT_FSIZE, &before);
        EXPECT_EQ(status, limit < whole.size() ? KIRVO_WRITE_ERROR : KIRVO_OK) << limit;
        const auto left = file.read();
        EXPECT_TRUE(left.size() <= limit && std::equal(left.begin(), left.end(), whole.begin()));
    }
    std::signal(SIGXFSZ, handler);
}

TEST_P(FileWriters, answer_a_folder_and_a_file_that_may_not_be_written) {
    const std::string there = folder.write("there", "x");
    files::permissions(there, files::perms::owner_read);
    files::permissions(folder.path(""), files::perms::owner_read | files::perms::owner_exec |
                                            files::perms::others_read | files::perms::others_exec);
    const auto user = setfsuid(65534);
    EXPECT_EQ(writer.write(folder.path("file").c_str()), KIRVO_CANNOT_OPEN);
    EXPECT_EQ(writer.write(there.c_str()), KIRVO_CANNOT_OPEN);
    setfsuid(static_cast<uid_t>(user));
    files::permissions(folder.path(""), files::perms::owner_all);
    EXPECT_FALSE(files::exists(folder.path("file")));
    EXPECT_EQ(files::file_size(there), 1u);
}

// Its size is not known, and a BMP file is read by its size.
TEST(Pipes, hold_no_bmp_file) {
    const TempFolder folder;
    const std::string name = folder.path("pipe");
    ASSERT_EQ(mkfifo(name.c_str(), 0600), 0);
    const int pipe = open(name.c_str(), O_RDWR);
    const std::vector<uint8_t>& bytes = file_readers().front().file;
    ASSERT_EQ(write(pipe, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    EXPECT_EQ(file_readers().front().read(name.c_str()), KIRVO_READ_ERROR);
    close(pipe);
}

TEST_P(FileWriters, answer_a_pipe_from_which_nobody_reads) {
    const std::string pipe = folder.path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(writer.write(pipe.c_str()), KIRVO_CANNOT_OPEN);
    const int reader = open(pipe.c_str(), O_RDONLY | O_NONBLOCK);
    EXPECT_EQ(writer.write(pipe.c_str()), KIRVO_OK);
    std::vector<uint8_t> got(65536);
    const ssize_t count = read(reader, got.data(), got.size());
    close(reader);
    got.resize(static_cast<size_t>(count));
    EXPECT_EQ(got, whole_file());
}

#else

namespace {

// A file that somebody else has open, sharing it as told.
class OpenElsewhere {
  public:
    OpenElsewhere(const std::string& name, DWORD access, DWORD share)
        : file_(CreateFileA(name.c_str(), access, share, nullptr, OPEN_EXISTING, 0, nullptr)) {
        EXPECT_NE(file_, INVALID_HANDLE_VALUE);
    }
    ~OpenElsewhere() { CloseHandle(file_); }

  private:
    HANDLE file_;
};

bool shares_with_writers(const FileReader& reader) {
    const std::string name = reader.name;
    return name == "Q0Read" || name == "RawRead";
}

} // namespace

TEST_P(FileReaders, answer_a_file_that_is_open_elsewhere) {
    const std::string name = folder.write(reader.title, reader.file);
    {
        const OpenElsewhere exclusively(name, GENERIC_READ, 0);
        EXPECT_EQ(reader.read(name.c_str()), KIRVO_CANNOT_OPEN);
    }
    {
        const OpenElsewhere for_writing(name, GENERIC_WRITE, FILE_SHARE_READ);
        EXPECT_EQ(reader.read(name.c_str()),
                  shares_with_writers(reader) ? reader.success : KIRVO_CANNOT_OPEN);
    }
    const OpenElsewhere for_reading(name, GENERIC_READ, FILE_SHARE_READ);
    EXPECT_EQ(reader.read(name.c_str()), reader.success);
}

TEST_P(FileReaders, read_a_file_that_must_not_be_written) {
    const std::string name = folder.write(reader.title, reader.file);
    SetFileAttributesA(name.c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(reader.read(name.c_str()), reader.success);
    SetFileAttributesA(name.c_str(), FILE_ATTRIBUTE_NORMAL);
}

// The function that opens RAW files need not open it.
TEST_P(FileReaders, answer_the_null_device) {
    const int32_t status = reader.read("NUL");
    if (std::string(reader.name) != "RawRead" || status != KIRVO_CANNOT_OPEN)
        EXPECT_EQ(status, reader.of_no_bytes);
}

TEST_P(FileWriters, write_to_the_null_device) { EXPECT_EQ(writer.write("NUL"), KIRVO_OK); }

TEST_P(FileWriters, answer_a_file_that_is_open_elsewhere) {
    const std::string name = folder.write("file", "x");
    for (const DWORD share : {DWORD{0}, DWORD{FILE_SHARE_READ}}) {
        const OpenElsewhere there(name, GENERIC_READ, share);
        EXPECT_EQ(writer.write(name.c_str()), KIRVO_CANNOT_OPEN);
    }
    EXPECT_EQ(files::file_size(name), 1u);
}

TEST_P(FileWriters, answer_a_file_that_must_not_be_written) {
    const std::string name = folder.write("file", "x");
    SetFileAttributesA(name.c_str(), FILE_ATTRIBUTE_READONLY);
    const HANDLE opened =
        CreateFileA(name.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    const bool everything_allowed = opened != INVALID_HANDLE_VALUE; // Wine to a super-user
    CloseHandle(opened);
    EXPECT_EQ(writer.write(name.c_str()), everything_allowed ? KIRVO_OK : KIRVO_CANNOT_OPEN);
    SetFileAttributesA(name.c_str(), FILE_ATTRIBUTE_NORMAL);
    EXPECT_EQ(files::file_size(name) == 1, !everything_allowed);
}

#endif

INSTANTIATE_TEST_SUITE_P(Files, FileReaders, testing::ValuesIn(file_readers()),
                         [](const auto& info) { return std::string(info.param.name); });
INSTANTIATE_TEST_SUITE_P(Files, FileWriters, testing::ValuesIn(file_writers()),
                         [](const auto& info) { return std::string(info.param.name); });
