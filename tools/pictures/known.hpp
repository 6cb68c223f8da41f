// What is known of a file beside its pixels.
#pragma once

#include "kirvo.hpp"

using Known = kirvo::File;

// What is worth knowing: of losses, with --verbose of everything.
std::vector<std::string> told_notes(const Known& known);

// Throws a Failure about a file in the library's words unless the status is success.
void expect(int32_t status, const Known& known, const std::string& name);
