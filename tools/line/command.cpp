#include "line/command.hpp"

#include "system/terminal.hpp"

#include <algorithm>
#include <sstream>

namespace {

constexpr size_t line_width = 79;

std::vector<Entry> entries(const Command& command,
                           const std::function<bool(const CLI::Option&)>& wanted) {
    std::vector<Entry> all;
    for (const CLI::Option* option : command.get_options()) {
        if (option->get_group().empty() || !wanted(*option))
            continue;
        Entry entry;
        for (const std::string& name : option->get_snames())
            entry.names.push_back("-" + name);
        for (const std::string& name : option->get_lnames())
            entry.names.push_back("--" + name);
        if (option->get_items_expected_max() > 0)
            entry.value = option->get_type_name();
        entry.summary = option->get_description();
        entry.words = command.offered(option);
        entry.repeated = option->get_positional() && option->get_items_expected_max() > 1;
        all.push_back(entry);
    }
    return all;
}

// Where the second column begins.
size_t column_for(const std::vector<std::string>& names) {
    size_t widest = 0;
    for (const std::string& name : names)
        widest = std::max(widest, name.size());
    return std::min<size_t>(widest + 4, 30);
}

std::string heading(const char* text) { return "\n" + styled(stdout, Style::heading, text) + "\n"; }

std::string usage_lines(const Command& command) {
    std::string text;
    for (const std::string& line : command.usage)
        text += (text.empty() ? styled(stdout, Style::heading, "Usage:") : "      ") + " " +
                command.full_name() + " " + line + "\n";
    return text;
}

std::string names_of(const std::vector<Entry>& group, const char* between) {
    std::string text;
    for (const Entry& entry : group) {
        text += text.empty() ? "" : between;
        for (const std::string& name : entry.names)
            text += (name == entry.names.front() ? "" : " ") + name;
    }
    return text;
}

using Row = std::pair<std::string, std::string>;

std::string table(const char* title, const std::vector<Row>& rows, size_t column) {
    std::string text = rows.empty() ? "" : heading(title);
    for (const auto& [name, meaning] : rows)
        text += listed(name, meaning, column);
    return text;
}

std::string tables_of(const Command& command) {
    std::vector<Row> commands, all_options;
    std::vector<std::string> names;
    for (const Command* each : command.commands())
        commands.emplace_back(each->get_name(), each->get_description());
    for (const auto& group : {positionals(command), options(command)}) {
        for (const Entry& entry : group)
            all_options.emplace_back(spelling(entry), entry.summary);
    }
    for (const auto& rows : {commands, all_options}) {
        for (const Row& row : rows)
            names.push_back(row.first);
    }
    const size_t column = column_for(names);
    return table("Commands:", commands, column) + table("Options:", all_options, column);
}

const Command& top_of(const Command& command) {
    const auto* parent = static_cast<const Command*>(command.get_parent());
    return parent == nullptr ? command : top_of(*parent);
}

std::string help_of(const Command& command) {
    std::string text = command.full_name() + ": " + command.get_description() + "\n\n" +
                       usage_lines(command) + tables_of(command);
    if (const auto effects = effect_options(command); !effects.empty())
        text += heading("Effects, applied in the order given (kirvo effects describes them):") +
                "  " + wrapped(names_of(effects, " "), line_width - 2, 2);
    if (!command.examples.empty()) {
        text += heading("Examples:");
        for (const std::string& example : command.examples)
            text += "  " + example + "\n";
    }
    if (!command.notes.empty())
        text += "\n" + wrapped(command.notes, line_width, 0);
    if (const Command& top = top_of(command); &top != &command)
        text += "\n" + wrapped("Everywhere: " + names_of(options(top), ", "), line_width, 0);
    return text;
}

class Help : public CLI::Formatter {
  public:
    std::string make_help(const CLI::App* app, std::string,
                          CLI::AppFormatMode mode) const override {
        const auto& command = static_cast<const Command&>(*app);
        std::string text = help_of(command);
        if (mode == CLI::AppFormatMode::All) {
            for (const Command* each : command.commands())
                text += "\n\n" + make_help(each, "", mode);
        }
        return text;
    }
};

} // namespace

Command::Command(const std::string& name, const std::string& description)
    : Command(name, description, nullptr) {
    formatter(std::make_shared<Help>());
    set_help_flag("-h,--help", "Help of the program, or of a command");
    set_help_all_flag("--help-all", "Help of every command")->group("");
}

Command::Command(const std::string& name, const std::string& description, Command* parent)
    : App(description, name, parent) {}

Command* Command::add(const std::string& name, const std::string& description) {
    return static_cast<Command*>(add_subcommand(CLI::App_p(new Command(name, description, this))));
}

CLI::Option* Command::add_value(const std::string& names, const Parameter& parameter,
                                const std::string& help, std::function<void(const Values&)> take) {
    const std::string longest = names.substr(names.find("--"));
    const std::string name = longest.substr(0, longest.find(','));
    const auto checked = [=](const std::string& text) { take(Values(name, {parameter}, text)); };
    CLI::Option* option = add_option_function<std::string>(names, checked, help)
                              ->type_name(parameter.name)
                              ->take_last();
    offer(option, parameter.words);
    return option;
}

void Command::offer(const CLI::Option* option, const std::vector<std::string>& words) {
    words_[option] = words;
}

const std::vector<std::string>& Command::offered(const CLI::Option* option) const {
    static const std::vector<std::string> none;
    const auto found = words_.find(option);
    return found == words_.end() ? none : found->second;
}

std::vector<const Command*> Command::commands() const {
    std::vector<const Command*> all;
    for (const App* each : get_subcommands([](const App*) { return true; }))
        all.push_back(static_cast<const Command*>(each));
    return all;
}

std::string Command::full_name() const {
    const auto* parent = static_cast<const Command*>(get_parent());
    return parent == nullptr ? get_name() : parent->full_name() + " " + get_name();
}

std::vector<Entry> positionals(const Command& command) {
    return entries(command, [](const CLI::Option& option) { return option.get_positional(); });
}

std::vector<Entry> options(const Command& command) {
    const bool top = command.get_parent() == nullptr;
    return entries(command, [&](const CLI::Option& option) {
        const bool help =
            &option == command.get_help_ptr() || &option == command.get_help_all_ptr();
        return option.nonpositional() && option.get_group() != effects_group && (top || !help);
    });
}

std::vector<Entry> effect_options(const Command& command) {
    return entries(command,
                   [](const CLI::Option& option) { return option.get_group() == effects_group; });
}

std::string spelling(const Entry& entry) {
    std::string text;
    for (const std::string& name : entry.names)
        text += (text.empty() ? "" : ", ") + name;
    if (!entry.value.empty())
        text += (text.empty() ? "" : " ") + entry.value;
    return text + (entry.repeated ? "..." : "");
}

bool names_file(const Entry& entry) { return entry.value.starts_with("FILE"); }

bool names_folder(const Entry& entry) { return entry.value.starts_with("DIR"); }

std::string wrapped(const std::string& text, size_t width, size_t margin) {
    std::istringstream words(text);
    std::string result;
    size_t at = 0;
    for (std::string word; words >> word;) {
        if (at > 0 && at + 1 + word.size() > width) {
            result += "\n" + std::string(margin, ' ');
            at = 0;
        } else if (at > 0) {
            result += ' ';
            ++at;
        }
        result += word;
        at += word.size();
    }
    return result + "\n";
}

std::string listed(const std::string& name, const std::string& text, size_t column) {
    std::string line = "  " + styled(stdout, Style::name, name);
    const size_t length = 2 + name.size();
    line += length < column ? std::string(column - length, ' ') : "\n" + std::string(column, ' ');
    return line + wrapped(text, line_width - column, column);
}
