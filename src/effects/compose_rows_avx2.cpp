#include "effects/compose_rows.hpp"

#include <immintrin.h>

namespace kirvo::avx2 {

namespace {

__m256i load(const uint8_t* from) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from));
}

void store(uint8_t* to, __m256i bytes) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), bytes);
}

struct Add {
    static __m256i apply(__m256i to, __m256i from) { return _mm256_adds_epu8(to, from); }
};

// The average of the processor rounds up.
struct Average {
    static __m256i apply(__m256i to, __m256i from) {
        const __m256i odd = _mm256_and_si256(_mm256_xor_si256(to, from), _mm256_set1_epi8(1));
        return _mm256_sub_epi8(_mm256_avg_epu8(to, from), odd);
    }
};

struct Subtract {
    static __m256i apply(__m256i to, __m256i from) { return _mm256_subs_epu8(to, from); }
};

template<typename Blend, ComposeRows::Bytes ComposeRows::*rest>
void blend(uint8_t* to, const uint8_t* from, size_t count) {
    size_t i = 0;
    for (; i + 32 <= count; i += 32)
        store(to + i, Blend::apply(load(to + i), load(from + i)));
    (compose_rows_scalar.*rest)(to + i, from + i, count - i);
}

// Five pixels in each half of a vector; the sixteenth byte of each half stays as it is. The next
// target is loaded before that byte is stored, since it would have to wait for the store.
__m256i load_fives(const uint8_t* from) {
    return _mm256_loadu2_m128i(reinterpret_cast<const __m128i*>(from + 15),
                               reinterpret_cast<const __m128i*>(from));
}

void replace(uint8_t* to, const uint8_t* from, size_t pixels, const uint8_t* key) {
    alignas(16) uint8_t keys[16];
    for (int i = 0; i < 16; ++i)
        keys[i] = key[i % 3];
    const __m256i wanted =
        _mm256_broadcastsi128_si256(_mm_load_si128(reinterpret_cast<const __m128i*>(keys)));
    const __m256i whole_pixels = _mm256_broadcastsi128_si256(
        _mm_setr_epi8(0, 0, 0, 3, 3, 3, 6, 6, 6, 9, 9, 9, 12, 12, 12, -1));
    const __m256i last_bytes = _mm256_slli_si256(_mm256_set1_epi8(-1), 15);
    __m256i target = pixels >= 21 ? load_fives(to) : _mm256_setzero_si256();
    for (; pixels >= 21; pixels -= 10, to += 30, from += 30) {
        const __m256i source = load_fives(from), next = load_fives(to + 30);
        const __m256i same = _mm256_cmpeq_epi8(source, wanted);
        const __m256i starts_key = _mm256_and_si256(
            same, _mm256_and_si256(_mm256_srli_si256(same, 1), _mm256_srli_si256(same, 2)));
        const __m256i keep =
            _mm256_or_si256(_mm256_shuffle_epi8(starts_key, whole_pixels), last_bytes);
        const __m256i result = _mm256_blendv_epi8(source, target, keep);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm256_castsi256_si128(result));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to + 15), _mm256_extracti128_si256(result, 1));
        target = next;
    }
    compose_rows_scalar.replace(to, from, pixels, key);
}

} // namespace

const ComposeRows compose_rows = {blend<Add, &ComposeRows::add>,
                                  blend<Average, &ComposeRows::average>,
                                  blend<Subtract, &ComposeRows::subtract>, replace};

} // namespace kirvo::avx2
