// Effects of a second picture on the first.
#include "effects/calls.hpp"
#include "effects/operations.hpp"
#include "pictures/picture.hpp"

#include <algorithm>

namespace {

// At the depth of the first.
Image partner(const std::string& name, const Image& image) {
    return at_depth(read_image(name), image.bits());
}

Image direct_colour(Image image) {
    return image.bits() == 24 || image.bits() == 32 ? std::move(image)
                                                    : to_24_bits(std::move(image));
}

// Calls lay(image, other, width, height) for another picture with its corner at (x, y); what hangs
// over the edge is left out.
template<typename Lay>
Image lay_on(Image image, const char* option, const std::string& file, int32_t x, int32_t y,
             Lay lay) {
    image = direct_colour(std::move(image));
    if (x >= image.width() || y >= image.height())
        throw Failure(option, "the corner lies outside the picture of " +
                                  std::to_string(image.width()) + " x " +
                                  std::to_string(image.height()) + " pixels");
    const Image other = partner(file, image);
    const int32_t width = std::min(other.width(), image.width() - x);
    const int32_t height = std::min(other.height(), image.height() - y);
    return change(std::move(image), option, [&](HGLOBAL h, int32_t, int32_t) {
        return lay(h, other.handle(), width, height);
    });
}

} // namespace

Image compose(Image image, const Values& values) {
    const int32_t x = values.integer(2), y = values.integer(3);
    return lay_on(std::move(image), "--compose", values.text(0), x, y,
                  [&](HGLOBAL h, HGLOBAL other, int32_t width, int32_t height) {
                      return Dib24Add(h, x, y, other, 0, 0, width, height, values.integer(1));
                  });
}

Image paste(Image image, const Values& values) {
    const int32_t x = values.integer(1), y = values.integer(2);
    return lay_on(std::move(image), "--paste", values.text(0), x, y,
                  [&](HGLOBAL h, HGLOBAL other, int32_t width, int32_t height) {
                      return Dib24CopyEx(h, x, y, other, 0, 0, width, height);
                  });
}

Image interleave(Image image, const Values& values) {
    image = direct_colour(std::move(image));
    const Image other = partner(values.text(0), image);
    const int32_t width = std::min(image.width(), other.width());
    const int32_t height = std::min(image.height(), other.height());
    return make(std::move(image), "--interleave", [&](HGLOBAL h, int32_t, int32_t, int32_t* s) {
        return Dib24InterLeave(h, 0, 0, other.handle(), 0, 0, width, height, s);
    });
}
