// The program's main window and what belongs to it. What it does lies in files of their own:
// opening.cpp, saving.cpp, effect_dialog.cpp, ...
#pragma once

#include "code_pane.hpp"
#include "histogram.hpp"
#include "history.hpp"
#include "pictures/known.hpp"
#include "settings.hpp"
#include "theme.hpp"
#include "view.hpp"
#include "worker.hpp"

#include <atomic>

struct Viewer {
    HWND window = nullptr, status = nullptr;
    HMENU menu = nullptr; // also while full screen hides it
    View view;
    Worker worker;
    History history;
    Options options;
    CodePane code;
    HistogramWindow histogram;
    HFONT font = nullptr;

    std::wstring path;             // of the picture; empty for one without a file
    std::shared_ptr<Known> known;  // of its file
    std::wstring origin;           // the file that it came from: another one once it is saved as
    std::shared_ptr<Known> source; // what goes along from there
    std::wstring title;            // what the picture is called
    bool working = false;          // on the picture: it cannot be changed meanwhile
    std::atomic<bool> abandoned = false;
    bool full_screen = false;

    // Work on the picture; `done` follows success only, what failed or was abandoned is told in the
    // status bar.
    void work(const std::string& what, Worker::Work work, std::function<void()> done);
    void begin_work(const std::string& what);
    void end_work();

    void picture_changed(); // the history stands elsewhere
    void say(const std::string& words);
    void refresh_status();
    void show_pixel(std::optional<POINT> pixel);
    void refresh_title();
};

// frame.cpp
bool create_window(Viewer& viewer, int show);
void lay_out(Viewer& viewer);
void toggle_full_screen(Viewer& viewer);
void fit_window(Viewer& viewer);
// menu.cpp
HMENU make_menu();
void refresh_menu(Viewer& viewer, HMENU popup);
bool can_act(const Viewer& viewer, WORD command);
// menu_bar.cpp: dark or the system's; the messages of a dark one, false for every other
void colour_menu_bar(Viewer& viewer);
bool answer_menu_bar(Viewer& viewer, UINT message, WPARAM wparam, LPARAM lparam, LRESULT& answer);
// actions.cpp
void act(Viewer& viewer, WORD command);
// opening.cpp: false where the picture that is there shall be kept
bool may_leave_picture(Viewer& viewer);
void ask_and_open(Viewer& viewer);
void open_file(Viewer& viewer, const std::wstring& name);
void begin_picture(Viewer& viewer, SharedImage image, std::shared_ptr<Known> known,
                   const std::wstring& path, const std::wstring& title);
// folder.cpp: the picture so many places on in the folder; empty where there is none
std::wstring neighbour(const std::wstring& path, int distance);
// saving.cpp
bool save(Viewer& viewer);
bool save_as(Viewer& viewer);
// jpeg_dialog.cpp: none where the person has thought better of it
std::optional<uint32_t> ask_jpeg_quality(Viewer& viewer);
// clipboard.cpp
void copy_picture(Viewer& viewer);
void paste_picture(Viewer& viewer);
bool copy_text(HWND window, const std::wstring& text);
// printing.cpp
void print_picture(Viewer& viewer);
// effect_dialog.cpp
void ask_and_apply(Viewer& viewer, const struct Effect& effect);
void apply_step(Viewer& viewer, Step step);
void repeat_last(Viewer& viewer);
// select_dialog.cpp
void ask_selection(Viewer& viewer);
// keys.cpp
void show_keys(Viewer& viewer);
// information.cpp
void show_information(Viewer& viewer);
void show_text(HWND parent, const std::wstring& title, const std::wstring& text);
// status.cpp
HWND create_status(HWND parent);
void lay_out_status(HWND status);
