// How the view is painted: into memory, then onto the screen at once, so that nothing flickers.
#include "locked.hpp"
#include "theme.hpp"
#include "view.hpp"

#include <algorithm>
#include <cmath>

namespace {

// Stretches the part of a picture that lies inside the area. GDI takes the packed DIB as it is; its
// rows are counted from the bottom.
void stretch(HDC dc, const Image& image, double left, double top, double scale_x, double scale_y,
             const RECT& area) {
    const auto first = [](double corner, double scale) {
        return static_cast<int>(std::max(0.0, std::floor(-corner / scale)));
    };
    const auto last = [](double corner, double scale, int room, int length) {
        return static_cast<int>(std::min<double>(length, std::ceil((room - corner) / scale)));
    };
    const int x0 = first(left, scale_x), x1 = last(left, scale_x, area.right, image.width());
    const int y0 = first(top, scale_y), y1 = last(top, scale_y, area.bottom, image.height());
    if (x0 >= x1 || y0 >= y1)
        return;
    const auto on_screen = [](double corner, double scale, int pixel) {
        return static_cast<int>(std::lround(corner + pixel * scale));
    };
    const int to_x = on_screen(left, scale_x, x0), to_y = on_screen(top, scale_y, y0);
    const Locked locked(image);
    StretchDIBits(dc, to_x, to_y, on_screen(left, scale_x, x1) - to_x,
                  on_screen(top, scale_y, y1) - to_y, x0, image.height() - y1, x1 - x0, y1 - y0,
                  locked.pixels(), locked.info(), DIB_RGB_COLORS, SRCCOPY);
}

void fill(HDC dc, const RECT& area, COLORREF colour) {
    SetDCBrushColor(dc, colour);
    FillRect(dc, &area, static_cast<HBRUSH>(GetStockObject(DC_BRUSH)));
}

} // namespace

void View::paint() {
    PAINTSTRUCT paint;
    HDC screen = BeginPaint(window_, &paint);
    const RECT area = client();
    HDC memory = CreateCompatibleDC(screen);
    HBITMAP bitmap =
        CreateCompatibleBitmap(screen, std::max(area.right, 1l), std::max(area.bottom, 1l));
    HGDIOBJ before = SelectObject(memory, bitmap);
    draw(memory, area);
    BitBlt(screen, 0, 0, area.right, area.bottom, memory, 0, 0, SRCCOPY);
    SelectObject(memory, before);
    DeleteObject(bitmap);
    DeleteDC(memory);
    EndPaint(window_, &paint);
}

void View::draw(HDC dc, const RECT& area) const {
    fill(dc, area, theme::canvas());
    if (image_) {
        draw_picture(dc, area);
        draw_selection(dc);
        return;
    }
    RECT place = area;
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, theme::canvas_text());
    HGDIOBJ before = SelectObject(
        dc, reinterpret_cast<HGDIOBJ>(SendMessageW(GetParent(window_), WM_GETFONT, 0, 0)));
    DrawTextW(dc, words_.c_str(), -1, &place, DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
    SelectObject(dc, before);
}

void View::draw_picture(HDC dc, const RECT& area) const {
    SetStretchBltMode(dc, COLORONCOLOR);
    if (!preview_.replaces) {
        if (scale_ < 1 && smooth_ && smooth_of_ == image_)
            stretch(dc, *smooth_, left_, top_, image_->width() * scale_ / smooth_->width(),
                    image_->height() * scale_ / smooth_->height(), area);
        else
            stretch(dc, *image_, left_, top_, scale_, scale_, area);
    }
    if (preview_.image)
        stretch(dc, *preview_.image, left_ + preview_.left * scale_, top_ + preview_.top * scale_,
                preview_.width * scale_ / preview_.image->width(),
                preview_.height * scale_ / preview_.image->height(), area);
}

// A line of two colours is seen on any picture.
void View::draw_selection(HDC dc) const {
    if (!selection_ || preview_.replaces)
        return;
    const auto on_screen = [&](LONG pixel, double corner) {
        return static_cast<LONG>(std::lround(corner + pixel * scale_));
    };
    const RECT frame = {
        on_screen(selection_->left, left_) - 1, on_screen(selection_->top, top_) - 1,
        on_screen(selection_->right, left_) + 1, on_screen(selection_->bottom, top_) + 1};
    SetDCBrushColor(dc, RGB(255, 255, 255));
    FrameRect(dc, &frame, static_cast<HBRUSH>(GetStockObject(DC_BRUSH)));
    const auto line = static_cast<HPEN>(CreatePen(PS_DOT, 1, RGB(0, 0, 0)));
    HGDIOBJ pen = SelectObject(dc, line);
    HGDIOBJ brush = SelectObject(dc, GetStockObject(NULL_BRUSH));
    SetBkMode(dc, TRANSPARENT);
    Rectangle(dc, frame.left, frame.top, frame.right, frame.bottom);
    SelectObject(dc, brush);
    SelectObject(dc, pen);
    DeleteObject(line);
}
