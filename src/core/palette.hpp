// The library's fixed palette.
#pragma once

#include <cstdint>

namespace kirvo {

// 0xRRGGBB. Entries 0-9 and 246-255 are the 20 system colours; between them stand colours of the
// 6 x 6 x 6 cube, greys, and 6 colours of level 81. The order follows no rule.
extern const uint32_t fixed_palette[256];

} // namespace kirvo
