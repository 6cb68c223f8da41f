#include "core/progress.hpp"

namespace kirvo {

namespace {

struct Registration {
    HWND window = nullptr;
    uint32_t command = 0;
    int32_t enable = 0;
};

Registration registration;

void send(int32_t percent) {
    SendMessageA(registration.window, WM_COMMAND, registration.command, percent);
}

// Products of wide images wrap as 32-bit ones do.
int32_t share_done(int32_t i, int32_t n, int32_t share) {
    const auto product =
        static_cast<int32_t>(static_cast<uint32_t>(i) * static_cast<uint32_t>(share));
    return n > 0 ? product / n : 0;
}

} // namespace

bool progress_enabled() { return registration.enable == 1; }

void stop_progress() { registration.enable = 0; }

void Progress::start() {
    last_sent_ = 0;
    if (progress_enabled())
        send(0);
}

void Progress::step(int32_t i, int32_t n, const Pass& pass) {
    update(pass.base + share_done(i, n, pass.share));
}

void Progress::update(int32_t percent) {
    if (!progress_enabled() || percent < next_due())
        return;
    last_sent_ = percent; // first, since a handler may begin something else with this object
    send(percent);
}

void Progress::finish() {
    if (!progress_enabled())
        return;
    send(100);
    stop_progress();
}

} // namespace kirvo

using namespace kirvo;

int32_t WINAPI KirvoSetProcess(HWND window, uint32_t command, int32_t enable) {
    registration.enable = enable;
    if (enable == 1) {
        registration.window = window;
        registration.command = command;
    }
    return enable;
}
