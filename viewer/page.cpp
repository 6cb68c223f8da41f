#include "page.hpp"

#include "locked.hpp"

#include <algorithm>

Page page_of(HDC printer) {
    return {GetDeviceCaps(printer, HORZRES), GetDeviceCaps(printer, VERTRES),
            static_cast<double>(GetDeviceCaps(printer, LOGPIXELSX)),
            static_cast<double>(GetDeviceCaps(printer, LOGPIXELSY))};
}

RECT place_on(const Page& page, int width, int height) {
    const double scale = std::min(page.width / page.dots_across / width,
                                  page.height / page.dots_down / height); // inches a pixel
    const int across = std::max(1, static_cast<int>(width * scale * page.dots_across + 0.5));
    const int down = std::max(1, static_cast<int>(height * scale * page.dots_down + 0.5));
    const int left = (page.width - across) / 2, top = (page.height - down) / 2;
    return {left, top, left + across, top + down};
}

bool draw_on(HDC printer, const RECT& place, const Image& image) {
    SetStretchBltMode(printer, HALFTONE);
    SetBrushOrgEx(printer, 0, 0, nullptr);
    const Locked locked(image);
    return StretchDIBits(printer, place.left, place.top, place.right - place.left,
                         place.bottom - place.top, 0, 0, image.width(), image.height(),
                         locked.pixels(), locked.info(), DIB_RGB_COLORS, SRCCOPY) > 0;
}

bool print_page(HDC printer, const Image& image) {
    if (StartPage(printer) <= 0)
        return false;
    const RECT place = place_on(page_of(printer), image.width(), image.height());
    const bool drawn = draw_on(printer, place, image);
    return EndPage(printer) > 0 && drawn;
}
