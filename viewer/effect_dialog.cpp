// An effect's parameters asked for, with a look at what they do; and effects applied.
#include "commands.hpp"
#include "dialog.hpp"
#include "effect.hpp"
#include "effects/presentation.hpp"
#include "effects_menu.hpp"
#include "look.hpp"
#include "progress.hpp"
#include "system/errors.hpp"
#include "text.hpp"
#include "viewer.hpp"

#include <commctrl.h>
#include <commdlg.h>

#include <algorithm>
#include <cstdio>

namespace {

using Kind = Parameter::Kind;

constexpr int width = 420, row_height = 34, first_row = 46;
enum { words = 90, value_id = 100, slider_id = 200, button_id = 300 };

class EffectDialog : public Dialog {
  public:
    EffectDialog(Viewer& viewer, const Effect& effect, std::optional<RECT> place)
        : viewer_(viewer), effect_(effect), look_(viewer) {
        step_.option = effect.option;
        step_.place = place;
    }
    const Step& step() const { return step_; }
    int height() const {
        return first_row + static_cast<int>(effect_.parameters.size()) * row_height + 84;
    }

  private:
    void fill() override {
        add(L"STATIC", wide(effect_.summary), SS_NOPREFIX, -1, 12, 12, width - 24, 30);
        const SharedImage image = viewer_.history.now();
        const RECT all = {0, 0, image->width(), image->height()};
        const auto values = first_values(effect_, viewer_.view.selection().value_or(all));
        int top = first_row;
        for (size_t i = 0; i < effect_.parameters.size(); ++i, top += row_height)
            add_row(static_cast<int>(i), effect_.parameters[i], wide(values[i]), top);
        add(L"STATIC", wide(effect_.ranges()), SS_NOPREFIX, words, 12, top + 2, width - 24, 36);
        add_buttons(width, top + 46);
        filled_ = true;
        changed();
    }

    void add_row(int i, const Parameter& parameter, const std::wstring& value, int top) {
        add_name(label(i), 12, top + 4, 90);
        if (has_words(parameter)) {
            HWND list = add(L"COMBOBOX", L"", WS_TABSTOP | WS_VSCROLL | CBS_DROPDOWNLIST,
                            value_id + i, 106, top, width - 118, 240);
            if (parameter.optional)
                SendMessageW(list, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(L""));
            for (const std::string& word : parameter.words)
                SendMessageW(list, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(wide(word).c_str()));
            const LRESULT found = SendMessageW(list, CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1),
                                               reinterpret_cast<LPARAM>(value.c_str()));
            SendMessageW(list, CB_SETCURSEL, static_cast<WPARAM>(std::max<LRESULT>(found, 0)), 0);
            return;
        }
        const auto range = slider(i);
        const bool chooser = parameter.kind == Kind::file || parameter.kind == Kind::colour;
        const int room = width - 118 - (chooser ? 36 : 0);
        add(L"EDIT", value, WS_TABSTOP | ES_AUTOHSCROLL, value_id + i, 106, top, range ? 70 : room,
            24);
        if (range) {
            HWND bar = add(TRACKBAR_CLASSW, label(i), WS_TABSTOP | TBS_NOTICKS, slider_id + i, 184,
                           top, width - 196, 26);
            SendMessageW(bar, TBM_SETRANGEMIN, FALSE, range->least);
            SendMessageW(bar, TBM_SETRANGEMAX, FALSE, range->most);
            follow(i);
        }
        if (chooser)
            add(L"BUTTON", L"\u2026", WS_TABSTOP, button_id + i, width - 44, top, 32, 24);
    }

    std::wstring label(int i) const { return wide(label_of(effect_, static_cast<size_t>(i))); }

    std::optional<SliderRange> slider(int i) const {
        const SharedImage image = viewer_.history.now();
        const auto range = slider_range(effect_.parameters[static_cast<size_t>(i)]);
        return range ? std::optional(range->within(image->width(), image->height())) : range;
    }

    // The slider stands where its number says.
    void follow(int i) {
        const auto range = slider(i);
        if (!range)
            return;
        const double place = wcstod(text(value_id + i).c_str(), nullptr) * range->steps;
        const double within = place > range->least ? std::min<double>(place, range->most)
                                                   : range->least; // also of what is no number
        SendMessageW(control(slider_id + i), TBM_SETPOS, TRUE, static_cast<LPARAM>(within));
    }

    void on_control(int id, int code) override {
        if (!filled_)
            return;
        if (id >= button_id && code == BN_CLICKED)
            return choose(id - button_id);
        if (id < value_id || id >= slider_id || (code != EN_CHANGE && code != CBN_SELCHANGE))
            return;
        if (code == EN_CHANGE && !sliding_)
            follow(id - value_id);
        changed();
    }

    void on_scroll(HWND bar) override {
        const int i = GetDlgCtrlID(bar) - slider_id;
        const auto range = slider(i);
        sliding_ = true; // the number follows the slider, not the other way round
        set_text(value_id + i,
                 wide(slider_text(static_cast<int>(SendMessageW(bar, TBM_GETPOS, 0, 0)), *range)));
        sliding_ = false;
    }

    void choose(int i) {
        const std::wstring chosen = effect_.parameters[static_cast<size_t>(i)].kind == Kind::file
                                        ? choose_file()
                                        : choose_colour();
        if (!chosen.empty())
            set_text(value_id + i, chosen);
    }

    std::wstring choose_file() {
        std::wstring name(32768, L'\0');
        OPENFILENAMEW dialog = {};
        dialog.lStructSize = sizeof dialog;
        dialog.hwndOwner = window();
        dialog.lpstrFile = name.data();
        dialog.nMaxFile = static_cast<DWORD>(name.size());
        dialog.Flags = OFN_EXPLORER | OFN_FILEMUSTEXIST | OFN_HIDEREADONLY | OFN_NOCHANGEDIR;
        return GetOpenFileNameW(&dialog) ? name.c_str() : L"";
    }

    std::wstring choose_colour() {
        static COLORREF own[16];
        CHOOSECOLORW dialog = {};
        dialog.lStructSize = sizeof dialog;
        dialog.hwndOwner = window();
        dialog.lpCustColors = own;
        dialog.Flags = CC_FULLOPEN | CC_RGBINIT;
        if (!ChooseColorW(&dialog))
            return L"";
        char text[8];
        std::snprintf(text, sizeof text, "%02X%02X%02X", GetRValue(dialog.rgbResult),
                      GetGValue(dialog.rgbResult), GetBValue(dialog.rgbResult));
        return wide(text);
    }

    // As on the command line: what is left out at the end needs no commas.
    std::string values() const {
        std::string all;
        for (size_t i = 0; i < effect_.parameters.size(); ++i)
            all += (i > 0 ? "," : "") + narrow(text(value_id + static_cast<int>(i)));
        while (!all.empty() && all.back() == ',')
            all.pop_back();
        return all;
    }

    void changed() {
        step_.values = values();
        const std::string error = mistake();
        tell(error);
        if (!error.empty()) {
            KillTimer(window(), 1);
            return look_.forget();
        }
        const auto failed = [this](const std::string& what) { tell(what); };
        look_.at_once(step_, failed);
        SetTimer(window(), 1, 250, nullptr);
    }

    std::string mistake() const {
        try {
            const Values values(effect_.option, effect_.parameters, step_.values);
            if (effect_.check != nullptr)
                effect_.check(values);
            return "";
        } catch (const UsageError& error) {
            return error.what();
        }
    }

    // Without the option's name, which belongs to the command line.
    void tell(const std::string& error) {
        const std::string option = effect_.option + std::string(": ");
        EnableWindow(control(IDOK), error.empty());
        set_text(words, wide(error.empty()               ? effect_.ranges()
                             : error.starts_with(option) ? error.substr(option.size())
                                                         : error));
    }

    void on_timer() override {
        KillTimer(window(), 1);
        look_.at_rest(step_, [this](const std::string& what) { tell(what); });
    }

    Viewer& viewer_;
    const Effect& effect_;
    Step step_;
    Look look_;
    bool filled_ = false, sliding_ = false;
};

} // namespace

void ask_and_apply(Viewer& viewer, const Effect& effect) {
    const std::optional<RECT> place =
        works_on_parts(effect) ? viewer.view.selection() : std::nullopt;
    if (effect.parameters.empty())
        return apply_step(viewer, {effect.option, "", place, {}});
    std::optional<Step> step;
    {
        EffectDialog dialog(viewer, effect, place);
        if (dialog.run(viewer.window, wide(title_of(effect.option)), width, dialog.height()))
            step = dialog.step();
    }
    if (step)
        apply_step(viewer, *step);
}

void apply_step(Viewer& viewer, Step step) {
    const SharedImage image = viewer.history.now();
    const auto done = std::make_shared<Step>(std::move(step));
    const auto result = std::make_shared<SharedImage>();
    HWND window = viewer.window;
    viewer.work(
        title_of(done->option),
        [=] {
            const Progress progress(window, command_progress);
            *result = shared(applied(*image, *done));
        },
        [=, &viewer] {
            viewer.history.add(*result, *done);
            viewer.picture_changed();
        });
}

// On what is selected now.
void repeat_last(Viewer& viewer) {
    Step step = viewer.history.steps().back();
    step.place =
        works_on_parts(*effect_called(step.option)) ? viewer.view.selection() : std::nullopt;
    apply_step(viewer, std::move(step));
}
