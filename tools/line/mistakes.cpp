#include "line/mistakes.hpp"

#include "line/colours.hpp"
#include "line/suggestions.hpp"

#include <algorithm>

namespace {

bool takes_colours(const std::string& word) {
    return word == "-c" || word == "--colour" || word == "--color";
}

std::vector<std::string> option_names(const Command& command, const Command& program) {
    std::vector<std::string> names;
    for (const auto& group : {options(command), effect_options(command), options(program)}) {
        for (const Entry& entry : group)
            names.insert(names.end(), entry.names.begin(), entry.names.end());
    }
    return names;
}

std::vector<std::string> command_names(const Command& command) {
    std::vector<std::string> names;
    for (const Command* each : command.commands())
        names.push_back(each->get_name());
    return names;
}

// Options that stand before the command are its own, too.
void put_command_first(const Command& program, std::vector<std::string>& words) {
    const std::vector<std::string> names = command_names(program);
    const auto command = std::find_first_of(words.begin(), words.end(), names.begin(), names.end());
    if (command != words.end())
        std::rotate(words.begin(), command, command + 1);
}

std::vector<std::string> with_help(std::vector<std::string> names) {
    names.push_back("help");
    return names;
}

// What is missing, in a person's words.
std::string explained_lack(const Command& command, const CLI::ParseError& error) {
    const std::string words = error.what();
    const std::vector<std::string> names = command_names(command);
    if (error.get_name() == "RequiredError" && !names.empty()) {
        std::string list;
        for (const std::string& name : names)
            list += (list.empty() ? "" : name == names.back() ? " or " : ", ") + name;
        return command.full_name() + ": " + list + " is wanted";
    }
    const size_t twice = words.find(": At Most 1 required");
    if (twice != std::string::npos)
        return words.substr(0, twice) + " is given more than once";
    const size_t value = words.find(" 1 required "), end = words.rfind(" missing");
    if (error.get_name() == "ArgumentMismatch" && value != std::string::npos &&
        end != std::string::npos)
        return words.substr(0, value) + " " + words.substr(value + 12, end - value - 12) +
               " is wanted";
    return words;
}

} // namespace

const Command& named_command(const Command& program) {
    const Command* command = &program;
    while (!command->CLI::App::get_subcommands().empty())
        command = static_cast<const Command*>(command->CLI::App::get_subcommands().front());
    return *command;
}

std::vector<std::string> usual_words(const Command& program, std::vector<std::string> words) {
    if (words.empty())
        return {"--help"};
    if (words.front()[0] == '-')
        put_command_first(program, words);
    if (words.front() == "help") {
        words.erase(words.begin());
        words.push_back("--help");
    }
    std::vector<std::string> usual;
    for (size_t i = 0; i < words.size(); ++i) {
        usual.push_back(words[i]);
        if (!takes_colours(words[i]) || i + 1 == words.size())
            continue;
        usual.push_back(words[++i]);
        while (i + 1 < words.size() && is_colour(words[i + 1]))
            usual.back() += "," + words[++i];
    }
    return usual;
}

std::string explained(const Command& program, const CLI::ParseError& error) {
    const bool asks_for_help = error.get_exit_code() == 0; // about a word that nobody knows
    if (dynamic_cast<const CLI::ExtrasError*>(&error) == nullptr && !asks_for_help)
        return explained_lack(named_command(program), error);
    const std::vector<std::string> extra = program.remaining(true);
    if (extra.empty())
        return error.what();
    const Command& command = named_command(program);
    const auto option = std::find_if(extra.begin(), extra.end(), [](const std::string& word) {
        return word.size() > 1 && word[0] == '-';
    });
    if (option != extra.end()) {
        const std::string name = option->substr(0, option->find('='));
        return command.full_name() + " has no option " + name +
               suggestion(name, option_names(command, program));
    }
    if (!command.commands().empty())
        return "'" + extra.front() + "' is no command" +
               suggestion(extra.front(), with_help(command_names(command)));
    return "'" + extra.front() + "': there is nothing that it could be";
}
