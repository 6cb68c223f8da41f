// What is done to every picture of a command, and what becomes of one.
#pragma once

#include "effects/effects.hpp"
#include "line/json.hpp"
#include "pictures/picture.hpp"

struct Step {
    Step(const Effect& effect, const std::string& text);

    const Effect* effect;
    std::string text;
    Values values;
};

// Turning a JPEG without decoding it.
struct Turning {
    int32_t way = 0; // a KirvoFilesTurning
    int32_t edges = KIRVO_FILES_EDGES_KEEP;
};

struct Conversion {
    std::vector<Step> steps;
    std::optional<Turning> turning; // in place of the steps
    ReadOptions reading;
    WriteOptions writing;
    std::string mask; // where to save the mask of a transparent picture
    bool nearest = false;
    bool show_time = false;

    size_t stages() const { return turning ? 1 : steps.size() + 2; }
};

struct Job {
    std::string input, output;
    // The output is a pattern that wants the size of the result, and these.
    bool is_pattern = false;
    std::string folder; // below the one that was named
    size_t number = 0;

    bool makes_folders = false; // that the output lies in
    bool in_place = false;      // the input is replaced
};

// Made in one process and told in another.
struct Outcome {
    bool good = false;
    Json record;                    // with --json
    std::string error;              // names the file and the reason
    std::vector<std::string> notes; // name the file
    std::string text;               // what the conversion prints
};

// Never throws.
Outcome convert_one(const Conversion& conversion, const Job& job);
Outcome failed(const Job& job, const std::exception& error);
// Throws where the output may not be written, before long work.
void check_target(const Job& job);
