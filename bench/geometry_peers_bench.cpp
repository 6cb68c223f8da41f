// What OpenCV has for the rows of geometry_bench.cpp; it makes a new matrix each time.
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

auto resized(double factor, int interpolation) {
    return opencv([=](const cv::Mat& from, cv::Mat& to) {
        cv::resize(from, to, {}, factor, factor, interpolation);
    });
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

const Row flip_opencv("turn/flip/opencv",
                      opencv([](const cv::Mat& from, cv::Mat& to) { cv::flip(from, to, 0); }));
const Row mirror_opencv("turn/mirror/opencv",
                        opencv([](const cv::Mat& from, cv::Mat& to) { cv::flip(from, to, 1); }));
const Row half_turn_opencv("turn/180/opencv", opencv([](const cv::Mat& from, cv::Mat& to) {
                               cv::flip(from, to, -1);
                           }));
const Row clockwise_opencv("turn/90 clockwise/opencv", opencv([](const cv::Mat& from, cv::Mat& to) {
                               cv::rotate(from, to, cv::ROTATE_90_CLOCKWISE);
                           }));
const Row counter_opencv("turn/90 counter-clockwise/opencv",
                         opencv([](const cv::Mat& from, cv::Mat& to) {
                             cv::rotate(from, to, cv::ROTATE_90_COUNTERCLOCKWISE);
                         }));

const Row half_opencv("zoom/nearest x0.5/opencv", resized(0.5, cv::INTER_NEAREST));
const Row larger_opencv("zoom/nearest x1.7/opencv", resized(1.7, cv::INTER_NEAREST));
const Row box_half_opencv("zoom/box x0.5/opencv", resized(0.5, cv::INTER_AREA));
const Row box_quarter_opencv("zoom/box x0.25/opencv", resized(0.25, cv::INTER_AREA));
const Row box_odd_opencv("zoom/box x0.3/opencv", resized(0.3, cv::INTER_AREA));

const Row add_opencv("compose/add/opencv",
                     combined([](auto& a, auto& b, cv::Mat& to) { cv::add(a, b, to); }));
const Row average_opencv("compose/average/opencv", combined([](auto& a, auto& b, cv::Mat& to) {
                             cv::addWeighted(a, 0.5, b, 0.5, 0, to);
                         }));
const Row subtract_opencv("compose/subtract/opencv",
                          combined([](auto& a, auto& b, cv::Mat& to) { cv::subtract(a, b, to); }));

} // namespace
