// What several wrappers do by the same operations of their own.
#pragma once

// A shift by a count that is known, of an operation that takes it behind the vector.
#define KIRVO_SHIFT(name, operation)                                                               \
    template<int count>                                                                            \
    static Register name(Register a) {                                                             \
        return operation(a, count);                                                                \
    }

namespace kirvo {
namespace {

// Sums of three channels with weights from -128 to 127, for levels that multiply 16-bit numbers.
template<typename V>
struct WeightedSums {
    using Register = typename V::Register;
    using Halves = typename V::Halves;
    Halves blue, green, red;

    explicit WeightedSums(const typename V::Planes& p)
        : blue(widened(p.blue)), green(widened(p.green)), red(widened(p.red)) {}
    // Of luminance, 65,280 at most.
    Halves luminance() const { return sums<29, 150, 77>(); }
    template<int b, int g, int r>
    Halves sums() const {
        return {sum<b, g, r>(blue.low, green.low, red.low),
                sum<b, g, r>(blue.high, green.high, red.high)};
    }

  private:
    static Halves widened(Register v) { return {V::widen_low8(v), V::widen_high8(v)}; }
    template<int b, int g, int r>
    static Register sum(Register blue, Register green, Register red) {
        return V::add16(
            V::add16(V::multiply16(blue, V::all16(b)), V::multiply16(green, V::all16(g))),
            V::multiply16(red, V::all16(r)));
    }
};

} // namespace
} // namespace kirvo
