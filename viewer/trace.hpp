// What happened when: --trace FILE.
#pragma once

#include <string>

void open_trace(const std::wstring& name);
void trace(const std::string& what);

std::string milliseconds_text(double milliseconds); // "12.3 ms"

// Milliseconds since it was made.
class Stopwatch {
  public:
    Stopwatch();
    double milliseconds() const;
    std::string text() const; // "12.3 ms"

  private:
    long long start_;
};
