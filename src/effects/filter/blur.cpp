// The fixed 3 x 3 blur. Its weights add up to 245 of 256, so that it darkens.
#include "effects/filter/neighbourhood.hpp"

using namespace kirvo;

HGLOBAL WINAPI Dib24Gausian(HGLOBAL dib, int32_t x, int32_t y, int32_t width, int32_t height,
                            int32_t* status) {
    const RectOperation operation(dib, {x, y, width, height}, check_rect_24);
    if (!operation.passed(status))
        return nullptr;
    // Rows of the rectangle; the image's own only above a rectangle one row high.
    const size_t bytes = 3 * operation.width();
    const auto fill = [&](int32_t row, uint8_t* to) {
        copy_up_to(to, operation.row(nearest_row(row, height)), bytes, operation.source().end());
        extend_ends(to, bytes, 3);
    };
    Neighbourhood neighbourhood(bytes, 3, fill);
    RectResult result(operation, 24);
    if (!neighbourhood || !result) {
        report(status, Status::no_memory);
        return nullptr;
    }
    operation.each_row(
        [&](int32_t r) { kernels().blur(result.row(r), neighbourhood.at(r), bytes); });
    return result.release();
}
