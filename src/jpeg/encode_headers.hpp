// The segments of a stream before its entropy-coded data.
#pragma once

#include "jpeg/encode_settings.hpp"

namespace kirvo {

// The output block and how far it is filled. Nothing is written past its end.
struct OutputStream {
    uint8_t* data;
    uint32_t size;
    uint32_t position;

    // False, with nothing written, when there is not enough room.
    bool append(const uint8_t* bytes, size_t count);
    // With a zero byte stuffed after each 0xFF.
    bool append_stuffed(const uint8_t* bytes, size_t count);
};

struct FrameHeader {
    int32_t width, height;
    bool grey;
    uint8_t sampling; // of the first component
};

// Room that the headers need without a comment is never more.
constexpr uint32_t header_room = 1024;

// Writes SOI to SOS, with the DQT payloads from the quantisation slots; takes and frees the pending
// comment. The block must have room for all.
void write_headers(OutputStream& stream, const FrameHeader& frame, const QuantisationSlots& slots,
                   EncodeSettings& settings);

// False when there is no room.
bool write_end_of_image(OutputStream& stream);

} // namespace kirvo
