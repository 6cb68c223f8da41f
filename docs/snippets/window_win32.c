/* The first picture in a window: view PICTURE.jpg */
//! [window]
#include <windows.h>
#include <kirvo.h>

static HGLOBAL picture; /* a packed DIB: header, colours, rows */

static void paint(HWND window)
{
    PAINTSTRUCT paint;
    HDC dc = BeginPaint(window, &paint);
    const BITMAPINFO *info = GlobalLock(picture);
    const BITMAPINFOHEADER *header = &info->bmiHeader;
    const BYTE *rows = (const BYTE *)info + header->biSize + PaletteSize(header);
    RECT client;
    GetClientRect(window, &client);
    StretchDIBits(dc, 0, 0, client.right, client.bottom, 0, 0, header->biWidth, header->biHeight,
                  rows, info, DIB_RGB_COLORS, SRCCOPY);
    GlobalUnlock(picture);
    EndPaint(window, &paint);
}

static LRESULT CALLBACK on_message(HWND window, UINT message, WPARAM wparam, LPARAM lparam)
{
    switch (message) {
    case WM_PAINT: paint(window); return 0;
    case WM_DESTROY: PostQuitMessage(0); return 0;
    default: return DefWindowProcA(window, message, wparam, lparam);
    }
}

int show(HINSTANCE instance, const char *name)
{
    WNDCLASSA kind = {0};
    MSG message;
    HWND window;
    uint32_t width, height;
    int32_t status;
    picture = JpgDecMainEx(name, &width, &height, &status);
    if (picture == NULL) {
        MessageBoxA(NULL, kirvo_status_text(status), name, MB_ICONERROR);
        return 1;
    }
    kind.lpfnWndProc = on_message;
    kind.hInstance = instance;
    kind.hCursor = LoadCursor(NULL, IDC_ARROW);
    kind.lpszClassName = "Picture";
    RegisterClassA(&kind);
    window = CreateWindowA("Picture", name, WS_OVERLAPPEDWINDOW, CW_USEDEFAULT, CW_USEDEFAULT, 640,
                           480, NULL, NULL, instance, NULL);
    FitWindowToImage(window, picture); /* a client area of the picture's size */
    ShowWindow(window, SW_SHOW);
    while (GetMessageA(&message, NULL, 0, 0) > 0)
        DispatchMessageA(&message);
    GlobalFree(picture);
    return 0;
}
//! [window]

/* A second thread looks at the window, then closes it. */
static DWORD WINAPI look(LPVOID found)
{
    HWND window = NULL;
    RECT client;
    int tries;
    for (tries = 0; tries < 200 && (window == NULL || !IsWindowVisible(window)); ++tries) {
        Sleep(50);
        window = FindWindowA("Picture", NULL);
    }
    GetClientRect(window, &client);
    *(int *)found = client.right == 300 && client.bottom == 200;
    PostMessageA(window, WM_CLOSE, 0, 0);
    return 0;
}

int main(void)
{
    int32_t status;
    int found = 0;
    HGLOBAL dib = Dib24Gradation1(300, 200, 24, 0xFF, 0xFF0000, &status);
    HANDLE thread;
    JpgCodMainEx("guide-window.jpg", dib, 0, 0, 300, 200, 0, 0);
    GlobalFree(dib);
    thread = CreateThread(NULL, 0, look, &found, 0, NULL);
    status = show(GetModuleHandleA(NULL), "guide-window.jpg");
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
    DeleteFileA("guide-window.jpg");
    return status == 0 && found ? 0 : 1;
}
