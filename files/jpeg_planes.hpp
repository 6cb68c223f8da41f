// The coefficients of a JPEG, component by component.
#pragma once

#include "jpeg_headers.hpp"

namespace kirvo_files {

// The blocks of one component, padded to whole MCUs.
struct Plane {
    uint32_t across = 0, down = 0; // blocks
    uint32_t per_mcu_across = 1, per_mcu_down = 1;
    Buffer values; // 64 numbers of 16 bits a block, in the order of the rows

    bool make(uint32_t mcus_across, uint32_t mcus_down, uint32_t in_mcu_across,
              uint32_t in_mcu_down) {
        per_mcu_across = in_mcu_across;
        per_mcu_down = in_mcu_down;
        across = mcus_across * in_mcu_across;
        down = mcus_down * in_mcu_down;
        return values.resize(uint64_t{128} * across * down);
    }
    int16_t* block(uint32_t x, uint32_t y) const {
        return reinterpret_cast<int16_t*>(values.data()) + size_t{64} * (size_t{across} * y + x);
    }
};

// Planes for every component, all values 0.
inline bool make_planes(const JpegHeaders& headers, Plane (&planes)[4]) {
    bool made = true;
    for (uint32_t i = 0; i < headers.components; ++i)
        made = made && planes[i].make(headers.mcus_across(), headers.mcus_down(),
                                      headers.blocks_across(i), headers.blocks_down(i));
    return made;
}

// Whether a file has its coefficients in Huffman codes: baseline, extended sequential, progressive.
bool has_huffman_codes(const JpegHeaders& headers);

// Reads every block of all scans of such a file, as far as they go. Planes are made by the caller.
Walk read_coefficients(Bytes bytes, const JpegHeaders& headers, Plane (&planes)[4]);

} // namespace kirvo_files
