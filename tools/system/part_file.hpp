// The system's calls behind Part. They throw std::system_error.
#pragma once

#include <cstddef>
#include <filesystem>

namespace part_file {

constexpr std::ptrdiff_t none = -1;

// Makes a file that is not there yet, for its owner alone.
std::ptrdiff_t create(const std::filesystem::path& name);
void write(std::ptrdiff_t file, const char* bytes, size_t count);
void close(std::ptrdiff_t file);
void remove(const std::filesystem::path& name);
// Rights for the lasting name: those of the file there, else the usual ones. What replaces a file
// is safe on the disk first.
void take_over(std::ptrdiff_t file, const std::filesystem::path& part,
               const std::filesystem::path& target);
void rename(const std::filesystem::path& name, const std::filesystem::path& target);

} // namespace part_file
