#include "dib.hpp"

#include <cstring>
#include <new>

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

Image reduced(const Image& image, int32_t width, int32_t height) {
    Image expanded;
    if (image.bits() != 24)
        expanded = copy_at_24_bits(image);
    const Image& from = expanded ? expanded : image;
    int32_t status = 0;
    HGLOBAL result =
        Dib24ZoomEx2(from.handle(), 0, 0, from.width(), from.height(), width, height, &status, 1);
    return checked(result, "reducing", status);
}
