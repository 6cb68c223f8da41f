#include "core/pixel_rows.hpp"

#include "core/pixels.hpp"

namespace kirvo {

namespace {

uint32_t move_fields(uint32_t word, const PixelMoves& moves) {
    uint32_t moved = 0;
    for (const FieldMove& field : moves.channel)
        moved |= (word >> field.right) << field.left & field.keep;
    return moved;
}

template <size_t from_bytes, size_t to_bytes>
void convert(const uint8_t* from, uint8_t* to, size_t count, const PixelMoves& moves) {
    for (size_t i = 0; i < count; ++i, from += from_bytes, to += to_bytes)
        store_word(to, move_fields(load_word(from, from_bytes), moves), to_bytes);
}

} // namespace

const PixelRows pixel_rows_scalar = {convert<2, 3>, convert<4, 3>, convert<3, 2>,
                                     convert<4, 2>, convert<3, 4>, convert<2, 4>};

} // namespace kirvo
