// A rectangle selected by numbers: what dragging is for the mouse.
#include "dialog.hpp"
#include "text.hpp"
#include "viewer.hpp"

namespace {

class SelectDialog : public Dialog {
  public:
    SelectDialog(const RECT& first, int width, int height)
        : rectangle_(first), width_(width), height_(height) {}
    const RECT& rectangle() const { return rectangle_; }

  private:
    enum { left = 100, top, across, down, words };

    void fill() override {
        const wchar_t* names[] = {L"Left", L"Top", L"Width", L"Height"};
        const LONG values[] = {rectangle_.left, rectangle_.top, rectangle_.right - rectangle_.left,
                               rectangle_.bottom - rectangle_.top};
        for (int i = 0; i < 4; ++i) {
            const int x = 12 + i % 2 * 150, y = 14 + i / 2 * 34;
            add_name(names[i], x, y + 4, 52);
            add(L"EDIT", digits(values[i]), WS_TABSTOP | ES_NUMBER, left + i, x + 56, y, 76, 24);
        }
        add(L"STATIC", L"", 0, words, 12, 84, 282, 18);
        add_buttons(306, 110);
    }

    void on_control(int, int) override {}

    bool on_ok() override {
        const auto value = [&](int id) {
            return static_cast<LONG>(GetDlgItemInt(window(), id, nullptr, FALSE));
        };
        const LONG x = value(left), y = value(top), width = value(across), height = value(down);
        const bool good = x < width_ && y < height_ && width > 0 && height > 0 &&
                          width <= width_ - x && height <= height_ - y;
        rectangle_ = {x, y, x + width, y + height};
        set_text(words,
                 L"The picture has " + digits(width_) + L" \u00d7 " + digits(height_) + L" pixels");
        return good;
    }

    RECT rectangle_;
    int width_, height_;
};

} // namespace

void ask_selection(Viewer& viewer) {
    const SharedImage image = viewer.history.now();
    const RECT all = {0, 0, image->width(), image->height()};
    SelectDialog dialog(viewer.view.selection().value_or(all), image->width(), image->height());
    if (dialog.run(viewer.window, L"Select a rectangle", 306, 148))
        viewer.view.select(dialog.rectangle());
}
