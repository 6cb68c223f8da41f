// Reading and writing when the system's calls fail, at every byte of a file: the calls are replaced
// by ones that do as told for one file.
#include "support/dib_builder.hpp"
#include "support/file_calls.hpp"
#include "support/temp_file.hpp"
#include "support/temp_folder.hpp"

#include <gtest/gtest.h>

#ifndef _WIN32

#include <cerrno>
#include <cstdint>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

using namespace kirvo_test;

namespace {

struct Faults {
    ino_t file = 0;                 // which file
    int64_t last_byte = INT64_MAX;  // no byte from here on can be read or written
    int error = 0;                  // the error of that; 0: none, there is just nothing
    size_t most_at_once = SIZE_MAX; // bytes
    bool interrupted = false;       // before every call that goes well
    bool interrupt_next = false;
    bool stat_fails = false, close_fails = false;
    int injected = 0;
};

Faults faults;

bool meant(int file) {
    struct stat info;
    return faults.file != 0 &&
           syscall(SYS_newfstatat, file, "", &info, 0x1000 /* AT_EMPTY_PATH */) == 0 &&
           info.st_ino == faults.file;
}

// How many bytes may be transferred now; -1 with errno set for a failure.
ssize_t allowed(int file, size_t count) {
    if (faults.interrupted && (faults.interrupt_next = !faults.interrupt_next)) {
        errno = EINTR;
        return -1;
    }
    const int64_t left = faults.last_byte - lseek(file, 0, SEEK_CUR);
    if (left <= 0 && count != 0) {
        ++faults.injected;
        errno = faults.error;
        return faults.error != 0 ? -1 : 0;
    }
    return static_cast<ssize_t>(std::min({count, faults.most_at_once, static_cast<size_t>(left)}));
}

} // namespace

extern "C" ssize_t read(int file, void* bytes, size_t count) {
    if (meant(file)) {
        const ssize_t some = allowed(file, count);
        if (some <= 0)
            return some;
        count = static_cast<size_t>(some);
    }
    return syscall(SYS_read, file, bytes, count);
}

extern "C" ssize_t write(int file, const void* bytes, size_t count) {
    if (meant(file)) {
        const ssize_t some = allowed(file, count);
        if (some <= 0)
            return some;
        count = static_cast<size_t>(some);
    }
    return syscall(SYS_write, file, bytes, count);
}

extern "C" int close(int file) {
    const bool fails = faults.close_fails && meant(file);
    const auto result = static_cast<int>(syscall(SYS_close, file));
    if (!fails)
        return result;
    ++faults.injected;
    errno = ENOSPC;
    return -1;
}

extern "C" int fstat(int file, struct stat* info) noexcept {
    if (faults.stat_fails && meant(file)) {
        ++faults.injected;
        errno = EIO;
        return -1;
    }
    return static_cast<int>(syscall(SYS_fstat, file, info));
}

namespace {

ino_t file_number(const std::string& name) {
    struct stat info;
    EXPECT_EQ(stat(name.c_str(), &info), 0);
    return info.st_ino;
}

class Faulty : public testing::Test {
  protected:
    ~Faulty() override {
        faults = {};
        EXPECT_EQ(open_handles(), before_);
    }

  private:
    const int before_ = open_handles();
};

class FaultyReads : public Faulty, public testing::WithParamInterface<FileReader> {
  protected:
    FaultyReads() { folder.write(companion_title, companion_text); }

    // Reads with these faults at byte after byte.
    void read_up_to_each_byte(int error) {
        for (size_t bytes = 0; bytes <= reader.file.size(); ++bytes) {
            faults = {.file = number, .last_byte = static_cast<int64_t>(bytes), .error = error};
            const int32_t expected = reader.of_failing_read(bytes);
            EXPECT_EQ(reader.read(name.c_str()), expected == 0 ? reader.success : expected)
                << bytes;
        }
    }

    const FileReader& reader = GetParam();
    const TempFolder folder;
    const std::string name = folder.write(reader.title, reader.file);
    const ino_t number = file_number(name);
};

class FaultyWrites : public Faulty, public testing::WithParamInterface<FileWriter> {
  protected:
    FaultyWrites() {
        EXPECT_EQ(writer.write(file.name()), KIRVO_OK);
        whole = file.read();
        number = file_number(file.name());
    }

    const FileWriter& writer = GetParam();
    const TempFile file;
    std::vector<uint8_t> whole;
    ino_t number;
};

} // namespace

TEST_P(FaultyReads, of_a_file_that_has_shrunk_to_each_size) { read_up_to_each_byte(0); }

TEST_P(FaultyReads, of_a_disk_with_an_error_at_each_byte) { read_up_to_each_byte(EIO); }

TEST_P(FaultyReads, in_small_pieces_and_interrupted) {
    for (const size_t piece : {1, 2, 7}) {
        faults = {.file = number, .most_at_once = piece, .interrupted = true};
        EXPECT_EQ(reader.read(name.c_str()), reader.success);
    }
}

TEST_P(FaultyReads, of_a_file_that_the_system_does_not_describe) {
    faults = {.file = number, .stat_fails = true};
    EXPECT_EQ(reader.read(name.c_str()), KIRVO_CANNOT_OPEN);
    EXPECT_GT(faults.injected, 0);
}

TEST(FaultyReadsOfCompanions, up_to_each_byte) {
    const TempFolder folder;
    const std::string companion = folder.write(companion_title, companion_text);
    const std::string name = folder.write("file.q0", std::vector<uint8_t>(18));
    uint32_t width, height, bits;
    for (int64_t bytes = 0; bytes <= 4; ++bytes)
        for (const int error : {0, EIO}) {
            faults = {.file = file_number(companion), .last_byte = bytes, .error = error};
            int32_t status = 1;
            const HGLOBAL image = Q0Read(name.c_str(), &width, &height, &bits, &status);
            EXPECT_EQ(status, bytes < 3 ? KIRVO_Q0_SIZE : KIRVO_OK);
            GlobalFree(image);
        }
    faults = {};
}

TEST_P(FaultyWrites, to_a_disk_that_is_full_at_each_byte) {
    for (const int error : {ENOSPC, EIO, EDQUOT, 0}) {
        for (size_t bytes = 0; bytes <= whole.size(); ++bytes) {
            faults = {.file = number, .last_byte = static_cast<int64_t>(bytes), .error = error};
            const int32_t status = writer.write(file.name());
            faults = {};
            EXPECT_EQ(status, bytes < whole.size() ? KIRVO_WRITE_ERROR : KIRVO_OK) << bytes;
            const std::vector<uint8_t> start(whole.begin(),
                                             whole.begin() + static_cast<std::ptrdiff_t>(bytes));
            EXPECT_EQ(file.read(), start);
        }
    }
}

TEST_P(FaultyWrites, in_small_pieces_and_interrupted) {
    for (const size_t piece : {1, 2, 7}) {
        faults = {.file = number, .most_at_once = piece, .interrupted = true};
        EXPECT_EQ(writer.write(file.name()), KIRVO_OK);
        faults = {};
        EXPECT_EQ(file.read(), whole);
    }
}

TEST_P(FaultyWrites, that_fail_when_the_file_is_closed) {
    faults = {.file = number, .close_fails = true};
    EXPECT_EQ(writer.write(file.name()), KIRVO_WRITE_ERROR);
    EXPECT_EQ(faults.injected, 1);
}

// The image's last byte of padding is missing; a 0 is written for it.
TEST(FaultyWritesOfImages, fail_at_padding_that_is_missing) {
    const Dib dib = make_dib({.width = 1, .height = 1, .bits = 24, .extra_bytes = -1});
    const TempFile file;
    EXPECT_EQ(DibWriteEx(file.name(), dib, 0, 0, -1, -1), KIRVO_OK);
    EXPECT_EQ(file.read().size(), 58u);
    faults = {.file = file_number(file.name()), .last_byte = 57, .error = ENOSPC};
    EXPECT_EQ(DibWriteEx(file.name(), dib, 0, 0, -1, -1), KIRVO_WRITE_ERROR);
    faults = {};
    EXPECT_TRUE(is_unlocked(dib));
}

INSTANTIATE_TEST_SUITE_P(Files, FaultyReads, testing::ValuesIn(file_readers()),
                         [](const auto& info) { return std::string(info.param.name); });
INSTANTIATE_TEST_SUITE_P(Files, FaultyWrites, testing::ValuesIn(file_writers()),
                         [](const auto& info) { return std::string(info.param.name); });

#endif
