// kirvo turn: JPEG files turned without decoding them.
#include "commands/commands.hpp"
#include "commands/convert.hpp"
#include "commands/shared_options.hpp"

namespace {

struct TurnOptions {
    Conversion conversion;
    Operands operands;
    Run run;
    std::string way;
};

const std::vector<std::string> ways = {"upright", "90", "180", "270", "flip", "mirror"};

bool run(TurnOptions& all) {
    all.conversion.turning->way = Values("kirvo turn", {mode("WAY", ways, 0)}, all.way).integer(0);
    Operands& operands = all.operands;
    for (const std::string& name : operands.names)
        if (name == "-")
            throw UsageError("kirvo turn works on files, not on standard input and output");
    // One file alone is turned itself: nothing is lost by it.
    if (operands.names.size() == 1 && operands.output.empty() && operands.suffix.empty())
        operands.in_place = true;
    return convert(all.conversion, operands, all.run);
}

} // namespace

void add_turn(Command& program, bool& good) {
    static TurnOptions all;
    all.conversion.turning.emplace();
    Command* command = program.add("turn", "Turns JPEG files without loss");
    command->usage = {"WAY FILE", "WAY INPUT OUTPUT", "WAY INPUT... --in-place",
                      "WAY INPUT... -o DIR"};
    command->examples = {"kirvo turn 90 photo.jpg", "kirvo turn upright --in-place *.jpg",
                         "kirvo turn mirror photo.jpg mirrored.jpg"};
    command->notes =
        "A file alone is turned itself, several with --in-place. Nothing is decoded: what comes "
        "out is "
        "as good as what went in. Rows or columns at an edge that do not fill a block of 8 "
        "or 16 pixels cannot move; they are kept where they are, or cut off with --trim.";
    CLI::Option* way =
        command
            ->add_option("WAY", all.way,
                         "90, 180 or 270 degrees clockwise, flip (upside down), mirror, or upright "
                         "as EXIF says")
            ->type_name("WAY")
            ->required();
    command->offer(way, ways);
    add_operands(command, all.operands, "JPEG files", "");
    command->add_flag("--in-place", all.operands.in_place, "Replace the inputs");
    CLI::Option* trim = command->add_flag_callback(
        "--trim", [] { all.conversion.turning->edges = KIRVO_FILES_EDGES_TRIM; },
        "Cut edges off that cannot be turned");
    command
        ->add_flag_callback(
            "--perfect", [] { all.conversion.turning->edges = KIRVO_FILES_EDGES_FAIL; },
            "Turn only what can be turned as a whole")
        ->excludes(trim);
    add_strip(command, all.conversion.writing);
    add_run(command, all.run);
    command->callback([&good] { good = run(all); });
}
