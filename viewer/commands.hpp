// Everything that the window can be told to do.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

enum Command : WORD {
    command_open = 100,
    command_save,
    command_save_as,
    command_print,
    command_quit,
    command_next,
    command_previous,
    command_undo,
    command_redo,
    command_repeat,
    command_copy,
    command_paste,
    command_select_all,
    command_select_none,
    command_select,
    command_fit,
    command_one_to_one,
    command_zoom_in,
    command_zoom_out,
    command_fit_window,
    command_full_screen,
    command_histogram,
    command_code,
    command_information,
    command_copy_code,
    command_copy_line,
    command_theme_system,
    command_theme_light,
    command_theme_dark,
    command_keys,
    command_about,
    command_abandon,
    command_progress,     // from the library, not from a person
    command_recent = 300, // and the eight behind it
    command_effect = 400, // and as many as the catalogue has
};
constexpr WORD recent_count = 9;

struct MenuEntry {
    const wchar_t* text; // null: a line between
    WORD command = 0;
    BYTE flags = 0; // of an accelerator: FCONTROL, FSHIFT, FALT
    WORD key = 0;
};

struct Menu {
    const wchar_t* title;
    std::vector<MenuEntry> entries;
};

constexpr const wchar_t* effects_title = L"Effe&cts";

// The menus from the left, without effects and recent files.
const std::vector<Menu>& menus();
// The titles of the bar, effects among them.
const std::vector<const wchar_t*>& menu_titles();
HACCEL make_accelerators();
// "Ctrl+Shift+S"
std::wstring key_name(const MenuEntry& entry);
