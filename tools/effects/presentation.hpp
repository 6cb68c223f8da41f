// How a program that people look at shows the catalogue: what is called what, in which group, and
// which slider stands for a number. Serves the viewer, the reference and `kirvo effects --json`.
#pragma once

#include "effects/effects.hpp"

#include <optional>

// Titles, in the order of the reference.
const std::vector<std::string>& effect_groups();
// The group's place among them.
size_t group_of(const Effect& effect);
// "Sharpen more" of "--sharpen-more"
std::string title_of(const std::string& option);

// "Threshold" of "THRESHOLD"
std::string label_of(const Effect& effect, size_t index);
bool has_words(const Parameter& parameter);

// A slider's ends, and how many of its steps are 1.
struct SliderRange {
    enum class End { fixed, width, height }; // the picture's

    int least, most;
    double steps;
    End end = End::fixed;

    SliderRange within(int width, int height) const;
};

// None where a number has no range that a person would drag through.
std::optional<SliderRange> slider_range(const Parameter& parameter);
// "0.75" of 75 with 100 steps
std::string slider_text(int position, const SliderRange& range);

// Whether the numbers of an effect are places and sizes in pixels, which mean nothing on a reduced
// picture.
bool counts_pixels(const Effect& effect);

// The values that a dialog begins with, one for each parameter: the catalogue's example where there
// is one, since it shows something. `whole` is the picture or what is selected of it.
std::vector<std::string> first_values(const Effect& effect, const RECT& whole);
