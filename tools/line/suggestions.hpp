// "Did you mean ...?"
#pragma once

#include <string>
#include <vector>

// "; did you mean strong?" where one of the words is near to what was typed; else nothing.
std::string suggestion(const std::string& typed, const std::vector<std::string>& words);
