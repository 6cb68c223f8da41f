// Tables of 256 levels: what a point operation makes of each value of a channel.
#pragma once

#include <cstdint>

namespace kirvo {

struct Levels {
    uint8_t level[256];
};

// One table a channel, in the order of a 24-bit pixel's bytes.
struct ChannelLevels {
    Levels channel[3];
};

// level * numerator / denominator, at most 255. Over 0, every level but 0 becomes 255.
Levels fraction_levels(int32_t numerator, int32_t denominator);

// level * factor, truncated, at most 255; factor >= 0, infinite ones included (0 stays 0).
Levels factor_levels(double factor);

// 255 * (level / 255)^gamma, truncated; gamma >= 0, infinite ones included. The same on every
// system: the power is rounded correctly, however the system's own pow rounds.
Levels gamma_levels(double gamma);

} // namespace kirvo
