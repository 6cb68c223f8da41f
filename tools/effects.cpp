#include "effects.hpp"

#include "files.hpp"
#include "make.hpp"

#include <charconv>
#include <cstdio>
#include <cstring>

namespace {

bool is_depth_error(int32_t status) {
    return status == KIRVO_NEEDS_24 || (status <= KIRVO_NEEDS_8_16_24_32 && status >= KIRVO_NEEDS_16_24);
}

// Runs an operation that makes a new image: call(handle, width, height, &status). An image of a
// depth that it does not take is converted to 24 bits first.
template<typename Call> Image make(Image image, const char* what, Call call) {
    for (int attempt = 0;; ++attempt) {
        int32_t status = 0;
        Image result(call(image.handle(), image.width(), image.height(), &status));
        if (result)
            return result;
        if (attempt > 0 || !is_depth_error(status))
            throw Failure(what, status);
        image = to_24_bits(std::move(image));
    }
}

// The same for one that works in place: call(handle, width, height) answers the status.
template<typename Call> Image change(Image image, const char* what, Call call) {
    for (int attempt = 0;; ++attempt) {
        const int32_t status = call(image.handle(), image.width(), image.height());
        if (status == KIRVO_OK)
            return image;
        if (attempt > 0 || !is_depth_error(status))
            throw Failure(what, status);
        image = to_24_bits(std::move(image));
    }
}

uint32_t colour_value(const Arguments& a, size_t i) { return parse_colour(a.text(i)); }

Image reduce(Image image, const Arguments& a) {
    const std::string& kind = a.text(0);
    using Call = HGLOBAL (*)(HGLOBAL, int32_t*);
    static const std::pair<const char*, Call> kinds[] = {
        {"256", [](HGLOBAL h, int32_t* s) { return DecreaseColor256(h, s); }},
        {"16", [](HGLOBAL h, int32_t* s) { return DecreaseColor16(h, s); }},
        {"grey", [](HGLOBAL h, int32_t* s) { return DecreaseColorMono256(h, s); }},
        {"fast", [](HGLOBAL h, int32_t* s) { return Decrease256Fast(h, s); }},
        {"exact256", [](HGLOBAL h, int32_t* s) { return Decrease256PaletteEx(h, 1, s); }},
        {"exact16", [](HGLOBAL h, int32_t* s) { return Decrease16PaletteEx(h, 1, s); }},
    };
    for (const auto& [name, call] : kinds) {
        if (kind == name)
            return make(std::move(image), "--palette",
                        [&](HGLOBAL h, int32_t, int32_t, int32_t* s) { return call(h, s); });
    }
    a.wrong("one of 256, 16, grey, fast, exact256, exact16");
}

Image change_depth(Image image, const Arguments& a) {
    const int32_t wanted = a.integer(0);
    if (wanted != 16 && wanted != 24 && wanted != 32)
        a.wrong("16, 24 or 32");
    if (image.bits() <= 8)
        image = to_24_bits(std::move(image));
    if (image.bits() == wanted)
        return image;
    int32_t status = 0;
    Image result(wanted == 16   ? DibConvert16bit(image.handle(), &status)
                 : wanted == 24 ? DibConvert24bit(image.handle(), &status)
                                : DibConvert32bit(image.handle(), &status));
    if (!result)
        throw Failure("--depth", status);
    return result;
}

bool smooth_resizing = false;

struct Size {
    int32_t width, height;
};

Size size_value(const Arguments& a) {
    std::string size = a.text(0);
    const size_t by = size.find('x');
    if (by == std::string::npos)
        a.wrong("a size is written WxH");
    size[by] = ',';
    const Arguments numbers(a.option(), size);
    return {numbers.integer(0), numbers.integer(1)};
}

Image resized(Image image, Size to, bool smooth) {
    return make(std::move(image), "resizing", [=](HGLOBAL h, int32_t w, int32_t hh, int32_t* s) {
        return Dib24ZoomEx2(h, 0, 0, w, hh, to.width, to.height, s, smooth ? 1 : 0);
    });
}

Image resize(Image image, const Arguments& a) {
    return resized(std::move(image), size_value(a), smooth_resizing);
}

Image fit(Image image, const Arguments& a) {
    const Size room = size_value(a);
    if (room.width < 1 || room.height < 1)
        a.wrong("at least 1x1");
    return fitted(std::move(image), room.width, room.height);
}

Image rotate(Image image, const Arguments& a) {
    const int32_t degrees = a.integer(0);
    if (degrees == 180)
        return change(std::move(image), "--rotate", [](HGLOBAL h, int32_t w, int32_t hh) {
            return Dib24FlipMirror(h, 0, 0, w, hh);
        });
    if (degrees != 90 && degrees != 270)
        a.wrong("90, 180 or 270");
    return make(std::move(image), "--rotate", [=](HGLOBAL h, int32_t w, int32_t hh, int32_t* s) {
        return Dib24Rotate(h, 0, 0, w, hh, degrees == 90 ? 0 : 1, s);
    });
}

Image gamma(Image image, const Arguments& a) {
    const double red = a.real(0);
    const double green = a.count() > 1 ? a.real(1) : red;
    const double blue = a.count() > 1 ? a.real(2) : red;
    return make(std::move(image), "--gamma", [=](HGLOBAL h, int32_t w, int32_t hh, int32_t* s) {
        return DibGammaEx(h, 0, 0, w, hh, red, green, blue, s);
    });
}

Image tone(Image image, const Arguments& a) {
    if (a.count() == 2) {
        const int32_t numerator = a.integer(0), denominator = a.integer(1);
        return make(std::move(image), "--tone",
                    [=](HGLOBAL h, int32_t w, int32_t hh, int32_t* s) {
                        return Dib24ToneCtrl(h, 0, 0, w, hh, numerator, denominator, s);
                    });
    }
    const double red = a.real(0), green = a.real(1), blue = a.real(2);
    return make(std::move(image), "--tone", [=](HGLOBAL h, int32_t w, int32_t hh, int32_t* s) {
        return Dib24ToneCtrlEx(h, 0, 0, w, hh, red, green, blue, s);
    });
}

Image one_channel(Image image, const Arguments& a) {
    static const char* const names[] = {"red", "green", "blue"};
    size_t wanted = 0;
    while (wanted < 3 && a.text(0) != names[wanted])
        ++wanted;
    if (wanted == 3)
        a.wrong("red, green or blue");
    HGLOBAL channels[3] = {};
    change(std::move(image), "--channel", [&](HGLOBAL h, int32_t w, int32_t hh) {
        return Dib24Separate(h, 0, 0, w, hh, &channels[0], &channels[1], &channels[2]);
    });
    Image all[3] = {Image(channels[0]), Image(channels[1]), Image(channels[2])};
    return std::move(all[wanted]);
}

Image posterise(Image image, const Arguments& a) {
    const int32_t levels = a.integer(0);
    if (levels < 2 || levels > 256)
        a.wrong("2 to 256 levels");
    uint8_t table[256];
    for (int32_t v = 0; v < 256; ++v)
        table[v] = static_cast<uint8_t>(v * levels / 256 * 255 / (levels - 1));
    return make(std::move(image), "--posterise",
                [&](HGLOBAL h, int32_t w, int32_t hh, int32_t* s) {
                    return DibColorMapEx(h, 0, 0, w, hh, table, s);
                });
}

// A second picture, at the depth of the first.
Image partner(const std::string& path, const Image& image) {
    Image other = read_image(path);
    if (other.bits() != image.bits())
        other = change_depth(std::move(other),
                             Arguments("--depth", std::to_string(image.bits())));
    return other;
}

Image direct_colour(Image image) {
    return image.bits() == 24 || image.bits() == 32 ? std::move(image)
                                                    : to_24_bits(std::move(image));
}

// Calls lay(image, other, width, height) for another picture with its corner at (x, y); what hangs
// over the edge is left out.
template <typename Lay>
Image lay_on(Image image, const char* option, const std::string& file, int32_t x, int32_t y,
             Lay lay) {
    image = direct_colour(std::move(image));
    const Image other = partner(file, image);
    const int32_t width = std::min(other.width(), image.width() - x);
    const int32_t height = std::min(other.height(), image.height() - y);
    return change(std::move(image), option, [&](HGLOBAL h, int32_t, int32_t) {
        return lay(h, other.handle(), width, height);
    });
}

Image compose(Image image, const Arguments& a) {
    const int32_t x = a.integer(2, 0), y = a.integer(3, 0);
    return lay_on(std::move(image), "--compose", a.text(0), x, y,
                  [&](HGLOBAL h, HGLOBAL other, int32_t width, int32_t height) {
                      return Dib24Add(h, x, y, other, 0, 0, width, height, a.integer(1));
                  });
}

Image paste(Image image, const Arguments& a) {
    const int32_t x = a.integer(1, 0), y = a.integer(2, 0);
    return lay_on(std::move(image), "--paste", a.text(0), x, y,
                  [&](HGLOBAL h, HGLOBAL other, int32_t width, int32_t height) {
                      return Dib24CopyEx(h, x, y, other, 0, 0, width, height);
                  });
}

Image interleave(Image image, const Arguments& a) {
    image = direct_colour(std::move(image));
    const Image other = partner(a.text(0), image);
    const int32_t width = std::min(image.width(), other.width());
    const int32_t height = std::min(image.height(), other.height());
    return make(std::move(image), "--interleave",
                [&](HGLOBAL h, int32_t, int32_t, int32_t* s) {
                    return Dib24InterLeave(h, 0, 0, other.handle(), 0, 0, width, height, s);
                });
}

Image convolve(Image image, const Arguments& a) {
    if (a.count() != 9 && a.count() != 10)
        a.wrong("nine coefficients and perhaps a divisor");
    int32_t sum = 0, k[9];
    for (size_t i = 0; i < 9; ++i)
        sum += k[i] = a.integer(i);
    SetFilter3x3(k[0], k[1], k[2], k[3], k[4], k[5], k[6], k[7], k[8], a.integer(9, sum));
    return make(std::move(image), "--kernel", [](HGLOBAL h, int32_t w, int32_t hh, int32_t* s) {
        return DibFilter3x3(h, 0, 0, w, hh, s);
    });
}

uint32_t packed(int32_t low, int32_t high) {
    return (static_cast<uint32_t>(low) & 0xFFFF) | static_cast<uint32_t>(high) << 16;
}

// rgb tests channel by channel, rgball and hsv keep a pixel only when every channel passes.
Image keep(Image image, const Arguments& a) {
    static const std::pair<const char*, int32_t> kinds[] = {
        {"rgb", 0x101}, {"rgball", 0x102}, {"hsv", 0x202}};
    int32_t flags = 0;
    for (const auto& [name, value] : kinds)
        flags = a.text(0) == name ? value : flags;
    if (flags == 0 || a.count() != 10)
        a.wrong("rgb, rgball or hsv, then lower bound, upper bound and test (0 none, 1 inside, "
                "2 outside) of each channel");
    int32_t f[10] = {flags};
    for (size_t i = 1; i < 10; ++i)
        f[i] = a.integer(i);
    return make(std::move(image), "--keep", [&](HGLOBAL h, int32_t w, int32_t hh, int32_t* s) {
        return Dib24FilterEx(h, 0, 0, w, hh, packed(f[0], f[1]), packed(f[2], f[3]),
                             packed(f[4], f[5]), packed(f[6], f[7]), packed(f[8], f[9]), s);
    });
}

Image brush(Image image, const Arguments& a) {
    const int32_t x = a.integer(0), y = a.integer(1), size = a.integer(2, 3);
    if (size != 3 && size != 5)
        a.wrong("the brush is 3 or 5 pixels wide");
    return change(std::move(image), "--brush", [=](HGLOBAL h, int32_t, int32_t) {
        return size == 3 ? Dib24Mix3X3(h, x, y) : Dib24Mix5X5(h, x, y);
    });
}

Image extreme(Image image, const char* what, int32_t radius, int32_t maximum) {
    return make(std::move(image), what, [=](HGLOBAL h, int32_t w, int32_t hh, int32_t* s) {
        return DibBlockMxM(h, 0, 0, w, hh, radius, maximum, 0, s);
    });
}

std::function<void(const Histogram&)> histogram_receiver;

Image count_colours(Image image, const Arguments&) {
    static Histogram counts;
    image = change(std::move(image), "--histogram", [](HGLOBAL h, int32_t w, int32_t hh) {
        return DibHistgram(h, 0, 0, w, hh, counts.red, counts.green, counts.blue);
    });
    DibCountColors(image.handle(), &counts.colours);
    if (histogram_receiver)
        histogram_receiver(counts);
    return image;
}

using HandleCall = HGLOBAL (*)(HGLOBAL, int32_t w, int32_t h, const Arguments&, int32_t* status);
using StatusCall = int32_t (*)(HGLOBAL, int32_t w, int32_t h, const Arguments&);

// Effects that are one call on the whole picture.
std::function<Image(Image, const Arguments&)> new_image(const char* what, HandleCall call) {
    return [=](Image image, const Arguments& a) {
        return make(std::move(image), what, [&](HGLOBAL h, int32_t w, int32_t hh, int32_t* s) {
            return call(h, w, hh, a, s);
        });
    };
}
std::function<Image(Image, const Arguments&)> in_place(const char* what, StatusCall call) {
    return [=](Image image, const Arguments& a) {
        return change(std::move(image), what,
                      [&](HGLOBAL h, int32_t w, int32_t hh) { return call(h, w, hh, a); });
    };
}

} // namespace

// Shorthand for the two kinds of one-call effects below; h, w, hh, a and s are their parameters.
#define NEW_IMAGE(option, call)                                                                    \
    new_image(option, [](HGLOBAL h, int32_t w, int32_t hh, [[maybe_unused]] const Arguments& a,    \
                         int32_t* s) { return call; })
#define IN_PLACE(option, call)                                                                     \
    in_place(option, [](HGLOBAL h, int32_t w, int32_t hh,                                          \
                        [[maybe_unused]] const Arguments& a) { return call; })

const std::vector<Effect>& effects() {
    static const std::vector<Effect> all = {
        {"--crop", "X,Y,W,H", "rectangle inside the picture", "Cuts a rectangle out",
         "",
         [](Image image, const Arguments& a) {
             return make(std::move(image), "--crop",
                         [&](HGLOBAL h, int32_t, int32_t, int32_t* s) {
                             return Dib24DupEx(h, a.integer(0), a.integer(1), a.integer(2),
                                               a.integer(3), s);
                         });
         }},
        {"--resize", "WxH", "at least 1x1", "Resizes; with --smooth, reductions are averaged", "",
         resize},
        {"--fit", "WxH", "at least 1x1", "Reduces to fit, with the proportions kept", "240x240",
         fit},
        {"--rotate", "90|180|270", "", "Turns clockwise by degrees", "90", rotate},
        {"--flip", "", "", "Turns upside down", "", IN_PLACE("--flip", Dib24Flip(h, 0, 0, w, hh))},
        {"--mirror", "", "", "Exchanges left and right", "",
         IN_PLACE("--mirror", Dib24Mirror(h, 0, 0, w, hh))},
        {"--compose", "FILE,MODE[,X,Y]",
         "MODE: 0 add, 1 average, 2 leave out black, 3 subtract, 4 leave out the key colour",
         "Lays another picture on this one", "", compose},
        {"--paste", "FILE[,X,Y]", "", "Copies another picture into this one", "", paste},
        {"--key", "RRGGBB", "", "Sets the key colour of --compose FILE,4", "",
         [](Image image, const Arguments& a) {
             SetKeyColorDib24Add(colour_value(a, 0));
             return image;
         }},
        {"--interleave", "FILE", "", "Rows of this and another picture in turn", "", interleave},

        {"--brightness", "N", "-100 to 100", "Makes brighter or darker", "30",
         NEW_IMAGE("--brightness", Dib24Brightness(h, 0, 0, w, hh, a.integer(0), s))},
        {"--contrast", "N", "-100 to 100", "Raises or lowers the contrast", "40",
         NEW_IMAGE("--contrast", Dib24Contrast(h, 0, 0, w, hh, a.integer(0), s))},
        {"--gamma", "G[,G,G]", "0 or more; above 1 darkens", "Gamma curve, one for each channel",
         "0.6", gamma},
        {"--tone", "N,D or R,G,B", "N 1 to 255, D at least 0; factors at least 0",
         "Multiplies all channels by N/D, or each by a factor", "1.2,1.0,0.7", tone},
        {"--posterise", "N", "2 to 256", "Leaves N levels of each channel", "4", posterise},
        {"--negative", "", "", "Inverts every channel", "",
         IN_PLACE("--negative", Dib24Negative(h, 0, 0, w, hh))},
        {"--mono", "", "", "Luminance only", "",
         NEW_IMAGE("--mono", Dib24Monochrome(h, 0, 0, w, hh, s))},
        {"--halftone", "", "", "Half the intensity", "",
         NEW_IMAGE("--halftone", Dib24HalfTone(h, 0, 0, w, hh, s))},
        {"--swap-channels", "N", "0 to 5: RGB becomes RGB, RBG, GBR, GRB, BRG, BGR",
         "Permutes the channels", "5",
         IN_PLACE("--swap-channels", Dib24RGBChange(h, a.integer(0), 0, 0, w, hh))},
        {"--channel", "red|green|blue", "", "Keeps one channel", "red", one_channel},
        {"--hue", "MODE,VALUE", "MODE: 0 set, 1 set and fade, 2 turn; VALUE: 0 to 359 degrees",
         "Sets or turns the hue", "2,120",
         NEW_IMAGE("--hue", DibModifyHueEx(h, 0, 0, w, hh, a.integer(0), a.integer(1), s))},
        {"--xor", "RRGGBB", "", "Exclusive or with a colour", "FF8000",
         IN_PLACE("--xor", Dib24XOR(h, 0, 0, w, hh, colour_value(a, 0)))},

        {"--blur", "", "", "Blurs softly", "",
         NEW_IMAGE("--blur", Dib24Gausian(h, 0, 0, w, hh, s))},
        {"--sharpen", "MODE",
         "0 sharpen; edges in grey: 1 emboss, 2 emboss to the upper right, 3 all, 4 bright, 5 dark",
         "Sharpens, or draws the edges", "0",
         NEW_IMAGE("--sharpen", Dib24Sharpen(h, 0, 0, w, hh, a.integer(0), s))},
        {"--sharpen-more", "N", "0 to 3", "Sharpens by strength", "2",
         NEW_IMAGE("--sharpen-more", Dib24SharpenEx(h, 0, 0, w, hh, a.integer(0), s))},
        {"--edges", "T,MODE", "T: threshold; MODE: 0 to 2", "Shows coloured edges", "20,0",
         NEW_IMAGE("--edges", Dib24ColorEdge(h, 0, 0, w, hh, a.integer(0), a.integer(1), s))},
        {"--kernel", "K0,...,K8[,D]", "whole numbers; the divisor is the sum when left out",
         "3 x 3 convolution; the first row weighs the row below", "-1,-1,-1,-1,9,-1,-1,-1,-1,1",
         convolve},
        {"--keep", "KIND,LO,HI,TEST,...",
         "KIND: rgb, rgball or hsv; for each channel two bounds and a test: 0 none, 1 inside, "
         "2 outside",
         "Keeps what lies in ranges, blackens the rest", "hsv,60,200,1,0,0,0,0,0,0", keep},
        {"--mosaic", "N", "1 or more", "Blocks of their first pixel's colour", "12",
         NEW_IMAGE("--mosaic", DibMosaicEx(h, 0, 0, w, hh, a.integer(0), s))},
        {"--mosaic-average", "N", "1 to 1024", "Blocks of their average colour", "12",
         NEW_IMAGE("--mosaic-average", DibMosaicEx2(h, 0, 0, w, hh, a.integer(0), s))},
        {"--dilate", "R", "1 to 64", "Widens what is bright", "3",
         [](Image image, const Arguments& a) {
             return extreme(std::move(image), "--dilate", a.integer(0), 1);
         }},
        {"--erode", "R", "1 to 64", "Widens what is dark", "3",
         [](Image image, const Arguments& a) {
             return extreme(std::move(image), "--erode", a.integer(0), 0);
         }},
        {"--brush", "X,Y[,SIZE]", "a point of the picture; SIZE 3 or 5",
         "Pulls the neighbours of a point towards its colour", "", brush},
        {"--histogram", "", "", "Prints colours and channel values", "", count_colours},

        {"--palette", "256|16|grey|fast|exact256|exact16", "", "Reduces the colours", "16", reduce},
        {"--depth", "16|24|32", "", "Changes the bits of a pixel", "16", change_depth},
        {"--bits", "R,G,B", "0 to 8 each", "Keeps that many bits of each channel", "3,3,2",
         NEW_IMAGE("--bits",
                   ((void)w, (void)hh,
                    DibCutDepth(h, a.integer(0), a.integer(1), a.integer(2), s)))},
    };
    return all;
}

void set_smooth_resizing(bool smooth) { smooth_resizing = smooth; }

void set_histogram_receiver(std::function<void(const Histogram&)> receiver) {
    histogram_receiver = std::move(receiver);
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
    return resized(std::move(image), size, true);
}

Arguments::Arguments(std::string option, const std::string& text) : option_(std::move(option)) {
    for (size_t start = 0; start <= text.size();) {
        const size_t comma = std::min(text.find(',', start), text.size());
        values_.push_back(text.substr(start, comma - start));
        start = comma + 1;
    }
}

void Arguments::wrong(const std::string& why) const { throw UsageError(option_ + ": " + why); }

const std::string& Arguments::text(size_t i) const {
    if (i >= count())
        wrong("too few values");
    return values_[i];
}

int32_t Arguments::integer(size_t i) const {
    const std::string& value = text(i);
    int32_t number = 0;
    const auto [end, error] =
        std::from_chars(value.data(), value.data() + value.size(), number);
    if (error != std::errc() || end != value.data() + value.size())
        wrong("'" + value + "' is not a whole number");
    return number;
}

double Arguments::real(size_t i) const {
    const std::string& value = text(i);
    size_t used = 0;
    double number = 0;
    try {
        number = std::stod(value, &used);
    } catch (const std::exception&) {
    }
    if (used == 0 || used != value.size())
        wrong("'" + value + "' is not a number");
    return number;
}
