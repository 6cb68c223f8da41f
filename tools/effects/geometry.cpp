// Effects that move pixels.
#include "effects/calls.hpp"
#include "effects/effects.hpp"
#include "effects/operations.hpp"

#include <algorithm>

namespace {

bool nearest_pixel = false;

Image zoomed(Image image, int32_t width, int32_t height, bool smooth) {
    return make(std::move(image), "resizing", [=](HGLOBAL h, int32_t w, int32_t hh, int32_t* s) {
        return Dib24ZoomEx2(h, 0, 0, w, hh, width, height, s, smooth ? 1 : 0);
    });
}

// The library averages where neither side grows; of a side that does the other is reduced first.
Image resized(Image image, const Size& to) {
    if (nearest_pixel)
        return zoomed(std::move(image), to.width, to.height, false);
    const int32_t width = std::min(to.width, image.width());
    const int32_t height = std::min(to.height, image.height());
    if (width < image.width() || height < image.height()) {
        if (image.bits() <= 8) // colours of a palette have no average
            image = to_24_bits(std::move(image));
        image = zoomed(std::move(image), width, height, true);
    }
    return width == to.width && height == to.height
               ? std::move(image)
               : zoomed(std::move(image), to.width, to.height, false);
}

std::string in_words(const Image& image) {
    return "the picture of " + std::to_string(image.width()) + " x " +
           std::to_string(image.height()) + " pixels";
}

} // namespace

void resize_by_nearest(bool nearest) { nearest_pixel = nearest; }

Image crop(Image image, const Values& values) {
    const int32_t x = values.integer(0), y = values.integer(1);
    const int32_t width = values.integer(2), height = values.integer(3);
    if (int64_t{x} + width > image.width() || int64_t{y} + height > image.height())
        throw Failure("--crop", "the rectangle leaves " + in_words(image));
    return make(std::move(image), "--crop", [=](HGLOBAL h, int32_t, int32_t, int32_t* s) {
        return Dib24DupEx(h, x, y, width, height, s);
    });
}

Image resize(Image image, const Values& values) {
    const Size size = parse_size(values.text(0)).of(image.width(), image.height());
    return resized(std::move(image), size);
}

Image fit(Image image, const Values& values) {
    const Size room = parse_size(values.text(0));
    if (room.percent > 0) {
        const Size size = room.of(image.width(), image.height());
        return fitted(std::move(image), size.width, size.height);
    }
    return fitted(std::move(image), room.width == 0 ? image.width() : room.width,
                  room.height == 0 ? image.height() : room.height);
}

Image fitted(Image image, int32_t width, int32_t height) {
    const double factor =
        std::min({1.0, double(width) / image.width(), double(height) / image.height()});
    if (factor == 1.0)
        return image;
    const auto scaled = [&](int32_t length) {
        return std::max(1, static_cast<int32_t>(length * factor));
    };
    const Size size = {scaled(image.width()), scaled(image.height())};
    return resized(std::move(image), size);
}

Image rotate(Image image, const Values& values) {
    const std::string& degrees = values.text(0);
    if (degrees == "180")
        return change(std::move(image), "--rotate", [](HGLOBAL h, int32_t w, int32_t hh) {
            return Dib24FlipMirror(h, 0, 0, w, hh);
        });
    return make(std::move(image), "--rotate", [=](HGLOBAL h, int32_t w, int32_t hh, int32_t* s) {
        return Dib24Rotate(h, 0, 0, w, hh, degrees == "90" ? 0 : 1, s);
    });
}

Image brush(Image image, const Values& values) {
    const int32_t x = values.integer(0), y = values.integer(1);
    if (x >= image.width() || y >= image.height())
        throw Failure("--brush", "the point lies outside " + in_words(image));
    const bool small = values.count() < 3 || values.text(2) == "3";
    return change(std::move(image), "--brush", [=](HGLOBAL h, int32_t, int32_t) {
        return small ? Dib24Mix3X3(h, x, y) : Dib24Mix5X5(h, x, y);
    });
}
