#include "dib.hpp"

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
