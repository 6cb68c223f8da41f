// What all parts of the program use: work in the background, words in the status bar.
#include "viewer.hpp"

#include "text.hpp"
#include "trace.hpp"

#include <commctrl.h>

#include <cstdio>

void Viewer::begin_work(const std::string& what) {
    working = true;
    abandoned = false;
    say(what + "\u2026");
    SetCursor(LoadCursorW(nullptr, IDC_APPSTARTING));
}

void Viewer::end_work() {
    working = false;
    SetCursor(LoadCursorW(nullptr, IDC_ARROW));
}

void Viewer::work(const std::string& what, Worker::Work work, std::function<void()> done) {
    begin_work(what);
    const auto clock = std::make_shared<Stopwatch>();
    worker.post(Worker::Kind::picture, std::move(work),
                [=, this, done = std::move(done)](const std::string& error) {
                    end_work();
                    if (abandoned && error.empty())
                        return say(what + ": abandoned");
                    trace(what + (error.empty() ? ": " + clock->text() : " failed: " + error));
                    if (!error.empty())
                        return say(error);
                    done();
                    say(what + ": " + clock->text());
                });
}

void Viewer::picture_changed() {
    view.show(history.now());
    code.show(history.steps());
    histogram.show(history.now());
    refresh_status();
    refresh_title();
}

void Viewer::say(const std::string& words) {
    trace("says: " + words);
    SendMessageW(status, SB_SETTEXTW, 0, reinterpret_cast<LPARAM>(wide(words).c_str()));
}

void Viewer::refresh_status() {
    const auto set = [&](WPARAM part, const std::string& text) {
        SendMessageW(status, SB_SETTEXTW, part, reinterpret_cast<LPARAM>(wide(text).c_str()));
    };
    const SharedImage image = history.now();
    if (!image) {
        for (const WPARAM part : {1, 2, 4})
            set(part, "");
        return;
    }
    std::string size = std::to_string(image->width()) + " \u00d7 " +
                       std::to_string(image->height()) + ", " + std::to_string(image->bits()) +
                       " bits";
    if (const auto& selected = view.selection())
        size = std::to_string(selected->right - selected->left) + " \u00d7 " +
               std::to_string(selected->bottom - selected->top) + " of " + size;
    set(1, size);
    char text[64];
    std::snprintf(text, sizeof text, "%.4g %%", view.scale() * 100);
    set(2, text);
    const auto megabytes = [](size_t bytes) {
        return std::to_string((bytes + (1 << 20) - 1) >> 20);
    };
    set(4, std::to_string(history.undo_count()) + " to undo, " + megabytes(history.bytes()) +
               " of " + megabytes(history.budget()) + " MB");
}

// While the library works for the worker, the pixel stays without its colour.
void Viewer::show_pixel(std::optional<POINT> pixel) {
    std::string text;
    if (const SharedImage image = history.now();
        pixel && image && pixel->x < image->width() && pixel->y < image->height()) {
        text = std::to_string(pixel->x) + ", " + std::to_string(pixel->y);
        uint32_t colour;
        const Worker::Turn turn(worker);
        if (turn && DibGetPixelColor(image->handle(), pixel->x, pixel->y, &colour) == KIRVO_OK) {
            char digits[48];
            std::snprintf(
                digits, sizeof digits, ": %u %u %u, #%02X%02X%02X",
                static_cast<unsigned>(colour & 255), static_cast<unsigned>(colour >> 8 & 255),
                static_cast<unsigned>(colour >> 16 & 255), static_cast<unsigned>(colour & 255),
                static_cast<unsigned>(colour >> 8 & 255),
                static_cast<unsigned>(colour >> 16 & 255));
            text += digits;
        }
    }
    SendMessageW(status, SB_SETTEXTW, 3, reinterpret_cast<LPARAM>(wide(text).c_str()));
}

void Viewer::refresh_title() {
    const std::wstring mark = history.changed() ? L"*" : L"";
    SetWindowTextW(view.window(), title.c_str()); // what a screen reader says of the picture
    SetWindowTextW(window, (title.empty() ? L"KirvoView" : title + mark + L" - KirvoView").c_str());
}
