// Colours as the person has set them: dark, light, or those of high contrast.
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
// Beside the picture, and words in its place.
COLORREF canvas();
COLORREF canvas_text();
// A window's title bar and its controls.
void apply(HWND window);
// For every message of a window of the program's own: whether the colours may be others now, which
// have then been applied.
bool change_by(HWND window, UINT message);
// For WM_CTLCOLOR... messages: a brush, or null where the system's colours hold.
HBRUSH control_colours(HDC dc);

} // namespace theme
