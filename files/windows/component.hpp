// The Windows Imaging Component: what is needed of COM.
#pragma once

#include "codec.hpp"

#include <wincodec.h>

namespace kirvo_files {

// A reference that is given back.
template<typename T>
class Com {
  public:
    Com() = default;
    ~Com() {
        if (pointer_ != nullptr)
            pointer_->Release();
    }
    Com(const Com&) = delete;
    Com& operator=(const Com&) = delete;
    T* get() const { return pointer_; }
    T* operator->() const { return pointer_; }
    T** receive() { return &pointer_; }

  private:
    T* pointer_ = nullptr;
};

// COM in this thread, for as long as the object lives, and the factory.
class Imaging {
  public:
    Imaging();
    ~Imaging();
    Imaging(const Imaging&) = delete;
    Imaging& operator=(const Imaging&) = delete;
    explicit operator bool() const { return factory_ != nullptr; }
    IWICImagingFactory* operator->() const { return factory_; }

  private:
    IWICImagingFactory* factory_ = nullptr;
    bool entered_ = false;
};

// Whether an answer means that memory has run out.
inline bool is_memory(HRESULT result) { return result == E_OUTOFMEMORY; }

bool has_decoder(int32_t format);
bool has_encoder(int32_t format);
const GUID* container_of(int32_t format);

} // namespace kirvo_files
