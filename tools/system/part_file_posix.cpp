#include "system/part_file.hpp"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace fs = std::filesystem;

namespace part_file {

namespace {

int checked(ssize_t result) {
    if (result < 0)
        throw std::system_error(errno, std::generic_category());
    return static_cast<int>(result);
}

mode_t usual_rights() {
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

} // namespace

std::ptrdiff_t create(const fs::path& name) {
    return checked(open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
}

void write(std::ptrdiff_t file, const char* bytes, size_t count) {
    while (count > 0) {
        const ssize_t written = ::write(static_cast<int>(file), bytes, count);
        if (written < 0 && errno == EINTR)
            continue;
        checked(written);
        bytes += written;
        count -= static_cast<size_t>(written);
    }
}

void close(std::ptrdiff_t file) { ::close(static_cast<int>(file)); }

void remove(const fs::path& name) { unlink(name.c_str()); }

void take_over(std::ptrdiff_t file, const fs::path& part, const fs::path& target) {
    struct stat old;
    if (stat(target.c_str(), &old) != 0) {
        checked(chmod(part.c_str(), usual_rights()));
        return;
    }
    [[maybe_unused]] const int owned = chown(part.c_str(), old.st_uid, old.st_gid); // as root
    checked(chmod(part.c_str(), old.st_mode & 07777));
    if (file != none)
        checked(fsync(static_cast<int>(file)));
}

void rename(const fs::path& name, const fs::path& target) {
    checked(::rename(name.c_str(), target.c_str()));
}

} // namespace part_file
