// The menu bar in dark colours, which the system has for what drops down from it only: its titles
// are painted here. In light colours, and in high contrast, all of it is the system's.
#include "commands.hpp"
#include "sizes.hpp"
#include "viewer.hpp"

namespace {

constexpr COLORREF dark_highlight = RGB(70, 70, 70);

// Titles belong to places in the bar.
const wchar_t* title_at(ULONG_PTR place) { return menu_titles()[place]; }

HFONT select_menu_font(HDC dc, HWND window) {
    return static_cast<HFONT>(SelectObject(dc, sizes::menu_font(window)));
}

void measure(HWND window, MEASUREITEMSTRUCT& item) {
    HDC dc = GetDC(window);
    const HFONT before = select_menu_font(dc, window);
    RECT area = {};
    DrawTextW(dc, title_at(item.itemData), -1, &area, DT_SINGLELINE | DT_CALCRECT);
    DeleteObject(SelectObject(dc, before));
    ReleaseDC(window, dc);
    item.itemWidth = static_cast<UINT>(area.right);
    item.itemHeight = static_cast<UINT>(area.bottom);
}

void draw(HWND window, const DRAWITEMSTRUCT& item) {
    const bool chosen = (item.itemState & (ODS_SELECTED | ODS_HOTLIGHT)) != 0;
    SetDCBrushColor(item.hDC, chosen ? dark_highlight : theme::background());
    FillRect(item.hDC, &item.rcItem, static_cast<HBRUSH>(GetStockObject(DC_BRUSH)));
    SetBkMode(item.hDC, TRANSPARENT);
    SetTextColor(item.hDC, theme::text());
    const HFONT before = select_menu_font(item.hDC, window);
    RECT place = item.rcItem;
    DrawTextW(item.hDC, title_at(item.itemData), -1, &place,
              DT_SINGLELINE | DT_CENTER | DT_VCENTER |
                  ((item.itemState & ODS_NOACCEL) != 0 ? DT_HIDEPREFIX : 0));
    DeleteObject(SelectObject(item.hDC, before));
}

// Behind the last title, and the light line that the system draws below the bar.
void darken_rest(HWND window) {
    HMENU menu = GetMenu(window);
    MENUBARINFO bar = {};
    bar.cbSize = sizeof bar;
    RECT last, outside;
    if (menu == nullptr || !GetMenuBarInfo(window, OBJID_MENU, 0, &bar) ||
        !GetMenuItemRect(window, menu, static_cast<UINT>(GetMenuItemCount(menu)) - 1, &last) ||
        !GetWindowRect(window, &outside))
        return;
    RECT rest = {last.right, bar.rcBar.top, bar.rcBar.right, bar.rcBar.bottom};
    RECT line = {bar.rcBar.left, bar.rcBar.bottom, bar.rcBar.right, bar.rcBar.bottom + 1};
    HDC dc = GetWindowDC(window);
    for (RECT* part : {&rest, &line}) {
        OffsetRect(part, -outside.left, -outside.top);
        FillRect(dc, part, theme::brush());
    }
    ReleaseDC(window, dc);
}

// The title whose underlined letter has been typed: the system does not know it of titles that are
// painted here.
LRESULT find_letter(wchar_t typed) {
    for (size_t place = 0; place < menu_titles().size(); ++place) {
        const wchar_t* mark = wcschr(title_at(place), L'&');
        if (mark != nullptr && towlower(mark[1]) == towlower(typed))
            return MAKELRESULT(place, MNC_EXECUTE);
    }
    return MAKELRESULT(0, MNC_IGNORE);
}

} // namespace

void colour_menu_bar(Viewer& viewer) {
    MENUINFO whole = {};
    whole.cbSize = sizeof whole;
    whole.fMask = MIM_BACKGROUND;
    whole.hbrBack = theme::is_dark() ? theme::brush() : nullptr;
    SetMenuInfo(viewer.menu, &whole);
    for (UINT place = 0; place < menu_titles().size(); ++place) {
        MENUITEMINFOW item = {};
        item.cbSize = sizeof item;
        item.fMask = MIIM_FTYPE | MIIM_DATA | MIIM_STRING;
        item.fType = theme::is_dark() ? MFT_OWNERDRAW : MFT_STRING;
        item.dwItemData = place;
        item.dwTypeData = const_cast<wchar_t*>(title_at(place)); // screen readers say it
        SetMenuItemInfoW(viewer.menu, place, TRUE, &item);
    }
    DrawMenuBar(viewer.window);
    RedrawWindow(viewer.window, nullptr, nullptr, RDW_FRAME | RDW_INVALIDATE);
}

bool answer_menu_bar(Viewer& viewer, UINT message, WPARAM wparam, LPARAM lparam, LRESULT& answer) {
    if (!theme::is_dark())
        return false;
    switch (message) {
    case WM_MEASUREITEM:
        measure(viewer.window, *reinterpret_cast<MEASUREITEMSTRUCT*>(lparam));
        answer = TRUE;
        return true;
    case WM_DRAWITEM: {
        const auto& item = *reinterpret_cast<DRAWITEMSTRUCT*>(lparam);
        if (item.CtlType != ODT_MENU)
            return false;
        draw(viewer.window, item);
        answer = TRUE;
        return true;
    }
    case WM_MENUCHAR:
        if (reinterpret_cast<HMENU>(lparam) != viewer.menu)
            return false;
        answer = find_letter(static_cast<wchar_t>(LOWORD(wparam)));
        return true;
    case WM_NCPAINT:
    case WM_NCACTIVATE:
    case WM_SETTEXT: // paints all of the frame in some systems
        answer = DefWindowProcW(viewer.window, message, wparam, lparam);
        darken_rest(viewer.window);
        return true;
    case WM_EXITMENULOOP:
        darken_rest(viewer.window);
        return false;
    default:
        return false;
    }
}
