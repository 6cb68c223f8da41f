#include "effects/planes_avx512.hpp"
#include "effects/tone_rows.hpp"
#include "effects/tone_vectors.hpp"

namespace kirvo::avx512 {

namespace {

// A table of 256 bytes in four registers: two permutes of 128 bytes each, and the byte's top bit
// chooses.
struct Table {
    __m512i part[4];

    explicit Table(const Levels& levels) {
        for (int i = 0; i < 4; ++i)
            part[i] = Planes::load_bytes(levels.level + 64 * i);
    }
    __m512i operator[](__m512i bytes) const {
        const __m512i low = _mm512_permutex2var_epi8(part[0], bytes, part[1]);
        const __m512i high = _mm512_permutex2var_epi8(part[2], bytes, part[3]);
        return _mm512_mask_blend_epi8(_mm512_movepi8_mask(bytes), low, high);
    }
};

void map(uint8_t* to, const uint8_t* from, size_t bytes, const Levels& levels) {
    const Table table(levels);
    each_block<64>(to, from, bytes, [&](uint8_t* out, const uint8_t* in) {
        Planes::store_bytes(out, table[Planes::load_bytes(in)]);
    });
}

void map_channels(uint8_t* to, const uint8_t* from, size_t pixels, const ChannelLevels& levels) {
    const Table table[] = {Table(levels.channel[0]), Table(levels.channel[1]),
                           Table(levels.channel[2])};
    constexpr __mmask64 every_third = 0x9249249249249249;
    each_block<192>(to, from, 3 * pixels, [&](uint8_t* out, const uint8_t* in) {
        for (int i = 0; i < 3; ++i) { // the channel of byte 0 is i, that of byte 1 the next
            const __m512i v = Planes::load_bytes(in + 64 * i);
            const __m512i two =
                _mm512_mask_blend_epi8(every_third << 1, table[i][v], table[(i + 1) % 3][v]);
            Planes::store_bytes(
                out + 64 * i, _mm512_mask_blend_epi8(every_third << 2, two, table[(i + 2) % 3][v]));
        }
    });
}

// 21 pixels a step.
void permute(uint8_t* to, const uint8_t* from, size_t pixels, const ChannelOrder& order) {
    alignas(64) uint8_t places[64] = {};
    __mmask64 kept = 0;
    for (int i = 0; i < 63; ++i) {
        const uint8_t source = order.from[i % 3];
        places[i] = static_cast<uint8_t>(i - i % 3 + source);
        if (source != no_byte)
            kept |= __mmask64{1} << i;
    }
    const __m512i shuffle = _mm512_load_si512(places);
    for (size_t bytes = 3 * pixels; bytes != 0;) {
        const size_t step = bytes < 63 ? bytes : 63;
        const __mmask64 touched = ~__mmask64{0} >> (64 - step);
        const __m512i v = _mm512_maskz_loadu_epi8(touched, from);
        _mm512_mask_storeu_epi8(to, touched, _mm512_maskz_permutexvar_epi8(kept, shuffle, v));
        bytes -= step;
        to += step;
        from += step;
    }
}

} // namespace

void improve(ToneRows& rows) {
    rows.scale = ToneVectors<Planes>::scale;
    rows.grey = ToneVectors<Planes>::grey;
    rows.flip = ToneVectors<Planes>::flip;
    rows.map = map;
    rows.map_channels = map_channels;
    rows.permute = permute;
}

} // namespace kirvo::avx512
