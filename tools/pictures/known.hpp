// What is known of a file beside its pixels.
#pragma once

#include "kirvo_files.h"

#include <string>
#include <utility>
#include <vector>

class Known {
  public:
    Known() = default;
    Known(Known&& other) noexcept : file_(std::exchange(other.file_, nullptr)) {}
    Known& operator=(Known&& other) noexcept {
        std::swap(file_, other.file_);
        return *this;
    }
    ~Known() { KirvoFilesClose(file_); }

    KirvoFile handle() const { return file_; }
    KirvoFile* receiver() { return &file_; }
    KirvoFilesDescription description() const;
    // Empty where there is nothing to say.
    std::string text(KirvoFilesTextKind kind, uint32_t index = 0) const;
    std::vector<uint8_t> data(KirvoFilesDataKind kind) const;
    void set_comment(const std::string& text);
    // What is worth knowing: of losses, with --verbose of everything.
    std::vector<std::string> notes() const;

  private:
    KirvoFile file_ = nullptr;
};

// Throws a Failure about a file in the library's words unless the status is success.
void expect(int32_t status, const Known& known, const std::string& name);
