// What each command does.
#include "calls/code.hpp"
#include "commands.hpp"
#include "effects_menu.hpp"
#include "text.hpp"
#include "viewer.hpp"

namespace {

void abandon(Viewer& viewer) {
    if (viewer.full_screen) {
        toggle_full_screen(viewer);
    } else if (viewer.working) {
        viewer.abandoned = true;
        CancelSynchronousIo(viewer.worker.thread()); // of a file that keeps it waiting
    } else {
        viewer.view.select({});
    }
}

void toggle_histogram(Viewer& viewer) {
    if (viewer.histogram.is_open())
        return viewer.histogram.close();
    viewer.histogram.open(viewer.window, viewer.worker, [&] { viewer.options.histogram = false; });
    viewer.options.histogram = true;
    viewer.histogram.show(viewer.history.now());
}

void toggle_code(Viewer& viewer) {
    viewer.options.code = !viewer.options.code;
    viewer.code.set_visible(viewer.options.code);
    lay_out(viewer);
    if (!viewer.options.code)
        SetFocus(viewer.window);
}

void copy_command_line(Viewer& viewer) {
    const std::string name = viewer.origin.empty() ? "picture.bmp" : narrow(viewer.origin);
    try {
        const bool written =
            KirvoFilesAbilities(KirvoFilesFormatOf(name.c_str())) & KIRVO_FILES_WRITES;
        const std::string line =
            command_line_of(viewer.history.steps(), name, changed_name(name, written));
        if (copy_text(viewer.window, wide(line)))
            viewer.say("Copied: " + line);
    } catch (const Failure& failure) {
        viewer.say(failure.what());
    }
}

void show_about(Viewer& viewer) {
    const uint32_t version = GetVerKirvoDll();
    std::wstring text = L"KirvoView, a viewer on Kirvo.dll ";
    for (int shift = 24; shift >= 0; shift -= 8)
        text += digits(version >> shift & 255) + (shift > 0 ? L"." : L"");
    MessageBoxW(viewer.window, (text + L" and KirvoFiles.dll.\n\nMIT licence").c_str(),
                L"About KirvoView", MB_OK | MB_ICONINFORMATION);
}

void act_on_history(Viewer& viewer, WORD command) {
    if (command == command_undo)
        viewer.history.undo();
    else
        viewer.history.redo();
    viewer.picture_changed();
}

void choose_theme(Viewer& viewer, Theme theme) {
    viewer.options.theme = theme;
    theme::choose(theme);
    theme::apply(viewer.window);
    theme::apply(viewer.histogram.window());
    colour_menu_bar(viewer);
}

} // namespace

void act(Viewer& viewer, WORD command) {
    if (!can_act(viewer, command))
        return;
    if (command >= command_recent && command < command_recent + recent_count) {
        const size_t place = static_cast<size_t>(command) - command_recent;
        if (place < viewer.options.recent.size() && may_leave_picture(viewer))
            open_file(viewer, std::wstring(viewer.options.recent[place]));
        return;
    }
    if (const Effect* effect = effect_of(command)) {
        if (effect->name() == "histogram")
            return toggle_histogram(viewer);
        return ask_and_apply(viewer, *effect);
    }
    const SharedImage image = viewer.history.now();
    switch (command) {
    case command_open:
        return ask_and_open(viewer);
    case command_save:
        save(viewer);
        return;
    case command_save_as:
        save_as(viewer);
        return;
    case command_print:
        return print_picture(viewer);
    case command_quit:
        SendMessageW(viewer.window, WM_CLOSE, 0, 0);
        return;
    case command_next:
    case command_previous: {
        const std::wstring name = neighbour(viewer.path, command == command_next ? 1 : -1);
        if (!name.empty() && may_leave_picture(viewer))
            open_file(viewer, name);
        return;
    }
    case command_undo:
    case command_redo:
        return act_on_history(viewer, command);
    case command_repeat:
        return repeat_last(viewer);
    case command_copy:
        return copy_picture(viewer);
    case command_paste:
        return paste_picture(viewer);
    case command_select_all:
        return viewer.view.select(RECT{0, 0, image->width(), image->height()});
    case command_select_none:
        return viewer.view.select({});
    case command_select:
        return ask_selection(viewer);
    case command_fit:
        return viewer.view.fit();
    case command_one_to_one:
        return viewer.view.zoom_to(1);
    case command_zoom_in:
    case command_zoom_out:
        return viewer.view.zoom_in(command == command_zoom_in);
    case command_fit_window:
        return fit_window(viewer);
    case command_full_screen:
        return toggle_full_screen(viewer);
    case command_histogram:
        return toggle_histogram(viewer);
    case command_code:
        return toggle_code(viewer);
    case command_information:
        return show_information(viewer);
    case command_copy_code: {
        const std::wstring code = viewer.code.text();
        if (copy_text(viewer.window, code))
            viewer.say("Copied as code");
        return;
    }
    case command_copy_line:
        return copy_command_line(viewer);
    case command_theme_system:
    case command_theme_light:
    case command_theme_dark:
        return choose_theme(viewer, static_cast<Theme>(command - command_theme_system));
    case command_keys:
        return show_keys(viewer);
    case command_about:
        return show_about(viewer);
    case command_abandon:
        return abandon(viewer);
    default:
        return;
    }
}
