// BMP files: a 14-byte file header followed by the packed DIB itself.
#include "formats/answer.hpp"

#include <cstring>

namespace kirvo {

namespace {

constexpr uint32_t file_header_bytes = 14;

// The layout is trusted: neither the pixel offset nor the rest of the info header is examined.
OwnedBlock read_image(const char* name, Status& status) {
    InputFile file;
    status = Status::cannot_open;
    if (!file.open(name))
        return {};
    const uint64_t size = file.size();
    uint8_t header[file_header_bytes];
    status = Status::read_error;
    if (!file.read(header, sizeof header))
        return {};
    status = Status::not_bmp;
    if (std::memcmp(header, "BM", 2) != 0)
        return {};
    status = Status::read_error;
    if (size < file_header_bytes)
        return {};
    status = Status::no_memory;
    const uint64_t image = size - file_header_bytes;
    OwnedBlock block(allocate_block(image));
    if (!block)
        return {};
    status = Status::read_error;
    if (image != 0 && !file.read(LockedBlock(block.get()).data(), static_cast<uint32_t>(image)))
        return {};
    status = Status::ok;
    return block;
}

// The colour part that a file carries, by depth alone.
uint64_t colour_part_bytes(const BITMAPINFOHEADER& header) {
    if (header.biBitCount == 24)
        return 0;
    if (header.biBitCount > 8)
        return mask_bytes;
    const uint64_t entries = header.biClrUsed != 0 ? header.biClrUsed : 1u << header.biBitCount;
    return entries * sizeof(RGBQUAD);
}

// The colour part that the image must have. A 16- or 32-bit image without masks is written all the
// same, with what stands where the masks would be.
uint64_t required_colour_part(const BITMAPINFOHEADER& header) {
    const bool lacks_masks = header.biBitCount > 8 && header.biCompression != BI_BITFIELDS;
    return lacks_masks ? 0 : colour_part_bytes(header);
}

// Byte of a row at which column x is taken to begin: the next whole byte at 1 and 4 bits.
int64_t column_offset(int32_t x, int32_t bits) { return (int64_t{x} * bits + 7) / 8; }

void put_u32(uint8_t* to, uint64_t value) {
    const auto low = static_cast<uint32_t>(value);
    std::memcpy(to, &low, sizeof low);
}

bool write_file_header(OutputFile& file, uint64_t colour_part, uint64_t image) {
    uint8_t header[file_header_bytes] = {'B', 'M'};
    const uint64_t pixels = file_header_bytes + info_header_bytes + colour_part;
    put_u32(header + 2, pixels + image);
    put_u32(header + 10, pixels);
    return file.write(header, sizeof header);
}

// Writes bytes of the block; those past its end are written as 0.
bool write_span(OutputFile& file, const LockedDib& dib, uint64_t offset, uint64_t count) {
    static constexpr uint8_t zeros[256] = {};
    const uint64_t there = offset < dib.size() ? std::min(count, dib.size() - offset) : 0;
    if (there != 0 &&
        !file.write(dib.data() + static_cast<size_t>(offset), static_cast<uint32_t>(there)))
        return false;
    for (uint64_t left = count - there; left != 0;) {
        const auto step = static_cast<uint32_t>(std::min<uint64_t>(left, sizeof zeros));
        if (!file.write(zeros, step))
            return false;
        left -= step;
    }
    return true;
}

bool write_rectangle(OutputFile& file, const LockedDib& dib, const Rect& rect, uint64_t colour_part,
                     uint64_t stride) {
    BITMAPINFOHEADER header = dib.header;
    header.biWidth = rect.width;
    header.biHeight = rect.height;
    if (!file.write(&header, sizeof header) ||
        !write_span(file, dib, info_header_bytes, colour_part))
        return false;
    const uint64_t rows =
        info_header_bytes + colour_part + static_cast<uint64_t>(column_offset(rect.x, dib.bits()));
    const int64_t first = bottom_row(dib.height(), rect);
    for (int64_t row = first; row < first + rect.height; ++row) {
        if (!write_span(file, dib, rows + static_cast<uint64_t>(row * dib.stride()), stride))
            return false;
    }
    return true;
}

Status write_image(const char* name, const LockedDib& dib, const Rect& rect) {
    if (!is_depth(dib.bits()))
        return Status::not_bmp;
    if (!well_formed(rect) || !inside(rect, dib) ||
        !dib.holds_rows_at(info_header_bytes + required_colour_part(dib.header)))
        return Status::bad_parameter;

    const uint64_t colour_part = colour_part_bytes(dib.header);
    const auto stride = static_cast<uint64_t>(row_stride(rect.width, dib.bits()));
    const uint64_t image = stride * static_cast<uint64_t>(rect.height);
    const bool whole =
        rect.x == 0 && rect.y == 0 && rect.width == dib.width() && rect.height == dib.height();
    OutputFile file;
    if (!file.create(name))
        return Status::cannot_open;
    const bool written = write_file_header(file, colour_part, image) &&
                         (whole ? write_span(file, dib, 0, info_header_bytes + colour_part + image)
                                : write_rectangle(file, dib, rect, colour_part, stride));
    return written && file.close() ? Status::ok : Status::write_error;
}

} // namespace

} // namespace kirvo

using namespace kirvo;

HGLOBAL WINAPI DibReadEx(LPCSTR name, uint32_t* width, uint32_t* height, uint32_t* bits,
                         int32_t* status) {
    Status result;
    OwnedBlock block = read_image(name, result);
    if (block) {
        const LockedDib dib(block.get());
        report(bits, static_cast<uint32_t>(dib.bits()));
        if (is_depth(dib.bits())) {
            report(width, static_cast<uint32_t>(dib.width()));
            report(height, static_cast<uint32_t>(dib.height()));
        } else {
            result = Status::not_bmp;
        }
    }
    report(status, result);
    return result == Status::ok ? block.release() : nullptr;
}

HGLOBAL WINAPI Dib24Read(LPCSTR name, uint32_t* width, uint32_t* height, int32_t* status) {
    uint32_t bits = 0;
    OwnedBlock block(DibReadEx(name, width, height, &bits, status));
    if (block && bits != 24) {
        report(status, Status::needs_24);
        return nullptr;
    }
    return block.release();
}

int32_t WINAPI DibWriteEx(LPCSTR name, HGLOBAL dib, int32_t x, int32_t y, int32_t width,
                          int32_t height) {
    return code(
        with_rectangle(dib, {x, y, width, height}, [=](const LockedDib& image, const Rect& rect) {
            return write_image(name, image, rect);
        }));
}

int32_t WINAPI Dib24Write(LPCSTR name, HGLOBAL dib, int32_t x, int32_t y, int32_t width,
                          int32_t height) {
    const int32_t bits = DibQueryBitCount(dib);
    if (bits == code(Status::null_handle))
        return bits;
    return bits == 24 ? DibWriteEx(name, dib, x, y, width, height) : code(Status::needs_24);
}
