// PNG and TIFF by the system, and WebP where somebody has given it an encoder.
#include "windows/component.hpp"

namespace kirvo_files {
namespace {

class Encoder {
  public:
    Encoder(int32_t format, Saving& saving, uint32_t quality)
        : format_(format), saving_(saving), quality_(quality) {}

    Status run() {
        if (!imaging_)
            return KIRVO_FILES_NO_CODEC;
        Com<IPropertyBag2> properties;
        HRESULT result = CreateStreamOnHGlobal(nullptr, TRUE, stream_.receive());
        if (SUCCEEDED(result))
            result = imaging_->CreateEncoder(*container_of(format_), nullptr, encoder_.receive());
        if (SUCCEEDED(result))
            result = encoder_->Initialize(stream_.get(), WICBitmapEncoderNoCache);
        if (SUCCEEDED(result))
            result = encoder_->CreateNewFrame(frame_.receive(), properties.receive());
        if (SUCCEEDED(result) && format_ == KIRVO_FILES_TIFF)
            set_compression(properties.get());
        if (SUCCEEDED(result) && format_ == KIRVO_FILES_WEBP && !set_loss(properties.get()))
            return saving_.known.fail(
                KIRVO_FILES_UNSUPPORTED,
                Text::format("the system's encoder does not write WebP without loss"));
        if (SUCCEEDED(result))
            result = frame_->Initialize(properties.get());
        if (SUCCEEDED(result))
            result = frame_->SetSize(saving_.view.width(), saving_.view.height());
        if (SUCCEEDED(result) && saving_.options.dpi_across > 0)
            frame_->SetResolution(saving_.options.dpi_across, saving_.options.dpi_down);
        if (SUCCEEDED(result))
            result = pixels();
        if (SUCCEEDED(result))
            result = frame_->Commit();
        if (SUCCEEDED(result))
            result = encoder_->Commit();
        if (SUCCEEDED(result))
            return take_stream();
        return is_memory(result)
                   ? KIRVO_FILES_NO_MEMORY
                   : saving_.known.fail(KIRVO_FILES_UNSUPPORTED,
                                        Text::format("the system's encoder answers %08lx",
                                                     static_cast<unsigned long>(result)));
    }

  private:
    void set_compression(IPropertyBag2* properties) const {
        static const uint8_t methods[] = {WICTiffCompressionLZW, WICTiffCompressionNone,
                                          WICTiffCompressionLZW, WICTiffCompressionZIP,
                                          WICTiffCompressionRLE};
        VARIANT value = {};
        value.vt = VT_UI1;
        value.bVal = methods[saving_.options.compression];
        set(properties, L"TiffCompressionMethod", value);
    }

    // False where loss is forbidden and cannot be avoided.
    bool set_loss(IPropertyBag2* properties) const {
        VARIANT value = {};
        if (saving_.options.has(KIRVO_FILES_WEBP_LOSSLESS)) {
            value.vt = VT_BOOL;
            value.boolVal = VARIANT_TRUE;
            return set(properties, L"Lossless", value);
        }
        value.vt = VT_R4;
        value.fltVal = static_cast<float>(quality_) / 100;
        if (!set(properties, L"ImageQuality", value))
            saving_.known.note(KIRVO_FILES_NOTE_ENCODER,
                               Text::format("the system's encoder chooses the quality itself"));
        return true;
    }

    static bool set(IPropertyBag2* properties, const wchar_t* name, VARIANT& value) {
        PROPBAG2 option = {};
        option.pstrName = const_cast<wchar_t*>(name);
        return properties != nullptr && SUCCEEDED(properties->Write(1, &option, &value));
    }

    HRESULT set_palette() const {
        Com<IWICPalette> palette;
        HRESULT result = imaging_->CreatePalette(palette.receive());
        if (FAILED(result))
            return result;
        WICColor colours[256];
        const uint32_t count = 1u << saving_.view.bits();
        for (uint32_t i = 0; i < count; ++i) {
            const RGBQUAD& entry = saving_.view.colour(i);
            colours[i] = 0xFF000000 | static_cast<uint32_t>(entry.rgbRed) << 16 |
                         static_cast<uint32_t>(entry.rgbGreen) << 8 | entry.rgbBlue;
        }
        result = palette->InitializeCustom(colours, count);
        return SUCCEEDED(result) ? frame_->SetPalette(palette.get()) : result;
    }

    HRESULT pixels() {
        const View& view = saving_.view;
        const bool coloured = view.bits() > 8 || format_ == KIRVO_FILES_WEBP;
        const bool indexed = !coloured, grey = indexed && view.is_grey_ramp();
        const GUID wanted = grey                          ? GUID_WICPixelFormat8bppGray
                            : indexed && view.bits() == 1 ? GUID_WICPixelFormat1bppIndexed
                            : indexed && view.bits() == 4 ? GUID_WICPixelFormat4bppIndexed
                            : indexed                     ? GUID_WICPixelFormat8bppIndexed
                            : saving_.alpha()             ? GUID_WICPixelFormat32bppBGRA
                                                          : GUID_WICPixelFormat24bppBGR;
        GUID given = wanted;
        HRESULT result = frame_->SetPixelFormat(&given);
        const bool wide = coloured && IsEqualGUID(given, GUID_WICPixelFormat32bppBGRA);
        if (SUCCEEDED(result) && !wide && !IsEqualGUID(given, wanted))
            result = WINCODEC_ERR_UNSUPPORTEDPIXELFORMAT;
        if (SUCCEEDED(result) && indexed && !grey)
            result = set_palette();
        const uint32_t bits = indexed ? view.bits() : wide ? 32 : 24;
        const auto stride = static_cast<UINT>((uint64_t{view.width()} * bits + 7) / 8);
        Buffer line;
        if (!line.resize(uint64_t{4} * view.width()))
            return E_OUTOFMEMORY;
        for (uint32_t y = 0; y < view.height() && SUCCEEDED(result); ++y) {
            if (indexed) {
                std::memcpy(line.data(), view.row(y), stride);
            } else {
                wide ? view.rgba_row(y, line.data()) : view.rgb_row(y, line.data());
                for (uint32_t x = 0; x < view.width(); ++x)
                    std::swap(line[bits / 8 * x], line[bits / 8 * x + 2]);
                for (uint32_t x = 0; x < view.width() && wide && !saving_.alpha(); ++x)
                    line[4 * x + 3] = 255;
            }
            result = frame_->WritePixels(1, stride, stride, line.data());
        }
        return result;
    }

    Status take_stream() {
        HGLOBAL block = nullptr;
        STATSTG about = {};
        if (FAILED(GetHGlobalFromStream(stream_.get(), &block)) ||
            FAILED(stream_->Stat(&about, STATFLAG_NONAME)) ||
            about.cbSize.QuadPart > GlobalSize(block))
            return KIRVO_FILES_NO_MEMORY;
        const void* data = GlobalLock(block);
        const bool kept =
            data != nullptr && saving_.out.assign({static_cast<const uint8_t*>(data),
                                                   static_cast<size_t>(about.cbSize.QuadPart)});
        if (data != nullptr)
            GlobalUnlock(block);
        return kept ? KIRVO_FILES_OK : KIRVO_FILES_NO_MEMORY;
    }

    int32_t format_;
    Saving& saving_;
    uint32_t quality_;
    const Imaging imaging_;
    Com<IStream> stream_;
    Com<IWICBitmapEncoder> encoder_;
    Com<IWICBitmapFrameEncode> frame_;
};

} // namespace

Status encode(int32_t format, Saving& saving, uint32_t quality) {
    return has_encoder(format) ? Encoder(format, saving, quality).run() : KIRVO_FILES_NO_CODEC;
}

} // namespace kirvo_files
