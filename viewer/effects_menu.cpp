#include "effects_menu.hpp"

#include "commands.hpp"
#include "text.hpp"
#include "trace.hpp"

#include <map>

namespace {

// Grouped as in the reference. An effect that is not named here gets into the last group.
const std::vector<std::pair<const wchar_t*, std::vector<std::string>>>& groups() {
    static const std::vector<std::pair<const wchar_t*, std::vector<std::string>>> all = {
        {L"&Copy and compose", {"--crop", "--compose", "--key", "--paste", "--interleave"}},
        {L"&Turn and zoom", {"--resize", "--fit", "--rotate", "--flip", "--mirror"}},
        {L"T&one",
         {"--brightness", "--contrast", "--gamma", "--tone", "--posterise", "--negative", "--mono",
          "--halftone", "--swap-channels", "--channel"}},
        {L"&Hue", {"--hue"}},
        {L"&Filters",
         {"--blur", "--sharpen", "--sharpen-more", "--edges", "--kernel", "--brush", "--keep"}},
        {L"&Patterns, mosaics and histograms",
         {"--mosaic", "--mosaic-average", "--dilate", "--erode", "--xor", "--histogram"}},
        {L"Co&lours", {"--palette", "--depth", "--bits"}},
        {L"&Further", {}},
    };
    return all;
}

size_t group_of(const std::string& option) {
    for (size_t i = 0; i < groups().size(); ++i) {
        for (const std::string& name : groups()[i].second) {
            if (name == option)
                return i;
        }
    }
    return groups().size() - 1;
}

// Marks the first letter that no other title of the menu has for its key.
std::wstring with_key(const std::wstring& title, std::wstring& taken) {
    for (size_t i = 0; i < title.size(); ++i) {
        const wchar_t letter = title[i] | 32; // small
        if (letter >= L'a' && letter <= L'z' && taken.find(letter) == std::wstring::npos) {
            taken += letter;
            return title.substr(0, i) + L"&" + title.substr(i);
        }
    }
    return title;
}

} // namespace

std::wstring title_of(const std::string& option) {
    std::wstring title = wide(option.substr(2));
    title[0] = static_cast<wchar_t>(title[0] - L'a' + L'A');
    for (wchar_t& character : title)
        character = character == L'-' ? L' ' : character;
    return title;
}

HMENU make_effects_menu() {
    std::vector<HMENU> popups;
    std::vector<std::wstring> taken(groups().size());
    for (size_t i = 0; i < groups().size(); ++i)
        popups.push_back(CreatePopupMenu());
    for (size_t i = 0; i < effects().size(); ++i) {
        const Effect& effect = effects()[i];
        trace("command " + std::to_string(command_effect + i) + " is " + effect.option);
        const std::wstring text =
            with_key(title_of(effect.option), taken[group_of(effect.option)]) +
            (effect.parameters.empty() ? L"" : L"\u2026");
        AppendMenuW(popups[group_of(effect.option)], MF_STRING, command_effect + i, text.c_str());
    }
    HMENU menu = CreatePopupMenu();
    for (size_t i = 0; i < popups.size(); ++i) {
        if (GetMenuItemCount(popups[i]) > 0)
            AppendMenuW(menu, MF_POPUP, reinterpret_cast<UINT_PTR>(popups[i]), groups()[i].first);
        else
            DestroyMenu(popups[i]);
    }
    return menu;
}

const Effect* effect_of(WORD command) {
    const size_t place = static_cast<size_t>(command) - command_effect;
    return command >= command_effect && place < effects().size() ? &effects()[place] : nullptr;
}
