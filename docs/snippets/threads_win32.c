/* A worker thread that calls the library, and a window that stays alive meanwhile. */
#include <windows.h>
#include <kirvo.h>

//! [worker]
#define WM_PICTURE_READY (WM_APP + 1)

typedef struct Work {
    HWND window; /* hears of the end */
    const char *name;
    HGLOBAL picture; /* the result, or null */
    int32_t status;
} Work;

static CRITICAL_SECTION library; /* the library takes one call at a time */

static DWORD WINAPI blur_in_background(LPVOID parameter)
{
    Work *work = parameter;
    uint32_t width, height;
    HGLOBAL photo;
    EnterCriticalSection(&library);
    photo = JpgDecMainEx(work->name, &width, &height, &work->status);
    if (photo != NULL) {
        work->picture = Dib24Gausian(photo, 0, 0, (int32_t)width, (int32_t)height, &work->status);
        GlobalFree(photo);
    }
    LeaveCriticalSection(&library);
    PostMessageA(work->window, WM_PICTURE_READY, 0, (LPARAM)work);
    return 0;
}

HANDLE start(Work *work)
{
    return CreateThread(NULL, 0, blur_in_background, work, 0, NULL);
}
//! [worker]

int main(void)
{
    int32_t status, good = 0;
    HGLOBAL dib = Dib24Solid(40, 30, 24, 0x808080, &status);
    Work work = {0};
    MSG message;
    HANDLE thread;
    InitializeCriticalSection(&library);
    JpgCodMainEx("guide-threads.jpg", dib, 0, 0, 40, 30, 0, 0);
    GlobalFree(dib);
    work.window = CreateWindowA("STATIC", "", 0, 0, 0, 1, 1, NULL, NULL, NULL, NULL);
    work.name = "guide-threads.jpg";
    thread = start(&work);
    while (!good && GetMessageA(&message, NULL, 0, 0) > 0)
        good = message.message == WM_PICTURE_READY && (Work *)message.lParam == &work;
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
    DeleteCriticalSection(&library);
    DestroyWindow(work.window);
    DeleteFileA("guide-threads.jpg");
    good = good && work.picture != NULL && work.status == KIRVO_OK;
    GlobalFree(work.picture);
    return good ? 0 : 1;
}
