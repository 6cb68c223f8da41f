#include "effects/presentation.hpp"

#include <algorithm>
#include <cstdio>
#include <map>
#include <set>

namespace {

using Kind = Parameter::Kind;
using End = SliderRange::End;

struct Group {
    const char* title;
    std::vector<std::string> effects;
};

// An effect that is not named here gets into the last group.
const std::vector<Group>& groups() {
    static const std::vector<Group> all = {
        {"Copy and compose", {"crop", "compose", "key", "paste", "interleave"}},
        {"Turn and zoom", {"resize", "fit", "rotate", "flip", "mirror"}},
        {"Tone",
         {"brightness", "contrast", "gamma", "tone", "posterise", "negative", "mono", "halftone",
          "swap-channels", "channel"}},
        {"Hue", {"hue"}},
        {"Filters", {"blur", "sharpen", "sharpen-more", "edges", "kernel", "brush", "keep"}},
        {"Patterns, mosaics and histograms",
         {"mosaic", "mosaic-average", "dilate", "erode", "xor", "histogram"}},
        {"Colours", {"palette", "depth", "bits"}},
        {"Further", {}},
    };
    return all;
}

std::string first_value(const Parameter& parameter, const RECT& whole) {
    const auto number = [](LONG value) { return std::to_string(value); };
    switch (parameter.kind) {
    case Kind::mode:
    case Kind::choice:
        return parameter.words.front();
    case Kind::colour:
        return "808080";
    case Kind::size:
        return "50%";
    case Kind::file:
        return "";
    default:
        break;
    }
    if (parameter.optional)
        return "";
    if (parameter.name == "X")
        return number(whole.left);
    if (parameter.name == "Y")
        return number(whole.top);
    if (parameter.name == "W")
        return number(whole.right - whole.left);
    if (parameter.name == "H")
        return number(whole.bottom - whole.top);
    return number(static_cast<LONG>(std::clamp(0.0, parameter.least, parameter.most)));
}

} // namespace

const std::vector<std::string>& effect_groups() {
    static const std::vector<std::string> titles = [] {
        std::vector<std::string> all;
        for (const Group& group : groups())
            all.push_back(group.title);
        return all;
    }();
    return titles;
}

size_t group_of(const Effect& effect) {
    const auto holds = [&](const Group& group) {
        return std::find(group.effects.begin(), group.effects.end(), effect.name()) !=
               group.effects.end();
    };
    const auto found = std::find_if(groups().begin(), groups().end() - 1, holds);
    return static_cast<size_t>(found - groups().begin());
}

std::string title_of(const std::string& option) {
    std::string title = option.substr(2);
    title[0] = static_cast<char>(title[0] - 'a' + 'A');
    std::replace(title.begin(), title.end(), '-', ' ');
    return title;
}

SliderRange SliderRange::within(int width, int height) const {
    return {least, end == End::fixed ? most : end == End::width ? width : height, steps};
}

// Where the library takes any number, the ones that make a difference.
std::optional<SliderRange> slider_range(const Parameter& parameter) {
    if (parameter.kind == Kind::real)
        return SliderRange{0, 400, 100};
    if (parameter.kind != Kind::whole || parameter.name == "D")
        return {};
    const int least = static_cast<int>(parameter.least);
    if (parameter.name == "X" || parameter.name == "W")
        return SliderRange{least, 0, 1, End::width};
    if (parameter.name == "Y" || parameter.name == "H")
        return SliderRange{least, 0, 1, End::height};
    if (parameter.most < no_bound)
        return SliderRange{least, std::min(static_cast<int>(parameter.most), 359), 1};
    if (parameter.name == "THRESHOLD")
        return SliderRange{0, 255, 1};
    return parameter.least > -no_bound ? SliderRange{least, 64, 1} : SliderRange{-16, 16, 1};
}

// The catalogue names parameters by the letters of a command line; where those are no words, these
// stand for them.
std::string label_of(const Effect& effect, size_t index) {
    static const std::map<std::string, std::vector<const char*>> by_effect = {
        {"--gamma", {"Gamma (red)", "Green", "Blue"}},
        {"--tone", {"Red", "Green", "Blue"}},
        {"--bits", {"Red", "Green", "Blue"}},
        {"--dilate", {"Radius"}},
        {"--erode", {"Radius"}}};
    static const std::map<std::string, const char*> by_name = {
        {"X", "Left"},   {"Y", "Top"},     {"W", "Width"}, {"H", "Height"}, {"WxH", "Size"},
        {"N", "Amount"}, {"D", "Divisor"}, {"LO", "From"}, {"HI", "To"}};
    const auto own = by_effect.find(effect.option);
    if (own != by_effect.end() && index < own->second.size())
        return own->second[index];
    const Parameter& parameter = effect.parameters[index];
    if (parameter.kind == Kind::choice && parameter.name.find('|') != std::string::npos)
        return "Kind"; // named by its words, which the list shows
    const auto found = by_name.find(parameter.name);
    if (found != by_name.end())
        return found->second;
    std::string text = parameter.name;
    for (size_t i = 1; i < text.size(); ++i)
        text[i] = static_cast<char>(text[i] >= 'A' && text[i] <= 'Z' ? text[i] | 32 : text[i]);
    return text;
}

bool has_words(const Parameter& parameter) {
    return parameter.kind == Kind::mode || parameter.kind == Kind::choice;
}

std::string slider_text(int position, const SliderRange& range) {
    char text[32];
    std::snprintf(text, sizeof text, "%g", position / range.steps);
    return text;
}

bool counts_pixels(const Effect& effect) {
    static const std::set<std::string> all = {"X", "Y", "W", "H", "WxH"};
    return std::any_of(effect.parameters.begin(), effect.parameters.end(),
                       [](const Parameter& parameter) { return all.contains(parameter.name); });
}

std::vector<std::string> first_values(const Effect& effect, const RECT& whole) {
    std::vector<std::string> values;
    for (const Parameter& parameter : effect.parameters)
        values.push_back(first_value(parameter, whole));
    if (*effect.example != '\0' && !values.empty()) {
        const std::vector<std::string> example = split(effect.example);
        for (size_t i = 0; i < values.size(); ++i)
            values[i] = i < example.size() ? example[i] : "";
    }
    return values;
}
