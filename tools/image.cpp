#include "image.hpp"

#include <cstring>

std::string meaning(int32_t status) {
    switch (status) {
    case KIRVO_OK: return "success";
    case KIRVO_BAD_PARAMETER: return "bad parameter";
    case KIRVO_NO_MEMORY: return "not enough memory";
    case KIRVO_NULL_HANDLE: return "no image";
    case KIRVO_CANNOT_OPEN: return "the file cannot be opened or created";
    case KIRVO_READ_ERROR: return "read error, or the file is too short";
    case KIRVO_WRITE_ERROR: return "write error";
    case KIRVO_JPEG_NO_SOI: return "no JPEG start of image";
    case KIRVO_JPEG_MARKER: return "unexpected marker in the JPEG data";
    case KIRVO_JPEG_EARLY_EOI: return "the JPEG ends before its first scan";
    case KIRVO_JPEG_HEADER: return "bad or unsupported JPEG header";
    case KIRVO_JPEG_HUFFMAN: return "Huffman code error in the JPEG data";
    case KIRVO_JPEG_CATEGORY: return "a coefficient is too large for the JPEG encoder";
    case KIRVO_ABANDONED: return "abandoned";
    case KIRVO_BUSY: return "another JPEG operation is in progress";
    case KIRVO_JPEG_FRAME: return "unsupported kind of JPEG";
    case KIRVO_NOT_BMP: return "not a BMP file, or a BMP of unsupported depth";
    case KIRVO_NEEDS_8: return "the image must be 8 bits";
    case KIRVO_NEEDS_24: return "the image must be 24 bits";
    case KIRVO_NOT_TARGA: return "not an uncompressed 24-bit Targa file";
    case KIRVO_Q0_SIZE: return "companion .IPR file missing, or the Q0 file is too short";
    case KIRVO_NOT_RAW: return "not a RAW file, or too short";
    case KIRVO_RAW_PALETTE: return "RAW file with a palette";
    case KIRVO_MORE_THAN_256: return "more than 256 colours";
    case KIRVO_MORE_THAN_16: return "more than 16 colours";
    case KIRVO_NOT_ICON: return "not an icon or cursor file";
    case KIRVO_NEEDS_8_16_24_32: return "the image must be 8, 16, 24 or 32 bits";
    case KIRVO_NEEDS_16_24_32: return "the image must be 16, 24 or 32 bits";
    case KIRVO_NEEDS_24_32: return "the image must be 24 or 32 bits";
    case KIRVO_NEEDS_8_24_32: return "the image must be 8, 24 or 32 bits";
    case KIRVO_NEEDS_16_32: return "the image must be 16 or 32 bits";
    case KIRVO_NEEDS_1_4_8: return "the image must be 1, 4 or 8 bits";
    case KIRVO_NEEDS_8_24: return "the image must be 8 or 24 bits";
    case KIRVO_NEEDS_16_24: return "the image must be 16 or 24 bits";
    default: return "unknown status";
    }
}

Failure::Failure(const std::string& subject, int32_t status)
    : Failure(subject, status, meaning(status)) {}

Failure::Failure(const std::string& subject, int32_t status, const std::string& reason)
    : std::runtime_error(subject + ": " +
                         (status != KIRVO_OK ? "status " + std::to_string(status) + ": " : "") +
                         reason),
      subject_(subject), reason_(reason), status_(status) {}

BITMAPINFOHEADER Image::header() const {
    BITMAPINFOHEADER header = {};
    if (const void* data = GlobalLock(handle_)) {
        if (GlobalSize(handle_) >= sizeof header)
            std::memcpy(&header, data, sizeof header);
        GlobalUnlock(handle_);
    }
    return header;
}
