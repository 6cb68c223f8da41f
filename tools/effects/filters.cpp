// Effects on neighbourhoods.
#include "effects/calls.hpp"
#include "effects/operations.hpp"

Image sharpen(Image image, const Values& values) {
    constexpr int32_t modes = 6; // behind them the names of greater strengths
    const int32_t mode = values.integer(0);
    return make(std::move(image), "--sharpen", [=](HGLOBAL h, int32_t w, int32_t hh, int32_t* s) {
        return mode < modes ? Dib24Sharpen(h, 0, 0, w, hh, mode, s)
                            : Dib24SharpenEx(h, 0, 0, w, hh, mode - modes + 1, s);
    });
}

Image convolve(Image image, const Values& values) {
    int32_t k[9];
    int64_t sum = 0;
    for (size_t i = 0; i < 9; ++i)
        sum += k[i] = values.integer(i);
    SetFilter3x3(k[0], k[1], k[2], k[3], k[4], k[5], k[6], k[7], k[8],
                 values.integer(9, static_cast<int32_t>(sum)));
    return make(std::move(image), "--kernel", [](HGLOBAL h, int32_t w, int32_t hh, int32_t* s) {
        return DibFilter3x3(h, 0, 0, w, hh, s);
    });
}
