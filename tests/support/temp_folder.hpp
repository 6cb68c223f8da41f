// A folder of a test's own for files that need certain names, gone afterwards with all its files.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kirvo_test {

class TempFolder {
  public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    // The full path of a file in the folder.
    std::string path(const std::string& title) const;
    // Makes a file and returns its path.
    std::string write(const std::string& title, const std::vector<uint8_t>& content) const;
    std::string write(const std::string& title, const std::string& content) const {
        return write(title, std::vector<uint8_t>(content.begin(), content.end()));
    }

  private:
    std::string name_;
};

// True while the process has the file open.
bool is_open(const std::string& path);

} // namespace kirvo_test
