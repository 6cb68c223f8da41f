// Rows of 24-bit pixels by hue, saturation and value.
#include "kernels/cases.hpp"
#include "kernels/each_pixel.hpp"
#include "kernels/plain_hue.hpp"

#include <cstring>

using namespace kirvo;

namespace kirvo_test {

namespace {

constexpr int all_degrees = 360;

Hue hue_of_pixel(const uint8_t* bgr) { return hue_of(bgr[2], bgr[1], bgr[0]); }

uint8_t* copied(Trial& trial, const std::vector<uint8_t>& pixels) {
    uint8_t* from = trial.values<uint8_t>(pixels.size(), 0, 0);
    std::memcpy(from, pixels.data(), pixels.size());
    return from;
}

// Pixels of every hue and saturation, and room for as many.
struct AllHues {
    const uint8_t* from;
    uint8_t* to;
    size_t pixels;

    explicit AllHues(Trial& trial) {
        static const std::vector<uint8_t> all = all_hues();
        from = copied(trial, all);
        to = trial.room<uint8_t>(all.size());
        pixels = all.size() / 3;
    }
};

// Three pixels of each saturation.
std::vector<uint8_t> all_saturations() {
    std::vector<uint8_t> pixels;
    for (int saturation = 0; saturation < 256; ++saturation) {
        for (const int least : {0, (255 - saturation) / 2, 255 - saturation})
            pixels.insert(pixels.end(), {static_cast<uint8_t>(least),
                                         static_cast<uint8_t>(least + saturation / 3),
                                         static_cast<uint8_t>(least + saturation)});
    }
    return pixels;
}

bool lies_in(const PassBand& band, int value) {
    const bool inside = value >= band.lowest && value <= band.lowest + band.extent;
    return band.outside ? !inside : inside;
}

struct Bands {
    PassBand of[3];
};

PassBand any_band(Random& random, int most) {
    const int lowest = random.between(0, most);
    return {lowest, random.between(0, most - lowest), random.once_in(4)};
}

Bands any_bands(Random& random, int most_of_first) {
    return {{any_band(random, most_of_first), any_band(random, 255), any_band(random, 255)}};
}

// Few of the thorough rounds are left to chance: nothing, everything, the ends of each, one degree.
Bands hsv_bands(Random& random, size_t round) {
    constexpr PassBand all = {0, all_degrees - 1, false}, none = {0, all_degrees - 1, true};
    static constexpr Bands chosen[] = {{{all, all, all}},
                                       {{none, all, all}},
                                       {{all, none, all}},
                                       {{all, all, none}},
                                       {{{359, 0, false}, all, all}},
                                       {{{300, 59, true}, {255, 0, true}, all}},
                                       {{{0, 0, false}, {1, 254, false}, {0, 254, false}}}};
    if (round < std::size(chosen))
        return chosen[round];
    if (round % 2 == 0)
        return {{{static_cast<int32_t>(round * 7 % all_degrees), 0, false}, all, all}};
    return any_bands(random, all_degrees - 1);
}

template<int most_of_first>
void keep(Kernels::KeepPixels kernel, Trial& trial) {
    const Trial::Rows row = trial.rows(3 * trial.count);
    const Bands& bands = trial.object(any_bands(trial.random, most_of_first));
    trial.run([=, &trial, &bands] { kernel(row.to, row.from, trial.count, bands.of); });
}

template<typename Values>
void keep_plainly(uint8_t* to, const uint8_t* from, size_t pixels, const PassBand (&bands)[3],
                  const Values& values) {
    each_pixel(to, from, pixels, [&](uint8_t* pixel) {
        const Hue h = values(pixel);
        if (!lies_in(bands[0], h.hue) || !lies_in(bands[1], h.saturation) ||
            !lies_in(bands[2], h.value))
            std::fill_n(pixel, 3, uint8_t{0});
    });
}

} // namespace

namespace cases {

const Case<decltype(Kernels::set_hue)> set_hue = {
    [](uint8_t* to, const uint8_t* from, size_t pixels, int32_t hue, bool softer) {
        each_pixel(to, from, pixels, [=](uint8_t* pixel) {
            Hue h = hue_of_pixel(pixel);
            h.hue = hue;
            if (softer)
                h.saturation = h.saturation * 2 / 3;
            paint(pixel, h);
        });
    },
    [](auto kernel, Trial& trial) {
        const Trial::Rows row = trial.rows(3 * trial.count);
        const int32_t hue = trial.between(0, all_degrees - 1, 100);
        const bool softer = trial.random.once_in(2);
        trial.run([=, &trial] { kernel(row.to, row.from, trial.count, hue, softer); });
    },
    "pixel", 4093,
    // Every hue for every saturation.
    [](auto kernel, Trial& trial) {
        static const std::vector<uint8_t> all = all_saturations();
        const uint8_t* from = copied(trial, all);
        uint8_t* to = trial.room<uint8_t>(all.size());
        const auto hue = static_cast<int32_t>(trial.round / 2);
        trial.run([=, &trial] { kernel(to, from, all.size() / 3, hue, trial.round % 2 == 1); });
    },
    2 * all_degrees};

const Case<decltype(Kernels::turn_hue)> turn_hue = {
    [](uint8_t* to, const uint8_t* from, size_t pixels, int32_t degrees) {
        each_pixel(to, from, pixels, [=](uint8_t* pixel) {
            Hue h = hue_of_pixel(pixel);
            h.hue = (h.hue + degrees) % all_degrees;
            paint(pixel, h);
        });
    },
    [](auto kernel, Trial& trial) {
        const Trial::Rows row = trial.rows(3 * trial.count);
        const int32_t degrees = trial.between(0, all_degrees - 1, 100);
        trial.run([=, &trial] { kernel(row.to, row.from, trial.count, degrees); });
    },
    "pixel",
    4093,
    [](auto kernel, Trial& trial) {
        static constexpr int32_t turns[] = {0, 1, 2, 53, 104, 155, 206, 257, 308, 359};
        const AllHues all(trial);
        const int32_t degrees = turns[trial.round];
        trial.run([=] { kernel(all.to, all.from, all.pixels, degrees); });
    },
    10};

const Case<decltype(Kernels::keep_rgb)> keep_rgb = {
    [](uint8_t* to, const uint8_t* from, size_t pixels, const PassBand (&bands)[3]) {
        keep_plainly(to, from, pixels, bands, [](const uint8_t* pixel) {
            return Hue{pixel[2], pixel[1], pixel[0]};
        });
    },
    keep<255>, "pixel"};

const Case<decltype(Kernels::keep_hsv)> keep_hsv = {
    [](uint8_t* to, const uint8_t* from, size_t pixels, const PassBand (&bands)[3]) {
        keep_plainly(to, from, pixels, bands, [](uint8_t* pixel) {
            const Hue h = hue_of_pixel(pixel);
            paint(pixel, h);
            return h;
        });
    },
    keep<all_degrees - 1>,
    "pixel",
    4093,
    [](auto kernel, Trial& trial) {
        const AllHues all(trial);
        const Bands& bands = trial.object(hsv_bands(trial.random, trial.round));
        trial.run([=, &bands] { kernel(all.to, all.from, all.pixels, bands.of); });
    },
    24};

} // namespace cases

} // namespace kirvo_test
