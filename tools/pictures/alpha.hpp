// Transparency beside the colours: effects on colours leave it alone, those that move pixels are
// applied to both.
#pragma once

#include "pictures/picture.hpp"

// Takes the alpha out of a picture that was opened with it; an opaque one has none.
void split_alpha(Picture& picture);
// Puts it back: 32 bits with alpha on top.
Image with_alpha(Image image, const Image& alpha);
// Colours times alpha, so that what is not seen does not shine through averages, and back.
void multiply(Image& image, const Image& alpha);
void divide(Image& image, const Image& alpha);
// One bit a pixel, 1 where the picture is transparent.
Image mask_of(const Image& alpha);
