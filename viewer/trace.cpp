#include "trace.hpp"

#include <windows.h>

#include <cstdio>

namespace {

HANDLE file = INVALID_HANDLE_VALUE;

long long ticks() {
    LARGE_INTEGER now;
    QueryPerformanceCounter(&now);
    return now.QuadPart;
}

// The process's own beginning: what the loader took counts too.
double milliseconds_of_process() {
    FILETIME created, other, now;
    GetProcessTimes(GetCurrentProcess(), &created, &other, &other, &other);
    GetSystemTimeAsFileTime(&now);
    const auto number = [](const FILETIME& time) {
        return static_cast<long long>(time.dwHighDateTime) << 32 | time.dwLowDateTime;
    };
    return static_cast<double>(number(now) - number(created)) / 10000;
}

} // namespace

void open_trace(const std::wstring& name) {
    file = CreateFileW(name.c_str(), FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                       CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
}

// One write a line, so that threads do not mix theirs.
void trace(const std::string& what) {
    if (file == INVALID_HANDLE_VALUE)
        return;
    char time[32];
    std::snprintf(time, sizeof time, "%10.1f ", milliseconds_of_process());
    const std::string line = time + what + "\r\n";
    DWORD written;
    WriteFile(file, line.data(), static_cast<DWORD>(line.size()), &written, nullptr);
}

std::string milliseconds_text(double milliseconds) {
    char text[32];
    std::snprintf(text, sizeof text, "%.1f ms", milliseconds);
    return text;
}

Stopwatch::Stopwatch() : start_(ticks()) {}

double Stopwatch::milliseconds() const {
    LARGE_INTEGER frequency;
    QueryPerformanceFrequency(&frequency);
    return static_cast<double>(ticks() - start_) * 1000 / static_cast<double>(frequency.QuadPart);
}

std::string Stopwatch::text() const { return milliseconds_text(milliseconds()); }
