#include "commands/exhibits.hpp"

#include <map>

namespace {

std::string numbers(std::initializer_list<int32_t> values) {
    std::string text;
    for (const int32_t value : values)
        text += (text.empty() ? "" : ",") + std::to_string(value);
    return text;
}

// Effects that depend on the picture, or show more than one face.
std::map<std::string, std::vector<std::string>> chosen_values(int32_t w, int32_t h,
                                                              const std::string& other) {
    return {
        {"crop", {numbers({w / 4, h / 4, (w + 1) / 2, (h + 1) / 2})}},
        {"resize", {std::to_string((w + 1) / 2) + "x" + std::to_string(h)}},
        {"rotate", {"90", "180", "270"}},
        {"compose", {other + ",add", other + ",average", other + ",subtract", other + ",key"}},
        {"paste", {}},     // needs a smaller picture
        {"key", {}},       // shows in --compose
        {"histogram", {}}, // prints
        {"interleave", {other}},
        {"brightness", {"30", "-30"}},
        {"contrast", {"40", "-40"}},
        {"gamma", {"0.6", "1.8"}},
        {"tone", {"5,4", "1.2,1.0,0.7"}},
        {"swap-channels", {"rbg", "gbr", "grb", "brg", "bgr"}},
        {"channel", {"red", "green", "blue"}},
        {"hue", {"set,210", "fade,30", "turn,120"}},
        {"sharpen",
         {"soft", "strongest", "emboss", "emboss-corner", "edges", "bright-edges", "dark-edges"}},
        {"sharpen-more", {"medium", "strong"}},
        {"edges", {"20,all", "20,bright", "20,dark"}},
        {"brush", {numbers({w / 2, h / 2, 5})}},
        {"palette", {"256", "16", "grey", "fast"}},
        {"depth", {"16"}},
    };
}

std::string padded(size_t number) { return (number < 10 ? "0" : "") + std::to_string(number); }

} // namespace

std::string Exhibit::command() const { return effect->option + (value.empty() ? "" : " " + value); }

std::vector<Exhibit> exhibits(int32_t width, int32_t height, const std::string& other) {
    const auto chosen = chosen_values(width, height, other);
    std::vector<Exhibit> all;
    for (const Effect& effect : effects()) {
        const auto own = chosen.find(effect.name());
        const std::vector<std::string> values =
            own == chosen.end() ? std::vector<std::string>{effect.example} : own->second;
        for (const std::string& value : values) {
            const std::string title =
                effect.summary + (values.size() > 1 ? ": " + value : std::string());
            all.push_back(
                {&effect, value, padded(all.size() + 1) + "-" + effect.name() + ".jpg", title});
        }
    }
    return all;
}
