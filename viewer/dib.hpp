// The packed DIB as all parts of the program share it, and a smaller copy of it.
#pragma once

#include "pictures/image.hpp"

#include <memory>

// A picture that is shown is not changed any more: any number of owners, and any thread, may have it.
using SharedImage = std::shared_ptr<const Image>;

inline SharedImage shared(Image image) { return std::make_shared<const Image>(std::move(image)); }

// At most so many pixels, in proportion, for a look; and to a size.
Image reduced(const Image& image, int32_t width, int32_t height);
