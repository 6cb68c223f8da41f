// The command line: pictures described and converted.
#include "catalogue.hpp"
#include "command.hpp"
#include "completions.hpp"
#include "convert.hpp"
#include "gallery.hpp"
#include "info.hpp"
#include "make.hpp"
#include "manual.hpp"
#include "settings.hpp"
#include "temporary.hpp"
#include "terminal.hpp"

#include <map>

#ifdef _WIN32
extern "C" int _dowildcard;
int _dowildcard = -1; // "*.jpg" is the program's to expand
#endif

namespace {

std::string version() {
    const uint32_t v = GetVerKirvoDll();
    std::string text = "kirvo";
    for (int shift = 24; shift >= 0; shift -= 8)
        text += (shift == 24 ? " " : ".") + std::to_string(v >> shift & 0xFF);
    return text;
}

void add_everywhere(Command& program) {
    program.require_subcommand(0, 1);
    program.allow_windows_style_options(false); // "/pictures/a.bmp" is a file everywhere
    program.fallthrough();                      // these options may stand anywhere
    program.add_flag("-q,--quiet", settings.quiet, "Say nothing but errors");
    program.add_flag("-f,--force", settings.force, "Replace files that exist");
    program.add_flag("--json", settings.json, "Give results as JSON");
    program.set_version_flag("--version", version, "Version of the library");
    program.usage = {"COMMAND [options]"};
    program.examples = {
        "kirvo convert photo.jpg small.bmp --resize 800x600 --smooth",
        "kirvo convert *.jpg -o small --fit 800x800 --sharpen-more 1",
    };
    program.notes = "Exit codes: 0 done, 1 an input failed, 2 wrong usage, 130 interrupted.";
}

// For packages: what is written from this same description.
struct Papers {
    bool manual = false;
    std::string shell;
};

void add_papers(Command& program, Papers& papers) {
    program.add_flag("--man", papers.manual)->group("");
    program.add_option("--completions", papers.shell)
        ->check(CLI::IsMember({"bash", "zsh", "fish", "powershell"}))
        ->group("");
}

void add_format(Command* command, std::string& to) {
    command->add_option("--to", to, "Format to write, whatever the output's name says")
        ->type_name("bmp|jpg|tga")
        ->transform(CLI::IsMember({"bmp", "jpg", "tga"}, CLI::ignore_case).description(""));
}

void add_info(Command& program, bool& good) {
    static std::vector<std::string> names;
    Command* command = program.add("info", "Describes picture files");
    command->usage = {"[options] FILE..."};
    command->examples = {"kirvo info photo.jpg icon.ico", "kirvo info --json *.jpg",
                         "kirvo info - <photo.jpg"};
    command->add_option("FILE", names, "Pictures; - is standard input")
        ->type_name("FILE")
        ->required();
    command->callback([&good] { good = print_info(names); });
}

// Effects are options, taken in the order given.
void add_effects(Command* command, Conversion& job) {
    static std::vector<std::vector<std::string>> values(effects().size());
    auto which = std::make_shared<std::map<const CLI::Option*, const Effect*>>();
    for (size_t i = 0; i < effects().size(); ++i) {
        const Effect& effect = effects()[i];
        CLI::Option* option = effect.parameters[0] != '\0'
                                  ? command->add_option(effect.option, values[i], effect.summary)
                                        ->type_name(effect.parameters)
                                        ->expected(1)
                                        ->take_all()
                                        ->trigger_on_parse(false)
                                  : command->add_flag(effect.option, effect.summary)
                                        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
        option->group(effects_group);
        which->emplace(option, &effect);
    }
    command->parse_complete_callback([command, which, &job] {
        std::map<const Effect*, size_t> used;
        for (const CLI::Option* option : command->parse_order()) {
            const auto found = which->find(option);
            if (found == which->end())
                continue;
            const Effect* effect = found->second;
            const size_t occurrence = used[effect]++;
            job.steps.push_back(
                {effect, effect->parameters[0] != '\0' ? option->results().at(occurrence) : ""});
        }
    });
}

void add_convert(Command& program, bool& good) {
    static Conversion job;
    Command* command =
        program.add("convert", "Reads pictures, applies effects, writes the results");
    command->usage = {"[options] INPUT OUTPUT", "[options] INPUT... -o DIR",
                      "[options] INPUT... --in-place"};
    command->examples = {
        "kirvo convert photo.jpg small.bmp --resize 800x600 --smooth --sharpen-more 1",
        "kirvo convert *.jpg -o posters --to bmp --contrast 20 --palette 16",
        "kirvo convert - - --to jpg --blur <in.bmp >out.jpg",
    };
    command->notes =
        "Inputs are recognised by their content: BMP, JPEG, Targa, RAW, Q0, Photo CD, icon. "
        "Outputs are written by their extension: .bmp, .jpg, .tga. - is standard input or output. "
        "An output that exists is replaced with --force only.";
    command->add_option("FILE", job.files, "Pictures to read, and the one to write")
        ->type_name("FILE")
        ->required();
    CLI::Option* folder =
        command->add_option("-o,--output", job.folder, "Folder for the results, made if missing")
            ->type_name("DIR");
    command->add_flag("--in-place", job.in_place, "Replace the inputs")->excludes(folder);
    add_format(command, job.writing.to);
    command->add_option("--quality", job.writing.quality, "JPEG quality: 1 (finest) to 5")
        ->type_name("1|2|3|4|5")
        ->check(CLI::Range(1, 5).description(""));
    command
        ->add_option("--subsample", job.writing.subsample,
                     "JPEG chroma: 1 all, 2 half, 4 a quarter of it")
        ->type_name("1|2|4")
        ->check(CLI::IsMember({1, 2, 4}).description(""));
    command->add_option("--comment", job.writing.comment, "JPEG comment")->type_name("TEXT");
    command->add_flag("--grey", job.writing.grey, "JPEG with luminance only");
    command->add_flag_callback(
        "--smooth", [] { set_smooth_resizing(true); }, "Average where --resize reduces");
    command->add_option("--index", job.reading.icon_index, "Image of an icon file, from 0")
        ->type_name("N");
    command->add_option("--mask", job.reading.mask_path, "Save the icon's mask here")
        ->type_name("FILE");
    command->add_flag("--time", job.show_time, "Tell how long reading took");
    add_effects(command, job);
    command->callback([&good] { good = convert(job); });
}

struct Picture {
    std::string size, output, to;
    std::vector<std::string> colours;
    bool vertical = false;
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
    case 1:
        return make_solid(width, height, c[0]);
    case 2:
        return make_gradient(width, height, c[0], c[1], wanted.vertical);
    case 4:
        return make_gradient(width, height, {c[0], c[1], c[2], c[3]});
    default:
        throw UsageError("a gradient has two or four colours");
    }
}

void add_make(Command& program) {
    static Picture wanted;
    Command* command = program.add("make", "Makes a picture of one colour or a gradient");
    command->require_subcommand(1);
    command->usage = {"KIND SIZE OUTPUT --colour RRGGBB..."};
    const auto add = [&](const char* name, const char* help, int least, int most) {
        Command* kind = command->add(name, help);
        kind->usage = {"SIZE OUTPUT --colour RRGGBB..."};
        kind->add_option("SIZE", wanted.size, "Size in pixels")->type_name("WxH")->required();
        kind->add_option("OUTPUT", wanted.output, "Picture to write; - is standard output")
            ->type_name("FILE")
            ->required();
        kind->add_option("-c,--colour", wanted.colours, "A colour; one after the other")
            ->type_name("RRGGBB")
            ->required()
            ->expected(least, most);
        add_format(kind, wanted.to);
        kind->callback([] {
            WriteOptions options;
            options.to = wanted.to;
            check_writable(wanted.output, wanted.to);
            write_image(wanted.output, make_picture(wanted), options);
        });
        return kind;
    };
    const std::string solid = "kirvo make solid 640x480 blue.bmp --colour 0000FF",
                      gradient = "kirvo make gradient 640x480 sky.bmp "
                                 "--colour 3060C0 C0E0FF --vertical";
    command->examples = {solid, gradient};
    add("solid", "One colour", 1, 1)->examples = {solid};
    Command* kind =
        add("gradient", "Two colours from side to side, or four from the corners", 2, 4);
    kind->examples = {gradient,
                      "kirvo make gradient 64x64 corners.bmp -c 000000 FF0000 00FF00 FFFF00"};
    kind->add_flag("--vertical", wanted.vertical, "From top to bottom");
}

void add_gallery(Command& program) {
    static std::string input, folder;
    Command* command = program.add("gallery", "Shows every effect on one picture, as a web page");
    command->usage = {"INPUT DIR"};
    command->examples = {"kirvo gallery photo.jpg gallery"};
    command->add_option("INPUT", input, "Picture to read")->type_name("FILE")->required();
    command->add_option("DIR", folder, "Folder to write, made if missing")
        ->type_name("DIR")
        ->required();
    command->callback([] { make_gallery(input, folder); });
}

void add_list_of_effects(Command& program) {
    static std::vector<std::string> names;
    Command* command = program.add("effects", "Lists the effects with their parameters and ranges");
    command->usage = {"[NAME...]"};
    command->examples = {"kirvo effects", "kirvo effects blur hue", "kirvo effects --json"};
    command->add_option("NAME", names, "Effects to describe; all when there are none")
        ->type_name("NAME");
    command->callback([] { print_effects(names); });
}

int wrong_usage(const Command& program, const std::string& why) {
    const Command* command = &program;
    while (!command->CLI::App::get_subcommands().empty())
        command = static_cast<const Command*>(command->CLI::App::get_subcommands().front());
    complain(why);
    std::fprintf(stderr, "%s --help tells more\n", command->full_name().c_str());
    return 2;
}

} // namespace

int main(int argc, char** argv) {
    clean_up_when_interrupted();
    Command program("kirvo", "pictures described, converted and changed");
    bool good = true;
    Papers papers;
    add_everywhere(program);
    add_papers(program, papers);
    add_info(program, good);
    add_convert(program, good);
    add_make(program);
    add_list_of_effects(program);
    add_gallery(program);
    try {
        program.parse(argc, argv);
        if (papers.manual)
            std::fputs(manual_page(program, version()).c_str(), stdout);
        else if (!papers.shell.empty())
            std::fputs(completions(program, papers.shell).c_str(), stdout);
        else if (program.CLI::App::get_subcommands().empty())
            throw UsageError("a command is missing");
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() != 0)
            return wrong_usage(program, error.what());
        program.exit(error);
    } catch (const UsageError& error) {
        return wrong_usage(program, error.what());
    } catch (const std::exception& error) {
        complain(error.what());
        return 1;
    }
    return good ? 0 : 1;
}
