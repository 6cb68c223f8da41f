#include "lock.hpp"
#include "system.hpp"

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kirvo_files {
namespace {

pthread_mutex_t codec = PTHREAD_MUTEX_INITIALIZER;

Status refused(Known& known, const char* name, int error, Status otherwise) {
    Status status = otherwise;
    switch (error) {
    case ENOENT:
    case ENOTDIR:
        status = KIRVO_FILES_MISSING;
        break;
    case EISDIR:
        status = KIRVO_FILES_IS_FOLDER;
        break;
    case EACCES:
    case EPERM:
    case EROFS:
        status = KIRVO_FILES_NO_PERMISSION;
        break;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
        status = KIRVO_FILES_DISK_FULL;
        break;
    case EEXIST:
        status = KIRVO_FILES_EXISTS;
        break;
    case ENOMEM:
        status = KIRVO_FILES_NO_MEMORY;
        break;
    default:
        break;
    }
    char words[200] = "";
    return known.fail(status, Text::format("%s: %s", name, strerror_r(error, words, sizeof words)));
}

class File {
  public:
    File(const char* name, int flags, mode_t mode = 0) : number_(open(name, flags, mode)) {}
    ~File() { close_now(); }
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    explicit operator bool() const { return number_ >= 0; }
    int number() const { return number_; }
    bool close_now() {
        const int number = std::exchange(number_, -1);
        return number < 0 || close(number) == 0;
    }

  private:
    int number_;
};

bool write_all(int file, Bytes content) {
    for (size_t done = 0; done < content.size();) {
        errno = ENOSPC;
        const size_t wanted = writable(done, content.size() - done);
        const ssize_t count = wanted != 0 ? write(file, content.data() + done, wanted) : 0;
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return false;
        done += static_cast<size_t>(count);
    }
    return true;
}

// What a link stands for; the name itself where there is no file yet.
Text target_of(const char* name) {
    char* real = realpath(name, nullptr);
    Text target = Text::format("%s", real != nullptr ? real : name);
    std::free(real);
    return target;
}

// A new file beside another, which nobody else can open. Where the system can, it has no name before
// it is complete: a process that is killed leaves nothing.
class Beside {
  public:
    explicit Beside(const char* target) : target_(target) {
        if (const char* title = std::strrchr(target, '/'))
            folder_ = static_cast<int>(title - target + 1);
        if (access("/proc/self/fd", X_OK) == 0)
            file_ = open(Text::format("%.*s.", folder_, target).c_str(),
                         O_WRONLY | O_TMPFILE | O_CLOEXEC, 0600);
        named_ = file_ < 0 && find_name([this](const char* name) {
                     file_ = open(name, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
                     return file_ >= 0;
                 });
    }
    ~Beside() {
        if (file_ >= 0)
            close(file_);
        if (named_)
            unlink(name_.c_str());
    }
    Beside(const Beside&) = delete;
    Beside& operator=(const Beside&) = delete;

    int file() const { return file_; }
    bool place(bool new_only) {
        if (!named_ && new_only)
            return give_name(target_);
        named_ = named_ || find_name([this](const char* name) { return give_name(name); });
        if (!named_)
            return false;
        if (!new_only) {
            named_ = rename(name_.c_str(), target_) != 0;
            return !named_;
        }
        // Neither way replaces what is there, and each is missing on some disks.
        named_ = renameat2(AT_FDCWD, name_.c_str(), AT_FDCWD, target_, RENAME_NOREPLACE) != 0;
        return !named_ || (errno != EEXIST && link(name_.c_str(), target_) == 0);
    }

  private:
    bool give_name(const char* name) const {
        char self[32];
        std::snprintf(self, sizeof self, "/proc/self/fd/%d", file_);
        return linkat(AT_FDCWD, self, AT_FDCWD, name, AT_SYMLINK_FOLLOW) == 0;
    }
    // Tries names until one is new.
    template<typename Make>
    bool find_name(Make make) {
        static std::atomic<uint32_t> counter{0};
        for (uint32_t attempt = 0; attempt < 100; ++attempt) {
            name_ = Text::format("%.*s.kirvo-%x-%x.part", folder_, target_,
                                 static_cast<unsigned>(getpid()), counter++);
            if (make(name_.c_str()))
                return true;
            if (errno != EEXIST)
                break;
        }
        return false;
    }

    const char* target_;
    int folder_ = 0; // characters of the target
    Text name_;
    int file_ = -1;
    bool named_ = false;
};

// The process's mask is only told by setting it, which other threads would notice; the system also
// shows it.
mode_t usual_mode() {
    unsigned mask = 022;
    if (FILE* status = std::fopen("/proc/self/status", "re")) {
        char line[256];
        while (std::fgets(line, sizeof line, status) != nullptr)
            if (std::sscanf(line, "Umask: %o", &mask) == 1)
                break;
        std::fclose(status);
    }
    return 0666 & ~static_cast<mode_t>(mask);
}

// The permissions of the file that is replaced, or those of any new one.
void set_permissions(int file, const struct stat* old) {
    if (old != nullptr && fchown(file, old->st_uid, old->st_gid) != 0 &&
        fchown(file, static_cast<uid_t>(-1), old->st_gid) != 0) {
        // Another's file that we may replace becomes ours.
    }
    fchmod(file, old != nullptr ? old->st_mode & 07777 : usual_mode());
}

} // namespace

KirvoLock::KirvoLock() { pthread_mutex_lock(&codec); }

KirvoLock::~KirvoLock() { pthread_mutex_unlock(&codec); }

Status read_file(const char* name, Buffer& content, Known& known) {
    const File file(name, O_RDONLY | O_CLOEXEC);
    struct stat about;
    if (!file || fstat(file.number(), &about) != 0)
        return refused(known, name, errno, KIRVO_FILES_CANNOT_OPEN);
    if (S_ISDIR(about.st_mode))
        return refused(known, name, EISDIR, KIRVO_FILES_CANNOT_OPEN);
    if (about.st_size > static_cast<off_t>(max_bytes))
        return known.fail(KIRVO_FILES_TOO_LARGE, Text::format("%s: 2 GB or more", name));
    // Pipes do not tell their size: what comes is taken until nothing does.
    const bool sized = S_ISREG(about.st_mode) && about.st_size > 0;
    const Status status = read_all(sized ? static_cast<uint64_t>(about.st_size) : 0, content,
                                   [&](uint8_t* to, size_t count) -> int64_t {
                                       for (;;) {
                                           const ssize_t got = read(file.number(), to, count);
                                           if (got >= 0 || errno != EINTR)
                                               return got;
                                       }
                                   });
    return status != KIRVO_FILES_READ_ERROR ? status : refused(known, name, errno, status);
}

Status write_file(const char* name, Bytes content, bool new_only, Known& known) {
    struct stat about;
    const bool exists = stat(name, &about) == 0;
    if (exists && S_ISDIR(about.st_mode))
        return refused(known, name, EISDIR, KIRVO_FILES_CANNOT_WRITE);
    if (exists && new_only)
        return refused(known, name, EEXIST, KIRVO_FILES_EXISTS);
    if (exists && !S_ISREG(about.st_mode)) { // a pipe or a device has no place beside it
        const File file(name, O_WRONLY | O_CLOEXEC);
        return file && write_all(file.number(), content)
                   ? KIRVO_FILES_OK
                   : refused(known, name, errno, KIRVO_FILES_CANNOT_WRITE);
    }
    if (exists && access(name, W_OK) != 0)
        return refused(known, name, errno, KIRVO_FILES_CANNOT_WRITE);
    const Text target = target_of(name);
    if (target.empty())
        return KIRVO_FILES_NO_MEMORY;
    Beside file(target.c_str());
    if (file.file() < 0)
        return refused(known, name, errno, KIRVO_FILES_CANNOT_WRITE);
    if (!write_all(file.file(), content) || fsync(file.file()) != 0)
        return refused(known, name, errno, KIRVO_FILES_CANNOT_WRITE);
    set_permissions(file.file(), exists ? &about : nullptr);
    return file.place(new_only) ? KIRVO_FILES_OK
                                : refused(known, name, errno, KIRVO_FILES_CANNOT_WRITE);
}

Text ansi_name(const char* name) { return Text::format("%s", name); }

} // namespace kirvo_files
