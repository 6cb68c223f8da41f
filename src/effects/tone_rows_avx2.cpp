#include "effects/planes_avx2.hpp"
#include "effects/tone_rows.hpp"
#include "effects/tone_vectors.hpp"

namespace kirvo::avx2 {

namespace {

// A table of 256 bytes as sixteen shuffles, one for each 16 levels. A shuffle gives 0 for a byte
// with its top bit set, and otherwise looks at its low four bits. Taking 16 away at each step,
// without wrapping round, sets that bit one step after the byte's own part of the table. So each
// byte meets the parts from the first of its half to its own, and each part holds the difference
// (xor) to the one before it.
struct Table {
    __m256i part[16];

    explicit Table(const Levels& levels) {
        for (int i = 0; i < 16; ++i)
            part[i] = _mm256_broadcastsi128_si256(
                _mm_loadu_si128(reinterpret_cast<const __m128i*>(levels.level + 16 * i)));
        for (int i = 15; i > 0; --i) {
            if (i != 8)
                part[i] = _mm256_xor_si256(part[i], part[i - 1]);
        }
    }
    __m256i operator[](__m256i bytes) const {
        const __m256i sixteen = _mm256_set1_epi8(16);
        __m256i low = bytes, high = _mm256_xor_si256(bytes, _mm256_set1_epi8(-128));
        __m256i mapped = _mm256_setzero_si256();
        for (int i = 0; i < 8; ++i) {
            mapped = _mm256_xor_si256(mapped, _mm256_shuffle_epi8(part[i], low));
            mapped = _mm256_xor_si256(mapped, _mm256_shuffle_epi8(part[i + 8], high));
            low = _mm256_subs_epi8(low, sixteen);
            high = _mm256_subs_epi8(high, sixteen);
        }
        return mapped;
    }
};

void map(uint8_t* to, const uint8_t* from, size_t bytes, const Levels& levels) {
    const Table table(levels);
    each_block<32>(to, from, bytes, [&](uint8_t* out, const uint8_t* in) {
        Planes::store_bytes(out, table[Planes::load_bytes(in)]);
    });
}

void map_channels(uint8_t* to, const uint8_t* from, size_t pixels, const ChannelLevels& levels) {
    const Table blue(levels.channel[0]), green(levels.channel[1]), red(levels.channel[2]);
    each_block<96>(to, from, 3 * pixels, [&](uint8_t* out, const uint8_t* in) {
        const Planes p = Planes::load(in);
        Planes{blue[p.blue], green[p.green], red[p.red]}.store(out);
    });
}

// Ten pixels a step, five in each half. The last byte of a half stays as it is: in the lower one
// the upper half overwrites it, in the upper one it belongs to the next step.
void permute(uint8_t* to, const uint8_t* from, size_t pixels, const ChannelOrder& order) {
    alignas(16) uint8_t places[16];
    for (int i = 0; i < 15; ++i) {
        const uint8_t source = order.from[i % 3];
        places[i] = source == no_byte ? 0x80 : static_cast<uint8_t>(i - i % 3 + source);
    }
    places[15] = 15;
    const __m128i shuffle = _mm_load_si128(reinterpret_cast<const __m128i*>(places));
    constexpr size_t step = 10, touched = 11;
    for (; pixels >= touched; pixels -= step, to += 3 * step, from += 3 * step) {
        const __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
        const __m128i high = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + 15));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm_shuffle_epi8(low, shuffle));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to + 15), _mm_shuffle_epi8(high, shuffle));
    }
    scalar_tone_rows.permute(to, from, pixels, order);
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

} // namespace kirvo::avx2
