// Rows of 24-bit pixels, and of pixels from one depth to another.
#pragma once

#include "simd/kernels/loops.hpp"

namespace kirvo {
namespace {

template<typename V>
struct PixelKernels {
    using Register = typename V::Register;
    using Planes = typename V::Planes;
    using Halves = typename V::Halves;

    static void map_channels(uint8_t* to, const uint8_t* from, size_t pixels,
                             const ChannelLevels& levels) {
        if constexpr (V::has_table) {
            using Table = typename V::Table;
            const Table blue(levels.channel[0]), green(levels.channel[1]), red(levels.channel[2]);
            each_block<3, V::size>(to, from, pixels, [&](uint8_t* out, const uint8_t* in) {
                const Planes p = V::load_planes(in);
                V::store_planes(out, {blue[p.blue], green[p.green], red[p.red]});
            });
        } else {
            scalar::kernels.map_channels(to, from, pixels, levels);
        }
    }

    static void permute(uint8_t* to, const uint8_t* from, size_t pixels,
                        const ChannelOrder& order) {
        each_block<3, V::size>(to, from, pixels, [&](uint8_t* out, const uint8_t* in) {
            const Planes p = V::load_planes(in);
            const Register source[] = {p.blue, p.green, p.red};
            V::store_planes(out,
                            {source[order.from[0]], source[order.from[1]], source[order.from[2]]});
        });
    }

    // The next run is loaded before this one is stored, since the bytes beyond the run's pixels are
    // stored as they came and belong to the next one.
    static void replace(uint8_t* to, const uint8_t* from, size_t pixels, const uint8_t* key) {
        constexpr size_t step = V::run, bytes = 3 * step;
        const Register keys = V::run_of(key);
        if (pixels > step) {
            Register target = V::load_run(to);
            for (; pixels > 2 * step; pixels -= step, to += bytes, from += bytes) {
                const Register source = V::opaque(V::load_run(from));
                const Register next = V::load_run(to + bytes);
                V::store_run(to, V::select(V::equal_pixels(source, keys), target, source));
                target = next;
            }
        }
        scalar::kernels.replace(to, from, pixels, key);
    }

    static Register luminance_of(const Planes& p) {
        const Halves sums = typename V::Weighted(p).luminance();
        const Register half = V::all16(128);
        return V::narrow16(V::template shift_right16<8>(V::add16(sums.low, half)),
                           V::template shift_right16<8>(V::add16(sums.high, half)));
    }

    static void grey(uint8_t* to, const uint8_t* from, size_t pixels) {
        each_block<3, V::size>(to, from, pixels, [](uint8_t* out, const uint8_t* in) {
            const Register y = luminance_of(V::load_planes(in));
            V::store_planes(out, {y, y, y});
        });
    }

    static void luminance(uint8_t* to, const uint8_t* bgr, size_t pixels) {
        const auto block = [&](size_t i) {
            V::store(to + i, luminance_of(V::load_planes(bgr + 3 * i)));
        };
        if (!each_step<V::size>(pixels, block))
            scalar::kernels.luminance(to, bgr, pixels);
    }

    // By one operation where the level rotates words: what comes round is not kept.
    struct Move {
        typename V::Count right, left;
        Register turn, keep;

        explicit Move(const FieldMove& move)
            : right(move.right), left(move.left), turn(all(move.left - move.right)),
              keep(all(move.keep & ~0u >> move.right << move.left)) {}
        Register operator()(Register words) const {
            if constexpr (requires { V::rotated32(words, turn); })
                return V::both(V::rotated32(words, turn), keep);
            else
                return V::both(V::shift_left32(V::shift_right32(words, right), left), keep);
        }
        static Register all(uint32_t word) { return V::all32(static_cast<int>(word)); }
    };
    template<int from_bytes, int to_bytes, Kernels::ConvertPixels Kernels::*few>
    static void convert(const uint8_t* from, uint8_t* to, size_t pixels, const PixelMoves& moves) {
        const Move red(moves.channel[0]), green(moves.channel[1]), blue(moves.channel[2]);
        const Register all = V::either(V::either(red.keep, green.keep), blue.keep);
        const auto kept = [=](Register words) { return V::both(words, all); };
        const auto moved = [=](Register words) {
            return V::either(V::either(red(words), green(words)), blue(words));
        };
        const bool stay = from_bytes > 2 && to_bytes > 2 && moves.stay();
        if (!(stay ? convert_by<from_bytes, to_bytes>(from, to, pixels, kept)
                   : convert_by<from_bytes, to_bytes>(from, to, pixels, moved)))
            (scalar::kernels.*few)(from, to, pixels, moves);
    }

    // A level whose vectors are whole lines turns three of 24-bit pixels into four of words, and back but
    // in 32-bit code, whose eight vectors hold two of words and what moves them.
    template<int from_bytes, int to_bytes, typename F>
    [[gnu::always_inline]] static bool convert_by(const uint8_t* from, uint8_t* to, size_t pixels,
                                                  const F& moved) {
        constexpr bool whole_24 = from_bytes == 3 || (to_bytes == 3 && sizeof(void*) == 8);
        constexpr size_t vectors = V::size == line_bytes && whole_24 ? 4 : 2;
        const auto block = [&](size_t i) {
            Register words[vectors];
            if constexpr (from_bytes == 3 && vectors == 4)
                V::load_rows24(words, from + 3 * i);
#pragma GCC unroll 4
            for (size_t k = 0; k < vectors; ++k) {
                if constexpr (from_bytes != 3 || vectors != 4)
                    words[k] =
                        V::template load_row<from_bytes>(from + from_bytes * (i + k * V::words));
                words[k] = moved(words[k]);
            }
            if constexpr (to_bytes == 3 && vectors == 4)
                return V::store_rows24(to + 3 * i, words);
#pragma GCC unroll 4
            for (size_t k = 0; k < vectors; ++k) {
                uint8_t* const at = to + to_bytes * (i + k * V::words);
                if constexpr (to_bytes != 2)
                    V::template store_row<to_bytes>(at, words[k]);
                else if (k % 2 == 0)
                    V::store(at, V::low_words(words[k], words[k + 1]));
            }
        };
        return each_aligned_step<vectors * V::words, to_bytes>(to, pixels, block);
    }
};

} // namespace
} // namespace kirvo
