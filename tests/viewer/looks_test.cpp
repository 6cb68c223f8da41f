// What the person has set for eyes that need more: high contrast, large texts, many dots an inch.
#include "driver.hpp"

#include "../../viewer/commands.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <set>

using namespace kirvo_test;

namespace {

constexpr UINT dpi_changed = 0x02E0;
constexpr char contrast_key[] = "Control Panel\\Accessibility\\HighContrast";

// A value of the person's settings, and what was there before.
class Setting {
  public:
    Setting(const char* key, const char* name, DWORD type, const void* value, DWORD size)
        : name_(name) {
        RegCreateKeyExA(HKEY_CURRENT_USER, key, 0, nullptr, 0, KEY_READ | KEY_WRITE, nullptr, &key_,
                        nullptr);
        before_size_ = sizeof before_;
        had_one_ = RegQueryValueExA(key_, name, nullptr, &before_type_, before_, &before_size_) ==
                   ERROR_SUCCESS;
        RegSetValueExA(key_, name, 0, type, static_cast<const BYTE*>(value), size);
    }
    ~Setting() {
        if (had_one_)
            RegSetValueExA(key_, name_, 0, before_type_, before_, before_size_);
        else
            RegDeleteValueA(key_, name_);
        RegCloseKey(key_);
    }
    Setting(const Setting&) = delete;
    Setting& operator=(const Setting&) = delete;

  private:
    HKEY key_ = nullptr;
    const char* name_;
    bool had_one_ = false;
    BYTE before_[256] = {};
    DWORD before_type_ = 0, before_size_ = 0;
};

class TextSize : Setting {
  public:
    explicit TextSize(DWORD percent)
        : Setting("Software\\Microsoft\\Accessibility", "TextScaleFactor", REG_DWORD, &percent,
                  sizeof percent) {}
};

class HighContrast : Setting {
  public:
    HighContrast() : Setting(contrast_key, "Flags", REG_SZ, "127", 4) {
        const COLORREF wanted[count] = {RGB(0, 0, 96), RGB(255, 255, 0)};
        for (int i = 0; i < count; ++i)
            before_[i] = GetSysColor(places[i]);
        SetSysColors(count, places, wanted);
    }
    ~HighContrast() { SetSysColors(count, places, before_); }

  private:
    static constexpr int count = 2;
    static constexpr INT places[count] = {COLOR_WINDOW, COLOR_WINDOWTEXT};
    COLORREF before_[count] = {};
};

RECT place_of(HWND window) {
    RECT place = {};
    GetWindowRect(window, &place);
    return place;
}

int height_of(HWND window) {
    const RECT place = place_of(window);
    return place.bottom - place.top;
}

HWND status_of(const Viewer& viewer) {
    return FindWindowExA(viewer.window(), nullptr, "msctls_statusbar32", nullptr);
}

// Somewhat wider than the font that this system has for messages, as other systems' fonts are.
SIZE size_of_text(const std::string& text, int height, int room) {
    HDC dc = CreateCompatibleDC(nullptr);
    HFONT font =
        CreateFontA(-height, 0, 0, 0, FW_NORMAL, 0, 0, 0, DEFAULT_CHARSET, 0, 0, 0, 0, "Tahoma");
    HGDIOBJ before = SelectObject(dc, font);
    RECT area = {0, 0, room, 0};
    DrawTextA(dc, text.c_str(), -1, &area, DT_CALCRECT | DT_WORDBREAK);
    DeleteObject(SelectObject(dc, before));
    DeleteDC(dc);
    return {area.right, area.bottom};
}

struct Look {
    int text_height;
    HWND dialog;
};

BOOL CALLBACK expect_fits(HWND control, LPARAM parameter) {
    const Look& look = *reinterpret_cast<const Look*>(parameter);
    char name[32] = {}, text[512] = {};
    GetClassNameA(control, name, sizeof name);
    GetWindowTextA(control, text, sizeof text);
    const RECT place = place_of(control);
    RECT inside;
    GetClientRect(look.dialog, &inside);
    MapWindowPoints(look.dialog, nullptr, reinterpret_cast<POINT*>(&inside), 2);
    const bool is_list = _stricmp(name, "ComboBox") == 0 || GetParent(control) != look.dialog;
    EXPECT_TRUE(is_list || (place.left >= inside.left && place.right <= inside.right &&
                            place.top >= inside.top && place.bottom <= inside.bottom))
        << name << " " << text;
    if (_stricmp(name, "Static") == 0 || _stricmp(name, "Button") == 0) {
        const SIZE size = size_of_text(text, look.text_height, place.right - place.left);
        EXPECT_LE(size.cx, place.right - place.left) << text;
        EXPECT_LE(size.cy, place.bottom - place.top) << text;
    }
    return TRUE;
}

// A window manager may move a dialog that has just appeared.
bool stands_still(HWND dialog) {
    return eventually([=] {
        const RECT before = place_of(dialog);
        Sleep(50);
        const RECT after = place_of(dialog);
        return EqualRect(&before, &after) != 0;
    });
}

void expect_no_text_is_cut(HWND dialog, int text_height) {
    EXPECT_TRUE(stands_still(dialog));
    Look look = {text_height, dialog};
    EnumChildWindows(dialog, expect_fits, reinterpret_cast<LPARAM>(&look));
    RECT work;
    SystemParametersInfoA(SPI_GETWORKAREA, 0, &work, 0);
    const RECT place = place_of(dialog);
    EXPECT_LE(place.right - place.left, work.right - work.left);
    EXPECT_LE(place.bottom - place.top, work.bottom - work.top);
}

// What is open closes when the picture of a dialog is looked at.
void expect_dialogs_have_room(const Viewer& viewer, double scale) {
    for (const char* option : {"brightness", "crop", "kernel", "keep", "compose", "palette"}) {
        SCOPED_TRACE(option);
        viewer.command(viewer.effect(option));
        HWND dialog = viewer.dialog("");
        ASSERT_NE(dialog, nullptr);
        HWND ok = GetDlgItem(dialog, IDOK);
        ASSERT_TRUE(eventually([&] { return height_of(ok) > 0; }));
        // 26 of 96 dots an inch; less where the dialog would not have gone onto the screen.
        const double shown = height_of(ok) / 26.0;
        EXPECT_LE(shown, scale + 0.05);
        if (option == std::string("brightness")) {
            EXPECT_NEAR(shown, scale, 0.05);
        }
        expect_no_text_is_cut(dialog, static_cast<int>(std::lround(12 * shown)));
        PostMessageA(dialog, WM_COMMAND, IDCANCEL, 0);
        ASSERT_TRUE(viewer.gone(dialog));
    }
}

// What is seen there on the screen.
COLORREF colour_at(HWND window, int x, int y) {
    POINT place = {x, y};
    ClientToScreen(window, &place);
    HDC screen = GetDC(nullptr), dc = CreateCompatibleDC(screen);
    HBITMAP bitmap = CreateCompatibleBitmap(screen, 1, 1);
    HGDIOBJ before = SelectObject(dc, bitmap);
    BitBlt(dc, 0, 0, 1, 1, screen, place.x, place.y, SRCCOPY);
    const COLORREF colour = GetPixel(dc, 0, 0);
    DeleteObject(SelectObject(dc, before));
    DeleteDC(dc);
    ReleaseDC(nullptr, screen);
    return colour;
}

bool shows_beside_picture(const Viewer& viewer, COLORREF colour) {
    HWND view = FindWindowExA(viewer.window(), nullptr, "KirvoView.Picture", nullptr);
    return eventually([=] { return colour_at(view, 3, 3) == colour; });
}

void tell_of_settings(const Viewer& viewer) {
    SendMessageA(viewer.window(), WM_SETTINGCHANGE, 0, 0);
}

std::string small_picture(const TempFolder& folder) {
    Random random(4);
    return saved(folder, "in.bmp", make_random_dib({40, 30, 24}, random));
}

} // namespace

TEST(ViewerLooks, HasRoomForItsTextsAtEverySize) {
    TempFolder folder;
    const std::string picture = small_picture(folder);
    int usual = 0;
    for (const DWORD percent : {100, 150, 225}) {
        SCOPED_TRACE(percent);
        const TextSize text(percent);
        Viewer viewer(picture);
        usual = percent == 100 ? height_of(status_of(viewer)) : usual;
        EXPECT_GE(height_of(status_of(viewer)) * 100, usual * static_cast<int>(percent) * 8 / 10);
        expect_dialogs_have_room(viewer, percent / 100.0);
        EXPECT_TRUE(viewer.ends());
    }
}

TEST(ViewerLooks, GrowsOnAScreenOfMoreDots) {
    TempFolder folder;
    Viewer viewer(small_picture(folder));
    const int before = height_of(status_of(viewer));
    RECT place = {40, 30, 1000, 700};
    viewer.send(viewer.window(), dpi_changed, MAKEWPARAM(192, 192), place);
    EXPECT_EQ(place_of(viewer.window()).left, place.left);
    EXPECT_GE(height_of(status_of(viewer)), before * 8 / 5);
    viewer.command(viewer.effect("brightness"));
    HWND dialog = viewer.dialog("Brightness");
    ASSERT_NE(dialog, nullptr);
    HWND ok = GetDlgItem(dialog, IDOK);
    ASSERT_TRUE(eventually([&] { return height_of(ok) > 0; }));
    const int ok_before = height_of(ok);
    place = place_of(dialog);
    viewer.send(dialog, dpi_changed, MAKEWPARAM(144, 144), place);
    EXPECT_NEAR(height_of(ok), ok_before * 1.5, 1);
    expect_no_text_is_cut(dialog, 12 * 3 / 2);
    PostMessageA(dialog, WM_COMMAND, IDCANCEL, 0);
    place = {40, 30, 800, 600};
    viewer.send(viewer.window(), dpi_changed, MAKEWPARAM(96, 96), place);
    EXPECT_EQ(height_of(status_of(viewer)), before);
    EXPECT_TRUE(viewer.ends());
}

TEST(ViewerLooks, BeginsOnAScreenOfMoreDots) {
    TempFolder folder;
    const std::string picture = small_picture(folder);
    int usual = 0;
    for (const DWORD dots : {96, 144, 192}) {
        SCOPED_TRACE(dots);
        const Setting setting("Control Panel\\Desktop", "LogPixels", REG_DWORD, &dots, sizeof dots);
        Viewer viewer(picture);
        usual = dots == 96 ? height_of(status_of(viewer)) : usual;
        EXPECT_NEAR(height_of(status_of(viewer)), usual * static_cast<int>(dots) / 96, 4);
        expect_dialogs_have_room(viewer, dots / 96.0);
        EXPECT_TRUE(viewer.ends());
    }
}

TEST(ViewerLooks, TakesTheColoursOfHighContrastBeforeItsOwn) {
    TempFolder folder;
    const std::string picture = small_picture(folder);
    Viewer viewer(picture, "Theme=2\r\n");
    EXPECT_TRUE(shows_beside_picture(viewer, RGB(32, 32, 32)));
    EXPECT_TRUE(viewer.ends());
    const HighContrast contrast;
    Viewer contrasting(picture, "Theme=2\r\n");
    EXPECT_TRUE(shows_beside_picture(contrasting, RGB(0, 0, 96)));
}

TEST(ViewerLooks, FollowsTheSystemToDarkAndToHighContrast) {
    constexpr COLORREF dark = RGB(32, 32, 32);
    TempFolder folder;
    Viewer viewer(small_picture(folder));
    EXPECT_TRUE(shows_beside_picture(viewer, GetSysColor(COLOR_APPWORKSPACE)));
    {
        const DWORD uses_light = 0;
        const Setting setting("Software\\Microsoft\\Windows\\CurrentVersion\\Themes\\Personalize",
                              "AppsUseLightTheme", REG_DWORD, &uses_light, sizeof uses_light);
        tell_of_settings(viewer);
        EXPECT_TRUE(shows_beside_picture(viewer, dark));
        {
            const Setting contrast(contrast_key, "Flags", REG_SZ, "127", 4);
            tell_of_settings(viewer);
            EXPECT_TRUE(shows_beside_picture(viewer, GetSysColor(COLOR_WINDOW)));
        }
        tell_of_settings(viewer);
        EXPECT_TRUE(shows_beside_picture(viewer, dark));
    }
    tell_of_settings(viewer);
    EXPECT_TRUE(shows_beside_picture(viewer, GetSysColor(COLOR_APPWORKSPACE)));
    EXPECT_TRUE(viewer.ends());
}

TEST(ViewerLooks, HasOneLetterForEachEntryOfAMenu) {
    for (const Menu& menu : menus()) {
        std::set<wchar_t> letters;
        for (const MenuEntry& entry : menu.entries) {
            if (entry.text == nullptr)
                continue;
            const wchar_t* mark = std::wcschr(entry.text, L'&');
            ASSERT_NE(mark, nullptr);
            EXPECT_TRUE(letters.insert(static_cast<wchar_t>(towlower(mark[1]))).second)
                << static_cast<char>(mark[1]) << " twice";
        }
    }
}

TEST(ViewerLooks, HasOneCommandForEachKey) {
    HACCEL table = make_accelerators();
    ACCEL keys[100];
    const int count = CopyAcceleratorTableA(table, keys, 100);
    ASSERT_GT(count, 30);
    std::set<std::pair<int, int>> known;
    for (int i = 0; i < count; ++i)
        EXPECT_TRUE(known.insert({keys[i].fVirt & 0x1F, keys[i].key}).second) << keys[i].key;
    DestroyAcceleratorTable(table);
}
