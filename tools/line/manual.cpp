#include "line/manual.hpp"

#include "effects/effects.hpp"
#include "pictures/formats.hpp"

#include <algorithm>

namespace {

// Text for a formatter: dashes stay what is typed, nothing is taken for a request.
std::string plain(const std::string& text) {
    std::string result = text.empty() || (text[0] != '.' && text[0] != '\'') ? "" : "\\&";
    for (const char c : text)
        result += c == '-' ? "\\-" : c == '\\' ? "\\e" : std::string(1, c);
    return result;
}

std::string bold(const std::string& text) { return "\\fB" + plain(text) + "\\fR"; }
std::string slanted(const std::string& text) { return "\\fI" + plain(text) + "\\fR"; }

std::string section(const std::string& name) { return ".SH " + name + "\n"; }

std::string item(const std::string& title, const std::string& text) {
    return ".TP\n" + title + "\n" + plain(text) + "\n";
}

std::string item(const Entry& entry) {
    std::string title;
    for (const std::string& name : entry.names)
        title += (title.empty() ? "" : ", ") + bold(name);
    if (!entry.value.empty())
        title += (title.empty() ? "" : " ") + slanted(entry.value);
    return item(title + (entry.repeated ? " ..." : ""), entry.summary + ".");
}

std::string synopsis(const Command& command) {
    std::string text;
    for (const std::string& line : command.usage)
        text +=
            (text.empty() ? "" : ".br\n") + bold(command.full_name()) + " " + plain(line) + "\n";
    return text;
}

std::string lines(const std::vector<std::string>& all) {
    std::string text = ".nf\n";
    for (const std::string& line : all)
        text += plain(line) + "\n";
    return text + ".fi\n";
}

std::string command_text(const Command& command) {
    std::string text = ".SS " + plain(command.full_name()) + "\n" + synopsis(command) + ".PP\n" +
                       plain(command.get_description()) + ".\n" + plain(command.notes) +
                       (command.notes.empty() ? "" : "\n");
    for (const auto& group : {positionals(command), options(command)}) {
        for (const Entry& entry : group)
            text += item(entry);
    }
    text += ".PP\nExamples:\n.PP\n.RS 4\n" + lines(command.examples) + ".RE\n";
    for (const Command* each : command.commands())
        text += command_text(*each);
    return text;
}

std::string effects_text() {
    std::string text = section("EFFECTS") + "Options of " + bold("kirvo convert") +
                       ", applied in the order given.\n";
    for (const Effect& effect : effects()) {
        std::string title = bold(effect.option), about = effect.summary;
        if (!effect.parameters.empty())
            title += " " + slanted(effect.values());
        if (const std::string ranges = effect.ranges(); !ranges.empty())
            about += "; " + ranges;
        text += item(title, about + ".");
    }
    return text;
}

std::string formats_that(uint32_t ability) {
    std::string names;
    for (Format format = 1; format < KIRVO_FILES_FORMATS; ++format) {
        if (KirvoFilesAbilities(format) & ability)
            names += (names.empty() ? "" : ", ") + format_name(format);
    }
    return names;
}

} // namespace

std::string manual_page(const Command& program, const std::string& version) {
    std::string text =
        ".TH KIRVO 1 \"\" \"" + plain(version) + "\" \"User Commands\"\n" + section("NAME") +
        "kirvo \\- " + plain(program.get_description()) + "\n" + section("SYNOPSIS") +
        synopsis(program) + section("DESCRIPTION") + "Reads " +
        plain(formats_that(KIRVO_FILES_READS)) + " files,\nchanges the pictures, and writes " +
        plain(formats_that(KIRVO_FILES_WRITES)) + " files.\n" +
        plain(
            "Metadata goes along, and pictures are turned upright. What is lost or was wrong is "
            "told.\n"
            "An output appears under its name once it is complete: an interrupted run leaves no "
            "half-written file.\nA damaged picture never replaces a file. After an input that "
            "fails "
            "the others follow.\nSeveral pictures are worked on at a time. Work that takes longer "
            "than half a second shows a progress bar on a terminal.\n") +
        section("OPTIONS");
    for (const Entry& entry : options(program))
        text += item(entry);
    text += section("COMMANDS");
    for (const Command* command : program.commands())
        text += command_text(*command);
    text += effects_text() + section("EXIT STATUS") + item("0", "Everything was done.") +
            item("1", "An input failed; standard error names it and the reason.") +
            item("2", "The command makes no sense.") + item("130", "Interrupted with ctrl-C.") +
            section("ENVIRONMENT") +
            item(bold("KIRVO_CPU"), "scalar, sse2, avx2 or avx512 lowers the level of the "
                                    "processor's instructions that are used.") +
            item(bold("NO_COLOR"), "When it is set, terminals get no colours.") +
            section("EXAMPLES") + lines(program.examples);
    return text;
}
