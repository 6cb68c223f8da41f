// The manual page kirvo(1).
#pragma once

#include "line/command.hpp"

std::string manual_page(const Command& program, const std::string& version);
