// How much can be done at a time.
#pragma once

#include <cstddef>

// Processors that this program may use, at least 1.
size_t number_of_processors();
