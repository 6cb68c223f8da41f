#include "watch.hpp"

#include "kirvo.h"
#include "settings.hpp"
#include "terminal.hpp"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdio>

namespace {

constexpr uint32_t command = 1;
constexpr int label_width = 20, widest_bar = 30;
// Work that is done sooner shows no bar.
constexpr std::chrono::milliseconds patience{500};
constexpr std::chrono::milliseconds between_drawings{50};

using Clock = std::chrono::steady_clock;

struct Work {
    Clock::time_point begun = Clock::now(), drawn_at;
    size_t stages = 1, done = 0;
    int depth = 0; // of stages inside each other
    std::string subject, label;
};

Work work;
std::atomic<bool> drawn;

bool visible() {
    static const bool terminal = is_terminal(stderr);
    return terminal && !settings.quiet;
}

std::string time_left(double seconds) {
    char text[32];
    const auto whole = static_cast<long>(std::min(std::ceil(seconds), 359999.0));
    if (whole < 60)
        std::snprintf(text, sizeof text, "%ld s left", whole);
    else
        std::snprintf(text, sizeof text, "%ld:%02ld min left", whole / 60, whole % 60);
    return text;
}

void draw(int percent) {
    const auto now = Clock::now();
    const double share = (static_cast<double>(work.done) + percent / 100.0) /
                         static_cast<double>(std::max(work.stages, work.done + 1));
    if (!visible() || share <= 0 || now - work.begun < patience ||
        now - work.drawn_at < between_drawings)
        return;
    work.drawn_at = now;
    const double seconds = std::chrono::duration<double>(now - work.begun).count();
    const std::string& label = work.subject.empty() ? work.label : work.subject;
    // The rest of the line has at most 30 columns; a line that wraps could not be drawn over.
    const int room = std::clamp(terminal_width() - label_width - 30, 0, widest_bar);
    const auto filled = static_cast<size_t>(share * room);
    std::fprintf(stderr, "\r%-*.*s [%s%s] %3d%% %-14s", label_width, label_width, label.c_str(),
                 std::string(filled, '#').c_str(),
                 std::string(static_cast<size_t>(room) - filled, '.').c_str(),
                 static_cast<int>(share * 100), time_left(seconds * (1 - share) / share).c_str());
    std::fflush(stderr);
    drawn = true;
}

#ifdef _WIN32

LRESULT CALLBACK on_message(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_COMMAND && wparam == command) {
        draw(static_cast<int>(lparam));
        return 0;
    }
    return DefWindowProcA(window, message, wparam, lparam);
}

HWND receiver() {
    static const HWND window = [] {
        WNDCLASSA kind = {};
        kind.lpfnWndProc = on_message;
        kind.hInstance = GetModuleHandleA(nullptr);
        kind.lpszClassName = "kirvo progress";
        RegisterClassA(&kind);
        return CreateWindowA(kind.lpszClassName, "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                             kind.hInstance, nullptr);
    }();
    return window;
}

#else

LRESULT on_message(HWND, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_COMMAND && wparam == command)
        draw(static_cast<int>(lparam));
    return 0;
}

HWND receiver() {
    KirvoWindowHost host = {};
    host.SendMessageA = on_message;
    KirvoSetWindowHost(&host);
    return nullptr;
}

#endif

} // namespace

void expect_work(size_t stages) {
    work = {};
    work.stages = stages;
}

void work_on(const std::string& subject) {
    work.subject = subject;
}

void clear_bar() {
    if (drawn)
        std::fprintf(stderr, "\r%*s\r", std::min(terminal_width() - 1, label_width + 60), "");
    drawn = false;
}

bool bar_is_drawn() {
    return drawn;
}

Watch::Watch(const std::string& label) {
    if (work.depth++ > 0 || !visible())
        return;
    work.label = label;
    draw(0);
    KirvoSetProcess(receiver(), command, 1);
}

Watch::~Watch() {
    if (--work.depth > 0)
        return;
    KirvoSetProcess(nullptr, 0, 0);
    if (++work.done >= work.stages)
        clear_bar();
}
