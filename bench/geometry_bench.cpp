// Flips, turns, zooms and composition of a 24-bit photo. The operations that work in place do so on
// one image again and again; OpenCV's make a new one each time.
#include "support/pictures.hpp"
#include "support/row.hpp"

namespace {

using namespace kirvo_bench;

using InPlace = int32_t(WINAPI*)(HGLOBAL, int32_t, int32_t, int32_t, int32_t);

std::function<Work()> in_place(InPlace turn) {
    return [=] { return [=, dib = scratch_dib()] { turn(dib, 0, 0, photo_width, photo_height); }; };
}

std::function<Work()> rotated(int direction) {
    return [=] {
        return [=, dib = photo_dib()] {
            GlobalFree(Dib24Rotate(dib, 0, 0, photo_width, photo_height, direction, nullptr));
        };
    };
}

std::function<Work()> zoomed(double factor, int smooth) {
    return [=] {
        const int width = static_cast<int>(photo_width * factor);
        const int height = static_cast<int>(photo_height * factor);
        return [=, dib = photo_dib()] {
            GlobalFree(
                Dib24ZoomEx2(dib, 0, 0, photo_width, photo_height, width, height, nullptr, smooth));
        };
    };
}

std::function<Work()> composed(int mode) {
    return [=] {
        return [=, to = scratch_dib(), from = photo_dib()] {
            Dib24Add(to, 0, 0, from, 0, 0, photo_width, photo_height, mode);
        };
    };
}

const Row flip("turn/flip/ours", in_place(Dib24Flip));
const Row mirror("turn/mirror/ours", in_place(Dib24Mirror));
const Row half_turn("turn/180/ours", in_place(Dib24FlipMirror));
const Row clockwise("turn/90 clockwise/ours", rotated(0));
const Row counter("turn/90 counter-clockwise/ours", rotated(1));
const Row half("zoom/nearest x0.5/ours", zoomed(0.5, 0));
const Row larger("zoom/nearest x1.7/ours", zoomed(1.7, 0));
const Row box_half("zoom/box x0.5/ours", zoomed(0.5, 1));
const Row box_quarter("zoom/box x0.25/ours", zoomed(0.25, 1));
const Row box_odd("zoom/box x0.3/ours", zoomed(0.3, 1));
const Row add("compose/add/ours", composed(0));
const Row average("compose/average/ours", composed(1));
const Row subtract("compose/subtract/ours", composed(3));
const Row transparent("compose/black transparent/ours", composed(2));

} // namespace
