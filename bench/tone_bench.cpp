// Point operations and hue beside OpenCV, one thread, results allocated within the time.
#include "support/pictures.hpp"
#include "support/row.hpp"

namespace {

using namespace kirvo_bench;

// The operation on the whole photo, with what stands between its size and the status.
template<typename Operation, typename... Values>
Work whole(Operation operation, Values... values) {
    return [=, photo = photo_dib()] {
        int32_t status;
        GlobalFree(operation(photo, 0, 0, photo_width, photo_height, values..., &status));
    };
}

const Row brightness("tone/brightness/ours", [] { return whole(Dib24Brightness, 20); });
const Row contrast("tone/contrast/ours", [] { return whole(Dib24Contrast, 30); });
const Row gamma_row("tone/gamma/ours", [] { return whole(Dib24Gamma, 0.45); });
const Row gammas("tone/gamma_channels/ours", [] { return whole(DibGammaEx, 0.45, 0.9, 2.0); });
const Row negative("tone/negative/ours", [] {
    return [dib = scratch_dib()] { Dib24Negative(dib, 0, 0, photo_width, photo_height); };
});
const Row exchange("tone/exchange/ours", [] {
    return [dib = scratch_dib()] { Dib24RGBChange(dib, 5, 0, 0, photo_width, photo_height); };
});
const Row monochrome("tone/monochrome/ours", [] { return whole(Dib24Monochrome); });
const Row half_tone("tone/half/ours", [] { return whole(Dib24HalfTone); });
const Row fraction("tone/fraction/ours", [] { return whole(Dib24ToneCtrl, 4, 3); });
// OpenCV goes to HSV and back, without even turning.
const Row turn("hue/turn/ours", [] { return whole(DibModifyHueEx, 2, 77); });

} // namespace
