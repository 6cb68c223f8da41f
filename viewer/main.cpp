// KirvoView [--trace FILE] [PICTURE]
#include "commands.hpp"
#include "text.hpp"
#include "trace.hpp"
#include "viewer.hpp"

#include <commctrl.h>
#include <shellapi.h>

#include <cstdlib>

// The library's own handler would put the exception's name into words, which nobody reads here and
// which takes an eighth of the program.
namespace __gnu_cxx {
void __verbose_terminate_handler() { std::abort(); }
} // namespace __gnu_cxx

namespace {

// The picture's name; empty where there is none.
std::wstring read_command_line() {
    int count = 0;
    wchar_t** words = CommandLineToArgvW(GetCommandLineW(), &count);
    std::wstring picture;
    for (int i = 1; i < count; ++i) {
        if (words[i] == std::wstring(L"--trace") && i + 1 < count)
            open_trace(words[++i]);
        else
            picture = words[i];
    }
    LocalFree(words);
    return picture;
}

// In the code, keys belong to its controls; F6 leads there and back, function keys hold everywhere.
bool is_command(const Viewer& viewer, const MSG& message) {
    if (GetAncestor(message.hwnd, GA_ROOTOWNER) != viewer.window)
        return false;
    if (message.hwnd == viewer.histogram.window())
        return message.message == WM_KEYDOWN && message.wParam != VK_ESCAPE; // which closes it
    const bool function_key = message.wParam >= VK_F1 && message.wParam <= VK_F12;
    return !viewer.code.has_focus() || message.message == WM_SYSKEYDOWN || function_key;
}

bool moves_focus(Viewer& viewer, const MSG& message) {
    if (message.message != WM_KEYDOWN || !viewer.code.is_visible() ||
        GetAncestor(message.hwnd, GA_ROOT) != viewer.window)
        return false;
    if (message.wParam == VK_TAB && viewer.code.has_focus()) {
        viewer.code.take_focus(); // from the list to the code and back
        return true;
    }
    if (message.wParam != VK_F6 && !(message.wParam == VK_ESCAPE && viewer.code.has_focus()))
        return false;
    if (viewer.code.has_focus())
        SetFocus(viewer.window);
    else
        viewer.code.take_focus();
    return true;
}

int run(Viewer& viewer) {
    HACCEL keys = make_accelerators();
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        if (moves_focus(viewer, message) ||
            (is_command(viewer, message) && TranslateAcceleratorW(viewer.window, keys, &message)))
            continue;
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    DestroyAcceleratorTable(keys);
    return static_cast<int>(message.wParam);
}

} // namespace

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR, int show) {
    const std::wstring picture = read_command_line();
    trace("started");
    INITCOMMONCONTROLSEX controls = {sizeof controls, ICC_BAR_CLASSES | ICC_STANDARD_CLASSES};
    InitCommonControlsEx(&controls);
    static Viewer viewer;
    viewer.options = read_options();
    theme::choose(viewer.options.theme);
    if (!create_window(viewer, show))
        return 1;
    if (!picture.empty())
        open_file(viewer, picture);
    return run(viewer);
}
