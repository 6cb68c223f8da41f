// WebP by libwebp.
#include "codecs/codecs.hpp"

#include <cstdio>

#include <webp/decode.h>
#include <webp/encode.h>

namespace kirvo_files {
namespace {

// The first frame of an animation as a file of its own; the file itself when it is none. With its
// place on the canvas.
struct Frame {
    Buffer file;
    Bytes bytes;
    uint32_t x = 0, y = 0;
};

bool first_frame(Bytes bytes, Frame& frame) {
    frame.bytes = bytes;
    for (uint64_t at = 12; bytes.has(at, 8);) {
        const uint64_t length = bytes.le32(at + 4);
        if (bytes.begins("ANMF", at)) {
            const Bytes body = bytes.part(at + 8, length);
            frame.x = (body.le32(0) & 0xFFFFFF) * 2;
            frame.y = (body.le32(3) & 0xFFFFFF) * 2;
            const Bytes data = body.part(16);
            uint8_t extended[18] = {'V', 'P', '8', 'X', 10, 0, 0, 0, 0x10};
            std::memcpy(extended + 12, body.data() + 6, body.size() >= 12 ? 6 : 0);
            const bool alpha = data.begins("ALPH");
            if (!frame.file.append("RIFF", 4) ||
                !frame.file.append_le32(
                    static_cast<uint32_t>(data.size() + 4 + (alpha ? 18 : 0))) ||
                !frame.file.append("WEBP", 4) ||
                (alpha && !frame.file.append(extended, sizeof extended)) ||
                !frame.file.append(data))
                return false;
            frame.bytes = frame.file.bytes();
            return true;
        }
        at += 8 + length + length % 2;
    }
    return true;
}

class Decoder {
  public:
    explicit Decoder(Job& job) : job_(job) { WebPInitDecoderConfig(&config_); }
    ~Decoder() {
        WebPIDelete(decoder_);
        WebPFreeDecBuffer(&config_.output);
    }

    Status run() {
        Frame frame;
        if (!first_frame(job_.bytes, frame))
            return KIRVO_FILES_NO_MEMORY;
        const VP8StatusCode read =
            WebPGetFeatures(frame.bytes.data(), frame.bytes.size(), &config_.input);
        if (read == VP8_STATUS_NOT_ENOUGH_DATA)
            return job_.ends_early_in_headers();
        if (read != VP8_STATUS_OK)
            return job_.known.fail(KIRVO_FILES_DAMAGED, Text::format("a bad header"));
        config_.output.colorspace = MODE_RGBA;
        decoder_ = WebPIDecode(nullptr, 0, &config_);
        if (decoder_ == nullptr)
            return KIRVO_FILES_NO_MEMORY;
        const VP8StatusCode result = WebPIAppend(decoder_, frame.bytes.data(), frame.bytes.size());
        if (result == VP8_STATUS_OUT_OF_MEMORY)
            return KIRVO_FILES_NO_MEMORY;
        return take(frame, result);
    }

  private:
    Status take(const Frame& frame, VP8StatusCode result) {
        int last = 0, width = 0, height = 0, stride = 0;
        const uint8_t* pixels = WebPIDecGetRGB(decoder_, &last, &width, &height, &stride);
        const uint32_t canvas_width = job_.known.numbers.width;
        const uint32_t canvas_height = job_.known.numbers.height;
        const bool whole = frame.x == 0 && frame.y == 0 &&
                           static_cast<uint32_t>(config_.input.width) == canvas_width &&
                           static_cast<uint32_t>(config_.input.height) == canvas_height;
        const bool alpha = config_.input.has_alpha != 0 || !whole;
        Raster raster(job_);
        Status status =
            raster.make(alpha ? Pixels::rgba : Pixels::rgb, canvas_width, canvas_height);
        Buffer line;
        if (status != KIRVO_FILES_OK || !line.resize(uint64_t{4} * canvas_width))
            return KIRVO_FILES_NO_MEMORY;
        const auto rows = static_cast<uint32_t>(pixels != nullptr ? last : 0);
        for (uint32_t y = 0; y < canvas_height; ++y) {
            std::memset(line.data(), 0, line.size());
            const bool inside = y >= frame.y && y - frame.y < rows;
            if (inside)
                copy(pixels + static_cast<size_t>(stride) * (y - frame.y), frame.x,
                     static_cast<uint32_t>(width), canvas_width, alpha, line.data());
            if (inside || !whole)
                raster.put(y, line.data());
        }
        raster.finish();
        if (result == VP8_STATUS_SUSPENDED)
            return job_.ends_early(rows);
        if (result != VP8_STATUS_OK)
            return job_.damaged(Text::format("damaged: whole to row %u of %u", rows, canvas_height),
                                rows);
        return KIRVO_FILES_OK;
    }

    static void copy(const uint8_t* in, uint32_t left, uint32_t width, uint32_t room, bool alpha,
                     uint8_t* out) {
        const uint32_t step = alpha ? 4 : 3;
        for (uint32_t x = 0; x < width && left + x < room; ++x)
            std::memcpy(out + size_t{step} * (left + x), in + 4 * size_t{x}, step);
    }

    Job& job_;
    WebPDecoderConfig config_;
    WebPIDecoder* decoder_ = nullptr;
};

int write(const uint8_t* bytes, size_t count, const WebPPicture* picture) {
    return static_cast<Buffer*>(picture->custom_ptr)->append(bytes, count) ? 1 : 0;
}

} // namespace

Status webp_decode(Job& job) { return Decoder(job).run(); }

Status webp_encode(Saving& saving, uint32_t quality) {
    const View& view = saving.view;
    if (view.width() > WEBP_MAX_DIMENSION || view.height() > WEBP_MAX_DIMENSION)
        return saving.known.fail(
            KIRVO_FILES_TOO_LARGE,
            Text::format("WebP has %d pixels across and down at most", WEBP_MAX_DIMENSION));
    WebPConfig config;
    WebPPicture picture;
    Buffer pixels;
    const uint32_t step = saving.alpha() ? 4 : 3;
    if (WebPConfigInit(&config) == 0 || WebPPictureInit(&picture) == 0 ||
        !pixels.resize(uint64_t{step} * view.width() * view.height()))
        return KIRVO_FILES_NO_MEMORY;
    config.quality = static_cast<float>(quality);
    if (saving.options.has(KIRVO_FILES_WEBP_LOSSLESS)) {
        WebPConfigLosslessPreset(&config, 6);
        config.exact = 1; // colours under alpha too
    }
    picture.use_argb = config.lossless;
    picture.width = static_cast<int>(view.width());
    picture.height = static_cast<int>(view.height());
    for (uint32_t y = 0; y < view.height(); ++y) {
        uint8_t* row = &pixels[size_t{step} * view.width() * y];
        step == 4 ? view.rgba_row(y, row) : view.rgb_row(y, row);
    }
    const int stride = static_cast<int>(step * view.width());
    saving.out.clear();
    picture.writer = write;
    picture.custom_ptr = &saving.out;
    const bool done = (step == 4 ? WebPPictureImportRGBA(&picture, pixels.data(), stride)
                                 : WebPPictureImportRGB(&picture, pixels.data(), stride)) != 0 &&
                      WebPEncode(&config, &picture) != 0;
    WebPPictureFree(&picture);
    return done ? KIRVO_FILES_OK : KIRVO_FILES_NO_MEMORY;
}

const char* webp_name() {
    static char name[40];
    static const int version = WebPGetDecoderVersion();
    static const int length = std::snprintf(name, sizeof name, "libwebp %d.%d.%d", version >> 16,
                                            version >> 8 & 255, version & 255);
    return length > 0 ? name : "libwebp";
}

} // namespace kirvo_files
