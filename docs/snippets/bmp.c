/* Whether a BMP file is one that every function takes as it is. */
#include <stdint.h>
#include <kirvo_files.h>

//! [plain]
/* 40 bytes of header, uncompressed, bottom-up, and all rows there. */
static int is_plain(HGLOBAL dib)
{
    const BITMAPINFOHEADER *header = GlobalLock(dib);
    const uint64_t stride = ((uint64_t)header->biWidth * header->biBitCount + 31) / 32 * 4;
    const int plain =
        header->biSize == 40 && header->biHeight > 0 && header->biWidth > 0 &&
        (header->biCompression == BI_RGB || header->biCompression == BI_BITFIELDS) &&
        GlobalSize(dib) >= 40 + PaletteSize(header) + stride * (uint64_t)header->biHeight;
    GlobalUnlock(dib);
    return plain;
}

/* A picture that every function takes, whatever BMP file it was. */
HGLOBAL open_bmp(const char *name, int32_t *status)
{
    uint32_t width, height, bits;
    HGLOBAL dib = DibReadEx(name, &width, &height, &bits, status);
    if (dib != NULL && is_plain(dib))
        return dib;
    if (dib != NULL)
        GlobalFree(dib);
    *status = KirvoFilesOpen(name, NULL, &dib, NULL);
    return dib;
}
//! [plain]

#include <stdio.h>

/* Writes a BMP file of 2 x 2 pixels of 24 bits whose rows are top-down or not. */
static void write_file(const char *name, int32_t height)
{
    const uint8_t rows[16] = {1, 2, 3, 4, 5, 6, 0, 0, 7, 8, 9, 10, 11, 12, 0, 0};
    uint8_t head[54] = {'B', 'M', 70, 0, 0, 0, 0, 0, 0, 0, 54, 0, 0, 0, 40, 0, 0, 0, 2};
    int i;
    FILE *file = fopen(name, "wb");
    for (i = 0; i < 4; ++i)
        head[22 + i] = (uint8_t)((uint32_t)height >> 8 * i);
    head[26] = 1;
    head[28] = 24;
    fwrite(head, 1, sizeof head, file);
    fwrite(rows, 1, sizeof rows, file);
    fclose(file);
}

static uint32_t lower_left(const char *name)
{
    int32_t status;
    uint32_t colour = 0;
    HGLOBAL dib = open_bmp(name, &status);
    if (dib == NULL)
        return 0;
    DibGetPixelColor(dib, 0, 1, &colour);
    GlobalFree(dib);
    return colour;
}

int main(void)
{
    uint32_t up, down;
    write_file("guide-up.bmp", 2);
    write_file("guide-down.bmp", -2);
    up = lower_left("guide-up.bmp");
    down = lower_left("guide-down.bmp");
    remove("guide-up.bmp");
    remove("guide-down.bmp");
    return up == 0x010203 && down == 0x070809 ? 0 : 1;
}
