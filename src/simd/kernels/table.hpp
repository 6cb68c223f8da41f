// The table of a level: every kernel over its vectors.
#pragma once

#include "simd/kernels/bytes.hpp"
#include "simd/kernels/decode.hpp"
#include "simd/kernels/encode.hpp"
#include "simd/kernels/filter.hpp"
#include "simd/kernels/hue.hpp"
#include "simd/kernels/pixels.hpp"
#include "simd/kernels/sums.hpp"
#include "simd/kernels/tally.hpp"
#include "simd/kernels/turn.hpp"

namespace kirvo {
namespace {

// Narrow is the wrapper of at most 32 bytes: for blocks of 8 x 8, for pixels that are exchanged
// anywhere, whose vectors then cross fewer lines of the cache, and for squares of pixels of 4 bytes,
// as many of whose rows may share a place of it. Pixels are gathered one by one at every level.
template<typename V, typename Narrow>
constexpr Kernels table_of() {
    using Bytes = ByteKernels<V>;
    using Pixels = PixelKernels<V>;
    using Filter = FilterKernels<V>;
    using Highest8 =
        ExtremeKernels<V, uint8_t, V::max8, &Kernels::highest8, &Kernels::highest_rows8>;
    using Lowest8 = ExtremeKernels<V, uint8_t, V::min8, &Kernels::lowest8, &Kernels::lowest_rows8>;
    using Highest16 = ExtremeKernels<V, int16_t, V::max16, nullptr, &Kernels::highest_rows16>;
    using Highest32 = ExtremeKernels<V, uint32_t, V::max32, &Kernels::highest32, nullptr>;
    using Sums = SumKernels<V>;
    using Turn = TurnKernels<V>;
    using Exchange = TurnKernels<Narrow>;
    using Decode = DecodeKernels<V>;
    using Encode = EncodeKernels<V>;
    return {
        .add = Bytes::add,
        .average = Bytes::average,
        .subtract = Bytes::subtract,
        .invert = Bytes::invert,
        .keep_bits = Bytes::keep_bits,
        .scale = Bytes::scale,
        .map = Bytes::map,
        .correct = Bytes::correct,
        .triple = Bytes::triple,
        .copy_past_caches = Bytes::copy_past_caches,
        .map_channels = any_count<Pixels::map_channels, 3, V::size>,
        .permute = any_count<Pixels::permute, 3, V::size>,
        .grey = any_count<Pixels::grey, 3, V::size>,
        .set_hue = any_count<HueKernels<V>::set_hue, 3, V::size>,
        .turn_hue = any_count<HueKernels<V>::turn_hue, 3, V::size>,
        .keep_rgb = any_count<HueKernels<V>::keep_rgb, 3, V::size>,
        .keep_hsv = any_count<HueKernels<V>::keep_hsv, 3, V::size>,
        .replace = Pixels::replace,
        .luminance = Pixels::luminance,
        .tally = tally_of<V>(),
        .from16to24 = Pixels::template convert<2, 3, &Kernels::from16to24>,
        .from32to24 = Pixels::template convert<4, 3, &Kernels::from32to24>,
        .from24to16 = Pixels::template convert<3, 2, &Kernels::from24to16>,
        .from32to16 = Pixels::template convert<4, 2, &Kernels::from32to16>,
        .from24to32 = Pixels::template convert<3, 4, &Kernels::from24to32>,
        .from16to32 = Pixels::template convert<2, 4, &Kernels::from16to32>,
        .blur = Filter::blur,
        .convolve16 = Filter::convolve16,
        .convolve32 = Filter::convolve32,
        .laplacian = Filter::laplacian,
        .gradient = Filter::gradient,
        .correction = Filter::correction,
        .dark_edges = Filter::dark_edges,
        .relief = Filter::relief,
        .between = Filter::between,
        .highest8 = Highest8::join,
        .lowest8 = Lowest8::join,
        .highest32 = Highest32::join,
        .highest_rows8 = {Highest8::template pick_rows<2>, Highest8::template pick_rows<4>,
                          Highest8::template pick_rows<8>},
        .lowest_rows8 = {Lowest8::template pick_rows<2>, Lowest8::template pick_rows<4>,
                         Lowest8::template pick_rows<8>},
        .highest_rows16 = {Highest16::template pick_rows<2>, Highest16::template pick_rows<4>,
                           Highest16::template pick_rows<8>},
        .add_to_sums16 = Sums::add_to_sums16,
        .add_to_sums32 = Sums::add_to_sums32,
        .means_of_2 = Sums::template means<2>,
        .means_of_4 = Sums::template means<4>,
        .wide_means_of_2 = Sums::wide_means_of_2,
        .gather = {gather<1>, gather<2>, gather_24, gather<4>},
        .exchange_reversed = {Exchange::template exchange_reversed<1>,
                              Exchange::template exchange_reversed<2>,
                              Exchange::template exchange_reversed<3>,
                              Exchange::template exchange_reversed<4>},
        .transpose = {Turn::template transpose<1>, Turn::template transpose<2>,
                      Turn::template transpose<3>, Exchange::template transpose<4>},
        .inverse_dct = InverseDct<Narrow>::inverse_dct,
        .chroma_terms = Decode::chroma_terms,
        .decoded_grey = Decode::grey,
        .decoded_colour = Decode::colour,
        .decoded_colour_wide = Decode::colour_wide,
        .samples_of = Encode::samples_of,
        .halve = Encode::halve,
        .code_groups = Encode::code_groups,
    };
}

} // namespace
} // namespace kirvo
