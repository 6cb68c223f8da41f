#include "running/bar.hpp"

#include "system/settings.hpp"
#include "system/terminal.hpp"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdio>

namespace {

constexpr int label_width = 20, widest_bar = 30;
// Work that is done sooner shows no bar.
constexpr std::chrono::milliseconds patience{500};
constexpr std::chrono::milliseconds between_drawings{50};

using Clock = std::chrono::steady_clock;
Clock::time_point begun = Clock::now(), drawn_at;
std::atomic<bool> drawn;

std::string time_left(double seconds) {
    char text[32];
    const auto whole = static_cast<long>(std::min(std::ceil(seconds), 359999.0));
    if (whole < 60)
        std::snprintf(text, sizeof text, "%ld s left", whole);
    else
        std::snprintf(text, sizeof text, "%ld:%02ld min left", whole / 60, whole % 60);
    return text;
}

// At most so many columns, a letter each; a letter of several bytes stays whole.
std::string cut(const std::string& text, int columns) {
    std::string result;
    for (const char c : text) {
        if ((c & 0xC0) != 0x80 && columns-- == 0)
            return result;
        result += c;
    }
    return result + std::string(static_cast<size_t>(std::max(columns, 0)), ' ');
}

} // namespace

void start_bar() {
    begun = Clock::now();
    drawn_at = {};
}

bool bar_is_wanted() {
    static const bool terminal = is_terminal(stderr);
    return terminal && !settings.quiet;
}

void draw_bar(const std::string& label, double share) {
    const auto now = Clock::now();
    if (!bar_is_wanted() || share <= 0 || now - begun < patience ||
        now - drawn_at < between_drawings)
        return;
    drawn_at = now;
    const double seconds = std::chrono::duration<double>(now - begun).count();
    // The rest of the line has at most 30 columns; a line that wraps could not be drawn over.
    const int room = std::clamp(terminal_width() - label_width - 30, 0, widest_bar);
    const auto filled = static_cast<size_t>(share * room);
    std::fprintf(stderr, "\r%s [%s%s] %3d%% %-14s", cut(label, label_width).c_str(),
                 std::string(filled, '#').c_str(),
                 std::string(static_cast<size_t>(room) - filled, '.').c_str(),
                 static_cast<int>(share * 100), time_left(seconds * (1 - share) / share).c_str());
    std::fflush(stderr);
    drawn = true;
}

void clear_bar() {
    if (drawn)
        std::fprintf(stderr, "\r%*s\r", std::min(terminal_width() - 1, label_width + 60), "");
    drawn = false;
}

bool bar_is_drawn() { return drawn; }
