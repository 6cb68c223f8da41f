// Colours as people type them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

// 0x00BBGGRR from "RRGGBB", "#RRGGBB", "#RGB" or a name. Throws UsageError.
uint32_t parse_colour(const std::string& text);
bool is_colour(const std::string& text);
