// kirvo convert: pictures read, changed and written.
#pragma once

#include "effects.hpp"
#include "files.hpp"

struct Step {
    const Effect* effect;
    std::string value;
};

struct Conversion {
    std::vector<std::string> files; // inputs; the output behind them where there is no folder
    std::string folder;
    bool in_place = false;
    bool show_time = false;
    ReadOptions reading;
    WriteOptions writing;
    std::vector<Step> steps;
};

// Does one input after the other, failed ones too. True when none has failed.
bool convert(const Conversion& conversion);
