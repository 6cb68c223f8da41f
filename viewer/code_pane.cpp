#include "code_pane.hpp"

#include "calls/code.hpp"
#include "sizes.hpp"
#include "text.hpp"

namespace {

// An edit control breaks lines at both characters only.
std::wstring with_returns(const std::string& text) {
    std::string result;
    for (const char character : text)
        result += character == '\n' ? std::string("\r\n") : std::string(1, character);
    return wide(result);
}

} // namespace

void CodePane::create(HWND parent, int language, HFONT font) {
    HINSTANCE instance = GetModuleHandleW(nullptr);
    list_ = CreateWindowExW(0, L"COMBOBOX", L"Language",
                            WS_CHILD | WS_TABSTOP | CBS_DROPDOWNLIST | WS_VSCROLL, 0, 0, 10, 200,
                            parent, nullptr, instance, nullptr);
    edit_ = CreateWindowExW(0, L"EDIT", L"",
                            WS_CHILD | WS_TABSTOP | WS_VSCROLL | WS_HSCROLL | ES_MULTILINE |
                                ES_READONLY | ES_AUTOHSCROLL | ES_AUTOVSCROLL,
                            0, 0, 10, 10, parent, nullptr, instance, nullptr);
    SendMessageW(edit_, EM_SETLIMITTEXT, 0, 0); // as much as there is
    for (int i = 0; i < language_count; ++i)
        SendMessageW(
            list_, CB_ADDSTRING, 0,
            reinterpret_cast<LPARAM>(wide(language_name(static_cast<Language>(i))).c_str()));
    set_fonts(font);
    choose(language);
}

void CodePane::set_fonts(HFONT message) {
    HFONT before = font_;
    font_ = sizes::code_font(list_);
    SendMessageW(list_, WM_SETFONT, reinterpret_cast<WPARAM>(message), TRUE);
    SendMessageW(edit_, WM_SETFONT, reinterpret_cast<WPARAM>(font_), TRUE);
    DeleteObject(before);
}

void CodePane::choose(int language) {
    language_ = language;
    SendMessageW(list_, CB_SETCURSEL, static_cast<WPARAM>(language), 0);
    refresh();
}

void CodePane::show(const std::vector<Step>& steps) {
    steps_ = steps;
    refresh();
}

std::wstring CodePane::text() const {
    return with_returns(code_of(static_cast<Language>(language_), steps_));
}

void CodePane::refresh() {
    if (!visible_)
        return;
    const std::wstring code = text();
    SetWindowTextW(edit_, code.empty() ? L"The code of what you do to the picture appears here."
                                       : code.c_str());
}

void CodePane::set_visible(bool visible) {
    visible_ = visible;
    ShowWindow(list_, visible ? SW_SHOW : SW_HIDE);
    ShowWindow(edit_, visible ? SW_SHOW : SW_HIDE);
    refresh();
}

void CodePane::place(const RECT& area) {
    RECT list;
    GetWindowRect(list_, &list);
    const int height = list.bottom - list.top;
    MoveWindow(list_, area.left, area.top, area.right - area.left, height * 12, TRUE);
    MoveWindow(edit_, area.left, area.top + height, area.right - area.left,
               area.bottom - area.top - height, TRUE);
}

bool CodePane::has_focus() const { return GetFocus() == list_ || GetFocus() == edit_; }

void CodePane::take_focus() const { SetFocus(GetFocus() == list_ ? edit_ : list_); }
