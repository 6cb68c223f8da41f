// The status bar: words, size, scale, the pixel under the cursor, what can be undone.
#include "sizes.hpp"
#include "viewer.hpp"

#include <commctrl.h>

namespace {

// The system's bar knows no dark colours: its parts are painted here, its texts stay where screen
// readers find them.
void paint_dark(HWND status) {
    PAINTSTRUCT paint;
    HDC dc = BeginPaint(status, &paint);
    RECT area;
    GetClientRect(status, &area);
    FillRect(dc, &area, theme::brush());
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, theme::text());
    HGDIOBJ before =
        SelectObject(dc, reinterpret_cast<HGDIOBJ>(SendMessageW(status, WM_GETFONT, 0, 0)));
    const auto parts = SendMessageW(status, SB_GETPARTS, 0, 0);
    for (WPARAM part = 0; part < static_cast<WPARAM>(parts); ++part) {
        wchar_t text[1024] = {};
        if (LOWORD(SendMessageW(status, SB_GETTEXTLENGTHW, part, 0)) < 1024)
            SendMessageW(status, SB_GETTEXTW, part, reinterpret_cast<LPARAM>(text));
        RECT place;
        SendMessageW(status, SB_GETRECT, part, reinterpret_cast<LPARAM>(&place));
        place.left += 4;
        DrawTextW(dc, text, -1, &place, DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
    }
    SelectObject(dc, before);
    EndPaint(status, &paint);
}

LRESULT CALLBACK on_message(HWND status, UINT message, WPARAM wparam, LPARAM lparam, UINT_PTR,
                            DWORD_PTR) {
    if (theme::is_dark() && message == WM_PAINT) {
        paint_dark(status);
        return 0;
    }
    if (theme::is_dark() && message == WM_ERASEBKGND)
        return 1;
    return DefSubclassProc(status, message, wparam, lparam);
}

} // namespace

HWND create_status(HWND parent) {
    HWND status = CreateWindowExW(0, STATUSCLASSNAMEW, L"", WS_CHILD | WS_VISIBLE | SBARS_SIZEGRIP,
                                  0, 0, 0, 0, parent, nullptr, GetModuleHandleW(nullptr), nullptr);
    SetWindowSubclass(status, on_message, 0, 0);
    return status;
}

void lay_out_status(HWND status) {
    SendMessageW(status, WM_SIZE, 0, 0);
    RECT area;
    GetClientRect(status, &area);
    const int widths[] = {196, 64, 216, 184}; // from the second on
    // Where there is little room, the words keep a quarter of it, and the last parts go.
    int edges[5], room = area.right * 3 / 4, shown = 0;
    for (; shown < 4 && room >= sizes::scaled(status, widths[shown]); ++shown)
        room -= sizes::scaled(status, widths[shown]);
    for (int part = 4; part >= 0; --part)
        edges[part] = part >= shown ? static_cast<int>(area.right)
                                    : edges[part + 1] - sizes::scaled(status, widths[part]);
    SendMessageW(status, SB_SETPARTS, 5, reinterpret_cast<LPARAM>(edges));
}
