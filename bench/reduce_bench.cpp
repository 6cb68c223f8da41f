// Colour reduction beside peers that do comparable work: libjpeg-turbo's one-pass quantiser maps
// to a colour cube of its own choice, with or without Floyd-Steinberg diffusion or an ordered
// dither; GraphicsMagick maps to the colours of another picture.
#include "support/library.hpp"
#include "support/pictures.hpp"
#include "support/row.hpp"

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

#define JPEG_INTERNALS // for the quantiser alone, without the decoder before it
#include <jpeglib.h>

#include <magick/api.h>

namespace {

using namespace kirvo_bench;

using Reduce = HGLOBAL(WINAPI*)(HGLOBAL, int32_t*);

auto ours(Reduce reduce) {
    return [reduce] {
        return [reduce, photo = photo_dib()] {
            int32_t status;
            GlobalFree(reduce(photo, &status));
        };
    };
}

// A decoder that has got as far as to have its quantiser ready for rows of the photo's width.
class Quantiser {
  public:
    explicit Quantiser(J_DITHER_MODE dither) {
        decoder_.err = jpeg_std_error(&errors_);
        jpeg_create_decompress(&decoder_);
        const std::vector<uint8_t>& stream = photo_jpeg(Jpeg::s444);
        jpeg_mem_src(&decoder_, stream.data(), stream.size());
        jpeg_read_header(&decoder_, TRUE);
        decoder_.out_color_space = JCS_RGB;
        decoder_.quantize_colors = TRUE;
        decoder_.two_pass_quantize = FALSE;
        decoder_.dither_mode = dither;
        decoder_.desired_number_of_colors = 256;
        jpeg_start_decompress(&decoder_);
    }
    ~Quantiser() { jpeg_destroy_decompress(&decoder_); }

    void run(const std::vector<uint8_t>& rows) {
        auto* to = static_cast<uint8_t*>(std::malloc(photo_grey().size()));
        decoder_.cquantize->start_pass(&decoder_, FALSE);
        for (int y = 0; y < photo_height; ++y) {
            JSAMPROW in = const_cast<uint8_t*>(rows.data()) + ptrdiff_t{3} * photo_width * y;
            JSAMPROW out = to + ptrdiff_t{photo_width} * y;
            decoder_.cquantize->color_quantize(&decoder_, &in, &out, 1);
        }
        std::free(to);
    }

  private:
    jpeg_decompress_struct decoder_ = {};
    jpeg_error_mgr errors_ = {};
};

auto libjpeg(J_DITHER_MODE dither) {
    return [dither] {
        return [quantiser = std::make_shared<Quantiser>(dither)] { quantiser->run(photo_bgr()); };
    };
}

const Row diffuse256("reduce/diffuse256/ours", ours(DecreaseColor256));
const Row diffuse256_jpeg("reduce/diffuse256/libjpeg-turbo", libjpeg(JDITHER_FS));
const Row diffuse16("reduce/diffuse16/ours", ours(DecreaseColor16));
const Row diffuse16_jpeg("reduce/diffuse16/libjpeg-turbo", libjpeg(JDITHER_FS));
const Row ordered("reduce/ordered/ours", ours(Decrease256Fast));
const Row ordered_jpeg("reduce/ordered/libjpeg-turbo", libjpeg(JDITHER_ORDERED));
const Row grey("reduce/grey/ours", ours(DecreaseColorMono256));
const Row grey_jpeg("reduce/grey/libjpeg-turbo", libjpeg(JDITHER_NONE));

// A picture of at most 256 colours, small enough for a peer that takes its time.
constexpr int part_width = 1000, part_height = 1000;
constexpr double part_megapixels = 1.0;

HGLOBAL part_of_256_colours() {
    return kept([] {
        int32_t status;
        const HGLOBAL part = Dib24DupEx(photo_dib(), 0, 0, part_width, part_height, &status);
        const HGLOBAL indexed = Decrease256Fast(part, &status);
        const HGLOBAL made = IncreaseColor16M(indexed, &status);
        GlobalFree(part);
        GlobalFree(indexed);
        return made;
    });
}

class Magick {
  public:
    Magick() {
        InitializeMagick(nullptr);
        GetExceptionInfo(&exception_);
        auto* block = static_cast<uint8_t*>(GlobalLock(part_of_256_colours()));
        picture_ =
            ConstituteImage(part_width, part_height, "BGR", CharPixel, block + 40, &exception_);
        GlobalUnlock(part_of_256_colours());
        QuantizeInfo info;
        GetQuantizeInfo(&info);
        info.dither = MagickFalse;
        palette_ = CloneImage(picture_, 0, 0, MagickTrue, &exception_);
        QuantizeImage(&info, palette_);
    }
    void map() {
        Image* copy = CloneImage(picture_, 0, 0, MagickTrue, &exception_);
        MapImage(copy, palette_, MagickFalse);
        DestroyImage(copy);
    }

  private:
    ExceptionInfo exception_;
    Image *picture_, *palette_;
};

const Row exact(
    "reduce/exact256/ours",
    [] {
        return [part = part_of_256_colours()] {
            int32_t status;
            GlobalFree(Decrease256PaletteEx(part, 1, &status));
        };
    },
    part_megapixels);
const Row exact_magick(
    "reduce/exact256/graphicsmagick",
    [] { return [magick = std::make_shared<Magick>()] { magick->map(); }; }, part_megapixels);

const Row increase("reduce/increase/ours", [] {
    return [grey = grey_dib()] {
        int32_t status;
        GlobalFree(IncreaseColor16M(grey, &status));
    };
});

} // namespace
