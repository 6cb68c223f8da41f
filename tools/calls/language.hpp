// How a language writes the few things of which calls consist.
#pragma once

#include "calls/code.hpp"

#include <string>
#include <vector>

// A call with everything in it named.
struct Sentence {
    std::string function;
    std::vector<std::string> arguments;
    calls::Answer answer;
    std::string result; // variable of an image
};

struct Grammar {
    const char* comment;
    std::string (*head)(const std::vector<std::string>& images); // variables
    const char* tail;
    std::string (*call)(const Sentence& sentence);
    std::string (*release)(const std::string& image);
    // A second picture, which comes from a file; null where a comment tells it.
    std::string (*opened)(const std::string& image, const std::string& file);
    const char* handle_behind; // ".handle()" of "dib.handle()"
    // An image that a call writes: before the call, as its argument, behind it.
    std::string (*output_before)(const std::string& image);
    std::string (*output)(const std::string& image);
    std::string (*output_behind)(const std::string& image);
    const char* status;     // "&status"
    const char* hex_before; // "0x"
    const char* hex_behind;
    std::string (*table)(const std::string& name, const std::string& numbers);
    const char* table_before; // "@" of "@table1[0]"
    const char* table_behind;
};

const Grammar& grammar_of(Language language);
