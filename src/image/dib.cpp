#include "image/dib.hpp"

#include <cstring>

namespace kirvo {

LockedDib::LockedDib(HGLOBAL handle) : header{}, block_(handle) {
    read_bytes(0, &header, sizeof header);
}

uint64_t LockedDib::rows_offset(RowStart start) const {
    const uint64_t header_bytes =
        start == RowStart::after_40 ? info_header_bytes : uint64_t{header.biSize};
    return header_bytes + PaletteSize(&header);
}

bool LockedDib::holds_rows_at(uint64_t offset) const {
    if (width() < 1 || height() < 1 || offset > size())
        return false;
    const uint64_t room = size() - offset;
    const auto last = static_cast<uint64_t>(row_bytes(width(), bits()));
    const auto step = static_cast<uint64_t>(stride());
    return last <= room &&
           (step == 0 || static_cast<uint64_t>(height() - 1) <= (room - last) / step);
}

void LockedDib::read_bytes(uint64_t offset, void* bytes, size_t count) const {
    const size_t there =
        offset < size() ? std::min(count, size() - static_cast<size_t>(offset)) : 0;
    if (there != 0)
        std::memcpy(bytes, data() + static_cast<size_t>(offset), there);
    std::memset(static_cast<uint8_t*>(bytes) + there, 0, count - there);
}

void LockedDib::write_bytes(uint64_t offset, const void* bytes, size_t count) const {
    if (offset < size())
        std::memcpy(data() + static_cast<size_t>(offset), bytes,
                    std::min(count, size() - static_cast<size_t>(offset)));
}

void copy_up_to(uint8_t* to, const uint8_t* from, size_t count, const uint8_t* end,
                CopyBytes copy) {
    const size_t there = from < end ? std::min(count, static_cast<size_t>(end - from)) : 0;
    copy(to, from, there);
    if (there != count)
        std::memset(to + there, 0, count - there);
}

Rows rows_of(const LockedDib& dib, const Rect& rect, RowStart start) {
    Rows rows = dib.rows(start);
    rows.first = rows[bottom_row(dib.height(), rect)] + ptrdiff_t{rect.x} * (dib.bits() / 8);
    return rows;
}

bool well_formed(const Rect& rect) {
    return rect.x >= 0 && rect.y >= 0 && rect.width >= 1 && rect.height >= 1;
}

bool inside(const Rect& rect, const LockedDib& dib) {
    return int64_t{rect.x} + rect.width <= dib.width() &&
           int64_t{rect.y} + rect.height <= dib.height();
}

Status check_rect(const LockedDib& dib, const Rect& rect, const Depths& depths, RowStart start) {
    if (!dib)
        return Status::null_handle;
    if (!well_formed(rect))
        return Status::bad_parameter;
    if (!depths.accepts(dib.bits()))
        return depths.otherwise;
    if (!inside(rect, dib) || !dib.holds_rows(start))
        return Status::bad_parameter;
    return Status::ok;
}

Status check_rect_24(const LockedDib& dib, const Rect& rect, RowStart start) {
    return check_rect(dib, rect, {[](int32_t bits) { return bits == 24; }, Status::needs_24},
                      start);
}

Status check_rect_8_24(const LockedDib& dib, const Rect& rect, RowStart start) {
    return check_rect(dib, rect,
                      {[](int32_t bits) { return bits == 8 || bits == 24; }, Status::needs_8_24},
                      start);
}

Status check_rect_24_32(const LockedDib& dib, const Rect& rect, RowStart start) {
    return check_rect(dib, rect,
                      {[](int32_t bits) { return bits == 24 || bits == 32; }, Status::needs_24_32},
                      start);
}

Status check_rect_16_to_32(const LockedDib& dib, const Rect& rect, RowStart start) {
    return check_rect(dib, rect,
                      {[](int32_t bits) { return bits == 16 || bits == 24 || bits == 32; },
                       Status::needs_16_24_32},
                      start);
}

Status check_rect_8_to_32(const LockedDib& dib, const Rect& rect, RowStart start) {
    return check_rect(
        dib, rect,
        {[](int32_t bits) { return bits == 8 || bits == 16 || bits == 24 || bits == 32; },
         Status::needs_8_16_24_32},
        start);
}

namespace {

void clear_padding(uint8_t* rows, int64_t width, int64_t height, int32_t bits) {
    const auto stride = static_cast<size_t>(row_stride(width, bits));
    const auto used = static_cast<size_t>(row_bytes(width, bits));
    for (int64_t row = 0; used != stride && row < height; ++row)
        std::memset(rows + static_cast<size_t>(row) * stride + used, 0, stride - used);
}

} // namespace

OwnedBlock new_dib(int64_t width, int64_t height, int32_t bits, Content content) {
    if (width < 1 || width > INT32_MAX || height < 1 || height > INT32_MAX || !is_depth(bits))
        return {};
    const bool masked = bits == 16 || bits == 32;
    const uint32_t colour_part = masked ? mask_bytes : bits <= 8 ? 4u << bits : 0;
    const auto stride = static_cast<uint64_t>(row_stride(width, bits));
    if (static_cast<uint64_t>(height) > max_block_bytes / stride)
        return {};
    const uint64_t image = stride * static_cast<uint64_t>(height);
    // A block of this size is always mapped anew, which makes it zero: to ask for zeros costs nothing
    // then, and clearing the rest by hand would touch every page.
    constexpr uint64_t always_mapped = uint64_t{128} << 20;
    if (image > always_mapped)
        content = Content::zero;
    OwnedBlock block(allocate_block(info_header_bytes + colour_part + image, content));
    const LockedBlock lock(block.get());
    if (!lock)
        return {};
    uint8_t* rows = lock.data() + info_header_bytes + colour_part;
    if (content == Content::any) {
        std::memset(lock.data(), 0, info_header_bytes + colour_part);
        clear_padding(rows, width, height, bits);
    }
    BITMAPINFOHEADER header = {};
    header.biSize = info_header_bytes;
    header.biWidth = static_cast<LONG>(width);
    header.biHeight = static_cast<LONG>(height);
    header.biPlanes = 1;
    header.biBitCount = static_cast<WORD>(bits);
    header.biCompression = masked ? BI_BITFIELDS : BI_RGB;
    header.biSizeImage = static_cast<DWORD>(image);
    std::memcpy(lock.data(), &header, sizeof header);
    return block;
}

} // namespace kirvo

using namespace kirvo;

uint16_t WINAPI DibNumColors(const void* header) {
    if (header == nullptr)
        return 0;
    BITMAPINFOHEADER info;
    std::memcpy(&info, header, sizeof info);
    if (info.biClrUsed != 0)
        return static_cast<uint16_t>(info.biClrUsed);
    switch (info.biBitCount) {
    case 1:
    case 4:
    case 8:
        return static_cast<uint16_t>(1u << info.biBitCount);
    case 16:
    case 32:
        return info.biCompression == BI_BITFIELDS ? 3 : 0;
    default:
        return 0;
    }
}

uint16_t WINAPI PaletteSize(const void* header) {
    if (header == nullptr)
        return 0;
    DWORD size;
    std::memcpy(&size, header, sizeof size);
    const uint32_t entry = size == 12 ? 3 : 4;
    return static_cast<uint16_t>(DibNumColors(header) * entry);
}

int32_t WINAPI DibQueryBitCount(HGLOBAL handle) {
    const LockedDib dib(handle);
    return dib ? dib.bits() : code(Status::null_handle);
}

HGLOBAL WINAPI DibMemAllocEx(uint32_t width, int32_t height, uint32_t bits) {
    return new_dib(static_cast<int32_t>(width), height, static_cast<int32_t>(bits)).release();
}
