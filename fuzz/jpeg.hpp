// What the targets of the JPEG decoder share.
#pragma once

#include "support.hpp"

namespace kirvo_fuzz {

// Everything that can be seen of a decode after it.
struct Outcome {
    int32_t result; // 1, or a negative code
    Bytes image;    // the whole block
    int32_t comment_count;
    std::vector<Bytes> comments; // those stored
    uint16_t tables[4][64];
    int32_t table_results[4];
    uint16_t marker;

    bool operator==(const Outcome&) const = default;
};

// Tables outlive a decode: gives all of them, their choice by each component, and the record of the
// unexpected marker the same content again, by decoding this stream.
const Bytes& reset_stream();
void reset_decoder();

// Each from the state that reset_decoder makes, with comments stored.
Outcome decode_whole(const Bytes& stream);
Outcome decode_pieces(const std::vector<Bytes>& pieces); // one or more

} // namespace kirvo_fuzz
