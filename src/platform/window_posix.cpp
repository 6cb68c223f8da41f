// Windows and palettes away from Windows: calls go to the host that the program has set.
#include "platform/handles_posix.hpp"
#include "platform/platform.hpp"

#include <algorithm>

namespace {

KirvoWindowHost host = {};

struct Palette {
    uint16_t count;
    PALETTEENTRY entries[256];
};

kirvo::HandleTable<Palette> palettes;

} // namespace

void WINAPI KirvoSetWindowHost(const KirvoWindowHost* new_host) {
    host = new_host != nullptr ? *new_host : KirvoWindowHost{};
}

LRESULT SendMessageA(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    return host.SendMessageA != nullptr ? host.SendMessageA(window, message, wparam, lparam) : 0;
}

BOOL GetWindowRect(HWND window, RECT* rect) {
    return host.GetWindowRect != nullptr ? host.GetWindowRect(window, rect) : FALSE;
}

BOOL GetClientRect(HWND window, RECT* rect) {
    return host.GetClientRect != nullptr ? host.GetClientRect(window, rect) : FALSE;
}

BOOL SetWindowPos(HWND window, HWND after, int x, int y, int width, int height, UINT flags) {
    return host.SetWindowPos != nullptr
               ? host.SetWindowPos(window, after, x, y, width, height, flags)
               : FALSE;
}

int GetSystemMetrics(int index) {
    return host.GetSystemMetrics != nullptr ? host.GetSystemMetrics(index) : 0;
}

HPALETTE CreatePalette(const LOGPALETTE* palette) {
    if (palette == nullptr || palette->palNumEntries > 256)
        return nullptr;
    Palette object = {};
    object.count = palette->palNumEntries;
    std::copy_n(palette->palPalEntry, object.count, object.entries);
    return static_cast<HPALETTE>(palettes.add(object));
}

UINT WINAPI GetPaletteEntries(HPALETTE palette, UINT first, UINT count, PALETTEENTRY* entries) {
    UINT written = 0;
    palettes.with(palette, [&](const Palette& object) {
        if (entries == nullptr) {
            written = object.count;
        } else if (first < object.count) {
            written = std::min<UINT>(count, object.count - first);
            std::copy_n(object.entries + first, written, entries);
        }
    });
    return written;
}

BOOL WINAPI DeleteObject(HGDIOBJ object) {
    Palette gone;
    return palettes.remove(object, gone);
}
