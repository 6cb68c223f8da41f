// The picture on a page, as large as fits, upright.
#include "locked.hpp"
#include "text.hpp"
#include "viewer.hpp"

#include <commdlg.h>

#include <algorithm>

namespace {

bool print_page(HDC printer, const Image& image) {
    const int room_x = GetDeviceCaps(printer, HORZRES), room_y = GetDeviceCaps(printer, VERTRES);
    // Dots need not be square.
    const double dots_x = GetDeviceCaps(printer, LOGPIXELSX);
    const double dots_y = GetDeviceCaps(printer, LOGPIXELSY);
    const double scale =
        std::min(room_x / dots_x / image.width(), room_y / dots_y / image.height());
    const int width = static_cast<int>(image.width() * scale * dots_x);
    const int height = static_cast<int>(image.height() * scale * dots_y);
    if (StartPage(printer) <= 0)
        return false;
    SetStretchBltMode(printer, HALFTONE);
    SetBrushOrgEx(printer, 0, 0, nullptr);
    const Locked locked(image);
    const int lines = StretchDIBits(printer, (room_x - width) / 2, (room_y - height) / 2, width,
                                    height, 0, 0, image.width(), image.height(), locked.pixels(),
                                    locked.info(), DIB_RGB_COLORS, SRCCOPY);
    return EndPage(printer) > 0 && lines > 0;
}

bool print(HDC printer, const std::wstring& title, const Image& image) {
    DOCINFOW document = {};
    document.cbSize = sizeof document;
    document.lpszDocName = title.c_str();
    if (StartDocW(printer, &document) <= 0)
        return false;
    if (print_page(printer, image))
        return EndDoc(printer) > 0;
    AbortDoc(printer);
    return false;
}

} // namespace

void print_picture(Viewer& viewer) {
    PRINTDLGW dialog = {};
    dialog.lStructSize = sizeof dialog;
    dialog.hwndOwner = viewer.window;
    dialog.Flags = PD_RETURNDC | PD_NOSELECTION | PD_NOPAGENUMS | PD_USEDEVMODECOPIESANDCOLLATE;
    dialog.nCopies = 1;
    if (!PrintDlgW(&dialog)) {
        if (CommDlgExtendedError() != 0)
            viewer.say("There is no printer");
        return;
    }
    const bool done = print(dialog.hDC, viewer.title, *viewer.history.now());
    viewer.say(done ? "Printed" : "The printer has refused the picture");
    DeleteDC(dialog.hDC);
    GlobalFree(dialog.hDevMode);
    GlobalFree(dialog.hDevNames);
}
