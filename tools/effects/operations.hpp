// Effects that are more than one call of the library.
#pragma once

#include "effects/parameters.hpp"
#include "pictures/image.hpp"

Image crop(Image image, const Values& values);
Image resize(Image image, const Values& values);
Image fit(Image image, const Values& values);
Image rotate(Image image, const Values& values);

Image compose(Image image, const Values& values);
Image paste(Image image, const Values& values);
Image interleave(Image image, const Values& values);

Image change_gamma(Image image, const Values& values);
Image tone(Image image, const Values& values);
Image one_channel(Image image, const Values& values);
Image posterise(Image image, const Values& values);
Image keep(Image image, const Values& values);
Image count_colours(Image image, const Values& values);

Image sharpen(Image image, const Values& values);
Image convolve(Image image, const Values& values);
Image brush(Image image, const Values& values);

Image reduce(Image image, const Values& values);
Image change_depth(Image image, const Values& values);
Image at_depth(Image image, int32_t bits);
