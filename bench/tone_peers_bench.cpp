// What OpenCV has for the rows of tone_bench.cpp, in one thread.
#include "support/pictures.hpp"
#include "support/row.hpp"

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

namespace {

using namespace kirvo_bench;

cv::Mat photo_mat() {
    return cv::Mat(photo_height, photo_width, CV_8UC3, const_cast<uint8_t*>(photo_bgr().data()));
}

// OpenCV's result is a new Mat each time.
template<typename F>
Work opencv(const F& operation) {
    return [=, photo = photo_mat()] {
        cv::Mat result;
        operation(photo, result);
    };
}

template<typename F>
Work opencv_in_place(const F& operation) {
    return [=, photo = photo_mat().clone()]() mutable { operation(photo); };
}

const Row brightness_opencv("tone/brightness/opencv", [] {
    return opencv([](const cv::Mat& in, cv::Mat& out) { in.convertTo(out, -1, 1.0, 51.0); });
});

const Row contrast_opencv("tone/contrast/opencv", [] {
    return opencv([](const cv::Mat& in, cv::Mat& out) { in.convertTo(out, -1, 1.3, -38.0); });
});

const Row gamma_opencv("tone/gamma/opencv", [] {
    cv::Mat table(1, 256, CV_8U);
    for (int i = 0; i < 256; ++i)
        table.at<uint8_t>(i) = static_cast<uint8_t>(255 * std::pow(i / 255.0, 0.45));
    return opencv([=](const cv::Mat& in, cv::Mat& out) { cv::LUT(in, table, out); });
});

const Row gammas_opencv("tone/gamma_channels/opencv", [] {
    cv::Mat table(1, 256, CV_8UC3);
    for (int i = 0; i < 256; ++i) {
        for (int c = 0; c < 3; ++c)
            table.at<cv::Vec3b>(i)[c] =
                static_cast<uint8_t>(255 * std::pow(i / 255.0, 0.45 + 0.5 * c));
    }
    return opencv([=](const cv::Mat& in, cv::Mat& out) { cv::LUT(in, table, out); });
});

const Row negative_opencv("tone/negative/opencv", [] {
    return opencv_in_place([](cv::Mat& photo) { cv::bitwise_not(photo, photo); });
});

const Row exchange_opencv("tone/exchange/opencv", [] {
    return opencv_in_place([](cv::Mat& photo) { cv::cvtColor(photo, photo, cv::COLOR_BGR2RGB); });
});

const Row monochrome_opencv("tone/monochrome/opencv", [] {
    return opencv([](const cv::Mat& in, cv::Mat& out) {
        cv::Mat grey;
        cv::cvtColor(in, grey, cv::COLOR_BGR2GRAY);
        cv::cvtColor(grey, out, cv::COLOR_GRAY2BGR);
    });
});

const Row half_tone_opencv("tone/half/opencv", [] {
    return opencv([](const cv::Mat& in, cv::Mat& out) { in.convertTo(out, -1, 0.5); });
});

const Row fraction_opencv("tone/fraction/opencv", [] {
    return opencv([](const cv::Mat& in, cv::Mat& out) { in.convertTo(out, -1, 4.0 / 3); });
});

const Row turn_opencv("hue/turn/opencv", [] {
    return opencv([](const cv::Mat& in, cv::Mat& out) {
        cv::Mat hsv;
        cv::cvtColor(in, hsv, cv::COLOR_BGR2HSV);
        cv::cvtColor(hsv, out, cv::COLOR_HSV2BGR);
    });
});

} // namespace
