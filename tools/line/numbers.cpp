#include "line/numbers.hpp"

#include "system/errors.hpp"

#include <charconv>
#include <cmath>
#include <cstdlib>

namespace {

template<typename Number>
std::optional<Number> number(const std::string& text) {
    Number value = 0;
    const char* end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, value);
    return error == std::errc() && rest == end ? std::optional(value) : std::nullopt;
}

// Some libraries read whole numbers only; strtod reads the same, and a few things more: spaces, signs
// and hexadecimal digits, which no number here has.
#ifndef __cpp_lib_to_chars
template<>
std::optional<double> number<double>(const std::string& text) {
    char* rest = nullptr;
    const double value = std::strtod(text.c_str(), &rest);
    const bool plain = !text.empty() && text.find_first_not_of("-.0123456789eE") > text.size();
    return plain && rest == text.data() + text.size() ? std::optional(value) : std::nullopt;
}
#endif

} // namespace

std::optional<int32_t> whole_number(const std::string& text) { return number<int32_t>(text); }

std::optional<double> real_number(const std::string& text) {
    const auto value = number<double>(text);
    return value && std::isfinite(*value) ? value : std::nullopt;
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
