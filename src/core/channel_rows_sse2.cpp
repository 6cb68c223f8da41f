// Five pixels a step, out of 16 bytes: the last one is stored as it came and belongs to the next
// step, whose bytes are loaded before the store so that a row can be worked in place.
#include "core/channel_rows.hpp"

#include <emmintrin.h>

namespace kirvo::sse2 {

namespace {

constexpr size_t step = 5;
constexpr size_t step_needs = 6; // pixels that 16 bytes lie in

__m128i load(const uint8_t* from) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
}

void store(uint8_t* to, __m128i bytes) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), bytes);
}

// Without a byte shuffle: each byte comes from one to five places of the same vector, shifted by
// -2 to 2 bytes and masked.
class Reorder {
  public:
    explicit Reorder(ChannelOrder order) {
        alignas(16) uint8_t masks[5][16] = {};
        masks[2][15] = 0xFF;
        for (int i = 0; i < 15; ++i)
            masks[order.from[i % 3] - i % 3 + 2][i] = 0xFF;
        for (int i = 0; i < 5; ++i)
            from_[i] = _mm_load_si128(reinterpret_cast<const __m128i*>(masks[i]));
    }
    __m128i operator()(__m128i bytes) const {
        const __m128i before = _mm_or_si128(_mm_and_si128(_mm_slli_si128(bytes, 2), from_[0]),
                                            _mm_and_si128(_mm_slli_si128(bytes, 1), from_[1]));
        const __m128i behind = _mm_or_si128(_mm_and_si128(_mm_srli_si128(bytes, 1), from_[3]),
                                            _mm_and_si128(_mm_srli_si128(bytes, 2), from_[4]));
        return _mm_or_si128(_mm_or_si128(before, behind), _mm_and_si128(bytes, from_[2]));
    }

  private:
    __m128i from_[5];
};

} // namespace

void reorder_row(uint8_t* to, const uint8_t* from, size_t count, ChannelOrder order) {
    if (count >= step_needs) {
        const Reorder reorder(order);
        __m128i bytes = load(from);
        for (; count >= step + step_needs; count -= step, to += 3 * step, from += 3 * step) {
            const __m128i next = load(from + 3 * step);
            store(to, reorder(bytes));
            bytes = next;
        }
        store(to, reorder(bytes));
        count -= step, to += 3 * step, from += 3 * step;
    }
    reorder_row_scalar(to, from, count, order);
}

} // namespace kirvo::sse2
