// What peers need for the rows of other_depths_bench.cpp: OpenCV on pixels of 8, 16 and 32 bits, and
// one memcpy of the picture where nobody does the same.
#include "support/pictures.hpp"
#include "support/row.hpp"

#include <cstdlib>
#include <cstring>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#include <string>

namespace {

using namespace kirvo_bench;

using Peer = void (*)(const cv::Mat& photo, const cv::Mat& other, cv::Mat& result);

struct Operation {
    const char* name; // topic/operation, depth
    int bits;
    Peer run;
};

// Elements of the size of a pixel, whose bytes are channels at 24 and 32 bits.
cv::Mat picture(int bits, int value) {
    const int types[] = {CV_8UC1, CV_16UC1, CV_8UC3, CV_8UC4};
    cv::Mat made(photo_height, photo_width, types[bits / 8 - 1]);
    cv::randu(made, value, 256);
    return made;
}

template<int code>
void rotated(const cv::Mat& photo, const cv::Mat&, cv::Mat& result) {
    cv::rotate(photo, result, code);
}
template<int axis>
void flipped(const cv::Mat& photo, const cv::Mat&, cv::Mat&) {
    cv::flip(photo, const_cast<cv::Mat&>(photo), axis);
}
template<int percent, int interpolation>
void zoomed(const cv::Mat& photo, const cv::Mat&, cv::Mat& result) {
    cv::resize(photo, result, {}, percent / 100.0, percent / 100.0, interpolation);
}
// As OpenCV knows pixels of 5-6-5 bits: by way of 24-bit ones.
template<int percent>
void zoomed_565(const cv::Mat& photo, const cv::Mat&, cv::Mat& result) {
    static cv::Mat wide, small;
    cv::cvtColor(cv::Mat(photo.size(), CV_8UC2, photo.data), wide, cv::COLOR_BGR5652BGR);
    zoomed<percent, cv::INTER_AREA>(wide, photo, small);
    cv::cvtColor(small, result, cv::COLOR_BGR2BGR565);
}
template<int channel_count>
void mapped(const cv::Mat& photo, const cv::Mat&, cv::Mat& result) {
    static const cv::Mat table = [] {
        cv::Mat made(1, 256, CV_8UC(channel_count));
        cv::randu(made, 0, 256);
        return made;
    }();
    cv::LUT(photo, table, result);
}
// In place.
void inverted(const cv::Mat& photo, const cv::Mat&, cv::Mat&) {
    cv::bitwise_not(photo, const_cast<cv::Mat&>(photo));
}
template<int thousandths, int offset>
void scaled(const cv::Mat& photo, const cv::Mat&, cv::Mat& result) {
    photo.convertTo(result, -1, thousandths / 1000.0, offset);
}
void copied(const cv::Mat& photo, const cv::Mat&, cv::Mat& result) {
    // Of as many bytes as the rows of ours; the result is written into memory used before.
    result.create(photo.size(), photo.type());
    std::memcpy(result.data, photo.data, photo.total() * photo.elemSize());
}

void copied_twice(const cv::Mat& photo, const cv::Mat& other, cv::Mat& result) {
    result.create(2 * photo.rows, photo.cols, photo.type());
    const size_t bytes = photo.total() * photo.elemSize();
    std::memcpy(result.data, photo.data, bytes);
    std::memcpy(result.data + bytes, other.data, bytes);
}

const Operation operations[] = {
    {"compose/add, 32 bits", 32,
     [](const cv::Mat& photo, const cv::Mat& other, cv::Mat&) {
         cv::add(photo, other, const_cast<cv::Mat&>(photo));
     }},
    {"compose/subtract, 32 bits", 32,
     [](const cv::Mat& photo, const cv::Mat& other, cv::Mat&) {
         cv::subtract(photo, other, const_cast<cv::Mat&>(photo));
     }},
    {"compose/average, 32 bits", 32,
     [](const cv::Mat& photo, const cv::Mat& other, cv::Mat&) {
         cv::addWeighted(photo, 0.5, other, 0.5, 0, const_cast<cv::Mat&>(photo));
     }},
    {"tone/brightness, 32 bits", 32, scaled<1000, 51>},
    {"tone/contrast, 32 bits", 32, scaled<1300, -38>},
    {"tone/half, 32 bits", 32, scaled<500, 0>},
    {"tone/fraction, 32 bits", 32, scaled<1333, 0>},
    {"tone/gamma_channels, 32 bits", 32, mapped<4>},
    {"tone/negative, 16 bits", 16, inverted},
    {"tone/negative, 32 bits", 32, inverted},
    {"tone/exchange, 32 bits", 32,
     [](const cv::Mat& photo, const cv::Mat&, cv::Mat&) {
         cv::cvtColor(photo, const_cast<cv::Mat&>(photo), cv::COLOR_BGRA2RGBA);
     }},
    {"tone/monochrome, 32 bits", 32,
     [](const cv::Mat& photo, const cv::Mat& grey, cv::Mat& result) {
         cv::cvtColor(photo, const_cast<cv::Mat&>(grey), cv::COLOR_BGRA2GRAY);
         cv::cvtColor(grey, result, cv::COLOR_GRAY2BGR);
     }},
    {"tone/map, 24 bits", 24, mapped<1>},
    {"tone/map, 32 bits", 32, mapped<1>},
    {"reduce/grey, 32 bits", 32,
     [](const cv::Mat& photo, const cv::Mat&, cv::Mat& result) {
         cv::cvtColor(photo, result, cv::COLOR_BGRA2GRAY);
     }},
    {"filter/darkest-2, 32 bits", 32,
     [](const cv::Mat& photo, const cv::Mat&, cv::Mat& result) {
         cv::erode(photo, result, cv::Mat::ones(5, 5, CV_8U));
     }},
    {"filter/darkest-3, 32 bits", 32,
     [](const cv::Mat& photo, const cv::Mat&, cv::Mat& result) {
         cv::erode(photo, result, cv::Mat::ones(7, 7, CV_8U));
     }},
    {"zoom/box x0.5, 16 bits", 16, zoomed_565<50>},
    {"zoom/box x0.25, 16 bits", 16, zoomed_565<25>},
    {"zoom/box x0.5, 32 bits", 32, zoomed<50, cv::INTER_AREA>},
    {"zoom/box x0.25, 32 bits", 32, zoomed<25, cv::INTER_AREA>},
    {"zoom/nearest x0.5, 32 bits", 32, zoomed<50, cv::INTER_NEAREST>},
    {"zoom/nearest x1.7, 32 bits", 32, zoomed<170, cv::INTER_NEAREST>},
    {"turn/90 clockwise, 8 bits", 8, rotated<cv::ROTATE_90_CLOCKWISE>},
    {"turn/90 clockwise, 16 bits", 16, rotated<cv::ROTATE_90_CLOCKWISE>},
    {"turn/90 clockwise, 32 bits", 32, rotated<cv::ROTATE_90_CLOCKWISE>},
    {"turn/flip, 8 bits", 8, flipped<0>},
    {"turn/flip, 16 bits", 16, flipped<0>},
    {"turn/flip, 32 bits", 32, flipped<0>},
    {"turn/mirror, 8 bits", 8, flipped<1>},
    {"turn/mirror, 16 bits", 16, flipped<1>},
    {"turn/mirror, 32 bits", 32, flipped<1>},
    {"copy/duplicate, 8 bits", 8, copied},
    {"copy/duplicate, 16 bits", 16, copied},
    {"copy/duplicate, 32 bits", 32, copied},
    {"filter/interleave, 24 bits", 24, copied_twice},
    {"filter/interleave, 32 bits", 32, copied_twice},
    {"draw/gradient 1", 24, copied},
    {"draw/gradient 2", 24, copied},
    {"draw/gradient 3", 24, copied},
    {"draw/solid", 24, copied},
};

const bool added = [] {
    for (const Operation& operation : operations) {
        const bool copies = operation.run == &copied || operation.run == &copied_twice;
        const std::string name = operation.name + std::string(copies ? "/memcpy" : "/opencv");
        const Row row(name.c_str(), [operation] {
            return [run = operation.run, photo = picture(operation.bits, 0),
                    other = picture(operation.bits, 128)] {
                cv::Mat result;
                run(photo, other, result);
            };
        });
    }
    return true;
}();

} // namespace
