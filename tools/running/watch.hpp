// How far the work is, fed by the library's progress messages.
#pragma once

#include <cstddef>
#include <functional>
#include <string>

// Begins work of so many stages of about the same length.
void expect_work(size_t stages);
// Names what the next stages work on; the bar shows the stage's own name when there is none.
void work_on(const std::string& subject);
// Who is told of shares of the work instead of the bar.
void tell_shares_to(std::function<void(double share)> listener);

// One stage: made just before it, gone just after it. A stage inside another is part of that one.
class Watch {
  public:
    explicit Watch(const std::string& label);
    ~Watch();
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;
};
