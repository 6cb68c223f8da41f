// What the subcommands share: an owned image, and errors that name the file and the status.
#pragma once

#include "kirvo.h"

#include <cstdint>
#include <stdexcept>
#include <string>
#include <utility>

// An operation that did not work: the program ends with exit code 1.
class Failure : public std::runtime_error {
  public:
    // "photo.jpg: status -13: bad or unsupported JPEG header"
    Failure(const std::string& subject, int32_t status);
    // "photo.jpg: not a picture of a known format"
    Failure(const std::string& subject, const std::string& reason)
        : Failure(subject, KIRVO_OK, reason) {}

    const std::string& subject() const { return subject_; }
    const std::string& reason() const { return reason_; }
    int32_t status() const { return status_; } // KIRVO_OK when the library has not been asked
    // The same of something else.
    Failure about(const std::string& subject) const { return Failure(subject, status_, reason_); }

  private:
    Failure(const std::string& subject, int32_t status, const std::string& reason);

    std::string subject_, reason_;
    int32_t status_;
};

// A command that makes no sense: exit code 2.
class UsageError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// What a status code means, in words.
std::string meaning(int32_t status);

// A packed DIB that the program owns.
class Image {
  public:
    Image() = default;
    explicit Image(HGLOBAL handle) : handle_(handle) {}
    Image(Image&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
    Image& operator=(Image&& other) noexcept {
        std::swap(handle_, other.handle_);
        return *this;
    }
    ~Image() {
        if (handle_ != nullptr)
            GlobalFree(handle_);
    }

    explicit operator bool() const { return handle_ != nullptr; }
    HGLOBAL handle() const { return handle_; }
    BITMAPINFOHEADER header() const;
    int32_t width() const { return header().biWidth; }
    int32_t height() const { return header().biHeight; }
    int32_t bits() const { return header().biBitCount; }

  private:
    HGLOBAL handle_ = nullptr;
};
