// Files that do not outlive the program, whether it ends or is interrupted.
#pragma once

#include <filesystem>
#include <string>

// Text of the command line as a path, and back.
std::filesystem::path path_of(const std::string& text);
std::string text_of(const std::filesystem::path& path);

// From now on ctrl-C and the like delete the temporary files before they end the program.
void clean_up_when_interrupted();

// A name of its own in a folder; who wants the file makes it.
class TemporaryFile {
  public:
    explicit TemporaryFile(const std::filesystem::path& folder);
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const std::string& name() const { return name_; }
    // Gives the file a lasting name in place of whatever bears it.
    std::error_code rename(const std::filesystem::path& target);

  private:
    std::string name_;
    size_t slot_;
};
