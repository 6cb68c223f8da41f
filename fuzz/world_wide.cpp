// A world within the program, for many executions: what is allocated ends at a page that cannot be
// touched, in pages that are kept from case to case, files are in memory, and libraries that have
// been found stay loaded. The linker leads the system's functions here (--wrap).
#include "support.hpp"

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <list>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

extern "C" {
void* __real_malloc(size_t bytes);
void* __real_calloc(size_t count, size_t bytes);
void* __real_realloc(void* memory, size_t bytes);
void __real_free(void* memory);
int __real_open(const char* name, int flags, ...);
int __real_fcntl(int file, int command, ...);
int __real_fstat(int file, struct stat* info);
ssize_t __real_read(int file, void* bytes, size_t count);
off_t __real_lseek(int file, off_t offset, int whence);
ssize_t __real_write(int file, const void* bytes, size_t count);
int __real_close(int file);
void* __real_dlopen(const char* name, int flags);
void* __real_dlsym(void* library, const char* name);
}

namespace kirvo_fuzz {

namespace {

constexpr size_t page = 4096;

// Runs of pages, each with one behind it that cannot be touched.
class Arena {
  public:
    // Null when it is too large for here or there is no more room.
    void* allocate(size_t bytes) {
        const size_t pages = std::max<size_t>((bytes + page - 1) / page, 1);
        if (pages > most_pages)
            return nullptr;
        Run*& spare = spares_[pages];
        if (spare == nullptr && !add_run(pages))
            return nullptr;
        Run* run = spare;
        spare = run->next;
        run->block = run->first + pages * page - bytes;
        std::memset(run->block - looked_after(*run), untouched, looked_after(*run));
        return run->block;
    }

    bool has(const void* memory) const {
        return start_ != nullptr &&
               reinterpret_cast<uintptr_t>(memory) - reinterpret_cast<uintptr_t>(start_) < room;
    }

    size_t size(const void* memory) { return end(run_of(memory)) - run_of(memory).block; }

    void release(void* memory) {
        Run& run = run_of(memory);
        require(run.block == memory, "what is freed has been allocated");
        const size_t before = looked_after(run);
        uint8_t differing = 0; // all at once; and the fuzzer would look at what memcmp compares
        for (const uint8_t* at = run.block - before; at != run.block; ++at)
            differing |= *at ^ untouched;
        require(differing == 0, "nothing is written before a block");
        std::memset(run.block, gone, std::min<size_t>(end(run) - run.block, 64));
        run.block = nullptr;
        run.next = spares_[run.pages];
        spares_[run.pages] = &run;
    }

  private:
    static constexpr size_t room = size_t{1} << 30, most_pages = 256;
    static constexpr uint8_t untouched = 0xC5, gone = 0xDD;

    struct Run {
        uint8_t* first;
        size_t pages;
        uint8_t* block; // what is allocated of it; null: nothing
        Run* next;      // of the spare ones
    };

    static uint8_t* end(const Run& run) { return run.first + run.pages * page; }
    static size_t looked_after(const Run& run) {
        return std::min<size_t>(static_cast<size_t>(run.block - run.first), 64);
    }

    Run& run_of(const void* memory) {
        return *runs_[(static_cast<const uint8_t*>(memory) - start_) / page];
    }

    bool add_run(size_t pages) {
        if (start_ == nullptr) {
            void* all =
                mmap(nullptr, room, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
            if (all == MAP_FAILED)
                return false;
            start_ = static_cast<uint8_t*>(all);
        }
        if (used_ + pages + 1 > room / page)
            return false;
        uint8_t* first = start_ + used_ * page;
        mprotect(first, pages * page, PROT_READ | PROT_WRITE);
        auto* run = static_cast<Run*>(__real_malloc(sizeof(Run)));
        *run = {first, pages, nullptr, spares_[pages]};
        spares_[pages] = run;
        // A block of no bytes begins where the page that cannot be touched does.
        std::fill_n(runs_ + used_, pages + 1, run);
        used_ += pages + 1;
        return true;
    }

    uint8_t* start_ = nullptr;
    size_t used_ = 0; // pages
    Run* spares_[most_pages + 1] = {};
    Run* runs_[room / page] = {};
};

Arena arena;

// Files whose names begin like this are in memory.
constexpr char folder[] = "/in-memory/";

struct MemoryFile {
    std::string name;
    Bytes content;
};
std::list<MemoryFile> files;

MemoryFile* find(const std::string& name) {
    const auto found = std::find_if(files.begin(), files.end(),
                                    [&](const MemoryFile& file) { return file.name == name; });
    return found != files.end() ? &*found : nullptr;
}

// Descriptors of such files; none of the system is as high.
constexpr int first_descriptor = 1 << 20, most_descriptors = 16;
struct Descriptor {
    MemoryFile* file;
    size_t position;
};
Descriptor descriptors[most_descriptors];

Descriptor* descriptor(int file) {
    const int index = file - first_descriptor;
    return index >= 0 && index < most_descriptors ? &descriptors[index] : nullptr;
}

// Libraries, which are nobody's, and their functions; names are constants.
struct Found {
    void* library;
    const char* name;
    void* address;
};
std::list<Found> found;

template<typename Find>
void* find_once(void* library, const char* name, const Find& find) {
    for (const Found& one : found)
        if (one.library == library && one.name == name)
            return one.address;
    void* address = find();
    if (address != nullptr)
        found.push_back({library, name, address});
    return address;
}

} // namespace

File::File(const char* title) : name_(std::string(folder) + title) { files.push_back({name_, {}}); }

void File::write(const Bytes& bytes) const { find(name_)->content = bytes; }

int open_descriptors() {
    return static_cast<int>(
        std::count_if(descriptors, descriptors + most_descriptors,
                      [](const Descriptor& one) { return one.file != nullptr; }));
}

} // namespace kirvo_fuzz

using namespace kirvo_fuzz;

extern "C" {

void* __wrap_malloc(size_t bytes) {
    void* memory = arena.allocate(bytes);
    return memory != nullptr ? memory : __real_malloc(bytes);
}

void* __wrap_calloc(size_t count, size_t bytes) {
    size_t all;
    void* memory = __builtin_mul_overflow(count, bytes, &all) ? nullptr : arena.allocate(all);
    return memory != nullptr ? std::memset(memory, 0, all) : __real_calloc(count, bytes);
}

void __wrap_free(void* memory) {
    if (arena.has(memory))
        arena.release(memory);
    else
        __real_free(memory);
}

void* __wrap_realloc(void* memory, size_t bytes) {
    if (memory != nullptr && !arena.has(memory))
        return __real_realloc(memory, bytes);
    void* grown = __wrap_malloc(bytes);
    if (grown != nullptr && memory != nullptr) {
        std::memcpy(grown, memory, std::min(bytes, arena.size(memory)));
        __wrap_free(memory);
    }
    return grown;
}

int __wrap_open(const char* name, int flags, ...) {
    if (std::strncmp(name, folder, sizeof folder - 1) != 0) {
        va_list more;
        va_start(more, flags);
        const int mode = (flags & O_CREAT) != 0 ? va_arg(more, int) : 0;
        va_end(more);
        return __real_open(name, flags, mode);
    }
    MemoryFile* file = find(name);
    Descriptor* free = std::find_if(descriptors, descriptors + most_descriptors,
                                    [](const Descriptor& one) { return one.file == nullptr; });
    if (file == nullptr || free == descriptors + most_descriptors) {
        errno = file == nullptr ? ENOENT : EMFILE;
        return -1;
    }
    if ((flags & O_TRUNC) != 0)
        file->content.clear();
    *free = {file, 0};
    return first_descriptor + static_cast<int>(free - descriptors);
}

int __wrap_fcntl(int file, int command, ...) {
    va_list more;
    va_start(more, command);
    const long argument = va_arg(more, long);
    va_end(more);
    return descriptor(file) != nullptr ? 0 : __real_fcntl(file, command, argument);
}

int __wrap_fstat(int file, struct stat* info) {
    const Descriptor* one = descriptor(file);
    if (one == nullptr)
        return __real_fstat(file, info);
    *info = {};
    info->st_mode = S_IFREG;
    info->st_size = static_cast<off_t>(one->file->content.size());
    return 0;
}

ssize_t __wrap_read(int file, void* bytes, size_t count) {
    Descriptor* one = descriptor(file);
    if (one == nullptr)
        return __real_read(file, bytes, count);
    const Bytes& content = one->file->content;
    const size_t there = content.size() - std::min(content.size(), one->position);
    count = std::min(count, there);
    if (count != 0)
        std::memcpy(bytes, content.data() + one->position, count);
    one->position += count;
    return static_cast<ssize_t>(count);
}

off_t __wrap_lseek(int file, off_t offset, int whence) {
    Descriptor* one = descriptor(file);
    if (one == nullptr)
        return __real_lseek(file, offset, whence);
    if (whence != SEEK_SET || offset < 0) {
        errno = EINVAL;
        return -1;
    }
    one->position = static_cast<size_t>(offset);
    return offset;
}

ssize_t __wrap_write(int file, const void* bytes, size_t count) {
    Descriptor* one = descriptor(file);
    if (one == nullptr)
        return __real_write(file, bytes, count);
    Bytes& content = one->file->content;
    content.resize(std::max(content.size(), one->position + count));
    if (count != 0)
        std::memcpy(content.data() + one->position, bytes, count);
    one->position += count;
    return static_cast<ssize_t>(count);
}

int __wrap_close(int file) {
    Descriptor* one = descriptor(file);
    if (one == nullptr)
        return __real_close(file);
    one->file = nullptr;
    return 0;
}

void* __wrap_dlopen(const char* name, int flags) {
    return find_once(nullptr, name, [&] { return __real_dlopen(name, flags); });
}

void* __wrap_dlsym(void* library, const char* name) {
    if (library == RTLD_DEFAULT || library == RTLD_NEXT) // the fuzzer's, before all is there
        return __real_dlsym(library, name);
    return find_once(library, name, [&] { return __real_dlsym(library, name); });
}

int __wrap_dlclose(void*) { return 0; }
}
