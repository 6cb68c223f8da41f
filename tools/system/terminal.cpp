#include "system/terminal.hpp"

#include "running/bar.hpp"

#include <cstdlib>
#include <cstring>

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#include <windows.h>
#else
#include <sys/ioctl.h>
#include <unistd.h>
#endif

namespace {

#ifdef _WIN32

HANDLE console(std::FILE* stream) {
    return reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream)));
}

// Older consoles show the codes instead of following them.
bool follows_codes(std::FILE* stream) {
    constexpr DWORD virtual_terminal = 4;
    DWORD mode = 0;
    return GetConsoleMode(console(stream), &mode) &&
           SetConsoleMode(console(stream), mode | virtual_terminal);
}

#else

bool follows_codes(std::FILE*) {
    const char* kind = std::getenv("TERM");
    return kind != nullptr && std::strcmp(kind, "dumb") != 0;
}

#endif

bool shows_colours(std::FILE* stream) {
    const char* refused = std::getenv("NO_COLOR");
    return (refused == nullptr || refused[0] == '\0') && is_terminal(stream) &&
           follows_codes(stream);
}

} // namespace

#ifdef _WIN32

static UINT console_before = 0;

void prepare_console() {
    console_before = GetConsoleOutputCP();
    if (console_before != 0 && console_before != CP_UTF8)
        SetConsoleOutputCP(CP_UTF8);
}

void restore_console() {
    if (console_before != 0 && console_before != CP_UTF8)
        SetConsoleOutputCP(console_before);
}

bool is_terminal(std::FILE* stream) { return _isatty(_fileno(stream)) != 0; }

int terminal_width() {
    CONSOLE_SCREEN_BUFFER_INFO info;
    return GetConsoleScreenBufferInfo(console(stderr), &info)
               ? info.srWindow.Right - info.srWindow.Left + 1
               : 80;
}

void make_binary(std::FILE* stream) { _setmode(_fileno(stream), _O_BINARY); }

#else

void prepare_console() {}
void restore_console() {}

bool is_terminal(std::FILE* stream) { return isatty(fileno(stream)) != 0; }

int terminal_width() {
    winsize size = {};
    return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

void make_binary(std::FILE*) {}

#endif

std::string styled(std::FILE* stream, Style style, const std::string& text) {
    static const char* const codes[] = {"\x1b[1m", "\x1b[36m", "\x1b[33m", "\x1b[1;31m"};
    return shows_colours(stream) ? codes[static_cast<int>(style)] + text + "\x1b[0m" : text;
}

static void tell(Style style, const std::string& message) {
    clear_bar();
    std::fflush(stdout);
    std::fprintf(stderr, "%s %s\n", styled(stderr, style, "kirvo:").c_str(), message.c_str());
}

void complain(const std::string& message) { tell(Style::error, message); }

void warn(const std::string& message) { tell(Style::warning, message); }
