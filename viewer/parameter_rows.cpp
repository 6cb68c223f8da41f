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

// The catalogue names parameters by the letters of a command line; where those are no words, these
// stand for them.
std::wstring label_of(const Effect& effect, size_t index) {
    static const std::map<std::string, std::vector<const wchar_t*>> by_effect = {
        {"--gamma", {L"Gamma (red)", L"Green", L"Blue"}},
        {"--tone", {L"Red", L"Green", L"Blue"}},
        {"--bits", {L"Red", L"Green", L"Blue"}},
        {"--dilate", {L"Radius"}},
        {"--erode", {L"Radius"}}};
    static const std::map<std::string, const wchar_t*> by_name = {
        {"X", L"Left"},   {"Y", L"Top"},     {"W", L"Width"}, {"H", L"Height"}, {"WxH", L"Size"},
        {"N", L"Amount"}, {"D", L"Divisor"}, {"LO", L"From"}, {"HI", L"To"}};
    const auto own = by_effect.find(effect.option);
    if (own != by_effect.end() && index < own->second.size())
        return own->second[index];
    const Parameter& parameter = effect.parameters[index];
    if (parameter.kind == Kind::choice && parameter.name.find('|') != std::string::npos)
        return L"Kind"; // named by its words, which the list shows
    const auto found = by_name.find(parameter.name);
    if (found != by_name.end())
        return found->second;
    std::string text = parameter.name;
    for (size_t i = 1; i < text.size(); ++i)
        text[i] = static_cast<char>(text[i] >= 'A' && text[i] <= 'Z' ? text[i] | 32 : text[i]);
    return wide(text);
}

bool has_words(const Parameter& parameter) {
    return parameter.kind == Kind::mode || parameter.kind == Kind::choice;
}

std::wstring slider_text(int position, const SliderRange& range) {
    char text[32];
    std::snprintf(text, sizeof text, "%g", position / range.steps);
    return wide(text);
}
