#include "sizes.hpp"

#include "newer.hpp"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cwchar>

namespace sizes {
namespace {

constexpr double usual_text = 12; // pixels of the message font at 96 dots an inch
constexpr wchar_t told_dpi[] = L"KirvoView.DotsAnInch";

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

// "Make text bigger" in the settings of newer systems.
double text_factor() {
    DWORD percent = 100, size = sizeof percent;
    RegGetValueW(HKEY_CURRENT_USER, L"Software\\Microsoft\\Accessibility", L"TextScaleFactor",
                 RRF_RT_REG_DWORD, nullptr, &percent, &size);
    return std::clamp(static_cast<double>(percent), 100.0, 225.0) / 100;
}

// In pixels at 96 dots an inch. The system's fonts have grown by the factor already where the system
// does that: hence the larger of the two, not their product.
double height_of(const LOGFONTW& font) {
    const double height = std::abs(font.lfHeight) * 96.0 / system_dpi();
    const double factor = text_factor();
    return factor > 1 ? std::max(height, usual_text * factor) : height;
}

HFONT made(LOGFONTW font, HWND window, double smaller = 1) {
    font.lfHeight =
        -static_cast<LONG>(std::lround(height_of(font) * smaller * dpi_of(window) / 96));
    return CreateFontIndirectW(&font);
}

} // namespace

// What the window has been told goes first: not every system that tells it can be asked.
int dpi_of(HWND window) {
    if (HANDLE told = GetPropW(GetAncestor(window, GA_ROOT), told_dpi))
        return static_cast<int>(reinterpret_cast<INT_PTR>(told));
    using Get = UINT(WINAPI*)(HWND);
    static const auto get = newer_function<Get>(L"user32.dll", "GetDpiForWindow");
    return get != nullptr ? static_cast<int>(get(window)) : system_dpi();
}

int scaled(HWND window, int length) {
    const double text = std::max(1.0, height_of(metrics().lfMessageFont) / usual_text);
    return static_cast<int>(std::lround(length * text * dpi_of(window) / 96));
}

HFONT message_font(HWND window, double smaller) {
    return made(metrics().lfMessageFont, window, smaller);
}

HFONT menu_font(HWND window) { return made(metrics().lfMenuFont, window); }

HFONT code_font(HWND window) {
    LOGFONTW font = metrics().lfMessageFont;
    font.lfPitchAndFamily = FIXED_PITCH | FF_MODERN;
    wcscpy(font.lfFaceName, L"Consolas");
    return made(font, window);
}

bool change_by(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    constexpr UINT dpi_changed = 0x02E0; // newer than the oldest system that this runs on
    switch (message) {
    case dpi_changed: {
        const RECT& place = *reinterpret_cast<const RECT*>(lparam);
        SetPropW(window, told_dpi, reinterpret_cast<HANDLE>(static_cast<INT_PTR>(HIWORD(wparam))));
        SetWindowPos(window, nullptr, place.left, place.top, place.right - place.left,
                     place.bottom - place.top, SWP_NOZORDER | SWP_NOACTIVATE);
        return true;
    }
    case WM_SETTINGCHANGE:
        return true;
    case WM_NCDESTROY:
        RemovePropW(window, told_dpi);
        return false;
    default:
        return false;
    }
}

} // namespace sizes
