/* Shows a picture in a window: window PICTURE [SNAPSHOT.bmp]
 *
 * The window opens in the picture's size. When it is resized, the picture is fitted to it. With the
 * name of a snapshot the window saves what it shows, and closes. */
#include <kirvo.h>

#include <stdlib.h>
#include <string.h>

static HGLOBAL picture;

/* GDI believes the header, so the block must hold all the rows that a file's header promises. */
static int is_complete(HGLOBAL dib)
{
    const BITMAPINFOHEADER *header = GlobalLock(dib);
    const uint64_t stride = ((uint64_t)header->biWidth * header->biBitCount + 31) / 32 * 4;
    const int complete =
        header->biSize >= sizeof *header && header->biWidth > 0 && header->biHeight > 0 &&
        GlobalSize(dib) >= header->biSize + PaletteSize(header) + stride * header->biHeight;
    GlobalUnlock(dib);
    return complete;
}

static HGLOBAL open_picture(const char *name)
{
    uint32_t width, height, bits;
    int32_t status;
    HGLOBAL dib = JpgDecMainEx(name, &width, &height, &status);
    if (dib == NULL)
        dib = DibReadEx(name, &width, &height, &bits, &status);
    if (dib != NULL && !is_complete(dib))
        dib = GlobalFree(dib); /* null */
    return dib;
}

/* The largest rectangle of the picture's shape in the middle of the client area. */
static RECT fitted(const RECT *client, int width, int height)
{
    RECT place = *client;
    if (MulDiv(client->right, height, width) <= client->bottom) {
        place.bottom = MulDiv(client->right, height, width);
        OffsetRect(&place, 0, (client->bottom - place.bottom) / 2);
    } else {
        place.right = MulDiv(client->bottom, width, height);
        OffsetRect(&place, (client->right - place.right) / 2, 0);
    }
    return place;
}

/* A packed DIB is what GDI calls a BITMAPINFO, followed by its pixels. */
static void draw(HDC dc, const RECT *client)
{
    const BITMAPINFO *info = GlobalLock(picture);
    const BITMAPINFOHEADER *header = &info->bmiHeader;
    const char *rows = (const char *)info + header->biSize + PaletteSize(header);
    const RECT place = fitted(client, header->biWidth, header->biHeight);
    FillRect(dc, client, GetStockObject(BLACK_BRUSH));
    SetStretchBltMode(dc, HALFTONE); /* smooth when it is made smaller */
    StretchDIBits(dc, place.left, place.top, place.right - place.left, place.bottom - place.top, 0,
                  0, header->biWidth, header->biHeight, rows, info, DIB_RGB_COLORS, SRCCOPY);
    GlobalUnlock(picture);
}

static LRESULT CALLBACK on_message(HWND window, UINT message, WPARAM wparam, LPARAM lparam)
{
    switch (message) {
    case WM_PAINT: {
        PAINTSTRUCT paint;
        RECT client;
        HDC dc = BeginPaint(window, &paint);
        GetClientRect(window, &client);
        draw(dc, &client);
        EndPaint(window, &paint);
        return 0;
    }
    case WM_SIZE:
        InvalidateRect(window, NULL, FALSE);
        return 0;
    case WM_DESTROY:
        PostQuitMessage(0);
        return 0;
    default:
        return DefWindowProcA(window, message, wparam, lparam);
    }
}

/* Copies the client area from the screen into a new image. */
static int32_t save_snapshot(HWND window, const char *name)
{
    int32_t status = KIRVO_NO_MEMORY;
    RECT client;
    HDC screen = GetDC(window), memory = CreateCompatibleDC(screen);
    HBITMAP bitmap;
    HGLOBAL dib;
    GetClientRect(window, &client);
    bitmap = CreateCompatibleBitmap(screen, client.right, client.bottom);
    dib = DibMemAllocEx(client.right, client.bottom, 24);
    if (memory != NULL && bitmap != NULL && dib != NULL) {
        BITMAPINFO *info = GlobalLock(dib);
        HGDIOBJ before = SelectObject(memory, bitmap);
        BitBlt(memory, 0, 0, client.right, client.bottom, screen, 0, 0, SRCCOPY);
        SelectObject(memory, before);
        GetDIBits(memory, bitmap, 0, client.bottom, (char *)info + info->bmiHeader.biSize, info,
                  DIB_RGB_COLORS);
        GlobalUnlock(dib);
        status = DibWriteEx(name, dib, 0, 0, -1, -1);
    }
    GlobalFree(dib);
    DeleteObject(bitmap);
    DeleteDC(memory);
    ReleaseDC(window, screen);
    return status;
}

int WINAPI WinMain(HINSTANCE instance, HINSTANCE unused, LPSTR line, int show)
{
    WNDCLASSA window_class = {0};
    MSG message;
    HWND window;
    int32_t status = KIRVO_OK;
    (void)unused, (void)line;
    picture = __argc > 1 ? open_picture(__argv[1]) : NULL;
    if (picture == NULL) {
        MessageBoxA(NULL, "Start this program with a BMP or JPEG file.", "Kirvo", MB_ICONERROR);
        return 1;
    }
    window_class.lpfnWndProc = on_message;
    window_class.hInstance = instance;
    window_class.hCursor = LoadCursor(NULL, IDC_ARROW);
    window_class.lpszClassName = "picture";
    RegisterClassA(&window_class);
    window = CreateWindowA("picture", __argv[1], WS_OVERLAPPEDWINDOW, CW_USEDEFAULT, CW_USEDEFAULT,
                           CW_USEDEFAULT, CW_USEDEFAULT, NULL, NULL, instance, NULL);
    if (window == NULL) {
        GlobalFree(picture);
        return 1;
    }
    FitWindowToImage(window, picture);
    ShowWindow(window, show);
    UpdateWindow(window);
    if (__argc > 2) {
        status = save_snapshot(window, __argv[2]);
        DestroyWindow(window);
    }
    while (GetMessageA(&message, NULL, 0, 0) > 0) {
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
    GlobalFree(picture);
    return status == KIRVO_OK ? 0 : 1;
}
