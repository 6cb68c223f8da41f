// Hue: the conversions as exports, and the two operations.
#include "image/duplicate.hpp"
#include "image/rect_operation.hpp"
#include "simd/hsv.hpp"
#include "simd/kernels.hpp"

using namespace kirvo;

namespace {

enum HueChange { set_hue, set_hue_softly, turn_hue, modes };

// The row function of a mode, with the value from -359 on.
auto hue_changed(int32_t mode, int32_t value) {
    return [=](uint8_t* to, const uint8_t* from, size_t count) {
        if (mode == turn_hue)
            kernels().turn_hue(to, from, count, (value + 360) % 360);
        else
            kernels().set_hue(to, from, count, value, mode == set_hue_softly);
    };
}

// The result stands for a changed copy, and a copy of a whole image has its padding too.
void copy_padding(const LockedDib& to, const LockedDib& from) {
    const Rows to_rows = to.rows(RowStart::after_40), from_rows = from.rows(RowStart::after_40);
    const auto used = static_cast<size_t>(row_bytes(from.width(), from.bits()));
    const size_t padding = static_cast<size_t>(from.stride()) - used;
    for (int32_t r = 0; r < from.height(); ++r)
        copy_up_to(to_rows[r] + used, from_rows[r] + used, padding, from_rows.end);
}

} // namespace

void WINAPI RGB2HSV(int32_t red, int32_t green, int32_t blue, int32_t* hue, int32_t* saturation,
                    int32_t* value) {
    const Hsv hsv = rgb_to_hsv(red, green, blue);
    report(hue, hsv.hue);
    report(saturation, hsv.saturation);
    report(value, hsv.value);
}

void WINAPI RGB2SV(int32_t red, int32_t green, int32_t blue, int32_t* saturation, int32_t* value) {
    const Hsv hsv = rgb_to_sv(red, green, blue);
    report(saturation, hsv.saturation);
    report(value, hsv.value);
}

int32_t WINAPI RGB2V(int32_t red, int32_t green, int32_t blue) {
    return std::max({red, green, blue});
}

void WINAPI HSV2RGB(int32_t hue, int32_t saturation, int32_t value, int32_t* red, int32_t* green,
                    int32_t* blue) {
    const Rgb rgb = hsv_to_rgb({hue, saturation, value});
    report(red, int32_t{rgb.red});
    report(green, int32_t{rgb.green});
    report(blue, int32_t{rgb.blue});
}

int32_t WINAPI DibModifyHue(HGLOBAL handle, int32_t mode, int32_t value) {
    const LockedDib dib(handle);
    if (!dib)
        return code(Status::null_handle);
    const int32_t lowest = mode == turn_hue ? -259 : 0;
    if (mode < 0 || mode >= modes || value < lowest || value > 359)
        return code(Status::bad_parameter);
    if (dib.bits() != 24)
        return code(Status::needs_24);
    // A 24-bit image has no colour table, whatever biClrUsed says.
    const uint64_t offset = dib.header.biSize;
    if (!dib.holds_rows_at(offset))
        return code(Status::bad_parameter);
    const Rows rows = dib.rows_at(offset);
    const auto change = hue_changed(mode, value);
    each_step(dib.height(),
              [&](int32_t r) { change(rows[r], rows[r], static_cast<size_t>(dib.width())); });
    return code(Status::ok);
}

HGLOBAL WINAPI DibModifyHueEx(HGLOBAL handle, int32_t x, int32_t y, int32_t width, int32_t height,
                              int32_t mode, int32_t value, int32_t* status) {
    const Rect rect = {x, y, width, height};
    RectOperation operation(handle, rect, check_rect_16_to_32);
    operation.require(mode >= 0 && mode < modes && value >= 0 && value <= 359);
    if (!operation.passed(status))
        return nullptr;
    const LockedDib& source = operation.source();
    if (!source.holds_rows(RowStart::after_40)) { // a copy could not be made
        report(status, Status::no_memory);
        return nullptr;
    }
    const HGLOBAL result = operation.make(hue_changed(mode, value), status);
    if (result != nullptr && width == source.width() && height == source.height())
        copy_padding(LockedDib(result), source);
    return result;
}
