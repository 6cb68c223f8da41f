// A file that a test makes and that is gone afterwards.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kirvo_test {

class TempFile {
  public:
    // A name of its own in the system's folder for such files; nothing is made yet.
    explicit TempFile(const std::string& ending = ".tmp");
    TempFile(const std::string& ending, const std::vector<uint8_t>& content) : TempFile(ending) {
        write(content);
    }
    ~TempFile();
    TempFile(const TempFile&) = delete;
    TempFile& operator=(const TempFile&) = delete;

    const char* name() const { return name_.c_str(); }
    bool exists() const;
    void write(const std::vector<uint8_t>& content) const;
    std::vector<uint8_t> read() const;

  private:
    std::string name_;
};

// A folder that exists.
std::string temp_folder();

} // namespace kirvo_test
