// Point operations: each channel of the result depends on the same pixel alone.
#include "effects/tone/levels.hpp"
#include "image/duplicate.hpp"
#include "image/rect_operation.hpp"
#include "simd/kernels.hpp"

using namespace kirvo;

namespace {

auto mapped(const Levels& levels) {
    return OnEachByte{[&](uint8_t* to, const uint8_t* from, size_t bytes) {
        kernels().map(to, from, bytes, levels);
    }};
}

auto scaled(int32_t factor, int32_t offset) {
    return OnEachByte{[=](uint8_t* to, const uint8_t* from, size_t bytes) {
        kernels().scale(to, from, bytes, factor, offset);
    }};
}

auto mapped(const ChannelLevels& levels) {
    return [&](uint8_t* to, const uint8_t* from, size_t count) {
        kernels().map_channels(to, from, count, levels);
    };
}

auto permuted(const ChannelOrder& order) {
    return [&](uint8_t* to, const uint8_t* from, size_t count) {
        kernels().permute(to, from, count, order);
    };
}

// One channel of count pixels, the others 0: red, green or blue.
void keep_channel(int channel, const PixelFormat& format, uint8_t* to, const uint8_t* from,
                  size_t count) {
    static constexpr ChannelBits bits[] = {ChannelBits({0, 0, 255}), ChannelBits({0, 255, 0}),
                                           ChannelBits({255, 0, 0})};
    if (format.bits == 32)
        return kernels().keep_bits(to, from, 4 * count, format.under_mask(0xFF, channel));
    bits[channel].keep(to, from, count);
}

// The 12 bytes behind the header go along whatever they are: masks, or pixels of an image without.
void copy_mask_bytes(HGLOBAL to, const LockedDib& from) {
    uint8_t masks[mask_bytes];
    from.read_bytes(from.header.biSize, masks, sizeof masks);
    LockedDib(to).write_bytes(info_header_bytes, masks, sizeof masks);
}

bool is_level(int32_t level) { return level >= -100 && level <= 100; }

// An 8-bit image is mapped by its colour table: all 256 entries from the header on, however many
// are in use, become those of a duplicate of the rectangle.
HGLOBAL map_colour_table(const RectOperation& operation, const Rect& rect,
                         const ChannelLevels& levels, int32_t* status) {
    OwnedBlock result;
    if (duplicate(operation.source(), rect, result) != Status::ok) {
        report(status, Status::no_memory);
        return nullptr;
    }
    each_step(1, [&](int32_t) {
        ColourTable table(operation.source(), operation.source().header.biSize);
        for (RGBQUAD& entry : table.entry) {
            entry.rgbBlue = levels.channel[blue_byte].level[entry.rgbBlue];
            entry.rgbGreen = levels.channel[green_byte].level[entry.rgbGreen];
            entry.rgbRed = levels.channel[red_byte].level[entry.rgbRed];
        }
        LockedDib(result.get()).write_bytes(info_header_bytes, table.entry, sizeof table.entry);
    });
    return result.release();
}

} // namespace

int32_t WINAPI Dib24Negative(HGLOBAL dib, int32_t x, int32_t y, int32_t width, int32_t height) {
    const RectOperation operation(dib, {x, y, width, height}, check_rect_16_to_32,
                                  RowStart::after_40);
    if (operation.status() != Status::ok)
        return code(operation.status());
    const PixelFormat format = operation.format();
    uint32_t flipped = format.bits == 24 ? ~0u : format.masks.sum();
    if (format.bits == 16)
        flipped = (flipped & 0xFFFF) * 0x10001u; // two pixels
    operation.each_row([&](int32_t r) {
        uint8_t* const row = operation.row(r);
        kernels().invert(row, row, operation.width() * format.bytes(), flipped);
    });
    return code(Status::ok);
}

int32_t WINAPI Dib24RGBChange(HGLOBAL dib, int32_t mode, int32_t x, int32_t y, int32_t width,
                              int32_t height) {
    // What goes to blue, green and red.
    static constexpr ChannelOrder orders[] = {
        {{blue_byte, green_byte, red_byte}}, {{green_byte, blue_byte, red_byte}},
        {{red_byte, blue_byte, green_byte}}, {{blue_byte, red_byte, green_byte}},
        {{green_byte, red_byte, blue_byte}}, {{red_byte, green_byte, blue_byte}}};
    if (mode < 0 || mode > 5)
        return code(Status::bad_parameter);
    if (mode == 0)
        return code(Status::ok);
    const RectOperation operation(dib, {x, y, width, height}, check_rect_24_32, RowStart::after_40);
    return code(operation.change(permuted(orders[mode])));
}

HGLOBAL WINAPI Dib24Brightness(HGLOBAL dib, int32_t x, int32_t y, int32_t width, int32_t height,
                               int32_t level, int32_t* status) {
    RectOperation operation(dib, {x, y, width, height}, check_rect_24_32);
    operation.require(is_level(level));
    if (!operation.passed(status))
        return nullptr;
    const HGLOBAL result = operation.make(scaled(100, level * 255 / 100), status);
    if (result != nullptr && operation.source().bits() == 32)
        copy_mask_bytes(result, operation.source());
    return result;
}

HGLOBAL WINAPI Dib24Contrast(HGLOBAL dib, int32_t x, int32_t y, int32_t width, int32_t height,
                             int32_t level, int32_t* status) {
    RectOperation operation(dib, {x, y, width, height}, check_rect_24_32);
    operation.require(is_level(level));
    if (!operation.passed(status))
        return nullptr;
    return operation.make(scaled(level + 100, -128 * level / 100), status);
}

HGLOBAL WINAPI Dib24HalfTone(HGLOBAL dib, int32_t x, int32_t y, int32_t width, int32_t height,
                             int32_t* status) {
    const RectOperation operation(dib, {x, y, width, height}, check_rect_24_32);
    return operation.make(scaled(50, 0), status);
}

HGLOBAL WINAPI Dib24Monochrome(HGLOBAL dib, int32_t x, int32_t y, int32_t width, int32_t height,
                               int32_t* status) {
    const RectOperation operation(dib, {x, y, width, height}, check_rect_24_32, RowStart::after_40);
    const auto row = [](uint8_t* to, const uint8_t* from, size_t count) {
        kernels().grey(to, from, count);
    };
    return operation.make24(row, status);
}

HGLOBAL WINAPI Dib24ToneCtrl(HGLOBAL dib, int32_t x, int32_t y, int32_t width, int32_t height,
                             int32_t numerator, int32_t denominator, int32_t* status) {
    RectOperation operation(dib, {x, y, width, height}, check_rect_24_32);
    operation.require(numerator >= 1 && numerator <= 255 && denominator >= 0);
    if (!operation.passed(status))
        return nullptr;
    const Levels levels = fraction_levels(numerator, denominator);
    return operation.make(mapped(levels), status);
}

HGLOBAL WINAPI Dib24ToneCtrlEx(HGLOBAL dib, int32_t x, int32_t y, int32_t width, int32_t height,
                               double red, double green, double blue, int32_t* status) {
    RectOperation operation(dib, {x, y, width, height}, check_rect_24_32);
    operation.require(red >= 0.0 && green >= 0.0 && blue >= 0.0);
    if (!operation.passed(status))
        return nullptr;
    const ChannelLevels levels = {{factor_levels(blue), factor_levels(green), factor_levels(red)}};
    return operation.make(mapped(levels), status);
}

HGLOBAL WINAPI Dib24Gamma(HGLOBAL dib, int32_t x, int32_t y, int32_t width, int32_t height,
                          double gamma, int32_t* status) {
    RectOperation operation(dib, {x, y, width, height}, check_rect_24);
    operation.require(gamma >= 0.0);
    if (!operation.passed(status))
        return nullptr;
    const Levels levels = gamma_levels(gamma);
    return operation.make(mapped(levels), status);
}

HGLOBAL WINAPI DibGammaEx(HGLOBAL dib, int32_t x, int32_t y, int32_t width, int32_t height,
                          double red, double green, double blue, int32_t* status) {
    const Rect rect = {x, y, width, height};
    RectOperation operation(dib, rect, check_rect_8_to_32);
    operation.require(red >= 0.0 && green >= 0.0 && blue >= 0.0);
    if (!operation.passed(status))
        return nullptr;
    const ChannelLevels levels = {{gamma_levels(blue), gamma_levels(green), gamma_levels(red)}};
    if (operation.source().bits() == 8)
        return map_colour_table(operation, rect, levels, status);
    return operation.make(mapped(levels), status);
}

HGLOBAL WINAPI DibColorMapEx(HGLOBAL dib, int32_t x, int32_t y, int32_t width, int32_t height,
                             const uint8_t* table, int32_t* status) {
    RectOperation operation(dib, {x, y, width, height}, check_rect_8_to_32);
    operation.require(table != nullptr);
    if (!operation.passed(status))
        return nullptr;
    Levels levels;
    std::copy_n(table, sizeof levels.level, levels.level);
    if (operation.source().bits() == 8) // from the top left corner, wherever the rectangle lies
        return map_colour_table(operation, {0, 0, width, height}, {{levels, levels, levels}},
                                status);
    return operation.make(mapped(levels), status);
}

int32_t WINAPI Dib24Separate(HGLOBAL dib, int32_t x, int32_t y, int32_t width, int32_t height,
                             HGLOBAL* red, HGLOBAL* green, HGLOBAL* blue) {
    HGLOBAL* const outs[] = {red, green, blue};
    for (HGLOBAL* out : outs)
        report(out, HGLOBAL{});
    const RectOperation operation(dib, {x, y, width, height}, check_rect_24_32);
    if (operation.status() != Status::ok)
        return code(operation.status());
    const PixelFormat format = operation.format();
    RectResult results[] = {RectResult(operation, format.bits), RectResult(operation, format.bits),
                            RectResult(operation, format.bits)};
    for (const RectResult& result : results) {
        if (!result)
            return code(Status::no_memory);
    }
    operation.each_row([&](int32_t r) {
        for (int c = 0; c < 3; ++c)
            keep_channel(c, format, results[c].row(r), operation.row(r), operation.width());
    });
    for (int c = 0; c < 3; ++c) {
        if (outs[c] != nullptr)
            *outs[c] = results[c].release();
    }
    return code(Status::ok);
}
