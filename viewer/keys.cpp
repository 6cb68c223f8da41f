// Which key does what: those of the menus, then what stands in none.
#include "commands.hpp"
#include "viewer.hpp"

#include <algorithm>

namespace {

constexpr wchar_t further[] = L"Page Up, Page Down\tpictures of the folder\r\n"
                              L"Wheel, +, -\tzoom\r\n"
                              L"Double click\tfit, or one to one\r\n"
                              L"Drag; Up, Down, Shift+arrows\tmove the picture\r\n"
                              L"Shift+drag\tselect a rectangle\r\n"
                              L"B, held\tthe picture before the last effect\r\n"
                              L"F6\tto the code and back\r\n"
                              L"Ctrl+Shift+Z\tredo\r\n"
                              L"Alt+Enter\tfull screen\r\n"
                              L"Esc\tabandon; leave full screen; select nothing\r\n";

std::wstring plain(std::wstring text) {
    std::erase_if(text,
                  [](wchar_t character) { return character == L'&' || character == L'\u2026'; });
    return text;
}

} // namespace

void show_keys(Viewer& viewer) {
    std::wstring text;
    for (const Menu& menu : menus()) {
        for (const MenuEntry& entry : menu.entries) {
            if (entry.key != 0 && entry.command != command_abandon)
                text += key_name(entry) + L"\t" + plain(entry.text) + L"\r\n";
        }
    }
    show_text(viewer.window, L"Keys and mouse", text + further);
}
