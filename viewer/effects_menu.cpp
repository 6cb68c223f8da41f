#include "effects_menu.hpp"

#include "commands.hpp"
#include "effects/presentation.hpp"
#include "text.hpp"
#include "trace.hpp"

// A menu a group.
HMENU make_effects_menu() {
    const size_t count = effect_groups().size();
    std::vector<HMENU> popups;
    std::vector<std::wstring> taken(count);
    for (size_t i = 0; i < count; ++i)
        popups.push_back(CreatePopupMenu());
    for (size_t i = 0; i < effects().size(); ++i) {
        const Effect& effect = effects()[i];
        trace("command " + std::to_string(command_effect + i) + " is " + effect.option);
        const size_t group = group_of(effect);
        const std::wstring text = with_key(wide(title_of(effect.option)), taken[group]) +
                                  (effect.parameters.empty() ? L"" : L"\u2026");
        AppendMenuW(popups[group], MF_STRING, command_effect + i, text.c_str());
    }
    HMENU menu = CreatePopupMenu();
    std::wstring taken_by_groups;
    for (size_t i = 0; i < count; ++i) {
        if (GetMenuItemCount(popups[i]) > 0)
            AppendMenuW(menu, MF_POPUP, reinterpret_cast<UINT_PTR>(popups[i]),
                        with_key(wide(effect_groups()[i]), taken_by_groups).c_str());
        else
            DestroyMenu(popups[i]);
    }
    return menu;
}

const Effect* effect_of(WORD command) {
    const size_t place = static_cast<size_t>(command) - command_effect;
    return command >= command_effect && place < effects().size() ? &effects()[place] : nullptr;
}
