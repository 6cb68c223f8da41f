// An effect done to a picture, and the calls of the library that it took.
#pragma once

#include "calls/recorder.hpp"
#include "pictures/image.hpp"

#include <optional>
#include <string>

// An effect that has been applied.
struct Step {
    std::string option; // of the catalogue; empty for the beginning
    std::string values;
    std::optional<RECT> place; // a part of the picture only
    calls::List calls;
};

// The picture changed, which itself stays as it is; with a place, in this rectangle only. Throws
// Failure and UsageError.
Image applied(const Image& image, Step& step);
