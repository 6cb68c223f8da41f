// Gamma tables that are the same on every system.
//
// A level is 255.0 * pow(i / 255.0, gamma) in doubles, truncated. The system's pow settles it
// unless the product lies so near a whole number that the last bits of the power decide; then the
// power is computed in double-double arithmetic and rounded to the nearest double.
#include "effects/tone/levels.hpp"

#include <cmath>

namespace kirvo {

namespace {

// The sum of two doubles, high being the sum rounded: about 105 bits.
struct DoubleDouble {
    double high, low;
};

// Exact.
DoubleDouble two_sum(double a, double b) {
    const double sum = a + b;
    const double b_part = sum - a;
    return {sum, (a - (sum - b_part)) + (b - b_part)};
}

DoubleDouble split(double a) {
    constexpr double splitter = 134217729.0; // 2^27 + 1
    const double scaled = splitter * a;
    const double high = scaled - (scaled - a);
    return {high, a - high};
}

// Exact.
DoubleDouble two_product(double a, double b) {
    const double product = a * b;
    const DoubleDouble x = split(a), y = split(b);
    return {product,
            ((x.high * y.high - product) + x.high * y.low + x.low * y.high) + x.low * y.low};
}

DoubleDouble operator+(const DoubleDouble& a, const DoubleDouble& b) {
    const DoubleDouble sum = two_sum(a.high, b.high);
    return two_sum(sum.high, sum.low + a.low + b.low);
}

DoubleDouble operator*(const DoubleDouble& a, const DoubleDouble& b) {
    const DoubleDouble product = two_product(a.high, b.high);
    return two_sum(product.high, product.low + (a.high * b.low + a.low * b.high));
}

// For exponents of about -7 to 7: the series of a 512th, squared nine times.
DoubleDouble exponential(const DoubleDouble& exponent) {
    constexpr int squarings = 9;
    constexpr double part = 1.0 / (1 << squarings);
    const DoubleDouble x = {exponent.high * part, exponent.low * part};
    DoubleDouble sum = {1.0, 0.0};
    for (int n = 14; n > 0; --n) { // Horner: 1 + x/1 (1 + x/2 (1 + ...
        const DoubleDouble product = x * sum;
        // One correction makes the quotient good to the double-double.
        const double high = product.high / n;
        const DoubleDouble back = two_product(high, n);
        const double low = ((product.high - back.high) - back.low + product.low) / n;
        sum = DoubleDouble{1.0, 0.0} + DoubleDouble{high, low};
    }
    for (int i = 0; i < squarings; ++i)
        sum = sum * sum;
    return sum;
}

// For 0 < x < 1: the system's logarithm and what it misses.
DoubleDouble logarithm(double x) {
    const double rough = std::log(x);
    const DoubleDouble ratio = DoubleDouble{x, 0.0} * exponential({-rough, 0.0});
    const double rest = (ratio.high - 1.0) + ratio.low;
    return two_sum(rough, rest - rest * rest * (0.5 - rest / 3.0));
}

double precise_power(double base, double exponent) {
    return exponential(logarithm(base) * DoubleDouble{exponent, 0.0}).high;
}

uint8_t gamma_level(int i, double gamma) {
    const double base = i / 255.0;
    const double product = 255.0 * std::pow(base, gamma);
    // Far more than any pow errs by, and enough for levels 0 and 255 to be settled here.
    constexpr double doubt = 1e-3;
    if (i == 0 || i == 255 || product < 0.5 ||
        std::fabs(product - std::floor(product + 0.5)) > doubt)
        return static_cast<uint8_t>(product);
    return static_cast<uint8_t>(255.0 * precise_power(base, gamma));
}

} // namespace

Levels gamma_levels(double gamma) {
    const bool identity = gamma == 1.0;
    Levels levels;
    for (int i = 0; i < 256; ++i)
        levels.level[i] = identity ? static_cast<uint8_t>(i) : gamma_level(i, gamma);
    return levels;
}

} // namespace kirvo
