#include "reduce/reduction.hpp"

#include <cstddef>

namespace kirvo {

namespace {

uint64_t rows_offset(const LockedDib& dib, RowRule rule) {
    if (rule == RowRule::by_header)
        return dib.rows_offset(RowStart::after_header);
    return dib.header.biSize + uint64_t{dib.header.biClrUsed} * sizeof(RGBQUAD) +
           (dib.bits() == 32 ? mask_bytes : 0);
}

// Rows of more than 65504 bits overlap. They still end inside the block, since each lies before its
// place at the full stride.
int64_t rows_stride(int64_t full_stride, RowRule rule) {
    if (rule == RowRule::by_header)
        return full_stride;
    return static_cast<uint16_t>(full_stride * 8) / 8;
}

Rows rows_of(const LockedDib& dib, RowRule rule) {
    return {dib.data() + static_cast<size_t>(rows_offset(dib, rule)),
            static_cast<ptrdiff_t>(rows_stride(dib.stride(), rule)), dib.end()};
}

Status check(const LockedDib& source, RowRule rule) {
    if (!source)
        return Status::null_handle;
    if (source.bits() != 24 && source.bits() != 32)
        return Status::needs_24_32;
    // An image without a size fails as its copy does, for want of a block.
    if (well_formed(source.whole()) && !holds_rows_after_masks(source, rows_offset(source, rule)))
        return Status::bad_parameter;
    return Status::ok;
}

OwnedBlock new_indexed_dib(const LockedDib& source, RowRule rule, int32_t bits) {
    const int64_t full_stride = row_stride(source.width(), bits);
    const bool overlap = rows_stride(full_stride, rule) != full_stride;
    OwnedBlock block =
        new_dib(source.width(), source.height(), bits, overlap ? Content::zero : Content::any);
    if (rule == RowRule::counted) {
        const uint32_t colours = 1u << bits;
        LockedDib(block.get())
            .write_bytes(offsetof(BITMAPINFOHEADER, biClrUsed), &colours, sizeof colours);
    }
    return block;
}

} // namespace

Reduction::Reduction(HGLOBAL source, RowRule rule, int32_t bits)
    : source_(source), status_(check(source_, rule)) {
    if (status_ != Status::ok)
        return;
    status_ = Status::no_memory;
    block_ = new_indexed_dib(source_, rule, bits);
    result_.emplace(block_.get());
    if (!*result_)
        return;
    reader_.emplace(source_, rows_of(source_, rule));
    if (!*reader_)
        return;
    rows_ = rows_of(*result_, rule);
    status_ = Status::ok;
}

void Reduction::set_colours(const uint32_t* colours) {
    const uint32_t count = 1u << result_->bits();
    for (uint32_t i = 0; i < count; ++i) {
        const RGBQUAD entry = {static_cast<BYTE>(colours[i]), static_cast<BYTE>(colours[i] >> 8),
                               static_cast<BYTE>(colours[i] >> 16), 0};
        result_->write_bytes(info_header_bytes + i * sizeof entry, &entry, sizeof entry);
    }
}

HGLOBAL Reduction::answer(int32_t* status) {
    report(status, status_);
    return status_ == Status::ok ? block_.release() : nullptr;
}

void pack_nibbles(const uint8_t* indices, uint8_t* to, size_t width) {
    for (size_t i = 0; i < width / 2; ++i)
        to[i] = static_cast<uint8_t>(indices[2 * i] << 4 | indices[2 * i + 1]);
    if (width % 2 != 0)
        to[width / 2] = static_cast<uint8_t>(indices[width - 1] << 4);
}

} // namespace kirvo
