// Writes what the viewer would show as code: kirvo_view_code PICTURE OTHER FOLDER. For each effect,
// and for several after each other, a file in each language and the picture that was the result.
#include "calls/code.hpp"
#include "effect.hpp"
#include "effects/presentation.hpp"
#include "pictures/picture.hpp"

#include <cstdio>

namespace {

void write(const std::string& name, const std::string& text) {
    FILE* file = std::fopen(name.c_str(), "wb");
    if (file == nullptr || std::fwrite(text.data(), 1, text.size(), file) != text.size() ||
        std::fclose(file) != 0)
        throw Failure(name, "cannot be written");
}

void write_all(const std::string& name, const Image& result, const std::vector<Step>& steps) {
    const char* extensions[] = {".c", ".cs", ".pas", ".bas", ".py", ".cpp"};
    for (int i = 0; i < language_count; ++i)
        write(name + extensions[i], code_of(static_cast<Language>(i), steps));
    if (KirvoFilesSave((name + ".bmp").c_str(), result.handle(), nullptr, nullptr, nullptr) !=
        KIRVO_FILES_OK)
        throw Failure(name, "is not saved");
}

// With the values that its dialog begins with.
Step first_step(const Effect& effect, const Image& image, const std::string& other) {
    std::vector<std::string> values = first_values(effect, {0, 0, image.width(), image.height()});
    std::string text;
    for (size_t i = 0; i < values.size(); ++i) {
        if (effect.parameters[i].kind == Parameter::Kind::file)
            values[i] = other;
        text += (i != 0 && !values[i].empty() ? "," : "") + values[i];
    }
    return {effect.option, text, {}, {}};
}

void run(const std::string& picture, const std::string& other, const std::string& folder) {
    const Image image = read_image(picture);
    for (const Effect& effect : effects()) {
        if (effect.name() == "histogram")
            continue; // a window of the viewer
        Step step = first_step(effect, image, other);
        const Image result = applied(image, step);
        write_all(folder + "/" + effect.name(), result, {step});
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
    write_all(folder + "/several", now, steps);
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
