// Everything that the system decodes.
#include "windows/component.hpp"

namespace kirvo_files {
namespace {

class Decoder {
  public:
    Decoder(int32_t format, Job& job) : format_(format), job_(job) {}

    Status run() {
        if (!imaging_)
            return KIRVO_FILES_NO_CODEC;
        HRESULT result = imaging_->CreateStream(stream_.receive());
        if (SUCCEEDED(result))
            result = stream_->InitializeFromMemory(const_cast<BYTE*>(job_.bytes.data()),
                                                   static_cast<DWORD>(job_.bytes.size()));
        if (SUCCEEDED(result))
            result = imaging_->CreateDecoderFromStream(
                stream_.get(), nullptr, WICDecodeMetadataCacheOnDemand, decoder_.receive());
        if (result == WINCODEC_ERR_COMPONENTNOTFOUND)
            return KIRVO_FILES_NO_CODEC;
        const bool frames = format_ == KIRVO_FILES_TIFF;
        if (SUCCEEDED(result))
            result =
                decoder_->GetFrame(frames ? job_.known.numbers.frame - 1 : 0, frame_.receive());
        UINT width = 0, height = 0;
        if (SUCCEEDED(result))
            result = frame_->GetSize(&width, &height);
        WICPixelFormatGUID pixels = {};
        if (SUCCEEDED(result))
            result = frame_->GetPixelFormat(&pixels);
        if (FAILED(result))
            return failed(result, 0);
        if (!size_fits(width, height))
            return status_;
        take_profile();
        return decode(pixels, width, height);
    }

  private:
    // Where the room does not read the headers, the system tells the size. A GIF's first frame may
    // be smaller than its canvas.
    bool size_fits(uint32_t width, uint32_t height) {
        if (format_ == KIRVO_FILES_HEIF || format_ == KIRVO_FILES_CAMERA) {
            job_.known.numbers.channels = 3;
            return job_.claim(width, height, 24, status_);
        }
        const bool same = width == job_.known.numbers.width && height == job_.known.numbers.height;
        if (!same && format_ != KIRVO_FILES_GIF)
            status_ = job_.known.fail(KIRVO_FILES_DAMAGED,
                                      Text::format("its headers contradict each other"));
        return same || (format_ == KIRVO_FILES_GIF && width <= 65535 && height <= 65535);
    }

    Status decode(const WICPixelFormatGUID& pixels, uint32_t width, uint32_t height) {
        const bool whole = width == job_.known.numbers.width && height == job_.known.numbers.height;
        if (whole && is_indexed(pixels))
            return indexed(pixels, width, height);
        if (IsEqualGUID(pixels, GUID_WICPixelFormat32bppCMYK)) {
            job_.known.note(KIRVO_FILES_NOTE_REDUCED,
                            Text::format("CMYK became RGB without a profile"));
            cmyk_ = true;
            return rows(frame_.get(), width, height);
        }
        Com<IWICFormatConverter> converter;
        HRESULT result = imaging_->CreateFormatConverter(converter.receive());
        if (SUCCEEDED(result))
            result = converter->Initialize(frame_.get(), GUID_WICPixelFormat32bppBGRA,
                                           WICBitmapDitherTypeNone, nullptr, 0,
                                           WICBitmapPaletteTypeCustom);
        if (FAILED(result))
            return is_memory(result)
                       ? KIRVO_FILES_NO_MEMORY
                       : job_.unsupported("this kind of pixel (by the system's decoder)");
        if (job_.known.numbers.fileBits > 8 * job_.known.numbers.channels)
            job_.known.note(KIRVO_FILES_NOTE_REDUCED,
                            Text::format("more than 8 bits a channel reduced to 8"));
        return rows(converter.get(), width, height);
    }

    static bool is_indexed(const WICPixelFormatGUID& pixels) { return bits_of(pixels) != 0; }

    static uint32_t bits_of(const WICPixelFormatGUID& pixels) {
        const struct {
            const GUID& format;
            uint32_t bits;
        } known[] = {{GUID_WICPixelFormat1bppIndexed, 1}, {GUID_WICPixelFormat2bppIndexed, 2},
                     {GUID_WICPixelFormat4bppIndexed, 4}, {GUID_WICPixelFormat8bppIndexed, 8},
                     {GUID_WICPixelFormatBlackWhite, 1},  {GUID_WICPixelFormat2bppGray, 2},
                     {GUID_WICPixelFormat4bppGray, 4},    {GUID_WICPixelFormat8bppGray, 8}};
        for (const auto& each : known)
            if (IsEqualGUID(pixels, each.format))
                return each.bits;
        return 0;
    }

    static bool is_grey(const WICPixelFormatGUID& pixels) {
        return IsEqualGUID(pixels, GUID_WICPixelFormatBlackWhite) ||
               IsEqualGUID(pixels, GUID_WICPixelFormat2bppGray) ||
               IsEqualGUID(pixels, GUID_WICPixelFormat4bppGray) ||
               IsEqualGUID(pixels, GUID_WICPixelFormat8bppGray);
    }

    Status indexed(const WICPixelFormatGUID& pixels, uint32_t width, uint32_t height) {
        const uint32_t bits = bits_of(pixels), depth = bits == 2 ? 4 : bits;
        const Status made = job_.dib.make(width, height, depth, 1u << depth);
        if (made != KIRVO_FILES_OK)
            return made;
        uint8_t alpha[256];
        std::memset(alpha, 255, sizeof alpha);
        if (is_grey(pixels)) {
            const uint32_t most = (1u << bits) - 1;
            for (uint32_t i = 0; i <= most; ++i)
                job_.dib.set_colour(i, i * 255 / most, i * 255 / most, i * 255 / most);
        } else if (!take_palette(alpha)) {
            return failed(E_FAIL, 0);
        }
        const auto stride = static_cast<UINT>((uint64_t{width} * bits + 31) / 32 * 4);
        Buffer row, line;
        if (!row.resize(stride) || !line.resize(uint64_t{width} + 8))
            return KIRVO_FILES_NO_MEMORY;
        for (uint32_t y = 0; y < height; ++y) {
            const WICRect area = {0, static_cast<INT>(y), static_cast<INT>(width), 1};
            const HRESULT result = frame_->CopyPixels(&area, stride, stride, row.data());
            if (FAILED(result))
                return failed(result, y);
            const uint32_t per_byte = 8 / bits;
            for (uint32_t x = 0; x < width; ++x)
                line[x] = static_cast<uint8_t>(
                    row[x / per_byte] >> (per_byte - 1 - x % per_byte) * bits & ((1u << bits) - 1));
            put_indices(job_.dib, y, line.data());
        }
        return apply_palette_alpha(job_, alpha, 1u << depth);
    }

    bool take_palette(uint8_t* alpha) {
        Com<IWICPalette> palette;
        WICColor colours[256] = {};
        UINT count = 0;
        if (FAILED(imaging_->CreatePalette(palette.receive())) ||
            FAILED(frame_->CopyPalette(palette.get())) ||
            FAILED(palette->GetColors(256, colours, &count)))
            return false;
        for (uint32_t i = 0; i < count && i < job_.dib.colours(); ++i) {
            job_.dib.set_colour(i, colours[i] >> 16 & 255, colours[i] >> 8 & 255, colours[i] & 255);
            alpha[i] = static_cast<uint8_t>(colours[i] >> 24);
        }
        return true;
    }

    // Rows of four bytes, on the canvas.
    Status rows(IWICBitmapSource* source, uint32_t width, uint32_t height) {
        const uint32_t across = job_.known.numbers.width, down = job_.known.numbers.height;
        const bool placed = width != across || height != down;
        const bool alpha = job_.known.is(KIRVO_FILES_HAS_ALPHA) || placed;
        Raster raster(job_);
        const Status made = raster.make(alpha ? Pixels::rgba : Pixels::rgb, across, down);
        const auto stride = static_cast<UINT>(4 * width);
        Buffer row, line;
        if (made != KIRVO_FILES_OK || !row.resize(stride) ||
            !line.resize(uint64_t{4} * (across > width ? across : width)))
            return KIRVO_FILES_NO_MEMORY;
        for (uint32_t y = 0; y < down; ++y) {
            const WICRect area = {0, static_cast<INT>(y), static_cast<INT>(width), 1};
            const HRESULT result =
                y < height ? source->CopyPixels(&area, stride, stride, row.data()) : S_OK;
            if (FAILED(result)) {
                raster.finish();
                return failed(result, y);
            }
            std::memset(line.data(), 0, line.size());
            if (y < height)
                convert(row.data(), width < across ? width : across, alpha, line.data());
            raster.put(y, line.data());
        }
        raster.finish();
        return KIRVO_FILES_OK;
    }

    void convert(const uint8_t* in, uint32_t width, bool alpha, uint8_t* out) const {
        for (uint32_t x = 0; x < width; ++x, in += 4) {
            for (uint32_t i = 0; i < 3; ++i)
                *out++ = cmyk_ ? static_cast<uint8_t>(((255u - in[i]) * (255u - in[3]) + 127) / 255)
                               : in[2 - i];
            if (alpha)
                *out++ = in[3];
        }
    }

    void take_profile() {
        if (!job_.known.icc.empty() || format_ != KIRVO_FILES_PNG)
            return;
        Com<IWICColorContext> context;
        UINT count = 0, size = 0;
        IWICColorContext* list = nullptr;
        if (FAILED(imaging_->CreateColorContext(context.receive())))
            return;
        list = context.get();
        WICColorContextType type = WICColorContextUninitialized;
        if (FAILED(frame_->GetColorContexts(1, &list, &count)) || count == 0 ||
            FAILED(context->GetType(&type)) || type != WICColorContextProfile ||
            FAILED(context->GetProfileBytes(0, nullptr, &size)) || !job_.known.icc.resize(size))
            return;
        if (FAILED(context->GetProfileBytes(size, job_.known.icc.data(), &size)))
            job_.known.icc.clear();
    }

    Status failed(HRESULT result, uint32_t row) {
        if (is_memory(result))
            return KIRVO_FILES_NO_MEMORY;
        const Text words = Text::format("damaged: the system's decoder answers %08lx",
                                        static_cast<unsigned long>(result));
        if (job_.dib)
            return job_.cut_off ? job_.ends_early(row)
                                : job_.damaged(Text::format("%s", words.c_str()), row);
        if (job_.cut_off)
            return job_.ends_early_in_headers();
        return job_.known.fail(KIRVO_FILES_DAMAGED, Text::format("%s", words.c_str()));
    }

    int32_t format_;
    Job& job_;
    const Imaging imaging_;
    Com<IWICStream> stream_;
    Com<IWICBitmapDecoder> decoder_;
    Com<IWICBitmapFrameDecode> frame_;
    Status status_ = KIRVO_FILES_OK;
    bool cmyk_ = false;
};

} // namespace

Status decode(int32_t format, Job& job, const JpegHeaders*) {
    return has_decoder(format) || format == KIRVO_FILES_CAMERA ? Decoder(format, job).run()
                                                               : KIRVO_FILES_NO_CODEC;
}

} // namespace kirvo_files
