#include "effects/zoom_rows.hpp"

#include "core/cpu.hpp"

#include <cstring>

namespace kirvo {

namespace {

template<size_t bytes>
void gather(uint8_t* to, const uint8_t* from, const uint32_t* offsets, size_t count) {
    for (size_t i = 0; i < count; ++i, to += bytes)
        std::memcpy(to, from + offsets[i], bytes);
}

void add_row(uint16_t* sums, const uint8_t* row, size_t bytes) {
    for (size_t i = 0; i < bytes; ++i)
        sums[i] = static_cast<uint16_t>(sums[i] + row[i]);
}

} // namespace

const ZoomRows zoom_rows_scalar = {{gather<1>, gather<2>, gather<3>, gather<4>}, add_row};

const ZoomRows& zoom_rows() {
    return zoom_rows_scalar;
}

} // namespace kirvo
