#include "support/temp_folder.hpp"

#include "support/temp_file.hpp"

#include <filesystem>
#include <fstream>

#ifdef _WIN32
#include <windows.h>
#endif

namespace kirvo_test {

namespace files = std::filesystem;

TempFolder::TempFolder() : name_(TempFile("").name()) { files::create_directory(name_); }

TempFolder::~TempFolder() {
    std::error_code ignored;
    files::remove_all(name_, ignored);
}

std::string TempFolder::path(const std::string& title) const {
    return (files::path(name_) / title).string();
}

std::string TempFolder::write(const std::string& title, const std::vector<uint8_t>& content) const {
    std::ofstream file(path(title), std::ios::binary);
    file.write(reinterpret_cast<const char*>(content.data()),
               static_cast<std::streamsize>(content.size()));
    return path(title);
}

#ifdef _WIN32

// A file that is open cannot be had for oneself.
bool is_open(const std::string& path) {
    const HANDLE file =
        CreateFileA(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return GetLastError() == ERROR_SHARING_VIOLATION;
    CloseHandle(file);
    return false;
}

#else

bool is_open(const std::string& path) {
    for (const auto& entry : files::directory_iterator("/proc/self/fd")) {
        std::error_code closed_meanwhile;
        if (files::read_symlink(entry, closed_meanwhile) == path)
            return true;
    }
    return false;
}

#endif

} // namespace kirvo_test
