// A brush that draws the neighbours of one pixel towards its colour.
#include "image/rect_operation.hpp"

#include <cstring>

using namespace kirvo;

namespace {

// Weights in tenths, in picture order: row by row from the top left neighbour.
template<int size>
struct MixMask {
    static constexpr int reach = size / 2;
    int32_t weight[size][size];
};

MixMask<3> mask3 = {{{9, 8, 9}, //
                     {8, 10, 8},
                     {9, 8, 9}}};
MixMask<5> mask5 = {{{5, 6, 7, 6, 5}, //
                     {6, 8, 9, 8, 6},
                     {7, 9, 10, 9, 7},
                     {6, 8, 9, 8, 6},
                     {5, 6, 7, 6, 5}}};

uint8_t clamp_channel(int64_t value) {
    return static_cast<uint8_t>(std::clamp<int64_t>(value, 0, 255));
}

uint8_t mixed(uint8_t channel, uint8_t centre, int64_t weight) {
    return clamp_channel((channel * weight + centre * (10 - weight)) / 10);
}

Rgb mixed(const Rgb& pixel, const Rgb& centre, int64_t weight) {
    return {mixed(pixel.red, centre.red, weight), mixed(pixel.green, centre.green, weight),
            mixed(pixel.blue, centre.blue, weight)};
}

// The centre is mixed with black.
Rgb faded(const Rgb& centre, int64_t weight) {
    return {clamp_channel(centre.red * weight / 10), clamp_channel(centre.green * weight / 10),
            clamp_channel(centre.blue * weight / 10)};
}

template<int size>
int32_t mix(HGLOBAL handle, int32_t x, int32_t y, const MixMask<size>& mask) {
    constexpr int reach = MixMask<size>::reach;
    const RectOperation operation(handle, {x, y, 1, 1}, check_rect_16_to_32);
    if (operation.status() != Status::ok)
        return code(operation.status());
    const LockedDib& dib = operation.source();
    const PixelFormat format = operation.format();
    const Rows rows = dib.rows(RowStart::after_header);
    const Rgb centre = format.load(operation.row(0));
    for (int dy = -reach; dy <= reach; ++dy) {
        for (int dx = -reach; dx <= reach; ++dx) {
            const int64_t row = y + int64_t{dy}, column = x + int64_t{dx};
            if (row < 0 || row >= dib.height() || column < 0 || column >= dib.width())
                continue;
            uint8_t* pixel =
                rows[dib.height() - 1 - row] + static_cast<size_t>(column) * format.bytes();
            const int32_t weight = mask.weight[dy + reach][dx + reach];
            const bool is_centre = dx == 0 && dy == 0;
            format.store(pixel, is_centre ? faded(centre, weight)
                                          : mixed(format.load(pixel), centre, weight));
        }
    }
    return code(Status::ok);
}

template<int size>
void set_mask(MixMask<size>& mask, const int32_t* weights) {
    if (weights != nullptr)
        std::memcpy(mask.weight, weights, sizeof mask.weight);
}

} // namespace

void WINAPI Dib24Mix3X3SetMask(const int32_t* weights) { set_mask(mask3, weights); }

void WINAPI Dib24Mix5X5SetMask(const int32_t* weights) { set_mask(mask5, weights); }

int32_t WINAPI Dib24Mix3X3(HGLOBAL dib, int32_t x, int32_t y) { return mix(dib, x, y, mask3); }

int32_t WINAPI Dib24Mix5X5(HGLOBAL dib, int32_t x, int32_t y) { return mix(dib, x, y, mask5); }
