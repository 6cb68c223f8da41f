#include "effects/tone/levels.hpp"

#include <algorithm>

namespace kirvo {

namespace {

template<typename F>
Levels levels_from(const F& level) {
    Levels levels;
    for (int32_t i = 0; i < 256; ++i)
        levels.level[i] = static_cast<uint8_t>(level(i));
    return levels;
}

} // namespace

Levels fraction_levels(int32_t numerator, int32_t denominator) {
    return levels_from([=](int32_t i) {
        if (denominator == 0)
            return i == 0 ? 0 : 255;
        return std::min(i * numerator / denominator, 255);
    });
}

Levels factor_levels(double factor) {
    const double enough = std::min(factor, 255.0); // 0 times infinity would not be a number
    return levels_from(
        [=](int32_t i) { return static_cast<int32_t>(std::min(i * enough, 255.0)); });
}

} // namespace kirvo
