// Flips, turns, zooms and composition of a 24-bit photo. The operations that work in place do so on
// one image again and again; OpenCV's make a new one each time.
#include "support/pictures.hpp"
#include "support/row.hpp"

#include <opencv2/imgproc.hpp>
#include <string>

namespace {

using namespace kirvo_bench;

cv::Mat photo_mat() {
    return {photo_height, photo_width, CV_8UC3, const_cast<uint8_t*>(photo_bgr().data())};
}

template<typename Operation>
std::function<Work()> opencv(Operation operation) {
    return [=] {
        return [=, photo = photo_mat()] {
            cv::Mat result;
            operation(photo, result);
        };
    };
}

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

auto resized(double factor, int interpolation) {
    return opencv([=](const cv::Mat& from, cv::Mat& to) {
        cv::resize(from, to, {}, factor, factor, interpolation);
    });
}

std::function<Work()> composed(int mode) {
    return [=] {
        return [=, to = scratch_dib(), from = photo_dib()] {
            Dib24Add(to, 0, 0, from, 0, 0, photo_width, photo_height, mode);
        };
    };
}

template<typename Operation>
std::function<Work()> combined(Operation operation) {
    return [=] {
        cv::Mat other;
        cv::flip(photo_mat(), other, 0);
        return [=, photo = photo_mat()] {
            cv::Mat result;
            operation(photo, other, result);
        };
    };
}

const Row flip("turn/flip/ours", in_place(Dib24Flip));
const Row flip_opencv("turn/flip/opencv",
                      opencv([](const cv::Mat& from, cv::Mat& to) { cv::flip(from, to, 0); }));
const Row mirror("turn/mirror/ours", in_place(Dib24Mirror));
const Row mirror_opencv("turn/mirror/opencv",
                        opencv([](const cv::Mat& from, cv::Mat& to) { cv::flip(from, to, 1); }));
const Row half_turn("turn/180/ours", in_place(Dib24FlipMirror));
const Row half_turn_opencv("turn/180/opencv", opencv([](const cv::Mat& from, cv::Mat& to) {
                               cv::flip(from, to, -1);
                           }));
const Row clockwise("turn/90 clockwise/ours", rotated(0));
const Row clockwise_opencv("turn/90 clockwise/opencv", opencv([](const cv::Mat& from, cv::Mat& to) {
                               cv::rotate(from, to, cv::ROTATE_90_CLOCKWISE);
                           }));
const Row counter("turn/90 counter-clockwise/ours", rotated(1));
const Row counter_opencv("turn/90 counter-clockwise/opencv",
                         opencv([](const cv::Mat& from, cv::Mat& to) {
                             cv::rotate(from, to, cv::ROTATE_90_COUNTERCLOCKWISE);
                         }));

const Row half("zoom/nearest x0.5/ours", zoomed(0.5, 0));
const Row half_opencv("zoom/nearest x0.5/opencv", resized(0.5, cv::INTER_NEAREST));
const Row larger("zoom/nearest x1.7/ours", zoomed(1.7, 0));
const Row larger_opencv("zoom/nearest x1.7/opencv", resized(1.7, cv::INTER_NEAREST));
const Row box_half("zoom/box x0.5/ours", zoomed(0.5, 1));
const Row box_half_opencv("zoom/box x0.5/opencv", resized(0.5, cv::INTER_AREA));
const Row box_quarter("zoom/box x0.25/ours", zoomed(0.25, 1));
const Row box_quarter_opencv("zoom/box x0.25/opencv", resized(0.25, cv::INTER_AREA));
const Row box_odd("zoom/box x0.3/ours", zoomed(0.3, 1));
const Row box_odd_opencv("zoom/box x0.3/opencv", resized(0.3, cv::INTER_AREA));

const Row add("compose/add/ours", composed(0));
const Row add_opencv("compose/add/opencv",
                     combined([](auto& a, auto& b, cv::Mat& to) { cv::add(a, b, to); }));
const Row average("compose/average/ours", composed(1));
const Row average_opencv("compose/average/opencv", combined([](auto& a, auto& b, cv::Mat& to) {
                             cv::addWeighted(a, 0.5, b, 0.5, 0, to);
                         }));
const Row subtract("compose/subtract/ours", composed(3));
const Row subtract_opencv("compose/subtract/opencv",
                          combined([](auto& a, auto& b, cv::Mat& to) { cv::subtract(a, b, to); }));
const Row transparent("compose/black transparent/ours", composed(2));

} // namespace
