#include "image/palette.hpp"

#include "image/dib.hpp"

namespace kirvo {

namespace {

constexpr bool is_system_colour(uint32_t index) { return index < 10 || index >= 246; }

PALETTEENTRY palette_entry(uint32_t index) {
    const uint32_t colour = fixed_palette[index];
    return {static_cast<BYTE>(colour >> 16), static_cast<BYTE>(colour >> 8),
            static_cast<BYTE>(colour),
            is_system_colour(index) ? BYTE{0} : static_cast<BYTE>(PC_NOCOLLAPSE)};
}

} // namespace

} // namespace kirvo

using namespace kirvo;

HPALETTE WINAPI KirvoCreatePalette(void) {
    auto* palette = static_cast<LOGPALETTE*>(LocalAlloc(LPTR, 4 + 256 * sizeof(PALETTEENTRY)));
    if (palette == nullptr)
        return nullptr;
    palette->palVersion = 0x300;
    palette->palNumEntries = 256;
    for (uint32_t i = 0; i < 256; ++i)
        palette->palPalEntry[i] = palette_entry(i);
    HPALETTE handle = CreatePalette(palette);
    LocalFree(palette);
    return handle;
}

int32_t WINAPI XPaletteQuad(HGLOBAL handle, int32_t index, uint32_t colour) {
    if (index < 0 || index >= 256)
        return 0;
    const LockedDib dib(handle);
    const uint64_t offset = info_header_bytes + static_cast<uint64_t>(index) * sizeof(RGBQUAD);
    if (!dib || index >= DibNumColors(&dib.header) || offset + sizeof(RGBQUAD) > dib.size())
        return 0;
    const BYTE bytes[3] = {static_cast<BYTE>(colour >> 16), static_cast<BYTE>(colour >> 8),
                           static_cast<BYTE>(colour)};
    dib.write_bytes(offset, bytes, sizeof bytes);
    return 1;
}
