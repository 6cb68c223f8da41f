#include "running/watch.hpp"

#include "kirvo.h"
#include "running/bar.hpp"

#include <algorithm>

namespace {

constexpr uint32_t command = 1;

struct Work {
    size_t stages = 1, done = 0;
    int depth = 0; // of stages inside each other
    std::string subject, label;
};

Work work;
std::function<void(double)> listener;

void tell(int percent) {
    const double share = (static_cast<double>(work.done) + percent / 100.0) /
                         static_cast<double>(std::max(work.stages, work.done + 1));
    if (listener)
        listener(share);
    else
        draw_bar(work.subject.empty() ? work.label : work.subject, share);
}

#ifdef _WIN32

LRESULT CALLBACK on_message(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_COMMAND && wparam == command) {
        tell(static_cast<int>(lparam));
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
        tell(static_cast<int>(lparam));
    return 0;
}

HWND receiver() {
    KirvoWindowHost host = {};
    host.SendMessageA = on_message;
    KirvoSetWindowHost(&host);
    return nullptr;
}

#endif

bool is_watched() { return listener || bar_is_wanted(); }

} // namespace

void expect_work(size_t stages) {
    work = {};
    work.stages = stages;
    start_bar();
}

void work_on(const std::string& subject) { work.subject = subject; }

void tell_shares_to(std::function<void(double)> whom) { listener = std::move(whom); }

Watch::Watch(const std::string& label) {
    if (work.depth++ > 0 || !is_watched())
        return;
    work.label = label;
    tell(0);
    KirvoSetProcess(receiver(), command, 1);
}

Watch::~Watch() {
    if (--work.depth > 0)
        return;
    KirvoSetProcess(nullptr, 0, 0);
    if (++work.done >= work.stages)
        clear_bar();
}
