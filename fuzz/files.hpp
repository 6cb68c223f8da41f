// A file through KirvoFiles' own readers: opened in every way, informed of, saved again.
#pragma once

#include "support.hpp"

#include "formats.hpp"

namespace kirvo_fuzz {

// Draws the options and the failing allocation, and gives the rest of the input to a reader,
// whatever the bytes look like.
void read_with(Input& input, kirvo_files::Status (*read)(kirvo_files::Job& job));

} // namespace kirvo_fuzz
