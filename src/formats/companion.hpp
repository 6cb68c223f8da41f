// The size of a Q0 picture, which a text file beside it holds.
#pragma once

#include "platform/platform.hpp"

namespace kirvo {

// Reads width and height from the start of NAME.IPR for the file NAME.q0 (of whatever extension).
// False when there is no such file or it does not begin with two decimal integers. Either may be
// negative; those beyond 32 bits are clamped.
bool read_companion(const char* name, int32_t& width, int32_t& height);

} // namespace kirvo
