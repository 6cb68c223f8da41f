// The progress bar: drawn on standard error when that is a terminal, for work that takes longer
// than half a second.
#pragma once

#include <string>

// The work begins now: what the bar tells of the time left counts from here.
void start_bar();
bool bar_is_wanted();
// Shows the share of the work that is done, 0 to 1.
void draw_bar(const std::string& label, double share);
// Makes room for other text.
void clear_bar();
// True while a bar stands on the terminal. A signal's handler may ask.
bool bar_is_drawn();
