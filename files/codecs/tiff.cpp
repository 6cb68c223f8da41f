// TIFF by libtiff.
#include "codecs/codecs.hpp"

#include <cstdarg>
#include <cstdio>

#include <tiffio.h>

namespace kirvo_files {
namespace {

// A file in memory, and what the library last complained of.
struct Stream {
    Bytes in;
    Buffer* out = nullptr;
    uint64_t at = 0;
    char words[160] = {};
    bool past_end = false, no_memory = false;

    size_t size() const { return out != nullptr ? out->size() : in.size(); }
};

Stream& of(thandle_t handle) {
    return *static_cast<Stream*>(handle);
}

tmsize_t read_some(thandle_t handle, void* to, tmsize_t count) {
    Stream& stream = of(handle);
    const Bytes all = stream.out != nullptr ? stream.out->bytes() : stream.in;
    const Bytes part = all.part(stream.at, static_cast<uint64_t>(count));
    stream.past_end |= part.size() < static_cast<size_t>(count);
    if (!part.empty())
        std::memcpy(to, part.data(), part.size());
    stream.at += part.size();
    return static_cast<tmsize_t>(part.size());
}

tmsize_t write_some(thandle_t handle, void* from, tmsize_t count) {
    Stream& stream = of(handle);
    const uint64_t end = stream.at + static_cast<uint64_t>(count);
    if (stream.out == nullptr || (end > stream.out->size() && !stream.out->resize(end))) {
        stream.no_memory = true;
        return 0;
    }
    std::memcpy(stream.out->data() + stream.at, from, static_cast<size_t>(count));
    stream.at = end;
    return count;
}

toff_t seek(thandle_t handle, toff_t offset, int whence) {
    Stream& stream = of(handle);
    stream.at = whence == SEEK_SET   ? offset
                : whence == SEEK_CUR ? stream.at + offset
                                     : stream.size() + offset;
    return stream.at;
}

int close(thandle_t) {
    return 0;
}

toff_t size_of(thandle_t handle) {
    return of(handle).size();
}

int complain(TIFF*, void* handle, const char*, const char* form, va_list list) {
    Stream& stream = *static_cast<Stream*>(handle);
    if (stream.words[0] == 0)
        std::vsnprintf(stream.words, sizeof stream.words, form, list);
    return 1;
}

int ignore(TIFF*, void*, const char*, const char*, va_list) {
    return 1;
}

TIFF* open(Stream& stream, const char* mode) {
    TIFFOpenOptions* options = TIFFOpenOptionsAlloc();
    if (options == nullptr)
        return nullptr;
    TIFFOpenOptionsSetErrorHandlerExtR(options, complain, &stream);
    TIFFOpenOptionsSetWarningHandlerExtR(options, ignore, &stream);
    TIFF* tiff = TIFFClientOpenExt("", mode, &stream, read_some, write_some, seek, close, size_of,
                                   nullptr, nullptr, options);
    TIFFOpenOptionsFree(options);
    return tiff;
}

class Decoder {
  public:
    explicit Decoder(Job& job) : job_(job) { stream_.in = job.bytes; }
    ~Decoder() {
        if (tiff_ != nullptr)
            TIFFClose(tiff_);
    }

    Status run() {
        tiff_ = open(stream_, "rm");
        if (tiff_ == nullptr ||
            TIFFSetDirectory(tiff_, static_cast<tdir_t>(job_.known.numbers.frame - 1)) == 0)
            return failed();
        TIFFGetField(tiff_, TIFFTAG_IMAGEWIDTH, &width_);
        TIFFGetField(tiff_, TIFFTAG_IMAGELENGTH, &height_);
        TIFFGetFieldDefaulted(tiff_, TIFFTAG_BITSPERSAMPLE, &bits_);
        TIFFGetFieldDefaulted(tiff_, TIFFTAG_SAMPLESPERPIXEL, &samples_);
        TIFFGetField(tiff_, TIFFTAG_PHOTOMETRIC, &model_);
        TIFFGetFieldDefaulted(tiff_, TIFFTAG_PLANARCONFIG, &planes_);
        TIFFGetFieldDefaulted(tiff_, TIFFTAG_SAMPLEFORMAT, &sample_format_);
        if (width_ != job_.known.numbers.width || height_ != job_.known.numbers.height)
            return job_.known.fail(KIRVO_FILES_DAMAGED,
                                   Text::format("its headers contradict each other"));
        if (bits_ > 8)
            job_.known.note(KIRVO_FILES_NOTE_REDUCED,
                            Text::format("%u bits a channel reduced to 8", bits_));
        if (model_ == PHOTOMETRIC_SEPARATED)
            job_.known.note(KIRVO_FILES_NOTE_REDUCED,
                            Text::format("CMYK became RGB without a profile"));
        const bool one = samples_ == 1 && TIFFIsTiled(tiff_) == 0 && bits_ <= 8 &&
                         (bits_ == 1 || bits_ == 2 || bits_ == 4 || bits_ == 8) &&
                         sample_format_ == SAMPLEFORMAT_UINT;
        if (one && (model_ == PHOTOMETRIC_PALETTE || model_ == PHOTOMETRIC_MINISBLACK ||
                    model_ == PHOTOMETRIC_MINISWHITE))
            return indexed();
        return by_strips();
    }

  private:
    Status indexed() {
        const uint32_t depth = bits_ == 2 ? 4u : bits_;
        Status status = job_.dib.make(width_, height_, depth, 1u << depth);
        if (status != KIRVO_FILES_OK)
            return status;
        set_colours();
        Buffer row, line;
        if (!row.resize(static_cast<uint64_t>(TIFFScanlineSize(tiff_)) + 8) ||
            !line.resize(uint64_t{width_} + 1))
            return KIRVO_FILES_NO_MEMORY;
        const uint32_t per_byte = 8u / bits_, most = (1u << bits_) - 1;
        for (uint32_t y = 0; y < height_; ++y) {
            if (TIFFReadScanline(tiff_, row.data(), y, 0) != 1)
                return broken(y);
            for (uint32_t x = 0; x < width_; ++x)
                line[x] = static_cast<uint8_t>(
                    row[x / per_byte] >> (per_byte - 1 - x % per_byte) * bits_ & most);
            put_indices(job_.dib, y, line.data());
        }
        return KIRVO_FILES_OK;
    }

    void set_colours() {
        const uint32_t count = 1u << bits_;
        uint16_t *red, *green, *blue;
        if (model_ == PHOTOMETRIC_PALETTE) {
            if (TIFFGetField(tiff_, TIFFTAG_COLORMAP, &red, &green, &blue) == 0)
                return;
            uint32_t widest = 0; // old programs wrote 8 bits
            for (uint32_t i = 0; i < count; ++i)
                widest |= static_cast<uint32_t>(red[i] | green[i] | blue[i]);
            const uint32_t scale = widest > 255 ? 257 : 1;
            for (uint32_t i = 0; i < count; ++i)
                job_.dib.set_colour(i, red[i] / scale, green[i] / scale, blue[i] / scale);
            keep_palette(job_, count);
            return;
        }
        for (uint32_t i = 0; i < count; ++i) {
            const uint32_t level = i * 255 / (count - 1);
            const uint32_t shown = model_ == PHOTOMETRIC_MINISWHITE ? 255 - level : level;
            job_.dib.set_colour(i, shown, shown, shown);
        }
    }

    // Everything else as the library's own conversion to 32 bits makes it, strip by strip.
    Status by_strips() {
        TIFFRGBAImage image = {};
        char words[1024] = {};
        if (TIFFRGBAImageOK(tiff_, words) == 0 || TIFFRGBAImageBegin(&image, tiff_, 0, words) == 0)
            return job_.known.fail(
                KIRVO_FILES_UNSUPPORTED,
                Text::format("a TIFF that libtiff does not convert: %.300s", words));
        image.req_orientation = ORIENTATION_TOPLEFT;
        image.orientation = ORIENTATION_TOPLEFT; // turning is done later, by EXIF's number
        const Status status = strips(image);
        TIFFRGBAImageEnd(&image);
        return status;
    }

    Status strips(TIFFRGBAImage& image) {
        const bool alpha = image.alpha != 0, multiplied = image.alpha == EXTRASAMPLE_ASSOCALPHA;
        Raster raster(job_);
        const Status status = raster.make(alpha ? Pixels::rgba : Pixels::rgb, width_, height_);
        if (status != KIRVO_FILES_OK)
            return status;
        uint32_t rows = 0;
        if (TIFFIsTiled(tiff_) != 0)
            TIFFGetField(tiff_, TIFFTAG_TILELENGTH, &rows);
        else
            TIFFGetFieldDefaulted(tiff_, TIFFTAG_ROWSPERSTRIP, &rows);
        rows = rows == 0 || rows > height_ ? height_ : rows;
        Buffer pixels, line;
        if (!pixels.resize(uint64_t{4} * width_ * rows) || !line.resize(uint64_t{4} * width_))
            return KIRVO_FILES_NO_MEMORY;
        auto* words = reinterpret_cast<uint32_t*>(pixels.data());
        for (uint32_t y = 0; y < height_; y += rows) {
            const uint32_t count = rows < height_ - y ? rows : height_ - y;
            image.row_offset = static_cast<int>(y);
            stream_.words[0] = 0;
            if (TIFFRGBAImageGet(&image, words, width_, count) == 0 || stream_.words[0] != 0)
                return finish(raster, broken(y));
            for (uint32_t i = 0; i < count; ++i) {
                take_row(words + size_t{width_} * i, alpha, multiplied, line.data());
                raster.put(y + i, line.data());
            }
        }
        return finish(raster, KIRVO_FILES_OK);
    }

    static Status finish(Raster& raster, Status status) {
        raster.finish();
        return status;
    }

    // The library multiplies alpha into colours that were not, as far as 8 bits can take it back.
    void take_row(const uint32_t* in, bool alpha, bool, uint8_t* out) const {
        for (uint32_t x = 0; x < width_; ++x) {
            const uint32_t pixel = in[x], opacity = TIFFGetA(pixel);
            for (const uint32_t value : {TIFFGetR(pixel), TIFFGetG(pixel), TIFFGetB(pixel)}) {
                const uint32_t plain =
                    !alpha || opacity == 0 ? value : (value * 255 + opacity / 2) / opacity;
                *out++ = static_cast<uint8_t>(plain < 255 ? plain : 255);
            }
            if (alpha)
                *out++ = static_cast<uint8_t>(opacity);
        }
    }

    Status failed() {
        return stream_.past_end ? job_.ends_early_in_headers()
                                : job_.known.fail(KIRVO_FILES_DAMAGED,
                                                  Text::format("damaged: %s", stream_.words));
    }

    Status broken(uint32_t row) {
        return stream_.past_end
                   ? job_.ends_early(row)
                   : job_.damaged(Text::format("damaged at row %u: %s", row, stream_.words), row);
    }

    Job& job_;
    Stream stream_;
    TIFF* tiff_ = nullptr;
    uint32_t width_ = 0, height_ = 0;
    uint16_t bits_ = 1, samples_ = 1, model_ = 0, planes_ = 1, sample_format_ = 1;
};

Status write_rows(Saving& saving, TIFF* tiff, const Stream& stream) {
    const View& view = saving.view;
    Buffer line;
    if (!line.resize(uint64_t{4} * view.width()))
        return KIRVO_FILES_NO_MEMORY;
    for (uint32_t y = 0; y < view.height(); ++y) {
        if (view.bits() <= 8)
            std::memcpy(line.data(), view.row(y), (size_t{view.width()} * view.bits() + 7) / 8);
        else if (saving.alpha())
            view.rgba_row(y, line.data());
        else
            view.rgb_row(y, line.data());
        if (TIFFWriteScanline(tiff, line.data(), y, 0) != 1)
            return stream.no_memory ? KIRVO_FILES_NO_MEMORY
                                    : saving.known.fail(KIRVO_FILES_CANNOT_WRITE,
                                                        Text::format("%s", stream.words));
    }
    return TIFFFlush(tiff) == 1 ? KIRVO_FILES_OK : KIRVO_FILES_NO_MEMORY;
}

void set_palette(const View& view, TIFF* tiff) {
    uint16_t red[256], green[256], blue[256];
    for (uint32_t i = 0; i < 1u << view.bits(); ++i) {
        const RGBQUAD& colour = view.colour(i);
        red[i] = static_cast<uint16_t>(colour.rgbRed * 257);
        green[i] = static_cast<uint16_t>(colour.rgbGreen * 257);
        blue[i] = static_cast<uint16_t>(colour.rgbBlue * 257);
    }
    TIFFSetField(tiff, TIFFTAG_COLORMAP, red, green, blue);
}

void set_fields(const Saving& saving, TIFF* tiff) {
    static const uint16_t compressions[] = {COMPRESSION_LZW, COMPRESSION_NONE, COMPRESSION_LZW,
                                            COMPRESSION_ADOBE_DEFLATE, COMPRESSION_PACKBITS};
    const View& view = saving.view;
    const bool indexed = view.bits() <= 8, grey = view.is_grey_ramp();
    const uint16_t compression = compressions[saving.options.compression];
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, view.width());
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, view.height());
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, static_cast<int>(indexed ? view.bits() : 8));
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, indexed ? 1 : saving.alpha() ? 4 : 3);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC,
                 grey      ? PHOTOMETRIC_MINISBLACK
                 : indexed ? PHOTOMETRIC_PALETTE
                           : PHOTOMETRIC_RGB);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, compression);
    if (!indexed && (compression == COMPRESSION_LZW || compression == COMPRESSION_ADOBE_DEFLATE))
        TIFFSetField(tiff, TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL);
    if (saving.alpha()) {
        const uint16_t kind = EXTRASAMPLE_UNASSALPHA;
        TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &kind);
    }
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, TIFFDefaultStripSize(tiff, 0));
    if (indexed && !grey)
        set_palette(view, tiff);
    if (saving.options.dpi_across > 0) {
        TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
        TIFFSetField(tiff, TIFFTAG_XRESOLUTION, saving.options.dpi_across);
        TIFFSetField(tiff, TIFFTAG_YRESOLUTION, saving.options.dpi_down);
    }
    if (saving.source == nullptr || saving.options.has(KIRVO_FILES_STRIP))
        return;
    const Known& source = *saving.source;
    if (!source.icc.empty())
        TIFFSetField(tiff, TIFFTAG_ICCPROFILE, static_cast<uint32_t>(source.icc.size()),
                     source.icc.data());
    if (!source.xmp.empty())
        TIFFSetField(tiff, TIFFTAG_XMLPACKET, static_cast<uint32_t>(source.xmp.size()),
                     source.xmp.data());
}

} // namespace

Status tiff_decode(Job& job) {
    return Decoder(job).run();
}

Status tiff_encode(Saving& saving) {
    saving.out.clear();
    Stream stream;
    stream.out = &saving.out;
    TIFF* tiff = open(stream, "wlm");
    if (tiff == nullptr)
        return KIRVO_FILES_NO_MEMORY;
    set_fields(saving, tiff);
    const Status status = write_rows(saving, tiff, stream);
    TIFFClose(tiff);
    return status == KIRVO_FILES_OK && stream.no_memory ? KIRVO_FILES_NO_MEMORY : status;
}

const char* tiff_name() {
    static char name[40];
    if (name[0] == 0)
        std::sscanf(TIFFGetVersion(), "LIBTIFF, Version %20s", name + 8);
    if (name[0] == 0)
        std::memcpy(name, "libtiff ", 8);
    return name;
}

} // namespace kirvo_files
