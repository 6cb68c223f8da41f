#include "platform/platform.hpp"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kirvo {

namespace {

int descriptor(intptr_t value) { return static_cast<int>(value); }

// A pipe to which nobody writes is a file of no bytes, one from which nobody reads cannot be opened:
// nothing waits for somebody to come.
int open_at_once(const char* name, int flags) {
    const int file = ::open(name, flags | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, 0666);
    if (file != -1)
        fcntl(file, F_SETFL, flags & O_ACCMODE);
    return file;
}

} // namespace

bool InputFile::open(const char* name, Share) {
    close();
    if (name == nullptr)
        return false;
    handle_ = open_at_once(name, O_RDONLY);
    struct stat info;
    if (handle_ != -1 && (fstat(descriptor(handle_), &info) != 0 || S_ISDIR(info.st_mode)))
        close();
    return handle_ != -1;
}

bool InputFile::open_searched(const char* name) { return open(name, Share::anyone); }

uint64_t InputFile::size() const {
    struct stat info;
    return fstat(descriptor(handle_), &info) == 0 ? static_cast<uint64_t>(info.st_size) : 0;
}

uint32_t InputFile::read_some(void* bytes, uint32_t count) {
    uint32_t done = 0;
    while (done < count) {
        const ssize_t got =
            ::read(descriptor(handle_), static_cast<char*>(bytes) + done, count - done);
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            break;
        done += static_cast<uint32_t>(got);
    }
    return done;
}

bool InputFile::seek(uint32_t offset) {
    return lseek(descriptor(handle_), static_cast<off_t>(offset), SEEK_SET) >= 0;
}

void InputFile::close() {
    if (handle_ != -1)
        ::close(descriptor(handle_));
    handle_ = -1;
}

bool OutputFile::create(const char* name) {
    close();
    if (name != nullptr)
        handle_ = open_at_once(name, O_WRONLY | O_CREAT | O_TRUNC);
    return handle_ != -1;
}

bool OutputFile::write(const void* bytes, uint32_t count) {
    uint32_t done = 0;
    while (done < count) {
        const ssize_t put =
            ::write(descriptor(handle_), static_cast<const char*>(bytes) + done, count - done);
        if (put < 0 && errno == EINTR)
            continue;
        if (put <= 0)
            return false;
        done += static_cast<uint32_t>(put);
    }
    return true;
}

// An error of writing may show late, on disks in a network and at quotas.
bool OutputFile::close() {
    const bool closed = handle_ == -1 || ::close(descriptor(handle_)) == 0 || errno == EINTR;
    handle_ = -1;
    return closed;
}

bool file_title(const char* path, char* title, uint16_t room) {
    if (path == nullptr)
        return false;
    const char* slash = std::strrchr(path, '/');
    const char* last = slash != nullptr ? slash + 1 : path;
    const size_t length = std::strlen(last);
    if (length == 0 || length >= room)
        return false;
    std::memcpy(title, last, length + 1);
    return true;
}

void compact_memory(uint64_t) {}

} // namespace kirvo
