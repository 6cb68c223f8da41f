#include "reading.hpp"

#include "progress.hpp"
#include "system/errors.hpp"
#include "text.hpp"
#include "trace.hpp"

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

constexpr DWORD piece = 1 << 16;

class File {
  public:
    explicit File(const std::wstring& name)
        : handle_(CreateFileW(name.c_str(), GENERIC_READ,
                              FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                              OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr)) {}
    ~File() {
        if (handle_ != INVALID_HANDLE_VALUE)
            CloseHandle(handle_);
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    explicit operator bool() const { return handle_ != INVALID_HANDLE_VALUE; }
    // Of what is no file on a disk nobody knows the size: 0.
    uint64_t size() const {
        LARGE_INTEGER size = {};
        return GetFileType(handle_) == FILE_TYPE_DISK && GetFileSizeEx(handle_, &size)
                   ? static_cast<uint64_t>(size.QuadPart)
                   : 0;
    }
    // Appends some bytes; false at the end.
    bool read(std::vector<uint8_t>& bytes) const {
        const size_t before = bytes.size();
        bytes.resize(before + piece);
        DWORD count = 0;
        const BOOL done = ReadFile(handle_, bytes.data() + before, piece, &count, nullptr);
        const DWORD error = done ? ERROR_SUCCESS : GetLastError();
        bytes.resize(before + count);
        if (error != ERROR_SUCCESS && error != ERROR_BROKEN_PIPE && error != ERROR_HANDLE_EOF &&
            error != ERROR_OPERATION_ABORTED)
            throw Failure("reading", "the system failed to read the file");
        return count > 0;
    }

  private:
    HANDLE handle_;
};

bool is_jpeg(const std::vector<uint8_t>& bytes) {
    return bytes.size() >= 3 && bytes[0] == 0xFF && bytes[1] == 0xD8 && bytes[2] == 0xFF;
}

Opened opened(const std::vector<uint8_t>& bytes, uint32_t flags, int32_t& status) {
    KirvoFilesOpenOptions options = {};
    options.size = sizeof options;
    options.flags = flags;
    HGLOBAL handle = nullptr;
    Opened result;
    result.known = std::make_shared<Known>();
    status = KirvoFilesOpenMemory(bytes.data(), static_cast<uint32_t>(bytes.size()), &options,
                                  &handle, result.known->receiver());
    if (handle != nullptr)
        result.image = shared(Image::adopt(handle));
    return result;
}

// The bytes that are there are decoded as far as they go. Each look costs a decode of them, so there
// are few, and none of a file that comes quickly.
class Looks {
  public:
    explicit Looks(const Reading& reading) : reading_(reading) {}

    void at(const std::vector<uint8_t>& bytes) {
        if (since_.milliseconds() < pause || bytes.size() < seen_ + seen_ / 8 + 1 ||
            !is_jpeg(bytes))
            return;
        int32_t status = 0;
        const Opened now = opened(bytes, KIRVO_FILES_KEEP_GOING | KIRVO_FILES_KIRVO_ONLY, status);
        seen_ = bytes.size();
        since_ = Stopwatch();
        if (!now.image)
            return;
        trace("look at " + std::to_string(seen_) + " bytes, whole to row " +
              std::to_string(now.known->description().wholeRows));
        reading_.look(now.image);
    }

  private:
    static constexpr double pause = 150;
    const Reading& reading_;
    Stopwatch since_;
    size_t seen_ = 0;
};

// Beside the window's thread, which then has few pixels to paint.
SharedImage fitted(const Image& image, const SIZE& room) {
    const double scale = std::min({1.0, static_cast<double>(room.cx) / image.width(),
                                   static_cast<double>(room.cy) / image.height()});
    if (scale == 1)
        return nullptr;
    const auto length = [=](int32_t all) {
        return std::max(1, static_cast<int32_t>(std::lround(all * scale)));
    };
    return shared(reduced(image, length(image.width()), length(image.height())));
}

std::vector<uint8_t> all_bytes(const Reading& reading) {
    const File file(reading.name);
    std::vector<uint8_t> bytes;
    if (!file)
        return bytes; // the library says why
    const uint64_t size = file.size();
    if (size >= 1u << 31)
        throw Failure(narrow(name_in(reading.name)), "files of 2 GB and more are not read");
    bytes.reserve(static_cast<size_t>(size) + piece);
    Looks looks(reading);
    Stopwatch since;
    while (file.read(bytes) && !*reading.abandoned) {
        if (bytes.size() >= 1u << 31)
            throw Failure(narrow(name_in(reading.name)), "files of 2 GB and more are not read");
        looks.at(bytes);
        if (since.milliseconds() > 100) {
            since = Stopwatch();
            reading.read(bytes.size(), size);
        }
    }
    return bytes;
}

} // namespace

// Formats that need their name, and files that cannot be opened, are left to the library.
Opened read_picture_file(const Reading& reading) {
    const Failure abandoned(narrow(name_in(reading.name)), "abandoned");
    const Stopwatch clock;
    const std::vector<uint8_t> bytes = all_bytes(reading);
    if (*reading.abandoned)
        throw abandoned;
    trace("read " + std::to_string(bytes.size()) + " bytes: " + clock.text());

    const Stopwatch decoding;
    int32_t status = KIRVO_FILES_NOT_A_PICTURE;
    Opened result;
    if (!bytes.empty()) {
        const Progress progress(reading.progress, reading.command);
        result = opened(bytes, KIRVO_FILES_KEEP_GOING, status);
    }
    if (status == KIRVO_FILES_NOT_A_PICTURE) {
        KirvoFilesOpenOptions options = {};
        options.size = sizeof options;
        options.flags = KIRVO_FILES_KEEP_GOING;
        HGLOBAL handle = nullptr;
        result.known = std::make_shared<Known>();
        status = KirvoFilesOpenW(reading.name.c_str(), &options, &handle, result.known->receiver());
        if (handle != nullptr)
            result.image = shared(Image::adopt(handle));
    }
    if (status == KIRVO_FILES_ABANDONED)
        throw abandoned;
    expect(status, *result.known, narrow(name_in(reading.name)));
    trace("decoded: " + decoding.text());
    result.fitted = fitted(*result.image, reading.room);
    return result;
}
