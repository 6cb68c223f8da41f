// What is known of a file, as a record and in words.
#pragma once

#include "line/json.hpp"

#include <string>

// "-" is standard input. Throws Failure.
Json describe(const std::string& name);
// "photo.jpg: JPEG, 4000 x 3000, 24 bits, ..."
std::string in_a_line(const Json& description);
// A member a line.
std::string in_tables(const Json& description);
