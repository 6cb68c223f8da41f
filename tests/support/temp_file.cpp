#include "support/temp_file.hpp"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#ifdef _WIN32
#include <process.h>
#else
#include <unistd.h>
#endif

namespace kirvo_test {

std::string temp_folder() {
#ifndef _WIN32
    // In memory, where there is such a folder, unless the user wants it elsewhere.
    if (std::getenv("TMPDIR") == nullptr && std::filesystem::is_directory("/dev/shm"))
        return "/dev/shm";
#endif
    return std::filesystem::temp_directory_path().string();
}

TempFile::TempFile(const std::string& ending) {
    static int count = 0;
    name_ = (std::filesystem::path(temp_folder()) /
             ("kirvo_test_" + std::to_string(getpid()) + "_" + std::to_string(++count) + ending))
                .string();
}

TempFile::~TempFile() { std::remove(name()); }

bool TempFile::exists() const { return std::ifstream(name_).good(); }

void TempFile::write(const std::vector<uint8_t>& content) const {
    std::ofstream file(name_, std::ios::binary);
    file.write(reinterpret_cast<const char*>(content.data()),
               static_cast<std::streamsize>(content.size()));
}

std::vector<uint8_t> TempFile::read() const {
    std::ifstream file(name_, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace kirvo_test
