// From operands to pictures to read and files to write.
#pragma once

#include "commands/conversion.hpp"

// What the command line says of inputs and outputs.
struct Operands {
    std::vector<std::string> names;
    std::string output; // a folder, a file or a pattern
    std::string suffix; // behind the inputs' names
    bool recursive = false;
    bool in_place = false;
};

// Throws UsageError.
std::vector<Job> jobs_of(const Operands& operands, const std::string& to);

// An input, and the folder that it lies in below the one that was named.
struct Found {
    std::string name, folder;
};

// The files that names stand for, each once: patterns expanded, folders searched where that is
// wanted. Throws Failure for a folder that cannot be.
std::vector<Found> inputs_of(const std::vector<std::string>& names, bool recursive,
                             const std::string& except_below = "");

// "out/{name}_{width}.jpg" for an input and the size of its result.
std::string named_by(const std::string& pattern, const Job& job, int32_t width, int32_t height);
