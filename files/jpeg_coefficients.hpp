// The coefficients of a JPEG: read, turned, written again. Nothing is transformed or rounded.
#pragma once

#include "codec.hpp"

namespace kirvo_files {

// How the edges of a picture go along when it is turned.
struct TurnPlan {
    bool transpose = false, flip_across = false, flip_down = false; // in this order
    uint32_t width = 0, height = 0;                                 // of the result
};

// A progressive file stays one, with scans of its own. #KIRVO_FILES_NO_CODEC for a file without
// Huffman codes, or with quantisers that change on the way.
Status turn_coefficients(Bytes in, const JpegHeaders& headers, const TurnPlan& plan, Buffer& out);

} // namespace kirvo_files
