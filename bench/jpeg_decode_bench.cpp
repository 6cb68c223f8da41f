// JPEG decoding beside libjpeg-turbo, which decodes the same streams with its accurate transform
// and replicated chroma into memory that it has used before. Ours makes a new image every time.
#include "support/pictures.hpp"
#include "support/row.hpp"

#include <cstring>
#include <turbojpeg.h>

using namespace kirvo_bench;

namespace {

Work ours(Jpeg kind) {
    const std::vector<uint8_t>& jpeg = photo_jpeg(kind);
    HGLOBAL data = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, jpeg.size());
    std::memcpy(GlobalLock(data), jpeg.data(), jpeg.size());
    GlobalUnlock(data);
    return [data, size = static_cast<int32_t>(jpeg.size())] {
        uint32_t width, height;
        int32_t error;
        GlobalFree(JpgDecMainHGLOBAL(data, size, &width, &height, &error));
    };
}

Work turbo(Jpeg kind) {
    const std::vector<uint8_t>& jpeg = photo_jpeg(kind);
    std::vector<uint8_t> pixels(size_t{photo_width} * photo_height * 3);
    return [&jpeg, pixels = std::move(pixels), decoder = tjInitDecompress()]() mutable {
        tjDecompress2(decoder, jpeg.data(), jpeg.size(), pixels.data(), photo_width, 0,
                      photo_height, TJPF_BGR,
                      TJFLAG_ACCURATEDCT | TJFLAG_FASTUPSAMPLE | TJFLAG_BOTTOMUP);
    };
}

const Row ours_420("jpeg/decode 4:2:0/ours", [] { return ours(Jpeg::s420); });
const Row turbo_420("jpeg/decode 4:2:0/libjpeg-turbo", [] { return turbo(Jpeg::s420); });
const Row ours_422("jpeg/decode 4:2:2/ours", [] { return ours(Jpeg::s422); });
const Row turbo_422("jpeg/decode 4:2:2/libjpeg-turbo", [] { return turbo(Jpeg::s422); });
const Row ours_444("jpeg/decode 4:4:4/ours", [] { return ours(Jpeg::s444); });
const Row turbo_444("jpeg/decode 4:4:4/libjpeg-turbo", [] { return turbo(Jpeg::s444); });
const Row ours_grey("jpeg/decode grey/ours", [] { return ours(Jpeg::grey); });
const Row turbo_grey("jpeg/decode grey/libjpeg-turbo", [] { return turbo(Jpeg::grey); });
const Row ours_progressive("jpeg/decode progressive/ours", [] { return ours(Jpeg::progressive); });
const Row turbo_progressive("jpeg/decode progressive/libjpeg-turbo",
                            [] { return turbo(Jpeg::progressive); });

} // namespace
