#include "reduce/palettes.hpp"

#include "image/palette.hpp"

namespace kirvo {

namespace {

struct Move {
    uint8_t position, slot;
};
constexpr Move moves[] = {{1, 111},   {2, 108},   {3, 1},     {4, 18},    {5, 249},   {6, 126},
                          {7, 208},   {8, 30},    {9, 35},    {18, 4},    {21, 5},    {30, 252},
                          {35, 253},  {108, 2},   {111, 3},   {126, 6},   {129, 248}, {208, 7},
                          {216, 250}, {221, 251}, {246, 254}, {247, 221}, {248, 129}, {249, 21},
                          {250, 216}, {251, 255}};

constexpr std::array<uint8_t, cube_positions> make_cube_slots() {
    std::array<uint8_t, cube_positions> slots = {};
    for (size_t position = 0; position < cube_positions; ++position)
        slots[position] = static_cast<uint8_t>(position);
    for (const Move& move : moves)
        slots[move.position] = move.slot;
    return slots;
}

constexpr uint32_t cube_colour(size_t position) {
    return static_cast<uint32_t>(cube_red_levels[position % 6] << 16 |
                                 cube_green_levels[position / cube_green_weight] << 8 |
                                 cube_blue_levels[position / cube_blue_weight % 6]);
}

// System colours that no cube of the library contains.
constexpr uint32_t money_green = 0xC0DCC0, sky_blue = 0xA4C8F0, cream = 0xFFFBF0,
                   medium_grey = 0xA0A0A4;

constexpr std::array<uint32_t, 256> make_cube_palette() {
    std::array<uint32_t, 256> palette = {};
    const auto slots = make_cube_slots();
    for (size_t position = 0; position < cube_positions; ++position)
        palette[slots[position]] = cube_colour(position);
    palette[8] = money_green;
    palette[9] = sky_blue;
    palette[246] = cream;
    palette[247] = medium_grey;
    return palette;
}

// Bits 0, 1 and 2 of a number set red, green and blue to the given level.
constexpr uint32_t primary(uint32_t bits, uint32_t level) {
    return (bits & 1 ? level << 16 : 0) | (bits & 2 ? level << 8 : 0) | (bits & 4 ? level : 0);
}

constexpr std::array<uint32_t, 16> make_system_palette() {
    std::array<uint32_t, 16> palette = {};
    for (uint32_t i = 0; i < 7; ++i)
        palette[i] = primary(i, 128);
    palette[7] = 0xC0C0C0;
    palette[8] = 0x808080;
    for (uint32_t i = 9; i < 16; ++i)
        palette[i] = primary(i - 8, 255);
    return palette;
}

constexpr std::array<uint32_t, 256> make_grey_palette() {
    std::array<uint32_t, 256> palette = {};
    constexpr auto system = make_system_palette();
    for (uint32_t i = 0; i < 8; ++i) {
        palette[i] = system[i];
        palette[248 + i] = system[8 + i];
    }
    palette[8] = money_green;
    palette[9] = sky_blue;
    palette[246] = cream;
    palette[247] = medium_grey;
    for (uint32_t slot = first_grey_slot; slot < 246; ++slot)
        palette[slot] = 0x010101 * (slot + grey_slot_offset);
    return palette;
}

constexpr uint32_t halftone_colour(size_t position) {
    const auto level = [](size_t index) { return static_cast<uint32_t>(51 * index); };
    return level(position % 6) << 16 | level(position / 6 % 6) << 8 | level(position / 36);
}

constexpr uint8_t slot_of(uint32_t colour) {
    switch (colour) {
    case 0x33FF00:
    case 0x00FF33:
        return 250;
    case 0x3300FF:
    case 0x0033FF:
        return 252;
    }
    for (size_t slot = 0; slot < 255; ++slot) {
        if (fixed_palette[slot] == colour)
            return static_cast<uint8_t>(slot);
    }
    return 255;
}

constexpr std::array<uint8_t, halftone_positions> make_halftone_slots() {
    std::array<uint8_t, halftone_positions> slots = {};
    for (size_t position = 0; position < halftone_positions; ++position)
        slots[position] = slot_of(halftone_colour(position));
    return slots;
}

} // namespace

constexpr std::array<uint8_t, cube_positions> cube_slots = make_cube_slots();
constexpr std::array<uint32_t, 256> cube_palette = make_cube_palette();
constexpr std::array<uint32_t, 16> system_palette = make_system_palette();
constexpr std::array<uint32_t, 256> grey_palette = make_grey_palette();
constexpr std::array<uint8_t, halftone_positions> halftone_slots = make_halftone_slots();

} // namespace kirvo
