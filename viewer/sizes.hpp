// Lengths and fonts as the person has set them: dots an inch of the screen, size of texts.
#pragma once

#include <windows.h>

namespace sizes {

int dpi_of(HWND window);
// Pixels of a length that is meant for 96 dots an inch and texts of the usual size.
int scaled(HWND window, int length);

// Each owned by the caller.
HFONT message_font(HWND window, double smaller = 1);
HFONT menu_font(HWND window);
HFONT code_font(HWND window);

// For every message of a window with controls: whether they are to be laid out anew. Moves a window
// that has come to a screen with other dots.
bool change_by(HWND window, UINT message, WPARAM wparam, LPARAM lparam);

} // namespace sizes
