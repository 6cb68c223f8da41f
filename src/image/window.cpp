// A window sized so that its client area shows an image.
#include "image/dib.hpp"

namespace kirvo {

namespace {

// Sizes wrap at 32 bits.
struct WindowSize {
    uint32_t width, height;
    bool operator==(const WindowSize&) const = default;
};

template<typename GetRect>
WindowSize measure(GetRect get_rect, HWND window) {
    RECT rect = {};
    get_rect(window, &rect);
    return {static_cast<uint32_t>(rect.right) - static_cast<uint32_t>(rect.left),
            static_cast<uint32_t>(rect.bottom) - static_cast<uint32_t>(rect.top)};
}

// What the window has around its client area: frame, title, menu.
WindowSize surroundings(HWND window) {
    const WindowSize outer = measure(GetWindowRect, window);
    const WindowSize client = measure(GetClientRect, window);
    return {outer.width - client.width, outer.height - client.height};
}

void resize(HWND window, uint32_t width, uint32_t height) {
    SetWindowPos(window, nullptr, 0, 0, static_cast<int>(width), static_cast<int>(height),
                 SWP_NOMOVE | SWP_NOZORDER);
}

uint32_t metric(int index) { return static_cast<uint32_t>(GetSystemMetrics(index)); }

// The image is not locked meanwhile: resizing runs the window's procedure.
bool scaled_size(HGLOBAL image, uint32_t scale, WindowSize& size) {
    const LockedDib dib(image);
    size = {static_cast<uint32_t>(dib.width()) * scale,
            static_cast<uint32_t>(dib.height()) * scale};
    return static_cast<bool>(dib);
}

} // namespace

} // namespace kirvo

using namespace kirvo;

void WINAPI FitWindowToImageEx(HWND window, HGLOBAL dib, uint32_t scale) {
    WindowSize target;
    if (!scaled_size(dib, scale, target))
        return;
    const uint32_t menu = metric(SM_CYMENU);
    const uint32_t frame = 2 * metric(SM_CXFRAME);
    // A menu may wrap or unwrap as the width changes, hence more than one pass.
    resize(window, target.width + frame, target.height + surroundings(window).height + menu);
    resize(window, target.width + frame, target.height + surroundings(window).height);

    const WindowSize client = measure(GetClientRect, window);
    if (client == target)
        return;
    const WindowSize outer = measure(GetWindowRect, window);
    resize(window, target.width + outer.width - client.width,
           target.height + outer.height - client.height);
}

void WINAPI FitWindowToImage(HWND window, HGLOBAL dib) { FitWindowToImageEx(window, dib, 1); }
