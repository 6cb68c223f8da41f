// A window fitted to an image: on Windows a real one, elsewhere the calls that the host sees.
#include "support/dib_builder.hpp"

#include <gtest/gtest.h>
#include <map>
#include <utility>
#include <vector>

using namespace kirvo_test;

#ifndef _WIN32

namespace {

struct Call {
    int32_t width, height;
    bool operator==(const Call&) const = default;
};

// A window with a frame, a title bar and perhaps a menu of so many pixels. Its frame and menu need
// not be those of the system's metrics.
struct Window {
    int32_t frame = 4, title = 20, menu = 0; // frame on each side
    int32_t metric_frame = 4, metric_menu = 19;
    int32_t left = 100, top = 50, width = 300, height = 200;
    int32_t most_width = 100000, most_height = 100000;
    std::vector<Call> calls{};
    std::vector<int> metrics{};
    HGLOBAL locked_image = nullptr; // must not be locked while the window is resized
    bool wrong_arguments = false;
};

Window* current;
const auto handle = reinterpret_cast<HWND>(intptr_t{0x1234});

class Host {
  public:
    explicit Host(Window& window) {
        current = &window;
        KirvoWindowHost host{};
        host.GetWindowRect = [](HWND h, RECT* rect) -> BOOL {
            current->wrong_arguments |= h != handle;
            *rect = {current->left, current->top, current->left + current->width,
                     current->top + current->height};
            return TRUE;
        };
        host.GetClientRect = [](HWND h, RECT* rect) -> BOOL {
            current->wrong_arguments |= h != handle;
            *rect = {0, 0, current->width - 2 * current->frame,
                     current->height - 2 * current->frame - current->title - current->menu};
            return TRUE;
        };
        host.SetWindowPos = [](HWND h, HWND after, int x, int y, int width, int height,
                               UINT flags) -> BOOL {
            current->wrong_arguments |= h != handle || after != nullptr || x != 0 || y != 0 ||
                                        flags != (SWP_NOMOVE | SWP_NOZORDER);
            current->wrong_arguments |=
                current->locked_image != nullptr && !is_unlocked(current->locked_image);
            current->calls.push_back({width, height});
            current->width = std::min(width, current->most_width);
            current->height = std::min(height, current->most_height);
            return TRUE;
        };
        host.GetSystemMetrics = [](int index) -> int {
            current->metrics.push_back(index);
            return index == 15 ? current->metric_menu : index == 32 ? current->metric_frame : -1000;
        };
        KirvoSetWindowHost(&host);
    }
    ~Host() { KirvoSetWindowHost(nullptr); }
};

std::vector<Call> fit(Window& window, const Dib& dib, uint32_t scale) {
    const Host host(window);
    window.locked_image = dib;
    FitWindowToImageEx(handle, dib, scale);
    EXPECT_FALSE(window.wrong_arguments);
    EXPECT_EQ(window.metrics, (std::vector{15, 32}));
    EXPECT_TRUE(is_unlocked(dib));
    return window.calls;
}

Dib image(int32_t width, int32_t height) {
    return make_dib({.width = width, .height = height, .bits = 8});
}

} // namespace

TEST(FitWindowToImage, takes_two_passes_when_the_metrics_are_right) {
    Window window;
    // Width 100 + 2 x 4. Height 50 + 28 of the window that is not client area + 19 for a menu;
    // then without the menu.
    EXPECT_EQ(fit(window, image(100, 50), 1), (std::vector<Call>{{108, 97}, {108, 78}}));
}

TEST(FitWindowToImage, allows_for_a_menu_in_the_first_pass) {
    Window window{.menu = 19};
    EXPECT_EQ(fit(window, image(100, 50), 1), (std::vector<Call>{{108, 116}, {108, 97}}));
}

TEST(FitWindowToImage, takes_both_passes_even_where_the_window_fits_already) {
    Window window{.metric_menu = 0, .width = 108, .height = 78};
    EXPECT_EQ(fit(window, image(100, 50), 1), (std::vector<Call>{{108, 78}, {108, 78}}));
}

TEST(FitWindowToImage, corrects_a_wrong_frame_width_in_a_third_pass) {
    Window window{.frame = 7};
    // 34 around the client area in height, 14 in width where the metrics say 8.
    EXPECT_EQ(fit(window, image(100, 50), 1),
              (std::vector<Call>{{108, 103}, {108, 84}, {114, 84}}));
}

TEST(FitWindowToImage, takes_a_third_pass_when_the_window_cannot_become_so_large) {
    Window window{.most_width = 1000, .most_height = 700};
    // The window stays 1000 x 700 with 992 x 672 of client area.
    EXPECT_EQ(fit(window, image(3000, 2000), 1),
              (std::vector<Call>{{3008, 2047}, {3008, 2028}, {3008, 2028}}));
}

TEST(FitWindowToImage, takes_a_third_pass_when_one_side_alone_is_wrong) {
    Window narrow{.most_width = 50};
    EXPECT_EQ(fit(narrow, image(100, 50), 1).size(), 3u);
    Window low{.most_height = 50};
    EXPECT_EQ(fit(low, image(100, 50), 1).size(), 3u);
}

TEST(FitWindowToImage, multiplies_by_the_scale) {
    Window window;
    EXPECT_EQ(fit(window, image(100, 50), 2), (std::vector<Call>{{208, 147}, {208, 128}}));
    Window tiny;
    EXPECT_EQ(fit(tiny, image(100, 50), 0), (std::vector<Call>{{8, 47}, {8, 28}}));
}

TEST(FitWindowToImage, multiplies_in_32_bits) {
    Window window;
    EXPECT_EQ(fit(window, image(3, 1), 0x80000001),
              (std::vector<Call>{{INT32_MIN + 3 + 8, INT32_MIN + 1 + 47},
                                 {INT32_MIN + 3 + 8, INT32_MIN + 1 + 28}}));
}

TEST(FitWindowToImage, looks_at_the_header_alone) {
    Window window;
    const Dib odd = make_dib({.width = 100, .height = 50, .bits = 24, .extra_bytes = -15000});
    EXPECT_EQ(fit(window, odd, 1), (std::vector<Call>{{108, 97}, {108, 78}}));
}

TEST(FitWindowToImage, is_scale_1) {
    Window window;
    const Dib dib = image(100, 50);
    {
        const Host host(window);
        FitWindowToImage(handle, dib);
    }
    EXPECT_EQ(window.calls, (std::vector<Call>{{108, 97}, {108, 78}}));
}

TEST(FitWindowToImage, leaves_the_window_alone_without_an_image) {
    Window window;
    const HGLOBAL freed = image(2, 2).release();
    GlobalFree(freed);
    {
        const Host host(window);
        for (const HGLOBAL none : {HGLOBAL{nullptr}, freed}) {
            FitWindowToImageEx(handle, none, 1);
            FitWindowToImage(handle, none);
        }
    }
    EXPECT_TRUE(window.calls.empty());
    EXPECT_TRUE(window.metrics.empty());
}

TEST(FitWindowToImage, does_nothing_without_a_host) {
    FitWindowToImage(handle, image(10, 10));
    FitWindowToImageEx(nullptr, image(10, 10), 3);
}

#else

namespace {

enum class Menu { none, one_line, wrapping };

class RealWindow {
  public:
    RealWindow(DWORD style, Menu menu) : handle_(shown(style, menu)) {
        EXPECT_NE(handle_, nullptr);
        SetWindowPos(handle_, nullptr, 40, 30, 300, 200, SWP_NOZORDER);
        dispatch();
        sizes.clear();
    }

    operator HWND() const { return handle_; }
    RECT outer() const {
        RECT rect{};
        GetWindowRect(handle_, &rect);
        return rect;
    }
    SIZE client() const {
        RECT rect{};
        GetClientRect(handle_, &rect);
        return {rect.right, rect.bottom};
    }
    void dispatch() const {
        MSG message;
        while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE))
            DispatchMessageA(&message);
    }

    static inline std::vector<SIZE> sizes; // asked for by SetWindowPos, in order

  private:
    // Destroying one takes Wine two seconds where there is no window manager, so tests share them.
    static HWND shown(DWORD style, Menu menu) {
        static std::map<std::pair<DWORD, Menu>, HWND> windows;
        HWND& window = windows[{style, menu}];
        if (window == nullptr)
            window =
                CreateWindowExA(0, window_class(), "a picture", style | WS_VISIBLE, 40, 30, 300,
                                200, nullptr, make_menu(menu), GetModuleHandleA(nullptr), nullptr);
        return window;
    }
    static const char* window_class() {
        static const bool registered = [] {
            WNDCLASSA description{};
            description.lpfnWndProc = procedure;
            description.hInstance = GetModuleHandleA(nullptr);
            description.lpszClassName = "FitWindowToImageTest";
            return RegisterClassA(&description) != 0;
        }();
        EXPECT_TRUE(registered);
        return "FitWindowToImageTest";
    }
    static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
        if (message == WM_WINDOWPOSCHANGING) {
            const auto* position = reinterpret_cast<const WINDOWPOS*>(lparam);
            if ((position->flags & SWP_NOSIZE) == 0)
                sizes.push_back({position->cx, position->cy});
        }
        return DefWindowProcA(window, message, wparam, lparam);
    }
    static HMENU make_menu(Menu menu) {
        if (menu == Menu::none)
            return nullptr;
        const HMENU bar = CreateMenu();
        for (int i = 0; i < (menu == Menu::one_line ? 1 : 12); ++i)
            AppendMenuA(bar, MF_STRING, static_cast<UINT_PTR>(i + 1), "A long title");
        return bar;
    }

    HWND handle_;
};

Dib image(int32_t width, int32_t height) {
    return make_dib({.width = width, .height = height, .bits = 8});
}

void expect_client(const RealWindow& window, LONG width, LONG height) {
    EXPECT_EQ(window.client().cx, width);
    EXPECT_EQ(window.client().cy, height);
}

} // namespace

TEST(FitWindowToImage, fits_a_real_window_with_and_without_a_menu) {
    for (const Menu menu : {Menu::none, Menu::one_line})
        for (const uint32_t scale : {1u, 2u}) {
            const RealWindow window(WS_OVERLAPPEDWINDOW, menu);
            FitWindowToImageEx(window, image(240, 150), scale);
            expect_client(window, LONG(240 * scale), LONG(150 * scale));
            EXPECT_EQ(window.outer().left, 40);
            EXPECT_EQ(window.outer().top, 30);
        }
}

TEST(FitWindowToImage, fits_a_real_window_whose_menu_wraps) {
    const RealWindow window(WS_OVERLAPPEDWINDOW, Menu::wrapping);
    FitWindowToImage(window, image(240, 150));
    expect_client(window, 240, 150);
}

TEST(FitWindowToImage, fits_a_real_window_without_a_frame) {
    // The metrics' frame width is wrong for it: the third pass puts that right.
    const RealWindow window(WS_POPUP, Menu::none);
    FitWindowToImage(window, image(240, 150));
    expect_client(window, 240, 150);
    EXPECT_EQ(RealWindow::sizes.size(), 3u);
}

TEST(FitWindowToImage, is_scale_1_on_a_real_window) {
    const RealWindow window(WS_OVERLAPPEDWINDOW, Menu::none);
    FitWindowToImage(window, image(321, 123));
    expect_client(window, 321, 123);
}

TEST(FitWindowToImage, asks_a_real_window_for_the_sizes_stated) {
    const RealWindow window(WS_OVERLAPPEDWINDOW, Menu::one_line);
    const int frame = 2 * GetSystemMetrics(SM_CXFRAME);
    const int menu = GetSystemMetrics(SM_CYMENU);
    const int around = window.outer().bottom - window.outer().top - window.client().cy;
    FitWindowToImage(window, image(240, 150));
    ASSERT_GE(RealWindow::sizes.size(), 2u);
    EXPECT_EQ(RealWindow::sizes[0].cx, 240 + frame);
    EXPECT_EQ(RealWindow::sizes[0].cy, 150 + around + menu);
    EXPECT_EQ(RealWindow::sizes[1].cx, 240 + frame);
    EXPECT_EQ(RealWindow::sizes[1].cy, 150 + around);
}

TEST(FitWindowToImage, leaves_an_image_larger_than_the_screen_to_the_system) {
    const RealWindow window(WS_OVERLAPPEDWINDOW, Menu::one_line);
    FitWindowToImageEx(window, image(9000, 7000), 2);
    EXPECT_EQ(RealWindow::sizes.size(), 3u); // tried to the end, without an error
    const RECT rect = window.outer();
    EXPECT_LE(rect.right - rect.left, GetSystemMetrics(SM_CXMAXTRACK));
    EXPECT_LE(rect.bottom - rect.top, GetSystemMetrics(SM_CYMAXTRACK));
    EXPECT_GT(window.client().cx, 300);
    EXPECT_GT(window.client().cy, 200);
}

TEST(FitWindowToImage, leaves_a_real_window_alone_without_an_image) {
    const RealWindow window(WS_OVERLAPPEDWINDOW, Menu::none);
    const RECT before = window.outer();
    FitWindowToImage(window, nullptr);
    FitWindowToImageEx(window, nullptr, 2);
    EXPECT_TRUE(RealWindow::sizes.empty());
    const RECT after = window.outer();
    EXPECT_TRUE(EqualRect(&before, &after));
}

TEST(FitWindowToImage, does_nothing_without_a_window) {
    FitWindowToImage(nullptr, image(10, 10));
    FitWindowToImage(reinterpret_cast<HWND>(intptr_t{0x7FFE}), image(10, 10));
}

#endif
