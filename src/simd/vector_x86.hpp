// What the wrappers of all x86 levels have in common: operations whose names differ in a prefix
// only. A level includes this inside its own namespace, with KIRVO_REGISTER the type of its vectors
// and KIRVO_MM(operation) the intrinsic of that width.
//
// Numbers at the end of a name are the bits of a lane. Operations that pair, widen or narrow work
// within each 16 bytes, as the processor does; what is widened low and high comes back in order
// when it is narrowed again.

struct VectorX86 {
    using Register = KIRVO_REGISTER;
    using Floats = decltype(KIRVO_MM(setzero_ps)());
    static constexpr size_t size = sizeof(Register); // bytes

    // 16-bit numbers made of the two halves of a vector of bytes.
    struct Halves {
        Register low, high;
    };
    // The channels of `size` 24-bit pixels.
    struct Planes {
        Register blue, green, red;
    };

    // A memcpy would not do: the compiler moves 64 bytes in parts of 16.
    using Anywhere [[gnu::aligned(1), gnu::may_alias]] = Register;
    static Register load(const void* from) { return *static_cast<const Anywhere*>(from); }
    // A value of which the compiler knows nothing. It would multiply by a known one with shifts and
    // sums, which take longer.
    static Register opaque(Register v) {
        __asm__("" : "+v"(v));
        return v;
    }
    // For more than one use: the compiler would load for each of them, often across two lines of the
    // cache.
    static Register load_once(const void* from) { return opaque(load(from)); }
    static void store(void* to, Register v) { *static_cast<Anywhere*>(to) = v; }
    // Runs of pixels: see vector_sse2.hpp.
    static Register load_run(const uint8_t* from) { return load(from); }
    static void store_run(uint8_t* to, Register v) { store(to, v); }
    // Past the caches, to a multiple of the size.
    static void stream(uint8_t* to, Register v) {
        KIRVO_MM(stream_ps)(reinterpret_cast<float*>(to), reinterpret_cast<Floats>(v));
    }
    static void end_stream() { _mm_sfence(); }
    static Register zero() { return Register{}; }
    static Register either(Register a, Register b) { return a | b; }
    static Register both(Register a, Register b) { return a & b; }
    static Register but_not(Register a, Register b) { return a & ~b; }
    static Register differing(Register a, Register b) { return a ^ b; }

    static Register all8(int value) { return KIRVO_MM(set1_epi8)(static_cast<char>(value)); }
    static Register add8(Register a, Register b) { return KIRVO_MM(add_epi8)(a, b); }
    static Register add8_to_255(Register a, Register b) { return KIRVO_MM(adds_epu8)(a, b); }
    static Register sub8(Register a, Register b) { return KIRVO_MM(sub_epi8)(a, b); }
    static Register sub8_to_0(Register a, Register b) { return KIRVO_MM(subs_epu8)(a, b); }
    static Register average8(Register a, Register b) { return KIRVO_MM(avg_epu8)(a, b); } // up
    static Register max8(Register a, Register b) { return KIRVO_MM(max_epu8)(a, b); }
    static Register min8(Register a, Register b) { return KIRVO_MM(min_epu8)(a, b); }
    static Register zip_low8(Register a, Register b) { return KIRVO_MM(unpacklo_epi8)(a, b); }
    static Register zip_high8(Register a, Register b) { return KIRVO_MM(unpackhi_epi8)(a, b); }
    static Register widen_low8(Register a) { return zip_low8(a, zero()); }
    static Register widen_high8(Register a) { return zip_high8(a, zero()); }
    // From signed 16-bit numbers, clamped to 0..255 or to -128..127.
    static Register narrow16(Register low, Register high) {
        return KIRVO_MM(packus_epi16)(low, high);
    }
    static Register narrow16_signed(Register low, Register high) {
        return KIRVO_MM(packs_epi16)(low, high);
    }

    static Register all16(int value) { return KIRVO_MM(set1_epi16)(static_cast<short>(value)); }
    static Register add16(Register a, Register b) { return KIRVO_MM(add_epi16)(a, b); }
    static Register sub16(Register a, Register b) { return KIRVO_MM(sub_epi16)(a, b); }
    static Register max16(Register a, Register b) { return KIRVO_MM(max_epi16)(a, b); } // signed
    static Register min16(Register a, Register b) { return KIRVO_MM(min_epi16)(a, b); }
    static Register multiply16(Register a, Register b) { return KIRVO_MM(mullo_epi16)(a, b); }
    // a * b >> 16, unsigned and signed.
    static Register multiply_high16(Register a, Register b) { return KIRVO_MM(mulhi_epu16)(a, b); }
    static Register multiply_high16_signed(Register a, Register b) {
        return KIRVO_MM(mulhi_epi16)(a, b);
    }
    KIRVO_SHIFT(shift_left16, KIRVO_MM(slli_epi16))
    KIRVO_SHIFT(shift_right16, KIRVO_MM(srli_epi16))
    static Register shift_right16(Register a, int count) {
        return KIRVO_MM(srl_epi16)(a, _mm_cvtsi32_si128(count));
    }
    KIRVO_SHIFT(shift_right16_signed, KIRVO_MM(srai_epi16))
    static Register zip_low16(Register a, Register b) { return KIRVO_MM(unpacklo_epi16)(a, b); }
    static Register zip_high16(Register a, Register b) { return KIRVO_MM(unpackhi_epi16)(a, b); }
    static Register widen_low16(Register a) { return zip_low16(a, zero()); }
    static Register widen_high16(Register a) { return zip_high16(a, zero()); }
    // The even, or the odd, words of the two vectors.
    static Register even32(Register a, Register b) { return shuffled32<0x88>(a, b); }
    static Register odd32(Register a, Register b) { return shuffled32<0xDD>(a, b); }
    // From signed 32-bit numbers, clamped.
    static Register narrow32(Register low, Register high) {
        return KIRVO_MM(packs_epi32)(low, high);
    }

    static Register all32(int value) { return KIRVO_MM(set1_epi32)(value); }
    // Two 16-bit numbers in each 32 bits.
    static Register all_pairs16(int first, int second) {
        return all32((first & 0xFFFF) | static_cast<int>(static_cast<uint32_t>(second) << 16));
    }
    static Register add32(Register a, Register b) { return KIRVO_MM(add_epi32)(a, b); }
    static Register sub32(Register a, Register b) { return KIRVO_MM(sub_epi32)(a, b); }
    // Sums of the products of two signed 16-bit numbers side by side.
    static Register dot16(Register a, Register b) { return KIRVO_MM(madd_epi16)(a, b); }
    // A count of bits for all lanes.
    struct Count {
        __m128i bits;
        explicit Count(uint32_t count) : bits(_mm_cvtsi32_si128(static_cast<int>(count))) {}
    };
    static Register shift_left32(Register a, Count count) {
        return KIRVO_MM(sll_epi32)(a, count.bits);
    }
    static Register shift_right32(Register a, Count count) {
        return KIRVO_MM(srl_epi32)(a, count.bits);
    }
    KIRVO_SHIFT(shift_left32, KIRVO_MM(slli_epi32))
    KIRVO_SHIFT(shift_right32, KIRVO_MM(srli_epi32))
    KIRVO_SHIFT(shift_right32_signed, KIRVO_MM(srai_epi32))
    static Register zip_low32(Register a, Register b) { return KIRVO_MM(unpacklo_epi32)(a, b); }
    static Register zip_high32(Register a, Register b) { return KIRVO_MM(unpackhi_epi32)(a, b); }
    static Register zip_low64(Register a, Register b) { return KIRVO_MM(unpacklo_epi64)(a, b); }
    static Register zip_high64(Register a, Register b) { return KIRVO_MM(unpackhi_epi64)(a, b); }
    // a * factor >> count, of unsigned 32-bit numbers whose results fit 32 bits.
    static Register scaled32(Register a, uint32_t factor, int count) {
        const Register factors = all32(static_cast<int>(factor));
        const __m128i shift = _mm_cvtsi32_si128(count);
        const Register even = KIRVO_MM(srl_epi64)(KIRVO_MM(mul_epu32)(a, factors), shift);
        const Register odd =
            KIRVO_MM(srl_epi64)(KIRVO_MM(mul_epu32)(KIRVO_MM(srli_epi64)(a, 32), factors), shift);
        return even | KIRVO_MM(slli_epi64)(odd, 32);
    }

    // a / b for 16-bit lanes with 1 <= b <= 255 and a <= 60 * b: a + 1/2 over b stays 1/510 or more
    // away from whole numbers.
    static Register quotient16(Register a, Register b) {
        return narrow32(quotient32(widen_low16(a), widen_low16(b)),
                        quotient32(widen_high16(a), widen_high16(b)));
    }

    // A colour in every 24-bit pixel, from the start of each part of so many bytes.
    template<size_t part>
    static Register pixels_of(const uint8_t* bgr) {
        alignas(size) uint8_t bytes[size];
        for (size_t i = 0; i < size; ++i)
            bytes[i] = bgr[i % part % 3];
        return load(bytes);
    }

  protected:
    static __m128i load_16(const void* from) {
        return _mm_loadu_si128(static_cast<const __m128i*>(from));
    }
    static __m128i load_8(const void* from) {
        return _mm_loadl_epi64(static_cast<const __m128i*>(from));
    }
    static void store_16(void* to, __m128i v) { _mm_storeu_si128(static_cast<__m128i*>(to), v); }
    static void store_8(void* to, __m128i v) { _mm_storel_epi64(static_cast<__m128i*>(to), v); }

  private:
    template<int places>
    static Register shuffled32(Register a, Register b) {
        return reinterpret_cast<Register>(
            KIRVO_MM(shuffle_ps)(reinterpret_cast<Floats>(a), reinterpret_cast<Floats>(b), places));
    }
    static Register quotient32(Register a, Register b) {
        const auto dividend = KIRVO_MM(add_ps)(KIRVO_MM(cvtepi32_ps)(a), KIRVO_MM(set1_ps)(0.5f));
        return KIRVO_MM(cvttps_epi32)(KIRVO_MM(div_ps)(dividend, KIRVO_MM(cvtepi32_ps)(b)));
    }
};
