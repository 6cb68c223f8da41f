#include "jpeg/encode_headers.hpp"

#include "core/memory.hpp"
#include "jpeg/encode_codes.hpp"

#include <cstring>

namespace kirvo {

namespace {

constexpr uint8_t start_and_jfif[] = {
    0xFF, 0xD8,                    // SOI
    0xFF, 0xE0, 0,   16,           // APP0
    'J',  'F',  'I', 'F', 0,       //
    1,    0,    0,   0,   1, 0, 1, // version 1.00, no units, density 1 x 1
    0,    0,                       // no thumbnail
};
constexpr uint8_t grey_scan[] = {0xFF, 0xDA, 0, 8, 1, 1, 0x00, 0, 63, 0};
constexpr uint8_t colour_scan[] = {0xFF, 0xDA, 0, 12, 3, 1, 0x00, 2, 0x11, 3, 0x11, 0, 63, 0};

template<size_t N>
void append(OutputStream& stream, const uint8_t (&bytes)[N]) {
    stream.append(bytes, N);
}

void append_comment(OutputStream& stream, const EncodeSettings& settings) {
    const LockedBlock comment(settings.comment);
    if (comment)
        stream.append(comment.data(), settings.comment_bytes);
}

void append_quantisers(OutputStream& stream, uint8_t number, const QuantisationSlot& slot) {
    append(stream, {0xFF, 0xDB, 0, 67, number});
    stream.append(slot.data(), slot.size());
}

void append_frame(OutputStream& stream, const FrameHeader& frame) {
    const auto high = [](int32_t size) { return static_cast<uint8_t>(size >> 8); };
    const auto low = [](int32_t size) { return static_cast<uint8_t>(size); };
    const uint8_t length = frame.grey ? 11 : 17;
    const uint8_t components = frame.grey ? 1 : 3;
    append(stream, {0xFF, 0xC0, 0, length, 8, high(frame.height), low(frame.height),
                    high(frame.width), low(frame.width), components, 1, frame.sampling, 0});
    if (!frame.grey)
        append(stream, {2, 0x11, 1, 3, 0x11, 1});
}

// A byte of ones is one whose complement borrows from its high bit when 1 is taken away; so may a
// byte above such a one, which makes no difference.
constexpr bool has_byte_of_ones(uintptr_t word) {
    constexpr uintptr_t low_bits = ~uintptr_t{0} / 255, high_bits = low_bits << 7;
    return ((~word - low_bits) & word & high_bits) != 0;
}

} // namespace

bool OutputStream::append(const uint8_t* bytes, size_t count) {
    if (count > size - position)
        return false;
    std::memcpy(data + position, bytes, count);
    position += static_cast<uint32_t>(count);
    return true;
}

// Words without a byte of ones go as they are.
bool OutputStream::append_stuffed(const uint8_t* bytes, size_t count) {
    const uint8_t* const end = bytes + count;
    while (bytes != end) {
        uintptr_t word;
        if (static_cast<size_t>(end - bytes) >= sizeof word) {
            std::memcpy(&word, bytes, sizeof word);
            if (!has_byte_of_ones(word)) {
                if (!append(bytes, sizeof word))
                    return false;
                bytes += sizeof word;
                continue;
            }
        }
        const uint8_t with_stuffing[] = {*bytes, 0};
        if (!append(with_stuffing, *bytes == 0xFF ? 2 : 1))
            return false;
        ++bytes;
    }
    return true;
}

void write_headers(OutputStream& stream, const FrameHeader& frame, const QuantisationSlots& slots,
                   EncodeSettings& settings) {
    append(stream, start_and_jfif);
    append_comment(stream, settings);
    settings.discard_comment();
    append_quantisers(stream, 0, slots[0]);
    if (!frame.grey)
        append_quantisers(stream, 1, slots[1]);
    append_frame(stream, frame);
    stream.append(dht_segment.data(), dht_segment.size());
    if (frame.grey)
        append(stream, grey_scan);
    else
        append(stream, colour_scan);
}

bool write_end_of_image(OutputStream& stream) {
    constexpr uint8_t marker[] = {0xFF, 0xD9};
    return stream.append(marker, sizeof marker);
}

} // namespace kirvo
