#include "pictures/comment.hpp"

#include <algorithm>

namespace {

constexpr size_t longest = 65533, marker_and_length = 4;

size_t byte(const std::string& text, size_t at) { return static_cast<unsigned char>(text[at]); }

// Behind the start of the image and the segments of applications.
size_t place_for_comment(const std::string& jpeg) {
    size_t at = 2;
    while (at + marker_and_length < jpeg.size() && byte(jpeg, at) == 0xFF &&
           (byte(jpeg, at + 1) & 0xF0) == 0xE0)
        at += 2 + (byte(jpeg, at + 2) << 8 | byte(jpeg, at + 3));
    return std::min(at, jpeg.size());
}

} // namespace

size_t size_of_comment(const std::string& comment) {
    return comment.empty() ? 0 : marker_and_length + std::min(comment.size(), longest);
}

std::string with_comment(const std::string& jpeg, const std::string& comment) {
    if (comment.empty())
        return jpeg;
    const std::string text = comment.substr(0, longest);
    const size_t length = text.size() + 2;
    const std::string segment = {'\xFF', '\xFE', static_cast<char>(length >> 8),
                                 static_cast<char>(length)};
    const size_t place = place_for_comment(jpeg);
    return jpeg.substr(0, place) + segment + text + jpeg.substr(place);
}
