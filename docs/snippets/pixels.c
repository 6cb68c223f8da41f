/* Walks the pixels of a packed DIB. */
#include <kirvo.h>

//! [walk]
/* Swaps red and blue in a rectangle of a 24-bit image. */
int32_t swap_red_and_blue(HGLOBAL dib, int32_t x, int32_t y, int32_t width, int32_t height)
{
    BITMAPINFOHEADER *header = GlobalLock(dib);
    BYTE *pixels;
    size_t stride;
    int32_t row, column;
    if (header == NULL)
        return KIRVO_NULL_HANDLE;
    if (header->biBitCount != 24) {
        GlobalUnlock(dib);
        return KIRVO_NEEDS_24;
    }
    pixels = (BYTE *)header + header->biSize + PaletteSize(header);
    stride = ((size_t)header->biWidth * 3 + 3) & ~(size_t)3;
    for (row = y; row < y + height; row++) {
        /* row 0 of the picture is stored last */
        BYTE *pixel = pixels + stride * (size_t)(header->biHeight - 1 - row) + 3 * (size_t)x;
        for (column = 0; column < width; column++, pixel += 3) {
            BYTE blue = pixel[0];
            pixel[0] = pixel[2];
            pixel[2] = blue;
        }
    }
    GlobalUnlock(dib);
    return KIRVO_OK;
}
//! [walk]

//! [masks]
/* Makes a black 16-bit image and says where its channels are: 5 bits red, 6 green, 5 blue. */
HGLOBAL new_565(uint32_t width, int32_t height)
{
    HGLOBAL dib = DibMemAllocEx(width, height, 16);
    BITMAPINFOHEADER *header = dib ? GlobalLock(dib) : NULL;
    if (header != NULL) {
        DWORD *masks = (DWORD *)(header + 1);
        masks[0] = 0xF800;
        masks[1] = 0x07E0;
        masks[2] = 0x001F;
        GlobalUnlock(dib);
    }
    return dib;
}
//! [masks]

int main(void)
{
    int32_t status;
    uint32_t colour = 0, other = 0;
    HGLOBAL dib = Dib24Solid(5, 4, 24, 0x332211, &status), small;
    if (dib == NULL || swap_red_and_blue(dib, 1, 1, 3, 2) != KIRVO_OK)
        return 1;
    DibGetPixelColor(dib, 1, 1, &colour);
    DibGetPixelColor(dib, 0, 0, &other);
    GlobalFree(dib);
    if (colour != 0x112233 || other != 0x332211)
        return 1;
    small = new_565(3, 3);
    status = DibSetPixelColor(small, 2, 0, 0xFFFFFF);
    DibGetPixelColor(small, 2, 0, &colour);
    GlobalFree(small);
    return status == KIRVO_OK && colour == 0xF8FCF8 ? 0 : 1;
}
