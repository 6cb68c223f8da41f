#include "line/completions.hpp"

#include <algorithm>

namespace {

enum class Kind { none, file, folder, words, text };

Kind kind_of(const Entry& entry) {
    return entry.value.empty()    ? Kind::none
           : names_file(entry)    ? Kind::file
           : names_folder(entry)  ? Kind::folder
           : !entry.words.empty() ? Kind::words
                                  : Kind::text;
}

std::string joined(const std::vector<std::string>& words, const char* between = " ") {
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : between) + word;
    return text;
}

std::string single_quoted(const std::string& text) {
    std::string result = "'";
    for (const char c : text)
        result += c == '\'' ? "'\\''" : std::string(1, c);
    return result + "'";
}

// Commands with their subcommands, parents first.
std::vector<const Command*> tree(const Command& top) {
    std::vector<const Command*> all = {&top};
    for (const Command* each : top.commands()) {
        for (const Command* below : tree(*each))
            all.push_back(below);
    }
    return all;
}

// The options that a command takes, those of the program among them.
std::vector<Entry> all_options(const Command& command, const Command& program) {
    std::vector<Entry> all = options(command);
    for (const Entry& effect : effect_options(command))
        all.push_back(effect);
    if (&command != &program) {
        for (const Entry& entry : options(program))
            all.push_back(entry);
    }
    return all;
}

std::vector<std::string> words_of(const Command& command, const Command& program) {
    std::vector<std::string> words;
    for (const Command* each : command.commands())
        words.push_back(each->get_name());
    for (const Entry& entry : all_options(command, program))
        words.insert(words.end(), entry.names.begin(), entry.names.end());
    return words;
}

// What a command's positionals may be.
std::vector<std::string> operand_words(const Command& command) {
    std::vector<std::string> words;
    for (const Entry& entry : positionals(command))
        words.insert(words.end(), entry.words.begin(), entry.words.end());
    return words;
}

// Does any of a command's positionals name a file or a folder?
bool takes(const Command& command, Kind kind) {
    const auto places = positionals(command);
    return std::any_of(places.begin(), places.end(),
                       [&](const Entry& entry) { return kind_of(entry) == kind; });
}

// ---- bash: the command so far is found word by word, then the word before decides.

std::string bash_values(const Command& command, const Command& program) {
    std::string text;
    for (const Entry& entry : all_options(command, program)) {
        std::string action;
        switch (kind_of(entry)) {
        case Kind::none:
            continue;
        case Kind::file:
            action = "compgen -f -- \"$current\"";
            break;
        case Kind::folder:
            action = "compgen -d -- \"$current\"";
            break;
        case Kind::words:
            action = "compgen -W '" + joined(entry.words) + "' -- \"$current\"";
            break;
        case Kind::text:
            action = ":";
            break;
        }
        text += "        " + joined(entry.names, "|") + ") " + action + "; return ;;\n";
    }
    return text;
}

std::string bash(const Command& program) {
    std::string steps, cases;
    for (const Command* command : tree(program)) {
        const std::string name = command->full_name();
        for (const Command* each : command->commands())
            steps += "        '" + name + " " + each->get_name() + "') command='" +
                     each->full_name() + "' ;;\n";
        cases += "    '" + name + "')\n        case $previous in\n" +
                 bash_values(*command, program) + "        esac\n        words='" +
                 joined(words_of(*command, program)) + "'\n        operands='" +
                 joined(operand_words(*command)) + "'\n        files=" +
                 (takes(*command, Kind::file)     ? "-f"
                  : takes(*command, Kind::folder) ? "-d"
                                                  : "") +
                 " ;;\n";
    }
    return "# bash completion for kirvo\n\n"
           "_kirvo_words() {\n"
           "    local command=kirvo words= operands= files= i\n"
           "    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}\n"
           "    for ((i = 1; i < COMP_CWORD; ++i)); do\n"
           "        case \"$command ${COMP_WORDS[i]}\" in\n" +
           steps +
           "        esac\n    done\n"
           "    case $command in\n" +
           cases +
           "    esac\n"
           "    if [[ $current == -* || -z $files$operands ]]; then\n"
           "        compgen -W \"$words\" -- \"$current\"\n"
           "    fi\n"
           "    compgen -W \"$operands\" -- \"$current\"\n"
           "    [[ $current == -* || -z $files ]] || compgen $files -- \"$current\"\n}\n\n"
           "_kirvo() { mapfile -t COMPREPLY < <(_kirvo_words); }\n\n"
           "complete -o filenames -F _kirvo kirvo\n";
}

// ---- zsh: a function for each command.

std::string zsh_function(const Command& command) {
    std::string name = "_" + command.full_name();
    std::replace(name.begin(), name.end(), ' ', '_');
    return name;
}

std::string zsh_text(const std::string& text) {
    std::string result;
    for (const char c : text)
        result += (c == '[' || c == ']' || c == ':' ? "\\" : "") + std::string(1, c);
    return result;
}

std::string zsh_action(const Entry& entry) {
    switch (kind_of(entry)) {
    case Kind::file:
        return "_files";
    case Kind::folder:
        return "_files -/";
    case Kind::words:
        return "(" + joined(entry.words) + ")";
    default:
        return " ";
    }
}

std::string zsh_option(const Entry& entry, bool repeatable) {
    std::string text;
    for (const std::string& name : entry.names) {
        const std::string before = repeatable               ? "*"
                                   : entry.names.size() > 1 ? "(" + joined(entry.names) + ")"
                                                            : "";
        std::string spec = before + name + "[" + zsh_text(entry.summary) + "]";
        if (!entry.value.empty())
            spec += ":" + zsh_text(entry.value) + ":" + zsh_action(entry);
        text += " \\\n        " + single_quoted(spec);
    }
    return text;
}

std::string zsh_options(const Command& command, const Command& program) {
    std::string text;
    for (const Entry& entry : options(command))
        text += zsh_option(entry, false);
    for (const Entry& entry : effect_options(command))
        text += zsh_option(entry, true);
    if (&command != &program) {
        for (const Entry& entry : options(program))
            text += zsh_option(entry, false);
    }
    return text;
}

std::string zsh_positional(const Entry& entry) {
    const std::string value = zsh_text(entry.value);
    // A message alone must not stand in the way of options.
    const std::string action =
        kind_of(entry) == Kind::text ? "_guard \"^-*\" " + value : zsh_action(entry);
    return single_quoted(std::string(entry.repeated ? "*" : "") + ":" + value + ":" + action);
}

std::string zsh_commands(const Command& command) {
    std::string described, cases;
    for (const Command* each : command.commands()) {
        described +=
            "            " + single_quoted(each->get_name() + ":" + each->get_description()) + "\n";
        cases += "            " + each->get_name() + ") " + zsh_function(*each) + " ;;\n";
    }
    return "    case $state in\n"
           "    command)\n        local -a commands=(\n" +
           described +
           "        )\n        _describe command commands ;;\n"
           "    rest)\n        case $line[1] in\n" +
           cases + "        esac ;;\n    esac\n";
}

std::string zsh(const Command& program) {
    std::string text = "#compdef kirvo\n";
    for (const Command* command : tree(program)) {
        const bool more = !command->commands().empty();
        text += "\n" + zsh_function(*command) + "() {\n";
        if (more)
            text += "    local state line\n    local -A opt_args\n";
        text +=
            std::string("    _arguments ") + (more ? "-C" : "-S") + zsh_options(*command, program);
        if (more)
            text += " \\\n        '1:command:->command' \\\n        '*::argument:->rest'";
        for (const Entry& entry : positionals(*command))
            text += " \\\n        " + zsh_positional(entry);
        text += "\n" + (more ? zsh_commands(*command) : "") + "}\n";
    }
    return text + "\n_kirvo \"$@\"\n";
}

// ---- fish: a line for each command and option, with the commands that must stand before it.

std::string fish_condition(const Command& command) {
    std::string text;
    for (const CLI::App* each = &command; each->get_parent() != nullptr; each = each->get_parent())
        text = "__fish_seen_subcommand_from " + each->get_name() + (text.empty() ? "" : "; and ") +
               text;
    std::vector<std::string> below;
    for (const Command* each : command.commands())
        below.push_back(each->get_name());
    if (!below.empty())
        text +=
            (text.empty() ? "" : "; and ") + ("not __fish_seen_subcommand_from " + joined(below));
    return text;
}

std::string fish_option(const Entry& entry, const std::string& condition) {
    std::string text = "complete -c kirvo";
    if (!condition.empty())
        text += " -n " + single_quoted(condition);
    for (const std::string& name : entry.names)
        text += name[1] == '-' ? " -l " + name.substr(2) : " -s " + name.substr(1);
    switch (kind_of(entry)) {
    case Kind::none:
        break;
    case Kind::file:
        text += " -rF";
        break;
    case Kind::folder:
        text += " -xa '(__fish_complete_directories)'";
        break;
    case Kind::words:
        text += " -xa '" + joined(entry.words) + "'";
        break;
    case Kind::text:
        text += " -x";
        break;
    }
    return text + " -d " + single_quoted(entry.summary) + "\n";
}

std::string fish(const Command& program) {
    std::string text = "# fish completion for kirvo\n\ncomplete -c kirvo -f\n";
    for (const Entry& entry : options(program))
        text += fish_option(entry, "");
    for (const Command* command : tree(program)) {
        const std::string condition = fish_condition(*command);
        for (const Command* each : command->commands())
            text += "complete -c kirvo -n " + single_quoted(condition) + " -a " + each->get_name() +
                    " -d " + single_quoted(each->get_description()) + "\n";
        if (takes(*command, Kind::file))
            text += "complete -c kirvo -n " + single_quoted(condition) + " -F\n";
        if (const auto words = operand_words(*command); !words.empty())
            text += "complete -c kirvo -n " + single_quoted(condition) + " -a " +
                    single_quoted(joined(words)) + "\n";
        if (command == &program)
            continue;
        for (const Entry& entry : options(*command))
            text += fish_option(entry, condition);
        for (const Entry& entry : effect_options(*command))
            text += fish_option(entry, condition);
    }
    return text;
}

// ---- PowerShell: words only; file names are its own when there is no word.

std::string powershell(const Command& program) {
    std::string table;
    for (const Command* command : tree(program)) {
        table += "        " + single_quoted(command->full_name()) + " = " +
                 single_quoted(joined(operand_words(*command), " ") +
                               (operand_words(*command).empty() ? "" : " ") +
                               joined(words_of(*command, program))) +
                 "\n";
        for (const Entry& entry : all_options(*command, program)) {
            if (kind_of(entry) == Kind::words)
                for (const std::string& name : entry.names)
                    table += "        " + single_quoted(command->full_name() + " " + name) + " = " +
                             single_quoted(joined(entry.words)) + "\n";
        }
    }
    return "# PowerShell completion for kirvo\n\n"
           "Register-ArgumentCompleter -Native -CommandName kirvo -ScriptBlock {\n"
           "    param($current, $line, $cursor)\n"
           "    $words = @{\n" +
           table +
           "    }\n"
           "    $command = 'kirvo'\n"
           "    $previous = ''\n"
           "    foreach ($element in $line.CommandElements | Select-Object -Skip 1) {\n"
           "        if ($element.Extent.EndOffset -ge $cursor) { break }\n"
           "        $previous = $element.ToString()\n"
           "        if ($previous -notlike '-*' -and $words.ContainsKey(\"$command $previous\")) "
           "{\n"
           "            $command = \"$command $previous\"\n"
           "        }\n"
           "    }\n"
           "    $choice = $words[\"$command $previous\"]\n"
           "    if ($null -eq $choice -or $previous -notlike '-*') { $choice = $words[$command] }\n"
           "    $choice -split ' ' | Where-Object { $_ -clike \"$current*\" } | ForEach-Object {\n"
           "        [System.Management.Automation.CompletionResult]::new($_, $_, 'ParameterValue', "
           "$_)\n"
           "    }\n"
           "}\n";
}

} // namespace

std::string completions(const Command& program, const std::string& shell) {
    return shell == "bash"   ? bash(program)
           : shell == "zsh"  ? zsh(program)
           : shell == "fish" ? fish(program)
                             : powershell(program);
}
