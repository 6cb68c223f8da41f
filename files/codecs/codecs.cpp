#include "codecs/codecs.hpp"

namespace kirvo_files {

Status decode(int32_t format, Job& job, const JpegHeaders*) {
    switch (format) {
#ifdef KIRVO_FILES_JPEG_TURBO
    case KIRVO_FILES_JPEG:
        return jpeg_turbo_decode(job);
#endif
#ifdef KIRVO_FILES_SPNG
    case KIRVO_FILES_PNG:
        return png_decode(job);
#endif
#ifdef KIRVO_FILES_LIBTIFF
    case KIRVO_FILES_TIFF:
        return tiff_decode(job);
#endif
#ifdef KIRVO_FILES_LIBWEBP
    case KIRVO_FILES_WEBP:
        return webp_decode(job);
#endif
#ifdef KIRVO_FILES_GIFLIB
    case KIRVO_FILES_GIF:
        return gif_decode(job);
#endif
    default:
        return KIRVO_FILES_NO_CODEC;
    }
}

const char* decoder_name(int32_t format) {
    switch (format) {
#ifdef KIRVO_FILES_JPEG_TURBO
    case KIRVO_FILES_JPEG:
        return jpeg_turbo_name();
#endif
#ifdef KIRVO_FILES_SPNG
    case KIRVO_FILES_PNG:
        return png_name();
#endif
#ifdef KIRVO_FILES_LIBTIFF
    case KIRVO_FILES_TIFF:
        return tiff_name();
#endif
#ifdef KIRVO_FILES_LIBWEBP
    case KIRVO_FILES_WEBP:
        return webp_name();
#endif
#ifdef KIRVO_FILES_GIFLIB
    case KIRVO_FILES_GIF:
        return gif_name();
#endif
    default:
        return nullptr;
    }
}

const char* encoder_name(int32_t format) {
    return format == KIRVO_FILES_GIF ? nullptr : decoder_name(format);
}

Status encode(int32_t format, Saving& saving, uint32_t quality) {
    switch (format) {
#ifdef KIRVO_FILES_SPNG
    case KIRVO_FILES_PNG:
        return png_encode(saving);
#endif
#ifdef KIRVO_FILES_LIBTIFF
    case KIRVO_FILES_TIFF:
        return tiff_encode(saving);
#endif
#ifdef KIRVO_FILES_LIBWEBP
    case KIRVO_FILES_WEBP:
        return webp_encode(saving, quality);
#endif
    default:
        (void)quality;
        return KIRVO_FILES_NO_CODEC;
    }
}

Status encode_jpeg(Saving& saving, const JpegPlan& plan, uint32_t) {
#ifdef KIRVO_FILES_JPEG_TURBO
    return jpeg_turbo_encode(saving, plan);
#else
    (void)saving;
    (void)plan;
    return KIRVO_FILES_NO_CODEC;
#endif
}

#ifndef KIRVO_FILES_JPEG_TURBO
Status turn_jpeg(Bytes, const JpegHeaders&, uint32_t, bool, Buffer&, Known&) {
    return KIRVO_FILES_NO_CODEC;
}
#endif

} // namespace kirvo_files
