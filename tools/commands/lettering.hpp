// Small text set into pictures.
#pragma once

#include "pictures/image.hpp"

#include <string>

constexpr int32_t letter_width = 6;  // with the gap to the next
constexpr int32_t letter_height = 9; // with descenders

// Writes text with its top left corner at x, y; what lies outside the picture is left out.
void draw_text(const Image& image, int32_t x, int32_t y, const std::string& text, uint32_t colour);
