// The operations of the library as options of the command line: one table serves the parser, the
// list of effects and the gallery.
#pragma once

#include "effects/parameters.hpp"
#include "pictures/image.hpp"

#include <functional>

struct Effect {
    const char* option; // "--brightness"
    std::vector<Parameter> parameters;
    const char* summary;
    const char* example; // a value that shows the effect; empty where none is needed
    std::function<Image(Image, const Values&)> apply;
    bool moves = false;       // pixels: transparency goes along
    const char* further = ""; // what the parameters do not say of their ranges
    const char* form = "";    // of the values, where the parameters do not say it
    // Throws UsageError for values that do not go together.
    void (*check)(const Values&) = nullptr;

    std::string name() const { return option + 2; }
    std::string values() const; // "X,Y,W,H"
    std::string call() const;   // "--crop X,Y,W,H"
    std::string ranges() const;
};

const std::vector<Effect>& effects();
// Null when there is none of this name, with or without its dashes.
const Effect* effect_called(const std::string& name);
std::vector<std::string> effect_names();

// Whether reductions take the nearest pixel instead of averaging.
void resize_by_nearest(bool nearest);

// Reduces to fit into a size, with the proportions kept.
Image fitted(Image image, int32_t width, int32_t height);

struct Histogram {
    uint32_t colours;
    uint32_t red[256], green[256], blue[256];
};

// Who is told what --histogram has counted.
void set_histogram_receiver(std::function<void(const Histogram&)> receiver);

// What effects leave behind in the library goes back to what it was at first.
void forget_effects();
