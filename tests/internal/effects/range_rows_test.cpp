// The rows that keep pixels by ranges, at every level of the processor, against one pixel at a
// time.

#include "effects/range_rows.hpp"

#include "internal/cpu_levels.hpp"
#include "internal/effects/plain_hue.hpp"
#include "internal/guarded.hpp"
#include "support/random.hpp"

using namespace kirvo;
using namespace kirvo_test;

namespace {

Span random_span(Random& random, int most) {
    const int lowest = random.between(0, most);
    return {lowest, random.between(0, most - lowest), random.between(0, 1) == 1};
}

bool lies_in(const Span& span, int value) {
    const bool inside = value >= span.lowest && value <= span.lowest + span.extent;
    return span.outside ? !inside : inside;
}

void blacken(uint8_t* pixel) {
    std::fill_n(pixel, 3, uint8_t{0});
}

std::vector<uint8_t> kept_rgb(std::vector<uint8_t> pixels, const Span (&spans)[3]) {
    for (size_t i = 0; i < pixels.size(); i += 3) {
        for (size_t c = 0; c < 3; ++c) {
            if (!lies_in(spans[c], pixels[i + 2 - c])) {
                blacken(&pixels[i]);
                break;
            }
        }
    }
    return pixels;
}

std::vector<uint8_t> kept_hsv(std::vector<uint8_t> pixels, const Span (&spans)[3]) {
    for (size_t i = 0; i < pixels.size(); i += 3) {
        const Hue h = hue_of(pixels[i + 2], pixels[i + 1], pixels[i]);
        if (lies_in(spans[0], h.hue) && lies_in(spans[1], h.saturation) &&
            lies_in(spans[2], h.value))
            paint(&pixels[i], h);
        else
            blacken(&pixels[i]);
    }
    return pixels;
}

} // namespace

TEST(RangeRows, RangesOfHueSaturationAndValueOnAllHues) {
    const std::vector<uint8_t> pixels = all_hues();
    std::vector<uint8_t> kept(pixels.size());
    Random random(1);
    constexpr Span all = {0, 359, false}, none = {0, 359, true};
    const Span tests[][3] = {
        {all, all, all},
        {none, all, all},
        {all, none, all},
        {all, all, none},
        {{359, 0, false}, all, all},
        {{300, 59, true}, {255, 0, true}, all},
        {random_span(random, 359), random_span(random, 255), random_span(random, 255)},
        {random_span(random, 359), random_span(random, 255), random_span(random, 255)}};
    at_every_cpu_level([&](CpuLevel) {
        for (const auto& spans : tests) {
            range_rows().hsv(kept.data(), pixels.data(), pixels.size() / 3, spans);
            ASSERT_TRUE(kept == kept_hsv(pixels, spans));
        }
        for (int hue = 0; hue < 360; hue += 7) {
            const Span one[3] = {{hue, 0, false}, all, all};
            range_rows().hsv(kept.data(), pixels.data(), pixels.size() / 3, one);
            ASSERT_TRUE(kept == kept_hsv(pixels, one)) << hue;
        }
    });
}

TEST(RangeRows, AnyCountAndAlignmentInPlaceToo) {
    at_every_cpu_level([](CpuLevel) {
        Random random(2);
        for (size_t pixels = 0; pixels < 200; ++pixels) {
            const Span spans[3] = {random_span(random, 255), random_span(random, 255),
                                   random_span(random, 255)};
            Guarded from(3 * pixels, pixels % 61), to(3 * pixels, pixels % 3);
            random.fill(from.data(), 3 * pixels);
            const std::vector<uint8_t> before = from.content();
            range_rows().rgb(to.data(), from.data(), pixels, spans);
            ASSERT_EQ(to.content(), kept_rgb(before, spans)) << pixels;
            range_rows().hsv(to.data(), from.data(), pixels, spans);
            ASSERT_EQ(to.content(), kept_hsv(before, spans)) << pixels;
            ASSERT_EQ(from.content(), before) << pixels;
            range_rows().rgb(from.data(), from.data(), pixels, spans);
            ASSERT_EQ(from.content(), kept_rgb(before, spans)) << pixels;
            ASSERT_TRUE(to.intact() && from.intact()) << pixels;
        }
    });
}
