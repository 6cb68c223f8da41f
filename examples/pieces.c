/* Decodes a JPEG as it arrives: pieces IN.jpg OUT.bmp [PERCENT]
 *
 * Shows how far it is. Ctrl-C cancels, and so does coming to PERCENT. The pieces could as well come
 * from a network: the decoder never asks for more than there is. */
#include <kirvo.h>

#include <signal.h>
#include <stdio.h>
#include <stdlib.h>

enum { PIECE_SIZE = 4096, PROGRESS_ID = 100 };

static volatile sig_atomic_t cancelled;
static int stop_at = 101;

static void on_interrupt(int number)
{
    (void)number;
    cancelled = 1;
}

static LRESULT show_progress(LPARAM percent)
{
    printf("%d%%\n", (int)percent);
    fflush(stdout);
    if (percent >= stop_at)
        cancelled = 1;
    return 0;
}

/* Progress comes as WM_COMMAND messages to a window, here to one that is never shown. */
#ifdef _WIN32
static LRESULT CALLBACK on_message(HWND window, UINT message, WPARAM id, LPARAM value)
{
    if (message == WM_COMMAND && id == PROGRESS_ID)
        return show_progress(value);
    return DefWindowProcA(window, message, id, value);
}

static HWND make_window(void)
{
    WNDCLASSA window_class = {0};
    window_class.lpfnWndProc = on_message;
    window_class.lpszClassName = "pieces";
    if (RegisterClassA(&window_class) == 0)
        return NULL;
    return CreateWindowA("pieces", "", 0, 0, 0, 0, 0, HWND_MESSAGE, NULL, NULL, NULL);
}
#else
/* A system without windows: the program says what a message is, and any address is a window. */
static LRESULT on_message(HWND window, UINT message, WPARAM id, LPARAM value)
{
    (void)window;
    return message == WM_COMMAND && id == PROGRESS_ID ? show_progress(value) : 0;
}

static HWND make_window(void)
{
    const KirvoWindowHost host = {.SendMessageA = on_message};
    KirvoSetWindowHost(&host);
    return (HWND)&stop_at;
}
#endif

static int32_t read_piece(FILE *file, HGLOBAL piece)
{
    const int32_t size = (int32_t)fread(GlobalLock(piece), 1, PIECE_SIZE, file);
    GlobalUnlock(piece);
    return size;
}

/* Answers 1 with the picture, or a negative status. */
static int32_t decode(FILE *file, HGLOBAL piece, HGLOBAL *picture)
{
    int32_t result = JpgDecFirst(piece, read_piece(file, piece), picture);
    while (result == 0) { /* 0: it wants more */
        const int32_t size = read_piece(file, piece);
        if (cancelled || ferror(file))
            result = JpgDecNext(NULL, 0, -1, picture); /* -1 frees all that the decoder holds */
        else
            result = JpgDecNext(piece, size, size < PIECE_SIZE, picture);
    }
    KirvoSetProcess(NULL, 0, 0); /* a decode that was cancelled leaves progress switched on */
    return result;
}

int main(int argc, char **argv)
{
    FILE *file;
    HGLOBAL piece, picture = NULL;
    int32_t status;
    if (argc < 3) {
        fprintf(stderr, "usage: pieces IN.jpg OUT.bmp [PERCENT]\n");
        return 2;
    }
    if (argc > 3)
        stop_at = atoi(argv[3]);
    file = fopen(argv[1], "rb");
    if (file == NULL) {
        perror(argv[1]);
        return 1;
    }
    piece = GlobalAlloc(GHND, PIECE_SIZE);
    if (piece == NULL) {
        fclose(file);
        fprintf(stderr, "no memory\n");
        return 1;
    }
    signal(SIGINT, on_interrupt);
    KirvoSetProcess(make_window(), PROGRESS_ID, 1);
    status = decode(file, piece, &picture);
    GlobalFree(piece);
    fclose(file);

    if (status == 1) {
        status = DibWriteEx(argv[2], picture, 0, 0, -1, -1);
        GlobalFree(picture);
    }
    if (status != KIRVO_OK)
        fprintf(stderr, status == KIRVO_ABANDONED ? "cancelled\n" : "failed: status %d\n",
                (int)status);
    return status == KIRVO_OK ? 0 : 1;
}
