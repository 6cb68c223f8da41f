// Conversion between 16, 24 and 32 bits, and fewer significant bits at 24.
#include "image/duplicate.hpp"
#include "image/pixel_reader.hpp"
#include "image/progress.hpp"

namespace kirvo {

namespace {

// What is made has these masks, whatever is read without masks: 5-6-5, not 5-5-5.
constexpr Masks masks_565 = {{0xF800, 0x07E0, 0x001F}, {11, 5, 0}, {3, 2, 3}};

PixelFormat target_format(int32_t bits) {
    return bits == 24 ? format24 : PixelFormat{bits, bits == 16 ? masks_565 : default_masks32};
}

// A 32-bit source is taken to carry masks even when it does not; a 16-bit one is asked.
uint64_t pixel_offset(const LockedDib& from) {
    if (from.bits() == 24)
        return from.rows_offset(RowStart::after_40);
    const bool after_masks = from.bits() == 32 || from.header.biCompression == BI_BITFIELDS;
    return uint64_t{from.header.biSize} + (after_masks ? mask_bytes : 0);
}

void convert_rows(const PixelReader& from, const LockedDib& to) {
    const PixelFormat format = target_format(to.bits());
    const Rows rows = to.rows(RowStart::after_header);
    each_step(to.height(), [&](int32_t row) { from.read(row, format, rows[row]); });
}

Status convert(const LockedDib& from, const Depths& depths, int32_t bits, OwnedBlock& result) {
    if (!from)
        return Status::null_handle;
    if (!depths.accepts(from.bits()))
        return depths.otherwise;
    const uint64_t offset = pixel_offset(from);
    // An image without a size fails as its copy does, for want of a block.
    if (well_formed(from.whole()) && !holds_rows_after_masks(from, offset))
        return Status::bad_parameter;
    OwnedBlock made = new_dib(from.width(), from.height(), bits, Content::any);
    if (!made)
        return Status::no_memory;
    const PixelReader reader(from, from.rows_at(offset));
    if (!reader)
        return Status::no_memory;
    const LockedDib to(made.get());
    if (bits != 24)
        write_masks(to, target_format(bits).masks);
    convert_rows(reader, to);
    result = std::move(made);
    return Status::ok;
}

HGLOBAL convert(HGLOBAL from, const Depths& depths, int32_t bits, int32_t* status) {
    OwnedBlock result;
    report(status, convert(LockedDib(from), depths, bits, result));
    return result.release();
}

constexpr bool is_bit_count(int32_t bits) { return bits >= 0 && bits <= 8; }
constexpr uint8_t top_bits(int32_t count) { return static_cast<uint8_t>(0xFF00 >> count); }

// A duplicate, padding included, of pixels that are cut on their way.
Status cut_depth(const LockedDib& from, const uint8_t (&keep)[3], OwnedBlock& result) {
    if (!from)
        return Status::null_handle;
    if (from.bits() != 24)
        return Status::needs_24;
    const Status status = room_for_duplicate(from, from.whole(), result);
    if (status != Status::ok)
        return status;
    const LockedDib copy(result.get());
    const Rows to = copy.rows(RowStart::after_header), source = from.rows(RowStart::after_40);
    const ChannelBits kept(keep);
    const auto width = static_cast<size_t>(copy.width()), used = 3 * width;
    for (int32_t row = 0; row < copy.height(); ++row) {
        kept.keep(to[row], source[row], width);
        copy_up_to(to[row] + used, source[row] + used, static_cast<size_t>(copy.stride()) - used,
                   source.end);
    }
    return Status::ok;
}

} // namespace

} // namespace kirvo

using namespace kirvo;

HGLOBAL WINAPI DibConvert24bit(HGLOBAL dib, int32_t* status) {
    return convert(dib,
                   {[](int32_t bits) { return bits == 16 || bits == 32; }, Status::needs_16_32}, 24,
                   status);
}

HGLOBAL WINAPI DibConvert16bit(HGLOBAL dib, int32_t* status) {
    return convert(dib,
                   {[](int32_t bits) { return bits == 24 || bits == 32; }, Status::needs_24_32}, 16,
                   status);
}

HGLOBAL WINAPI DibConvert32bit(HGLOBAL dib, int32_t* status) {
    return convert(dib,
                   {[](int32_t bits) { return bits == 16 || bits == 24; }, Status::needs_16_24}, 32,
                   status);
}

HGLOBAL WINAPI DibCutDepth(HGLOBAL dib, int32_t red_bits, int32_t green_bits, int32_t blue_bits,
                           int32_t* status) {
    OwnedBlock result;
    if (is_bit_count(red_bits) && is_bit_count(green_bits) && is_bit_count(blue_bits))
        report(status,
               cut_depth(LockedDib(dib),
                         {top_bits(blue_bits), top_bits(green_bits), top_bits(red_bits)}, result));
    else
        report(status, Status::bad_parameter);
    return result.release();
}
