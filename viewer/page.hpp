// Where a picture lies on a page, and how it gets there.
#pragma once

#include "dib.hpp"

#include <windows.h>

// What can be printed on, in dots, which need not be square.
struct Page {
    int width, height;
    double dots_across, dots_down; // an inch
};

Page page_of(HDC printer);
// As large as fits, in the middle.
RECT place_on(const Page& page, int width, int height);
// False where the printer has refused it.
bool draw_on(HDC printer, const RECT& place, const Image& image);

// A page of its own; false where the printer has refused any of it.
bool print_page(HDC printer, const Image& image);
