#include "support/library.hpp"

int kirvo_bench::library_in_use() { return 0; }
