// Filters that keep or blank the channels of a pixel by ranges of values, in RGB or HSV.
#include "image/rect_operation.hpp"
#include "simd/kernels.hpp"

#include <iterator>

using namespace kirvo;

namespace {

// A test of one channel. A value that fails it becomes 0.
struct Range {
    int32_t lower, upper;
    uint32_t mode; // 0 anything passes, 1 values inside pass, 2 values outside pass

    bool passes(int32_t value) const {
        const bool inside = lower <= value && value <= upper;
        return mode == 0 || inside == (mode == 1);
    }
    bool is_valid(int32_t limit) const {
        return lower <= upper && lower <= limit && upper <= limit && mode <= 2;
    }
    // The same for values from 0 to 359.
    PassBand band() const {
        constexpr int32_t most = 359;
        const bool all = mode == 0, none = upper < 0;
        if (all || none)
            return {0, most, !all && mode == 1};
        const int32_t lowest = std::max(lower, 0);
        return {lowest, upper - lowest, mode == 2};
    }
    Levels levels() const {
        Levels levels;
        for (int32_t v = 0; v < 256; ++v)
            levels.level[v] = passes(v) ? static_cast<uint8_t>(v) : uint8_t{0};
        return levels;
    }
};

// Lower bound, upper bound and mode in the bytes of an argument.
Range unpack_range(uint32_t argument) {
    return {static_cast<int32_t>(argument & 0xFF), static_cast<int32_t>(argument >> 8 & 0xFF),
            argument >> 16 & 0xFF};
}

struct Ranges {
    Range channel[3]; // red, green, blue or hue, saturation, value

    bool are_valid(int32_t first_limit) const {
        return channel[0].is_valid(first_limit) && channel[1].is_valid(255) &&
               channel[2].is_valid(255);
    }
    ChannelLevels levels() const {
        return {{channel[2].levels(), channel[1].levels(), channel[0].levels()}};
    }
};

enum Flags : uint32_t {
    rgb_each = 0x101, // channels tested one by one
    rgb_all = 0x102,  // all three must pass
    hsv_all = 0x202,
};

// The record of ten 16-bit fields in five arguments, the first of each pair in the low half.
struct Record {
    uint32_t flags;
    Ranges ranges;

    explicit Record(const uint32_t (&arguments)[5]) {
        const auto field = [&](int i) { return arguments[i / 2] >> 16 * (i % 2) & 0xFFFF; };
        const auto bound = [&](int i) { return static_cast<int16_t>(field(i)); };
        flags = field(0);
        for (int c = 0; c < 3; ++c)
            ranges.channel[c] = {bound(3 * c + 1), bound(3 * c + 2), field(3 * c + 3)};
    }
    bool is_valid() const {
        return (flags == rgb_each || flags == rgb_all || flags == hsv_all) &&
               ranges.are_valid(flags == hsv_all ? 359 : 255);
    }
};

// Channels of 32-bit pixels are stored without their masks: a value rebuilt from HSV may need more
// bits than a narrow mask has.
PixelFormat unmasked(PixelFormat format) {
    std::fill(std::begin(format.masks.mask), std::end(format.masks.mask), ~uint32_t{0});
    return format;
}

HGLOBAL keep_channels(const RectOperation& operation, const Ranges& ranges, int32_t* status) {
    const ChannelLevels levels = ranges.levels();
    const auto mapped = [&](uint8_t* to, const uint8_t* from, size_t count) {
        kernels().map_channels(to, from, count, levels);
    };
    return operation.make(mapped, status);
}

HGLOBAL keep_pixels(const RectOperation& operation, const Record& record, int32_t* status) {
    const Range(&ranges)[3] = record.ranges.channel;
    const PassBand bands[3] = {ranges[0].band(), ranges[1].band(), ranges[2].band()};
    const bool in_rgb = record.flags == rgb_all;
    const auto keep = in_rgb ? kernels().keep_rgb : kernels().keep_hsv;
    const auto kept = [&](uint8_t* to, const uint8_t* from, size_t count) {
        keep(to, from, count, bands);
    };
    const PixelFormat format = operation.format();
    return operation.make(kept, status, in_rgb ? format : unmasked(format));
}

} // namespace

HGLOBAL WINAPI Dib24Filter(HGLOBAL dib, int32_t x, int32_t y, int32_t width, int32_t height,
                           uint32_t red, uint32_t green, uint32_t blue, int32_t* status) {
    const Ranges ranges = {{unpack_range(red), unpack_range(green), unpack_range(blue)}};
    if (!ranges.are_valid(255)) {
        report(status, Status::bad_parameter);
        return nullptr;
    }
    return keep_channels({dib, {x, y, width, height}, check_rect_24_32}, ranges, status);
}

HGLOBAL WINAPI Dib24FilterEx(HGLOBAL dib, int32_t x, int32_t y, int32_t width, int32_t height,
                             uint32_t range0, uint32_t range1, uint32_t range2, uint32_t range3,
                             uint32_t range4, int32_t* status) {
    const Record record({range0, range1, range2, range3, range4});
    if (!record.is_valid()) {
        report(status, Status::bad_parameter);
        return nullptr;
    }
    const RectOperation operation(dib, {x, y, width, height}, check_rect_24_32);
    if (record.flags == rgb_each)
        return keep_channels(operation, record.ranges, status);
    return keep_pixels(operation, record, status);
}
