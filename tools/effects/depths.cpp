// Effects on palettes and bits.
#include "effects/calls.hpp"
#include "effects/operations.hpp"

Image reduce(Image image, const Values& values) {
    using Call = HGLOBAL (*)(HGLOBAL, int32_t*);
    static const std::pair<const char*, Call> kinds[] = {
        {"256", [](HGLOBAL h, int32_t* s) { return DecreaseColor256(h, s); }},
        {"16", [](HGLOBAL h, int32_t* s) { return DecreaseColor16(h, s); }},
        {"grey", [](HGLOBAL h, int32_t* s) { return DecreaseColorMono256(h, s); }},
        {"fast", [](HGLOBAL h, int32_t* s) { return Decrease256Fast(h, s); }},
        {"exact256", [](HGLOBAL h, int32_t* s) { return Decrease256PaletteEx(h, 1, s); }},
        {"exact16", [](HGLOBAL h, int32_t* s) { return Decrease16PaletteEx(h, 1, s); }},
    };
    Call wanted = nullptr;
    for (const auto& [name, call] : kinds)
        wanted = values.text(0) == name ? call : wanted;
    return make(std::move(image), "--palette",
                [&](HGLOBAL h, int32_t, int32_t, int32_t* s) { return wanted(h, s); });
}

Image at_depth(Image image, int32_t bits) {
    if (image.bits() <= 8)
        image = to_24_bits(std::move(image));
    if (image.bits() == bits)
        return image;
    int32_t status = 0;
    HGLOBAL result = bits == 16   ? DibConvert16bit(image.handle(), &status)
                     : bits == 24 ? DibConvert24bit(image.handle(), &status)
                                  : DibConvert32bit(image.handle(), &status);
    return checked(result, "--depth", status);
}

Image change_depth(Image image, const Values& values) {
    return at_depth(std::move(image), std::stoi(values.text(0)));
}
