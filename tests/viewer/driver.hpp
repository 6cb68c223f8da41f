// The real program, driven as a person does it: by commands, keys, dialogs and the clipboard.
#pragma once

#include "support/dib_builder.hpp"
#include "support/temp_folder.hpp"

#include <string>
#include <vector>
#include <windows.h>

namespace kirvo_test {

class Viewer {
  public:
    static constexpr char in_app_data[] =
        "in %APPDATA%"; // settings that lie not beside the program
    // Names are in UTF-8. With its settings in a folder of its own.
    explicit Viewer(const std::string& picture = "", const std::string& settings = "");
    ~Viewer();
    Viewer(const Viewer&) = delete;
    Viewer& operator=(const Viewer&) = delete;

    HWND window() const { return window_; }
    HANDLE process() const { return process_.hProcess; }
    void command(int id) const; // without waiting
    void key(WPARAM key) const;
    void drop(const std::string& name) const;
    // Sends a message that points to a rectangle.
    void send(HWND window, UINT message, WPARAM wparam, const RECT& rectangle) const;
    // A command in the log: "command 412 is --flip".
    int effect(const std::string& option) const;
    int effect_count() const;

    // Waits until a line with these words has been written since the last wait; false after a while.
    bool wait_for(const std::string& words);
    bool wrote(const std::string& words);             // since then, without waiting
    const std::string& line() const { return line_; } // which was waited for
    HWND dialog(const std::string& title) const;      // null when none comes
    HWND dialog_now() const;                          // any that is open
    bool gone(HWND dialog) const;                     // false when it stays
    std::string title() const;
    bool ends();            // closes the window; false when the program goes on
    bool has_ended() const; // by itself

    // For keys that are pressed: the window has the focus; which has it now.
    void to_front() const;
    HWND focus() const;
    bool in_menu() const;
    HWND popup(const std::string& window_class,
               const std::string& title = "") const; // that is seen
    HWND code() const;                               // null where it is not shown
    std::string status(int part) const;

    std::vector<uint8_t> copied(); // the picture, by the clipboard
    std::string settings() const;
    const TempFolder& folder() const { return folder_; }

  private:
    GUITHREADINFO thread() const;
    std::string log(size_t from = 0) const;

    TempFolder folder_;
    PROCESS_INFORMATION process_ = {};
    HWND window_ = nullptr;
    size_t seen_ = 0;
    std::string line_;
};

// The header and the pixels, without what a block has behind them.
std::vector<uint8_t> picture_bytes(HGLOBAL dib);
std::vector<uint8_t> clipboard_picture();
std::string clipboard_text();
void put_on_clipboard(UINT format, const std::vector<uint8_t>& bytes);

// Keys held down together, then let go, of the keyboard.
void press(const std::vector<WORD>& keys);
// Typed into a control.
void set_text(HWND control, const std::string& text);
// A file of the picture.
std::string saved(const TempFolder& folder, const std::string& name, const Dib& picture);

bool eventually(bool (*holds)(void*), void* context);
template<typename Condition>
bool eventually(Condition condition) {
    return eventually([](void* context) { return (*static_cast<Condition*>(context))(); },
                      &condition);
}

} // namespace kirvo_test
