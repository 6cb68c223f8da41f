// A colour XORed over a rectangle.
#include "image/rect_operation.hpp"

using namespace kirvo;

namespace {

// One pixel repeated; its length is a multiple of every pixel size.
struct Pattern {
    uint8_t bytes[768];

    Pattern(const PixelFormat& format, const Rgb& colour) {
        for (size_t i = 0; i < sizeof bytes; i += format.bytes())
            format.store(bytes + i, colour);
    }
    void exclusive_or(uint8_t* row, size_t count) const {
        while (count != 0) {
            const size_t n = std::min(count, sizeof bytes);
            for (size_t i = 0; i < n; ++i)
                row[i] ^= bytes[i];
            row += n;
            count -= n;
        }
    }
};

} // namespace

int32_t WINAPI Dib24XOR(HGLOBAL dib, int32_t x, int32_t y, int32_t width, int32_t height,
                        uint32_t colour) {
    const RectOperation operation(dib, {x, y, width, height}, check_rect_16_to_32);
    if (operation.status() != Status::ok)
        return code(operation.status());
    const PixelFormat format = operation.format();
    const Pattern pattern(format, rgb_of(colour));
    operation.each_row([&](int32_t r) {
        pattern.exclusive_or(operation.row(r), operation.width() * format.bytes());
    });
    return code(Status::ok);
}
