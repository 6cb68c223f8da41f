// Numbers as people type them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

// The whole text as a number; none when it is anything else.
std::optional<int32_t> whole_number(const std::string& text);
std::optional<double> real_number(const std::string& text);
// Bytes: "200k", "1.5M", "70000". Throws UsageError.
uint32_t parse_bytes(const std::string& text);
