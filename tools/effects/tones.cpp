// Effects on colours and channels.
#include "effects/calls.hpp"
#include "effects/effects.hpp"
#include "effects/operations.hpp"

#include <cmath>

namespace {

uint32_t packed(int32_t low, int32_t high) {
    return (static_cast<uint32_t>(low) & 0xFFFF) | static_cast<uint32_t>(high) << 16;
}

std::function<void(const Histogram&)> histogram_receiver;

} // namespace

Image change_gamma(Image image, const Values& values) {
    const double red = values.real(0);
    const double green = values.count() > 1 ? values.real(1) : red;
    const double blue = values.count() > 2 ? values.real(2) : green;
    return make(std::move(image), "--gamma", [=](HGLOBAL h, int32_t w, int32_t hh, int32_t* s) {
        return DibGammaEx(h, 0, 0, w, hh, red, green, blue, s);
    });
}

Image tone(Image image, const Values& values) {
    return make(std::move(image), "--tone", [&](HGLOBAL h, int32_t w, int32_t hh, int32_t* s) {
        return values.count() == 2
                   ? Dib24ToneCtrl(h, 0, 0, w, hh, values.integer(0), values.integer(1), s)
                   : Dib24ToneCtrlEx(h, 0, 0, w, hh, values.real(0), values.real(1), values.real(2),
                                     s);
    });
}

Image one_channel(Image image, const Values& values) {
    const std::string& wanted = values.text(0);
    HGLOBAL channels[3] = {};
    change(std::move(image), "--channel", [&](HGLOBAL h, int32_t w, int32_t hh) {
        return Dib24Separate(h, 0, 0, w, hh, &channels[0], &channels[1], &channels[2]);
    });
    Image all[3];
    for (size_t i = 0; i < 3; ++i)
        all[i] = Image::adopt(channels[i]);
    return std::move(all[wanted == "red" ? 0 : wanted == "green" ? 1 : 2]);
}

Image posterise(Image image, const Values& values) {
    const int32_t levels = values.integer(0);
    uint8_t table[256];
    for (int32_t v = 0; v < 256; ++v)
        table[v] = static_cast<uint8_t>(v * levels / 256 * 255 / (levels - 1));
    return make(std::move(image), "--posterise", [&](HGLOBAL h, int32_t w, int32_t hh, int32_t* s) {
        return DibColorMapEx(h, 0, 0, w, hh, table, s);
    });
}

// rgb tests channel by channel, rgball and hsv keep a pixel only when every channel passes.
Image keep(Image image, const Values& values) {
    const std::string& kind = values.text(0);
    int32_t f[10] = {kind == "rgb" ? 0x101 : kind == "rgball" ? 0x102 : 0x202};
    for (size_t i = 1; i < 10; ++i)
        f[i] = values.integer(i);
    return make(std::move(image), "--keep", [&](HGLOBAL h, int32_t w, int32_t hh, int32_t* s) {
        return Dib24FilterEx(h, 0, 0, w, hh, packed(f[0], f[1]), packed(f[2], f[3]),
                             packed(f[4], f[5]), packed(f[6], f[7]), packed(f[8], f[9]), s);
    });
}

Image count_colours(Image image, const Values&) {
    static Histogram counts;
    image = change(std::move(image), "--histogram", [](HGLOBAL h, int32_t w, int32_t hh) {
        return DibHistgram(h, 0, 0, w, hh, counts.red, counts.green, counts.blue);
    });
    DibCountColors(image.handle(), &counts.colours);
    if (histogram_receiver)
        histogram_receiver(counts);
    return image;
}

void set_histogram_receiver(std::function<void(const Histogram&)> receiver) {
    histogram_receiver = std::move(receiver);
}

void forget_effects() { SetKeyColorDib24Add(0); }
