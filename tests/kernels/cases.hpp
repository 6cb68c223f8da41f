// The case of each kernel. A kernel of the table that is not in this list, in the same order, does
// not compile; one without a definition of its case does not link.
#pragma once

#include "kernels/case.hpp"

// clang-format off
#define KIRVO_EACH_KERNEL(X)                                                                       \
    X(add) X(average) X(subtract) X(invert) X(keep_bits) X(scale) X(map) X(correct) X(triple)           \
    X(copy_past_caches) X(map_channels) X(permute) X(grey) X(set_hue) X(turn_hue) X(keep_rgb)      \
    X(keep_hsv) X(replace) X(luminance) X(tally) X(from16to24) X(from32to24) X(from24to16) X(from32to16)    \
    X(from24to32) X(from16to32) X(blur) X(convolve16) X(convolve32) X(laplacian) X(gradient)       \
    X(correction) X(dark_edges) X(relief) X(between) X(highest8) X(lowest8) X(highest32)           \
    X(highest_rows8) X(lowest_rows8) X(highest_rows16) X(add_to_sums16) X(add_to_sums32)           \
    X(means_of_2) X(means_of_4) X(wide_means_of_2) X(gather) X(exchange_reversed) X(transpose)     \
    X(inverse_dct) X(chroma_terms) X(decoded_grey)                                                 \
    X(decoded_colour) X(decoded_colour_wide) X(samples_of) X(halve)           \
    X(code_groups)
// clang-format on

namespace kirvo_test {

template<typename Kernel>
struct CaseOf {
    using Type = const Case<Kernel>;
};
template<typename Kernel, size_t n>
struct CaseOf<Kernel[n]> {
    using Type = const Case<Kernel>[n];
};

namespace cases {
#define X(name) extern CaseOf<decltype(kirvo::Kernels::name)>::Type name;
KIRVO_EACH_KERNEL(X)
#undef X
} // namespace cases

struct Mirror {
#define X(name) decltype(kirvo::Kernels::name) name;
    KIRVO_EACH_KERNEL(X)
#undef X
};
static_assert(sizeof(Mirror) == sizeof(kirvo::Kernels), "Some kernel has no case");
#define X(name)                                                                                    \
    static_assert(offsetof(Mirror, name) == offsetof(kirvo::Kernels, name),                        \
                  "The cases have another order than the kernels");
KIRVO_EACH_KERNEL(X)
#undef X

} // namespace kirvo_test
