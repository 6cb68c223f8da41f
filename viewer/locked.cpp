#include "locked.hpp"

const void* Locked::pixels() const {
    const BITMAPINFOHEADER& header = info_->bmiHeader;
    const size_t masks = header.biCompression == BI_BITFIELDS ? 12 : 0;
    const size_t all = header.biBitCount <= 8 ? size_t{1} << header.biBitCount : 0;
    const size_t colours = header.biClrUsed != 0 ? header.biClrUsed : all;
    return reinterpret_cast<const char*>(info_) + header.biSize + masks + colours * 4;
}
