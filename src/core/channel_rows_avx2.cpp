// As with SSE2, but with a byte shuffle.
#include "core/channel_rows.hpp"

#include <immintrin.h>

namespace kirvo::avx2 {

namespace {

constexpr size_t step = 5;
constexpr size_t step_needs = 6;

__m128i load(const uint8_t* from) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
}

void store(uint8_t* to, __m128i bytes) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), bytes);
}

__m128i sources(ChannelOrder order) {
    alignas(16) uint8_t index[16];
    for (int i = 0; i < 15; ++i)
        index[i] = static_cast<uint8_t>(i - i % 3 + order.from[i % 3]);
    index[15] = 15;
    return _mm_load_si128(reinterpret_cast<const __m128i*>(index));
}

} // namespace

void reorder_row(uint8_t* to, const uint8_t* from, size_t count, ChannelOrder order) {
    if (count >= step_needs) {
        const __m128i shuffle = sources(order);
        __m128i bytes = load(from);
        for (; count >= step + step_needs; count -= step, to += 3 * step, from += 3 * step) {
            const __m128i next = load(from + 3 * step);
            store(to, _mm_shuffle_epi8(bytes, shuffle));
            bytes = next;
        }
        store(to, _mm_shuffle_epi8(bytes, shuffle));
        count -= step, to += 3 * step, from += 3 * step;
    }
    reorder_row_scalar(to, from, count, order);
}

} // namespace kirvo::avx2
