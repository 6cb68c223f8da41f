// What a gallery shows: every effect, some with several values.
#pragma once

#include "effects/effects.hpp"

struct Exhibit {
    const Effect* effect;
    std::string value;
    std::string file;  // within the folder
    std::string title; // no two are the same
    std::string command() const;
};

// The effects for a picture of this size, beside which another picture lies.
std::vector<Exhibit> exhibits(int32_t width, int32_t height, const std::string& other);
