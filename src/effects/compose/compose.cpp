// Composition: a rectangle of one image blended onto one of another.
#include "image/rect_operation.hpp"
#include "simd/kernels.hpp"

#include <cstring>

namespace kirvo {

namespace {

enum class Blend : int32_t { add, average, black_transparent, subtract, key_colour };

constexpr RowStart start = RowStart::after_40;
constexpr uint8_t black[3] = {};
uint8_t key_colour[3] = {}; // blue, green, red

bool keeps_pixels(Blend blend) {
    return blend == Blend::black_transparent || blend == Blend::key_colour;
}

const uint8_t* key_of(Blend blend) { return blend == Blend::key_colour ? key_colour : black; }

void blend_bytes(Blend blend, uint8_t* to, const uint8_t* from, size_t bytes, uint32_t kept) {
    const Kernels& k = kernels();
    const auto blended = blend == Blend::add       ? k.add
                         : blend == Blend::average ? k.average
                                                   : k.subtract;
    blended(to, from, bytes, kept);
}

void compose_24(Blend blend, uint8_t* to, const uint8_t* from, size_t count) {
    if (keeps_pixels(blend))
        kernels().replace(to, from, count, key_of(blend));
    else
        blend_bytes(blend, to, from, 3 * count, ~0u);
}

// Result channels go to their shifts with all 8 bits: a sum that a narrow mask cannot hold reaches
// into the bits above.
PixelFormat whole_channels(PixelFormat format) {
    for (int c = 0; c < 3; ++c)
        format.masks.mask[c] = 0xFFu << (format.masks.shift[c] & 31);
    return format;
}

bool works_on_bytes(Blend blend, const PixelFormat& format) {
    return format.bits == 24 || (format.has_byte_channels() && !keeps_pixels(blend));
}

// Pixels whose bytes are channels, from another place than they go to.
void compose_bytes(Blend blend, const PixelFormat& format, uint8_t* to, const uint8_t* from,
                   size_t count) {
    if (format.bits == 24)
        return compose_24(blend, to, from, count);
    blend_bytes(blend, to, from, 4 * count, format.masks.sum());
}

// In one image the source pixels are read before any of the destination is written, since both may
// be parts of one row.
void compose_chunk(Blend blend, const PixelFormat& format, uint8_t* to, const uint8_t* from,
                   size_t count, bool same_image) {
    uint8_t source[3 * pixels_at_once], words[4 * pixels_at_once];
    if (works_on_bytes(blend, format)) {
        if (same_image)
            from = static_cast<const uint8_t*>(std::memcpy(words, from, format.bytes() * count));
        return compose_bytes(blend, format, to, from, count);
    }
    const PixelFormat result = whole_channels(format);
    unpack_row(format, from, source, count);
    if (!keeps_pixels(blend)) {
        uint8_t target[3 * pixels_at_once];
        unpack_row(format, to, target, count);
        compose_24(blend, target, source, count);
        return pack_row(result, target, to, count);
    }
    pack_row(result, source, words, count);
    for (size_t i = 0; i < count; ++i)
        if (std::memcmp(source + 3 * i, key_of(blend), 3) != 0)
            std::memcpy(to + 4 * i, words + 4 * i, 4);
}

// Inside one image, chunks go in the order in which no source pixel is overwritten before it is
// read, as if the row were copied first.
void compose_row(Blend blend, const PixelFormat& format, uint8_t* to, const uint8_t* from,
                 size_t count, bool same_image) {
    if (!same_image && works_on_bytes(blend, format))
        return compose_bytes(blend, format, to, from, count);
    const bool from_right = same_image && from < to;
    for (size_t done = 0; done < count;) {
        const size_t now = std::min(pixels_at_once, count - done);
        const size_t at = (from_right ? count - done - now : done) * format.bytes();
        compose_chunk(blend, format, to + at, from + at, now, same_image);
        done += now;
    }
}

Status compose(const LockedDib& to, const Rect& target, const LockedDib& from, const Rect& rect,
               int32_t mode) {
    if (!to || !from)
        return Status::null_handle;
    if (!well_formed(rect) || !well_formed(target) || mode < 0 || mode > 4)
        return Status::bad_parameter;
    if (to.bits() != from.bits() || (to.bits() != 24 && to.bits() != 32))
        return Status::needs_24_32;
    if (!inside(rect, from) || !inside(target, to) || !from.holds_rows(start) ||
        !to.holds_rows(start))
        return Status::bad_parameter;
    const PixelFormat format = PixelFormat::of(from);
    const Rows sources = rows_of(from, rect, start), targets = rows_of(to, target, start);
    each_step(rect.height, [&](int32_t row) {
        compose_row(static_cast<Blend>(mode), format, targets[row], sources[row],
                    static_cast<size_t>(rect.width), to.data() == from.data());
    });
    return Status::ok;
}

} // namespace

} // namespace kirvo

using namespace kirvo;

int32_t WINAPI Dib24Add(HGLOBAL to, int32_t to_left, int32_t to_top, HGLOBAL from,
                        int32_t from_left, int32_t from_top, int32_t width, int32_t height,
                        int32_t mode) {
    return code(compose(LockedDib(to), {to_left, to_top, width, height}, LockedDib(from),
                        {from_left, from_top, width, height}, mode));
}

void WINAPI SetKeyColorDib24Add(uint32_t colour) {
    for (int c = 0; c < 3; ++c)
        key_colour[c] = static_cast<uint8_t>(colour >> (16 - 8 * c));
}
