#include "dib.hpp"

const void* Locked::pixels() const {
    const BITMAPINFOHEADER& header = info_->bmiHeader;
    const size_t masks = header.biCompression == BI_BITFIELDS ? 12 : 0;
    const size_t all = header.biBitCount <= 8 ? size_t{1} << header.biBitCount : 0;
    const size_t colours = header.biClrUsed != 0 ? header.biClrUsed : all;
    return reinterpret_cast<const char*>(info_) + header.biSize + masks + colours * 4;
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
