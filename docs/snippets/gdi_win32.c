/* Packed DIBs and GDI: bitmaps, sections, the clipboard. */
#include <string.h>
#include <windows.h>
#include <kirvo_files.h>

//! [rows]
/* A packed DIB is a BITMAPINFO with its rows behind it. */
static void *rows_of(BITMAPINFO *info)
{
    return (BYTE *)info + info->bmiHeader.biSize + PaletteSize(info);
}
//! [rows]

//! [bitmap]
/* A bitmap of the device's own, for BitBlt, image lists, buttons and menus. */
HBITMAP bitmap_of(HDC dc, HGLOBAL dib)
{
    BITMAPINFO *info = GlobalLock(dib);
    HBITMAP bitmap =
        CreateDIBitmap(dc, &info->bmiHeader, CBM_INIT, rows_of(info), info, DIB_RGB_COLORS);
    GlobalUnlock(dib);
    return bitmap; /* freed with DeleteObject */
}

/* Any bitmap as a packed DIB of 24 bits. */
HGLOBAL dib_of(HDC dc, HBITMAP bitmap)
{
    BITMAP size;
    HGLOBAL dib;
    GetObject(bitmap, sizeof size, &size);
    dib = DibMemAllocEx(size.bmWidth, size.bmHeight, 24);
    if (dib != NULL) {
        BITMAPINFO *info = GlobalLock(dib);
        GetDIBits(dc, bitmap, 0, size.bmHeight, rows_of(info), info, DIB_RGB_COLORS);
        GlobalUnlock(dib);
    }
    return dib;
}
//! [bitmap]

//! [section]
/* A section has pixels that both you and GDI write to; its rows are laid out as those of a DIB. */
HBITMAP section_of(HGLOBAL dib)
{
    BITMAPINFO *info = GlobalLock(dib);
    const size_t header = (size_t)((BYTE *)rows_of(info) - (BYTE *)info);
    void *pixels = NULL;
    HBITMAP section = CreateDIBSection(NULL, info, DIB_RGB_COLORS, &pixels, NULL, 0);
    if (section != NULL)
        memcpy(pixels, rows_of(info), GlobalSize(dib) - header);
    GlobalUnlock(dib);
    return section;
}
//! [section]

//! [clipboard]
/* CF_DIB is a packed DIB: the clipboard takes the block over. */
BOOL copy_to_clipboard(HWND window, HGLOBAL dib, int32_t width, int32_t height)
{
    int32_t status;
    HGLOBAL copy = Dib24DupEx(dib, 0, 0, width, height, &status);
    if (copy == NULL || !OpenClipboard(window))
        return GlobalFree(copy) != NULL;
    EmptyClipboard();
    if (SetClipboardData(CF_DIB, copy) == NULL)
        GlobalFree(copy); /* it stays ours */
    CloseClipboard();
    return TRUE;
}

/* What other programs put there may be of any kind: KirvoFiles reads all of them. */
HGLOBAL paste(HWND window)
{
    HGLOBAL block, dib = NULL;
    if (!OpenClipboard(window))
        return NULL;
    block = GetClipboardData(CF_DIB); /* stays the clipboard's */
    if (block != NULL) {
        const SIZE_T size = GlobalSize(block);
        HGLOBAL file = GlobalAlloc(GMEM_MOVEABLE, size + sizeof(BITMAPFILEHEADER));
        BYTE *bytes = file != NULL ? GlobalLock(file) : NULL;
        if (bytes != NULL) {
            BITMAPINFO *info = GlobalLock(block);
            BITMAPFILEHEADER head = {0x4D42, 0, 0, 0, 0}; /* "BM" */
            head.bfSize = (DWORD)(size + sizeof head);
            head.bfOffBits = (DWORD)(sizeof head + ((BYTE *)rows_of(info) - (BYTE *)info));
            memcpy(bytes, &head, sizeof head);
            memcpy(bytes + sizeof head, info, size);
            GlobalUnlock(block);
            KirvoFilesOpenMemory(bytes, head.bfSize, NULL, &dib, NULL);
            GlobalUnlock(file);
        }
        GlobalFree(file);
    }
    CloseClipboard();
    return dib;
}
//! [clipboard]

static int same(HGLOBAL a, HGLOBAL b)
{
    int equal;
    if (a == NULL || b == NULL)
        return 0;
    equal = memcmp((BYTE *)GlobalLock(a) + 40, (BYTE *)GlobalLock(b) + 40, 16 * 9 * 3) == 0;
    GlobalUnlock(a);
    GlobalUnlock(b);
    return equal;
}

static HGLOBAL back(HDC dc, HBITMAP bitmap)
{
    HGLOBAL dib = bitmap != NULL ? dib_of(dc, bitmap) : NULL;
    DeleteObject(bitmap);
    return dib;
}

int main(void)
{
    int32_t status;
    HGLOBAL dib = Dib24Gradation3(16, 9, 24, 0, 0xFF, 0xFF00, 0xFF0000, &status);
    HDC dc = GetDC(NULL);
    HGLOBAL bitmap = back(dc, bitmap_of(dc, dib)), section = back(dc, section_of(dib)), pasted;
    HWND window = CreateWindowA("STATIC", "", 0, 0, 0, 1, 1, NULL, NULL, NULL, NULL);
    int good = same(dib, section) && copy_to_clipboard(window, dib, 16, 9);
    if (GetDeviceCaps(dc, BITSPIXEL) >= 24) /* others keep fewer colours */
        good = good && same(dib, bitmap);
    pasted = paste(window);
    good = good && same(dib, pasted);
    DestroyWindow(window);
    ReleaseDC(NULL, dc);
    GlobalFree(bitmap);
    GlobalFree(section);
    GlobalFree(pasted);
    GlobalFree(dib);
    return good ? 0 : 1;
}
