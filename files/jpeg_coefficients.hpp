// The coefficients of a baseline JPEG: read, turned, written again. Nothing is transformed or
// rounded.
#pragma once

#include "codec.hpp"

namespace kirvo_files {

// How the edges of a picture go along when it is turned.
struct TurnPlan {
    bool transpose = false, flip_across = false, flip_down = false; // in this order
    uint32_t width = 0, height = 0;                                 // of the result
};

// #KIRVO_FILES_NO_CODEC for a file whose frame is not baseline with one scan.
Status turn_coefficients(Bytes in, const JpegHeaders& headers, const TurnPlan& plan, Buffer& out);

} // namespace kirvo_files
