// Calls of the library on whole pictures. An image of a depth that an operation does not take is
// converted to 24 bits first.
#pragma once

#include "pictures/image.hpp"

inline bool is_depth_error(int32_t status) {
    return status == KIRVO_NEEDS_24 ||
           (status <= KIRVO_NEEDS_8_16_24_32 && status >= KIRVO_NEEDS_16_24);
}

// An operation that makes a new image: call(handle, width, height, &status).
template<typename Call>
Image make(Image image, const char* what, Call call) {
    for (int attempt = 0;; ++attempt) {
        int32_t status = 0;
        Image result = Image::adopt(call(image.handle(), image.width(), image.height(), &status));
        if (result)
            return result;
        if (attempt > 0 || !is_depth_error(status))
            throw Failure(what, meaning(status), status);
        image = to_24_bits(std::move(image));
    }
}

// One that works in place: call(handle, width, height) answers the status.
template<typename Call>
Image change(Image image, const char* what, Call call) {
    for (int attempt = 0;; ++attempt) {
        const int32_t status = call(image.handle(), image.width(), image.height());
        if (status == KIRVO_OK)
            return image;
        if (attempt > 0 || !is_depth_error(status))
            throw Failure(what, meaning(status), status);
        image = to_24_bits(std::move(image));
    }
}
