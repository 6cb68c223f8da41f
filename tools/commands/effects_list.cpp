// kirvo effects: what convert can do to a picture.
#include "commands/commands.hpp"
#include "effects/presentation.hpp"
#include "line/json.hpp"
#include "line/suggestions.hpp"
#include "system/settings.hpp"

#include <cstdio>
#include <map>

namespace {

constexpr size_t column = 30;

const Effect& wanted(const std::string& name) {
    const Effect* effect = effect_called(name);
    if (effect == nullptr)
        throw UsageError("'" + name + "' is no effect; kirvo effects lists them" +
                         suggestion(name, effect_names()));
    return *effect;
}

void print_effect(const Effect& effect) {
    std::fputs(listed(effect.call(), effect.summary, column).c_str(), stdout);
    if (const std::string ranges = effect.ranges(); !ranges.empty())
        std::fputs(listed("", ranges, column).c_str(), stdout);
}

// "width" stands for a number that no picture knows yet.
Json as_json(const SliderRange& range) {
    using End = SliderRange::End;
    Json json = {{"least", range.least}, {"most", range.most}, {"steps", range.steps}};
    if (range.end != End::fixed)
        json["most"] = range.end == End::width ? "width" : "height";
    return json;
}

Json as_json(const Effect& effect, size_t index) {
    using Kind = Parameter::Kind;
    static const std::map<Kind, const char*> kinds = {
        {Kind::whole, "whole"},  {Kind::real, "real"}, {Kind::colour, "colour"},
        {Kind::size, "size"},    {Kind::file, "file"}, {Kind::mode, "mode"},
        {Kind::choice, "choice"}};
    const Parameter& parameter = effect.parameters[index];
    Json json = {{"name", parameter.name},
                 {"label", label_of(effect, index)},
                 {"kind", kinds.at(parameter.kind)}};
    if (parameter.kind == Kind::whole || parameter.kind == Kind::real) {
        if (parameter.least > -no_bound)
            json["least"] = parameter.least;
        if (parameter.most < no_bound)
            json["most"] = parameter.most;
    }
    if (has_words(parameter))
        json["words"] = parameter.words;
    if (const auto slider = slider_range(parameter))
        json["slider"] = as_json(*slider);
    if (parameter.optional)
        json["optional"] = true;
    return json;
}

Json as_json(const Effect& effect) {
    Json values = Json::array();
    for (size_t i = 0; i < effect.parameters.size(); ++i)
        values.push_back(as_json(effect, i));
    return {{"option", effect.option},
            {"title", title_of(effect.option)},
            {"group", effect_groups()[group_of(effect)]},
            {"parameters", effect.values()},
            {"ranges", effect.ranges()},
            {"summary", effect.summary},
            {"example", effect.example},
            {"values", values}};
}

void print_effects(const std::vector<std::string>& names) {
    std::vector<const Effect*> chosen;
    for (const std::string& name : names)
        chosen.push_back(&wanted(name));
    for (const Effect& effect : effects()) {
        if (names.empty())
            chosen.push_back(&effect);
    }
    Json all = Json::array();
    for (const Effect* effect : chosen) {
        if (settings.json)
            all.push_back(as_json(*effect));
        else
            print_effect(*effect);
    }
    if (settings.json)
        print_json(all);
}

} // namespace

void add_effects(Command& program) {
    static std::vector<std::string> names;
    Command* command = program.add("effects", "Lists the effects with their parameters and ranges");
    command->usage = {"[NAME...]"};
    command->examples = {"kirvo effects", "kirvo effects blur hue", "kirvo effects --json"};
    CLI::Option* option =
        command->add_option("NAME", names, "Effects to describe; all when there are none")
            ->type_name("NAME");
    command->offer(option, effect_names());
    command->callback([] { print_effects(names); });
}
