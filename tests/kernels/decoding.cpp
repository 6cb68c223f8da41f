// Coefficients to samples, samples to pixels.
#include "kernels/cases.hpp"
#include "kernels/zigzag.hpp"

#include <cmath>
#include <cstring>

using namespace kirvo;

namespace kirvo_test {

namespace {

constexpr size_t rounded_up(size_t count) { return (count + 63) / 64 * 64; }

uint8_t clamped(double value) { return static_cast<uint8_t>(std::clamp(value, 0.0, 255.0)); }

// cos(k pi / 16) in units of 2^-15, rounded down, as the transform has it; 1 / sqrt(2) for the
// mean.
int64_t factor(int x, int u) {
    const double pi = std::acos(-1.0);
    const double cosine = u == 0 ? std::cos(pi / 4) : std::cos((2 * x + 1) * u * pi / 16);
    return static_cast<int64_t>(cosine * 32767 + (cosine < 0 ? -1e-6 : 1e-6));
}

// Sums wrap at 32 bits.
int64_t wrapped(int64_t value) { return static_cast<int32_t>(static_cast<uint32_t>(value)); }

// A block's coefficients stand by pairs of horizontal frequencies, 0 and 4, 2 and 6, 1 and 3, 5
// and 7; in each there are pairs of coefficients, one for each vertical frequency in this order.
size_t place_of(size_t vertical, size_t horizontal) {
    static constexpr size_t order[8] = {0, 4, 2, 6, 1, 3, 5, 7};
    const auto rank = [](size_t u) {
        return static_cast<size_t>(std::find(order, order + 8, u) - order);
    };
    return rank(horizontal) / 2 * 16 + rank(vertical) * 2 + rank(horizontal) % 2;
}

void transform_plainly(const int16_t* levels, const int16_t* quantisers, int32_t, int16_t* samples,
                       ptrdiff_t stride) {
    static const auto factors = [] {
        std::array<std::array<int64_t, 8>, 8> table;
        for (int x = 0; x < 8; ++x)
            for (int u = 0; u < 8; ++u)
                table[static_cast<size_t>(x)][static_cast<size_t>(u)] = factor(x, u);
        return table;
    }();
    const auto coefficient = [&](size_t place) {
        return static_cast<int16_t>(levels[place] * quantisers[place]);
    };
    int64_t rows[8][8];
    for (size_t v = 0; v < 8; ++v)
        for (size_t x = 0; x < 8; ++x) {
            int64_t sum = 0;
            for (size_t u = 0; u < 8; ++u)
                sum += 8 * coefficient(place_of(v, u)) * factors[x][u];
            rows[v][x] = wrapped(sum) >> 16;
        }
    for (size_t y = 0; y < 8; ++y)
        for (size_t x = 0; x < 8; ++x) {
            int64_t sum = 1 << 18;
            for (size_t v = 0; v < 8; ++v)
                sum += rows[v][x] * factors[y][v];
            samples[static_cast<ptrdiff_t>(y) * stride + static_cast<ptrdiff_t>(x)] =
                static_cast<int16_t>(wrapped(sum) >> 19);
        }
}

struct Coefficients {
    int16_t natural[64] = {};
};

// Any coefficients, few or many, small or large, scattered or up to a place in zigzag order.
Coefficients any_coefficients(Random& random) {
    Coefficients c;
    const int32_t range = 1 << random.between(1, 15);
    const int32_t last = random.once_in(3) ? 63 : random.between(0, 63);
    const bool dense = random.once_in(2);
    for (int32_t k = 0; k <= last; ++k) {
        if (dense || k == last || random.once_in(8))
            c.natural[zigzag[k]] = static_cast<int16_t>(random.between(-range, range - 1));
    }
    return c;
}

// One extreme at each place; all extremes; every mean value in a few steps.
Coefficients thorough_coefficients(Random& random, size_t round) {
    static constexpr int16_t extremes[] = {-32768, 32767, 1, -1};
    Coefficients c;
    if (round < 256) {
        c.natural[round / 4] = extremes[round % 4];
    } else if (round < 512) {
        for (int16_t& value : c.natural)
            value = extremes[random.between(0, 1)];
    } else {
        c.natural[0] = static_cast<int16_t>(static_cast<int32_t>(round - 512) * 13 - 32768);
    }
    return c;
}

// The kernel is told the last place that is not 0, or one behind it. Products of 16 bits may wrap.
void transform(decltype(Kernels::inverse_dct) kernel, Trial& trial, const Coefficients& c,
               int32_t most) {
    auto* block = trial.values<int16_t>(64, 0, 0);
    auto* quantisers = trial.values<int16_t>(64, 1, most);
    int32_t last = 0;
    for (int32_t k = 0; k < 64; ++k) {
        const uint8_t n = zigzag[k];
        block[place_of(n / 8, n % 8)] = c.natural[n];
        if (c.natural[n] != 0)
            last = k;
    }
    if (trial.random.once_in(3))
        last = trial.random.between(last, 63);
    const ptrdiff_t stride = trial.between(8, 30, 64);
    auto* samples = trial.values<int16_t>(static_cast<size_t>(7 * stride + 8));
    trial.items = 64;
    trial.run([=] { kernel(block, quantisers, last, samples, stride); });
}

constexpr int32_t lowest_sample = -4096, highest_sample = 4095;

// Centred on 0; most pictures keep to a byte's range.
int16_t* samples(Trial& trial, size_t count) {
    const bool usual = trial.between(0, 2, 0) != 1;
    return trial.values<int16_t>(rounded_up(count), usual ? -200 : lowest_sample,
                                 usual ? 200 : highest_sample);
}

ChromaTerms rows_of_terms(int16_t* blue, int16_t* green, int16_t* red) {
    return {blue, green, red};
}

// What chroma samples add at most, and somewhat more.
ChromaTerms any_terms(Trial& trial, size_t count) {
    const int32_t most = trial.between(0, 2, 0) == 1 ? 7400 : 400;
    const auto row = [&] { return trial.values<int16_t>(rounded_up(count), -most, most); };
    int16_t *blue = row(), *green = row(), *red = row();
    return rows_of_terms(blue, green, red);
}

ChromaTerms room_for_terms(Trial& trial, size_t count) {
    const auto row = [&] { return trial.room<int16_t>(count, rounded_up(count)); };
    int16_t *blue = row(), *green = row(), *red = row();
    return rows_of_terms(blue, green, red);
}

template<size_t pixels_for_one>
void colour_plainly(const int16_t* y, ChromaTerms terms, uint8_t* bgr, size_t pixels) {
    for (size_t i = 0; i < pixels; ++i) {
        const int16_t* rows[3] = {terms.blue, terms.green, terms.red};
        for (size_t c = 0; c < 3; ++c)
            bgr[3 * i + c] = clamped(y[i] + rows[c][i / pixels_for_one]);
    }
}

template<size_t pixels_for_one>
constexpr Case<Kernels::DecodedColour> colour = {
    colour_plainly<pixels_for_one>,
    [](Kernels::DecodedColour kernel, Trial& trial) {
        const int16_t* y = samples(trial, trial.count);
        const ChromaTerms terms =
            any_terms(trial, (trial.count + pixels_for_one - 1) / pixels_for_one);
        uint8_t* bgr = trial.room<uint8_t>(3 * trial.count);
        trial.run([=, &trial] { kernel(y, terms, bgr, trial.count); });
    },
    "pixel"};

} // namespace

namespace cases {

const Case<decltype(Kernels::inverse_dct)> inverse_dct = {
    transform_plainly,
    [](auto kernel, Trial& trial) {
        transform(kernel, trial, any_coefficients(trial.random), trial.between(1, 255, 16));
    },
    "sample",
    256,
    [](auto kernel, Trial& trial) {
        transform(kernel, trial, thorough_coefficients(trial.random, trial.round), 1);
    },
    512 + 5041};

// The weights of chroma in units of 2^-16; sums are rounded down.
const Case<decltype(Kernels::chroma_terms)> chroma_terms = {
    [](const int16_t* cb, const int16_t* cr, ChromaTerms terms, size_t count) {
        const auto weight = [](double w) { return std::round(w * 65536); };
        const auto term = [](double sum) {
            return static_cast<int16_t>(128 + std::floor(sum / 65536));
        };
        for (size_t i = 0; i < count; ++i) {
            terms.blue[i] = term(weight(1.77) * cb[i]);
            terms.green[i] = term(-weight(0.3437) * cb[i] - weight(0.7143) * cr[i]);
            terms.red[i] = term(weight(1.402) * cr[i]);
        }
    },
    [](auto kernel, Trial& trial) {
        const int16_t *cb = samples(trial, trial.count), *cr = samples(trial, trial.count);
        const ChromaTerms terms = room_for_terms(trial, trial.count);
        trial.run([=, &trial] { kernel(cb, cr, terms, trial.count); });
    },
    "sample", 4093,
    // Every sample of either kind beside different ones of the other.
    [](auto kernel, Trial& trial) {
        constexpr size_t count = highest_sample - lowest_sample + 1;
        auto *cb = trial.values<int16_t>(count), *cr = trial.values<int16_t>(count);
        const size_t step = 2 * trial.round + 1;
        for (size_t i = 0; i < count; ++i) {
            cb[i] = static_cast<int16_t>(lowest_sample + static_cast<int32_t>(i));
            cr[i] = static_cast<int16_t>(lowest_sample + static_cast<int32_t>(i * step % count));
        }
        const ChromaTerms terms = room_for_terms(trial, count);
        trial.run([=] { kernel(cb, cr, terms, count); });
    },
    30};

const Case<decltype(Kernels::decoded_grey)> decoded_grey = {
    [](const int16_t* y, uint8_t* bgr, size_t pixels) {
        for (size_t i = 0; i < 3 * pixels; ++i)
            bgr[i] = clamped(y[i / 3] + 128);
    },
    [](auto kernel, Trial& trial) {
        const int16_t* y = samples(trial, trial.count);
        uint8_t* bgr = trial.room<uint8_t>(3 * trial.count);
        trial.run([=, &trial] { kernel(y, bgr, trial.count); });
    },
    "pixel"};

const Case<Kernels::DecodedColour> decoded_colour = colour<1>, decoded_colour_wide = colour<2>;

} // namespace cases

} // namespace kirvo_test
