/* Progress in a Windows program: messages to a window of its own. */
#include <stdio.h>
#include <string.h>
#include <kirvo.h>

//! [window]
#define ID_PROGRESS 100

LRESULT CALLBACK window_procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam)
{
    if (message == WM_COMMAND && LOWORD(wparam) == ID_PROGRESS) {
        char title[32];
        sprintf(title, "%d %%", (int)lparam); /* 0, then steps of 5 or more, then 100 */
        SetWindowTextA(window, title);
        return 0;
    }
    return DefWindowProcA(window, message, wparam, lparam);
}

HGLOBAL watched_blur(HWND window, HGLOBAL dib, int32_t width, int32_t height, int32_t *status)
{
    KirvoSetProcess(window, ID_PROGRESS, 1); /* for one operation */
    return Dib24Gausian(dib, 0, 0, width, height, status);
}
//! [window]

int main(void)
{
    WNDCLASSA window_class = {0};
    int32_t status;
    HWND window;
    HGLOBAL dib, blurred;
    char title[32] = "";
    window_class.lpfnWndProc = window_procedure;
    window_class.lpszClassName = "KirvoGuide";
    RegisterClassA(&window_class);
    window = CreateWindowA("KirvoGuide", "", WS_OVERLAPPEDWINDOW, 0, 0, 200, 100, NULL, NULL, NULL,
                           NULL);
    if (window == NULL)
        return 1;
    dib = Dib24Solid(10, 200, 24, 0, &status);
    blurred = watched_blur(window, dib, 10, 200, &status);
    GetWindowTextA(window, title, sizeof title);
    GlobalFree(dib);
    GlobalFree(blurred);
    DestroyWindow(window);
    return strcmp(title, "100 %") == 0 ? 0 : 1;
}
