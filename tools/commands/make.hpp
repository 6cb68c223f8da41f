// Pictures from nothing.
#pragma once

#include "pictures/image.hpp"

Image make_solid(int32_t width, int32_t height, uint32_t colour);
// Two colours from left to right, or from top to bottom.
Image make_gradient(int32_t width, int32_t height, uint32_t from, uint32_t to, bool vertical);
// Four colours: top left, top right, bottom left, bottom right.
Image make_gradient(int32_t width, int32_t height, const uint32_t (&corners)[4]);
