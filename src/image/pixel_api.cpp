// Single pixels and lines of an image of any depth.
#include "image/pixels.hpp"

namespace kirvo {

namespace {

// The row of a pixel inside the image, rows starting after a 40-byte header.
uint8_t* find_row(const LockedDib& dib, int32_t x, int32_t y) {
    if (!dib || x < 0 || y < 0 || x >= dib.width() || y >= dib.height())
        return nullptr;
    const uint64_t offset = dib.rows_offset(RowStart::after_40);
    if (!is_depth(dib.bits()) || !dib.holds_rows_at(offset))
        return nullptr;
    return dib.rows_at(offset)[dib.height() - 1 - y];
}

uint8_t index_at(const uint8_t* row, int32_t x, int32_t bits) {
    switch (bits) {
    case 1:
        return (row[x / 8] >> (7 - x % 8)) & 1;
    case 4:
        return x % 2 == 0 ? row[x / 2] >> 4 : row[x / 2] & 15;
    default:
        return row[x];
    }
}

Rgb colour_at(const LockedDib& dib, const uint8_t* row, int32_t x) {
    if (dib.bits() <= 8) {
        RGBQUAD entry;
        const uint64_t index = index_at(row, x, dib.bits());
        dib.read_bytes(info_header_bytes + index * sizeof entry, &entry, sizeof entry);
        return {entry.rgbRed, entry.rgbGreen, entry.rgbBlue};
    }
    const PixelFormat format = PixelFormat::of(dib);
    return format.load(row + static_cast<size_t>(x) * format.bytes());
}

// The pixel word of a colour. Red keeps the bits above it, and blue the top byte: the masks, or the
// bytes of a 24-bit pixel, cut them away.
uint32_t pixel_word(const PixelFormat& format, uint32_t colour) {
    const uint32_t green = (colour & 0xFFFF) >> 8, blue = colour >> 16;
    if (format.bits == 24)
        return (colour & 0xFF) << 16 | green << 8 | (blue & 0xFF);
    return format.under_mask(colour, 0) | format.under_mask(green, 1) | format.under_mask(blue, 2);
}

bool is_direct(int32_t bits) { return bits == 16 || bits == 24 || bits == 32; }

// Range first, then depth: an indexed image outside its range is a bad parameter. The range test
// leaves out what find_row needs to know of the depth.
Status check_line(const LockedDib& dib, int32_t x0, int32_t x1, int32_t y) {
    if (!dib || x0 < 0 || x1 < 0 || y < 0 || x0 >= dib.width() || x1 >= dib.width() ||
        y >= dib.height())
        return Status::bad_parameter;
    if (!is_direct(dib.bits()))
        return Status::needs_16_24_32;
    return find_row(dib, x0, y) != nullptr ? Status::ok : Status::bad_parameter;
}

Status set_line(HGLOBAL handle, int32_t x0, int32_t x1, int32_t y, uint32_t colour) {
    const LockedDib dib(handle);
    const Status status = check_line(dib, x0, x1, y);
    if (status != Status::ok)
        return status;
    const PixelFormat format = PixelFormat::of(dib);
    const uint32_t word = pixel_word(format, colour);
    uint8_t* row = find_row(dib, x0, y);
    for (int32_t x = x0; x <= x1; ++x)
        store_word(row + static_cast<size_t>(x) * format.bytes(), word, format.bytes());
    return Status::ok;
}

} // namespace

} // namespace kirvo

using namespace kirvo;

int32_t WINAPI DibGetPixelColor(HGLOBAL handle, int32_t x, int32_t y, uint32_t* colour) {
    const LockedDib dib(handle);
    const uint8_t* row = find_row(dib, x, y);
    if (row == nullptr)
        return code(Status::bad_parameter);
    const Rgb pixel = colour_at(dib, row, x);
    report(colour, pixel.red | static_cast<uint32_t>(pixel.green) << 8 |
                       static_cast<uint32_t>(pixel.blue) << 16);
    return code(Status::ok);
}

int32_t WINAPI DibSetPixelColor(HGLOBAL dib, int32_t x, int32_t y, uint32_t colour) {
    return code(set_line(dib, x, x, y, colour));
}

int32_t WINAPI DibSetLineColor(HGLOBAL dib, int32_t x0, int32_t x1, int32_t y, uint32_t colour) {
    return code(set_line(dib, x0, x1, y, colour));
}
