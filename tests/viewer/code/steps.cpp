// Writes what the viewer would show as code: kirvo_view_code PICTURE OTHER FOLDER. For each effect with
// the values that its dialog begins with, and with those at the ends of its sliders, and for several
// effects after each other: a file in each language, a command line, and the picture that was the
// result.
#include "calls/code.hpp"
#include "effect.hpp"
#include "effects/presentation.hpp"
#include "pictures/picture.hpp"

#include <algorithm>
#include <cstdio>

namespace {

void write(const std::string& name, const std::string& text) {
    FILE* file = std::fopen(name.c_str(), "wb");
    if (file == nullptr || std::fwrite(text.data(), 1, text.size(), file) != text.size() ||
        std::fclose(file) != 0)
        throw Failure(name, "cannot be written");
}

void write_all(const std::string& folder, const std::string& title, const Image& result,
               const std::vector<Step>& steps) {
    const std::string name = folder + "/" + title;
    const char* extensions[] = {".c", ".cs", ".pas", ".bas", ".py", ".cpp"};
    for (int i = 0; i < language_count; ++i)
        write(name + extensions[i], code_of(static_cast<Language>(i), steps));
    if (std::none_of(steps.begin(), steps.end(), [](const Step& step) { return step.place; }))
        write(name + ".line", command_line_of(steps, "picture.bmp", title + "-line.bmp"));
    if (KirvoFilesSave((name + ".bmp").c_str(), result.handle(), nullptr, nullptr, nullptr) !=
        KIRVO_FILES_OK)
        throw Failure(name, "is not saved");
}

enum class Values { first, least, most };
constexpr const char* endings[] = {"", "-least", "-most"};

std::string value_of(const Parameter& parameter, const std::string& first, Values which,
                     const Image& image) {
    if (which == Values::first)
        return first;
    if (has_words(parameter))
        return which == Values::least ? parameter.words.front() : parameter.words.back();
    const auto range = slider_range(parameter);
    if (!range)
        return first;
    const SliderRange ends = range->within(image.width(), image.height());
    return slider_text(which == Values::least ? ends.least : ends.most, ends);
}

Step step_of(const Effect& effect, const Image& image, const std::string& other, Values which) {
    const std::vector<std::string> values =
        first_values(effect, {0, 0, image.width(), image.height()});
    std::string text;
    for (size_t i = 0; i < values.size(); ++i) {
        const Parameter& parameter = effect.parameters[i];
        const std::string value = parameter.kind == Parameter::Kind::file
                                      ? other
                                      : value_of(parameter, values[i], which, image);
        text += (i != 0 && !value.empty() ? "," : "") + value;
    }
    return {effect.option, text, {}, {}};
}

// Not every effect takes all of its ends at once: the first values it does.
void write_effect(const std::string& folder, const Effect& effect, const Image& image,
                  const std::string& other) {
    for (const Values which : {Values::first, Values::least, Values::most}) {
        if (which != Values::first && effect.parameters.empty())
            continue;
        try {
            Step step = step_of(effect, image, other, which);
            const Image result = applied(image, step);
            write_all(folder, effect.name() + endings[static_cast<int>(which)], result, {step});
        } catch (const std::exception&) {
            if (which == Values::first)
                throw;
        }
    }
}

void run(const std::string& picture, const std::string& other, const std::string& folder) {
    const Image image = read_image(picture);
    for (const Effect& effect : effects()) {
        if (effect.name() == "histogram")
            continue; // a window of the viewer
        write_effect(folder, effect, image, other);
    }
    std::vector<Step> steps = {{"--palette", "16", {}, {}},
                               {"--blur", "", {}, {}}, // which wants 24 bits
                               {"--negative", "", RECT{3, 4, 20, 15}, {}},
                               {"--posterise", "4", {}, {}},
                               {"--paste", other + ",5,6", {}, {}},
                               {"--resize", "50%", {}, {}}};
    Image now = image.copy();
    for (Step& step : steps)
        now = applied(now, step);
    write_all(folder, "several", now, steps);
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 4)
        return 2;
    try {
        run(argv[1], argv[2], argv[3]);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
