// Where the parts of the main window lie, and its two special sizes.
#include "sizes.hpp"
#include "viewer.hpp"

#include <algorithm>

namespace {

constexpr int code_width = 420; // but never more than the picture has

} // namespace

void lay_out(Viewer& viewer) {
    lay_out_status(viewer.status);
    RECT area, bar = {};
    GetClientRect(viewer.window, &area);
    if (!viewer.full_screen)
        GetWindowRect(viewer.status, &bar);
    area.bottom -= bar.bottom - bar.top;
    if (viewer.code.is_visible() && !viewer.full_screen) {
        RECT pane = area;
        pane.left = std::max(area.right - sizes::scaled(viewer.window, code_width), area.right / 2);
        area.right = pane.left;
        viewer.code.place(pane);
    }
    MoveWindow(viewer.view.window(), 0, 0, area.right, area.bottom, TRUE);
}

void toggle_full_screen(Viewer& viewer) {
    static WINDOWPLACEMENT placement;
    const auto style = GetWindowLongPtrW(viewer.window, GWL_STYLE);
    viewer.full_screen = !viewer.full_screen;
    ShowWindow(viewer.status, viewer.full_screen ? SW_HIDE : SW_SHOW);
    viewer.code.set_visible(viewer.options.code && !viewer.full_screen);
    if (viewer.full_screen) {
        placement.length = sizeof placement;
        GetWindowPlacement(viewer.window, &placement);
        SetMenu(viewer.window, nullptr);
        MONITORINFO monitor = {};
        monitor.cbSize = sizeof monitor;
        GetMonitorInfoW(MonitorFromWindow(viewer.window, MONITOR_DEFAULTTONEAREST), &monitor);
        const RECT& screen = monitor.rcMonitor;
        SetWindowLongPtrW(viewer.window, GWL_STYLE, style & ~WS_OVERLAPPEDWINDOW);
        SetWindowPos(viewer.window, HWND_TOP, screen.left, screen.top, screen.right - screen.left,
                     screen.bottom - screen.top, SWP_FRAMECHANGED);
    } else {
        SetWindowLongPtrW(viewer.window, GWL_STYLE, style | WS_OVERLAPPEDWINDOW);
        SetMenu(viewer.window, viewer.menu);
        SetWindowPlacement(viewer.window, &placement);
        SetWindowPos(viewer.window, nullptr, 0, 0, 0, 0,
                     SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_FRAMECHANGED);
    }
    lay_out(viewer);
}

// The library makes the window's inside as large as the picture; what lies beside the picture in
// there is added.
void fit_window(Viewer& viewer) {
    const Worker::Turn turn(viewer.worker, Worker::Turn::Wait::yes);
    ShowWindow(viewer.window, SW_RESTORE);
    FitWindowToImage(viewer.window, viewer.history.now()->handle());
    RECT window, client, view;
    GetWindowRect(viewer.window, &window);
    GetClientRect(viewer.window, &client);
    GetClientRect(viewer.view.window(), &view);
    const LONG code = viewer.code.is_visible()
                          ? std::min<LONG>(sizes::scaled(viewer.window, code_width), client.right)
                          : 0;
    SetWindowPos(viewer.window, nullptr, 0, 0, window.right - window.left + code,
                 window.bottom - window.top + client.bottom - view.bottom,
                 SWP_NOMOVE | SWP_NOZORDER);
    viewer.view.fit();
}
