#include "support/progress_recorder.hpp"

namespace kirvo_test {

namespace {

ProgressRecorder* current = nullptr;

LRESULT receive(UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_COMMAND && current != nullptr)
        current->record({static_cast<uint32_t>(wparam), static_cast<int32_t>(lparam)});
    return 0;
}

#ifdef _WIN32

LRESULT CALLBACK window_procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_COMMAND)
        return receive(message, wparam, lparam);
    return DefWindowProcA(window, message, wparam, lparam);
}

HWND open_window() {
    static const ATOM window_class = [] {
        WNDCLASSA description{};
        description.lpfnWndProc = window_procedure;
        description.hInstance = GetModuleHandleA(nullptr);
        description.lpszClassName = "ProgressRecorder";
        return RegisterClassA(&description);
    }();
    return CreateWindowExA(0, MAKEINTATOM(window_class), "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                           GetModuleHandleA(nullptr), nullptr);
}

void close_window(HWND window) { DestroyWindow(window); }

#else

char window_object; // a window is only its address here

HWND open_window() {
    KirvoWindowHost host{};
    host.SendMessageA = [](HWND window, UINT message, WPARAM wparam, LPARAM lparam) -> LRESULT {
        const bool ours = window == reinterpret_cast<HWND>(&window_object);
        return ours ? receive(message, wparam, lparam) : 0;
    };
    KirvoSetWindowHost(&host);
    return reinterpret_cast<HWND>(&window_object);
}

void close_window(HWND) { KirvoSetWindowHost(nullptr); }

#endif

} // namespace

ProgressRecorder::ProgressRecorder() : window_(open_window()) { current = this; }

ProgressRecorder::~ProgressRecorder() {
    KirvoSetProcess(nullptr, 0, 0);
    close_window(window_);
    current = nullptr;
}

void ProgressRecorder::watch(uint32_t command) {
    messages_.clear();
    KirvoSetProcess(window_, command, 1);
}

void ProgressRecorder::record(const ProgressMessage& message) {
    messages_.push_back(message);
    if (on_message)
        on_message(message);
}

std::vector<int> ProgressRecorder::percents() const {
    std::vector<int> percents;
    for (const ProgressMessage& message : messages_)
        percents.push_back(message.percent);
    return percents;
}

void expect_steps(std::vector<int>& percents, int n, int base, int share) {
    if (percents.empty())
        percents.push_back(0);
    for (int i = 0; i < n; ++i)
        if (base + i * share / n - percents.back() >= 5)
            percents.push_back(base + i * share / n);
}

std::vector<int> single_pass_percents(int n) {
    std::vector<int> percents;
    expect_steps(percents, n);
    percents.push_back(100);
    return percents;
}

} // namespace kirvo_test
