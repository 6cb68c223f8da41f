#include "jpeg.hpp"

namespace kirvo_fuzz {

namespace {

void append_segment(Bytes& stream, uint8_t marker, const Bytes& content) {
    const size_t length = content.size() + 2;
    stream.insert(stream.end(),
                  {0xFF, marker, static_cast<uint8_t>(length >> 8), static_cast<uint8_t>(length)});
    stream.insert(stream.end(), content.begin(), content.end());
}

// Defines every table, and which of them each component uses; then has a marker where none is
// expected.
Bytes make_reset_stream() {
    Bytes quantisers, codes;
    for (const uint8_t number : {0, 1, 2, 3}) {
        quantisers.push_back(number);
        quantisers.insert(quantisers.end(), 64, 1);
    }
    for (const uint8_t number : {0x00, 0x01, 0x02, 0x03, 0x10, 0x11, 0x12, 0x13}) {
        codes.insert(codes.end(), {number, 2}); // two codes of one bit
        codes.insert(codes.end(), 15 + 2, 0);
    }
    Bytes stream = {0xFF, 0xD8};
    append_segment(stream, 0xDB, quantisers);
    append_segment(stream, 0xC4, codes);
    append_segment(stream, 0xC0, {8, 0, 8, 0, 8, 3, 1, 0x11, 0, 2, 0x11, 0, 3, 0x11, 0});
    append_segment(stream, 0xDA, {3, 1, 0x00, 2, 0x00, 3, 0x00, 0, 63, 0});
    stream.insert(stream.end(), {0xFF, 0xC0});
    return stream;
}

Outcome outcome(int32_t result, HGLOBAL image) {
    const kirvo::OwnedBlock owner(image);
    require((result == 1) == (image != nullptr), "an image comes with success only");
    look_at(image);
    Outcome seen = {};
    seen.result = result;
    if (image != nullptr)
        seen.image = bytes_of(image);
    seen.comment_count = JpgDecCommentCounts();
    for (int32_t i = 0; i < seen.comment_count; ++i) {
        if (HGLOBAL comment = JpgDecGetComment(i))
            seen.comments.push_back(bytes_of(comment));
    }
    for (int32_t i = 0; i < 4; ++i)
        seen.table_results[i] = JpgDecGetQtableEx(i, seen.tables[i]);
    uint32_t position;
    seen.marker = JpgDecGetLastUexMarker(&position);
    return seen;
}

} // namespace

const Bytes& reset_stream() {
    static const Bytes stream = make_reset_stream();
    return stream;
}

void reset_decoder() {
    const Bytes& stream = reset_stream();
    const kirvo::OwnedBlock data = block_of(stream);
    int32_t error;
    JpgDecMainHGLOBAL(data.get(), static_cast<int32_t>(stream.size()), nullptr, nullptr, &error);
    require(error == KIRVO_JPEG_MARKER, "the decoder is reset");
    JpgDecGetCommentEnable(1);
}

Outcome decode_whole(const Bytes& stream) {
    reset_decoder();
    const kirvo::OwnedBlock data = block_of(stream);
    uint32_t width = 0, height = 0;
    int32_t error;
    HGLOBAL image =
        JpgDecMainHGLOBAL(data.get(), static_cast<int32_t>(stream.size()), &width, &height, &error);
    require(image == nullptr || (width >= 1 && height >= 1), "an image has a size");
    return outcome(error == KIRVO_OK ? 1 : error, image);
}

Outcome decode_pieces(const std::vector<Bytes>& pieces) {
    reset_decoder();
    HGLOBAL image = nullptr;
    int32_t result = 0;
    for (size_t i = 0; i < pieces.size() && result == 0; ++i) {
        const kirvo::OwnedBlock data = block_of(pieces[i]);
        const auto size = static_cast<int32_t>(pieces[i].size());
        result = i == 0 ? JpgDecFirst(data.get(), size, &image)
                        : JpgDecNext(data.get(), size, 0, &image);
    }
    for (int again = 0; result == 0 && again < 3;
         ++again) // 0 after a start of image or a scan header at the very end
        result = JpgDecNext(nullptr, 0, 1, &image);
    return outcome(result, image);
}

} // namespace kirvo_fuzz
