// The program by the keyboard alone, as somebody uses it who has no mouse or does not see the screen.
#include "driver.hpp"

#include "../../viewer/commands.hpp"
#include "../../viewer/effects_menu.hpp"
#include "../../viewer/viewer.hpp"

#include "effects/presentation.hpp"

#include <commctrl.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

using kirvo_test::Dib;
using kirvo_test::eventually;
using kirvo_test::picture_bytes;
using kirvo_test::press;
using kirvo_test::saved;
using kirvo_test::TempFolder;
using Program = kirvo_test::Viewer;

namespace {

constexpr int first_value = 100, first_slider = 200;

Dib picture_of(int width, int height) {
    kirvo_test::Random random(7);
    return kirvo_test::make_random_dib({width, height, 24}, random);
}

std::string text_of(HWND window) {
    char text[256] = {};
    SendMessageA(window, WM_GETTEXT, sizeof text, reinterpret_cast<LPARAM>(text));
    return text;
}

// The key of "&Amount"; 0 where there is none.
WORD letter_of(const std::string& text) {
    const size_t mark = text.find('&');
    return mark < text.size() ? static_cast<WORD>(toupper(text[mark + 1])) : WORD{0};
}

struct Controls {
    HWND dialog;
    std::vector<HWND> all;
};

BOOL CALLBACK add_control(HWND control, LPARAM parameter) {
    auto& controls = *reinterpret_cast<Controls*>(parameter);
    if (GetParent(control) == controls.dialog)
        controls.all.push_back(control);
    return TRUE;
}

std::vector<HWND> controls_of(HWND dialog) {
    Controls controls = {dialog, {}};
    EnumChildWindows(dialog, add_control, reinterpret_cast<LPARAM>(&controls));
    return controls.all;
}

bool can_have_focus(HWND control) {
    return IsWindowVisible(control) && IsWindowEnabled(control) &&
           (GetWindowLongA(control, GWL_STYLE) & WS_TABSTOP) != 0;
}

// As one reads: line by line, from the left.
std::vector<HWND> in_order_of_reading(std::vector<HWND> controls) {
    const auto place = [](HWND control) {
        RECT area;
        GetWindowRect(control, &area);
        return std::pair((area.top + area.bottom) / 2 / 16, area.left);
    };
    std::erase_if(controls, [](HWND control) { return !can_have_focus(control); });
    std::sort(controls.begin(), controls.end(),
              [&](HWND a, HWND b) { return place(a) < place(b); });
    return controls;
}

bool gets_focus(const Program& viewer, HWND control) {
    return eventually([&] { return viewer.focus() == control; });
}

void expect_walk(const Program& viewer, HWND dialog) {
    const std::vector<HWND> wanted = in_order_of_reading(controls_of(dialog));
    ASSERT_FALSE(wanted.empty());
    EXPECT_TRUE(gets_focus(viewer, wanted.front()));
    for (size_t i = 1; i <= wanted.size(); ++i) {
        press({VK_TAB});
        ASSERT_TRUE(gets_focus(viewer, wanted[i % wanted.size()])) << "control " << i;
    }
    press({VK_SHIFT, VK_TAB});
    EXPECT_TRUE(gets_focus(viewer, wanted.back()));
}

// Alt and the letter that is underlined in a name lead to the control behind the name.
void expect_letters(const Program& viewer, HWND dialog) {
    const std::vector<HWND> controls = controls_of(dialog);
    for (size_t i = 0; i + 1 < controls.size(); ++i) {
        const WORD letter = letter_of(text_of(controls[i]));
        if (letter == 0)
            continue;
        press({VK_MENU, letter});
        ASSERT_TRUE(gets_focus(viewer, controls[i + 1])) << text_of(controls[i]);
    }
}

void leave(const Program& viewer, HWND dialog) {
    press({VK_ESCAPE});
    EXPECT_TRUE(viewer.gone(dialog));
}

std::string text_in(HMENU menu, UINT place) {
    char text[256] = {};
    GetMenuStringA(menu, place, text, sizeof text, MF_BYPOSITION);
    return text;
}

// The letters that lead to a command from the bar on; none where it stands in no menu.
std::vector<WORD> letters_to(HMENU menu, UINT command) {
    for (int i = 0; i < GetMenuItemCount(menu); ++i) {
        const WORD letter = letter_of(text_in(menu, static_cast<UINT>(i)));
        if (HMENU below = GetSubMenu(menu, i)) {
            std::vector<WORD> letters = letters_to(below, command);
            if (!letters.empty()) {
                letters.insert(letters.begin(), letter);
                return letters;
            }
        } else if (GetMenuItemID(menu, i) == command) {
            return {letter};
        }
    }
    return {};
}

// The menus that the program has, in this process.
class Menus {
  public:
    Menus() : bar_(make_menu()) {}
    ~Menus() { DestroyMenu(bar_); }
    Menus(const Menus&) = delete;
    Menus& operator=(const Menus&) = delete;

    // Once more where the window manager, which has not yet given the keyboard back from a window
    // that was closed, takes it away from the open menu.
    bool choose(const Program& viewer, UINT command, const std::function<bool()>& happens) const {
        const std::vector<WORD> letters = letters_to(bar_, command);
        EXPECT_GE(letters.size(), 2u) << command;
        for (int tries = 0; tries < 5; ++tries) {
            viewer.to_front();
            press({VK_MENU, letters.front()});
            if (soon([&] { return viewer.in_menu(); })) {
                for (size_t i = 1; i < letters.size(); ++i)
                    press({letters[i]});
                if (soon(happens))
                    return true;
            }
            press({VK_ESCAPE});
        }
        return false;
    }

  private:
    static bool soon(const std::function<bool()>& happens) {
        for (int i = 0; i < 200; ++i, Sleep(20)) {
            if (happens())
                return true;
        }
        return false;
    }

    HMENU bar_;
};

std::vector<WORD> keys_of(WORD command) {
    for (const Menu& menu : menus()) {
        for (const MenuEntry& entry : menu.entries) {
            if (entry.command != command || entry.key == 0)
                continue;
            std::vector<WORD> keys;
            for (const auto& [flag, key] :
                 {std::pair<BYTE, WORD>(FCONTROL, VK_CONTROL),
                  std::pair<BYTE, WORD>(FSHIFT, VK_SHIFT), std::pair<BYTE, WORD>(FALT, VK_MENU)}) {
                if (entry.flags & flag)
                    keys.push_back(key);
            }
            keys.push_back(entry.key);
            return keys;
        }
    }
    return {};
}

} // namespace

TEST(ViewerByKeyboard, ReachesEveryControlOfEveryEffect) {
    TempFolder folder;
    Program viewer(saved(folder, "in.bmp", picture_of(40, 30)));
    viewer.to_front();
    int dialogs = 0;
    for (const Effect& effect : effects()) {
        if (effect.parameters.empty())
            continue;
        SCOPED_TRACE(effect.option);
        viewer.command(viewer.effect(effect.name()));
        HWND dialog = viewer.dialog("");
        ASSERT_NE(dialog, nullptr);
        expect_walk(viewer, dialog);
        expect_letters(viewer, dialog);
        leave(viewer, dialog);
        ++dialogs;
    }
    EXPECT_GT(dialogs, 25);
    EXPECT_EQ(viewer.title(), "in.bmp - KirvoView"); // nothing has been done
}

TEST(ViewerByKeyboard, ReachesEveryControlOfTheOtherDialogs) {
    TempFolder folder;
    Program viewer(saved(folder, "in.jpg", picture_of(40, 30)));
    viewer.to_front();
    const auto expect_all = [&](const char* title) {
        SCOPED_TRACE(title);
        HWND dialog = viewer.dialog(title);
        ASSERT_NE(dialog, nullptr);
        expect_walk(viewer, dialog);
        expect_letters(viewer, dialog);
        leave(viewer, dialog);
    };
    const std::pair<int, const char*> commands[] = {{command_select, "Select a rectangle"},
                                                    {command_information, "Information"},
                                                    {command_keys, "Keys and mouse"}};
    for (const auto& [command, title] : commands) {
        viewer.command(command);
        expect_all(title);
    }
    viewer.command(viewer.effect("negative"));
    ASSERT_TRUE(viewer.wait_for("says: Negative: "));
    viewer.command(command_save);
    expect_all("Save as JPEG");
}

TEST(ViewerByKeyboard, SetsValuesByArrowsAndAppliesThemByEnter) {
    TempFolder folder;
    const Dib picture = picture_of(40, 30);
    Program viewer(saved(folder, "in.bmp", picture));
    viewer.to_front();
    viewer.command(viewer.effect("brightness"));
    HWND dialog = viewer.dialog("Brightness");
    ASSERT_NE(dialog, nullptr);
    HWND value = GetDlgItem(dialog, first_value), slider = GetDlgItem(dialog, first_slider);
    const auto reads = [&](const std::string& text) {
        return eventually([&] { return text_of(value) == text; });
    };
    ASSERT_TRUE(gets_focus(viewer, value));
    press({VK_TAB});
    ASSERT_TRUE(gets_focus(viewer, slider));
    press({VK_END});
    EXPECT_TRUE(reads("100"));
    press({VK_HOME});
    EXPECT_TRUE(reads("-100"));
    for (int i = 0; i < 3; ++i)
        press({VK_RIGHT});
    press({VK_LEFT});
    EXPECT_TRUE(reads("-98"));
    press({VK_RETURN});
    EXPECT_TRUE(viewer.gone(dialog));
    ASSERT_TRUE(viewer.wait_for("says: Brightness: "));
    int32_t status = 0;
    HGLOBAL wanted = Dib24Brightness(picture, 0, 0, 40, 30, -98, &status);
    EXPECT_EQ(viewer.copied(), picture_bytes(wanted));
    GlobalFree(wanted);

    viewer.command(viewer.effect("palette"));
    dialog = viewer.dialog("Palette");
    ASSERT_NE(dialog, nullptr);
    HWND list = GetDlgItem(dialog, first_value);
    ASSERT_TRUE(gets_focus(viewer, list));
    const LRESULT place = SendMessageA(list, CB_GETCURSEL, 0, 0);
    press({VK_DOWN});
    EXPECT_TRUE(eventually([&] { return SendMessageA(list, CB_GETCURSEL, 0, 0) == place + 1; }));
    press({VK_UP});
    EXPECT_TRUE(eventually([&] { return SendMessageA(list, CB_GETCURSEL, 0, 0) == place; }));
    leave(viewer, dialog);
}

TEST(ViewerByKeyboard, ReachesEveryEffectByTheLettersOfItsMenus) {
    TempFolder folder;
    const Menus menus;
    for (const char* theme : {"Theme=1\r\n", "Theme=2\r\n"}) { // the dark bar is the program's own
        SCOPED_TRACE(theme);
        Program viewer(saved(folder, "in.bmp", picture_of(12, 9)), theme);
        viewer.to_front();
        for (size_t i = 0; i < effects().size(); ++i) {
            const Effect& effect = effects()[i];
            SCOPED_TRACE(effect.option);
            const std::string title = title_of(effect.option);
            const bool asks = !effect.parameters.empty(), counts = effect.name() == "histogram";
            ASSERT_TRUE(menus.choose(viewer, static_cast<UINT>(command_effect + i), [&] {
                return asks     ? viewer.popup("#32770", title) != nullptr
                       : counts ? viewer.popup("KirvoView.Histogram") != nullptr
                                : viewer.wrote("says: " + title + ": ");
            }));
            if (asks) {
                leave(viewer, viewer.popup("#32770", title));
            } else if (counts) {
                viewer.to_front();
                press({VK_CONTROL, 'H'});
                EXPECT_TRUE(
                    eventually([&] { return viewer.popup("KirvoView.Histogram") == nullptr; }));
            }
        }
    }
}

TEST(ViewerByKeyboard, DoesEveryCommandByItsKeysAndByItsMenu) {
    TempFolder folder;
    const Menus menus_of_program;
    saved(folder, "b.bmp", picture_of(40, 30));
    Program viewer(saved(folder, "a.bmp", picture_of(40, 30)));
    viewer.to_front();
    const auto says = [&](const char* words) {
        return [&viewer, words] { return viewer.wrote(words); };
    };
    const auto opens = [&](const char* title) {
        return [&viewer, title] { return viewer.popup("#32770", title) != nullptr; };
    };
    const auto has_style = [&](LONG style) {
        return (GetWindowLongA(viewer.window(), GWL_STYLE) & style) != 0;
    };
    const auto does = [&](int command, const char* words) {
        viewer.command(command);
        EXPECT_TRUE(viewer.wait_for(words));
    };
    const auto negate = [&] { does(viewer.effect("negative"), "says: Negative: "); };
    const auto undo = [&] { viewer.command(command_undo); };
    const auto reads = [&](int part, const char* text, bool there = true) {
        return [&viewer, part, text, there] {
            return (viewer.status(part).find(text) != std::string::npos) == there;
        };
    };
    const auto is_changed = [&] { return viewer.title().find('*') != std::string::npos; };
    const auto after = [&](int command, std::function<bool()> happens) {
        return [&viewer, command, happens] {
            viewer.command(command);
            EXPECT_TRUE(eventually(happens));
        };
    };
    const auto nothing = [] {};
    const auto escape = [&] {
        HWND dialog = viewer.dialog_now();
        leave(viewer, dialog);
    };
    RECT before = {};
    const auto look_at_size = [&] { GetWindowRect(viewer.window(), &before); };
    const auto has_other_size = [&] {
        RECT now;
        GetWindowRect(viewer.window(), &now);
        return now.right - now.left < before.right - before.left;
    };
    const auto put_back = [&] {
        SetWindowPos(viewer.window(), nullptr, before.left, before.top, before.right - before.left,
                     before.bottom - before.top, SWP_NOZORDER);
    };

    struct Case {
        int command;
        std::function<void()> prepare;
        std::function<bool()> happens;
        std::function<void()> then;
    };
    const Case cases[] = {
        {command_open, nothing, opens("Open"), escape},
        {command_save, negate, says("saved: "), nothing},
        {command_save_as, nothing, opens("Save As"), escape},
        {command_next, nothing, says("ready"), nothing},
        {command_previous, nothing, says("ready"), nothing},
        {command_abandon, after(command_select_all, reads(1, " of ")), reads(1, " of ", false),
         nothing},
        {command_information, nothing, opens("Information"), escape},
        {command_print, nothing, [&] { return viewer.dialog_now() != nullptr; }, escape},
        {command_undo, negate, [&] { return !is_changed(); }, nothing},
        {command_redo, nothing, is_changed, after(command_undo, [&] { return !is_changed(); })},
        {command_repeat, negate, says("says: Negative: "), [&] { undo(), undo(); }},
        {command_copy, nothing, says("says: Copied"), nothing},
        {command_select_all, nothing, reads(1, " of "),
         after(command_select_none, reads(1, " of ", false))},
        {command_select, nothing, opens("Select a rectangle"), escape},
        {command_select_none, after(command_select_all, reads(1, " of ")), reads(1, " of ", false),
         nothing},
        {command_copy_code, negate, says("says: Copied as code"), undo},
        {command_copy_line, negate, says("says: Copied: kirvo "), undo},
        {command_zoom_in, nothing, reads(2, "125 %"), after(command_fit, reads(2, "100 %"))},
        {command_fit, after(command_zoom_in, reads(2, "125 %")), reads(2, "100 %"), nothing},
        {command_one_to_one, after(command_zoom_in, reads(2, "125 %")), reads(2, "100 %"), nothing},
        {command_zoom_out, nothing, reads(2, "80 %"), after(command_fit, reads(2, "100 %"))},
        {command_fit_window, look_at_size, has_other_size, put_back},
        {command_full_screen, nothing, [&] { return !has_style(WS_CAPTION); },
         after(command_abandon, [&] { return has_style(WS_CAPTION); })},
        {command_histogram, nothing, [&] { return viewer.popup("KirvoView.Histogram") != nullptr; },
         [&] {
             viewer.command(command_histogram);
             EXPECT_TRUE(
                 eventually([&] { return viewer.popup("KirvoView.Histogram") == nullptr; }));
             viewer.to_front();
         }},
        {command_code, nothing, [&] { return viewer.code() != nullptr; },
         [&] {
             viewer.command(command_code);
             EXPECT_TRUE(eventually([&] { return viewer.code() == nullptr; }));
         }},
        {command_keys, nothing, opens("Keys and mouse"), escape},
        {command_about, nothing, opens("About KirvoView"), escape},
        // At last, since what it shows has no folder.
        {command_paste, [&] { does(command_copy, "says: Copied"); }, says("picture shown"),
         nothing},
    };
    for (const Menu& menu : menus()) {
        for (const MenuEntry& entry : menu.entries) {
            const bool known = std::any_of(std::begin(cases), std::end(cases), [&](const Case& c) {
                return c.command == entry.command;
            });
            const bool elsewhere = // in the test below
                entry.command == command_quit ||
                (entry.command >= command_theme_system && entry.command <= command_theme_dark);
            EXPECT_TRUE(known || elsewhere || entry.text == nullptr) << entry.command;
        }
    }
    for (const Case& one : cases) {
        SCOPED_TRACE(one.command);
        const std::vector<WORD> keys = keys_of(static_cast<WORD>(one.command));
        for (const bool by_menu : {false, true}) {
            if (!by_menu && keys.empty())
                continue;
            viewer.to_front();
            one.prepare();
            if (by_menu) {
                ASSERT_TRUE(
                    menus_of_program.choose(viewer, static_cast<UINT>(one.command), one.happens));
            } else {
                press(keys);
                ASSERT_TRUE(eventually(one.happens));
            }
            one.then();
        }
    }
}

TEST(ViewerByKeyboard, ChoosesColoursAndEnds) {
    TempFolder folder;
    const Menus menus_of_program;
    const std::string picture = saved(folder, "in.bmp", picture_of(9, 9));
    for (const int theme : {2, 1, 0}) {
        Program viewer(picture, "Theme=" + std::to_string((theme + 1) % 3) + "\r\n");
        const auto ended = [&] {
            return WaitForSingleObject(viewer.process(), 0) == WAIT_OBJECT_0;
        };
        viewer.to_front();
        EXPECT_TRUE(menus_of_program.choose(viewer, static_cast<UINT>(command_theme_system + theme),
                                            [&] { return !viewer.in_menu(); }));
        if (theme == 0)
            press({VK_MENU, VK_F4});
        else
            EXPECT_TRUE(menus_of_program.choose(viewer, command_quit, ended));
        EXPECT_TRUE(viewer.has_ended());
        EXPECT_NE(viewer.settings().find("Theme=" + std::to_string(theme)), std::string::npos);
    }
}

TEST(ViewerByKeyboard, KnowsFurtherKeys) {
    TempFolder folder;
    saved(folder, "b.bmp", picture_of(40, 30));
    saved(folder, "c.bmp", picture_of(40, 30));
    Program viewer(saved(folder, "a.bmp", picture_of(40, 30)));
    viewer.to_front();
    const auto reads = [&](const char* text) {
        return eventually([&] { return viewer.status(2) == text; });
    };
    press({VK_NEXT});
    EXPECT_TRUE(viewer.wait_for("ready"));
    EXPECT_EQ(viewer.title(), "b.bmp - KirvoView");
    press({VK_PRIOR});
    EXPECT_TRUE(viewer.wait_for("ready"));
    EXPECT_EQ(viewer.title(), "a.bmp - KirvoView");
    for (const WORD plus : {VK_ADD, VK_OEM_PLUS}) {
        press({plus});
        EXPECT_TRUE(reads("125 %"));
        press({static_cast<WORD>(plus == VK_ADD ? VK_SUBTRACT : VK_OEM_MINUS)});
        EXPECT_TRUE(reads("100 %"));
    }
    press({VK_MENU, VK_RETURN});
    EXPECT_TRUE(
        eventually([&] { return (GetWindowLongA(viewer.window(), GWL_STYLE) & WS_CAPTION) == 0; }));
    press({VK_ESCAPE});
    EXPECT_TRUE(
        eventually([&] { return (GetWindowLongA(viewer.window(), GWL_STYLE) & WS_CAPTION) != 0; }));
    viewer.command(viewer.effect("negative"));
    ASSERT_TRUE(viewer.wait_for("says: Negative: "));
    viewer.command(command_undo);
    press({VK_CONTROL, VK_SHIFT, 'Z'});
    EXPECT_TRUE(eventually([&] { return viewer.title() == "a.bmp* - KirvoView"; }));
}

TEST(ViewerByKeyboard, GoesToTheCodeAndBack) {
    TempFolder folder;
    Program viewer(saved(folder, "in.bmp", picture_of(9, 9)), "Code=1\r\n");
    viewer.to_front();
    HWND list = FindWindowExA(viewer.window(), nullptr, "ComboBox", nullptr);
    press({VK_F6});
    EXPECT_TRUE(gets_focus(viewer, list));
    press({VK_DOWN});
    EXPECT_TRUE(eventually([&] { return SendMessageA(list, CB_GETCURSEL, 0, 0) == 1; }));
    press({VK_TAB});
    EXPECT_TRUE(gets_focus(viewer, viewer.code()));
    press({VK_TAB});
    EXPECT_TRUE(gets_focus(viewer, list));
    press({VK_F6});
    EXPECT_TRUE(gets_focus(viewer, viewer.window()));
    press({VK_F6});
    EXPECT_TRUE(gets_focus(viewer, list));
    press({VK_ESCAPE});
    EXPECT_TRUE(gets_focus(viewer, viewer.window()));
}

TEST(ViewerByKeyboard, TakesKeysAndMenusInTheHistogramToo) {
    TempFolder folder;
    saved(folder, "b.bmp", picture_of(9, 9));
    Program viewer(saved(folder, "a.bmp", picture_of(9, 9)), "Histogram=1\r\n");
    HWND histogram = viewer.popup("KirvoView.Histogram");
    ASSERT_NE(histogram, nullptr);
    const auto enter = [&] {
        SetForegroundWindow(histogram);
        EXPECT_TRUE(gets_focus(viewer, histogram));
    };
    enter();
    press({VK_RIGHT});
    EXPECT_TRUE(viewer.wait_for("ready"));
    EXPECT_EQ(viewer.title(), "b.bmp - KirvoView");
    enter();
    press({VK_MENU, 'V'});
    EXPECT_TRUE(eventually([&] { return viewer.in_menu(); }));
    press({VK_ESCAPE});
    press({VK_ESCAPE});
    EXPECT_TRUE(eventually([&] { return !viewer.in_menu(); }));
    enter();
    press({VK_ESCAPE});
    EXPECT_TRUE(viewer.gone(histogram));
    EXPECT_TRUE(viewer.ends());
}
