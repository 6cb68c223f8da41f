// The packed DIB as GDI sees it, and a smaller copy of it.
#pragma once

#include "pictures/image.hpp"

#include <memory>

// A picture that is shown is not changed any more: any number of owners, and any thread, may have it.
using SharedImage = std::shared_ptr<const Image>;

inline SharedImage shared(Image image) { return std::make_shared<const Image>(std::move(image)); }

// Locks a picture for GDI, which wants a header and the pixels behind it.
class Locked {
  public:
    explicit Locked(const Image& image)
        : handle_(image.handle()), info_(static_cast<const BITMAPINFO*>(GlobalLock(handle_))) {}
    ~Locked() { GlobalUnlock(handle_); }
    Locked(const Locked&) = delete;
    Locked& operator=(const Locked&) = delete;

    const BITMAPINFO* info() const { return info_; }
    const void* pixels() const;

  private:
    HGLOBAL handle_;
    const BITMAPINFO* info_;
};

// At most so many pixels, in proportion, for a look; and to a size.
Image reduced(const Image& image, int32_t width, int32_t height);
