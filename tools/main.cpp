// The command line: pictures described and converted.
#include "effects.hpp"
#include "files.hpp"
#include "gallery.hpp"
#include "info.hpp"
#include "make.hpp"
#include "watch.hpp"

#include <CLI/CLI.hpp>
#include <chrono>
#include <cstdio>
#include <map>

namespace {

struct Step {
    const Effect* effect;
    std::string value;
};

struct Conversion {
    std::string input, output;
    ReadOptions reading;
    WriteOptions writing;
    bool show_time = false;
    std::vector<Step> steps;
};

void print_time(const Image& image, std::chrono::duration<double> elapsed) {
    const double megapixels = 1e-6 * image.width() * image.height();
    std::printf("decoded %.1f megapixels in %.0f ms: %.0f MP/s\n", megapixels,
                1e3 * elapsed.count(), megapixels / elapsed.count());
}

void convert(const Conversion& job) {
    check_writable(job.output);
    const auto begun = std::chrono::steady_clock::now();
    Image image = read_image(job.input, job.reading);
    if (job.show_time)
        print_time(image, std::chrono::steady_clock::now() - begun);
    for (const Step& step : job.steps) {
        const Watch watch(step.effect->option + 2);
        image = step.effect->apply(std::move(image), Arguments(step.effect->option, step.value));
    }
    write_image(job.output, std::move(image), job.writing);
}

void add_convert(CLI::App& app, Conversion& job) {
    CLI::App* command = app.add_subcommand(
        "convert", "Reads a picture, applies effects in the order given, writes it");
    command->footer("Example: kirvo convert photo.jpg small.bmp --resize 800x600 --sharpen 0\n"
                    "All effects with their ranges: kirvo effects");
    command->add_option("input", job.input, "Picture to read, recognised by its content")
        ->required();
    command->add_option("output", job.output, "Picture to write: .bmp, .jpg or .tga")->required();
    command->add_flag("--time", job.show_time, "Tell how long reading took");
    command->add_option("--index", job.reading.icon_index, "Image of an icon file, from 0");
    command->add_option("--mask", job.reading.mask_path, "Save the icon's mask here");
    command->add_option("--quality", job.writing.quality, "JPEG quality: 1 (finest) to 5")
        ->check(CLI::Range(1, 5));
    command->add_option("--subsample", job.writing.subsample, "JPEG chroma: 1, 2 or 4")
        ->check(CLI::IsMember({1, 2, 4}));
    command->add_option("--comment", job.writing.comment, "JPEG comment");
    command->add_flag_callback("--smooth", [] { set_smooth_resizing(true); },
                               "Average where --resize reduces");
    command->add_flag("--grey", job.writing.grey, "JPEG with luminance only");

    static std::vector<std::vector<std::string>> values(effects().size());
    std::map<const CLI::Option*, size_t> which;
    for (size_t i = 0; i < effects().size(); ++i) {
        const Effect& effect = effects()[i];
        const bool takes_value = effect.parameters[0] != '\0';
        CLI::Option* option =
            takes_value
                ? command->add_option(effect.option, values[i], effect.summary)
                      ->type_name(effect.parameters)
                      ->expected(1)
                      ->take_all()
                      ->trigger_on_parse(false)
                : command->add_flag(effect.option, effect.summary)->multi_option_policy(
                      CLI::MultiOptionPolicy::TakeAll);
        option->group("Effects");
        which[option] = i;
    }
    command->callback([command, which, &job] {
        std::vector<size_t> used(effects().size(), 0);
        for (const CLI::Option* option : command->parse_order()) {
            const auto found = which.find(option);
            if (found == which.end())
                continue;
            const Effect& effect = effects()[found->second];
            const size_t occurrence = used[found->second]++;
            job.steps.push_back(
                {&effect, effect.parameters[0] != '\0' ? option->results().at(occurrence) : ""});
        }
        convert(job);
    });
}

struct Picture {
    std::string size;
    std::vector<std::string> colours;
    bool vertical = false;
    std::string output;
};

Image make_picture(const Picture& wanted) {
    int32_t width = 0, height = 0;
    char rest = 0;
    if (std::sscanf(wanted.size.c_str(), "%dx%d%c", &width, &height, &rest) != 2)
        throw UsageError("'" + wanted.size + "': a size is written WxH");
    std::vector<uint32_t> c;
    for (const std::string& colour : wanted.colours)
        c.push_back(parse_colour(colour));
    switch (c.size()) {
    case 1: return make_solid(width, height, c[0]);
    case 2: return make_gradient(width, height, c[0], c[1], wanted.vertical);
    case 4: return make_gradient(width, height, {c[0], c[1], c[2], c[3]});
    default: throw UsageError("a gradient has two or four colours");
    }
}

void add_make(CLI::App& app, Picture& wanted) {
    CLI::App* command = app.add_subcommand("make", "Makes a picture of one colour or a gradient");
    command->require_subcommand(1);
    const auto add = [&](const char* name, const char* help, int least, int most) {
        CLI::App* kind = command->add_subcommand(name, help);
        kind->add_option("size", wanted.size, "Size in pixels: WxH")->required();
        kind->add_option("output", wanted.output, "Picture to write: .bmp, .jpg or .tga")
            ->required();
        kind->add_option("--colour,-c", wanted.colours, "RRGGBB, each")
            ->required()
            ->expected(least, most);
        kind->callback([&wanted] {
            check_writable(wanted.output);
            write_image(wanted.output, make_picture(wanted));
        });
        return kind;
    };
    add("solid", "One colour", 1, 1)
        ->footer("Example: kirvo make solid 640x480 blue.bmp --colour 0000FF");
    add("gradient", "Two colours from side to side, or four from the corners", 2, 4)
        ->footer("Example: kirvo make gradient 640x480 sky.bmp --colour 3060C0 C0E0FF --vertical")
        ->add_flag("--vertical", wanted.vertical, "From top to bottom");
}

} // namespace

int main(int argc, char** argv) {
    CLI::App app("Kirvo: pictures described, converted and changed");
    app.require_subcommand(1);
    app.fallthrough(); // --quiet may stand anywhere
    app.set_help_all_flag("--help-all", "Help of every command");
    bool quiet = false;
    app.add_flag("--quiet", quiet, "No progress bar")->each([](const std::string&) {
        Watch::silence();
    });

    std::vector<std::string> paths;
    bool json = false, all_described = true;
    CLI::App* info = app.add_subcommand("info", "Describes picture files");
    info->add_option("files", paths, "Files")->required();
    info->add_flag("--json", json, "As JSON");
    info->callback([&] { all_described = print_info(paths, json); });

    Conversion job;
    add_convert(app, job);
    Picture picture;
    add_make(app, picture);
    std::string gallery_input, gallery_folder;
    CLI::App* gallery =
        app.add_subcommand("gallery", "Shows every effect on one picture, as a web page");
    gallery->add_option("input", gallery_input, "Picture to read")->required();
    gallery->add_option("folder", gallery_folder, "Folder to write")->required();
    gallery->callback([&] { make_gallery(gallery_input, gallery_folder); });
    app.add_subcommand("effects", "Lists every effect with its parameters and ranges")
        ->callback(print_effects);

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : 2;
    } catch (const UsageError& error) {
        std::fprintf(stderr, "kirvo: %s\n", error.what());
        return 2;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "kirvo: %s\n", error.what());
        return 1;
    }
    return all_described ? 0 : 1;
}
