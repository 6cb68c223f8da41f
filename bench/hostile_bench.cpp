// JPEG streams that are made to be much work, each beside one of 16 times the bytes and pixels: the
// ratio tells how the time grows. MP/s counts millions of pixels or bytes, whichever are more. And
// a stream like a photograph, whole and byte by byte.
#include "support/hostile_streams.hpp"

#include "support/pictures.hpp"
#include "support/row.hpp"

#include <algorithm>
#include <cstring>
#include <string>

using namespace kirvo_bench;

namespace {

using kirvo_test::Bytes;
using kirvo_test::HostileStream;

HGLOBAL block_of(const Bytes& bytes) {
    HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, bytes.size());
    std::memcpy(GlobalLock(block), bytes.data(), bytes.size());
    GlobalUnlock(block);
    return block;
}

Work whole(const Bytes& stream) {
    return [data = block_of(stream), size = static_cast<int32_t>(stream.size())] {
        uint32_t width, height;
        int32_t error;
        GlobalFree(JpgDecMainHGLOBAL(data, size, &width, &height, &error));
    };
}

Work byte_by_byte(const Bytes& stream) {
    HGLOBAL piece = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, 1);
    return [&stream, piece, byte = static_cast<uint8_t*>(GlobalLock(piece))] {
        HGLOBAL image = nullptr;
        *byte = stream[0];
        int32_t result = JpgDecFirst(piece, 1, &image);
        for (size_t i = 1; i < stream.size() && result == 0; ++i) {
            *byte = stream[i];
            result = JpgDecNext(piece, 1, 0, &image);
        }
        if (result == 0)
            JpgDecNext(nullptr, 0, 1, &image);
        GlobalFree(image);
    };
}

double millions(const Bytes& stream) {
    HGLOBAL data = block_of(stream);
    uint32_t width = 0, height = 0;
    int32_t error;
    GlobalFree(
        JpgDecMainHGLOBAL(data, static_cast<int32_t>(stream.size()), &width, &height, &error));
    GlobalFree(data);
    return std::max(static_cast<double>(stream.size()), double{1} * width * height) / 1e6;
}

void add_row(const HostileStream& stream, const char* column, int scale) {
    const auto make = [make = stream.make, scale] { return make(scale); };
    const std::string name = "hostile/" + std::string(stream.name) + "/" + column;
    Row(
        name.c_str(), [make] { return whole(make()); }, [make] { return millions(make()); });
}

const bool added = [] {
    constexpr int scale = 64;
    for (const HostileStream& stream : kirvo_test::hostile_streams()) {
        add_row(stream, "ours", scale);
        add_row(stream, "16 times the size", 16 * scale);
    }
    return true;
}();

const Row in_one("jpeg/decode in pieces/ours", [] { return whole(photo_jpeg(Jpeg::s420)); });
const Row in_pieces("jpeg/decode in pieces/byte by byte",
                    [] { return byte_by_byte(photo_jpeg(Jpeg::s420)); });
// The smallest MCUs, of which each is entered anew.
const Row grey_in_one("jpeg/decode grey in pieces/ours",
                      [] { return whole(photo_jpeg(Jpeg::grey)); });
const Row grey_in_pieces("jpeg/decode grey in pieces/byte by byte",
                         [] { return byte_by_byte(photo_jpeg(Jpeg::grey)); });

} // namespace
