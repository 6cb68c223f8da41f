/* Progress without windows: a window host takes the messages. */
#include <stdio.h>
#include <kirvo.h>

//! [host]
#define ID_PROGRESS 100

static LRESULT take_message(HWND window, UINT message, WPARAM command, LPARAM percent)
{
    (void)window; /* as given to KirvoSetProcess; here it may be anything, null included */
    if (message == WM_COMMAND && command == ID_PROGRESS) {
        printf("%d %%\n", (int)percent);
    }
    return 0;
}

static void watch_in_the_terminal(void)
{
    KirvoWindowHost host = {0}; /* members that are null do nothing */
    host.SendMessageA = take_message;
    KirvoSetWindowHost(&host); /* copied */
}
//! [host]

int main(void)
{
    int32_t status;
    int lines = 0, percent = -1;
    HGLOBAL dib = Dib24Solid(10, 200, 24, 0, &status), blurred;
    FILE *printed = freopen("guide.progress", "w+", stdout);
    watch_in_the_terminal();
    KirvoSetProcess(NULL, ID_PROGRESS, 1);
    blurred = Dib24Gausian(dib, 0, 0, 10, 200, &status);
    GlobalFree(dib);
    GlobalFree(blurred);
    rewind(printed);
    while (fscanf(printed, "%d %%", &percent) == 1)
        lines++;
    return lines == 21 && percent == 100 ? 0 : 1;
}
