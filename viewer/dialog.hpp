// A modal dialog whose controls are made when it opens. Lengths are those of 96 dots an inch.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

class Dialog {
  public:
    virtual ~Dialog() = default;
    // Whether it was ended by OK.
    bool run(HWND owner, const std::wstring& title, int width, int height);

  protected:
    virtual void fill() = 0; // makes the controls
    virtual void on_control(int id, int code) = 0;
    virtual void on_scroll(HWND) {}
    virtual void on_timer() {}
    virtual bool on_ok() { return true; }

    HWND add(const wchar_t* window_class, const std::wstring& text, DWORD style, int id, int left,
             int top, int width, int height);
    // A name before another control, which is reached by one of its letters.
    void add_name(const std::wstring& text, int left, int top, int width);
    void add_buttons(int width, int top); // OK and Cancel
    HWND control(int id) const { return GetDlgItem(window_, id); }
    HWND window() const { return window_; }
    std::wstring text(int id) const;
    void set_text(int id, const std::wstring& text) const;

  private:
    struct Part {
        HWND control;
        int left, top, width, height;
    };
    static INT_PTR CALLBACK on_message(HWND window, UINT message, WPARAM, LPARAM);
    INT_PTR answer(UINT message, WPARAM wparam, LPARAM lparam);
    void begin();
    RECT work_area() const;
    void lay_out();
    void place();

    HWND window_ = nullptr;
    HFONT font_ = nullptr;
    std::wstring title_;
    int width_ = 0, height_ = 0;
    std::vector<Part> parts_;
    std::wstring taken_keys_;
};
