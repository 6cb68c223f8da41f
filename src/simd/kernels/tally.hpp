// How often each value stands in the channels of pixels.
#pragma once

#include "simd/kernels/loops.hpp"

namespace kirvo {
namespace {

// A counter in memory takes a byte a cycle. Here a vector holds one bit of many bytes: ANDs of such
// vectors say which bytes are a value, and the bits of these are counted.
template<typename V>
struct TallyKernel {
    using Register = typename V::Register;
    static constexpr size_t in_group = 8 * V::size, groups = tally_pixels / in_group;
    // The bytes of each group, in some order, whose lower or upper four bits make each number.
    struct Nibbles {
        Register lower[16][groups], upper[16][groups];
    };

    // Bits whose number lacks that of distance, for those of the vector so far behind that have it.
    template<int distance>
    static void exchange_bits(Register (&v)[8], int lower) {
#pragma GCC unroll 8
        for (size_t i = 0; i < 8; ++i) {
            if ((i & distance) != 0)
                continue;
            Register &a = v[i], &b = v[i + distance];
            const Register differs = V::differing(V::template shift_right16<distance>(a), b);
            const Register moves = V::both(differs, V::all8(lower));
            a = V::differing(a, V::template shift_left16<distance>(moves));
            b = V::differing(b, moves);
        }
    }
    static void combine(Register (&to)[16][groups], size_t k, const Register* bits) {
#pragma GCC unroll 16
        for (size_t i = 0; i < 16; ++i) {
            const auto is = [&](size_t bit) {
                return V::differing(bits[bit], V::all8((i >> bit & 1) != 0 ? 0 : 0xFF));
            };
            to[i][k] = V::both(V::both(is(0), is(1)), V::both(is(2), is(3)));
        }
    }
    static void split(Nibbles& to, size_t k, const uint8_t* bytes) {
        Register v[8];
#pragma GCC unroll 8
        for (size_t i = 0; i < 8; ++i)
            v[i] = V::load(bytes + V::size * i);
        exchange_bits<4>(v, 0x0F), exchange_bits<2>(v, 0x33), exchange_bits<1>(v, 0x55);
        combine(to.lower, k, v), combine(to.upper, k, v + 4);
    }

    static void count(uint32_t* counts, const Nibbles& of, const uint8_t* next) {
        constexpr size_t part = tally_pixels / 16;
        const auto pairs = [](Register a, Register b) {
            return V::add32(V::even32(a, b), V::odd32(a, b));
        };
        for (size_t upper = 0; upper < 16; ++upper, counts += 16, next += part) {
            for (size_t at = 0; at < part; at += line_bytes)
                __builtin_prefetch(next + at);
            Register totals[4]; // of four numbers each, in each 16 bytes
            for (size_t q = 0; q < 4; ++q) {
                Register sums[4] = {};
#pragma GCC unroll 8
                for (size_t k = 0; k < groups; ++k)
#pragma GCC unroll 4
                    for (size_t i = 0; i < 4; ++i) {
                        const Register where = V::both(of.lower[4 * q + i][k], of.upper[upper][k]);
                        sums[i] = V::add32(sums[i], V::bits32(where));
                    }
                totals[q] = pairs(pairs(sums[0], sums[1]), pairs(sums[2], sums[3]));
            }
            const Register low = V::sums_of_parts(totals[0], totals[1]);
            const Register all = V::sums_of_parts(low, V::sums_of_parts(totals[2], totals[3]));
            V::store(counts, V::add32(V::load(counts), all));
        }
    }

    static void tally(uint32_t (*counts)[256], const uint8_t* bgr, const uint8_t* next) {
        alignas(V::size) uint8_t channels[3][tally_pixels];
        for (size_t i = 0; i < tally_pixels; i += V::size) {
            const typename V::Planes p = V::load_planes(bgr + 3 * i);
            V::store(channels[0] + i, p.blue);
            V::store(channels[1] + i, p.green);
            V::store(channels[2] + i, p.red);
        }
        for (size_t c = 0; c < 3; ++c) {
            Nibbles nibbles;
            for (size_t k = 0; k < groups; ++k)
                split(nibbles, k, channels[c] + in_group * k);
            count(counts[c], nibbles, next + tally_pixels * c);
        }
    }
};

// Where one operation counts bits.
template<typename V>
constexpr auto tally_of() -> decltype(Kernels::tally) {
    if constexpr (requires { V::bits32(V::zero()); })
        return TallyKernel<V>::tally;
    return nullptr;
}

} // namespace
} // namespace kirvo
