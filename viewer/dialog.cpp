#include "dialog.hpp"

#include "newer.hpp"
#include "sizes.hpp"
#include "text.hpp"
#include "theme.hpp"

#include <algorithm>

bool Dialog::run(HWND owner, const std::wstring& title, int width, int height) {
    title_ = title;
    width_ = width;
    height_ = height;
    struct {
        DLGTEMPLATE head;
        WORD menu, window_class, title;
    } description = {};
    description.head.style = WS_POPUP | WS_CAPTION | WS_SYSMENU | DS_MODALFRAME;
    const INT_PTR result =
        DialogBoxIndirectParamW(GetModuleHandleW(nullptr), &description.head, owner, on_message,
                                reinterpret_cast<LPARAM>(this));
    DeleteObject(font_);
    return result == IDOK;
}

HWND Dialog::add(const wchar_t* window_class, const std::wstring& text, DWORD style, int id,
                 int left, int top, int width, int height) {
    const DWORD border = window_class == std::wstring(L"EDIT") ? WS_EX_CLIENTEDGE : 0;
    HWND control = CreateWindowExW(
        border, window_class, text.c_str(), WS_CHILD | WS_VISIBLE | style, 0, 0, 0, 0, window_,
        reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), GetModuleHandleW(nullptr), nullptr);
    parts_.push_back({control, left, top, width, height});
    return control;
}

void Dialog::add_name(const std::wstring& text, int left, int top, int width) {
    add(L"STATIC", with_key(text, taken_keys_), 0, -1, left, top, width, 18);
}

void Dialog::add_buttons(int width, int top) {
    add(L"BUTTON", L"OK", WS_TABSTOP | BS_DEFPUSHBUTTON, IDOK, width - 186, top, 84, 26);
    add(L"BUTTON", L"Cancel", WS_TABSTOP, IDCANCEL, width - 96, top, 84, 26);
}

std::wstring Dialog::text(int id) const { return text_of(control(id)); }

void Dialog::set_text(int id, const std::wstring& text) const {
    SetWindowTextW(control(id), text.c_str());
}

RECT Dialog::work_area() const {
    MONITORINFO monitor = {};
    monitor.cbSize = sizeof monitor;
    GetMonitorInfoW(MonitorFromWindow(GetParent(window_), MONITOR_DEFAULTTONEAREST), &monitor);
    return monitor.rcWork;
}

// As large as the person wants texts, but no larger than the screen.
void Dialog::lay_out() {
    const RECT work = work_area();
    RECT outside = {0, 0, sizes::scaled(window_, width_), sizes::scaled(window_, height_)};
    const RECT inside = outside;
    AdjustWindowRect(&outside, static_cast<DWORD>(GetWindowLongPtrW(window_, GWL_STYLE)), FALSE);
    const LONG across = inside.right - (outside.right - outside.left) + work.right - work.left;
    const LONG down = inside.bottom - (outside.bottom - outside.top) + work.bottom - work.top;
    const double smaller = std::min({1.0, static_cast<double>(across) / inside.right,
                                     static_cast<double>(down) / inside.bottom});
    const auto scaled = [&](int length) {
        return static_cast<int>(sizes::scaled(window_, length) * smaller);
    };
    HFONT before = font_;
    font_ = sizes::message_font(window_, smaller);
    for (const Part& part : parts_) {
        SendMessageW(part.control, WM_SETFONT, reinterpret_cast<WPARAM>(font_), TRUE);
        MoveWindow(part.control, scaled(part.left), scaled(part.top), scaled(part.width),
                   scaled(part.height), TRUE);
    }
    DeleteObject(before);
    SetWindowPos(window_, nullptr, 0, 0,
                 scaled(width_) + outside.right - outside.left - inside.right,
                 scaled(height_) + outside.bottom - outside.top - inside.bottom,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

// At the owner's lower right corner, where it hides least of the picture.
void Dialog::place() {
    RECT owner, self;
    GetWindowRect(GetParent(window_), &owner);
    GetWindowRect(window_, &self);
    const RECT work = work_area();
    const LONG width = self.right - self.left, height = self.bottom - self.top;
    const LONG left = std::max(work.left, std::min(owner.right - 24, work.right) - width);
    const LONG top = std::max(work.top, std::min(owner.bottom - 48, work.bottom) - height);
    SetWindowPos(window_, nullptr, left, top, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
}

void Dialog::begin() {
    // This program scales its dialogs itself.
    using SetBehaviour = BOOL(WINAPI*)(HWND, int, int);
    static const auto set =
        newer_function<SetBehaviour>(L"user32.dll", "SetDialogDpiChangeBehavior");
    constexpr int disable_all = 1;
    if (set != nullptr)
        set(window_, disable_all, disable_all);
    SetWindowTextW(window_, title_.c_str());
    fill();
    lay_out();
    place();
    theme::apply(window_);
}

INT_PTR CALLBACK Dialog::on_message(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_INITDIALOG) {
        auto* dialog = reinterpret_cast<Dialog*>(lparam);
        dialog->window_ = window;
        SetWindowLongPtrW(window, DWLP_USER, lparam);
        dialog->begin();
        return TRUE; // the first control gets the focus
    }
    auto* dialog = reinterpret_cast<Dialog*>(GetWindowLongPtrW(window, DWLP_USER));
    return dialog != nullptr ? dialog->answer(message, wparam, lparam) : FALSE;
}

INT_PTR Dialog::answer(UINT message, WPARAM wparam, LPARAM lparam) {
    theme::change_by(window_, message);
    if (sizes::change_by(window_, message, wparam, lparam)) {
        lay_out();
        return TRUE;
    }
    switch (message) {
    case WM_COMMAND:
        if (LOWORD(wparam) == IDCANCEL || (LOWORD(wparam) == IDOK && on_ok()))
            EndDialog(window_, LOWORD(wparam));
        else if (LOWORD(wparam) != IDOK)
            on_control(LOWORD(wparam), HIWORD(wparam));
        return TRUE;
    case WM_HSCROLL:
        on_scroll(reinterpret_cast<HWND>(lparam));
        return TRUE;
    case WM_TIMER:
        on_timer();
        return TRUE;
    case WM_CTLCOLORDLG:
    case WM_CTLCOLORSTATIC:
    case WM_CTLCOLOREDIT:
    case WM_CTLCOLORLISTBOX:
    case WM_CTLCOLORBTN:
        return reinterpret_cast<INT_PTR>(theme::control_colours(reinterpret_cast<HDC>(wparam)));
    default:
        return FALSE;
    }
}
