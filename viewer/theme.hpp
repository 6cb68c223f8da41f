// Colours, sizes and fonts as the person has set them: dark or light, dots an inch, text size.
#pragma once

#include <windows.h>

enum class Theme { system, light, dark };

namespace theme {

// Before the first window: menus follow.
void choose(Theme theme);
bool is_dark();
COLORREF background();
COLORREF text();
HBRUSH brush(); // of the background
// A window's title bar and its controls.
void apply(HWND window);
// For WM_CTLCOLOR... messages: a brush, or null where the system's colours hold.
HBRUSH control_colours(HDC dc);

int dpi_of(HWND window);
int scaled(HWND window, int length); // from 96 dots an inch
HFONT message_font(int dpi);         // owned by the caller
HFONT menu_font(int dpi);            // likewise
HFONT code_font(int dpi);            // likewise

} // namespace theme
