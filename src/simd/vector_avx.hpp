// What the wrappers of AVX2 and AVX-512 add to vector_x86.hpp alike; included like that one, with
// KIRVO_BROADCAST the intrinsic that repeats 16 bytes. It ends these names.

#include "simd/vector_x86.hpp"

struct VectorAvx : VectorX86 {
    static constexpr bool has_table = true;

    // 16 bytes in each 16 bytes of a vector.
    static Register repeated(__m128i v) { return KIRVO_BROADCAST(v); }
    static Register repeated(const void* from) {
        return repeated(_mm_loadu_si128(static_cast<const __m128i*>(from)));
    }
    // Within each 16 bytes; -1 gives 0.
    static Register shuffled8(Register v, Register places) {
        return KIRVO_MM(shuffle_epi8)(v, places);
    }

    static Register min16_unsigned(Register a, Register b) { return KIRVO_MM(min_epu16)(a, b); }
    static Register max32(Register a, Register b) { return KIRVO_MM(max_epi32)(a, b); }
    static Register magnitude16(Register a) { return KIRVO_MM(abs_epi16)(a); }
    // Sums of the products of unsigned and signed bytes side by side, below 2^15.
    static Register dot8(Register a, Register b) { return KIRVO_MM(maddubs_epi16)(a, b); }
    static Register pair_sums8(Register a) { return dot8(a, all8(1)); }
    static Register pair_sums8_signed(Register a) { return dot8(all8(1), a); }

    // Sums of three channels with weights, as 16-bit numbers.
    struct Weighted {
        Halves blue_green, red_green;

        explicit Weighted(const Planes& p)
            : blue_green{zip_low8(p.blue, p.green), zip_high8(p.blue, p.green)},
              red_green{zip_low8(p.red, p.green), zip_high8(p.red, p.green)} {}
        // Green's 150 would not do as a signed byte, nor half of it beside red's 77.
        Halves luminance() const { return weighted<29, 99, 77, 51>(); }
        template<int b, int g, int r>
        Halves sums() const {
            return weighted<b, g, r, 0>();
        }

      private:
        template<int blue, int green, int red, int more_green>
        Halves weighted() const {
            const Register by_bg = pairs8(blue, green), by_rg = pairs8(red, more_green);
            return {add16(dot8(blue_green.low, by_bg), dot8(red_green.low, by_rg)),
                    add16(dot8(blue_green.high, by_bg), dot8(red_green.high, by_rg))};
        }
        static Register pairs8(int a, int b) { return all16((a & 0xFF) | (b & 0xFF) << 8); }
    };
};

#undef KIRVO_REGISTER
#undef KIRVO_MM
#undef KIRVO_BROADCAST
