#include "commands/shared_options.hpp"

#include "line/suggestions.hpp"

#include <algorithm>

void add_operands(Command* command, Operands& operands, const char* help, const char* sizes) {
    command->add_option("FILE", operands.names, help)->type_name("FILE")->required();
    command
        ->add_option("-o,--output", operands.output,
                     "Folder, made if missing, or a name with {name}, {ext}, {folder}, {number}" +
                         std::string(sizes))
        ->type_name("DIR");
    command->add_option("--suffix", operands.suffix, "Put this behind the inputs' names: _small")
        ->type_name("TEXT");
    command->add_flag("-r,--recursive", operands.recursive,
                      "Take the pictures in folders and the folders below");
}

void add_run(Command* command, Run& run) {
    command->add_flag("--dry-run", run.dry, "Tell what would be written, and write nothing");
    command->add_value("-j,--jobs", whole("N", 1, 1024),
                       "Pictures to work on at a time; as many as there are processors",
                       [&run](const Values& v) { run.workers = v.integer(0); });
}

void add_format(Command* command, std::string& to) {
    const Parameter formats = [] {
        std::vector<std::string> words;
        for (Format format = 1; format < KIRVO_FILES_FORMATS; ++format) {
            if (KirvoFilesAbilities(format) & KIRVO_FILES_WRITES)
                words.push_back(extensions(format).front());
        }
        return choice(words);
    }();
    CLI::Option* option =
        command
            ->add_option_function<std::string>(
                "--to",
                [&to, formats](const std::string& text) {
                    to = extension("." + text);
                    if (written_format(to) == KIRVO_FILES_UNKNOWN)
                        throw UsageError("--to " + text + ": pictures are written as " +
                                         written_formats(", ") + suggestion(to, formats.words));
                },
                "Format to write, whatever the output's name says")
            ->type_name(formats.name)
            ->take_last();
    command->offer(option, formats.words);
}

void add_strip(Command* command, WriteOptions& writing) {
    command->add_flag("--strip", writing.strip,
                      "Leave out metadata: EXIF, profile, XMP, resolution");
}
