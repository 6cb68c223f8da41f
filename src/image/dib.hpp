// The packed DIB: sizes, locked views, new images, and the check of a handle and a rectangle that
// opens nearly every operation.
#pragma once

#include "image/memory.hpp"
#include "image/status.hpp"
#include "image/stream.hpp"

#include <algorithm>

namespace kirvo {

constexpr uint32_t info_header_bytes = 40;
constexpr uint32_t mask_bytes = 12;

constexpr bool is_depth(int32_t bits) {
    return bits == 1 || bits == 4 || bits == 8 || bits == 16 || bits == 24 || bits == 32;
}

// Bytes that hold the pixels of one row, without padding.
constexpr int64_t row_bytes(int64_t width, int32_t bits) { return (width * bits + 7) / 8; }

// Bytes from one stored row to the next: padded to a multiple of 4.
constexpr int64_t row_stride(int64_t width, int32_t bits) {
    return (row_bytes(width, bits) + 3) & ~int64_t{3};
}

// The two rules for where the pixel rows start. They agree on images with a 40-byte header.
enum class RowStart {
    after_header, // biSize + PaletteSize
    after_40,     // 40 + PaletteSize, whatever biSize says
};

struct Rect {
    int32_t x, y, width, height;
};

// Stored rows of an image, counted from the bottom of the picture.
struct Rows {
    uint8_t* first;
    ptrdiff_t stride;
    const uint8_t* end; // of the block: nothing at or past it is touched

    uint8_t* operator[](int64_t row) const { return first + static_cast<ptrdiff_t>(row) * stride; }
};

// A packed DIB locked for as long as the object lives. The header is a copy, taken once; fields
// that lie past the end of a short block read as 0.
class LockedDib {
  public:
    explicit LockedDib(HGLOBAL handle);

    explicit operator bool() const { return static_cast<bool>(block_); }
    BITMAPINFOHEADER header; // changes here stay here

    int32_t width() const { return header.biWidth; }
    int32_t height() const { return header.biHeight; }
    int32_t bits() const { return header.biBitCount; }
    int64_t stride() const { return row_stride(width(), bits()); }
    Rect whole() const { return {0, 0, width(), height()}; }

    uint8_t* data() const { return block_.data(); }
    size_t size() const { return block_.size(); }
    const uint8_t* end() const { return data() + size(); }

    uint64_t rows_offset(RowStart start) const;
    // True when the image has a size and every pixel of it lies inside the block, with the rows
    // starting at offset. The padding of the last row may be missing.
    bool holds_rows_at(uint64_t offset) const;
    bool holds_rows(RowStart start) const { return holds_rows_at(rows_offset(start)); }
    // The stored rows, once holds_rows has said yes.
    Rows rows_at(uint64_t offset) const {
        return {data() + static_cast<size_t>(offset), static_cast<ptrdiff_t>(stride()), end()};
    }
    Rows rows(RowStart start) const { return rows_at(rows_offset(start)); }

    // Bytes of the block from offset on; those past its end read as 0.
    void read_bytes(uint64_t offset, void* bytes, size_t count) const;
    // Bytes that fit into the block from offset on are written, others dropped.
    void write_bytes(uint64_t offset, const void* bytes, size_t count) const;

  private:
    LockedBlock block_;
};

// Copies count bytes; those of the source at or past end read as 0.
void copy_up_to(uint8_t* to, const uint8_t* from, size_t count, const uint8_t* end,
                CopyBytes copy = move_bytes);

// Stored row of the lowest picture row of a rectangle: its first in storage order.
inline int64_t bottom_row(int32_t image_height, const Rect& rect) {
    return int64_t{image_height} - rect.y - rect.height;
}

// The rows of a rectangle of an image of whole-byte pixels: its lowest first, each from its left
// column on.
Rows rows_of(const LockedDib& dib, const Rect& rect, RowStart start);

// Which depths an operation accepts, named as its check is.
struct Depths {
    bool (*accepts)(int32_t bits);
    Status otherwise;
};

// Opens an operation on a rectangle: null handle (-3), signs (-1), depth (its code), extent (-1),
// and a block smaller than its header promises (-1), in this order.
Status check_rect(const LockedDib& dib, const Rect& rect, const Depths& depths, RowStart start);
Status check_rect_24(const LockedDib& dib, const Rect& rect, RowStart start);
Status check_rect_8_24(const LockedDib& dib, const Rect& rect, RowStart start);
Status check_rect_24_32(const LockedDib& dib, const Rect& rect, RowStart start);
Status check_rect_16_to_32(const LockedDib& dib, const Rect& rect, RowStart start);
Status check_rect_8_to_32(const LockedDib& dib, const Rect& rect, RowStart start);

// True when the rectangle has no negative corner, some extent, and lies inside the image.
bool well_formed(const Rect& rect);
bool inside(const Rect& rect, const LockedDib& dib);

// A new image: zero apart from its header. Null when its size or depth is bad or there is no
// memory. What it owns is freed unless released. With Content::any its pixels may be anything (not
// the colour part, nor the padding of rows): that is for operations that write all of them.
OwnedBlock new_dib(int64_t width, int64_t height, int32_t bits, Content content = Content::zero);

} // namespace kirvo
