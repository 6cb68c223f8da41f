#include "parameter_rows.hpp"

#include "text.hpp"

#include <algorithm>
#include <cstdio>
#include <map>

using Kind = Parameter::Kind;

// Where the library takes any number, the ones that make a difference.
std::optional<SliderRange> slider_range(const Parameter& parameter, int width, int height) {
    if (parameter.kind == Kind::real)
        return SliderRange{0, 400, 100};
    if (parameter.kind != Kind::whole || parameter.name == "D")
        return {};
    if (parameter.name == "X" || parameter.name == "W")
        return SliderRange{static_cast<int>(parameter.least), width, 1};
    if (parameter.name == "Y" || parameter.name == "H")
        return SliderRange{static_cast<int>(parameter.least), height, 1};
    if (parameter.most < no_bound)
        return SliderRange{static_cast<int>(parameter.least),
                           std::min(static_cast<int>(parameter.most), 359), 1};
    if (parameter.name == "THRESHOLD")
        return SliderRange{0, 255, 1};
    return parameter.least > -no_bound ? SliderRange{static_cast<int>(parameter.least), 64, 1}
                                       : SliderRange{-16, 16, 1};
}

std::wstring label_of(const Parameter& parameter) {
    if (parameter.kind == Kind::choice && parameter.name.find('|') != std::string::npos)
        return L"Kind"; // named by its words, which the list shows
    static const std::map<std::string, std::wstring> names = {
        {"X", L"Left"}, {"Y", L"Top"}, {"W", L"Width"}, {"H", L"Height"}, {"WxH", L"Size"}};
    const auto found = names.find(parameter.name);
    if (found != names.end())
        return found->second;
    std::wstring text = wide(parameter.name);
    for (size_t i = 1; i < text.size(); ++i)
        text[i] = text[i] >= L'A' && text[i] <= L'Z' ? static_cast<wchar_t>(text[i] - L'A' + L'a')
                                                     : text[i];
    return text;
}

bool has_words(const Parameter& parameter) {
    return parameter.kind == Kind::mode || parameter.kind == Kind::choice;
}

std::wstring slider_text(int position, const SliderRange& range) {
    char text[32];
    std::snprintf(text, sizeof text, "%g", position / range.steps);
    return wide(text);
}
