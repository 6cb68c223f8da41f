// Hue, saturation and value in doubles, written out.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

namespace kirvo_test {

struct Hue {
    int hue, saturation, value;
};

inline Hue hue_of(int red, int green, int blue) {
    const int value = std::max({red, green, blue});
    const int saturation = value - std::min({red, green, blue});
    if (saturation == 0)
        return {0, 0, value};
    const double sixths = value == red     ? double(green - blue) / saturation
                          : value == green ? double(blue - red) / saturation + 2.0
                                           : double(red - green) / saturation + 4.0;
    const int hue = static_cast<int>(sixths * 60.0);
    return {hue < 0 ? hue + 360 : hue, saturation, value};
}

inline void paint(uint8_t* pixel, const Hue& h) {
    const int part = static_cast<int>((h.hue % 60) / 60.0 * h.saturation);
    const int least = h.value - h.saturation;
    const int up = least + part, down = h.value - part, most = h.value;
    const int colours[6][3] = {{least, up, most},   {least, most, down}, {up, most, least},
                               {most, down, least}, {most, least, up},   {down, least, most}};
    for (int c = 0; c < 3; ++c)
        pixel[c] = static_cast<uint8_t>(colours[h.hue / 60][c]);
}

// Every saturation with every position of the middle channel, in every order of the channels, on
// black and as light as possible.
inline std::vector<uint8_t> all_hues() {
    std::vector<uint8_t> pixels;
    for (int saturation = 0; saturation < 256; ++saturation) {
        for (int middle = 0; middle <= saturation; ++middle) {
            for (const int least : {0, 255 - saturation}) {
                uint8_t c[3] = {static_cast<uint8_t>(least), static_cast<uint8_t>(least + middle),
                                static_cast<uint8_t>(least + saturation)};
                do
                    pixels.insert(pixels.end(), c, c + 3);
                while (std::next_permutation(c, c + 3));
            }
        }
    }
    return pixels;
}

} // namespace kirvo_test
