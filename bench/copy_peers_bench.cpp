// OpenCV's copy into a new matrix.
#include "support/pictures.hpp"
#include "support/row.hpp"

#include <opencv2/core.hpp>

namespace {

using namespace kirvo_bench;

const Row duplicate_opencv("copy/duplicate/opencv", [] {
    const cv::Mat photo =
        cv::Mat(photo_height, photo_width, CV_8UC3, const_cast<uint8_t*>(photo_bgr().data()));
    return [photo] { cv::Mat copy = photo.clone(); };
});

} // namespace
