// What a shell needs to complete the command line.
#pragma once

#include "line/command.hpp"

// For "bash", "zsh", "fish" or "powershell".
std::string completions(const Command& program, const std::string& shell);
