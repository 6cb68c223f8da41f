#include "theme.hpp"

#include "newer.hpp"

#include <uxtheme.h>

#include <cwchar>

namespace theme {
namespace {

Theme chosen = Theme::system;
bool dark = false, high_contrast = false;

// The person's own colours, which no theme replaces. Where the system answers nothing, what has been
// set is asked for.
bool is_high_contrast() {
    HIGHCONTRASTW contrast = {};
    contrast.cbSize = sizeof contrast;
    wchar_t flags[16] = {};
    DWORD size = sizeof flags;
    SystemParametersInfoW(SPI_GETHIGHCONTRAST, sizeof contrast, &contrast, 0);
    RegGetValueW(HKEY_CURRENT_USER, L"Control Panel\\Accessibility\\HighContrast", L"Flags",
                 RRF_RT_REG_SZ, nullptr, flags, &size);
    return ((contrast.dwFlags | wcstoul(flags, nullptr, 10)) & HCF_HIGHCONTRASTON) != 0;
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
    const auto get_version = newer_function<Version>(L"ntdll.dll", "RtlGetVersion");
    if (get_version == nullptr || get_version(&version) != 0 || version.dwBuildNumber < 18362)
        return;
    const auto set_mode = newer_function<SetMode>(L"uxtheme.dll", MAKEINTRESOURCEA(135));
    if (set_mode != nullptr)
        set_mode(theme == Theme::system ? 1 : theme == Theme::dark ? 2 : 3);
}

BOOL CALLBACK apply_to_control(HWND control, LPARAM) {
    SetWindowTheme(control, dark ? L"DarkMode_Explorer" : nullptr, nullptr);
    return TRUE;
}

} // namespace

void choose(Theme theme) {
    chosen = theme;
    high_contrast = is_high_contrast();
    dark = !high_contrast && (theme == Theme::dark || (theme == Theme::system && system_is_dark()));
    let_menus_follow(high_contrast ? Theme::system : theme);
}

bool is_dark() { return dark; }

COLORREF background() { return dark ? RGB(43, 43, 43) : GetSysColor(COLOR_BTNFACE); }

COLORREF text() { return dark ? RGB(240, 240, 240) : GetSysColor(COLOR_BTNTEXT); }

HBRUSH brush() {
    static const HBRUSH dark_brush = CreateSolidBrush(RGB(43, 43, 43));
    return dark ? dark_brush : GetSysColorBrush(COLOR_BTNFACE);
}

COLORREF canvas() {
    if (dark)
        return RGB(32, 32, 32);
    return GetSysColor(high_contrast ? COLOR_WINDOW : COLOR_APPWORKSPACE);
}

COLORREF canvas_text() { return dark ? RGB(200, 200, 200) : GetSysColor(COLOR_WINDOWTEXT); }

void apply(HWND window) {
    using SetAttribute = HRESULT(WINAPI*)(HWND, DWORD, const void*, DWORD);
    static const auto set = newer_function<SetAttribute>(L"dwmapi.dll", "DwmSetWindowAttribute");
    const BOOL value = dark;
    constexpr DWORD dark_title = 20, dark_title_before_2004 = 19;
    if (set != nullptr && FAILED(set(window, dark_title, &value, sizeof value)))
        set(window, dark_title_before_2004, &value, sizeof value);
    EnumChildWindows(window, apply_to_control, 0);
    RedrawWindow(window, nullptr, nullptr,
                 RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_FRAME);
}

// Each window asks anew, since nobody knows which of them hears of it first.
bool change_by(HWND window, UINT message) {
    if (message != WM_SETTINGCHANGE && message != WM_SYSCOLORCHANGE)
        return false;
    choose(chosen);
    apply(window);
    return true;
}

HBRUSH control_colours(HDC dc) {
    if (!dark)
        return nullptr;
    SetTextColor(dc, text());
    SetBkColor(dc, background());
    return brush();
}

} // namespace theme
