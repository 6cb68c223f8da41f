#include "catalogue.hpp"

#include "command.hpp"
#include "effects.hpp"
#include "records.hpp"
#include "settings.hpp"

#include <algorithm>
#include <cstdio>

namespace {

constexpr size_t column = 30;

const Effect& effect_called(std::string name) {
    name.erase(0, name.find_first_not_of('-'));
    const auto found = std::find_if(effects().begin(), effects().end(), [&](const Effect& effect) {
        return effect.option + 2 == name;
    });
    if (found == effects().end())
        throw UsageError("'" + name + "' is no effect; kirvo effects lists them");
    return *found;
}

void print_effect(const Effect& effect) {
    std::string call = effect.option;
    if (effect.parameters[0] != '\0')
        call += std::string(" ") + effect.parameters;
    std::fputs(listed(call, effect.summary, column).c_str(), stdout);
    if (effect.ranges[0] != '\0')
        std::fputs(listed("", effect.ranges, column).c_str(), stdout);
}

Json as_json(const Effect& effect) {
    return {{"option", effect.option},
            {"parameters", effect.parameters},
            {"ranges", effect.ranges},
            {"summary", effect.summary},
            {"example", effect.example}};
}

} // namespace

void print_effects(const std::vector<std::string>& names) {
    std::vector<Effect> chosen;
    for (const std::string& name : names)
        chosen.push_back(effect_called(name));
    if (names.empty())
        chosen = effects();
    if (settings.json) {
        Json all = Json::array();
        for (const Effect& effect : chosen)
            all.push_back(as_json(effect));
        print_json(all);
        return;
    }
    for (const Effect& effect : chosen)
        print_effect(effect);
    if (names.empty())
        std::fputs(listed("--smooth", "Averages where --resize reduces", column).c_str(), stdout);
}
