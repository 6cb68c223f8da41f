// An encode from its first call to its last: one at a time, driven in batches of MCUs.
#pragma once

#include "core/dib.hpp"

namespace kirvo {

enum class EncodeFamily { colour, grey };

struct EncodeRequest {
    EncodeFamily family;
    HGLOBAL dib;
    Rect region;
    bool grey_from_table; // of the grey family: blue bytes of the colour table, not the indexes
    int32_t mcus_per_call; // -1: all
};

// Locks the image, makes the output block and writes the headers. The output block stays the
// encoder's until the encode is done.
Status start_encode(const EncodeRequest& request, HGLOBAL* output);

enum class EncodeProgress { more, done };

// Encodes the next batch. Done: the stream, of that length, is complete in the output block, which
// is the caller's now. After an error it has been freed.
Status continue_encode(EncodeFamily family, EncodeProgress* progress, uint32_t* stream_bytes);

// Frees everything of the encode in progress, if there is one.
void abandon_encode();

} // namespace kirvo
