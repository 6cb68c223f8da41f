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

    const std::string& option() const { return option_; }
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
    const char* parameters; // "N", or "red|green|blue"; empty for an option without a value
    const char* ranges;     // "-100 to 100"; empty where the parameters say all
    const char* summary;
    const char* example;    // a value that shows the effect; empty where none is needed
    std::function<Image(Image, const Arguments&)> apply;
};

const std::vector<Effect>& effects();

// Whether resizing averages where it reduces.
void set_smooth_resizing(bool smooth);

// Reduces to fit into a size, with the proportions kept.
Image fitted(Image image, int32_t width, int32_t height);

struct Histogram {
    uint32_t colours;
    uint32_t red[256], green[256], blue[256];
};

// Who is told what --histogram has counted.
void set_histogram_receiver(std::function<void(const Histogram&)> receiver);
