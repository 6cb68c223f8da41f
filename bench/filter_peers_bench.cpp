// What OpenCV has for the rows of filter_bench.cpp, and a plain loop where it has nothing.
#include "support/pictures.hpp"
#include "support/row.hpp"

#include <bit>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

namespace {

using namespace kirvo_bench;

using Peer = void (*)(const cv::Mat& photo, cv::Mat& result);

std::function<Work()> opencv(Peer peer) {
    return [peer] {
        const cv::Mat photo(photo_height, photo_width, CV_8UC3,
                            const_cast<uint8_t*>(photo_bgr().data()));
        return [peer, photo] {
            cv::Mat result;
            peer(photo, result);
        };
    };
}

const int32_t &w = photo_width, &h = photo_height;

const Row blur_opencv("filter/blur/opencv", opencv([](const cv::Mat& photo, cv::Mat& result) {
                          cv::GaussianBlur(photo, result, {3, 3}, 0.8);
                      }));

const Row kernel_opencv("filter/kernel/opencv", opencv([](const cv::Mat& photo, cv::Mat& result) {
                            const cv::Mat weights =
                                (cv::Mat_<float>(3, 3) << -1, -2, 3, 4, 20, -4, 3, -2, -1) / 20;
                            cv::filter2D(photo, result, -1, weights);
                        }));
const Row wide_kernel_opencv("filter/kernel-256ths/opencv",
                             opencv([](const cv::Mat& photo, cv::Mat& result) {
                                 const cv::Mat weights =
                                     (cv::Mat_<float>(3, 3) << 10, 31, 12, 33, 81, 28, 9, 34, 18) /
                                     256;
                                 cv::filter2D(photo, result, -1, weights);
                             }));

const Row sharpen_opencv("filter/sharpen/opencv", opencv([](const cv::Mat& photo, cv::Mat& result) {
                             cv::Mat grey, edges, edges3;
                             cv::cvtColor(photo, grey, cv::COLOR_BGR2GRAY);
                             cv::Laplacian(grey, edges, CV_16S, 1, -0.125, 0, cv::BORDER_REPLICATE);
                             cv::cvtColor(cv::Mat(h, w, CV_16U, edges.data), edges3,
                                          cv::COLOR_GRAY2BGR); // which takes no signed numbers
                             cv::add(photo, cv::Mat(h, w, CV_16SC3, edges3.data), result,
                                     cv::noArray(), CV_8U);
                         }));

template<int radius>
void cv_dilated(const cv::Mat& photo, cv::Mat& result) {
    constexpr int side = 2 * radius + 1;
    cv::dilate(photo, result, cv::getStructuringElement(cv::MORPH_RECT, {side, side}));
}

const Row dilate1_opencv("filter/dilate-1/opencv", opencv(cv_dilated<1>));
const Row dilate3_opencv("filter/dilate-3/opencv", opencv(cv_dilated<3>));
const Row dilate10_opencv("filter/dilate-10/opencv", opencv(cv_dilated<10>));
const Row dilate64_opencv("filter/dilate-64/opencv", opencv(cv_dilated<64>));
const Row mosaic_opencv("filter/mosaic/opencv", opencv([](const cv::Mat& photo, cv::Mat& result) {
                            cv::Mat small;
                            cv::resize(photo, small, {w / 8, h / 8}, 0, 0, cv::INTER_NEAREST);
                            cv::resize(small, result, {w, h}, 0, 0, cv::INTER_NEAREST);
                        }));
const Row average_opencv("filter/mosaic-average/opencv",
                         opencv([](const cv::Mat& photo, cv::Mat& result) {
                             cv::Mat small;
                             cv::resize(photo, small, {w / 8, h / 8}, 0, 0, cv::INTER_AREA);
                             cv::resize(small, result, {w, h}, 0, 0, cv::INTER_NEAREST);
                         }));

const Row histogram_opencv("filter/histogram/opencv",
                           opencv([](const cv::Mat& photo, cv::Mat& result) {
                               const int size = 256;
                               const float range[] = {0, 256};
                               const float* ranges = range;
                               for (const int channel : {0, 1, 2})
                                   cv::calcHist(&photo, 1, &channel, cv::noArray(), result, 1,
                                                &size, &ranges);
                           }));

const Row colours_opencv("filter/colours/opencv", opencv([](const cv::Mat& photo, cv::Mat& result) {
                             cv::Mat seen(1, 1 << 24, CV_8U, cv::Scalar(0));
                             photo.forEach<cv::Vec3b>([&](const cv::Vec3b& p, const int*) {
                                 seen.data[p[0] | p[1] << 8 | p[2] << 16] = 1;
                             });
                             result = cv::Mat(1, 1, CV_32S, cv::Scalar(cv::countNonZero(seen)));
                         }));

const Row colours_loop("filter/colours/plain loop", [] {
    return [seen = std::vector<uint32_t>(1 << 19)]() mutable {
        std::fill(seen.begin(), seen.end(), 0);
        const std::vector<uint8_t>& bgr = photo_bgr();
        for (size_t i = 0; i < bgr.size(); i += 3) {
            const uint32_t colour = bgr[i] | uint32_t{bgr[i + 1]} << 8 | uint32_t{bgr[i + 2]} << 16;
            seen[colour / 32] |= 1u << colour % 32;
        }
        int count = 0;
        for (const uint32_t word : seen)
            count += std::popcount(word);
        __asm__ volatile("" : : "r"(count)); // it is wanted
    };
});

// Its hues are halved, and what stays is the photo's own.
const Row range_opencv("filter/range of hues/opencv",
                       opencv([](const cv::Mat& photo, cv::Mat& result) {
                           cv::Mat hsv, mask;
                           cv::cvtColor(photo, hsv, cv::COLOR_BGR2HSV);
                           cv::inRange(hsv, cv::Scalar(10, 0, 0), cv::Scalar(70, 255, 255), mask);
                           photo.copyTo(result, mask);
                       }));
const Row range_rgb_opencv("filter/range of colours/opencv",
                           opencv([](const cv::Mat& photo, cv::Mat& result) {
                               cv::Mat mask;
                               cv::inRange(photo, cv::Scalar(0, 40, 60), cv::Scalar(180, 200, 200),
                                           mask);
                               photo.copyTo(result, mask);
                           }));

} // namespace
