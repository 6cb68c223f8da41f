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
            each_block<3 * V::size>(to, from, 3 * pixels, [&](uint8_t* out, const uint8_t* in) {
                const Planes p = V::load_planes(in);
                V::store_planes(out, {blue[p.blue], green[p.green], red[p.red]});
            });
        } else {
            scalar::kernels.map_channels(to, from, pixels, levels);
        }
    }

    // The next run is loaded before this one is stored, since the bytes beyond the run's pixels are
    // stored as they came and belong to the next one.
    static void permute(uint8_t* to, const uint8_t* from, size_t pixels,
                        const ChannelOrder& order) {
        constexpr size_t step = V::run, bytes = 3 * step, touched = step + 1;
        if (pixels >= touched) {
            const typename V::Order ordered(order);
            Register v = V::load_run(from);
            for (; pixels >= step + touched; pixels -= step, to += bytes, from += bytes) {
                const Register next = V::load_run(from + bytes);
                V::store_run(to, ordered(v));
                v = next;
            }
            V::store_run(to, ordered(v));
            pixels -= step, to += bytes, from += bytes;
        }
        scalar::kernels.permute(to, from, pixels, order);
    }

    static void replace(uint8_t* to, const uint8_t* from, size_t pixels, const uint8_t* key) {
        constexpr size_t step = V::run, bytes = 3 * step;
        const Register keys = V::run_of(key);
        if (pixels > step) {
            Register target = V::load_run(to);
            for (; pixels > 2 * step; pixels -= step, to += bytes, from += bytes) {
                const Register source = V::load_run(from), next = V::load_run(to + bytes);
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
        each_block<3 * V::size>(to, from, 3 * pixels, [](uint8_t* out, const uint8_t* in) {
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

    struct Moves {
        const PixelMoves& moves;
        Register keep[3];

        explicit Moves(const PixelMoves& moves_) : moves(moves_) {
            for (int c = 0; c < 3; ++c)
                keep[c] = V::all32(static_cast<int>(moves.channel[c].keep));
        }
        Register one(Register words, int c) const {
            const FieldMove& move = moves.channel[c];
            return V::both(V::shift_left32(V::shift_right32(words, static_cast<int>(move.right)),
                                           static_cast<int>(move.left)),
                           keep[c]);
        }
        Register operator()(Register words) const {
            return V::either(V::either(one(words, 0), one(words, 1)), one(words, 2));
        }
    };

    template<int from_bytes, int to_bytes>
    static void convert(const uint8_t* from, uint8_t* to, size_t pixels, const PixelMoves& moves) {
        const Moves moved(moves);
        constexpr size_t step = V::words;
        uint8_t last_in[step * from_bytes], last_out[step * to_bytes];
        for (; pixels != 0; from += step * from_bytes, to += step * to_bytes) {
            const bool whole = pixels >= step;
            if (!whole)
                std::memcpy(last_in, from, pixels * from_bytes);
            const Register words = V::template load_row<from_bytes>(whole ? from : last_in);
            V::template store_row<to_bytes>(whole ? to : last_out, moved(words));
            if (!whole) {
                std::memcpy(to, last_out, pixels * to_bytes);
                break;
            }
            pixels -= step;
        }
    }
};

} // namespace
} // namespace kirvo
