// kirvo effects: what convert can do to a picture.
#pragma once

#include <string>
#include <vector>

// Describes the effects of these names, with or without their dashes; all when there are none.
// Throws UsageError for a name that is none.
void print_effects(const std::vector<std::string>& names);
