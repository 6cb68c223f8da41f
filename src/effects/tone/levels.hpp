// Tables of 256 levels: what a point operation makes of each value of a channel.
#pragma once

#include "simd/kernel_types.hpp"

namespace kirvo {

// level * numerator / denominator, at most 255. Over 0, every level but 0 becomes 255.
Levels fraction_levels(int32_t numerator, int32_t denominator);

// level * factor, truncated, at most 255; factor >= 0, infinite ones included (0 stays 0).
Levels factor_levels(double factor);

// 255 * (level / 255)^gamma, truncated; gamma >= 0, infinite ones included. The same on every
// system: the power is rounded correctly, however the system's own pow rounds.
Levels gamma_levels(double gamma);

} // namespace kirvo
