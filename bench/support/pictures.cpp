#include "support/pictures.hpp"

#include "scene.hpp"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <turbojpeg.h>

namespace kirvo_bench {

namespace {

constexpr size_t bgr_stride = size_t{3} * photo_width; // a multiple of 4: rows have no padding

// Copies rows given from the top into a new packed DIB, bottom row first.
HGLOBAL make_dib(const std::vector<uint8_t>& rows, int bits) {
    HGLOBAL dib = DibMemAllocEx(photo_width, photo_height, static_cast<uint32_t>(bits));
    auto* block = static_cast<uint8_t*>(GlobalLock(dib));
    if (bits == 8)
        for (int i = 0; i < 256; ++i)
            std::memset(block + 40 + 4 * i, i, 3);
    uint8_t* to = block + 40 + PaletteSize(block);
    const size_t stride = rows.size() / photo_height;
    for (size_t y = photo_height; y-- > 0; to += stride)
        std::memcpy(to, rows.data() + y * stride, stride);
    GlobalUnlock(dib);
    return dib;
}

std::vector<uint8_t> encode(Jpeg kind) {
    const int sampling = kind == Jpeg::s422 ? TJSAMP_422
                         : kind == Jpeg::s444 ? TJSAMP_444
                         : kind == Jpeg::grey ? TJSAMP_GRAY
                                              : TJSAMP_420;
    const int flags = kind == Jpeg::progressive ? TJFLAG_PROGRESSIVE : 0;
    unsigned char* bytes = nullptr;
    unsigned long count = 0;
    tjhandle encoder = tjInitCompress();
    if (tjCompress2(encoder, photo_bgr().data(), photo_width, 0, photo_height, TJPF_BGR, &bytes,
                    &count, sampling, 75, flags) != 0) {
        std::fprintf(stderr, "no JPEG stream: %s\n", tjGetErrorStr2(encoder));
        std::exit(1);
    }
    std::vector<uint8_t> stream(bytes, bytes + count);
    tjFree(bytes);
    tjDestroy(encoder);
    return stream;
}

} // namespace

const std::vector<uint8_t>& photo_bgr() {
    static const std::vector<uint8_t> rows = [] {
        const kirvo_sample::Scene scene(photo_width, photo_height, 1);
        std::vector<uint8_t> made(bgr_stride * photo_height);
        for (int y = 0; y < photo_height; ++y)
            scene.render_row(y, made.data() + bgr_stride * static_cast<size_t>(y));
        return made;
    }();
    return rows;
}

const std::vector<uint8_t>& photo_grey() {
    static const std::vector<uint8_t> rows = [] {
        const std::vector<uint8_t>& bgr = photo_bgr();
        std::vector<uint8_t> made(bgr.size() / 3);
        for (size_t i = 0; i < made.size(); ++i)
            made[i] = static_cast<uint8_t>(
                (77 * bgr[3 * i + 2] + 150 * bgr[3 * i + 1] + 29 * bgr[3 * i] + 128) / 256);
        return made;
    }();
    return rows;
}

HGLOBAL photo_dib() {
    static const HGLOBAL dib = make_dib(photo_bgr(), 24);
    return dib;
}

HGLOBAL scratch_dib() {
    static const HGLOBAL dib = make_dib(photo_bgr(), 24);
    return dib;
}

HGLOBAL grey_dib() {
    static const HGLOBAL dib = make_dib(photo_grey(), 8);
    return dib;
}

const std::vector<uint8_t>& photo_jpeg(Jpeg kind) {
    static std::vector<uint8_t> streams[5];
    std::vector<uint8_t>& stream = streams[static_cast<int>(kind)];
    if (stream.empty())
        stream = encode(kind);
    return stream;
}

} // namespace kirvo_bench
