// Operations at the depths that the other files leave out, and operations that have no peer.
#include "support/pictures.hpp"
#include "support/row.hpp"

#include <string>
#include <vector>

namespace {

using namespace kirvo_bench;

// Runs once on an image that it may change, or of which it makes a new one that it frees.
using Run = void (*)(HGLOBAL dib);

struct Operation {
    const char* name; // topic/operation
    std::vector<int> depths;
    Run run;
};

const int32_t &w = photo_width, &h = photo_height;

// A function that makes an image of the whole photo.
template<auto function, auto... values>
void make(HGLOBAL dib) {
    GlobalFree(function(dib, 0, 0, w, h, values..., nullptr));
}
template<auto convert>
void reduce(HGLOBAL dib) {
    GlobalFree(convert(dib, nullptr));
}
// One that changes it.
template<auto function>
void change(HGLOBAL dib) {
    function(dib, 0, 0, w, h);
}

template<int thousandths, int smooth>
void zoom(HGLOBAL dib) {
    GlobalFree(Dib24ZoomEx2(dib, 0, 0, w, h, w * thousandths / 1000, h * thousandths / 1000,
                            nullptr, smooth));
}

int bits_of(HGLOBAL dib) { return DibQueryBitCount(dib); }

template<int mode>
void compose(HGLOBAL dib) {
    SetKeyColorDib24Add(0x123456);
    Dib24Add(dib, 0, 0, photo_of(bits_of(dib)), 0, 0, w, h, mode);
}

void separate(HGLOBAL dib) {
    HGLOBAL red, green, blue;
    Dib24Separate(dib, 0, 0, w, h, &red, &green, &blue);
    for (HGLOBAL image : {red, green, blue})
        GlobalFree(image);
}

void histogram(HGLOBAL dib) {
    uint32_t red[256], green[256], blue[256];
    DibHistgram(dib, 0, 0, w, h, red, green, blue);
}

void colours(HGLOBAL dib) {
    uint32_t count;
    DibCountColors(dib, &count);
}

template<int factor>
void kernel(HGLOBAL dib) {
    SetFilter3x3(-factor, -2, 3, 4, 20 * factor, -4, 3, -2, -factor, 18 * factor);
    make<DibFilter3x3>(dib);
}

void map(HGLOBAL dib) {
    uint8_t table[256];
    for (int i = 0; i < 256; ++i)
        table[i] = static_cast<uint8_t>(i * i >> 8);
    GlobalFree(DibColorMapEx(dib, 0, 0, w, h, table, nullptr));
}

template<int luminance>
void darkest(HGLOBAL dib) {
    make<DibBlockMxM, 2, 0, luminance>(dib);
}

constexpr uint32_t pair(uint32_t low, uint32_t high) { return low | high << 16; }

void keep_hues(HGLOBAL dib) { make<Dib24FilterEx, pair(0x202, 20), pair(140, 1), 0u, 0u, 0u>(dib); }
void keep_colours(HGLOBAL dib) {
    make<Dib24FilterEx, pair(0x102, 60), pair(200, 1), pair(40, 200), 1u, pair(180, 1)>(dib);
}

void interleave(HGLOBAL dib) {
    GlobalFree(Dib24InterLeave(dib, 0, 0, photo_of(bits_of(dib)), 0, 0, w, h, nullptr));
}

const Operation operations[] = {
    {"copy/duplicate", {8, 16, 32}, make<Dib24DupEx>},
    {"copy/copy",
     {8, 24},
     [](HGLOBAL dib) { Dib24CopyEx(dib, 0, 0, photo_of(bits_of(dib)), 0, 0, w, h); }},
    {"compose/add", {32}, compose<0>},
    {"compose/average", {32}, compose<1>},
    {"compose/black transparent", {32}, compose<2>},
    {"compose/subtract", {32}, compose<3>},
    {"compose/key colour", {24, 32}, compose<4>},
    {"turn/flip", {8, 16, 32}, change<Dib24Flip>},
    {"turn/mirror", {8, 16, 32}, change<Dib24Mirror>},
    {"turn/180", {8, 16, 32}, change<Dib24FlipMirror>},
    {"turn/90 clockwise", {8, 16, 32}, make<Dib24Rotate, 0>},
    {"turn/90 counter-clockwise", {8, 16, 32}, make<Dib24Rotate, 1>},
    {"zoom/nearest x0.5", {8, 16, 32}, zoom<500, 0>},
    {"zoom/nearest x1.7", {8, 16, 32}, zoom<1700, 0>},
    {"zoom/box x0.5", {16, 32}, zoom<500, 1>},
    {"zoom/box x0.25", {16, 32}, zoom<250, 1>},
    {"zoom/box x0.3", {16, 32}, zoom<300, 1>},
    {"tone/brightness", {32}, make<Dib24Brightness, 20>},
    {"tone/contrast", {32}, make<Dib24Contrast, 30>},
    {"tone/negative", {16, 32}, change<Dib24Negative>},
    {"tone/exchange", {32}, [](HGLOBAL dib) { Dib24RGBChange(dib, 5, 0, 0, w, h); }},
    {"tone/monochrome", {32}, make<Dib24Monochrome>},
    {"tone/half", {32}, make<Dib24HalfTone>},
    {"tone/fraction", {32}, make<Dib24ToneCtrl, 4, 3>},
    {"tone/factors", {24, 32}, make<Dib24ToneCtrlEx, 1.1, 0.9, 1.3>},
    {"tone/gamma_channels", {16, 32}, make<DibGammaEx, 0.45, 0.9, 2.0>},
    {"tone/map", {16, 24, 32}, map},
    {"tone/separate", {24, 32}, separate},
    {"tone/xor", {16, 24, 32}, [](HGLOBAL dib) { Dib24XOR(dib, 0, 0, w, h, 0x5A3C99); }},
    {"hue/turn", {16, 32}, make<DibModifyHueEx, 2, 77>},
    {"hue/set", {16, 24, 32}, make<DibModifyHueEx, 0, 77>},
    {"hue/set softer", {24}, make<DibModifyHueEx, 1, 77>},
    {"hue/turn in place", {24}, [](HGLOBAL dib) { DibModifyHue(dib, 2, 77); }},
    {"filter/kernel", {16, 32}, kernel<1>},
    {"filter/kernel of 32-bit sums", {16, 24, 32}, kernel<20>},
    {"filter/sharpen by 2", {24}, make<Dib24SharpenEx, 2>},
    {"filter/edges", {24}, make<Dib24Sharpen, 1>},
    {"filter/coloured edges", {24}, make<Dib24ColorEdge, 30, 0>},
    {"filter/darkest-2", {16, 24, 32}, darkest<0>},
    {"filter/darkest-3", {32}, make<DibBlockMxM, 3, 0, 0>},
    {"filter/darkest-2 by luminance", {16, 24, 32}, darkest<1>},
    {"filter/mosaic", {8, 16, 32}, make<DibMosaicEx, 8>},
    {"filter/mosaic-average", {8, 16, 32}, make<DibMosaicEx2, 8>},
    {"filter/histogram", {8, 16, 32}, histogram},
    {"filter/colours", {8, 16, 32}, colours},
    {"filter/range of hues", {32}, keep_hues},
    {"filter/range of colours", {32}, keep_colours},
    {"filter/interleave", {24, 32}, interleave},
    {"reduce/diffuse256", {32}, reduce<DecreaseColor256>},
    {"reduce/diffuse16", {32}, reduce<DecreaseColor16>},
    {"reduce/grey", {32}, reduce<DecreaseColorMono256>},
    {"reduce/ordered", {32}, reduce<Decrease256Fast>},
};

const bool added = [] {
    for (const Operation& operation : operations) {
        for (const int bits : operation.depths) {
            const std::string name =
                operation.name + (", " + std::to_string(bits) + " bits") + "/ours";
            const Row row(name.c_str(), [run = operation.run, bits] {
                return [run, dib = scratch_of(bits)] { run(dib); };
            });
        }
    }
    return true;
}();

// Pictures made from nothing.
template<auto function, auto... colours>
Work drawn() {
    return [] { GlobalFree(function(w, h, 24, colours..., nullptr)); };
}
const Row solid("draw/solid/ours", drawn<Dib24Solid, 0x123456u>);
const Row gradient1("draw/gradient 1/ours", drawn<Dib24Gradation1, 0u, 0x80FF40u>);
const Row gradient2("draw/gradient 2/ours", drawn<Dib24Gradation2, 0u, 0x80FF40u>);
const Row gradient3("draw/gradient 3/ours",
                    drawn<Dib24Gradation3, 0u, 0x80FF40u, 0xFFFFFFu, 0x3399FFu>);

} // namespace
