// The library's status codes as the code spells them.
#pragma once

#include "platform/platform.hpp"

namespace kirvo {

enum class Status : int32_t {
    ok = KIRVO_OK,
    bad_parameter = KIRVO_BAD_PARAMETER,
    no_memory = KIRVO_NO_MEMORY,
    null_handle = KIRVO_NULL_HANDLE,
    cannot_open = KIRVO_CANNOT_OPEN,
    read_error = KIRVO_READ_ERROR,
    write_error = KIRVO_WRITE_ERROR,
    jpeg_no_soi = KIRVO_JPEG_NO_SOI,
    jpeg_marker = KIRVO_JPEG_MARKER,
    jpeg_early_eoi = KIRVO_JPEG_EARLY_EOI,
    jpeg_header = KIRVO_JPEG_HEADER,
    jpeg_huffman = KIRVO_JPEG_HUFFMAN,
    jpeg_category = KIRVO_JPEG_CATEGORY,
    abandoned = KIRVO_ABANDONED,
    busy = KIRVO_BUSY,
    jpeg_frame = KIRVO_JPEG_FRAME,
    not_bmp = KIRVO_NOT_BMP,
    needs_8 = KIRVO_NEEDS_8,
    needs_24 = KIRVO_NEEDS_24,
    not_targa = KIRVO_NOT_TARGA,
    q0_size = KIRVO_Q0_SIZE,
    not_raw = KIRVO_NOT_RAW,
    raw_palette = KIRVO_RAW_PALETTE,
    more_than_256 = KIRVO_MORE_THAN_256,
    more_than_16 = KIRVO_MORE_THAN_16,
    not_icon = KIRVO_NOT_ICON,
    needs_8_16_24_32 = KIRVO_NEEDS_8_16_24_32,
    needs_16_24_32 = KIRVO_NEEDS_16_24_32,
    needs_24_32 = KIRVO_NEEDS_24_32,
    needs_8_24_32 = KIRVO_NEEDS_8_24_32,
    needs_16_32 = KIRVO_NEEDS_16_32,
    needs_1_4_8 = KIRVO_NEEDS_1_4_8,
    needs_8_24 = KIRVO_NEEDS_8_24,
    needs_16_24 = KIRVO_NEEDS_16_24,
};

constexpr int32_t code(Status status) { return static_cast<int32_t>(status); }

// Writes through an out-pointer that the caller may have left null.
template<typename T>
void report(T* out, T value) {
    if (out != nullptr)
        *out = value;
}
inline void report(int32_t* out, Status status) { report(out, code(status)); }

} // namespace kirvo
