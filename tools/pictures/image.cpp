#include "pictures/image.hpp"

#include <cstring>
#include <new>

Image checked(HGLOBAL handle, const std::string& subject, const int32_t& status) {
    Image image(handle);
    if (!image)
        throw Failure(subject, meaning(status), status);
    return image;
}

BITMAPINFOHEADER Image::header() const {
    BITMAPINFOHEADER header = {};
    if (const void* data = GlobalLock(handle_)) {
        if (GlobalSize(handle_) >= sizeof header)
            std::memcpy(&header, data, sizeof header);
        GlobalUnlock(handle_);
    }
    return header;
}

Image duplicate(const Image& image) {
    const SIZE_T size = GlobalSize(image.handle());
    Image copy(GlobalAlloc(GMEM_MOVEABLE, size));
    if (!copy)
        throw std::bad_alloc();
    std::memcpy(GlobalLock(copy.handle()), GlobalLock(image.handle()), size);
    GlobalUnlock(copy.handle());
    GlobalUnlock(image.handle());
    return copy;
}

Image copy_at_24_bits(const Image& image) {
    const int32_t bits = image.bits();
    int32_t status = 0;
    HGLOBAL copy = bits == 24
                       ? Dib24DupEx(image.handle(), 0, 0, image.width(), image.height(), &status)
                   : bits <= 8 ? IncreaseColor16M(image.handle(), &status)
                               : DibConvert24bit(image.handle(), &status);
    return checked(copy, "conversion to 24 bits", status);
}

Image to_24_bits(Image image) {
    return image.bits() == 24 ? std::move(image) : copy_at_24_bits(image);
}

Rows::Rows(const Image& image)
    : handle_(image.handle()), first_(static_cast<uint8_t*>(GlobalLock(image.handle()))) {
    const int32_t bits = image.bits();
    stride_ = (static_cast<size_t>(image.width()) * static_cast<size_t>(bits) + 31) / 32 * 4;
    first_ += bits == 24 ? 40 : 52; // 32 bits have three masks
}
