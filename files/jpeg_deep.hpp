// JPEG of 12 bits a channel.
#pragma once

#include "jpeg_headers.hpp"

namespace kirvo_files {

// A file in Huffman codes with grey or three colours.
bool is_deep(const JpegHeaders& headers);
// Decodes it, reduced to 8 bits.
Status deep_decode(Job& job, const JpegHeaders& headers);

} // namespace kirvo_files
