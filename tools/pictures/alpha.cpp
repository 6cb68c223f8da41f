#include "pictures/alpha.hpp"

#include <algorithm>

namespace {

Image new_image(int32_t width, int32_t height, int32_t bits) {
    const int32_t status = KIRVO_NO_MEMORY;
    return checked(DibMemAllocEx(static_cast<uint32_t>(width), height, bits), "transparency",
                   status);
}

template<typename Call>
void each_pixel(Image& image, const Image& alpha, Call call) {
    const int32_t width = image.width(), height = image.height();
    const kirvo::Rows pixels = image.rows();
    const kirvo::ConstRows levels = alpha.rows();
    const int32_t step = image.bits() / 8;
    for (int32_t y = 0; y < height; ++y) {
        uint8_t* pixel = pixels[y].data();
        const uint8_t* level = levels[y].data();
        for (int32_t x = 0; x < width; ++x, pixel += step, level += 3)
            call(pixel, *level);
    }
}

} // namespace

void split_alpha(Picture& picture) {
    if (picture.image.bits() != 32 || !(picture.known.description().flags & KIRVO_FILES_HAS_ALPHA))
        return;
    const int32_t width = picture.image.width(), height = picture.image.height();
    Image alpha = new_image(width, height, 24);
    uint8_t least = 255;
    {
        const kirvo::Rows pixels = picture.image.rows(), levels = alpha.rows();
        for (int32_t y = 0; y < height; ++y) {
            const uint8_t* pixel = pixels[y].data();
            uint8_t* level = levels[y].data();
            for (int32_t x = 0; x < width; ++x, pixel += 4, level += 3) {
                std::fill_n(level, 3, pixel[3]);
                least = std::min(least, pixel[3]);
            }
        }
    }
    picture.image = copy_at_24_bits(picture.image);
    if (least < 255)
        picture.alpha = std::move(alpha);
}

Image with_alpha(Image image, const Image& alpha) {
    image = to_24_bits(std::move(image));
    int32_t status = 0;
    Image result = checked(DibConvert32bit(image.handle(), &status), "transparency", status);
    each_pixel(result, alpha, [](uint8_t* pixel, uint8_t level) { pixel[3] = level; });
    return result;
}

void multiply(Image& image, const Image& alpha) {
    each_pixel(image, alpha, [](uint8_t* pixel, uint8_t level) {
        for (int channel = 0; channel < 3; ++channel)
            pixel[channel] = static_cast<uint8_t>((pixel[channel] * level + 127) / 255);
    });
}

void divide(Image& image, const Image& alpha) {
    each_pixel(image, alpha, [](uint8_t* pixel, uint8_t level) {
        for (int channel = 0; channel < 3 && level != 0; ++channel)
            pixel[channel] =
                static_cast<uint8_t>(std::min((pixel[channel] * 255 + level / 2) / level, 255));
    });
}

Image mask_of(const Image& alpha) {
    const int32_t width = alpha.width(), height = alpha.height();
    Image mask = new_image(width, height, 1);
    XPaletteQuad(mask.handle(), 1, kirvo::rgb(255, 255, 255));
    const kirvo::ConstRows levels = alpha.rows();
    const kirvo::Rows marks = mask.rows();
    for (int32_t y = 0; y < height; ++y) {
        const uint8_t* level = levels[y].data();
        uint8_t* row = marks[y].data();
        for (int32_t x = 0; x < width; ++x, level += 3) {
            if (*level == 0)
                row[x / 8] = static_cast<uint8_t>(row[x / 8] | 0x80 >> x % 8);
        }
    }
    return mask;
}
