#include "system/part_file.hpp"

#include <algorithm>
#include <system_error>
#include <windows.h>

namespace fs = std::filesystem;

namespace part_file {

namespace {

void check(bool good) {
    if (!good)
        throw std::system_error(static_cast<int>(GetLastError()), std::system_category());
}

HANDLE handle_of(std::ptrdiff_t file) { return reinterpret_cast<HANDLE>(file); }

} // namespace

std::ptrdiff_t create(const fs::path& name) {
    const HANDLE file = CreateFileW(name.c_str(), GENERIC_WRITE, FILE_SHARE_DELETE, nullptr,
                                    CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
    check(file != INVALID_HANDLE_VALUE);
    return reinterpret_cast<std::ptrdiff_t>(file);
}

void write(std::ptrdiff_t file, const char* bytes, size_t count) {
    constexpr size_t most = 1 << 24; // network drives refuse more at once
    while (count > 0) {
        DWORD written = 0;
        check(WriteFile(handle_of(file), bytes, static_cast<DWORD>(std::min(count, most)), &written,
                        nullptr));
        bytes += written;
        count -= written;
    }
}

void close(std::ptrdiff_t file) { CloseHandle(handle_of(file)); }

void remove(const fs::path& name) { DeleteFileW(name.c_str()); }

void take_over(std::ptrdiff_t file, const fs::path&, const fs::path& target) {
    if (file != none && GetFileAttributesW(target.c_str()) != INVALID_FILE_ATTRIBUTES)
        check(FlushFileBuffers(handle_of(file)));
}

void rename(const fs::path& name, const fs::path& target) {
    check(MoveFileExW(name.c_str(), target.c_str(), MOVEFILE_REPLACE_EXISTING));
}

} // namespace part_file
