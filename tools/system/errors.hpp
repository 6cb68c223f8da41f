// Errors that end a picture's work, or the command.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

// An operation that did not work: the program ends with exit code 1.
class Failure : public std::runtime_error {
  public:
    // "photo.jpg: Permission denied". The status of a library's call is told with --verbose only.
    Failure(const std::string& subject, const std::string& reason, int32_t status = 0);

    const std::string& subject() const { return subject_; }
    const std::string& reason() const { return reason_; }
    int32_t status() const { return status_; } // 0 when no library has been asked
    // The same of something else.
    Failure about(const std::string& subject) const { return Failure(subject, reason_, status_); }

  private:
    std::string subject_, reason_;
    int32_t status_;
};

// A command that makes no sense: exit code 2.
class UsageError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};
