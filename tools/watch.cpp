#include "watch.hpp"

#include "kirvo.h"

#include <chrono>
#include <cstdio>

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace {

constexpr uint32_t command = 1;
constexpr int bar_width = 30;
// Work that is done sooner shows no bar.
constexpr std::chrono::milliseconds patience{300};

using Clock = std::chrono::steady_clock;

bool silent = false;
std::string current;
Clock::time_point begun;
bool drawn = false;

bool on_terminal() {
#ifdef _WIN32
    return _isatty(_fileno(stderr)) != 0;
#else
    return isatty(STDERR_FILENO) != 0;
#endif
}

void draw(int percent) {
    const auto elapsed = Clock::now() - begun;
    if (elapsed < patience || percent <= 0)
        return;
    const int filled = percent * bar_width / 100;
    const double seconds = std::chrono::duration<double>(elapsed).count();
    std::fprintf(stderr, "\r%-16s [%s%s] %3d%% %4.0f s left ", current.c_str(),
                 std::string(static_cast<size_t>(filled), '#').c_str(),
                 std::string(static_cast<size_t>(bar_width - filled), '.').c_str(), percent,
                 seconds * (100 - percent) / percent);
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

void Watch::silence() { silent = true; }

Watch::Watch(const std::string& label) {
    if (silent || !on_terminal())
        return;
    current = label;
    begun = Clock::now();
    drawn = false;
    KirvoSetProcess(receiver(), command, 1);
}

Watch::~Watch() {
    KirvoSetProcess(nullptr, 0, 0);
    if (drawn)
        std::fprintf(stderr, "\r%*s\r", bar_width + 40, "");
    drawn = false;
}
