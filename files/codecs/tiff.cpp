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

Stream& of(thandle_t handle) { return *static_cast<Stream*>(handle); }

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

int close(thandle_t) { return 0; }

toff_t size_of(thandle_t handle) { return of(handle).size(); }

int complain(TIFF*, void* handle, const char*, const char* form, va_list list) {
    Stream& stream = *static_cast<Stream*>(handle);
    if (stream.words[0] == 0)
        std::vsnprintf(stream.words, sizeof stream.words, form, list);
    return 1;
}

int ignore(TIFF*, void*, const char*, const char*, va_list) { return 1; }

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
        if (model_ == PHOTOMETRIC_CIELAB || model_ == PHOTOMETRIC_ICCLAB ||
            model_ == PHOTOMETRIC_ITULAB)
            job_.known.note(KIRVO_FILES_NOTE_REDUCED,
                            Text::format("L*a*b* became RGB as libtiff does it"));
        const bool one = samples_ == 1 && TIFFIsTiled(tiff_) == 0 && bits_ <= 8 &&
                         (bits_ == 1 || bits_ == 2 || bits_ == 4 || bits_ == 8) &&
                         sample_format_ == SAMPLEFORMAT_UINT;
        if (one && (model_ == PHOTOMETRIC_PALETTE || model_ == PHOTOMETRIC_MINISBLACK ||
                    model_ == PHOTOMETRIC_MINISWHITE))
            return indexed();
        if (is_fax() && samples_ > 1)
            return job_.unsupported("a fax of several samples a pixel");
        if (sample_format_ <= SAMPLEFORMAT_INT && plain_samples())
            return by_samples();
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

    bool is_fax() const {
        uint16_t compression = 0;
        TIFFGetField(tiff_, TIFFTAG_COMPRESSION, &compression);
        return compression >= COMPRESSION_CCITTRLE && compression <= COMPRESSION_CCITTFAX4;
    }

    // Grey, RGB, palettes and CMYK of whole numbers, with or without alpha.
    bool plain_samples() const {
        const uint16_t colours = colour_samples();
        return colours != 0 && samples_ >= colours && samples_ <= 8 &&
               (bits_ == 1 || bits_ == 2 || bits_ == 4 || bits_ == 8 || bits_ == 16);
    }
    uint16_t colour_samples() const {
        switch (model_) {
        case PHOTOMETRIC_MINISBLACK:
        case PHOTOMETRIC_MINISWHITE:
        case PHOTOMETRIC_PALETTE:
            return 1;
        case PHOTOMETRIC_RGB:
            return 3;
        case PHOTOMETRIC_SEPARATED:
            return 4;
        default:
            return 0;
        }
    }

    Status by_samples() {
        uint16_t extras = 0, *kinds = nullptr;
        TIFFGetFieldDefaulted(tiff_, TIFFTAG_EXTRASAMPLES, &extras, &kinds);
        const bool alpha =
            extras > 0 && kinds[0] != EXTRASAMPLE_UNSPECIFIED && samples_ > colour_samples();
        multiplied_ = alpha && kinds[0] == EXTRASAMPLE_ASSOCALPHA;
        Raster raster(job_);
        const bool grey = colour_samples() == 1 && model_ != PHOTOMETRIC_PALETTE;
        const Status status = raster.make(alpha  ? Pixels::rgba
                                          : grey ? Pixels::grey
                                                 : Pixels::rgb,
                                          width_, height_);
        if (status != KIRVO_FILES_OK)
            return status;
        const bool tiled = TIFFIsTiled(tiff_) != 0;
        if (tiled) {
            TIFFGetField(tiff_, TIFFTAG_TILEWIDTH, &tile_width_);
            TIFFGetField(tiff_, TIFFTAG_TILELENGTH, &tile_height_);
        } else { // rows one by one, but planes a strip at a time: they lie behind each other
            tile_width_ = width_;
            tile_height_ = 1;
            if (planes_ == PLANARCONFIG_SEPARATE)
                TIFFGetFieldDefaulted(tiff_, TIFFTAG_ROWSPERSTRIP, &tile_height_);
            tile_height_ = tile_height_ < height_ ? tile_height_ : height_;
        }
        const auto size = static_cast<uint64_t>(tiled ? TIFFTileSize(tiff_)
                                                      : TIFFVStripSize(tiff_, tile_height_));
        // A band of rows, every sample of 8 bits.
        if (tile_width_ == 0 || tile_height_ == 0 || size == 0 || !piece_.resize(size + 8) ||
            !band_.resize(uint64_t{tile_height_} * width_ * samples_) ||
            !line_.resize(uint64_t{4} * width_))
            return KIRVO_FILES_NO_MEMORY;
        for (uint32_t y = 0; y < height_; y += tile_height_) {
            if (!read_band(y, tiled))
                return finish(raster, broken(y));
            for (uint32_t i = 0; i < tile_height_ && y + i < height_; ++i) {
                convert_row(&band_[size_t{i} * width_ * samples_], alpha, grey);
                raster.put(y + i, line_.data());
            }
        }
        return finish(raster, KIRVO_FILES_OK);
    }

    bool read_band(uint32_t y, bool tiled) {
        const uint16_t planes = planes_ == PLANARCONFIG_SEPARATE ? samples_ : uint16_t{1};
        for (uint16_t plane = 0; plane < planes; ++plane)
            for (uint32_t x = 0; x < width_; x += tile_width_) {
                const bool good = read_piece(x, y, plane, tiled);
                if (!good)
                    return false;
                unpack(x, planes == 1 ? samples_ : 1u, plane);
            }
        return true;
    }

    bool read_piece(uint32_t x, uint32_t y, uint16_t plane, bool tiled) {
        if (tiled)
            return TIFFReadTile(tiff_, piece_.data(), x, y, 0, plane) >= 0;
        if (planes_ != PLANARCONFIG_SEPARATE)
            return TIFFReadScanline(tiff_, piece_.data(), y, 0) == 1;
        const uint32_t rows = height_ - y < tile_height_ ? height_ - y : tile_height_;
        return TIFFReadEncodedStrip(tiff_, TIFFComputeStrip(tiff_, y, plane), piece_.data(),
                                    TIFFVStripSize(tiff_, rows)) >= 0;
    }

    // The samples of a piece into the band.
    void unpack(uint32_t left, uint32_t count, uint32_t first) {
        const uint64_t stride = (uint64_t{tile_width_} * count * bits_ + 7) / 8;
        const uint32_t most = bits_ <= 8 ? (1u << bits_) - 1 : 65535;
        const bool palette = model_ == PHOTOMETRIC_PALETTE;
        const Bytes piece = piece_.bytes();
        for (uint32_t y = 0; y < tile_height_; ++y)
            for (uint32_t x = 0; x < tile_width_ && left + x < width_; ++x)
                for (uint32_t i = 0; i < count; ++i) {
                    const uint64_t bit = (uint64_t{x} * count + i) * bits_;
                    const uint64_t at = y * stride + bit / 8;
                    uint32_t value;
                    if (bits_ == 16) {
                        uint16_t wide = 0;
                        if (piece.has(at, 2))
                            std::memcpy(&wide, piece.data() + at, 2);
                        value = wide;
                    } else {
                        value = piece[at] >> (8 - bits_ - bit % 8) & most;
                    }
                    const bool index = palette && first + i == 0;
                    if (!index)
                        value = (value * 255 + most / 2) / most;
                    band_[(size_t{y} * width_ + left + x) * samples_ + first + i] =
                        static_cast<uint8_t>(value);
                }
    }

    void convert_row(const uint8_t* in, bool alpha, bool grey) {
        uint16_t* map[3] = {};
        const bool palette = model_ == PHOTOMETRIC_PALETTE &&
                             TIFFGetField(tiff_, TIFFTAG_COLORMAP, &map[0], &map[1], &map[2]) != 0;
        uint8_t* out = line_.data();
        for (uint32_t x = 0; x < width_; ++x, in += samples_) {
            const uint32_t opacity = alpha ? in[colour_samples()] : 255;
            for (uint32_t i = 0; i < (grey && !alpha ? 1u : 3u); ++i) {
                uint32_t value = in[colour_samples() == 1 ? 0 : i];
                if (palette)
                    value = map[i][value & ((1u << (bits_ & 15)) - 1)] >> 8;
                else if (model_ == PHOTOMETRIC_MINISWHITE)
                    value = 255 - value;
                else if (model_ == PHOTOMETRIC_SEPARATED)
                    value = ((255 - value) * (255u - in[3]) + 127) / 255;
                if (multiplied_ && opacity != 0)
                    value = (value * 255 + opacity / 2) / opacity;
                *out++ = static_cast<uint8_t>(value < 255 ? value : 255);
            }
            if (alpha)
                *out++ = static_cast<uint8_t>(opacity);
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
        const bool alpha = image.alpha != 0;
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
                take_row(words + size_t{width_} * i, alpha, line.data());
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
    void take_row(const uint32_t* in, bool alpha, uint8_t* out) const {
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
    Buffer piece_, band_, line_;
    bool multiplied_ = false;
    uint32_t tile_width_ = 0, tile_height_ = 0;
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
}

} // namespace

Status tiff_decode(Job& job) { return Decoder(job).run(); }

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
    static char name[40] = "libtiff ";
    static const int read = std::sscanf(TIFFGetVersion(), "LIBTIFF, Version %20s", name + 8);
    return read == 1 ? name : "libtiff";
}

} // namespace kirvo_files
