#include "memory.hpp"

namespace kirvo_files {

static const char* words_of(int32_t status) {
    switch (status) {
    case KIRVO_FILES_OK:
        return "success";
    case KIRVO_FILES_BAD_PARAMETER:
        return "a value out of its range";
    case KIRVO_FILES_NO_MEMORY:
        return "not enough memory";
    case KIRVO_FILES_MISSING:
        return "there is no such file";
    case KIRVO_FILES_IS_FOLDER:
        return "it is a folder";
    case KIRVO_FILES_NO_PERMISSION:
        return "the system does not permit it";
    case KIRVO_FILES_CANNOT_OPEN:
        return "the file cannot be opened";
    case KIRVO_FILES_READ_ERROR:
        return "the file cannot be read";
    case KIRVO_FILES_CANNOT_WRITE:
        return "the file cannot be written";
    case KIRVO_FILES_DISK_FULL:
        return "the disk is full";
    case KIRVO_FILES_EXISTS:
        return "there is a file of that name already";
    case KIRVO_FILES_EMPTY:
        return "the file is empty";
    case KIRVO_FILES_NOT_A_PICTURE:
        return "not a picture of a known format";
    case KIRVO_FILES_ENDS_EARLY:
        return "the file ends early";
    case KIRVO_FILES_DAMAGED:
        return "the file is damaged";
    case KIRVO_FILES_UNSUPPORTED:
        return "this variant of the format is not read";
    case KIRVO_FILES_NO_CODEC:
        return "there is no codec for this format here";
    case KIRVO_FILES_CLAIM_TOO_LARGE:
        return "it claims a size out of all proportion to the file";
    case KIRVO_FILES_NOT_WRITTEN:
        return "files of this format are not written";
    case KIRVO_FILES_TOO_LARGE:
        return "the picture is too large for this format";
    case KIRVO_FILES_SIZE_LIMIT:
        return "the picture does not become so small";
    case KIRVO_FILES_EDGE:
        return "the edges cannot be turned without loss";
    case KIRVO_FILES_NO_FRAME:
        return "the file has no such frame";
    case KIRVO_FILES_ABANDONED:
        return "abandoned";

    case KIRVO_BAD_PARAMETER:
        return "bad parameter";
    case KIRVO_NO_MEMORY:
        return "not enough memory";
    case KIRVO_NULL_HANDLE:
        return "no image";
    case KIRVO_CANNOT_OPEN:
        return "the file cannot be opened or created";
    case KIRVO_READ_ERROR:
        return "read error, or the file is too short";
    case KIRVO_WRITE_ERROR:
        return "write error";
    case KIRVO_JPEG_NO_SOI:
        return "no JPEG start of image";
    case KIRVO_JPEG_MARKER:
        return "unexpected marker in the JPEG data";
    case KIRVO_JPEG_EARLY_EOI:
        return "the JPEG ends before its first scan";
    case KIRVO_JPEG_HEADER:
        return "bad or unsupported JPEG header";
    case KIRVO_JPEG_HUFFMAN:
        return "Huffman code error in the JPEG data";
    case KIRVO_JPEG_CATEGORY:
        return "a coefficient is too large for the JPEG encoder";
    case KIRVO_ABANDONED:
        return "abandoned";
    case KIRVO_BUSY:
        return "another JPEG operation is in progress";
    case KIRVO_JPEG_FRAME:
        return "unsupported kind of JPEG";
    case KIRVO_NOT_BMP:
        return "not a BMP file, or a BMP of unsupported depth";
    case KIRVO_NEEDS_8:
        return "the image must have 8 bits";
    case KIRVO_NEEDS_24:
        return "the image must have 24 bits";
    case KIRVO_NOT_TARGA:
        return "not an uncompressed 24-bit Targa file";
    case KIRVO_Q0_SIZE:
        return "companion .IPR file missing, or the Q0 file is too short";
    case KIRVO_NOT_RAW:
        return "not a RAW file, or too short";
    case KIRVO_RAW_PALETTE:
        return "RAW file with a palette";
    case KIRVO_MORE_THAN_256:
        return "more than 256 colours";
    case KIRVO_MORE_THAN_16:
        return "more than 16 colours";
    case KIRVO_NOT_ICON:
        return "not an icon or cursor file";
    case KIRVO_NEEDS_8_16_24_32:
        return "the image must have 8, 16, 24 or 32 bits";
    case KIRVO_NEEDS_16_24_32:
        return "the image must have 16, 24 or 32 bits";
    case KIRVO_NEEDS_24_32:
        return "the image must have 24 or 32 bits";
    case KIRVO_NEEDS_8_24_32:
        return "the image must have 8, 24 or 32 bits";
    case KIRVO_NEEDS_16_32:
        return "the image must have 16 or 32 bits";
    case KIRVO_NEEDS_1_4_8:
        return "the image must have 1, 4 or 8 bits";
    case KIRVO_NEEDS_8_24:
        return "the image must have 8 or 24 bits";
    case KIRVO_NEEDS_16_24:
        return "the image must have 16 or 24 bits";
    default:
        return "unknown status";
    }
}

} // namespace kirvo_files

uint32_t WINAPI KirvoFilesStatusText(int32_t status, char* text, uint32_t capacity) {
    return kirvo_files::copy_text(kirvo_files::words_of(status), text, capacity);
}
