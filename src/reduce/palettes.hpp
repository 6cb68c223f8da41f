// The fixed designs: colours, and the slots that hold them. Colours are 0xRRGGBB.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace kirvo {

// The colour cube of error diffusion: position = sum of weight * index over the channels.
constexpr std::array<uint8_t, 7> cube_green_levels = {0, 64, 96, 128, 160, 192, 255};
constexpr std::array<uint8_t, 6> cube_blue_levels = {0, 64, 96, 128, 192, 255};
constexpr std::array<uint8_t, 6> cube_red_levels = cube_blue_levels;
constexpr uint32_t cube_green_weight = 36, cube_blue_weight = 6, cube_red_weight = 1;
constexpr size_t cube_positions = 7 * 6 * 6;

// The palette slot of each cube position. Colours that are system colours stand in the system's
// slots; those displaced by them take their places.
extern const std::array<uint8_t, cube_positions> cube_slots;

// The 256 colours of the cube and the system.
extern const std::array<uint32_t, 256> cube_palette;

extern const std::array<uint32_t, 16> system_palette;

// The system colours in their slots, and greys from 20 in slot 10 to 255 in slot 245.
extern const std::array<uint32_t, 256> grey_palette;
constexpr int32_t grey_slot_offset = 10; // a grey's value above its slot
constexpr int32_t first_grey_slot = 10;

// The library's palette as a cube of the levels 51 * index: the slot of position
// red + 6 * green + 36 * blue. Four colours that the palette lacks go to the nearest pure one.
constexpr size_t halftone_positions = 216;
extern const std::array<uint8_t, halftone_positions> halftone_slots;

} // namespace kirvo
