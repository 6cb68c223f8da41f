// Indexed images to 24 bits.
#include "image/pixels.hpp"
#include "image/progress.hpp"

#include <cstring>

namespace kirvo {

namespace {

// Pixel words of the colour table. It is looked for after 40 bytes of header, whatever its size.
struct Colours {
    uint32_t word[256];

    explicit Colours(const LockedDib& dib) {
        const ColourTable table(dib, info_header_bytes);
        for (uint32_t i = 0; i < 256; ++i) {
            const Rgb colour = table[static_cast<uint8_t>(i)];
            word[i] = static_cast<uint32_t>(colour.red << 16 | colour.green << 8 | colour.blue);
        }
    }

    void map(const uint8_t* indices, uint8_t* bgr, size_t count) const {
        // A store of 4 bytes runs over the next pixel, which is still to come.
        for (size_t i = 0; i + 1 < count; ++i)
            std::memcpy(bgr + 3 * i, &word[indices[i]], 4);
        if (count != 0)
            std::memcpy(bgr + 3 * (count - 1), &word[indices[count - 1]], 3);
    }
};

// Spreads pixels of 1 or 4 bits to one a byte, leftmost first from the top bits.
void spread_indices(const uint8_t* row, int32_t bits, uint8_t* indices, size_t count) {
    const size_t per_byte = static_cast<size_t>(8 / bits);
    const uint32_t mask = (1u << bits) - 1;
    for (size_t i = 0; i < count; ++i) {
        const size_t place = per_byte - 1 - i % per_byte;
        indices[i] =
            static_cast<uint8_t>(row[i / per_byte] >> (place * static_cast<size_t>(bits)) & mask);
    }
}

void expand_row(const Colours& colours, const uint8_t* row, int32_t bits, uint8_t* bgr,
                size_t width) {
    if (bits == 8) {
        colours.map(row, bgr, width);
        return;
    }
    constexpr size_t chunk = 512;
    uint8_t indices[chunk];
    for (size_t x = 0; x < width; x += chunk) {
        const size_t count = std::min(width - x, chunk);
        spread_indices(row + x * static_cast<size_t>(bits) / 8, bits, indices, count);
        colours.map(indices, bgr + 3 * x, count);
    }
}

Status increase(const LockedDib& from, OwnedBlock& result) {
    if (!from)
        return Status::null_handle;
    if (from.bits() != 1 && from.bits() != 4 && from.bits() != 8)
        return Status::needs_1_4_8;
    // An image without a size fails as its copy does, for want of a block.
    if (well_formed(from.whole()) && !from.holds_rows(RowStart::after_header))
        return Status::bad_parameter;
    OwnedBlock made = new_dib(from.width(), from.height(), 24, Content::any);
    if (!made)
        return Status::no_memory;
    const LockedDib to(made.get());
    const Colours colours(from);
    const Rows rows = from.rows(RowStart::after_header), to_rows = to.rows(RowStart::after_header);
    each_step(to.height(), [&](int32_t row) {
        expand_row(colours, rows[row], from.bits(), to_rows[row], static_cast<size_t>(to.width()));
    });
    result = std::move(made);
    return Status::ok;
}

} // namespace

} // namespace kirvo

using namespace kirvo;

HGLOBAL WINAPI IncreaseColor16M(HGLOBAL dib, int32_t* status) {
    OwnedBlock result;
    report(status, increase(LockedDib(dib), result));
    return result.release();
}
