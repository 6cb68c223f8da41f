#include "pictures/image.hpp"

Image checked(HGLOBAL handle, const std::string& subject, const int32_t& status) {
    Image image = Image::adopt(handle);
    if (!image)
        throw Failure(subject, meaning(status), status);
    return image;
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
