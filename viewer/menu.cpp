// The menu bar, and which of its commands can be given now.
#include "commands.hpp"
#include "effects/presentation.hpp"
#include "effects_menu.hpp"
#include "text.hpp"
#include "viewer.hpp"

#include <string_view>

namespace {

HMENU make_popup(const Menu& menu) {
    HMENU popup = CreatePopupMenu();
    for (const MenuEntry& entry : menu.entries) {
        if (entry.text == nullptr) {
            AppendMenuW(popup, MF_SEPARATOR, 0, nullptr);
            continue;
        }
        const std::wstring key = key_name(entry);
        const std::wstring text = entry.text + (key.empty() ? L"" : L"\t" + key);
        AppendMenuW(popup, MF_STRING, entry.command, text.c_str());
    }
    return popup;
}

bool is_possible(const Viewer& viewer, WORD command) {
    const bool picture = viewer.history.now() != nullptr, free = !viewer.working;
    switch (command) {
    case command_open:
    case command_paste:
        return free;
    case command_save:
    case command_save_as:
    case command_print:
    case command_copy:
    case command_select:
        return free && picture;
    case command_next:
    case command_previous:
        return free && !viewer.path.empty();
    case command_undo:
        return free && viewer.history.can_undo();
    case command_redo:
        return free && viewer.history.can_redo();
    case command_repeat:
    case command_copy_code:
    case command_copy_line:
        return free && !viewer.history.steps().empty();
    case command_select_all:
    case command_fit:
    case command_one_to_one:
    case command_zoom_in:
    case command_zoom_out:
    case command_information:
        return picture;
    case command_fit_window:
        return free && picture && !viewer.full_screen;
    case command_select_none:
        return viewer.view.selection().has_value();
    case command_abandon:
        return viewer.working || viewer.full_screen || viewer.view.selection();
    default:
        return command < command_effect || (free && picture);
    }
}

bool is_chosen(const Viewer& viewer, WORD command) {
    switch (command) {
    case command_fit:
        return viewer.history.now() && viewer.view.is_fitted();
    case command_one_to_one:
        return viewer.history.now() && viewer.view.scale() == 1;
    case command_full_screen:
        return viewer.full_screen;
    case command_histogram:
        return viewer.histogram.is_open();
    case command_code:
        return viewer.code.is_visible();
    case command_theme_system:
    case command_theme_light:
    case command_theme_dark:
        return command - command_theme_system == static_cast<int>(viewer.options.theme);
    default:
        return false;
    }
}

void list_recent(const Viewer& viewer, HMENU popup) {
    for (WORD i = 0; i < recent_count; ++i)
        DeleteMenu(popup, command_recent + i, MF_BYCOMMAND);
    const int before = GetMenuItemCount(popup) - 2; // the way out and the line above it
    for (size_t i = 0; i < viewer.options.recent.size(); ++i) {
        std::wstring name = viewer.options.recent[i];
        for (size_t at = 0; (at = name.find(L'&', at)) != std::wstring::npos; at += 2)
            name.insert(at, 1, L'&');
        InsertMenuW(popup, static_cast<UINT>(before) + static_cast<UINT>(i),
                    MF_BYPOSITION | MF_STRING, command_recent + i,
                    (L"&" + digits(i + 1) + L" " + name).c_str());
    }
}

void name_step(HMENU popup, WORD command, const wchar_t* what, bool possible,
               const std::string& option, const wchar_t* key) {
    const std::wstring text =
        what + (possible ? L" " + wide(title_of(option)) : std::wstring()) + L"\t" + key;
    ModifyMenuW(popup, command, MF_BYCOMMAND | MF_STRING, command, text.c_str());
}

} // namespace

HMENU make_menu() {
    HMENU bar = CreateMenu();
    auto menu = menus().begin();
    for (const wchar_t* title : menu_titles()) {
        HMENU popup =
            title == std::wstring_view(effects_title) ? make_effects_menu() : make_popup(*menu++);
        AppendMenuW(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(popup), title);
    }
    return bar;
}

void refresh_menu(Viewer& viewer, HMENU popup) {
    if (GetMenuState(popup, command_quit, MF_BYCOMMAND) != static_cast<UINT>(-1) &&
        GetMenuItemID(popup, 0) == command_open)
        list_recent(viewer, popup);
    if (GetMenuItemID(popup, 0) == command_undo) {
        const History& history = viewer.history;
        name_step(popup, command_undo, L"&Undo", history.can_undo(),
                  history.can_undo() ? history.next_undo() : "", L"Ctrl+Z");
        name_step(popup, command_redo, L"&Redo", history.can_redo(),
                  history.can_redo() ? history.next_redo() : "", L"Ctrl+Y");
    }
    for (int i = 0; i < GetMenuItemCount(popup); ++i) {
        const UINT command = GetMenuItemID(popup, i);
        if (command == 0 || command == static_cast<UINT>(-1))
            continue; // a line, a menu
        const auto word = static_cast<WORD>(command);
        EnableMenuItem(popup, command,
                       MF_BYCOMMAND | (is_possible(viewer, word) ? MF_ENABLED : MF_GRAYED));
        CheckMenuItem(popup, command,
                      MF_BYCOMMAND | (is_chosen(viewer, word) ? MF_CHECKED : MF_UNCHECKED));
    }
}

bool can_act(const Viewer& viewer, WORD command) { return is_possible(viewer, command); }
