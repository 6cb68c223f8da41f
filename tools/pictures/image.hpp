// A packed DIB that the program owns.
#pragma once

#include "kirvo.h"
#include "system/errors.hpp"

#include <utility>

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
    HGLOBAL release() { return std::exchange(handle_, nullptr); }
    int32_t width() const { return header().biWidth; }
    int32_t height() const { return header().biHeight; }
    int32_t bits() const { return header().biBitCount; }

  private:
    BITMAPINFOHEADER header() const;

    HGLOBAL handle_ = nullptr;
};

// What a call has made; throws Failure with the status in words where that is nothing. The status
// is looked at once the call that wrote it is over: hence a reference.
Image checked(HGLOBAL handle, const std::string& subject, const int32_t& status);

// What a status of either library means, in words.
std::string meaning(int32_t status);

// Another image of the same bytes.
Image duplicate(const Image& image);
// A copy of the image, expanded or converted.
Image copy_at_24_bits(const Image& image);
// The image itself when it has 24 bits, else such a copy.
Image to_24_bits(Image image);

// The rows of an image of 24 or 32 bits, bottom first, locked.
class Rows {
  public:
    explicit Rows(const Image& image);
    ~Rows() { GlobalUnlock(handle_); }
    Rows(const Rows&) = delete;
    Rows& operator=(const Rows&) = delete;

    uint8_t* row(int32_t y) const { return first_ + stride_ * static_cast<size_t>(y); }

  private:
    HGLOBAL handle_;
    uint8_t* first_;
    size_t stride_;
};
