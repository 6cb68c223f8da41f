// Rows of pixels from one depth to another.
#include "kernels/cases.hpp"

#include <algorithm>
#include <cstring>

using namespace kirvo;

namespace kirvo_test {

namespace {

uint32_t low_bits(size_t bytes) { return static_cast<uint32_t>((uint64_t{1} << 8 * bytes) - 1); }

// A field that moves some bits of the source's pixel to bits that the result's pixel has.
FieldMove any_move(Random& random, size_t from_bytes, size_t to_bytes) {
    const int32_t left = random.between(-31, 31);
    FieldMove move = {static_cast<uint32_t>(left < 0 ? -left : 0),
                      static_cast<uint32_t>(left > 0 ? left : 0), 0};
    const uint32_t reached = low_bits(from_bytes) >> move.right << move.left;
    move.keep = reached & low_bits(to_bytes) & (random.once_in(3) ? ~0u : random.next());
    return move;
}

// As between the usual masks: channels of 5, 6 or 8 bits, side by side in either order.
PixelMoves usual_moves(Random& random, size_t from_bytes, size_t to_bytes) {
    struct Field {
        int32_t lowest, bits;
    };
    static constexpr Field of16[2][3] = {{{0, 5}, {5, 5}, {10, 5}}, {{0, 5}, {5, 6}, {11, 5}}};
    static constexpr Field of24[3] = {{0, 8}, {8, 8}, {16, 8}};
    const auto fields = [&](size_t bytes) -> const Field(&)[3] {
        return bytes == 2 ? of16[random.between(0, 1)] : of24;
    };
    const auto &from = fields(from_bytes), &to = fields(to_bytes);
    const bool reversed = from_bytes + to_bytes == 7 && random.once_in(3);
    PixelMoves moves;
    for (int c = 0; c < 3; ++c) {
        const Field &source = from[c], &target = to[reversed ? 2 - c : c];
        // The highest bits meet.
        const int32_t left = target.lowest + target.bits - source.lowest - source.bits;
        const int32_t bits = std::min(source.bits, target.bits);
        moves.channel[c] = {static_cast<uint32_t>(left < 0 ? -left : 0),
                            static_cast<uint32_t>(left > 0 ? left : 0),
                            low_bits(4) >> (32 - bits) << (target.lowest + target.bits - bits)};
    }
    return moves;
}

// Bit by bit.
template<size_t from_bytes, size_t to_bytes>
void convert_plainly(const uint8_t* from, uint8_t* to, size_t pixels, const PixelMoves& moves) {
    std::memset(to, 0, to_bytes * pixels);
    for (size_t i = 0; i < pixels; ++i, from += from_bytes, to += to_bytes) {
        for (const FieldMove& move : moves.channel) {
            for (uint32_t bit = 0; bit < 8 * to_bytes; ++bit) {
                const uint32_t source = bit + move.right - move.left;
                if ((move.keep >> bit & 1) && source < 8 * from_bytes)
                    to[bit / 8] |=
                        static_cast<uint8_t>((from[source / 8] >> source % 8 & 1) << bit % 8);
            }
        }
    }
}

template<size_t from_bytes, size_t to_bytes>
void convert(Kernels::ConvertPixels kernel, Trial& trial, size_t pixels, bool usual) {
    const uint8_t* from = trial.values<uint8_t>(from_bytes * pixels);
    uint8_t* to = trial.room<uint8_t>(to_bytes * pixels);
    PixelMoves moves = usual_moves(trial.random, from_bytes, to_bytes);
    if (!usual) {
        for (FieldMove& move : moves.channel)
            move = any_move(trial.random, from_bytes, to_bytes);
    }
    const PixelMoves& by = trial.object(moves);
    trial.run([=, &by] { kernel(from, to, pixels, by); });
}

template<size_t from_bytes, size_t to_bytes>
constexpr Case<Kernels::ConvertPixels> conversion = {
    convert_plainly<from_bytes, to_bytes>,
    [](Kernels::ConvertPixels kernel, Trial& trial) {
        convert<from_bytes, to_bytes>(kernel, trial, trial.count, trial.between(0, 2, 0) == 0);
    },
    "pixel", 1000,
    // Many moves, on pixels enough for every path.
    [](Kernels::ConvertPixels kernel, Trial& trial) {
        convert<from_bytes, to_bytes>(kernel, trial, 45, false);
    },
    1000};

} // namespace

namespace cases {

const Case<Kernels::ConvertPixels> from16to24 = conversion<2, 3>, from32to24 = conversion<4, 3>,
                                   from24to16 = conversion<3, 2>, from32to16 = conversion<4, 2>,
                                   from24to32 = conversion<3, 4>, from16to32 = conversion<2, 4>;

} // namespace cases

} // namespace kirvo_test
