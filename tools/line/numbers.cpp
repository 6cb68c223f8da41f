#include "line/numbers.hpp"

#include "system/errors.hpp"

#include <charconv>
#include <cmath>
#include <cstdlib>

std::optional<int32_t> whole_number(const std::string& text) {
    int32_t value = 0;
    const char* end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, value);
    return error == std::errc() && rest == end ? std::optional(value) : std::nullopt;
}

// from_chars for doubles is 40 KB, and not every library has it. strtod takes a few things more:
// spaces, a sign before a positive number, hexadecimal digits.
std::optional<double> real_number(const std::string& text) {
    char* rest = nullptr;
    const double value = std::strtod(text.c_str(), &rest);
    const bool plain =
        !text.empty() && text[0] != '+' && text.find_first_not_of("+-.0123456789eE") > text.size();
    const bool whole = plain && rest == text.data() + text.size();
    return whole && std::isfinite(value) ? std::optional(value) : std::nullopt;
}

uint32_t parse_bytes(const std::string& text) {
    std::string digits = text;
    if (!digits.empty() && (digits.back() == 'b' || digits.back() == 'B'))
        digits.pop_back();
    double unit = 1;
    if (!digits.empty() && std::string("kKmM").find(digits.back()) != std::string::npos) {
        unit = digits.back() == 'k' || digits.back() == 'K' ? 1e3 : 1e6;
        digits.pop_back();
    }
    const auto count = real_number(digits);
    if (!count || !(*count * unit >= 1) || *count * unit > 2e9)
        throw UsageError("'" + text + "': a file's size is written 200k, 1.5M or 70000");
    return static_cast<uint32_t>(*count * unit);
}
