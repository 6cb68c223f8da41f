#include "effects/tone_rows.hpp"

#include "simd/cpu.hpp"

#include <algorithm>
#include <cstring>

namespace kirvo {

namespace {

void scale(uint8_t* to, const uint8_t* from, size_t bytes, int32_t factor, int32_t offset) {
    for (size_t i = 0; i < bytes; ++i)
        to[i] = static_cast<uint8_t>(std::clamp(from[i] * factor / 100 + offset, 0, 255));
}

void map(uint8_t* to, const uint8_t* from, size_t bytes, const Levels& levels) {
    for (size_t i = 0; i < bytes; ++i)
        to[i] = levels.level[from[i]];
}

void map_channels(uint8_t* to, const uint8_t* from, size_t pixels, const ChannelLevels& levels) {
    for (; pixels != 0; --pixels, to += 3, from += 3) {
        for (int c = 0; c < 3; ++c)
            to[c] = levels.channel[c].level[from[c]];
    }
}

void permute(uint8_t* to, const uint8_t* from, size_t pixels, const ChannelOrder& order) {
    for (; pixels != 0; --pixels, to += 3, from += 3) {
        const uint8_t source[4] = {from[0], from[1], from[2], 0};
        for (int i = 0; i < 3; ++i)
            to[i] = source[order.from[i]];
    }
}

void grey(uint8_t* to, const uint8_t* from, size_t pixels) {
    for (; pixels != 0; --pixels, to += 3, from += 3) {
        const int32_t y = (77 * from[2] + 150 * from[1] + 29 * from[0] + 128) / 256;
        to[0] = to[1] = to[2] = static_cast<uint8_t>(y);
    }
}

void flip(uint8_t* to, const uint8_t* from, size_t bytes, uint32_t pattern) {
    for (; bytes >= sizeof pattern; bytes -= sizeof pattern) {
        uint32_t word;
        std::memcpy(&word, from, sizeof word);
        word ^= pattern;
        std::memcpy(to, &word, sizeof word);
        to += sizeof word;
        from += sizeof word;
    }
    for (size_t i = 0; i < bytes; ++i)
        to[i] = static_cast<uint8_t>(from[i] ^ pattern >> 8 * i);
}

} // namespace

const ToneRows scalar_tone_rows = {scale, map, map_channels, permute, grey, flip};

ToneRows tone_rows() {
    ToneRows rows = scalar_tone_rows;
    if (cpu_level() >= CpuLevel::sse2)
        sse2::improve(rows);
    if (cpu_level() >= CpuLevel::avx2)
        avx2::improve(rows);
    if (cpu_has_vbmi())
        avx512::improve(rows);
    return rows;
}

} // namespace kirvo
