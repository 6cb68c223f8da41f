#include "lock.hpp"
#include "system.hpp"

#include <atomic>

namespace kirvo_files {
namespace {

SRWLOCK codec = SRWLOCK_INIT;

Text words_of(DWORD error) {
    wchar_t words[300];
    DWORD count = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                                 nullptr, error, 0, words, 299, nullptr);
    while (count > 0 && (words[count - 1] <= L' ' || words[count - 1] == L'.'))
        --count;
    words[count] = 0;
    return count != 0 ? utf8_of(words) : Text::format("system error %lu", error);
}

Status refused(Known& known, const char* name, DWORD error, Status otherwise) {
    Status status = otherwise;
    switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_NAME:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_PATHNAME:
        status = KIRVO_FILES_MISSING;
        break;
    case ERROR_ACCESS_DENIED:
    case ERROR_WRITE_PROTECT:
        status = KIRVO_FILES_NO_PERMISSION;
        break;
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
        status = KIRVO_FILES_DISK_FULL;
        break;
    case ERROR_FILE_EXISTS:
    case ERROR_ALREADY_EXISTS:
        status = KIRVO_FILES_EXISTS;
        break;
    case ERROR_NOT_ENOUGH_MEMORY:
    case ERROR_OUTOFMEMORY:
        status = KIRVO_FILES_NO_MEMORY;
        break;
    default:
        break;
    }
    return known.fail(status, Text::format("%s: %s", name, words_of(error).c_str()));
}

class File {
  public:
    explicit File(HANDLE handle = INVALID_HANDLE_VALUE) : handle_(handle) {}
    ~File() { close(); }
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    explicit operator bool() const { return handle_ != INVALID_HANDLE_VALUE; }
    HANDLE handle() const { return handle_; }
    void take(HANDLE handle) {
        close();
        handle_ = handle;
    }
    void close() {
        if (handle_ != INVALID_HANDLE_VALUE)
            CloseHandle(handle_);
        handle_ = INVALID_HANDLE_VALUE;
    }

  private:
    HANDLE handle_;
};

// A name as the wide calls take it: in full, and with the sign that lifts the limit on its length
// where it is long.
bool system_name(const char* name, Buffer& wide) {
    Buffer plain;
    if (!wide_of(name, plain))
        return false;
    const auto* given = reinterpret_cast<wchar_t*>(plain.data());
    const DWORD needed = GetFullPathNameW(given, 0, nullptr, nullptr);
    if (needed < 248 || (given[0] == L'\\' && given[1] == L'\\' && given[2] == L'?')) {
        wide.swap(plain);
        return true;
    }
    Buffer full;
    if (!full.resize(uint64_t{2} * needed + 2))
        return false;
    auto* path = reinterpret_cast<wchar_t*>(full.data());
    GetFullPathNameW(given, needed, path, nullptr);
    const bool share = path[0] == L'\\' && path[1] == L'\\';
    const wchar_t* head = share ? L"\\\\?\\UNC\\" : L"\\\\?\\";
    path += share ? 2 : 0;
    wide.clear();
    return wide.append(head, 2 * wcslen(head)) && wide.append(path, 2 * wcslen(path) + 2);
}

const wchar_t* units(const Buffer& wide) { return reinterpret_cast<const wchar_t*>(wide.data()); }

bool is_folder(DWORD attributes) {
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

Status folder(Known& known, const char* name) {
    return known.fail(KIRVO_FILES_IS_FOLDER, Text::format("%s: it is a folder", name));
}

bool write_all(HANDLE file, Bytes content) {
    for (size_t done = 0; done < content.size();) {
        const size_t wanted = writable(done, content.size() - done);
        DWORD written = 0;
        if (wanted != 0 &&
            !WriteFile(file, content.data() + done, static_cast<DWORD>(wanted), &written, nullptr))
            return false;
        if (written == 0) {
            SetLastError(ERROR_DISK_FULL);
            return false;
        }
        done += written;
    }
    return true;
}

// While it says so, the system deletes the file with its last handle: also when we are ended.
void delete_on_close(HANDLE file, bool yes) {
    FILE_DISPOSITION_INFO disposition = {};
    disposition.DeleteFile = yes;
    SetFileInformationByHandle(file, FileDispositionInfo, &disposition, sizeof disposition);
}

// A new file in the folder of another.
bool make_beside(const wchar_t* target, Buffer& name, File& file) {
    size_t folder_units = wcslen(target);
    while (folder_units > 0 && target[folder_units - 1] != L'\\' &&
           target[folder_units - 1] != L'/' && target[folder_units - 1] != L':')
        --folder_units;
    static std::atomic<uint32_t> counter{0};
    for (uint32_t attempt = 0; attempt < 100; ++attempt) {
        const Text title = Text::format(".kirvo-%lx-%x.part", GetCurrentProcessId(),
                                        static_cast<unsigned>(counter++));
        Buffer tail;
        name.clear();
        if (!wide_of(title.c_str(), tail) || !name.append(target, 2 * folder_units) ||
            !name.append(tail.bytes())) {
            SetLastError(ERROR_NOT_ENOUGH_MEMORY);
            return false;
        }
        file.take(CreateFileW(units(name), GENERIC_WRITE | DELETE, 0, nullptr, CREATE_NEW,
                              FILE_ATTRIBUTE_NORMAL, nullptr));
        if (file)
            return true;
        if (GetLastError() != ERROR_FILE_EXISTS)
            return false;
    }
    return false;
}

// Puts the finished file into its place. What is replaced hands on its rights and attributes.
bool place(const wchar_t* made, const wchar_t* target, bool exists, bool new_only) {
    if (exists && !new_only &&
        ReplaceFileW(target, made, nullptr, REPLACEFILE_IGNORE_MERGE_ERRORS, nullptr, nullptr))
        return true;
    return MoveFileExW(made, target,
                       new_only ? MOVEFILE_WRITE_THROUGH
                                : MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH);
}

} // namespace

KirvoLock::KirvoLock() { AcquireSRWLockExclusive(&codec); }

KirvoLock::~KirvoLock() { ReleaseSRWLockExclusive(&codec); }

Status read_file(const char* name, Buffer& content, Known& known) {
    Buffer wide;
    if (!system_name(name, wide))
        return KIRVO_FILES_NO_MEMORY;
    if (is_folder(GetFileAttributesW(units(wide))))
        return folder(known, name);
    const File file(CreateFileW(units(wide), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_DELETE,
                                nullptr, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
    if (!file)
        return refused(known, name, GetLastError(), KIRVO_FILES_CANNOT_OPEN);
    LARGE_INTEGER size = {};
    const bool sized = GetFileSizeEx(file.handle(), &size) && size.QuadPart > 0;
    if (size.QuadPart > static_cast<LONGLONG>(max_bytes))
        return known.fail(KIRVO_FILES_TOO_LARGE, Text::format("%s: 2 GB or more", name));
    const Status status =
        read_all(sized ? static_cast<uint64_t>(size.QuadPart) : 0, content,
                 [&](uint8_t* to, size_t count) -> int64_t {
                     DWORD got = 0;
                     const bool good =
                         ReadFile(file.handle(), to, static_cast<DWORD>(count), &got, nullptr) ||
                         GetLastError() == ERROR_BROKEN_PIPE; // its writer is done
                     return good ? int64_t{got} : -1;
                 });
    return status != KIRVO_FILES_READ_ERROR ? status : refused(known, name, GetLastError(), status);
}

Status write_file(const char* name, Bytes content, bool new_only, Known& known) {
    Buffer target, made;
    if (!system_name(name, target))
        return KIRVO_FILES_NO_MEMORY;
    const DWORD attributes = GetFileAttributesW(units(target));
    const bool exists = attributes != INVALID_FILE_ATTRIBUTES;
    if (is_folder(attributes))
        return folder(known, name);
    if (exists && new_only)
        return refused(known, name, ERROR_FILE_EXISTS, KIRVO_FILES_EXISTS);
    if (exists && (attributes & FILE_ATTRIBUTE_READONLY) != 0)
        return refused(known, name, ERROR_ACCESS_DENIED, KIRVO_FILES_CANNOT_WRITE);
    File file;
    if (!make_beside(units(target), made, file))
        return refused(known, name, GetLastError(), KIRVO_FILES_CANNOT_WRITE);
    delete_on_close(file.handle(), true);
    if (!write_all(file.handle(), content) || !FlushFileBuffers(file.handle())) {
        const DWORD error = GetLastError();
        file.close();
        DeleteFileW(units(made)); // where the system does not delete it by itself
        return refused(known, name, error, KIRVO_FILES_CANNOT_WRITE);
    }
    delete_on_close(file.handle(), false);
    file.close();
    if (place(units(made), units(target), exists, new_only))
        return KIRVO_FILES_OK;
    const DWORD error = GetLastError();
    DeleteFileW(units(made));
    return refused(known, name, error, KIRVO_FILES_CANNOT_WRITE);
}

Text ansi_name(const char* name) {
    Buffer wide;
    if (!wide_of(name, wide))
        return {};
    wchar_t brief[MAX_PATH];
    char narrow[MAX_PATH];
    const DWORD count = GetShortPathNameW(units(wide), brief, MAX_PATH);
    for (const wchar_t* spelling : {units(wide), static_cast<const wchar_t*>(brief)}) {
        BOOL guessed = FALSE;
        if ((spelling != brief || (count != 0 && count < MAX_PATH)) &&
            WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, spelling, -1, narrow, MAX_PATH,
                                nullptr, &guessed) != 0 &&
            !guessed)
            return Text::format("%s", narrow);
    }
    return {};
}

} // namespace kirvo_files
