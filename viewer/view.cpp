#include "view.hpp"

#include <windowsx.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr double least_scale = 1.0 / 64, most_scale = 64;
constexpr double least_fitted = 1.0 / 1024; // of a picture that is very long
constexpr wchar_t class_name[] = L"KirvoView.Picture";

LONG nearest(double number) { return static_cast<LONG>(std::lround(number)); }

} // namespace

HWND View::create(HWND parent, Events events) {
    events_ = std::move(events);
    WNDCLASSEXW description = {};
    description.cbSize = sizeof description;
    description.style = CS_DBLCLKS;
    description.lpfnWndProc = on_message;
    description.hInstance = GetModuleHandleW(nullptr);
    description.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    description.lpszClassName = class_name;
    RegisterClassExW(&description);
    return CreateWindowExW(0, class_name, L"Picture", WS_CHILD | WS_VISIBLE | WS_TABSTOP, 0, 0, 0,
                           0, parent, nullptr, description.hInstance, this);
}

RECT View::client() const {
    RECT rectangle;
    GetClientRect(window_, &rectangle);
    return rectangle;
}

void View::show(SharedImage image) {
    const bool same_size =
        image_ && image && image_->width() == image->width() && image_->height() == image->height();
    image_ = std::move(image);
    preview_ = {};
    if (!same_size) {
        select({});
        fitted_ = true;
    }
    refresh();
}

void View::show_words(const std::wstring& words) {
    words_ = words;
    show(nullptr);
}

void View::preview(Preview preview) {
    preview_ = std::move(preview);
    refresh();
}

void View::end_preview() {
    preview_ = {};
    refresh();
}

void View::smooth(const SharedImage& of, SharedImage image) {
    smooth_of_ = of;
    smooth_ = std::move(image);
    InvalidateRect(window_, nullptr, FALSE);
}

SharedImage View::fitted(const SharedImage& of) const {
    return fitted_ && scale_ < 1 && smooth_of_ == of ? smooth_ : nullptr;
}

void View::fit() {
    fitted_ = true;
    refresh();
}

void View::zoom_to(double scale) {
    const RECT area = client();
    zoom_about(scale, {area.right / 2, area.bottom / 2});
}

void View::zoom_in(bool in) { zoom_to(in ? scale_ * 1.25 : scale_ / 1.25); }

void View::zoom_about(double scale, POINT point) {
    if (!image_)
        return;
    const PointF fixed = in_picture(point);
    scale_ = std::clamp(scale, least_scale, most_scale);
    fitted_ = false;
    left_ = point.x - fixed.x * scale_;
    top_ = point.y - fixed.y * scale_;
    refresh();
}

void View::move_by(double x, double y) {
    left_ += x;
    top_ += y;
    refresh();
}

void View::select(std::optional<RECT> rectangle) {
    selection_ = rectangle;
    InvalidateRect(window_, nullptr, FALSE);
    if (events_.changed)
        events_.changed();
}

PointF View::in_picture(POINT point) const {
    return {(point.x - left_) / scale_, (point.y - top_) / scale_};
}

RECT View::visible() const {
    const RECT area = client();
    const PointF first = in_picture({0, 0}), last = in_picture({area.right, area.bottom});
    const double width = image_ ? image_->width() : 0, height = image_ ? image_->height() : 0;
    return {nearest(std::clamp(std::floor(first.x), 0.0, width)),
            nearest(std::clamp(std::floor(first.y), 0.0, height)),
            nearest(std::clamp(std::ceil(last.x), 0.0, width)),
            nearest(std::clamp(std::ceil(last.y), 0.0, height))};
}

// A picture that is smaller than the window is in its middle, one that is larger fills it.
void View::place() {
    if (!image_)
        return;
    const RECT area = client();
    const double width = preview_.replaces ? preview_.width : image_->width();
    const double height = preview_.replaces ? preview_.height : image_->height();
    if (fitted_)
        scale_ = std::clamp(std::min(area.right / width, area.bottom / height), least_fitted, 1.0);
    const auto placed = [](double first, double length, double room) {
        return length <= room ? std::floor((room - length) / 2)
                              : std::clamp(first, room - length, 0.0);
    };
    left_ = placed(left_, width * scale_, area.right);
    top_ = placed(top_, height * scale_, area.bottom);
}

void View::refresh() {
    place();
    InvalidateRect(window_, nullptr, FALSE);
    want_smooth();
    if (events_.changed)
        events_.changed();
}

void View::want_smooth() {
    if (!image_ || scale_ >= 1)
        return;
    const int width = std::max(1, static_cast<int>(nearest(image_->width() * scale_)));
    const int height = std::max(1, static_cast<int>(nearest(image_->height() * scale_)));
    const bool is_there =
        smooth_ && smooth_of_ == image_ && smooth_->width() == width && smooth_->height() == height;
    if (!is_there && events_.wants_smooth)
        events_.wants_smooth(width, height);
}

void View::on_button(POINT point, bool select) {
    SetFocus(GetParent(window_));
    if (!image_)
        return;
    drag_ = select ? Drag::select : Drag::move;
    last_ = point;
    anchor_ = in_picture(point);
    SetCapture(window_);
}

void View::on_move(POINT point) {
    if (drag_ == Drag::move) {
        move_by(point.x - last_.x, point.y - last_.y);
        last_ = point;
    } else if (drag_ == Drag::select) {
        const PointF other = in_picture(point);
        const auto side = [](double a, double b, double most, bool end) {
            const double value = end ? std::ceil(std::max(a, b)) : std::floor(std::min(a, b));
            return nearest(std::clamp(value, 0.0, most));
        };
        const double width = image_->width(), height = image_->height();
        const RECT now = {
            side(anchor_.x, other.x, width, false), side(anchor_.y, other.y, height, false),
            side(anchor_.x, other.x, width, true), side(anchor_.y, other.y, height, true)};
        if (now.right > now.left && now.bottom > now.top)
            select(now);
    }
    const PointF pixel = in_picture(point);
    const bool inside = image_ && pixel.x >= 0 && pixel.y >= 0 && pixel.x < image_->width() &&
                        pixel.y < image_->height();
    if (events_.pixel)
        events_.pixel(
            inside ? std::optional<POINT>({static_cast<LONG>(pixel.x), static_cast<LONG>(pixel.y)})
                   : std::nullopt);
}

void View::on_wheel(int delta, POINT point) {
    wheel_ += delta; // of fine wheels little by little
    const int steps = wheel_ / WHEEL_DELTA;
    wheel_ -= steps * WHEEL_DELTA;
    ScreenToClient(window_, &point);
    if (steps != 0)
        zoom_about(scale_ * std::pow(1.25, steps), point);
}

LRESULT CALLBACK View::on_message(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_NCCREATE) {
        auto* view = static_cast<View*>(reinterpret_cast<CREATESTRUCTW*>(lparam)->lpCreateParams);
        view->window_ = window;
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(view));
    }
    auto* view = reinterpret_cast<View*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    return view != nullptr && message != WM_NCDESTROY
               ? view->answer(message, wparam, lparam)
               : DefWindowProcW(window, message, wparam, lparam);
}

LRESULT View::answer(UINT message, WPARAM wparam, LPARAM lparam) {
    const POINT point = {GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam)};
    switch (message) {
    case WM_PAINT:
        paint();
        return 0;
    case WM_ERASEBKGND:
        return 1; // all is painted at once
    case WM_SIZE:
        refresh();
        return 0;
    case WM_LBUTTONDOWN:
        on_button(point, (wparam & MK_SHIFT) != 0);
        return 0;
    case WM_LBUTTONUP:
        ReleaseCapture();
        return 0;
    case WM_CAPTURECHANGED:
        drag_ = Drag::none;
        return 0;
    case WM_LBUTTONDBLCLK:
        if (fitted_ && scale_ != 1)
            zoom_about(1, point);
        else
            fit();
        return 0;
    case WM_MOUSEMOVE:
        on_move(point);
        return 0;
    case WM_MOUSEWHEEL:
        on_wheel(GET_WHEEL_DELTA_WPARAM(wparam), point);
        return 0;
    default:
        return DefWindowProcW(window_, message, wparam, lparam);
    }
}
