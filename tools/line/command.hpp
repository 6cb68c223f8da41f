// The command line's description: one tree of commands serves the parser, the help, the manual page
// and the shells' completions.
#pragma once

#include "effects/parameters.hpp"

#include <CLI/CLI.hpp>
#include <map>
#include <string>
#include <vector>

constexpr const char* effects_group = "Effects";

class Command : public CLI::App {
  public:
    Command(const std::string& name, const std::string& description);

    Command* add(const std::string& name, const std::string& description);
    std::vector<const Command*> commands() const;
    // With its parents' names: "kirvo make solid".
    std::string full_name() const;
    // An option with one value, checked as those of effects are; the last one counts.
    CLI::Option* add_value(const std::string& names, const Parameter& parameter,
                           const std::string& help, std::function<void(const Values&)> take);
    // The words that an option or positional may be, for completions.
    void offer(const CLI::Option* option, const std::vector<std::string>& words);
    const std::vector<std::string>& offered(const CLI::Option* option) const;

    std::vector<std::string> usage;    // what follows the name; a line each
    std::vector<std::string> examples; // whole commands
    std::string notes;

  private:
    Command(const std::string& name, const std::string& description, Command* parent);

    std::map<const CLI::Option*, std::vector<std::string>> words_;
};

// One option or positional in words.
struct Entry {
    std::vector<std::string> names; // "-o", "--output"; none for a positional
    std::string value;              // "DIR", "bmp|jpg|tga"; empty without one
    std::string summary;
    std::vector<std::string> words; // that the value may be; empty for others
    bool repeated;                  // takes any number of values
};

// Positionals have the group "Positionals"; hidden options are left out.
std::vector<Entry> positionals(const Command& command);
std::vector<Entry> options(const Command& command);
std::vector<Entry> effect_options(const Command& command);

// "-o, --output DIR"
std::string spelling(const Entry& entry);
// Whether the value is a file's name, perhaps with more behind it, or a folder's.
bool names_file(const Entry& entry);
bool names_folder(const Entry& entry);
// Lines of at most so many columns after a margin, which the first line does without.
std::string wrapped(const std::string& text, size_t width, size_t margin);
// Two columns, as lists of options and effects are set.
std::string listed(const std::string& name, const std::string& text, size_t column);
