#include "dialog.hpp"

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
    const auto scaled = [&](int length) { return theme::scaled(window_, length); };
    const DWORD border = window_class == std::wstring(L"EDIT") ? WS_EX_CLIENTEDGE : 0;
    HWND control = CreateWindowExW(
        border, window_class, text.c_str(), WS_CHILD | WS_VISIBLE | style, scaled(left),
        scaled(top), scaled(width), scaled(height), window_,
        reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), GetModuleHandleW(nullptr), nullptr);
    SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(font_), TRUE);
    return control;
}

void Dialog::add_buttons(int width, int top) {
    add(L"BUTTON", L"OK", WS_TABSTOP | BS_DEFPUSHBUTTON, IDOK, width - 186, top, 84, 26);
    add(L"BUTTON", L"Cancel", WS_TABSTOP, IDCANCEL, width - 96, top, 84, 26);
}

std::wstring Dialog::text(int id) const { return text_of(control(id)); }

void Dialog::set_text(int id, const std::wstring& text) const {
    SetWindowTextW(control(id), text.c_str());
}

// At the owner's lower right corner, where it hides least of the picture.
void Dialog::place() {
    RECT size = {0, 0, theme::scaled(window_, width_), theme::scaled(window_, height_)};
    AdjustWindowRect(&size, static_cast<DWORD>(GetWindowLongPtrW(window_, GWL_STYLE)), FALSE);
    const LONG width = size.right - size.left, height = size.bottom - size.top;
    RECT owner;
    GetWindowRect(GetParent(window_), &owner);
    MONITORINFO monitor = {};
    monitor.cbSize = sizeof monitor;
    GetMonitorInfoW(MonitorFromWindow(GetParent(window_), MONITOR_DEFAULTTONEAREST), &monitor);
    const LONG left = std::max(monitor.rcWork.left, owner.right - width - 24);
    const LONG top = std::max(monitor.rcWork.top, owner.bottom - height - 48);
    SetWindowPos(window_, nullptr, left, top, width, height, SWP_NOZORDER);
}

INT_PTR CALLBACK Dialog::on_message(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_INITDIALOG) {
        auto* dialog = reinterpret_cast<Dialog*>(lparam);
        dialog->window_ = window;
        SetWindowLongPtrW(window, DWLP_USER, lparam);
        SetWindowTextW(window, dialog->title_.c_str());
        dialog->font_ = theme::message_font(theme::dpi_of(window));
        dialog->place();
        dialog->fill();
        theme::apply(window);
        return TRUE; // the first control gets the focus
    }
    auto* dialog = reinterpret_cast<Dialog*>(GetWindowLongPtrW(window, DWLP_USER));
    if (dialog == nullptr)
        return FALSE;
    switch (message) {
    case WM_COMMAND:
        if (LOWORD(wparam) == IDCANCEL || (LOWORD(wparam) == IDOK && dialog->on_ok()))
            EndDialog(window, LOWORD(wparam));
        else if (LOWORD(wparam) != IDOK)
            dialog->on_control(LOWORD(wparam), HIWORD(wparam));
        return TRUE;
    case WM_HSCROLL:
        dialog->on_scroll(reinterpret_cast<HWND>(lparam));
        return TRUE;
    case WM_TIMER:
        dialog->on_timer();
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
