#include "effects/compose_rows.hpp"

#include <emmintrin.h>

namespace kirvo::sse2 {

namespace {

__m128i load(const uint8_t* from) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
}

void store(uint8_t* to, __m128i bytes) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), bytes);
}

struct Add {
    static __m128i apply(__m128i to, __m128i from) { return _mm_adds_epu8(to, from); }
};

// The average of the processor rounds up.
struct Average {
    static __m128i apply(__m128i to, __m128i from) {
        const __m128i odd = _mm_and_si128(_mm_xor_si128(to, from), _mm_set1_epi8(1));
        return _mm_sub_epi8(_mm_avg_epu8(to, from), odd);
    }
};

struct Subtract {
    static __m128i apply(__m128i to, __m128i from) { return _mm_subs_epu8(to, from); }
};

template<typename Blend, ComposeRows::Bytes ComposeRows::*rest>
void blend(uint8_t* to, const uint8_t* from, size_t count) {
    size_t i = 0;
    for (; i + 16 <= count; i += 16)
        store(to + i, Blend::apply(load(to + i), load(from + i)));
    (compose_rows_scalar.*rest)(to + i, from + i, count - i);
}

// Five pixels a step; the sixteenth byte of each vector stays as it is. The next target is loaded
// before that byte is stored, since it would have to wait for the store.
void replace(uint8_t* to, const uint8_t* from, size_t pixels, const uint8_t* key) {
    alignas(16) uint8_t keys[16], starts[16];
    for (int i = 0; i < 16; ++i) {
        keys[i] = key[i % 3];
        starts[i] = i % 3 == 0 && i < 15 ? 0xFF : 0;
    }
    const __m128i wanted = _mm_load_si128(reinterpret_cast<const __m128i*>(keys));
    const __m128i first_bytes = _mm_load_si128(reinterpret_cast<const __m128i*>(starts));
    const __m128i last_byte = _mm_slli_si128(_mm_set1_epi8(-1), 15);
    __m128i target = pixels >= 11 ? load(to) : _mm_setzero_si128();
    for (; pixels >= 11; pixels -= 5, to += 15, from += 15) {
        const __m128i source = load(from), next = load(to + 15);
        const __m128i same = _mm_cmpeq_epi8(source, wanted);
        const __m128i starts_key =
            _mm_and_si128(_mm_and_si128(same, first_bytes),
                          _mm_and_si128(_mm_srli_si128(same, 1), _mm_srli_si128(same, 2)));
        const __m128i keep = _mm_or_si128(
            _mm_or_si128(starts_key, last_byte),
            _mm_or_si128(_mm_slli_si128(starts_key, 1), _mm_slli_si128(starts_key, 2)));
        store(to, _mm_or_si128(_mm_and_si128(keep, target), _mm_andnot_si128(keep, source)));
        target = next;
    }
    compose_rows_scalar.replace(to, from, pixels, key);
}

} // namespace

const ComposeRows compose_rows = {blend<Add, &ComposeRows::add>,
                                  blend<Average, &ComposeRows::average>,
                                  blend<Subtract, &ComposeRows::subtract>, replace};

} // namespace kirvo::sse2
