// Row kernels that blend 24-bit pixels onto others, one set per level of the processor.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kirvo {

// Each changes the row `to` by the row `from`; the two do not overlap. The first three work on
// bytes whatever their channel, so count is in bytes.
struct ComposeRows {
    using Bytes = void (*)(uint8_t* to, const uint8_t* from, size_t count);
    // Replaces pixels, but not under those of the key's colour (blue, green, red).
    using Keyed = void (*)(uint8_t* to, const uint8_t* from, size_t pixels, const uint8_t* key);

    Bytes add, average, subtract;
    Keyed replace;
};

extern const ComposeRows compose_rows_scalar;
namespace sse2 {
extern const ComposeRows compose_rows;
}
namespace avx2 {
extern const ComposeRows compose_rows;
}

const ComposeRows& compose_rows();

} // namespace kirvo
