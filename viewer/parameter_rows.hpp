// What an effect's dialog shows for each of its parameters.
#pragma once

#include "effects/effects.hpp"

#include <windows.h>

#include <optional>

// A slider's ends, and how many of its steps are 1.
struct SliderRange {
    int least, most;
    double steps;
};

// None where a number has no range that a person would drag through.
std::optional<SliderRange> slider_range(const Parameter& parameter, int width, int height);

// "Threshold" of "THRESHOLD"
std::wstring label_of(const Effect& effect, size_t index);
bool has_words(const Parameter& parameter);

// "0.75" of 75 with 100 steps
std::wstring slider_text(int position, const SliderRange& range);
