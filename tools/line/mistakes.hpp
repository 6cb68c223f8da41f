// Words of the command line that are taken as they were meant, and those that are not understood.
#pragma once

#include "line/command.hpp"

// "help convert" is "convert --help", "-j 2 convert" is "convert -j 2"; colours that stand one after
// the other are one value.
std::vector<std::string> usual_words(const Command& program, std::vector<std::string> words);
// What is wrong with a command line that has not been understood, with what may have been meant.
std::string explained(const Command& program, const CLI::ParseError& error);
// The innermost command that the words have named.
const Command& named_command(const Command& program);
