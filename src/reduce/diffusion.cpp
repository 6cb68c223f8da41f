#include "reduce/diffusion.hpp"

#include "reduce/palettes.hpp"

#include <array>
#include <utility>

namespace kirvo {

namespace {

// Values that can occur: a pixel's channel and the errors that reach it. These are at most the sum
// of a half, a quarter, an eighth and a sixteenth of the largest error that a quantiser leaves, so
// the values stay in bounds: -60 to 281 for the errors -64 to 31 of the cube, -119 to 375 for the
// errors -126 to 128 of the 16 colours. Cells hold them above 0.
constexpr int32_t lowest_value = -128, highest_value = 383;
constexpr uint32_t value_count = highest_value - lowest_value + 1;

// One entry for each value, as the function makes it. Tables are filled at their first use: as
// constants they would make the library's file larger by a twentieth.
template<typename Entry, typename Make>
std::array<Entry, value_count> for_each_value(Make make) {
    std::array<Entry, value_count> entries = {};
    for (uint32_t i = 0; i < value_count; ++i)
        entries[i] = make(lowest_value + static_cast<int32_t>(i));
    return entries;
}

// What quantising a value leaves over, and the chosen level's share of the index.
struct Level {
    int16_t error;
    uint16_t part;
};

// The channels of a pixel, above lowest_value.
struct Values {
    uint32_t blue, green, red;
};

// What quantising a pixel gives. The halves are for the next pixel: they are what the loop over a
// row has to wait for, so they come straight from tables.
struct Quantised {
    int32_t half_blue, half_green, half_red;
    int16_t blue, green, red;
    uint8_t index;
};

// A value goes to the level above it: to level i when it reaches the level below that, or 32 for
// the first level above 0.
template<size_t n>
constexpr Level cube_level(int32_t value, const std::array<uint8_t, n>& levels, uint32_t weight) {
    for (size_t i = n - 1; i > 0; --i) {
        if (value >= (i == 1 ? 32 : levels[i - 1]))
            return {static_cast<int16_t>(value - levels[i]), static_cast<uint16_t>(i * weight)};
    }
    return {static_cast<int16_t>(value), 0};
}

struct CubeLevel {
    int32_t half;
    Level level;
};

template<size_t n>
std::array<CubeLevel, value_count> cube_channel(const std::array<uint8_t, n>& levels,
                                                uint32_t weight) {
    return for_each_value<CubeLevel>([&](int32_t value) {
        const Level level = cube_level(value, levels, weight);
        return CubeLevel{level.error >> 1, level};
    });
}

struct CubeQuantiser {
    std::array<CubeLevel, value_count> blue = cube_channel(cube_blue_levels, cube_blue_weight);
    std::array<CubeLevel, value_count> green = cube_channel(cube_green_levels, cube_green_weight);
    std::array<CubeLevel, value_count> red = cube_channel(cube_red_levels, cube_red_weight);

    Quantised quantise(const Values& value) const {
        const CubeLevel &b = blue[value.blue], &g = green[value.green], &r = red[value.red];
        return {b.half,
                g.half,
                r.half,
                b.level.error,
                g.level.error,
                r.level.error,
                cube_slots[b.level.part + g.level.part + r.level.part]};
    }
};

constexpr int32_t bright_threshold = 128, dark_threshold = 64;

// A channel above the threshold is set, to the given level.
constexpr Level set_above(int32_t value, int32_t threshold, int32_t level) {
    if (value > threshold)
        return {static_cast<int16_t>(value - level), 1};
    return {static_cast<int16_t>(value), 0};
}

constexpr Level dark_level(int32_t value) { return set_above(value, dark_threshold, 128); }
constexpr Level bright_level(int32_t value) { return set_above(value, bright_threshold, 255); }

// Half of the error in a dark pixel, and how much more it is in a bright one.
struct SystemHalf {
    int16_t dark, brighter;
};

struct SystemQuantiser {
    std::array<SystemHalf, value_count> half = for_each_value<SystemHalf>([](int32_t value) {
        const int32_t dark_half = dark_level(value).error >> 1;
        const int32_t bright_half = bright_level(value).error >> 1;
        return SystemHalf{static_cast<int16_t>(dark_half),
                          static_cast<int16_t>(bright_half - dark_half)};
    });
    std::array<Level, value_count> levels[2] = {for_each_value<Level>(dark_level),
                                                for_each_value<Level>(bright_level)};
    // The dark colours, then the bright ones. All three dark channels set are the grey that the
    // bright colours begin with.
    static constexpr uint8_t colours[2][8] = {{0, 1, 2, 3, 4, 5, 6, 8},
                                              {8, 9, 10, 11, 12, 13, 14, 15}};

    Quantised quantise(const Values& value) const {
        constexpr uint32_t threshold = bright_threshold - lowest_value;
        // Bit 31 tells whether any channel is above the threshold.
        const auto any_above = static_cast<int32_t>(
            (threshold - value.blue) | (threshold - value.green) | (threshold - value.red));
        const int32_t bright = any_above >> 31;
        const auto half_of = [bright](const SystemHalf& h) {
            return h.dark + (h.brighter & bright);
        };
        const auto& level = levels[-bright];
        const Level &b = level[value.blue], &g = level[value.green], &r = level[value.red];
        return {half_of(half[value.blue]),
                half_of(half[value.green]),
                half_of(half[value.red]),
                b.error,
                g.error,
                r.error,
                colours[-bright][r.part + 2 * g.part + 4 * b.part]};
    }
};

constexpr size_t cells(size_t width) { return 3 * (width + 2); }

} // namespace

ErrorDiffusion::ErrorDiffusion(size_t width)
    : width_(width), scratch_(2 * sizeof(int16_t) * 3 * (uint64_t{width} + 2)),
      values_(scratch_.part<int16_t>(3 * sizeof(int16_t))),
      errors_(scratch_.part<int16_t>((3 + cells(width)) * sizeof(int16_t))) {}

void ErrorDiffusion::to_256(const uint8_t* bgr, uint8_t* indices) {
    quantise_row<CubeQuantiser>(bgr, indices);
}

void ErrorDiffusion::to_16(const uint8_t* bgr, uint8_t* indices) {
    quantise_row<SystemQuantiser>(bgr, indices);
}

// A pixel left a quarter of its error below it, an eighth below the next one of its row and a
// sixteenth below the one before.
void ErrorDiffusion::add_errors(const uint8_t* bgr) {
    const int16_t* below = errors_;
    const int16_t* ahead = errors_ - 3 * direction_;
    const int16_t* behind = errors_ + 3 * direction_;
    int16_t* values = values_;
    for (size_t i = 0; i < 3 * width_; ++i)
        values[i] = static_cast<int16_t>(bgr[i] - lowest_value + (below[i] >> 2) + (ahead[i] >> 3) +
                                         (behind[i] >> 4));
}

template<typename Quantiser>
void ErrorDiffusion::quantise_row(const uint8_t* bgr, uint8_t* indices) {
    static const Quantiser quantiser;
    add_errors(bgr);
    direction_ = -direction_;
    const ptrdiff_t step = direction_;
    const auto count = static_cast<ptrdiff_t>(width_);
    const ptrdiff_t first = step > 0 ? 0 : count - 1;
    int16_t* cell = values_ + 3 * first;
    uint8_t* index = indices + first;
    Quantised pixel = {};
    for (ptrdiff_t i = 0; i < count; ++i, cell += 3 * step, index += step) {
        const auto value = [](int16_t sum, int32_t half) {
            return static_cast<uint32_t>(sum + half);
        };
        pixel =
            quantiser.quantise({value(cell[0], pixel.half_blue), value(cell[1], pixel.half_green),
                                value(cell[2], pixel.half_red)});
        cell[0] = pixel.blue;
        cell[1] = pixel.green;
        cell[2] = pixel.red;
        *index = pixel.index;
    }
    std::swap(values_, errors_);
}

} // namespace kirvo
