// kirvo info: what a file holds.
#pragma once

#include <string>
#include <vector>

// Prints a description of each file, as text or as one JSON array. Files that cannot be described
// are told on standard error; true when there was none.
bool print_info(const std::vector<std::string>& names);
