// What was done, as code of six languages and as a command line.
#pragma once

#include "calls/step.hpp"

#include <vector>

enum class Language { c, csharp, delphi, vb, python, cpp };
constexpr int language_count = 6;
const char* language_name(Language language);

// The calls of the steps in their order; empty without steps.
std::string code_of(Language language, const std::vector<Step>& steps);

// The tool called for the steps. Throws Failure for a step on a part of the picture, which the tool
// does not have.
std::string command_line_of(const std::vector<Step>& steps, const std::string& in,
                            const std::string& out);

// A name for what became of a picture, beside it: of its format where that is written, else of PNG.
std::string changed_name(const std::string& name, bool written);
