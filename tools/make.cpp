#include "make.hpp"

#include <charconv>

namespace {

Image made(HGLOBAL handle, int32_t status) {
    Image image(handle);
    if (!image)
        throw Failure("a new picture", status);
    return image;
}

} // namespace

uint32_t parse_colour(const std::string& text) {
    uint32_t rgb = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), rgb, 16);
    if (text.size() != 6 || error != std::errc() || end != text.data() + text.size())
        throw UsageError("'" + text + "': a colour is written RRGGBB");
    return (rgb & 0xFF) << 16 | (rgb & 0xFF00) | rgb >> 16;
}

Image make_solid(int32_t width, int32_t height, uint32_t colour) {
    int32_t status = 0;
    HGLOBAL handle = Dib24Solid(width, height, 24, colour, &status);
    return made(handle, status);
}

Image make_gradient(int32_t width, int32_t height, uint32_t from, uint32_t to, bool vertical) {
    int32_t status = 0;
    HGLOBAL handle = vertical ? Dib24Gradation2(width, height, 24, from, to, &status)
                              : Dib24Gradation1(width, height, 24, from, to, &status);
    return made(handle, status);
}

Image make_gradient(int32_t width, int32_t height, const uint32_t (&corners)[4]) {
    int32_t status = 0;
    HGLOBAL handle = Dib24Gradation3(width, height, 24, corners[0], corners[1], corners[2],
                                     corners[3], &status);
    return made(handle, status);
}
