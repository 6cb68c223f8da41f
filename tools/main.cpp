// The command line: pictures described, converted and changed.
#include "commands/commands.hpp"
#include "commands/workers.hpp"
#include "line/completions.hpp"
#include "line/manual.hpp"
#include "line/mistakes.hpp"
#include "pictures/formats.hpp"
#include "system/errors.hpp"
#include "system/interruption.hpp"
#include "system/names.hpp"
#include "system/settings.hpp"
#include "system/terminal.hpp"

#include <cstdlib>

namespace {

std::string version() {
    const uint32_t v = GetVerKirvoDll();
    std::string text = "kirvo";
    for (int shift = 24; shift >= 0; shift -= 8)
        text += (shift == 24 ? " " : ".") + std::to_string(v >> shift & 0xFF);
    return text;
}

// With the formats, and by what they are read and written.
std::string long_version() {
    std::string text = version() + "\n";
    for (Format format = 1; format < KIRVO_FILES_FORMATS; ++format) {
        const uint32_t abilities = KirvoFilesAbilities(format);
        if (abilities == 0)
            continue;
        const std::string name = format_name(format);
        text += "\n  " + name + std::string(name.size() < 10 ? 10 - name.size() : 1, ' ') +
                (abilities & KIRVO_FILES_WRITES ? "read, written  " : "read           ") +
                codec(format);
    }
    return text;
}

void add_everywhere(Command& program) {
    program.require_subcommand(0, 1);
    program.allow_windows_style_options(false); // "/pictures/a.bmp" is a file everywhere
    program.fallthrough();                      // these options may stand anywhere
    program.add_flag("-q,--quiet", settings.quiet, "Say nothing but errors");
    program.add_flag("--verbose", settings.verbose, "Say more: every note, numbers of statuses");
    program.add_flag("-f,--force", settings.force, "Replace files that exist");
    program.add_flag("--json", settings.json, "Give results as JSON");
    program.set_version_flag("--version", long_version, "Versions, and the formats");
    program.usage = {"COMMAND [options]"};
    program.examples = {
        "kirvo convert *.jpg small --fit 800x800 --sharpen strong",
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

void print_papers(const Command& program, const Papers& papers) {
    if (papers.manual)
        std::fputs(manual_page(program, version()).c_str(), stdout);
    else if (!papers.shell.empty())
        std::fputs(completions(program, papers.shell).c_str(), stdout);
    else if (program.CLI::App::get_subcommands().empty())
        throw UsageError("a command is missing");
}

// The library ignores a word that it does not know.
void check_environment() {
    const char* word = std::getenv("KIRVO_CPU");
    if (word == nullptr || *word == '\0')
        return;
    for (const char* known : {"scalar", "sse2", "avx2", "avx512"}) {
        if (std::string(word) == known)
            return;
    }
    warn("KIRVO_CPU=" + std::string(word) + " is none of scalar, sse2, avx2 and avx512: ignored");
}

int wrong_usage(const Command& program, const std::string& why) {
    complain(why);
    std::fprintf(stderr, "%s --help tells more\n", named_command(program).full_name().c_str());
    return 2;
}

int run(std::vector<std::string> words) {
    Command program("kirvo", "pictures described, converted and changed");
    bool good = true;
    Papers papers;
    add_everywhere(program);
    add_papers(program, papers);
    add_info(program, good);
    add_convert(program, good);
    add_turn(program, good);
    add_make(program);
    add_effects(program);
    add_gallery(program);
    try {
        words = usual_words(program, std::move(words));
        std::reverse(words.begin(), words.end()); // as the parser wants them
        check_environment();
        program.parse(std::move(words));
        print_papers(program, papers);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() != 0 || !program.remaining(true).empty())
            return wrong_usage(program, explained(program, error));
        program.exit(error);
    } catch (const UsageError& error) {
        return wrong_usage(program, error.what());
    } catch (const std::exception& error) {
        complain(error.what());
        return 1;
    }
    return good ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    clean_up_when_interrupted();
    const std::vector<std::string> words = words_of_the_command_line(argc, argv);
    if (words == std::vector<std::string>{"worker"}) {
        work_for_another();
        return 0;
    }
    prepare_console();
    const int code = run(words);
    restore_console();
    if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0)
        return code;
    complain("standard output: what was to be said could not be written");
    return 1;
}
