#include "histogram.hpp"

#include "sizes.hpp"
#include "text.hpp"
#include "theme.hpp"
#include "trace.hpp"

#include <algorithm>
#include <cmath>
#include <string>

namespace {

constexpr wchar_t class_name[] = L"KirvoView.Histogram";

// DibHistgram counts true colour.
Counts counted(const Image& image) {
    Image expanded;
    if (image.bits() != 24)
        expanded = copy_at_24_bits(image);
    const Image& from = expanded ? expanded : image;
    Counts counts = {};
    const int32_t status = DibHistgram(from.handle(), 0, 0, from.width(), from.height(), counts.red,
                                       counts.green, counts.blue);
    if (status != KIRVO_OK)
        throw Failure("histogram", meaning(status), status);
    DibCountColors(from.handle(), &counts.colours);
    return counts;
}

// Channels one over the other: where all three are, grey; heights by the square root, so that rare
// values are seen too.
void draw_column(HDC dc, const Counts& counts, int value, const RECT& bar, double highest) {
    struct Channel {
        uint32_t count;
        COLORREF colour;
    } channels[3] = {{counts.red[value], RGB(220, 60, 60)},
                     {counts.green[value], RGB(60, 180, 75)},
                     {counts.blue[value], RGB(70, 110, 230)}};
    std::sort(channels, channels + 3,
              [](const Channel& a, const Channel& b) { return a.count > b.count; });
    for (const Channel& channel : channels) {
        const double part = std::sqrt(channel.count / highest);
        RECT column = bar;
        column.top = bar.bottom - static_cast<LONG>(part * (bar.bottom - bar.top));
        SetDCBrushColor(dc, &channel == &channels[2] ? RGB(150, 150, 150) : channel.colour);
        FillRect(dc, &column, static_cast<HBRUSH>(GetStockObject(DC_BRUSH)));
    }
}

void draw(HDC dc, const RECT& area, int line, const Counts* counts) {
    FillRect(dc, &area, theme::brush());
    if (counts == nullptr)
        return;
    uint32_t highest = 1;
    for (int value = 0; value < 256; ++value)
        highest =
            std::max({highest, counts->red[value], counts->green[value], counts->blue[value]});
    for (int value = 0; value < 256; ++value) {
        const RECT bar = {area.right * value / 256, 4, area.right * (value + 1) / 256,
                          area.bottom - line};
        draw_column(dc, *counts, value, bar, highest);
    }
    RECT words = {6, area.bottom - line, area.right, area.bottom};
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, theme::text());
    const std::wstring text =
        digits(counts->colours) + L" colours; the highest column " + digits(highest) + L" pixels";
    DrawTextW(dc, text.c_str(), -1, &words, DT_SINGLELINE | DT_VCENTER);
}

} // namespace

void HistogramWindow::open(HWND owner, Worker& worker, std::function<void()> closed) {
    worker_ = &worker;
    closed_ = std::move(closed);
    WNDCLASSEXW description = {};
    description.cbSize = sizeof description;
    description.style = CS_HREDRAW | CS_VREDRAW;
    description.lpfnWndProc = on_message;
    description.hInstance = GetModuleHandleW(nullptr);
    description.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    description.lpszClassName = class_name;
    RegisterClassExW(&description);
    RECT place;
    GetWindowRect(owner, &place);
    const int width = sizes::scaled(owner, 360), height = sizes::scaled(owner, 240);
    window_ = CreateWindowExW(WS_EX_TOOLWINDOW, class_name, L"Histogram",
                              WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_SIZEBOX, place.left + 24,
                              place.bottom - height - 48, width, height, owner, nullptr,
                              description.hInstance, this);
    SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    theme::apply(window_);
    ShowWindow(window_, SW_SHOWNOACTIVATE);
}

void HistogramWindow::close() {
    if (window_ != nullptr)
        DestroyWindow(window_);
}

void HistogramWindow::show(const SharedImage& image) {
    if (window_ == nullptr)
        return;
    image_ = image;
    if (!image) {
        counts_ = nullptr;
        InvalidateRect(window_, nullptr, FALSE);
        return;
    }
    const auto counts = std::make_shared<Counts>();
    worker_->post(
        Worker::Kind::counts, [=] { *counts = counted(*image); },
        [=, this](const std::string& error) {
            if (window_ == nullptr || image != image_)
                return;
            counts_ = error.empty() ? counts : nullptr;
            trace(error.empty() ? "histogram of " + std::to_string(counts->colours) + " colours"
                                : "no histogram: " + error);
            InvalidateRect(window_, nullptr, FALSE);
        });
}

void HistogramWindow::paint() {
    PAINTSTRUCT paint;
    HDC screen = BeginPaint(window_, &paint);
    RECT area;
    GetClientRect(window_, &area);
    HDC memory = CreateCompatibleDC(screen);
    HBITMAP bitmap = CreateCompatibleBitmap(screen, area.right, area.bottom);
    HGDIOBJ before = SelectObject(memory, bitmap);
    const HFONT font = sizes::message_font(window_);
    HGDIOBJ font_before = SelectObject(memory, font);
    draw(memory, area, sizes::scaled(window_, 22), counts_.get());
    BitBlt(screen, 0, 0, area.right, area.bottom, memory, 0, 0, SRCCOPY);
    SelectObject(memory, font_before);
    DeleteObject(font);
    SelectObject(memory, before);
    DeleteObject(bitmap);
    DeleteDC(memory);
    EndPaint(window_, &paint);
}

LRESULT CALLBACK HistogramWindow::on_message(HWND window, UINT message, WPARAM wparam,
                                             LPARAM lparam) {
    auto* self = reinterpret_cast<HistogramWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (self == nullptr)
        return DefWindowProcW(window, message, wparam, lparam);
    theme::change_by(window, message);
    if (sizes::change_by(window, message, wparam, lparam))
        InvalidateRect(window, nullptr, FALSE);
    switch (message) {
    case WM_PAINT:
        self->paint();
        return 0;
    case WM_ERASEBKGND:
        return 1;
    case WM_KEYDOWN:
        if (wparam == VK_ESCAPE)
            DestroyWindow(window);
        return 0;
    case WM_SYSCOMMAND:
        if ((wparam & 0xFFF0) != SC_KEYMENU || lparam == L' ')
            break;
        SetActiveWindow(GetWindow(window, GW_OWNER)); // which has the menu
        return SendMessageW(GetWindow(window, GW_OWNER), message, wparam, lparam);
    case WM_NCDESTROY:
        SetWindowLongPtrW(window, GWLP_USERDATA, 0);
        self->window_ = nullptr;
        self->image_ = nullptr;
        self->counts_ = nullptr;
        self->closed_();
        return 0;
    default:
        break;
    }
    return DefWindowProcW(window, message, wparam, lparam);
}
