// Colour reduction beside peers that do comparable work: libjpeg-turbo's one-pass quantiser maps
// to a colour cube of its own choice, with Floyd-Steinberg diffusion or an ordered dither, and its
// two-pass quantiser to colours given; GraphicsMagick maps to the colours of another picture.
#include "support/library.hpp"
#include "support/pictures.hpp"
#include "support/row.hpp"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <opencv2/imgproc.hpp>
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

// Five, eight and five levels of red, green and blue.
constexpr int levels[] = {5, 8, 5};
uint8_t at_level(int value, int channel) {
    const int highest = levels[channel] - 1;
    return static_cast<uint8_t>((value * highest + 127) / 255 * 255 / highest);
}
// The photo in 200 colours, rows from the top.
const std::vector<uint8_t>& photo_of_200_colours() {
    static const std::vector<uint8_t> rows = [] {
        std::vector<uint8_t> made = photo_bgr();
        for (size_t i = 0; i < made.size(); ++i)
            made[i] = at_level(made[i], i % 3 == 1 ? 1 : 0);
        return made;
    }();
    return rows;
}

// The same bytes as a picture of half the width: rows of more than 65504 bits would overlap.
HGLOBAL dib_of_200_colours() {
    return kept([] {
        const HGLOBAL dib =
            DibMemAllocEx(static_cast<uint32_t>(photo_width / 2), 2 * photo_height, 24);
        const std::vector<uint8_t>& rows = photo_of_200_colours();
        std::memcpy(static_cast<uint8_t*>(GlobalLock(dib)) + 40, rows.data(), rows.size());
        GlobalUnlock(dib);
        return dib;
    });
}

// A decoder that has got as far as to have its quantiser ready for rows of the photo's width: for a
// cube of its own, or for the 200 colours given.
enum class Colours { own, given };
class Quantiser {
  public:
    explicit Quantiser(J_DITHER_MODE dither, Colours colours = Colours::own) {
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
        if (colours == Colours::given)
            give_colours();
        jpeg_start_decompress(&decoder_);
    }
    ~Quantiser() { jpeg_destroy_decompress(&decoder_); }

    void run(const std::vector<uint8_t>& rows) {
        auto* to = static_cast<uint8_t*>(std::malloc(photo_grey().size()));
        if (decoder_.two_pass_quantize)
            decoder_.cquantize->new_color_map(
                &decoder_); // each picture is the first of its colours
        decoder_.cquantize->start_pass(&decoder_, FALSE);
        for (int y = 0; y < photo_height; ++y) {
            JSAMPROW in = const_cast<uint8_t*>(rows.data()) + ptrdiff_t{3} * photo_width * y;
            JSAMPROW out = to + ptrdiff_t{photo_width} * y;
            decoder_.cquantize->color_quantize(&decoder_, &in, &out, 1);
        }
        std::free(to);
    }

  private:
    void give_colours() {
        decoder_.two_pass_quantize = TRUE;
        decoder_.actual_number_of_colors = 200;
        decoder_.colormap = decoder_.mem->alloc_sarray(reinterpret_cast<j_common_ptr>(&decoder_),
                                                       JPOOL_IMAGE, 200, 3);
        for (int i = 0; i < 200; ++i) {
            const int level[] = {i % 5, i / 5 % 8, i / 40};
            for (int c = 0; c < 3; ++c)
                decoder_.colormap[c][i] = static_cast<uint8_t>(level[c] * 255 / (levels[c] - 1));
        }
    }

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
const Row palette200("reduce/200 colours/ours", [] {
    return [dib = dib_of_200_colours()] {
        int32_t status;
        GlobalFree(Decrease256PaletteEx(dib, 1, &status));
    };
});
const Row palette200_jpeg("reduce/200 colours/libjpeg-turbo", [] {
    return [quantiser = std::make_shared<Quantiser>(JDITHER_NONE, Colours::given)] {
        quantiser->run(photo_of_200_colours());
    };
});
const Row grey("reduce/grey/ours", ours(DecreaseColorMono256));
const Row grey_opencv("reduce/grey/opencv", [] {
    return [photo = cv::Mat(photo_height, photo_width, CV_8UC3,
                            const_cast<uint8_t*>(photo_bgr().data()))] {
        cv::Mat grey;
        cv::cvtColor(photo, grey, cv::COLOR_BGR2GRAY);
    };
});

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
