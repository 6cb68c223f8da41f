// A progress bar on the terminal, fed by the library's progress messages.
#pragma once

#include <string>

// Watches one library call: made just before it, gone just after it. Draws on standard error when
// that is a terminal, and nothing otherwise.
class Watch {
  public:
    explicit Watch(const std::string& label);
    ~Watch();
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;

    // No bar from now on.
    static void silence();
};
