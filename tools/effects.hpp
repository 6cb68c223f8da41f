// The operations of the library as options of the command line: one table serves the parser, the
// list of effects and the gallery.
#pragma once

#include "image.hpp"

#include <functional>
#include <string>
#include <vector>

// The comma-separated values behind an option.
class Arguments {
  public:
    Arguments(std::string option, const std::string& text);

    size_t count() const { return values_.size(); }
    const std::string& text(size_t i) const;
    int32_t integer(size_t i) const;
    double real(size_t i) const;
    // The value, or otherwise when there are fewer.
    int32_t integer(size_t i, int32_t otherwise) const {
        return i < count() ? integer(i) : otherwise;
    }
    [[noreturn]] void wrong(const std::string& why) const;

  private:
    std::string option_;
    std::vector<std::string> values_;
};

struct Effect {
    const char* option;     // "--brightness"
    const char* parameters; // "N"; empty for an option without a value
    const char* ranges;     // "N: -100 to 100"
    const char* summary;
    const char* example;    // a value that shows the effect; empty where none is needed
    std::function<Image(Image, const Arguments&)> apply;
};

const std::vector<Effect>& effects();

// Whether resizing averages where it reduces.
void set_smooth_resizing(bool smooth);

// Every effect with its parameters and ranges, for a terminal.
void print_effects();
