// Targa files: an 18-byte header followed by uncompressed rows of 24-bit pixels without padding.
#include "formats/answer.hpp"
#include "formats/packed_rows.hpp"

namespace kirvo {

namespace {

constexpr uint32_t header_bytes = 18;
constexpr uint8_t true_colour = 2; // image type
constexpr uint8_t top_left = 0x20; // image descriptor: rows from the top down

uint32_t get_u16(const uint8_t* from) { return from[0] | uint32_t{from[1]} << 8; }

void put_u16(uint8_t* to, int32_t value) {
    to[0] = static_cast<uint8_t>(value);
    to[1] = static_cast<uint8_t>(value >> 8);
}

bool read_rows(InputFile& file, const LockedDib& dib, bool from_top) {
    const Rows rows = dib.rows(RowStart::after_40);
    PackedRows file_rows(file, static_cast<uint32_t>(row_bytes(dib.width(), 24)),
                         static_cast<uint32_t>(dib.height()));
    for (int32_t i = 0; i < dib.height(); ++i) {
        if (!file_rows.next(rows[from_top ? dib.height() - 1 - i : i], false))
            return false;
    }
    return true;
}

// An image ID or a colour map before the pixels is not skipped.
OwnedBlock read_image(const char* name, Status& status) {
    InputFile file;
    status = Status::cannot_open;
    if (!file.open(name))
        return {};
    uint8_t header[header_bytes];
    status = Status::read_error;
    if (!file.read(header, sizeof header))
        return {};
    status = Status::not_targa;
    if (header[2] != true_colour || header[16] != 24)
        return {};
    status = Status::no_memory;
    OwnedBlock image = new_dib(get_u16(header + 12), get_u16(header + 14), 24);
    if (!image)
        return {};
    status = Status::read_error;
    if (!read_rows(file, LockedDib(image.get()), (header[17] & top_left) != 0))
        return {};
    status = Status::ok;
    return image;
}

bool write_rectangle(OutputFile& file, const LockedDib& dib, const Rect& rect) {
    uint8_t header[header_bytes] = {};
    header[2] = true_colour;
    put_u16(header + 12, rect.width);
    put_u16(header + 14, rect.height);
    header[16] = 24;
    if (!file.write(header, sizeof header))
        return false;
    const Rows rows = dib.rows_at(info_header_bytes);
    const auto bytes = static_cast<uint32_t>(row_bytes(rect.width, 24));
    const int64_t first = bottom_row(dib.height(), rect);
    for (int64_t row = first; row < first + rect.height; ++row) {
        if (!file.write(rows[row] + row_bytes(rect.x, 24), bytes))
            return false;
    }
    return true;
}

Status write_image(const char* name, const LockedDib& dib, const Rect& rect) {
    if (!well_formed(rect) || !inside(rect, dib) || !dib.holds_rows_at(info_header_bytes))
        return Status::bad_parameter;
    if (dib.bits() != 24)
        return Status::needs_24;
    OutputFile file;
    if (!file.create(name))
        return Status::cannot_open;
    return write_rectangle(file, dib, rect) && file.close() ? Status::ok : Status::write_error;
}

} // namespace

} // namespace kirvo

using namespace kirvo;

HGLOBAL WINAPI Targa24Read(LPCSTR name, uint32_t* width, uint32_t* height, int32_t* status) {
    Status result;
    OwnedBlock image = read_image(name, result);
    return answer(std::move(image), result, width, height, nullptr, status);
}

int32_t WINAPI Targa24Write(LPCSTR name, HGLOBAL dib, int32_t x, int32_t y, int32_t width,
                            int32_t height) {
    return code(
        with_rectangle(dib, {x, y, width, height}, [=](const LockedDib& image, const Rect& rect) {
            return write_image(name, image, rect);
        }));
}
