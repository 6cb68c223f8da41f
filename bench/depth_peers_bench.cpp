// OpenCV's conversions between depths.
#include "support/pictures.hpp"
#include "support/row.hpp"

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

namespace {

using namespace kirvo_bench;

// The same pictures as matrices of their own. The order of their rows makes no difference.
cv::Mat matrix(int from_bits) {
    const cv::Mat photo(photo_height, photo_width, CV_8UC3,
                        const_cast<uint8_t*>(photo_bgr().data()));
    cv::Mat made = photo;
    if (from_bits == 16)
        cv::cvtColor(photo, made, cv::COLOR_BGR2BGR565);
    if (from_bits == 32)
        cv::cvtColor(photo, made, cv::COLOR_BGR2BGRA);
    return made;
}

auto opencv(int code, int from_bits) {
    return [code, from_bits] {
        return [code, from = matrix(from_bits)] {
            cv::Mat to;
            cv::cvtColor(from, to, code);
        };
    };
}

const Row from16to24_cv("depth/16to24/opencv", opencv(cv::COLOR_BGR5652BGR, 16));
const Row from32to24_cv("depth/32to24/opencv", opencv(cv::COLOR_BGRA2BGR, 32));
const Row from24to16_cv("depth/24to16/opencv", opencv(cv::COLOR_BGR2BGR565, 24));
const Row from32to16_cv("depth/32to16/opencv", opencv(cv::COLOR_BGRA2BGR565, 32));
const Row from16to32_cv("depth/16to32/opencv", opencv(cv::COLOR_BGR5652BGRA, 16));
const Row from24to32_cv("depth/24to32/opencv", opencv(cv::COLOR_BGR2BGRA, 24));

const Row cut_cv("depth/cut/opencv", [] {
    return [photo = matrix(24)] {
        cv::Mat to;
        cv::bitwise_and(photo, cv::Scalar(0xF8, 0xFC, 0xF8), to);
    };
});

} // namespace
