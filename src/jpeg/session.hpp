// What the two codecs keep between calls.
#pragma once

#include "jpeg/decode_state.hpp"
#include "jpeg/encode_settings.hpp"
#include "jpeg/encoder.hpp"
#include "jpeg/tables.hpp"

namespace kirvo {

struct Session {
    QuantisationSlots slots;
    EncodeSettings settings;
    Encoder& encoder;
    DecodeState decoder;

    // From a successful First call of either codec until its operation has finished, failed or been
    // abandoned. Every First call is refused meanwhile: one encode or decode runs at a time.
    bool busy() const { return encoder.busy() || decoder.under_way; }
};

extern Session session;

} // namespace kirvo
