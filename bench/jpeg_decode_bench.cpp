// JPEG decoding beside libjpeg-turbo, which decodes the same streams with its accurate transform
// and replicated chroma into memory that it has used before. Ours makes a new image every time. On
// Windows, where that is always memory that nobody has touched, a peer that does so stands beside.
#include "support/pictures.hpp"
#include "support/row.hpp"

#include <cstring>
#include <string>
#include <turbojpeg.h>

using namespace kirvo_bench;

namespace {

Work ours(Jpeg kind, const JpegCoding& coding = {}) {
    const std::vector<uint8_t>& jpeg = photo_jpeg(kind, coding);
    HGLOBAL data = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, jpeg.size());
    std::memcpy(GlobalLock(data), jpeg.data(), jpeg.size());
    GlobalUnlock(data);
    return [data, size = static_cast<int32_t>(jpeg.size())] {
        uint32_t width, height;
        int32_t error;
        GlobalFree(JpgDecMainHGLOBAL(data, size, &width, &height, &error));
    };
}

size_t picture_bytes() { return photo_bgr().size(); }

void decode_with(tjhandle decoder, const std::vector<uint8_t>& jpeg, uint8_t* pixels) {
    tjDecompress2(decoder, jpeg.data(), static_cast<unsigned long>(jpeg.size()), pixels,
                  photo_width, 0, photo_height, TJPF_BGR,
                  TJFLAG_ACCURATEDCT | TJFLAG_FASTUPSAMPLE | TJFLAG_BOTTOMUP);
}

Work turbo(Jpeg kind, const JpegCoding& coding = {}) {
    std::vector<uint8_t> pixels(picture_bytes());
    return [&jpeg = photo_jpeg(kind, coding), pixels = std::move(pixels),
            decoder = tjInitDecompress()]() mutable { decode_with(decoder, jpeg, pixels.data()); };
}

const Row ours_420("jpeg/decode 4:2:0/ours", [] { return ours(Jpeg::s420); });
const Row turbo_420("jpeg/decode 4:2:0/libjpeg-turbo", [] { return turbo(Jpeg::s420); });
const Row ours_422("jpeg/decode 4:2:2/ours", [] { return ours(Jpeg::s422); });
const Row turbo_422("jpeg/decode 4:2:2/libjpeg-turbo", [] { return turbo(Jpeg::s422); });
const Row ours_444("jpeg/decode 4:4:4/ours", [] { return ours(Jpeg::s444); });
const Row turbo_444("jpeg/decode 4:4:4/libjpeg-turbo", [] { return turbo(Jpeg::s444); });
const Row ours_440("jpeg/decode 4:4:0/ours", [] { return ours(Jpeg::s440); });
const Row turbo_440("jpeg/decode 4:4:0/libjpeg-turbo", [] { return turbo(Jpeg::s440); });
const Row ours_grey("jpeg/decode grey/ours", [] { return ours(Jpeg::grey); });
const Row turbo_grey("jpeg/decode grey/libjpeg-turbo", [] { return turbo(Jpeg::grey); });
const Row ours_progressive("jpeg/decode progressive/ours", [] { return ours(Jpeg::progressive); });
const Row turbo_progressive("jpeg/decode progressive/libjpeg-turbo",
                            [] { return turbo(Jpeg::progressive); });

// Both in every way in which a baseline picture is usually coded.
const bool added = [] {
    static constexpr struct {
        const char* name;
        Jpeg kind;
    } kinds[] = {
        {"4:2:0", Jpeg::s420}, {"4:2:2", Jpeg::s422}, {"4:4:4", Jpeg::s444}, {"grey", Jpeg::grey}};
    static constexpr struct {
        const char* name;
        JpegCoding coding;
    } codings[] = {{"q75 optimised", {75, true}},
                   {"q75 restarts", {75, false, true}},
                   {"q92", {92}},
                   {"q92 optimised", {92, true}},
                   {"q92 restarts", {92, false, true}}};
    for (const auto& [kind_name, kind] : kinds) {
        for (const auto& [coding_name, coding] : codings) {
            const std::string name =
                std::string("jpeg/decode ") + kind_name + " " + coding_name + "/";
            Row((name + "ours").c_str(), [=] { return ours(kind, coding); });
            Row((name + "libjpeg-turbo").c_str(), [=] { return turbo(kind, coding); });
        }
    }
    return true;
}();

#ifdef _WIN32
Work turbo_new(Jpeg kind) {
    return [&jpeg = photo_jpeg(kind), decoder = tjInitDecompress()] {
        HGLOBAL image = GlobalAlloc(GMEM_MOVEABLE, picture_bytes());
        decode_with(decoder, jpeg, static_cast<uint8_t*>(GlobalLock(image)));
        GlobalUnlock(image);
        GlobalFree(image);
    };
}

const Row new_420("jpeg/decode 4:2:0/turbo, new image", [] { return turbo_new(Jpeg::s420); });
const Row new_422("jpeg/decode 4:2:2/turbo, new image", [] { return turbo_new(Jpeg::s422); });
const Row new_444("jpeg/decode 4:4:4/turbo, new image", [] { return turbo_new(Jpeg::s444); });
const Row new_grey("jpeg/decode grey/turbo, new image", [] { return turbo_new(Jpeg::grey); });
#endif

} // namespace
