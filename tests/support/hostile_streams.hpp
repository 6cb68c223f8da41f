// JPEG streams that are as much work as streams of their size and picture can be.
#pragma once

#include "support/jpeg_builder.hpp"

#include <vector>

namespace kirvo_test {

struct HostileStream {
    const char* name;
    // Bytes or pixels, whichever are more, grow in proportion to the scale.
    Bytes (*make)(int scale);
    int status; // of decoding it whole
};

const std::vector<HostileStream>& hostile_streams();

// Data bytes of a stream whose header claims width x height pixels: one component or three.
Bytes jpeg_header(int width, int height, bool progressive, bool colour = false);

} // namespace kirvo_test
