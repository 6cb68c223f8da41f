// Marker segments up to a scan header. Both functions stop where the input ends and go on from
// there when they are called again; a segment is taken as a whole or not at all.
#pragma once

#include "jpeg/decode/state.hpp"

namespace kirvo {

// Skips to just past the first 0xFF 0xD8.
bool find_start_of_image(DecodeState& state);

// Reads segments until a scan header has been read (done).
Step read_segments(DecodeState& state, bool store_comments);

} // namespace kirvo
