// Whole files of kernels over the toy wrapper: unchanged, they do what they do at every level.
#include "kernels/harness.hpp"
#include "kernels/toy_vector.hpp"
#include "simd/kernels/bytes.hpp"
#include "simd/kernels/range.hpp"

#include <gtest/gtest.h>

using namespace kirvo;

namespace kirvo_test {

namespace {

const Kernels toy = [] {
    using Bytes = ByteKernels<ToyVector>;
    using Hue = HueKernels<ToyVector>;
    using Range = RangeKernels<ToyVector>;
    Kernels table = scalar::kernels;
    table.add = Bytes::add;
    table.average = Bytes::average;
    table.subtract = Bytes::subtract;
    table.scale = Bytes::scale;
    table.map = Bytes::map;
    table.invert = Bytes::invert;
    table.veil = Bytes::veil;
    table.correct = Bytes::correct;
    table.triple = Bytes::triple;
    table.copy_past_caches = Bytes::copy_past_caches;
    table.set_hue = Hue::set_hue;
    table.turn_hue = Hue::turn_hue;
    table.keep_rgb = Range::keep_rgb;
    table.keep_hsv = Range::keep_hsv;
    return table;
}();

class ToyTest : public testing::TestWithParam<const char*> {};

const AnyCase& case_named(std::string_view name) {
    return *std::ranges::find(all_cases(), name, &AnyCase::name);
}

} // namespace

TEST_P(ToyTest, DoesWhatTheOracleDoes) { check(case_named(GetParam()), {{"the toy level", &toy}}); }

INSTANTIATE_TEST_SUITE_P(Kernels, ToyTest,
                         testing::Values("add", "average", "subtract", "scale", "map", "invert",
                                         "veil", "correct", "triple", "copy_past_caches", "set_hue",
                                         "turn_hue", "keep_rgb", "keep_hsv"));

} // namespace kirvo_test
