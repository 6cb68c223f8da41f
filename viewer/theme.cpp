#include "theme.hpp"

#include <commctrl.h>
#include <uxtheme.h>

#include <algorithm>
#include <cstring>
#include <string>

namespace theme {
namespace {

bool dark = false;

// Newer systems' functions, where they are: the program runs on Windows 7 too.
template<typename Function>
Function found(const wchar_t* library, const char* name) {
    HMODULE module = LoadLibraryW(library);
    const FARPROC address = module != nullptr ? GetProcAddress(module, name) : nullptr;
    Function function = nullptr;
    static_assert(sizeof function == sizeof address);
    std::memcpy(&function, &address, sizeof function);
    return function;
}

// The person's own colours, which no theme replaces.
bool is_high_contrast() {
    HIGHCONTRASTW contrast = {};
    contrast.cbSize = sizeof contrast;
    SystemParametersInfoW(SPI_GETHIGHCONTRAST, sizeof contrast, &contrast, 0);
    return (contrast.dwFlags & HCF_HIGHCONTRASTON) != 0;
}

bool system_is_dark() {
    DWORD light = 1, size = sizeof light;
    RegGetValueW(HKEY_CURRENT_USER,
                 L"Software\\Microsoft\\Windows\\CurrentVersion\\Themes\\Personalize",
                 L"AppsUseLightTheme", RRF_RT_REG_DWORD, nullptr, &light, &size);
    return light == 0;
}

// Since Windows 10 1903; what is known by numbers only is asked for on those systems only.
void let_menus_follow(Theme theme) {
    using Version = LONG(WINAPI*)(OSVERSIONINFOW*);
    using SetMode = int(WINAPI*)(int);
    OSVERSIONINFOW version = {};
    version.dwOSVersionInfoSize = sizeof version;
    const auto get_version = found<Version>(L"ntdll.dll", "RtlGetVersion");
    if (get_version == nullptr || get_version(&version) != 0 || version.dwBuildNumber < 18362)
        return;
    const auto set_mode = found<SetMode>(L"uxtheme.dll", MAKEINTRESOURCEA(135));
    if (set_mode != nullptr)
        set_mode(theme == Theme::system ? 1 : theme == Theme::dark ? 2 : 3);
}

BOOL CALLBACK apply_to_control(HWND control, LPARAM) {
    SetWindowTheme(control, dark ? L"DarkMode_Explorer" : nullptr, nullptr);
    return TRUE;
}

NONCLIENTMETRICSW metrics() {
    NONCLIENTMETRICSW all = {};
    all.cbSize = sizeof all;
    SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof all, &all, 0);
    return all;
}

int system_dpi() {
    HDC screen = GetDC(nullptr);
    const int dpi = GetDeviceCaps(screen, LOGPIXELSY);
    ReleaseDC(nullptr, screen);
    return dpi;
}

} // namespace

void choose(Theme theme) {
    const bool own = is_high_contrast();
    dark = !own && (theme == Theme::dark || (theme == Theme::system && system_is_dark()));
    let_menus_follow(own ? Theme::system : theme);
}

bool is_dark() { return dark; }

COLORREF background() { return dark ? RGB(43, 43, 43) : GetSysColor(COLOR_BTNFACE); }

COLORREF text() { return dark ? RGB(240, 240, 240) : GetSysColor(COLOR_BTNTEXT); }

HBRUSH brush() {
    static const HBRUSH dark_brush = CreateSolidBrush(RGB(43, 43, 43));
    return dark ? dark_brush : GetSysColorBrush(COLOR_BTNFACE);
}

void apply(HWND window) {
    using SetAttribute = HRESULT(WINAPI*)(HWND, DWORD, const void*, DWORD);
    static const auto set = found<SetAttribute>(L"dwmapi.dll", "DwmSetWindowAttribute");
    const BOOL value = dark;
    constexpr DWORD dark_title = 20, dark_title_before_2004 = 19;
    if (set != nullptr && FAILED(set(window, dark_title, &value, sizeof value)))
        set(window, dark_title_before_2004, &value, sizeof value);
    EnumChildWindows(window, apply_to_control, 0);
    RedrawWindow(window, nullptr, nullptr,
                 RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_FRAME);
}

HBRUSH control_colours(HDC dc) {
    if (!dark)
        return nullptr;
    SetTextColor(dc, text());
    SetBkColor(dc, background());
    return brush();
}

int dpi_of(HWND window) {
    using Get = UINT(WINAPI*)(HWND);
    static const auto get = found<Get>(L"user32.dll", "GetDpiForWindow");
    return get != nullptr ? static_cast<int>(get(window)) : system_dpi();
}

int scaled(HWND window, int length) { return MulDiv(length, dpi_of(window), 96); }

HFONT message_font(int dpi) {
    LOGFONTW font = metrics().lfMessageFont;
    font.lfHeight = MulDiv(font.lfHeight, dpi, system_dpi());
    return CreateFontIndirectW(&font);
}

HFONT menu_font(int dpi) {
    LOGFONTW font = metrics().lfMenuFont;
    font.lfHeight = MulDiv(font.lfHeight, dpi, system_dpi());
    return CreateFontIndirectW(&font);
}

HFONT code_font(int dpi) {
    LOGFONTW font = metrics().lfMessageFont;
    font.lfHeight = MulDiv(font.lfHeight, dpi, system_dpi());
    font.lfPitchAndFamily = FIXED_PITCH | FF_MODERN;
    wcscpy(font.lfFaceName, L"Consolas");
    return CreateFontIndirectW(&font);
}

} // namespace theme
