#include "jpeg/session.hpp"

namespace kirvo {

namespace {

// T.81, Tables K.1 and K.2, in natural order.
constexpr QuantisationSlot luminance_example = {
    16, 11, 10, 16, 24,  40,  51,  61,  //
    12, 12, 14, 19, 26,  58,  60,  55,  //
    14, 13, 16, 24, 40,  57,  69,  56,  //
    14, 17, 22, 29, 51,  87,  80,  62,  //
    18, 22, 37, 56, 68,  109, 103, 77,  //
    24, 35, 55, 64, 81,  104, 113, 92,  //
    49, 64, 78, 87, 103, 121, 120, 101, //
    72, 92, 95, 98, 112, 100, 103, 99,
};
constexpr QuantisationSlot chrominance_example = {
    17, 18, 24, 47, 99, 99, 99, 99, //
    18, 21, 26, 66, 99, 99, 99, 99, //
    24, 26, 56, 99, 99, 99, 99, 99, //
    47, 66, 99, 99, 99, 99, 99, 99, //
    99, 99, 99, 99, 99, 99, 99, 99, //
    99, 99, 99, 99, 99, 99, 99, 99, //
    99, 99, 99, 99, 99, 99, 99, 99, //
    99, 99, 99, 99, 99, 99, 99, 99,
};

constexpr QuantisationSlot halved(const QuantisationSlot& natural) {
    QuantisationSlot slot = {};
    for (std::size_t k = 0; k < slot.size(); ++k)
        slot[k] = static_cast<uint8_t>((natural[zigzag[k]] + 1) / 2);
    return slot;
}

constexpr QuantisationSlot ones() {
    QuantisationSlot slot = {};
    slot.fill(1);
    return slot;
}

constexpr QuantisationSlots first_slots = {halved(luminance_example), halved(chrominance_example),
                                           ones(), ones()};

// These begin as zeros. Inside the session, which does not, they would have them all stored in the
// library's file.
constinit Encoder encoder;
constinit DecodeBuffers decode_buffers = {};

} // namespace

constinit Session session = {first_slots, {}, encoder, {session.slots, decode_buffers}};

} // namespace kirvo
