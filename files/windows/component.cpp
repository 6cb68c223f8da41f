#include "windows/component.hpp"

#include <atomic>

namespace kirvo_files {

Imaging::Imaging() {
    const HRESULT entered = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    entered_ = SUCCEEDED(entered); // a thread of the other kind has entered already
    CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER, IID_IWICImagingFactory,
                     reinterpret_cast<void**>(&factory_));
}

Imaging::~Imaging() {
    if (factory_ != nullptr)
        factory_->Release();
    if (entered_)
        CoUninitialize();
}

const GUID* container_of(int32_t format) {
    static const GUID webp = {
        0xe094b0e2, 0x67f2, 0x45b3, {0xb0, 0xea, 0x11, 0x53, 0x37, 0xca, 0x7c, 0xf3}};
    static const GUID heif = {
        0xe1e62521, 0x6787, 0x405b, {0xa3, 0x39, 0x50, 0x07, 0x15, 0xb5, 0x76, 0x3f}};
    static const GUID camera = {
        0xfe99ce60, 0xf19c, 0x433c, {0xa3, 0xae, 0x00, 0xac, 0xef, 0xa9, 0xca, 0x21}};
    switch (format) {
    case KIRVO_FILES_JPEG:
        return &GUID_ContainerFormatJpeg;
    case KIRVO_FILES_PNG:
        return &GUID_ContainerFormatPng;
    case KIRVO_FILES_TIFF:
        return &GUID_ContainerFormatTiff;
    case KIRVO_FILES_GIF:
        return &GUID_ContainerFormatGif;
    case KIRVO_FILES_WEBP:
        return &webp;
    case KIRVO_FILES_HEIF:
        return &heif;
    case KIRVO_FILES_CAMERA:
        return &camera;
    default:
        return nullptr;
    }
}

// What the system has is asked for once: 1 no, 2 yes.
template<typename Ask>
static bool asked_once(std::atomic<int> (&known)[KIRVO_FILES_FORMATS], int32_t format, Ask ask) {
    const GUID* container = container_of(format);
    if (container == nullptr)
        return false;
    if (known[format] == 0) {
        const Imaging imaging;
        known[format] = imaging && ask(imaging, *container) ? 2 : 1;
    }
    return known[format] == 2;
}

bool has_decoder(int32_t format) {
    static std::atomic<int> known[KIRVO_FILES_FORMATS];
    return asked_once(known, format, [](const Imaging& imaging, const GUID& container) {
        Com<IWICBitmapDecoder> decoder;
        return SUCCEEDED(imaging->CreateDecoder(container, nullptr, decoder.receive()));
    });
}

bool has_encoder(int32_t format) {
    static std::atomic<int> known[KIRVO_FILES_FORMATS];
    if (format != KIRVO_FILES_PNG && format != KIRVO_FILES_TIFF && format != KIRVO_FILES_WEBP)
        return false;
    return asked_once(known, format, [](const Imaging& imaging, const GUID& container) {
        Com<IWICBitmapEncoder> encoder;
        return SUCCEEDED(imaging->CreateEncoder(container, nullptr, encoder.receive()));
    });
}

static const char* const component_name = "Windows Imaging Component";

const char* decoder_name(int32_t format) { return has_decoder(format) ? component_name : nullptr; }

const char* encoder_name(int32_t format) { return has_encoder(format) ? component_name : nullptr; }

// Kirvo's encoder does what it can.
Status encode_jpeg(Saving&, const JpegPlan&, uint32_t) { return KIRVO_FILES_NO_CODEC; }

Status turn_jpeg(Bytes, const JpegHeaders&, uint32_t, bool, Buffer&, Known&) {
    return KIRVO_FILES_NO_CODEC;
}

} // namespace kirvo_files
