// The command line's description: one tree of commands serves the parser, the help, the manual page
// and the shells' completions.
#pragma once

#include <CLI/CLI.hpp>
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

    std::vector<std::string> usage;    // what follows the name; a line each
    std::vector<std::string> examples; // whole commands
    std::string notes;

  private:
    Command(const std::string& name, const std::string& description, Command* parent);
};

// One option or positional in words.
struct Entry {
    std::vector<std::string> names; // "-o", "--output"; none for a positional
    std::string value;              // "DIR", "bmp|jpg|tga"; empty without one
    std::string summary;
    bool repeated; // takes any number of values
};

// Positionals have the group "Positionals"; hidden options are left out.
std::vector<Entry> positionals(const Command& command);
std::vector<Entry> options(const Command& command);
std::vector<Entry> effect_options(const Command& command);

// "-o, --output DIR"
std::string spelling(const Entry& entry);
// The words of "bmp|jpg|tga"; none for a value of another kind.
std::vector<std::string> choices(const Entry& entry);
// Lines of at most so many columns after a margin, which the first line does without.
std::string wrapped(const std::string& text, size_t width, size_t margin);
// Two columns, as lists of options and effects are set.
std::string listed(const std::string& name, const std::string& text, size_t column);
