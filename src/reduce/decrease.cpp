// Conversions to fixed palettes of their own design: 256 and 16 colours with error diffusion, and
// greys beside the system colours.
#include "simd/kernels.hpp"
#include "reduce/diffusion.hpp"
#include "reduce/palettes.hpp"
#include "reduce/reduction.hpp"

using namespace kirvo;

namespace {

HGLOBAL decrease_256(HGLOBAL dib, int32_t* status) {
    Reduction reduction(dib, ReductionRows::by_header, 8);
    if (reduction.status() != Status::ok)
        return reduction.answer(status);
    ErrorDiffusion diffusion(reduction.width());
    if (!diffusion) {
        reduction.fail(Status::no_memory);
        return reduction.answer(status);
    }
    reduction.set_colours(cube_palette.data());
    reduction.each_row([&](const uint8_t* bgr, uint8_t* to, int32_t) {
        diffusion.to_256(bgr, to);
        return Status::ok;
    });
    return reduction.answer(status);
}

HGLOBAL decrease_16(HGLOBAL dib, int32_t* status) {
    Reduction reduction(dib, ReductionRows::by_header, 4);
    if (reduction.status() != Status::ok)
        return reduction.answer(status);
    ErrorDiffusion diffusion(reduction.width());
    const Scratch indices(reduction.width());
    if (!diffusion || !indices) {
        reduction.fail(Status::no_memory);
        return reduction.answer(status);
    }
    reduction.set_colours(system_palette.data());
    reduction.each_row([&](const uint8_t* bgr, uint8_t* to, int32_t) {
        diffusion.to_16(bgr, indices.data());
        pack_nibbles(indices.data(), to, reduction.width());
        return Status::ok;
    });
    return reduction.answer(status);
}

void grey_row(const uint8_t* bgr, uint8_t* to, size_t width) {
    kernels().luminance(to, bgr, width);
    for (size_t i = 0; i < width; ++i)
        to[i] = static_cast<uint8_t>(std::max(to[i] - grey_slot_offset, first_grey_slot));
}

HGLOBAL decrease_grey(HGLOBAL dib, int32_t* status) {
    Reduction reduction(dib, ReductionRows::by_header, 8);
    if (reduction.status() != Status::ok)
        return reduction.answer(status);
    reduction.set_colours(grey_palette.data());
    reduction.each_row([&](const uint8_t* bgr, uint8_t* to, int32_t) {
        grey_row(bgr, to, reduction.width());
        return Status::ok;
    });
    return reduction.answer(status);
}

} // namespace

HGLOBAL WINAPI DecreaseColor256(HGLOBAL dib, int32_t* status) { return decrease_256(dib, status); }

HGLOBAL WINAPI DecreaseColor16(HGLOBAL dib, int32_t* status) { return decrease_16(dib, status); }

HGLOBAL WINAPI DecreaseColorMono256(HGLOBAL dib, int32_t* status) {
    return decrease_grey(dib, status);
}
