// The packed DIB as GDI sees it.
#pragma once

#include "dib.hpp"

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
