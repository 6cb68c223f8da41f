// kirvo convert on the command line.
#include "commands/commands.hpp"
#include "commands/convert.hpp"
#include "commands/shared_options.hpp"
#include "line/colours.hpp"
#include "line/numbers.hpp"

#include <map>

namespace {

struct ConvertOptions {
    Conversion conversion;
    Operands operands;
    Run run;
};

// Effects are options, taken in the order given.
void add_effect_options(Command* command, Conversion& conversion) {
    static std::vector<std::vector<std::string>> values(effects().size());
    auto which = std::make_shared<std::map<const CLI::Option*, const Effect*>>();
    for (size_t i = 0; i < effects().size(); ++i) {
        const Effect& effect = effects()[i];
        CLI::Option* option = nullptr;
        if (effect.parameters.empty()) {
            option = command->add_flag(effect.option, effect.summary)
                         ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
        } else {
            option = command->add_option(effect.option, values[i], effect.summary)
                         ->type_name(effect.values())
                         ->expected(1)
                         ->take_all()
                         ->allow_extra_args(false) // the word behind the value is a file's name
                         ->trigger_on_parse(false);
            command->offer(option, effect.parameters[0].words);
        }
        option->group(effects_group);
        which->emplace(option, &effect);
    }
    command->parse_complete_callback([command, which, &conversion] {
        std::map<const Effect*, size_t> used;
        for (const CLI::Option* option : command->parse_order()) {
            const auto found = which->find(option);
            if (found == which->end())
                continue;
            const Effect* effect = found->second;
            const size_t occurrence = used[effect]++;
            conversion.steps.emplace_back(
                *effect, effect->parameters.empty() ? "" : option->results().at(occurrence));
        }
    });
}

void add_reading(Command* command, Conversion& c) {
    command->add_flag("--keep-going", c.reading.keep_going,
                      "Take what there is of a damaged or short file");
    command->add_flag("--no-turn", c.reading.no_turn, "Leave rows as stored, whatever EXIF says");
    command->add_value("--background", colour(), "Lay what is transparent over this colour",
                       [&c](const Values& v) { c.reading.background = v.colour(0); });
    command->add_value("--index", whole("N", 0, 65535), "Image of an icon or page, from 0",
                       [&c](const Values& v) { c.reading.index = v.integer(0); });
    command->add_option("--mask", c.mask, "Save the mask of a transparent picture here")
        ->type_name("FILE");
    command->add_value("--decoder", choice({"auto", "kirvo"}),
                       "Read every JPEG with Kirvo's own decoder, or what suits it",
                       [&c](const Values& v) { c.reading.kirvo_only = v.text(0) == "kirvo"; });
    command->add_flag("--no-limits", c.reading.no_limits,
                      "Believe a small file that claims a huge picture (over 64 MB, 1500 times "
                      "its bytes)");
}

void add_writing(Command* command, Conversion& c) {
    WriteOptions& w = c.writing;
    add_format(command, w.to);
    CLI::Option* quality =
        command->add_value("--quality", whole("N", 1, 100),
                           "JPEG and WebP quality; a JPEG from a JPEG keeps its own, else 90",
                           [&w](const Values& v) { w.quality = v.integer(0); });
    CLI::Option* level =
        command->add_value("--level", whole("N", 1, 5), "JPEG level, 1 finest to 5",
                           [&w](const Values& v) { w.level = v.integer(0); });
    level->excludes(quality);
    command
        ->add_option_function<std::string>(
            "--size", [&w](const std::string& text) { w.largest = parse_bytes(text); },
            "The best JPEG or WebP quality below so many bytes: 200k")
        ->type_name("BYTES");
    command->add_value("--subsample", choice({"1", "2", "4"}),
                       "JPEG chroma: 1 all, 2 half, 4 a quarter of it",
                       [&w](const Values& v) { w.subsample = std::stoi(v.text(0)); });
    command->add_flag("--grey,--gray", w.grey, "JPEG with luminance only");
    command->add_option("--comment", w.comment, "JPEG comment")->type_name("TEXT");
    command->add_value("--compression",
                       choice({"none", "lzw", "deflate", "packbits", "rle", "lossless"}),
                       "Of TIFF the first four, of Targa rle, of WebP lossless",
                       [&w](const Values& v) { w.compression = v.text(0); });
    command->add_value("--dpi", real("N", 1, 100000), "Dots an inch that the file tells of",
                       [&w](const Values& v) { w.dpi = v.real(0); });
    add_strip(command, w);
}

} // namespace

void add_convert(Command& program, bool& good) {
    static ConvertOptions all;
    Command* command =
        program.add("convert", "Reads pictures, applies effects, writes the results");
    command->usage = {"[options] INPUT OUTPUT", "[options] INPUT... DIR",
                      "[options] INPUT... -o 'out/{name}_{width}.jpg'",
                      "[options] INPUT... --in-place"};
    command->examples = {
        "kirvo convert photo.jpg small.png --resize 50% --sharpen strong",
        "kirvo convert -r photos -o thumbnails --fit 160x160",
        "kirvo convert *.jpg -o 'web/{name}_{width}.jpg' --fit 1600x1600 --size 200k",
        "kirvo convert *.jpg posters --to bmp --contrast 20 --palette 16",
        "kirvo convert - - --to jpg --blur <in.bmp >out.jpg",
    };
    command->notes =
        "Inputs are recognised by their content; kirvo --version lists the formats. Outputs are "
        "written by their extension: ." +
        written_formats(", .") +
        ". - is standard input or output. An output that exists is replaced with --force only. A "
        "damaged picture is written with --keep-going only, and never replaces a file.";
    add_operands(command, all.operands, "Pictures to read, and the one to write",
                 ", {width}, {height}");
    command->add_flag("--in-place", all.operands.in_place, "Replace the inputs");
    add_run(command, all.run);
    add_writing(command, all.conversion);
    add_reading(command, all.conversion);
    command->add_flag("--nearest", all.conversion.nearest,
                      "Resize by the nearest pixel, without averages");
    command
        ->add_flag_callback(
            "--smooth", [] { all.conversion.nearest = false; }, "")
        ->group(""); // the usual way; scripts may ask for it
    command->add_flag("--time", all.conversion.show_time, "Tell how long reading took");
    add_effect_options(command, all.conversion);
    command->callback([&good] { good = convert(all.conversion, all.operands, all.run); });
}
