// Whole files of kernels over the toy wrapper: unchanged, they do what they do at every level.
#include "kernels/harness.hpp"
#include "kernels/toy_vector.hpp"
#include "simd/kernels/bytes.hpp"
#include "simd/kernels/hue.hpp"

#include <algorithm>
#include <gtest/gtest.h>

using namespace kirvo;

namespace kirvo_test {

namespace {

const Kernels toy = [] {
    using Bytes = ByteKernels<ToyVector>;
    using Hue = HueKernels<ToyVector>;
    Kernels table = scalar::kernels;
    table.add = Bytes::add;
    table.average = Bytes::average;
    table.subtract = Bytes::subtract;
    table.scale = Bytes::scale;
    table.map = Bytes::map;
    table.invert = Bytes::invert;
    table.keep_bits = Bytes::keep_bits;
    table.correct = Bytes::correct;
    table.triple = Bytes::triple;
    table.copy_past_caches = Bytes::copy_past_caches;
    table.set_hue = any_count<Hue::set_hue, 3, ToyVector::size>;
    table.turn_hue = any_count<Hue::turn_hue, 3, ToyVector::size>;
    table.keep_rgb = any_count<Hue::keep_rgb, 3, ToyVector::size>;
    table.keep_hsv = any_count<Hue::keep_hsv, 3, ToyVector::size>;
    return table;
}();

class ToyTest : public testing::TestWithParam<const char*> {};

const AnyCase& case_named(std::string_view name) {
    return *std::find_if(all_cases().begin(), all_cases().end(),
                         [&](const AnyCase& kernel) { return kernel.name == name; });
}

} // namespace

TEST_P(ToyTest, DoesWhatTheOracleDoes) { check(case_named(GetParam()), {{"the toy level", &toy}}); }

INSTANTIATE_TEST_SUITE_P(Kernels, ToyTest,
                         testing::Values("add", "average", "subtract", "scale", "map", "invert",
                                         "keep_bits", "correct", "triple", "copy_past_caches",
                                         "set_hue", "turn_hue", "keep_rgb", "keep_hsv"),
                         [](const auto& tested) { return std::string(tested.param); });

} // namespace kirvo_test
