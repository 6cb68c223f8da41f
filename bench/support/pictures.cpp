#include "support/pictures.hpp"

#include "support/library.hpp"

#include "scene.hpp"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <tuple>
#include <turbojpeg.h>

namespace kirvo_bench {

// Rows of a multiple of 4 pixels have no padding.
int photo_width = 4000, photo_height = 3000;

bool set_photo_size(const std::string& megapixels) {
    static const std::map<std::string, std::pair<int, int>> sizes = {
        {"12", {4000, 3000}}, {"1", {1024, 1024}}, {"small", {152, 150}}};
    const auto size = sizes.find(megapixels);
    if (size == sizes.end())
        return false;
    std::tie(photo_width, photo_height) = size->second;
    return true;
}

double photo_megapixels() { return photo_width / 1e6 * photo_height; }

namespace {

size_t bgr_stride() { return size_t{3} * static_cast<size_t>(photo_width); }

// Copies rows given from the top into a new packed DIB, bottom row first.
HGLOBAL make_dib(const std::vector<uint8_t>& rows, int bits) {
    HGLOBAL dib = DibMemAllocEx(photo_width, photo_height, static_cast<uint32_t>(bits));
    auto* block = static_cast<uint8_t*>(GlobalLock(dib));
    if (bits == 8)
        for (int i = 0; i < 256; ++i)
            std::memset(block + 40 + 4 * i, i, 3);
    uint8_t* to = block + 40 + PaletteSize(block);
    const auto height = static_cast<size_t>(photo_height);
    const size_t stride = rows.size() / height;
    for (size_t y = height; y-- > 0; to += stride)
        std::memcpy(to, rows.data() + y * stride, stride);
    GlobalUnlock(dib);
    return dib;
}

// What libjpeg-turbo asks the environment for.
void set_variable(const char* name, bool value) {
#ifdef _WIN32
    _putenv_s(name, value ? "1" : "");
#else
    value ? setenv(name, "1", 1) : unsetenv(name);
#endif
}

std::vector<uint8_t> encode(Jpeg kind, const JpegCoding& coding) {
    static constexpr int samplings[] = {TJSAMP_420, TJSAMP_422,  TJSAMP_444,
                                        TJSAMP_440, TJSAMP_GRAY, TJSAMP_420};
    const int sampling = samplings[static_cast<int>(kind)];
    const int flags = kind == Jpeg::progressive ? TJFLAG_PROGRESSIVE : 0;
    unsigned char* bytes = nullptr;
    unsigned long count = 0;
    set_variable("TJ_OPTIMIZE", coding.optimised);
    set_variable("TJ_RESTART", coding.restarts);
    tjhandle encoder = tjInitCompress();
    if (tjCompress2(encoder, photo_bgr().data(), photo_width, 0, photo_height, TJPF_BGR, &bytes,
                    &count, sampling, coding.quality, flags) != 0) {
        std::fprintf(stderr, "no JPEG stream: %s\n", tjGetErrorStr2(encoder));
        std::exit(1);
    }
    std::vector<uint8_t> stream(bytes, bytes + count);
    tjFree(bytes);
    tjDestroy(encoder);
    set_variable("TJ_OPTIMIZE", false);
    set_variable("TJ_RESTART", false);
    return stream;
}

} // namespace

const std::vector<uint8_t>& photo_bgr() {
    static const std::vector<uint8_t> rows = [] {
        const kirvo_sample::Scene scene(photo_width, photo_height, 1);
        std::vector<uint8_t> made(bgr_stride() * static_cast<size_t>(photo_height));
        for (int y = 0; y < photo_height; ++y)
            scene.render_row(y, made.data() + bgr_stride() * static_cast<size_t>(y));
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
    return kept([] { return make_dib(photo_bgr(), 24); });
}

HGLOBAL scratch_dib() { return scratch_of(24); }

HGLOBAL grey_dib() {
    return kept([] { return make_dib(photo_grey(), 8); });
}

HGLOBAL photo_of(int bits) {
    switch (bits) {
    case 8:
        return grey_dib();
    case 16:
        return kept([] { return DibConvert16bit(photo_dib(), nullptr); });
    case 32:
        return kept([] { return DibConvert32bit(photo_dib(), nullptr); });
    default:
        return photo_dib();
    }
}

template<int bits>
HGLOBAL scratch() {
    return kept(
        [] { return Dib24DupEx(photo_of(bits), 0, 0, photo_width, photo_height, nullptr); });
}

HGLOBAL scratch_of(int bits) {
    return bits == 8    ? scratch<8>()
           : bits == 16 ? scratch<16>()
           : bits == 32 ? scratch<32>()
                        : scratch<24>();
}

const std::vector<uint8_t>& photo_jpeg(Jpeg kind, const JpegCoding& coding) {
    static std::map<std::tuple<Jpeg, int, bool, bool>, std::vector<uint8_t>> streams;
    std::vector<uint8_t>& stream =
        streams[{kind, coding.quality, coding.optimised, coding.restarts}];
    if (stream.empty())
        stream = encode(kind, coding);
    return stream;
}

} // namespace kirvo_bench
