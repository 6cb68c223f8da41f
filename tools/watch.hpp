// A progress bar with the time left, for work that takes longer than half a second. It is drawn on
// standard error when that is a terminal, and fed by the library's progress messages.
#pragma once

#include <cstddef>
#include <string>

// Begins work of so many stages of about the same length.
void expect_work(size_t stages);
// Names what the next stages work on; the bar shows the stage's own name when there is none.
void work_on(const std::string& subject);
// Makes room for other text.
void clear_bar();
// True while a bar stands on the terminal. A signal's handler may ask.
bool bar_is_drawn();

// One stage: made just before it, gone just after it. A stage inside another is part of that one.
class Watch {
  public:
    explicit Watch(const std::string& label);
    ~Watch();
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;
};
