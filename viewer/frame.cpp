// The main window: its messages, and where its parts lie.
#include "commands.hpp"
#include "sizes.hpp"
#include "text.hpp"
#include "trace.hpp"
#include "viewer.hpp"

#include <shellapi.h>

namespace {

constexpr UINT message_work_done = WM_APP + 1;
constexpr wchar_t class_name[] = L"KirvoView";

void make_fonts(Viewer& viewer) {
    HFONT before = viewer.font;
    viewer.font = sizes::message_font(viewer.window);
    SendMessageW(viewer.status, WM_SETFONT, reinterpret_cast<WPARAM>(viewer.font), TRUE);
    viewer.code.set_fonts(viewer.font);
    DeleteObject(before);
}

void want_smooth(Viewer& viewer, int width, int height) {
    const SharedImage image = viewer.view.image();
    const auto result = std::make_shared<SharedImage>();
    viewer.worker.post(
        Worker::Kind::smooth, [=] { *result = shared(reduced(*image, width, height)); },
        [=, &viewer](const std::string& error) {
            if (error.empty())
                viewer.view.smooth(image, *result);
        });
}

void on_create(Viewer& viewer) {
    viewer.worker.start(viewer.window, message_work_done);
    viewer.status = create_status(viewer.window);
    View::Events events;
    events.pixel = [&](std::optional<POINT> pixel) { viewer.show_pixel(pixel); };
    events.changed = [&] { viewer.refresh_status(); };
    events.wants_smooth = [&](int width, int height) { want_smooth(viewer, width, height); };
    viewer.view.create(viewer.window, std::move(events));
    viewer.code.create(viewer.window, viewer.options.language, viewer.font);
    viewer.code.set_visible(viewer.options.code);
    make_fonts(viewer);
    theme::apply(viewer.window);
    colour_menu_bar(viewer);
    DragAcceptFiles(viewer.window, TRUE);
    viewer.history.set_budget(viewer.options.undo_megabytes << 20);
}

void remember_window(Viewer& viewer) {
    WINDOWPLACEMENT placement = {};
    placement.length = sizeof placement;
    GetWindowPlacement(viewer.window, &placement);
    viewer.options.maximised = placement.showCmd == SW_SHOWMAXIMIZED;
    viewer.options.window = placement.rcNormalPosition;
    viewer.options.language = viewer.code.language();
}

void on_destroy(Viewer& viewer) {
    if (viewer.full_screen)
        toggle_full_screen(viewer);
    remember_window(viewer);
    const bool histogram = viewer.options.histogram;
    viewer.histogram.close();
    viewer.options.histogram = histogram;
    write_options(viewer.options);
    viewer.abandoned = true;
    viewer.worker.stop();
    PostQuitMessage(0);
}

// Not while a dialog is open, whose picture would be another one all at once.
bool is_free(const Viewer& viewer) { return IsWindowEnabled(viewer.window); }

void on_drop(Viewer& viewer, HDROP drop) {
    std::wstring name(DragQueryFileW(drop, 0, nullptr, 0), L'\0');
    DragQueryFileW(drop, 0, name.data(), static_cast<UINT>(name.size()) + 1);
    DragFinish(drop);
    SetForegroundWindow(viewer.window);
    if (!name.empty() && is_free(viewer) && !viewer.working && may_leave_picture(viewer))
        open_file(viewer, name);
}

// Shown while it is held down.
void show_before(Viewer& viewer, bool before) {
    const SharedImage image = before ? viewer.history.before() : viewer.history.now();
    if (image && image != viewer.view.image())
        viewer.view.show(image);
}

void on_key(Viewer& viewer, WPARAM key) {
    const int step = sizes::scaled(viewer.window, 48);
    switch (key) {
    case VK_LEFT:
        return viewer.view.move_by(step, 0);
    case VK_RIGHT:
        return viewer.view.move_by(-step, 0);
    case VK_UP:
        return viewer.view.move_by(0, step);
    case VK_DOWN:
        return viewer.view.move_by(0, -step);
    case 'B':
        return show_before(viewer, true);
    default:
        return;
    }
}

// Progress that the library sends. The answer to a person who has pressed Esc is the library's own
// way to end a decode.
void on_progress(Viewer& viewer, LPARAM percent) {
    if (viewer.abandoned) {
        HGLOBAL none = nullptr;
        JpgDecNext(nullptr, 0, -1, &none);
        return;
    }
    static ULONGLONG last = 0;
    if (GetTickCount64() - last < 100)
        return; // the library waits while the words are painted
    last = GetTickCount64();
    viewer.say("Working: " + std::to_string(percent) + " %");
    UpdateWindow(viewer.status);
}

LRESULT on_command(Viewer& viewer, WPARAM wparam, LPARAM lparam) {
    if (LOWORD(wparam) == command_progress)
        on_progress(viewer, lparam);
    else if (lparam == 0 && is_free(viewer))
        act(viewer, LOWORD(wparam));
    else if (reinterpret_cast<HWND>(lparam) == viewer.code.list() &&
             HIWORD(wparam) == CBN_SELCHANGE)
        viewer.code.choose(static_cast<int>(SendMessageW(viewer.code.list(), CB_GETCURSEL, 0, 0)));
    return 0;
}

LRESULT answer(Viewer& viewer, UINT message, WPARAM wparam, LPARAM lparam) {
    LRESULT answered = 0;
    if (theme::change_by(viewer.window, message))
        colour_menu_bar(viewer);
    if (sizes::change_by(viewer.window, message, wparam, lparam)) {
        make_fonts(viewer);
        lay_out(viewer);
    }
    if (answer_menu_bar(viewer, message, wparam, lparam, answered))
        return answered;
    switch (message) {
    case WM_CREATE:
        on_create(viewer);
        return 0;
    case message_work_done:
        Worker::finish(lparam);
        return 0;
    case WM_COMMAND:
        return on_command(viewer, wparam, lparam);
    case WM_INITMENUPOPUP:
        refresh_menu(viewer, reinterpret_cast<HMENU>(wparam));
        return 0;
    case WM_KEYDOWN:
        on_key(viewer, wparam);
        return 0;
    case WM_KEYUP:
        if (wparam == 'B')
            show_before(viewer, false);
        return 0;
    case WM_KILLFOCUS:
        show_before(viewer, false);
        break;
    case WM_MOUSEWHEEL:
        return SendMessageW(viewer.view.window(), message, wparam, lparam);
    case WM_SIZE:
        lay_out(viewer);
        return 0;
    case WM_DROPFILES:
        on_drop(viewer, reinterpret_cast<HDROP>(wparam));
        return 0;
    case WM_CTLCOLORSTATIC:
    case WM_CTLCOLOREDIT:
    case WM_CTLCOLORLISTBOX:
        if (HBRUSH brush = theme::control_colours(reinterpret_cast<HDC>(wparam)))
            return reinterpret_cast<LRESULT>(brush);
        break;
    case WM_GETFONT:
        return reinterpret_cast<LRESULT>(viewer.font);
    case WM_QUERYENDSESSION:
        return may_leave_picture(viewer);
    case WM_CLOSE:
        if (is_free(viewer) && may_leave_picture(viewer))
            DestroyWindow(viewer.window);
        return 0;
    case WM_DESTROY:
        on_destroy(viewer);
        return 0;
    default:
        break;
    }
    return DefWindowProcW(viewer.window, message, wparam, lparam);
}

LRESULT CALLBACK on_message(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_NCCREATE) {
        auto* viewer =
            static_cast<Viewer*>(reinterpret_cast<CREATESTRUCTW*>(lparam)->lpCreateParams);
        viewer->window = window;
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(viewer));
    }
    auto* viewer = reinterpret_cast<Viewer*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (viewer == nullptr)
        return DefWindowProcW(window, message, wparam, lparam);
    return answer(*viewer, message, wparam, lparam);
}

// Where it was the last time, if that is on a screen of today.
RECT first_place(const Options& options) {
    RECT area;
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &area, 0);
    if (!IsRectEmpty(&options.window) &&
        MonitorFromRect(&options.window, MONITOR_DEFAULTTONULL) != nullptr)
        return options.window;
    const LONG width = area.right - area.left, height = area.bottom - area.top;
    return {area.left + width / 8, area.top + height / 10, area.right - width / 8,
            area.bottom - height / 10};
}

} // namespace

bool create_window(Viewer& viewer, int show) {
    WNDCLASSEXW description = {};
    description.cbSize = sizeof description;
    description.lpfnWndProc = on_message;
    description.hInstance = GetModuleHandleW(nullptr);
    description.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    description.hIcon = LoadIconW(nullptr, IDI_APPLICATION);
    description.lpszClassName = class_name;
    RegisterClassExW(&description);
    const RECT place = first_place(viewer.options);
    viewer.menu = make_menu();
    CreateWindowExW(0, class_name, L"KirvoView", WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, place.left,
                    place.top, place.right - place.left, place.bottom - place.top, nullptr,
                    viewer.menu, description.hInstance, &viewer);
    if (viewer.window == nullptr)
        return false;
    ShowWindow(viewer.window, viewer.options.maximised ? SW_SHOWMAXIMIZED : show);
    if (viewer.options.histogram) {
        viewer.options.histogram = false;
        act(viewer, command_histogram);
    }
    trace("window shown");
    return true;
}
