#include "effects/effects.hpp"

#include "effects/calls.hpp"
#include "effects/operations.hpp"
#include "line/numbers.hpp"

namespace {

using HandleCall = HGLOBAL (*)(HGLOBAL, int32_t w, int32_t h, const Values&, int32_t* status);
using StatusCall = int32_t (*)(HGLOBAL, int32_t w, int32_t h, const Values&);

// Effects that are one call on the whole picture.
std::function<Image(Image, const Values&)> new_image(const char* what, HandleCall call) {
    return [=](Image image, const Values& v) {
        return make(std::move(image), what, [&](HGLOBAL h, int32_t w, int32_t hh, int32_t* s) {
            return call(h, w, hh, v, s);
        });
    };
}
std::function<Image(Image, const Values&)> in_place(const char* what, StatusCall call) {
    return [=](Image image, const Values& v) {
        return change(std::move(image), what,
                      [&](HGLOBAL h, int32_t w, int32_t hh) { return call(h, w, hh, v); });
    };
}

// Two modes and the same words for them.
const std::vector<std::string> strengths = {"soft", "medium", "strong", "strongest"};
const std::vector<std::string> edges = {"all", "bright", "dark"};
const std::vector<std::string> tests = {"none", "inside", "outside"};

std::vector<Parameter> coefficients() {
    std::vector<Parameter> all;
    for (const char* name : {"K0", "K1", "K2", "K3", "K4", "K5", "K6", "K7", "K8"})
        all.push_back(whole(name));
    all.push_back(maybe(whole("D")));
    return all;
}

std::vector<Parameter> bounds() {
    std::vector<Parameter> all = {choice("KIND", {"rgb", "rgball", "hsv"})};
    for (int channel = 0; channel < 3; ++channel) {
        for (const char* name : {"LO", "HI"})
            all.push_back(whole(name, 0, 359));
        all.push_back(mode("TEST", tests));
    }
    return all;
}

void check_fraction(const Values& v) {
    const auto is_whole = [&](size_t i) { return whole_number(v.text(i)).has_value(); };
    if (v.count() == 2 && !(is_whole(0) && is_whole(1) && v.real(0) >= 1 && v.real(0) <= 255))
        throw UsageError("--tone: of a fraction N,D both are whole numbers, N from 1 to 255");
}

constexpr bool moves = true;

} // namespace

// Shorthand for the two kinds of one-call effects below; h, w, hh, v and s are their parameters.
#define NEW_IMAGE(option, call)                                                                    \
    new_image(option, [](HGLOBAL h, int32_t w, int32_t hh, [[maybe_unused]] const Values& v,       \
                         int32_t* s) { return call; })
#define IN_PLACE(option, call)                                                                     \
    in_place(option, [](HGLOBAL h, int32_t w, int32_t hh, [[maybe_unused]] const Values& v) {      \
        return call;                                                                               \
    })

// clang-format off
const std::vector<Effect>& effects() {
    static const std::vector<Effect> all = {
        {"--crop", {whole("X", 0), whole("Y", 0), whole("W", 1), whole("H", 1)},
         "Cuts a rectangle out", "", crop, moves, "inside the picture"},
        {"--resize", {size()}, "Resizes, averaging what shrinks", "",
         resize, moves, "800x600, 800x or x600 (in proportion), 50%; with --nearest no averages"},
        {"--fit", {size()}, "Reduces to fit, with the proportions kept", "240x240", fit, moves},
        {"--rotate", {choice({"90", "180", "270"})}, "Turns clockwise by degrees", "90", rotate,
         moves},
        {"--flip", {}, "Turns upside down", "", IN_PLACE("--flip", Dib24Flip(h, 0, 0, w, hh)),
         moves},
        {"--mirror", {}, "Exchanges left and right", "",
         IN_PLACE("--mirror", Dib24Mirror(h, 0, 0, w, hh)), moves},
        {"--compose", {file(), mode("MODE", {"add", "average", "black", "subtract", "key"}),
                       maybe(whole("X", 0)), maybe(whole("Y", 0))},
         "Lays another picture on this one; black and key leave that colour out", "", compose},
        {"--paste", {file(), maybe(whole("X", 0)), maybe(whole("Y", 0))},
         "Copies another picture into this one", "", paste},
        {"--key", {colour()}, "Sets the key colour of a --compose FILE,key behind it", "",
         [](Image image, const Values& v) {
             SetKeyColorDib24Add(v.colour(0));
             return image;
         }},
        {"--interleave", {file()}, "Rows of this and another picture in turn", "", interleave},

        {"--brightness", {whole("N", -100, 100)}, "Makes brighter or darker", "30",
         NEW_IMAGE("--brightness", Dib24Brightness(h, 0, 0, w, hh, v.integer(0), s))},
        {"--contrast", {whole("N", -100, 100)}, "Raises or lowers the contrast", "40",
         NEW_IMAGE("--contrast", Dib24Contrast(h, 0, 0, w, hh, v.integer(0), s))},
        {"--gamma", {real("G"), maybe(real("G")), maybe(real("G"))},
         "Gamma curve, one for each channel", "0.6", change_gamma, false, "above 1 darkens"},
        {"--tone", {real("R"), real("G"), maybe(real("B"))},
         "Multiplies all channels by N/D, or each by a factor", "1.2,1.0,0.7", tone, false,
         "N: 1 to 255", "N,D or R,G,B", check_fraction},
        {"--posterise", {whole("N", 2, 256)}, "Leaves N levels of each channel", "4", posterise},
        {"--negative", {}, "Inverts every channel", "",
         IN_PLACE("--negative", Dib24Negative(h, 0, 0, w, hh))},
        {"--mono", {}, "Luminance only", "",
         NEW_IMAGE("--mono", Dib24Monochrome(h, 0, 0, w, hh, s))},
        {"--halftone", {}, "Half the intensity", "",
         NEW_IMAGE("--halftone", Dib24HalfTone(h, 0, 0, w, hh, s))},
        {"--swap-channels", {mode("ORDER", {"rgb", "rbg", "gbr", "grb", "brg", "bgr"})},
         "Permutes the channels", "bgr",
         IN_PLACE("--swap-channels", Dib24RGBChange(h, v.integer(0), 0, 0, w, hh))},
        {"--channel", {choice({"red", "green", "blue"})}, "Keeps one channel", "red", one_channel},
        {"--hue", {mode("MODE", {"set", "fade", "turn"}), whole("DEGREES", 0, 359)},
         "Sets the hue, sets it and fades, or turns it", "turn,120",
         NEW_IMAGE("--hue", DibModifyHueEx(h, 0, 0, w, hh, v.integer(0), v.integer(1), s))},
        {"--xor", {colour()}, "Exclusive or with a colour", "FF8000",
         IN_PLACE("--xor", Dib24XOR(h, 0, 0, w, hh, v.colour(0)))},

        {"--blur", {}, "Blurs softly", "", NEW_IMAGE("--blur", Dib24Gausian(h, 0, 0, w, hh, s))},
        {"--sharpen", {mode("MODE", {"soft", "emboss", "emboss-corner", "edges", "bright-edges",
                                     "dark-edges", "medium", "strong", "strongest"}, 5)},
         "Sharpens, or draws the edges in grey", "soft", sharpen},
        {"--sharpen-more", {mode("STRENGTH", strengths)}, "Sharpens by strength", "strong",
         NEW_IMAGE("--sharpen-more", Dib24SharpenEx(h, 0, 0, w, hh, v.integer(0), s))},
        {"--edges", {whole("THRESHOLD"), maybe(mode("MODE", edges))}, "Shows coloured edges",
         "20,all",
         NEW_IMAGE("--edges", Dib24ColorEdge(h, 0, 0, w, hh, v.integer(0), v.integer(1), s))},
        {"--kernel", coefficients(), "3 x 3 convolution; the first row weighs the row below",
         "-1,-1,-1,-1,9,-1,-1,-1,-1,1", convolve, false,
         "the divisor D is the sum when left out"},
        {"--keep", bounds(),
         "Keeps what lies in ranges, blackens the rest; two bounds and a test for each channel",
         "hsv,60,200,inside,0,0,none,0,0,none", keep},
        {"--mosaic", {whole("N", 1)}, "Blocks of their first pixel's colour", "12",
         NEW_IMAGE("--mosaic", DibMosaicEx(h, 0, 0, w, hh, v.integer(0), s))},
        {"--mosaic-average", {whole("N", 1, 1024)}, "Blocks of their average colour", "12",
         NEW_IMAGE("--mosaic-average", DibMosaicEx2(h, 0, 0, w, hh, v.integer(0), s))},
        {"--dilate", {whole("R", 1, 64)}, "Widens what is bright", "3",
         NEW_IMAGE("--dilate", DibBlockMxM(h, 0, 0, w, hh, v.integer(0), 1, 0, s))},
        {"--erode", {whole("R", 1, 64)}, "Widens what is dark", "3",
         NEW_IMAGE("--erode", DibBlockMxM(h, 0, 0, w, hh, v.integer(0), 0, 0, s))},
        {"--brush", {whole("X", 0), whole("Y", 0), maybe(choice({"3", "5"}))},
         "Pulls the neighbours of a point towards its colour", "", brush, false,
         "a point of the picture"},
        {"--histogram", {}, "Prints colours and channel values", "", count_colours},

        {"--palette", {choice({"256", "16", "grey", "fast", "exact256", "exact16"})},
         "Reduces the colours", "16", reduce},
        {"--depth", {choice({"16", "24", "32"})}, "Changes the bits of a pixel", "16",
         change_depth},
        {"--bits", {whole("R", 0, 8), whole("G", 0, 8), whole("B", 0, 8)},
         "Keeps that many bits of each channel", "3,3,2",
         NEW_IMAGE("--bits", ((void)w, (void)hh,
                              DibCutDepth(h, v.integer(0), v.integer(1), v.integer(2), s)))},
    };
    return all;
}
// clang-format on

std::string Effect::values() const { return *form == '\0' ? signature(parameters) : form; }

std::string Effect::call() const { return option + (parameters.empty() ? "" : " " + values()); }

std::string Effect::ranges() const {
    const std::string text = ::ranges(parameters);
    return text + (text.empty() || *further == '\0' ? "" : "; ") + further;
}

const Effect* effect_called(const std::string& name) {
    const size_t dashes = name.starts_with("--") ? 0 : 2;
    for (const Effect& effect : effects()) {
        if (name == effect.option + dashes)
            return &effect;
    }
    return nullptr;
}

std::vector<std::string> effect_names() {
    std::vector<std::string> names;
    for (const Effect& effect : effects())
        names.push_back(effect.name());
    return names;
}
