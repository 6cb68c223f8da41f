// An effect of the catalogue on a picture: for good, or for a look.
#pragma once

#include "effects/effects.hpp"
#include "history.hpp"

// The picture changed, which itself stays as it is; with a place, in this rectangle only. Throws
// Failure and UsageError. Runs in the worker.
Image applied(const Image& image, Step& step);

// Whether the numbers of an effect are places and sizes in pixels, which mean nothing on a reduced
// picture.
bool counts_pixels(const Effect& effect);
// Whether it makes sense in a part of a picture.
bool works_on_parts(const Effect& effect);

// The values that a dialog begins with, one for each parameter. `whole` is the picture or what is
// selected of it.
std::vector<std::string> first_values(const Effect& effect, const RECT& whole);
