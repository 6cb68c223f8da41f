// The main window and its parts in the test's own process: what they show, where it lies, and what
// keys, mouse and menus do to it.
#include "support/dib_builder.hpp"
#include "support/temp_folder.hpp"

#include "commands.hpp"
#include "effect.hpp"
#include "effects_menu.hpp"
#include "look.hpp"
#include "sizes.hpp"
#include "text.hpp"
#include "viewer.hpp"

#include <commctrl.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>

using kirvo_test::Dib;
using kirvo_test::make_dib;
using kirvo_test::TempFolder;

namespace {

// Handles messages until something holds; false after a while.
bool pumped(const std::function<bool()>& holds) {
    const ULONGLONG end = GetTickCount64() + 30000;
    while (!holds()) {
        if (GetTickCount64() > end)
            return false;
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 10, QS_ALLINPUT);
    }
    return true;
}

constexpr int view_width = 400, view_height = 300;

RECT client_of(HWND window) {
    RECT area;
    GetClientRect(window, &area);
    return area;
}
RECT place_of(HWND window) {
    RECT area;
    GetWindowRect(window, &area);
    return area;
}

// The program's window, whose view is 400 x 300.
class Window {
  public:
    explicit Window(const Options& options) {
        static const INITCOMMONCONTROLSEX controls = {sizeof controls,
                                                      ICC_BAR_CLASSES | ICC_STANDARD_CLASSES};
        InitCommonControlsEx(&controls);
        viewer.options = options;
        viewer.options.window = {20, 10, 720, 610};
        theme::choose(options.theme);
        EXPECT_TRUE(create_window(viewer, SW_SHOWNORMAL));
        resize();
    }
    ~Window() {
        DestroyWindow(viewer.window);
        DestroyMenu(viewer.menu);
        pumped([] {
            MSG message;
            return PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE) != 0;
        });
    }
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    // As it was at first, without a picture.
    void put_back() {
        if (viewer.full_screen)
            toggle_full_screen(viewer);
        if (viewer.options.code)
            act(viewer, command_code);
        viewer.histogram.close();
        act(viewer, command_theme_system);
        viewer.options = Options();
        viewer.history = History();
        viewer.history.set_budget(viewer.options.undo_megabytes << 20);
        viewer.known = nullptr;
        viewer.path.clear();
        viewer.title.clear();
        viewer.view.select({});
        viewer.view.show_words(L"");
        viewer.picture_changed();
        viewer.view.fit();
        resize();
    }

    ::Viewer viewer;

  private:
    void resize() {
        const RECT view = client_of(viewer.view.window()), all = place_of(viewer.window);
        SetWindowPos(viewer.window, nullptr, 0, 0, all.right - all.left + view_width - view.right,
                     all.bottom - all.top + view_height - view.bottom, SWP_NOMOVE | SWP_NOZORDER);
        EXPECT_EQ(client_of(viewer.view.window()).right, view_width);
        EXPECT_EQ(client_of(viewer.view.window()).bottom, view_height);
    }
};

// A window takes its time: tests that want nothing special have one in turn.
class Shared : public testing::Environment {
  public:
    static std::unique_ptr<Window>& window() {
        static std::unique_ptr<Window> one;
        return one;
    }
    void TearDown() override { window().reset(); }
};
testing::Environment* const shared_window = testing::AddGlobalTestEnvironment(new Shared);

class Program {
  public:
    Program() : viewer(shared().viewer) {}
    explicit Program(const Options& options)
        : own_(std::make_unique<Window>(options)), viewer(own_->viewer) {}
    ~Program() {
        if (!own_)
            Shared::window()->put_back();
    }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    void show(Dib picture, const std::wstring& path = L"") {
        begin_picture(viewer, ::shared(Image::adopt(picture.release())), nullptr, path, L"picture");
    }
    // Does a command, and waits for what it does to the picture.
    void does(WORD command) {
        act(viewer, command);
        EXPECT_TRUE(pumped([&] { return !viewer.working; }));
    }
    std::wstring status(int part) const {
        wchar_t text[1024] = {};
        SendMessageW(viewer.status, SB_GETTEXTW, static_cast<WPARAM>(part),
                     reinterpret_cast<LPARAM>(text));
        return text;
    }
    // What is on the screen.
    COLORREF seen(int x, int y) const { return seen(viewer.view.window(), x, y); }
    static COLORREF seen(HWND window, int x, int y) {
        UpdateWindow(window);
        HDC dc = GetDC(window);
        const COLORREF colour = GetPixel(dc, x, y);
        ReleaseDC(window, dc);
        return colour;
    }
    void mouse(UINT message, int x, int y, WPARAM keys = 0) const {
        SendMessageW(viewer.view.window(), message, keys, MAKELPARAM(x, y));
    }
    void wheel(int delta, int x, int y) const {
        POINT point = {x, y};
        ClientToScreen(viewer.view.window(), &point);
        SendMessageW(viewer.window, WM_MOUSEWHEEL, MAKEWPARAM(0, delta),
                     MAKELPARAM(point.x, point.y));
    }
    void key(UINT message, WPARAM key) const { SendMessageW(viewer.window, message, key, 1); }

  private:
    static Window& shared() {
        if (!Shared::window())
            Shared::window() = std::make_unique<Window>(Options());
        return *Shared::window();
    }
    std::unique_ptr<Window> own_;

  public:
    ::Viewer& viewer;
};

void expect_rectangle(const RECT& found, LONG left, LONG top, LONG right, LONG bottom) {
    EXPECT_EQ(found.left, left);
    EXPECT_EQ(found.top, top);
    EXPECT_EQ(found.right, right);
    EXPECT_EQ(found.bottom, bottom);
}

// Each pixel of another colour: red tells the column, green the row.
COLORREF colour_at(int x, int y) { return RGB(5 * x + 10, 7 * y + 10, 90); }
Dib picture_of(int width, int height) {
    Dib picture = make_dib({width, height, 24});
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            picture.set_pixel(x, y,
                              ((5u * static_cast<uint32_t>(x) + 10) & 255) << 16 |
                                  ((7u * static_cast<uint32_t>(y) + 10) & 255) << 8 | 90);
    return picture;
}

// The dialog that a call opens, and what to do in it.
std::function<void(HWND)> in_the_dialog;

BOOL CALLBACK find_dialog(HWND window, LPARAM found) {
    char name[16] = {};
    GetClassNameA(window, name, sizeof name);
    if (std::string(name) != "#32770" || !IsWindowVisible(window))
        return TRUE;
    *reinterpret_cast<HWND*>(found) = window;
    return FALSE;
}

void CALLBACK look_for_dialog(HWND, UINT, UINT_PTR timer, DWORD) {
    HWND dialog = nullptr;
    EnumThreadWindows(GetCurrentThreadId(), find_dialog, reinterpret_cast<LPARAM>(&dialog));
    if (dialog == nullptr)
        return;
    KillTimer(nullptr, timer);
    const std::function<void(HWND)> now = std::exchange(in_the_dialog, nullptr);
    now(dialog);
}

// Comes back when the dialog is closed.
void in_dialog(const std::function<void()>& open, std::function<void(HWND)> in) {
    in_the_dialog = std::move(in);
    SetTimer(nullptr, 0, 10, look_for_dialog);
    open();
    EXPECT_FALSE(in_the_dialog) << "no dialog came";
}
void close(HWND dialog, WORD by = IDCANCEL) { SendMessageW(dialog, WM_COMMAND, by, 0); }
std::wstring words(HWND dialog, int id) { return text_of(GetDlgItem(dialog, id)); }

BOOL CALLBACK add_child(HWND child, LPARAM list) {
    reinterpret_cast<std::vector<HWND>*>(list)->push_back(child);
    return TRUE;
}

// A margin of 12 at the right and below, nothing outside, nothing over another.
void expect_tidy(HWND dialog) {
    const auto scaled = [&](int length) { return sizes::scaled(dialog, length); };
    std::vector<HWND> children;
    EnumChildWindows(dialog, add_child, reinterpret_cast<LPARAM>(&children));
    std::vector<RECT> places;
    for (HWND child : children) {
        if (GetParent(child) != dialog)
            continue; // a part of a control
        RECT place = place_of(child);
        MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&place), 2);
        places.push_back(place);
    }
    const RECT area = client_of(dialog);
    LONG right = 0, bottom = 0;
    for (size_t i = 0; i < places.size(); ++i) {
        const RECT& place = places[i];
        EXPECT_GE(place.left, scaled(12));
        EXPECT_GE(place.top, scaled(10));
        right = (std::max)(right, place.right);
        bottom = (std::max)(bottom, place.bottom);
        for (size_t k = 0; k < i; ++k) {
            RECT common;
            EXPECT_FALSE(IntersectRect(&common, &place, &places[k])) << k << " and " << i;
        }
    }
    EXPECT_EQ(right, area.right - scaled(12));
    EXPECT_EQ(bottom, area.bottom - scaled(12));
}

HMENU menu_of(const ::Viewer& viewer, int place) {
    HMENU popup = GetSubMenu(viewer.menu, place);
    SendMessageW(viewer.window, WM_INITMENUPOPUP, reinterpret_cast<WPARAM>(popup), place);
    return popup;
}
std::wstring item_text(HMENU menu, UINT item, UINT how) {
    wchar_t text[400] = {};
    GetMenuStringW(menu, item, text, 400, how);
    return text;
}
bool has_state(const ::Viewer& viewer, int menu, WORD command, UINT state) {
    return (GetMenuState(menu_of(viewer, menu), command, MF_BYCOMMAND) & state) != 0;
}

WORD command_of(const std::string& option) {
    for (WORD command = command_effect; effect_of(command) != nullptr; ++command)
        if (effect_of(command)->option == option)
            return command;
    return 0;
}

} // namespace

TEST(View, ShowsASmallPictureInTheMiddleAsItIs) {
    Program program;
    program.show(picture_of(40, 30));
    EXPECT_EQ(program.viewer.view.scale(), 1);
    for (const POINT at : {POINT{0, 0}, POINT{39, 0}, POINT{0, 29}, POINT{39, 29}, POINT{17, 11}})
        EXPECT_EQ(program.seen(180 + at.x, 135 + at.y), colour_at(at.x, at.y));
    const COLORREF beside = GetSysColor(COLOR_APPWORKSPACE);
    EXPECT_EQ(program.seen(179, 140), beside);
    EXPECT_EQ(program.seen(220, 140), beside);
    EXPECT_EQ(program.seen(190, 134), beside);
    EXPECT_EQ(program.seen(190, 165), beside);
    expect_rectangle(program.viewer.view.visible(), 0, 0, 40, 30);
    const RECT whole = place_of(program.viewer.view.window());
    EXPECT_EQ(whole.right - whole.left, view_width); // without a border
}

TEST(View, ShowsThePartThatIsInTheWindow) {
    Program program;
    View& view = program.viewer.view;
    program.show(picture_of(40, 30));
    view.zoom_to(20); // 800 x 600, from -200, -150 on
    expect_rectangle(view.visible(), 10, 7, 30, 23);
    const auto expect_corner = [&](int left, int top) {
        for (int y = 10; y < view_height; y += 40)
            for (int x = 10; x < view_width; x += 40)
                EXPECT_EQ(program.seen(x, y), colour_at((x - left) / 20, (y - top) / 20));
    };
    expect_corner(-200, -150);
    EXPECT_EQ(program.seen(view_width - 1, view_height - 1), colour_at(29, 22));
    view.move_by(-20, 30);
    expect_rectangle(view.visible(), 11, 6, 31, 21);
    expect_corner(-220, -120);
    view.move_by(10000, 10000); // as far as there is something to be seen
    expect_rectangle(view.visible(), 0, 0, 20, 15);
    view.move_by(-10000, -10000);
    expect_rectangle(view.visible(), 20, 15, 40, 30);
    expect_corner(-400, -300);
}

TEST(View, ZoomsBetweenASixtyFourthAndSixtyFour) {
    Program program;
    View& view = program.viewer.view;
    const double before = view.scale();
    view.zoom_to(before * 3); // no picture: nothing
    EXPECT_EQ(view.scale(), before);
    program.show(picture_of(40, 30));
    view.zoom_in(true);
    EXPECT_DOUBLE_EQ(view.scale(), 1.25);
    view.zoom_in(false);
    EXPECT_DOUBLE_EQ(view.scale(), 1);
    EXPECT_FALSE(view.is_fitted());
    view.zoom_to(1000);
    EXPECT_EQ(view.scale(), 64);
    view.zoom_to(0.001);
    EXPECT_EQ(view.scale(), 1.0 / 64);
    view.fit();
    EXPECT_EQ(view.scale(), 1);
    EXPECT_TRUE(view.is_fitted());
}

TEST(View, TurnsTheWheelAboutTheCursor) {
    Program program;
    View& view = program.viewer.view;
    program.show(picture_of(800, 600)); // at a half
    EXPECT_EQ(view.scale(), 0.5);
    program.wheel(120, 100, 60);
    EXPECT_DOUBLE_EQ(view.scale(), 0.625);
    // The pixel 200, 120 stays at 100, 60: left is 100 - 125, top 60 - 75.
    expect_rectangle(view.visible(), 40, 24, 680, 504);
    program.wheel(60, 100, 60); // half a step waits for the other half
    EXPECT_DOUBLE_EQ(view.scale(), 0.625);
    program.wheel(60, 100, 60);
    EXPECT_DOUBLE_EQ(view.scale(), 0.78125);
    program.wheel(-240, 100, 60);
    EXPECT_DOUBLE_EQ(view.scale(), 0.5);
}

TEST(View, DoubleClicksBetweenFittedAndOneToOne) {
    Program program;
    View& view = program.viewer.view;
    program.show(picture_of(800, 600));
    program.mouse(WM_LBUTTONDBLCLK, 100, 50);
    EXPECT_EQ(view.scale(), 1);
    expect_rectangle(view.visible(), 100, 50, 500, 350);
    program.mouse(WM_LBUTTONDBLCLK, 100, 50);
    EXPECT_EQ(view.scale(), 0.5);
    EXPECT_TRUE(view.is_fitted());
}

TEST(View, IsDraggedByTheMouseAndMovedByKeys) {
    Program program;
    View& view = program.viewer.view;
    program.show(picture_of(800, 600));
    view.zoom_to(1); // from 200, 150 on
    expect_rectangle(view.visible(), 200, 150, 600, 450);
    program.mouse(WM_LBUTTONDOWN, 50, 60, MK_LBUTTON);
    program.mouse(WM_MOUSEMOVE, 40, 65, MK_LBUTTON);
    expect_rectangle(view.visible(), 210, 145, 610, 445);
    program.mouse(WM_MOUSEMOVE, 45, 65, MK_LBUTTON);
    program.mouse(WM_LBUTTONUP, 45, 65);
    program.mouse(WM_MOUSEMOVE, 90, 90);
    expect_rectangle(view.visible(), 205, 145, 605, 445);
    const int step = sizes::scaled(program.viewer.window, 48);
    program.key(WM_KEYDOWN, VK_RIGHT);
    program.key(WM_KEYDOWN, VK_DOWN);
    expect_rectangle(view.visible(), 205 + step, 145 + step, 605 + step, 445 + step);
    program.key(WM_KEYDOWN, VK_LEFT);
    program.key(WM_KEYDOWN, VK_UP);
    expect_rectangle(view.visible(), 205, 145, 605, 445);
}

TEST(View, SelectsThePixelsThatAreDraggedOver) {
    Program program;
    View& view = program.viewer.view;
    program.show(picture_of(40, 30));
    view.zoom_to(20); // pixel 12.5, 9.5 lies at 50, 40
    const auto drag = [&](int x, int y) {
        program.mouse(WM_LBUTTONDOWN, 50, 40, MK_LBUTTON | MK_SHIFT);
        program.mouse(WM_MOUSEMOVE, x, y, MK_LBUTTON | MK_SHIFT);
        program.mouse(WM_LBUTTONUP, x, y);
    };
    drag(95, 65); // 14.75, 10.75
    ASSERT_TRUE(view.selection());
    expect_rectangle(*view.selection(), 12, 9, 15, 11);
    EXPECT_EQ(program.status(1), L"3 \u00d7 2 of 40 \u00d7 30, 24 bits");
    // Its frame lies around the pixels, in two colours.
    const auto is_line = [&](int x, int y) {
        const COLORREF colour = program.seen(x, y);
        return colour == RGB(255, 255, 255) || colour == RGB(0, 0, 0);
    };
    for (int x = 39; x <= 100; ++x) {
        EXPECT_TRUE(is_line(x, 29)) << x; // 9 * 20 - 150 - 1
        EXPECT_TRUE(is_line(x, 70)) << x; // 11 * 20 - 150
    }
    for (int y = 29; y <= 70; ++y) {
        EXPECT_TRUE(is_line(39, y)) << y;
        EXPECT_TRUE(is_line(100, y)) << y;
    }
    EXPECT_EQ(program.seen(40, 30), colour_at(12, 9));
    EXPECT_EQ(program.seen(38, 28), colour_at(11, 8));
    drag(5, 15); // 10.25, 8.25
    expect_rectangle(*view.selection(), 10, 8, 13, 10);
    drag(-5000, -5000);
    expect_rectangle(*view.selection(), 0, 0, 13, 10);
    drag(5000, 5000);
    expect_rectangle(*view.selection(), 12, 9, 40, 30);
    program.does(command_select_none);
    EXPECT_FALSE(view.selection());
    program.does(command_select_all);
    expect_rectangle(*view.selection(), 0, 0, 40, 30);
    program.show(picture_of(40, 30)); // another picture
    EXPECT_FALSE(view.selection());
}

TEST(View, ShowsAPreviewInItsPlace) {
    Program program;
    View& view = program.viewer.view;
    program.show(picture_of(40, 30));
    view.zoom_to(10); // 400 x 300: all of the window
    Dib dark = make_dib({5, 2, 24});
    dark.set_pixel(4, 1, 0x112233);
    view.preview({shared(Image::adopt(dark.release())), 20, 12, 10, 4, false});
    EXPECT_TRUE(view.has_preview());
    EXPECT_EQ(program.seen(199, 125), colour_at(19, 12));
    EXPECT_EQ(program.seen(201, 121), RGB(0, 0, 0));
    EXPECT_EQ(program.seen(299, 159), RGB(0x11, 0x22, 0x33)); // 20 x 20 of the screen
    EXPECT_EQ(program.seen(281, 141), RGB(0x11, 0x22, 0x33));
    EXPECT_EQ(program.seen(279, 141), RGB(0, 0, 0));
    EXPECT_EQ(program.seen(301, 159), colour_at(30, 15));
    view.end_preview();
    EXPECT_FALSE(view.has_preview());
    EXPECT_EQ(program.seen(299, 159), colour_at(29, 15));
}

TEST(Status, TellsSizeScalePixelAndUndo) {
    Options options;
    options.undo_megabytes = 7;
    Program program(options);
    ::Viewer& viewer = program.viewer;
    EXPECT_EQ(program.status(1), L"");
    program.show(picture_of(40, 30));
    EXPECT_EQ(program.status(1), L"40 \u00d7 30, 24 bits");
    EXPECT_EQ(program.status(2), L"100 %");
    EXPECT_EQ(program.status(4), L"0 to undo, 0 of 7 MB");
    viewer.view.zoom_to(1.25);
    EXPECT_EQ(program.status(2), L"125 %");
    viewer.view.zoom_to(1); // from 180, 135 on
    program.mouse(WM_MOUSEMOVE, 183, 137);
    EXPECT_EQ(program.status(3), L"3, 2: 25 24 90, #19185A");
    program.mouse(WM_MOUSEMOVE, 219, 164);
    EXPECT_EQ(program.status(3).substr(0, 7), L"39, 29:");
    for (const POINT outside :
         {POINT{179, 140}, POINT{220, 140}, POINT{190, 134}, POINT{190, 165}}) {
        program.mouse(WM_MOUSEMOVE, outside.x, outside.y);
        EXPECT_EQ(program.status(3), L"");
    }
    program.does(command_of("--negative"));
    EXPECT_EQ(program.status(4), L"1 to undo, 1 of 7 MB");
    EXPECT_EQ(text_of(viewer.window), L"picture* - KirvoView");
    program.does(command_undo);
    EXPECT_EQ(program.status(4), L"0 to undo, 1 of 7 MB");
    EXPECT_EQ(text_of(viewer.window), L"picture - KirvoView");
}

TEST(Status, HasItsPartsSideBySideAndLeavesAQuarterToTheWords) {
    Program program;
    const ::Viewer& viewer = program.viewer;
    for (const int width : {1200, 800, 500, 300}) {
        SetWindowPos(viewer.window, nullptr, 0, 0, width, 500, SWP_NOMOVE | SWP_NOZORDER);
        const LONG all = client_of(viewer.status).right;
        int edges[5] = {};
        ASSERT_EQ(SendMessageW(viewer.status, SB_GETPARTS, 5, reinterpret_cast<LPARAM>(edges)), 5);
        EXPECT_GE(edges[0], all / 4) << width;
        for (int part = 1; part < 5; ++part) {
            EXPECT_GE(edges[part], edges[part - 1] + (width == 1200 ? 50 : 0)) << width;
        }
        EXPECT_EQ(edges[4], all) << width;
    }
}

TEST(Window, ShowsThePictureBeforeTheLastEffectWhileBIsHeld) {
    Program program;
    ::Viewer& viewer = program.viewer;
    program.show(picture_of(40, 30));
    program.key(WM_KEYDOWN, 'B'); // there is none before
    EXPECT_EQ(viewer.view.image(), viewer.history.now());
    const SharedImage first = viewer.history.now();
    program.does(command_of("--negative"));
    const SharedImage second = viewer.view.image();
    EXPECT_NE(first, second);
    program.key(WM_KEYDOWN, 'B');
    EXPECT_EQ(viewer.view.image(), first);
    program.key(WM_KEYUP, 'C');
    EXPECT_EQ(viewer.view.image(), first);
    program.key(WM_KEYUP, 'B');
    EXPECT_EQ(viewer.view.image(), second);
    program.key(WM_KEYDOWN, 'B');
    SendMessageW(viewer.window, WM_KILLFOCUS, 0, 0);
    EXPECT_EQ(viewer.view.image(), second);
}

TEST(Window, LaysItsPartsSideBySide) {
    Program program;
    ::Viewer& viewer = program.viewer;
    const auto in_window = [&](HWND window) {
        RECT place = place_of(window);
        MapWindowPoints(nullptr, viewer.window, reinterpret_cast<POINT*>(&place), 2);
        return place;
    };
    const RECT area = client_of(viewer.window);
    const LONG bar = in_window(viewer.status).top;
    expect_rectangle(in_window(viewer.view.window()), 0, 0, area.right, bar);
    EXPECT_EQ(in_window(viewer.status).bottom, area.bottom);
    program.does(command_code);
    const RECT list = in_window(viewer.code.list());
    expect_rectangle(in_window(viewer.view.window()), 0, 0, list.left, bar);
    EXPECT_EQ(list.left, // half of a narrow window
              (std::max)(area.right / 2, area.right - sizes::scaled(viewer.window, 420)));
    EXPECT_EQ(list.right, area.right);
    EXPECT_EQ(list.top, 0);
    program.does(command_full_screen);
    EXPECT_FALSE(IsWindowVisible(viewer.status));
    EXPECT_FALSE(viewer.code.is_visible());
    EXPECT_EQ(GetMenu(viewer.window), nullptr);
    const RECT screen = client_of(viewer.window);
    EXPECT_EQ(screen.right, GetSystemMetrics(SM_CXSCREEN));
    EXPECT_EQ(screen.bottom, GetSystemMetrics(SM_CYSCREEN));
    expect_rectangle(in_window(viewer.view.window()), 0, 0, screen.right, screen.bottom);
    program.does(command_abandon); // leaves the full screen
    EXPECT_EQ(GetMenu(viewer.window), viewer.menu);
    EXPECT_TRUE(IsWindowVisible(viewer.status));
    expect_rectangle(in_window(viewer.view.window()), 0, 0, list.left, bar);
    program.does(command_code);
    expect_rectangle(in_window(viewer.view.window()), 0, 0, area.right, bar);
}

TEST(Window, FitsAroundThePicture) {
    Program program;
    ::Viewer& viewer = program.viewer;
    program.show(picture_of(320, 210));
    const RECT before = place_of(viewer.window);
    program.does(command_fit_window);
    expect_rectangle(client_of(viewer.view.window()), 0, 0, 320, 210);
    const RECT after = place_of(viewer.window);
    EXPECT_EQ(after.left, before.left);
    EXPECT_EQ(after.top, before.top);
    program.does(command_code); // which stays beside the picture
    program.does(command_fit_window);
    expect_rectangle(client_of(viewer.view.window()), 0, 0, 320, 210);
}

TEST(Menus, OfferWhatCanBeDone) {
    Program program;
    ::Viewer& viewer = program.viewer;
    const std::vector<WORD> always = {command_quit, command_full_screen, command_histogram,
                                      command_code, command_theme_dark,  command_keys,
                                      command_about};
    const std::vector<WORD> while_free = {command_open, command_paste};
    const std::vector<WORD> with_picture = {
        command_copy,     command_select_all, command_fit,        command_zoom_in,
        command_zoom_out, command_one_to_one, command_information};
    const std::vector<WORD> with_free_picture = {command_save,       command_save_as,
                                                 command_print,      command_select,
                                                 command_fit_window, command_effect};
    const std::vector<WORD> with_steps = {command_undo, command_repeat, command_copy_code,
                                          command_copy_line};
    const auto expect = [&](const std::vector<WORD>& commands, bool possible) {
        for (const WORD command : commands)
            EXPECT_EQ(can_act(viewer, command), possible) << command;
    };
    const auto expect_all = [&](bool free, bool picture, bool steps) {
        expect(always, true);
        expect(while_free, free);
        expect(with_picture, picture);
        expect(with_free_picture, free && picture);
        expect(with_steps, free && steps);
    };
    expect_all(true, false, false);
    expect({command_next, command_previous, command_redo, command_select_none, command_abandon},
           false);
    viewer.working = true;
    expect_all(false, false, false);
    expect({command_abandon}, true);
    viewer.working = false;
    program.show(picture_of(9, 9));
    expect_all(true, true, false);
    expect({command_next, command_previous, command_redo, command_select_none, command_abandon},
           false);
    program.does(command_of("--flip"));
    expect_all(true, true, true);
    expect({command_redo}, false);
    program.does(command_undo);
    expect({command_undo}, false);
    expect({command_redo}, true);
    viewer.working = true;
    expect({command_redo}, false);
    viewer.working = false;
    program.does(command_select_all);
    expect({command_select_none, command_abandon}, true);
    program.does(command_select_none);
    program.does(command_full_screen);
    expect({command_fit_window}, false);
    expect({command_abandon}, true);
    program.does(command_full_screen);
    program.show(picture_of(9, 9), L"C:\\folder\\picture.bmp");
    expect({command_next, command_previous}, true);
    viewer.working = true;
    expect({command_next, command_previous}, false);
    viewer.working = false;
    EXPECT_TRUE(has_state(viewer, 0, command_abandon, MF_GRAYED));
    EXPECT_FALSE(has_state(viewer, 0, command_save, MF_GRAYED));
}

TEST(Menus, MarkTheFirstLetterOrDigitThatIsFree) {
    std::wstring taken;
    EXPECT_EQ(with_key(L"Kernel", taken), L"&Kernel");
    EXPECT_EQ(with_key(L"K1", taken), L"K&1");
    EXPECT_EQ(with_key(L"\u00d7 keen", taken), L"\u00d7 k&een");
    EXPECT_EQ(with_key(L"1 k", taken), L"1 k");
}

TEST(Menus, MarkWhatIsChosen) {
    Program program;
    ::Viewer& viewer = program.viewer;
    const auto marked = [&](WORD command) { return has_state(viewer, 2, command, MF_CHECKED); };
    EXPECT_FALSE(marked(command_fit)); // nothing to be fitted
    EXPECT_FALSE(marked(command_one_to_one));
    program.show(picture_of(9, 9));
    EXPECT_TRUE(marked(command_fit));
    EXPECT_TRUE(marked(command_one_to_one));
    viewer.view.zoom_to(2);
    EXPECT_FALSE(marked(command_fit));
    EXPECT_FALSE(marked(command_one_to_one));
    for (const WORD command : {command_full_screen, command_histogram, command_code}) {
        EXPECT_FALSE(marked(command));
        program.does(command);
        EXPECT_TRUE(marked(command));
        program.does(command);
        EXPECT_FALSE(marked(command));
    }
    EXPECT_TRUE(marked(command_theme_system));
    program.does(command_theme_light);
    EXPECT_FALSE(marked(command_theme_system));
    EXPECT_TRUE(marked(command_theme_light));
    EXPECT_FALSE(marked(command_theme_dark));
}

TEST(Menus, ListTheRecentFilesAboveTheWayOut) {
    Options options;
    options.recent = {L"C:\\a & b.jpg", L"C:\\c.png"};
    Program program(options);
    HMENU file = menu_of(program.viewer, 0);
    file = menu_of(program.viewer, 0); // again, and they are there once
    const int count = GetMenuItemCount(file);
    EXPECT_EQ(count, 14);
    EXPECT_EQ(GetMenuItemID(file, count - 1), static_cast<UINT>(command_quit));
    EXPECT_TRUE(GetMenuState(file, static_cast<UINT>(count - 2), MF_BYPOSITION) & MF_SEPARATOR);
    EXPECT_EQ(item_text(file, static_cast<UINT>(count - 4), MF_BYPOSITION), L"&1 C:\\a && b.jpg");
    EXPECT_EQ(item_text(file, command_recent + 1, MF_BYCOMMAND), L"&2 C:\\c.png");
    EXPECT_EQ(GetMenuItemID(file, count - 3), static_cast<UINT>(command_recent + 1));
    HMENU view = menu_of(program.viewer, 2);
    EXPECT_EQ(item_text(view, command_recent, MF_BYCOMMAND), L"");
}

TEST(Menus, NameTheStepsThatCanBeUndone) {
    Program program;
    program.show(picture_of(9, 9));
    const auto text = [&](WORD command) {
        return item_text(menu_of(program.viewer, 1), command, MF_BYCOMMAND);
    };
    EXPECT_EQ(text(command_undo), L"&Undo\tCtrl+Z");
    EXPECT_EQ(text(command_redo), L"&Redo\tCtrl+Y");
    program.does(command_of("--negative"));
    program.does(command_of("--flip"));
    EXPECT_EQ(text(command_undo), L"&Undo Flip\tCtrl+Z");
    program.does(command_undo);
    EXPECT_EQ(text(command_undo), L"&Undo Negative\tCtrl+Z");
    EXPECT_EQ(text(command_redo), L"&Redo Flip\tCtrl+Y");
}

TEST(Menus, OfDarkColoursAnswerToTheirLetters) {
    Options options;
    options.theme = Theme::dark;
    Program program(options);
    const auto typed = [&](wchar_t letter) {
        return SendMessageW(program.viewer.window, WM_MENUCHAR, MAKEWPARAM(letter, 0),
                            reinterpret_cast<LPARAM>(program.viewer.menu));
    };
    EXPECT_EQ(typed(L'f'), MAKELRESULT(0, MNC_EXECUTE));
    EXPECT_EQ(typed(L'E'), MAKELRESULT(1, MNC_EXECUTE));
    EXPECT_EQ(typed(L'v'), MAKELRESULT(2, MNC_EXECUTE));
    EXPECT_EQ(typed(L'C'), MAKELRESULT(3, MNC_EXECUTE)); // Effects
    EXPECT_EQ(typed(L'h'), MAKELRESULT(4, MNC_EXECUTE));
    EXPECT_EQ(typed(L'q'), MAKELRESULT(0, MNC_IGNORE));
    LOGBRUSH brush;
    GetObjectW(theme::brush(), sizeof brush, &brush);
    EXPECT_EQ(brush.lbColor, theme::background());
    // Light words on a dark ground.
    EXPECT_GT(GetGValue(theme::text()), GetGValue(theme::background()) + 128);
    EXPECT_LT(GetGValue(program.seen(10, 10)), 64);
    EXPECT_LT(GetGValue(Program::seen(program.viewer.status, 200, 2)), 64);
    program.does(command_theme_light);
    EXPECT_EQ(program.seen(10, 10), GetSysColor(COLOR_APPWORKSPACE));
}

TEST(EffectDialogs, AreTidyAndLieAtTheLowerRightCorner) {
    Program program;
    program.show(picture_of(40, 30));
    // With numbers, fractions, words, a file, a colour, and as many rows as there can be.
    for (const char* option : {"--hue", "--gamma", "--compose", "--xor", "--kernel"}) {
        SCOPED_TRACE(option);
        const Effect& effect = *effect_called(option);
        in_dialog([&] { ask_and_apply(program.viewer, effect); },
                  [&](HWND dialog) {
                      expect_tidy(dialog);
                      const RECT place = place_of(dialog), owner = place_of(program.viewer.window);
                      EXPECT_EQ(place.left,
                                (std::max)(0l, owner.right - (place.right - place.left) - 24));
                      EXPECT_EQ(place.top,
                                (std::max)(0l, owner.bottom - (place.bottom - place.top) - 48));
                      RECT ok = place_of(GetDlgItem(dialog, IDOK)),
                           cancel = place_of(GetDlgItem(dialog, IDCANCEL));
                      EXPECT_EQ(ok.right - ok.left, cancel.right - cancel.left);
                      EXPECT_EQ(ok.bottom - ok.top, cancel.bottom - cancel.top);
                      EXPECT_EQ(ok.top, cancel.top);
                      close(dialog);
                  });
    }
    EXPECT_FALSE(program.viewer.history.can_undo());
}

TEST(EffectDialogs, LetSlidersAndNumbersFollowEachOther) {
    constexpr int value = 100, slider = 200;
    Program program;
    program.show(picture_of(40, 30));
    const auto slide = [](HWND dialog, int id, int place) {
        HWND bar = GetDlgItem(dialog, id);
        SendMessageW(bar, TBM_SETPOS, TRUE, place);
        SendMessageW(dialog, WM_HSCROLL, TB_THUMBTRACK, reinterpret_cast<LPARAM>(bar));
    };
    in_dialog([&] { ask_and_apply(program.viewer, *effect_called("--brightness")); },
              [&](HWND dialog) {
                  HWND bar = GetDlgItem(dialog, slider);
                  EXPECT_EQ(SendMessageW(bar, TBM_GETRANGEMIN, 0, 0), -100);
                  EXPECT_EQ(SendMessageW(bar, TBM_GETRANGEMAX, 0, 0), 100);
                  EXPECT_EQ(words(dialog, value), L"30"); // which shows something
                  EXPECT_EQ(SendMessageW(bar, TBM_GETPOS, 0, 0), 30);
                  SetDlgItemTextW(dialog, value, L"-55");
                  EXPECT_EQ(SendMessageW(bar, TBM_GETPOS, 0, 0), -55);
                  slide(dialog, slider, 42);
                  EXPECT_EQ(words(dialog, value), L"42");
                  close(dialog);
              });
    in_dialog([&] { ask_and_apply(program.viewer, *effect_called("--gamma")); },
              [&](HWND dialog) {
                  SetDlgItemTextW(dialog, value + 1, L"2.5");
                  EXPECT_EQ(SendDlgItemMessageW(dialog, slider + 1, TBM_GETPOS, 0, 0), 250);
                  EXPECT_EQ(SendDlgItemMessageW(dialog, slider, TBM_GETPOS, 0, 0), 60);
                  slide(dialog, slider + 2, 75);
                  EXPECT_EQ(words(dialog, value + 2), L"0.75");
                  EXPECT_EQ(words(dialog, value + 1), L"2.5");
                  close(dialog, IDOK);
              });
    EXPECT_TRUE(pumped([&] { return !program.viewer.working; }));
    ASSERT_EQ(program.viewer.history.steps().size(), 1u);
    EXPECT_EQ(program.viewer.history.steps()[0].values, "0.6,2.5,0.75");
}

// A pixel of a large picture is less than one of the reduced picture that is looked at first.
TEST(Look, HasRoomForTheSmallestSelection) {
    Program program;
    program.show(picture_of(1200, 900));
    Look look(program.viewer);
    for (LONG at = 500; at < 505; ++at) {
        Step step;
        step.option = "--brightness";
        step.values = "30";
        step.place = RECT{at, at, at + 1, at + 1};
        std::optional<std::string> wrong;
        look.at_once(step, [&](const std::string& what) { wrong = what; });
        ASSERT_TRUE(pumped([&] { return wrong.has_value(); }));
        EXPECT_EQ(*wrong, "");
    }
}

TEST(SelectDialog, TakesWhatLiesInThePicture) {
    Program program;
    program.show(picture_of(40, 30));
    const auto enter = [&](HWND dialog, int x, int y, int width, int height) {
        const int numbers[] = {x, y, width, height};
        for (int i = 0; i < 4; ++i)
            SetDlgItemInt(dialog, 100 + i, static_cast<UINT>(numbers[i]), FALSE);
        close(dialog, IDOK);
        return !IsWindowVisible(dialog);
    };
    in_dialog([&] { ask_selection(program.viewer); },
              [&](HWND dialog) {
                  expect_tidy(dialog);
                  EXPECT_EQ(words(dialog, 100) + L" " + words(dialog, 101) + L" " +
                                words(dialog, 102) + L" " + words(dialog, 103),
                            L"0 0 40 30");
                  EXPECT_FALSE(enter(dialog, 40, 0, 1, 1));
                  EXPECT_FALSE(enter(dialog, 0, 30, 1, 1));
                  EXPECT_FALSE(enter(dialog, 0, 0, 0, 1));
                  EXPECT_FALSE(enter(dialog, 0, 0, 1, 0));
                  EXPECT_FALSE(enter(dialog, 1, 0, 40, 1));
                  EXPECT_FALSE(enter(dialog, 0, 1, 1, 30));
                  EXPECT_EQ(words(dialog, 104), L"The picture has 40 \u00d7 30 pixels");
                  enter(dialog, 39, 0, 1, 30);
              });
    ASSERT_TRUE(program.viewer.view.selection());
    expect_rectangle(*program.viewer.view.selection(), 39, 0, 40, 30);
    in_dialog([&] { ask_selection(program.viewer); },
              [&](HWND dialog) {
                  EXPECT_EQ(words(dialog, 100), L"39");
                  EXPECT_EQ(words(dialog, 102), L"1");
                  close(dialog);
              });
}

TEST(Information, ListsWhatIsKnown) {
    Program program;
    program.show(picture_of(40, 30), L"C:\\folder\\picture.bmp");
    in_dialog([&] { show_information(program.viewer); },
              [&](HWND dialog) {
                  expect_tidy(dialog);
                  EXPECT_EQ(words(dialog, 100), L"File\tC:\\folder\\picture.bmp\r\n"
                                                L"Picture\t40 \u00d7 30, 24 bits a pixel\r\n"
                                                L"Memory\t3640 bytes\r\n");
                  close(dialog, IDOK);
              });
}

TEST(JpegDialog, TellsTheSizeOfTheQualityThatTheSliderShows) {
    Program program;
    program.show(picture_of(40, 30));
    std::optional<uint32_t> quality;
    in_dialog([&] { quality = ask_jpeg_quality(program.viewer); },
              [&](HWND dialog) {
                  expect_tidy(dialog);
                  HWND bar = GetDlgItem(dialog, 100);
                  EXPECT_EQ(SendMessageW(bar, TBM_GETRANGEMIN, 0, 0), 1);
                  EXPECT_EQ(SendMessageW(bar, TBM_GETRANGEMAX, 0, 0), 100);
                  EXPECT_EQ(SendMessageW(bar, TBM_GETPOS, 0, 0), 90);
                  EXPECT_EQ(words(dialog, 101), L"90");
                  const auto size_at = [&](int place) {
                      SetDlgItemTextW(dialog, 102, L"");
                      SendMessageW(bar, TBM_SETPOS, TRUE, place);
                      SendMessageW(dialog, WM_HSCROLL, TB_THUMBTRACK,
                                   reinterpret_cast<LPARAM>(bar));
                      EXPECT_TRUE(pumped([&] {
                          return program.viewer.view.has_preview() && !words(dialog, 102).empty();
                      }));
                      const std::wstring text = words(dialog, 102);
                      EXPECT_EQ(text.substr(text.find(L' ')), L" bytes");
                      return std::stoi(text);
                  };
                  const int least = size_at(1), most = size_at(100);
                  EXPECT_LT(least, most);
                  size_at(33);
                  EXPECT_EQ(words(dialog, 101), L"33");
                  close(dialog, IDOK);
              });
    EXPECT_EQ(quality, 33u);
    EXPECT_FALSE(program.viewer.view.has_preview());
    in_dialog([&] { quality = ask_jpeg_quality(program.viewer); },
              [](HWND dialog) { close(dialog); });
    EXPECT_FALSE(quality);
}

namespace {
BOOL CALLBACK find_histogram(HWND window, LPARAM found) {
    if (text_of(window) != L"Histogram")
        return TRUE;
    *reinterpret_cast<HWND*>(found) = window;
    return FALSE;
}
} // namespace

// Half of the pixels white, half pure red: red is at 255 twice as often as green and blue.
TEST(Histogram, DrawsAColumnForEachValueUpToTheHighest) {
    Program program;
    Dib picture = make_dib({10, 2, 24});
    for (int x = 0; x < 10; ++x) {
        picture.set_pixel(x, 0, 0xFFFFFF);
        picture.set_pixel(x, 1, 0xFF0000);
    }
    program.show(std::move(picture));
    program.does(command_histogram);
    HWND window = nullptr;
    EnumThreadWindows(GetCurrentThreadId(), find_histogram, reinterpret_cast<LPARAM>(&window));
    ASSERT_NE(window, nullptr);
    const RECT area = client_of(window);
    const int right = area.right - 1, floor = area.bottom - 22 - 1;
    const auto at = [&](int x, int y) { return Program::seen(window, x, y); };
    EXPECT_TRUE(pumped([&] { return at(right, floor) != theme::background(); }));
    const auto is_grey = [](COLORREF c) {
        return GetRValue(c) == GetGValue(c) && GetGValue(c) == GetBValue(c);
    };
    const auto is_red = [](COLORREF c) {
        return GetRValue(c) > 128 && GetGValue(c) < 128 && GetBValue(c) < 128;
    };
    EXPECT_TRUE(is_grey(at(right, floor))); // all three
    EXPECT_TRUE(is_red(at(right, 4)));      // 20 of 20 pixels
    EXPECT_EQ(at(right, 3), theme::background());
    // 10 of 20: the square root of a half of the height.
    const int height = floor + 1 - 4;
    const int half = floor + 1 - static_cast<int>(height * 0.70710678);
    EXPECT_TRUE(is_grey(at(right, half)));
    EXPECT_TRUE(is_red(at(right, half - 1)));
    EXPECT_FALSE(is_red(at(0, floor))); // value 0: of green and blue
    EXPECT_NE(at(0, half), theme::background());
    EXPECT_EQ(at(0, half - 1), theme::background());
    EXPECT_EQ(at(area.right / 2, floor), theme::background());
    EXPECT_TRUE(program.viewer.options.histogram);
    SendMessageW(window, WM_KEYDOWN, VK_ESCAPE, 1);
    EXPECT_FALSE(program.viewer.histogram.is_open());
    EXPECT_FALSE(program.viewer.options.histogram);
}

TEST(History, KeepsToItsBudgetAndItsSteps) {
    const auto image = [] {
        return shared(Image::adopt(picture_of(100, 100).release()));
    }; // 30,040 bytes
    History history;
    EXPECT_FALSE(history.changed());
    history.set_budget(70000);
    history.begin(image());
    EXPECT_FALSE(history.changed());
    EXPECT_EQ(history.bytes(), 0u);
    for (const char* option : {"--one", "--two", "--three"})
        history.add(image(), {option, "", {}, {}});
    EXPECT_TRUE(history.changed());
    EXPECT_EQ(history.undo_count(), 2u); // two pictures beside the one that is shown
    EXPECT_EQ(history.bytes(), 2 * GlobalSize(history.now()->handle()));
    ASSERT_EQ(history.steps().size(), 3u);
    EXPECT_EQ(history.steps()[0].option, "--one");
    EXPECT_EQ(history.next_undo(), "--three");
    history.undo();
    EXPECT_EQ(history.next_redo(), "--three");
    EXPECT_EQ(history.steps().size(), 2u);
    history.saved();
    EXPECT_FALSE(history.changed());
    history.redo();
    EXPECT_TRUE(history.changed());
    EXPECT_FALSE(history.can_redo());
    history.undo();
    history.add(image(), {"--four", "", {}, {}}); // instead of the third
    EXPECT_FALSE(history.can_redo());
    EXPECT_EQ(history.next_undo(), "--four");
}

TEST(Settings, GoToTheirFileAndComeBack) {
    Options options;
    options.theme = Theme::dark;
    options.language = 3;
    options.code = true;
    options.maximised = true;
    options.window = {-5, 7, 630, 480};
    options.undo_megabytes = 99;
    for (const wchar_t* name : {L"c.jpg", L"b.jpg", L"a.jpg"})
        remember_recent(options, name);
    remember_recent(options, L"B.JPG"); // the same file
    write_options(options);
    const Options read = read_options();
    EXPECT_EQ(read.theme, Theme::dark);
    EXPECT_EQ(read.language, 3);
    EXPECT_TRUE(read.code);
    EXPECT_FALSE(read.histogram);
    EXPECT_TRUE(read.maximised);
    expect_rectangle(read.window, -5, 7, 630, 480);
    EXPECT_EQ(read.undo_megabytes, 99u);
    EXPECT_EQ(read.recent, (std::vector<std::wstring>{L"B.JPG", L"a.jpg", L"c.jpg"}));
    for (int i = 0; i < 20; ++i)
        remember_recent(options, L"picture " + digits(i));
    EXPECT_EQ(options.recent.size(), 9u);
    EXPECT_EQ(options.recent.front(), L"picture 19");
    EXPECT_EQ(options.recent.back(), L"picture 11");
    write_options(options);
    EXPECT_EQ(read_options().recent, options.recent);
    write_options({});
    EXPECT_TRUE(read_options().recent.empty());
    EXPECT_EQ(Options().undo_megabytes, sizeof(void*) == 4 ? 256u : 1024u);
    options.language = 1000; // of a file that somebody has written
    write_options(options);
    EXPECT_LT(read_options().language, 100);
    write_options({});
}

TEST(Folder, GoesRoundAndSkipsWhatIsNoPicture) {
    TempFolder folder;
    for (const char* name : {"p2.bmp", "p10.jpg", "p1.png", "notes.txt"})
        folder.write(name, "");
    const std::wstring at = folder_of(wide(folder.path("x")));
    EXPECT_EQ(neighbour(at + L"p1.png", 1), at + L"p2.bmp");
    EXPECT_EQ(neighbour(at + L"p2.bmp", 1), at + L"p10.jpg");
    EXPECT_EQ(neighbour(at + L"p10.jpg", 1), at + L"p1.png");
    EXPECT_EQ(neighbour(at + L"p1.png", -1), at + L"p10.jpg");
    EXPECT_EQ(neighbour(at + L"p5.bmp", 1), at + L"p10.jpg"); // which is not there
    EXPECT_EQ(neighbour(at + L"p5.bmp", -1), at + L"p2.bmp");
    TempFolder other;
    other.write("alone.bmp", "");
    EXPECT_EQ(neighbour(wide(other.path("alone.bmp")), 1), L"");
}

TEST(Worker, DropsLooksThatNobodyWaitsForAndNoWork) {
    Program program;
    Worker& worker = program.viewer.worker;
    std::vector<std::string> order;
    std::string error;
    HANDLE gate = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    bool last = false;
    const auto done = [&](const char* name) {
        return [&order, name](const std::string&) { order.push_back(name); };
    };
    worker.post(
        Worker::Kind::picture, [=] { WaitForSingleObject(gate, 30000); }, done("first"));
    EXPECT_TRUE(pumped([&] { return !Worker::Turn(worker); })); // the worker has begun
    worker.post(
        Worker::Kind::preview, [] {}, done("old look"));
    worker.post(
        Worker::Kind::picture, [] {}, done("second"));
    worker.post(
        Worker::Kind::preview, [] {}, done("look"));
    worker.post(
        Worker::Kind::smooth, [] { throw std::bad_alloc(); },
        [&](const std::string& what) {
            error = what;
            last = true;
        });
    SetEvent(gate);
    EXPECT_TRUE(pumped([&] { return last; }));
    EXPECT_EQ(order, (std::vector<std::string>{"first", "second", "look"}));
    EXPECT_EQ(error, "There is not enough memory");
    EXPECT_TRUE(pumped([&] { return static_cast<bool>(Worker::Turn(worker)); }));
    CloseHandle(gate);
}
