#include "commands.hpp"

#include "text.hpp"

#include <string>

const std::vector<Menu>& menus() {
    static const std::vector<Menu> all = {
        {L"&File",
         {{L"&Open\u2026", command_open, FCONTROL, 'O'},
          {L"&Save", command_save, FCONTROL, 'S'},
          {L"Save &as\u2026", command_save_as, FCONTROL | FSHIFT, 'S'},
          {nullptr},
          {L"&Next in the folder", command_next, 0, VK_RIGHT},
          {L"Pre&vious in the folder", command_previous, 0, VK_LEFT},
          {L"A&bandon", command_abandon, 0, VK_ESCAPE},
          {nullptr},
          {L"&Information", command_information, FCONTROL, 'I'},
          {L"&Print\u2026", command_print, FCONTROL, 'P'},
          {nullptr},
          {L"E&xit", command_quit, FALT, VK_F4}}},
        {L"&Edit",
         {{L"&Undo", command_undo, FCONTROL, 'Z'},
          {L"&Redo", command_redo, FCONTROL, 'Y'},
          {L"Repeat the &last effect", command_repeat, 0, VK_F4},
          {nullptr},
          {L"&Copy", command_copy, FCONTROL, 'C'},
          {L"&Paste", command_paste, FCONTROL, 'V'},
          {nullptr},
          {L"Select &all", command_select_all, FCONTROL, 'A'},
          {L"&Select a rectangle\u2026", command_select, FCONTROL, 'R'},
          {L"Select &nothing", command_select_none, FCONTROL, 'D'},
          {nullptr},
          {L"Copy the steps as co&de", command_copy_code, FCONTROL | FSHIFT, 'C'},
          {L"Copy the steps as a co&mmand line", command_copy_line, FCONTROL | FSHIFT, 'L'}}},
        {L"&View",
         {{L"&Fit", command_fit, FCONTROL, '0'},
          {L"&One to one", command_one_to_one, FCONTROL, '1'},
          {L"Zoom &in", command_zoom_in, FCONTROL, VK_OEM_PLUS},
          {L"Zoom o&ut", command_zoom_out, FCONTROL, VK_OEM_MINUS},
          {L"Fit the &window to the picture", command_fit_window, FCONTROL, 'W'},
          {L"Full &screen", command_full_screen, 0, VK_F11},
          {nullptr},
          {L"&Histogram", command_histogram, FCONTROL, 'H'},
          {L"&Code of the steps", command_code, 0, VK_F9},
          {nullptr},
          {L"Colours as the s&ystem", command_theme_system},
          {L"&Light colours", command_theme_light},
          {L"&Dark colours", command_theme_dark}}},
        {L"&Help",
         {{L"&Keys and mouse", command_keys, 0, VK_F1}, {L"&About KirvoView", command_about}}},
    };
    return all;
}

const std::vector<const wchar_t*>& menu_titles() {
    static const std::vector<const wchar_t*> all = [] {
        std::vector<const wchar_t*> titles;
        for (const Menu& menu : menus())
            titles.push_back(menu.title);
        titles.insert(titles.end() - 1, effects_title); // before help
        return titles;
    }();
    return all;
}

namespace {

const std::vector<ACCEL>& further_keys() {
    static const std::vector<ACCEL> all = {
        {FVIRTKEY | FCONTROL, VK_ADD, command_zoom_in},
        {FVIRTKEY | FCONTROL, VK_SUBTRACT, command_zoom_out},
        {FVIRTKEY, VK_ADD, command_zoom_in},
        {FVIRTKEY, VK_SUBTRACT, command_zoom_out},
        {FVIRTKEY, VK_OEM_PLUS, command_zoom_in},
        {FVIRTKEY, VK_OEM_MINUS, command_zoom_out},
        {FVIRTKEY, VK_NEXT, command_next},
        {FVIRTKEY, VK_PRIOR, command_previous},
        {FVIRTKEY | FCONTROL | FSHIFT, 'Z', command_redo},
        {FVIRTKEY | FALT, VK_RETURN, command_full_screen},
    };
    return all;
}

} // namespace

HACCEL make_accelerators() {
    std::vector<ACCEL> all = further_keys();
    for (const Menu& menu : menus()) {
        for (const MenuEntry& entry : menu.entries) {
            if (entry.key != 0)
                all.push_back(
                    {static_cast<BYTE>(FVIRTKEY | entry.flags), entry.key, entry.command});
        }
    }
    return CreateAcceleratorTableW(all.data(), static_cast<int>(all.size()));
}

std::wstring key_name(const MenuEntry& entry) {
    if (entry.key == 0)
        return L"";
    std::wstring name;
    name += entry.flags & FCONTROL ? L"Ctrl+" : L"";
    name += entry.flags & FSHIFT ? L"Shift+" : L"";
    name += entry.flags & FALT ? L"Alt+" : L"";
    switch (entry.key) {
    case VK_RIGHT:
        return name + L"Right";
    case VK_LEFT:
        return name + L"Left";
    case VK_ESCAPE:
        return name + L"Esc";
    case VK_OEM_PLUS:
        return name + L"+";
    case VK_OEM_MINUS:
        return name + L"-";
    default:
        break;
    }
    if (entry.key >= VK_F1 && entry.key <= VK_F12)
        return name + L"F" + digits(entry.key - VK_F1 + 1);
    return name + static_cast<wchar_t>(entry.key);
}
