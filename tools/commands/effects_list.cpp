// kirvo effects: what convert can do to a picture.
#include "commands/commands.hpp"
#include "effects/effects.hpp"
#include "line/json.hpp"
#include "line/suggestions.hpp"
#include "system/settings.hpp"

#include <cstdio>

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

Json as_json(const Effect& effect) {
    return {{"option", effect.option},
            {"parameters", effect.values()},
            {"ranges", effect.ranges()},
            {"summary", effect.summary},
            {"example", effect.example}};
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
