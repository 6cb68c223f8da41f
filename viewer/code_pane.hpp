// The code of what was done, beside the picture.
#pragma once

#include "history.hpp"

class CodePane {
  public:
    void create(HWND parent, int language, HFONT font);
    void show(const std::vector<Step>& steps);
    void set_visible(bool visible);
    bool is_visible() const { return visible_; }
    void place(const RECT& area);
    void set_fonts(HFONT message);
    int language() const { return language_; }
    void choose(int language);
    std::wstring text() const;
    bool has_focus() const;
    void take_focus() const;

    HWND list() const { return list_; }

  private:
    void refresh();

    HWND list_ = nullptr, edit_ = nullptr;
    HFONT font_ = nullptr;
    bool visible_ = false;
    int language_ = 0;
    std::vector<Step> steps_;
};
