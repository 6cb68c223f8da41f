// The picture on the screen: fitted or at a scale, moved, with a selection; or what an effect would
// make of it.
#pragma once

#include "dib.hpp"

#include <functional>
#include <optional>
#include <string>

struct PointF {
    double x, y;
};

// A picture in place of a part of another, in that one's pixels.
struct Preview {
    SharedImage image;
    double left = 0, top = 0, width = 0, height = 0;
    bool replaces = false; // the whole picture
};

class View {
  public:
    struct Events {
        std::function<void(std::optional<POINT>)> pixel; // under the cursor
        std::function<void()> changed;                   // scale or selection
        std::function<void(int width, int height)> wants_smooth;
    };

    HWND create(HWND parent, Events events);
    HWND window() const { return window_; }

    // Another picture; of the same size, the place stays.
    void show(SharedImage image);
    // No picture, but words.
    void show_words(const std::wstring& words);
    const SharedImage& image() const { return image_; }
    void preview(Preview preview);
    void end_preview();
    bool has_preview() const { return preview_.image != nullptr; }
    // The picture averaged to the size at which it is shown.
    void smooth(const SharedImage& of, SharedImage image);
    // That, where all of the picture is seen; null where there is none.
    SharedImage fitted(const SharedImage& of) const;

    void fit();
    void zoom_to(double scale); // about the middle
    void zoom_in(bool in);
    void move_by(double x, double y); // in pixels of the screen
    bool is_fitted() const { return fitted_; }
    double scale() const { return scale_; }
    RECT visible() const; // pixels of the picture that can be seen

    const std::optional<RECT>& selection() const { return selection_; }
    void select(std::optional<RECT> rectangle);

  private:
    static LRESULT CALLBACK on_message(HWND window, UINT message, WPARAM, LPARAM);
    LRESULT answer(UINT message, WPARAM wparam, LPARAM lparam);
    void on_button(POINT point, bool select);
    void on_move(POINT point);
    void on_wheel(int delta, POINT point);

    void paint();
    void draw(HDC dc, const RECT& client) const;
    void draw_picture(HDC dc, const RECT& client) const;
    void draw_selection(HDC dc) const;

    void place();                               // keeps the picture in sight
    void zoom_about(double scale, POINT point); // which stays where it is
    PointF in_picture(POINT point) const;
    RECT client() const;
    void refresh();
    void want_smooth();

    HWND window_ = nullptr;
    Events events_;
    SharedImage image_, smooth_, smooth_of_;
    Preview preview_;
    std::wstring words_ = L"Open a picture with Ctrl+O, drop one here, or paste one with Ctrl+V";
    bool fitted_ = true;
    double scale_ = 1, left_ = 0, top_ = 0; // of the picture's corner on the screen
    std::optional<RECT> selection_;

    enum class Drag { none, move, select };
    Drag drag_ = Drag::none;
    POINT last_ = {};
    PointF anchor_ = {};
    int wheel_ = 0;
};
