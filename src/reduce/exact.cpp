// Exact palettes: every colour of an image gets a slot, or the conversion fails.
#include "reduce/reduction.hpp"

#include <cstring>

namespace kirvo {

namespace {

struct Preset {
    uint8_t slot;
    uint32_t colour; // 0xRRGGBB
};
constexpr Preset presets_256[] = {
    {0, 0x000000},   {1, 0x800000},   {2, 0x008000},   {3, 0x808000},   {4, 0x000080},
    {5, 0x800080},   {6, 0x008080},   {7, 0xC0C0C0},   {247, 0xA0A0A4}, {248, 0x808080},
    {249, 0xFF0000}, {250, 0x00FF00}, {251, 0xFFFF00}, {252, 0x0000FF}, {253, 0xFF00FF},
    {254, 0x00FFFF}, {255, 0xFFFFFF}};
constexpr Preset presets_16[] = {{0, 0x000000},  {1, 0x800000},  {2, 0x008000},  {3, 0x808000},
                                 {4, 0x000080},  {5, 0x800080},  {6, 0x008080},  {7, 0x808080},
                                 {8, 0xC0C0C0},  {9, 0xFF0000},  {10, 0x00FF00}, {11, 0xFFFF00},
                                 {12, 0x0000FF}, {13, 0xFF00FF}, {14, 0x00FFFF}, {15, 0xFFFFFF}};

// The colours met so far. A slot is given to each new one in turn, from next_ to last_.
class ColourSlots {
  public:
    ColourSlots(int32_t first, int32_t last) : next_(first), last_(last) {
        std::memset(key_, 0xFF, sizeof key_);
    }

    void preset(const Preset& preset) { put(find(preset.colour), preset.colour, preset.slot); }

    // Slot of a colour, or -1 when there is none left for it.
    int32_t operator[](uint32_t colour) {
        const size_t first = place(colour);
        if (key_[first] == colour) [[likely]]
            return slot_[first];
        const size_t at = find(colour);
        if (key_[at] == colour)
            return slot_[at];
        if (next_ > last_)
            return -1;
        put(at, colour, static_cast<uint8_t>(next_));
        return next_++;
    }

    const uint32_t* colours() const { return colour_; }

  private:
    // A hash table of which most is free, so that nearly every colour has its first place; as large
    // as the first cache allows. The free places hold no colour's key.
    static constexpr uint32_t places = 4096;

    static size_t place(uint32_t colour) { return colour * 0x9E3779B1u >> 20; }
    size_t find(uint32_t colour) const {
        size_t at = place(colour);
        while (key_[at] != colour && key_[at] != UINT32_MAX)
            at = (at + 1) % places;
        return at;
    }
    void put(size_t at, uint32_t colour, uint8_t slot) {
        key_[at] = colour;
        slot_[at] = slot;
        colour_[slot] = colour;
    }

    uint32_t key_[places];
    uint8_t slot_[places];
    uint32_t colour_[256] = {};
    int32_t next_, last_;
};

bool map_row(ColourSlots& slots, const uint8_t* bgr, uint8_t* indices, size_t width) {
    const auto map = [&](size_t x, uint32_t colour) {
        const int32_t slot = slots[colour];
        indices[x] = static_cast<uint8_t>(slot);
        return slot >= 0;
    };
    // All pixels but the last are loaded with a byte of the one that follows.
    for (size_t x = 0; x + 1 < width; ++x, bgr += 3) {
        uint32_t word;
        std::memcpy(&word, bgr, sizeof word);
        if (!map(x, word & 0xFFFFFF))
            return false;
    }
    return map(width - 1, load_word(bgr, 3));
}

ColourSlots slots_256(int32_t mode) {
    if (mode == 1)
        return {0, 255};
    ColourSlots slots(8, 246);
    for (const Preset& preset : presets_256)
        slots.preset(preset);
    return slots;
}

ColourSlots slots_16(int32_t mode) {
    if (mode == 1)
        return {0, 15};
    ColourSlots slots(16, 15);
    for (const Preset& preset : presets_16)
        slots.preset(preset);
    return slots;
}

constexpr bool is_mode(int32_t mode) { return mode == 0 || mode == 1; }

} // namespace

} // namespace kirvo

using namespace kirvo;

HGLOBAL WINAPI Decrease256PaletteEx(HGLOBAL dib, int32_t mode, int32_t* status) {
    if (!is_mode(mode)) {
        report(status, Status::bad_parameter);
        return nullptr;
    }
    Reduction reduction(dib, RowRule::counted, 8);
    if (reduction.status() != Status::ok)
        return reduction.answer(status);
    ColourSlots slots = slots_256(mode);
    reduction.each_row([&](const uint8_t* bgr, uint8_t* to, int32_t) {
        return map_row(slots, bgr, to, reduction.width()) ? Status::ok : Status::more_than_256;
    });
    reduction.set_colours(slots.colours());
    return reduction.answer(status);
}

HGLOBAL WINAPI Decrease16PaletteEx(HGLOBAL dib, int32_t mode, int32_t* status) {
    if (!is_mode(mode)) {
        report(status, Status::bad_parameter);
        return nullptr;
    }
    Reduction reduction(dib, RowRule::counted, 4);
    if (reduction.status() != Status::ok)
        return reduction.answer(status);
    const Scratch indices(reduction.width());
    if (!indices) {
        reduction.fail(Status::no_memory);
        return reduction.answer(status);
    }
    ColourSlots slots = slots_16(mode);
    reduction.each_row([&](const uint8_t* bgr, uint8_t* to, int32_t) {
        if (!map_row(slots, bgr, indices.data(), reduction.width()))
            return Status::more_than_16;
        pack_nibbles(indices.data(), to, reduction.width());
        return Status::ok;
    });
    reduction.set_colours(slots.colours());
    return reduction.answer(status);
}

HGLOBAL WINAPI Decrease256Palette(HGLOBAL dib, int32_t* status) {
    return Decrease256PaletteEx(dib, 0, status);
}

HGLOBAL WINAPI Decrease16Palette(HGLOBAL dib, int32_t* status) {
    return Decrease16PaletteEx(dib, 0, status);
}
