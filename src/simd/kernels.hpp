// Everything that is done to many pixels in one way, as one table of functions a level.
//
// The scalar functions are the definition; every level gives the same bytes. Pointers need no
// alignment. A function touches what its count says and nothing else, but where a comment allows
// more. Where a comment says so, `to` may be `from`; otherwise results overlap no source.
#pragma once

#include "simd/kernel_types.hpp"
#include "simd/levels.hpp"

namespace kirvo {

struct Kernels {
    // Rows of bytes, whatever they stand for. `to` may be `from` but in the first three, which
    // change `to` by `from`.
    using WithPattern = void (*)(uint8_t* to, const uint8_t* from, size_t bytes,
                                 uint32_t pattern); // that repeats every 4 bytes
    // Sums, at most 255; means, rounded down; differences, at least 0. Only bits of the pattern stay.
    WithPattern add, average, subtract;
    WithPattern invert, keep_bits; // those of the pattern
    // clamp(byte * factor / 100 + offset) with factor 0..200 and offset -255..255
    void (*scale)(uint8_t* to, const uint8_t* from, size_t bytes, int32_t factor, int32_t offset);
    // levels[byte]
    void (*map)(uint8_t* to, const uint8_t* from, size_t bytes, const Levels& levels);
    // from + plus - minus, clamped, where plus or minus is 0; no overlap
    void (*correct)(uint8_t* to, const uint8_t* from, const uint8_t* plus, const uint8_t* minus,
                    size_t bytes);
    // Each of count bytes three times; no overlap.
    void (*triple)(uint8_t* to, const uint8_t* from, size_t count);
    // A copy that writes memory without reading it into the caches first; no overlap.
    void (*copy_past_caches)(uint8_t* to, const uint8_t* from, size_t bytes);

    // Rows of 24-bit pixels (blue, green, red bytes). `to` may be `from`.
    void (*map_channels)(uint8_t* to, const uint8_t* from, size_t pixels,
                         const ChannelLevels& levels);
    void (*permute)(uint8_t* to, const uint8_t* from, size_t pixels, const ChannelOrder& order);
    // (77 red + 150 green + 29 blue + 128) >> 8 in all three bytes
    void (*grey)(uint8_t* to, const uint8_t* from, size_t pixels);
    // Gives every pixel the hue, 0 to 359, at two thirds of its saturation if softer.
    void (*set_hue)(uint8_t* to, const uint8_t* from, size_t pixels, int32_t hue, bool softer);
    // Turns every pixel's hue by 0 to 359 degrees.
    void (*turn_hue)(uint8_t* to, const uint8_t* from, size_t pixels, int32_t degrees);
    // Keep the pixels whose three values lie in bands; the others become black. Bands of red, green
    // and blue, or of hue, saturation and value; of the latter what stays is made again.
    using KeepPixels = void (*)(uint8_t* to, const uint8_t* from, size_t pixels,
                                const PassBand (&bands)[3]);
    KeepPixels keep_rgb, keep_hsv;
    // Replaces pixels, but not under those of the key's colour (blue, green, red); no overlap.
    void (*replace)(uint8_t* to, const uint8_t* from, size_t pixels, const uint8_t* key);
    // (77 red + 150 green + 29 blue + 128) >> 8, a byte for each pixel; no overlap
    void (*luminance)(uint8_t* to, const uint8_t* bgr, size_t pixels);
    // Adds to counters of each channel's values those of tally_pixels; the memory at next is counted
    // next. Null where counting one by one is as fast.
    void (*tally)(uint32_t (*counts)[256], const uint8_t* bgr, const uint8_t* next);

    // Rows of pixels from one depth to another.
    using ConvertPixels = void (*)(const uint8_t* from, uint8_t* to, size_t pixels,
                                   const PixelMoves& moves);
    ConvertPixels from16to24, from32to24, from24to16, from32to16, from24to32, from16to32;

    // Neighbourhoods. Those that take three rows read one pixel beyond both ends of each.
    // (11 corners + 30 edges + 81 centre) >> 8; 24-bit pixels
    void (*blur)(uint8_t* to, ThreeRows rows, size_t bytes);
    // Weighted sums, divided and clamped, of 24-bit pixels: for sums that fit 16 signed bits, and
    // for those that fit 32.
    using Convolve = void (*)(uint8_t* to, ThreeRows rows, size_t bytes, const Convolution& by);
    Convolve convolve16, convolve32;
    // 4 centre - (left + right + below + above) of count luminances
    void (*laplacian)(int16_t* to, ThreeRows rows, size_t count);
    // right + above - below - left + 2 (above right - below left)
    void (*gradient)(int16_t* to, ThreeRows rows, size_t count);
    // The Laplacian (-1020 to 1020) over 2, 4, 6 or 8, truncating, in two parts of at most 255: what
    // sharpening adds to a pixel's channels and what it takes away.
    void (*correction)(uint8_t* plus, uint8_t* minus, const int16_t* laplacian, size_t count,
                       int divisor);
    // 255 - |clamp(v, low, high)|, with low and high from -255 to 255
    void (*dark_edges)(uint8_t* to, const int16_t* v, size_t count, int16_t low, int16_t high);
    // clamp(v, -127, 127) + 128
    void (*relief)(uint8_t* to, const int16_t* v, size_t count);
    // 255 where v lies from low to high, else 0; nothing does where low is above high
    void (*between)(uint8_t* to, const int16_t* v, size_t count, int16_t low, int16_t high);

    // Extremes of `side` cells along a row, from each of count elements on; a cell has `step` of them,
    // 4 bytes at most. Those of `run` cells are known: run < side <= 4 run, or 2 run + 2 where run is
    // above 16. read_behind_runs bytes more than is needed may be read.
    template<typename T>
    using Join = void (*)(T* to, const T* runs, size_t count, size_t step, size_t run, size_t side);
    Join<uint8_t> highest8, lowest8;
    Join<uint32_t> highest32; // of numbers below 2^31
    // Extremes, element by element, of windows of n rows that begin one row after another: to[k] is that
    // of rows[k] to rows[k + n - 1]. For 2, 4 or 8 windows; n is at least their number. The extreme of
    // the rows at which windows end comes after them, if there is room for it: to[windows] may be null.
    template<typename T>
    using PickRows = void (*)(T* const* to, const T* const* rows, size_t n, size_t count);
    PickRows<uint8_t> highest_rows8[3], lowest_rows8[3];
    PickRows<int16_t> highest_rows16[3];

    // Sums.
    // sums[i] += row[i], wrapping
    void (*add_to_sums16)(uint16_t* sums, const uint8_t* row, size_t count);
    void (*add_to_sums32)(uint32_t* sums, const uint8_t* row, size_t count);
    // Means of count boxes of 24-bit pixels that lie side by side, 2 or 4 columns wide and `rows`
    // high: the sum of a box shifted right. A box has at most 256 pixels. Rows are row_step bytes
    // apart.
    using Means = void (*)(uint8_t* to, const uint8_t* from, ptrdiff_t row_step, size_t rows,
                           size_t count, int shift);
    Means means_of_2, means_of_4;
    Means wide_means_of_2; // the same of pixels of 4 bytes

    // Pixels of 1, 2, 3 or 4 bytes rearranged; by the pixel's bytes less 1.
    // Pixel i of `to` becomes the one of `from` at byte offsets[i]. The byte before `from` may be
    // read.
    using Gather = void (*)(uint8_t* to, const uint8_t* from, const uint32_t* offsets,
                            size_t pixels);
    Gather gather[4];
    // Exchanges the pixels that begin at left with those that end at right_end, in reverse order:
    // the first with the last. The two runs do not overlap.
    using Exchange = void (*)(uint8_t* left, uint8_t* right_end, size_t pixels);
    Exchange exchange_reversed[4];
    // Turns rows into columns: pixel x of source row k becomes pixel k of destination row x. Steps
    // are bytes from one row to the next and may be negative.
    using Transpose = void (*)(uint8_t* to, ptrdiff_t to_step, const uint8_t* from,
                               ptrdiff_t from_step, size_t columns, size_t rows);
    Transpose transpose[4];

    // Decoding. Samples are centred on 0 and not clamped, -4096 to 4095. Rows of samples and terms
    // may be read, and those of terms written, up to the next multiple of 64.
    // Inverse transform of 64 coefficients into 8 rows of 8 samples. A coefficient is the product,
    // of 16 bits, of a level and its quantiser, both as the decoder places them. Levels after zigzag
    // position last are 0.
    void (*inverse_dct)(const int16_t* levels, const int16_t* quantisers, int32_t last,
                        int16_t* samples, ptrdiff_t stride);
    void (*chroma_terms)(const int16_t* cb, const int16_t* cr, ChromaTerms terms, size_t count);
    void (*decoded_grey)(const int16_t* y, uint8_t* bgr, size_t pixels);
    // One term for each pixel, or for two of them side by side.
    using DecodedColour = void (*)(const int16_t* y, ChromaTerms terms, uint8_t* bgr,
                                   size_t pixels);
    DecodedColour decoded_colour, decoded_colour_wide;

    // Encoding. Samples are level-shifted: -128 to 127.
    void (*samples_of)(const uint8_t* bgr, size_t pixels, int8_t* y, int8_t* cb, int8_t* cr);
    // Rounded means of squares in two rows, or of pairs where both are one; count is that of the
    // results. Whole steps of 64 results may be read and written.
    void (*halve)(const int8_t* upper, const int8_t* lower, size_t count, int8_t* half);
    // Transforms and quantises.
    void (*code_groups)(const int8_t* samples, ptrdiff_t stride, size_t groups,
                        const Quantiser& quantiser, BlockGroup* out);
};

// The table of the level in force.
const Kernels& kernels();

// One of each level; scalar's is the definition.
#define TABLE(level)                                                                               \
    namespace level {                                                                              \
    extern const Kernels kernels;                                                                  \
    }
KIRVO_LEVELS(TABLE)
#undef TABLE

} // namespace kirvo
