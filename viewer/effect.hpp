// Effects of the catalogue in the viewer.
#pragma once

#include "calls/step.hpp"
#include "effects/effects.hpp"

// Whether it makes sense in a part of a picture.
bool works_on_parts(const Effect& effect);
