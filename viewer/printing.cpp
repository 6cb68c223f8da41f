// The picture on a page, as large as fits, upright.
#include "page.hpp"
#include "text.hpp"
#include "viewer.hpp"

#include <commdlg.h>

namespace {

bool print(HDC printer, const std::wstring& title, const wchar_t* target, const Image& image) {
    DOCINFOW document = {};
    document.cbSize = sizeof document;
    document.lpszDocName = title.c_str();
    document.lpszOutput = target;
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
    // The system then asks for the file's name.
    const wchar_t* target = dialog.Flags & PD_PRINTTOFILE ? L"FILE:" : nullptr;
    const bool done = print(dialog.hDC, viewer.title, target, *viewer.history.now());
    viewer.say(done ? "Printed" : "The printer has refused the picture");
    DeleteDC(dialog.hDC);
    GlobalFree(dialog.hDevMode);
    GlobalFree(dialog.hDevNames);
}
