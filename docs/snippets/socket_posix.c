/* Decodes a JPEG stream while it arrives over a socket. */
//! [socket]
#include <sys/socket.h>
#include <kirvo.h>

enum { PIECE = 16384 };

/* Receives up to PIECE bytes into the block. The number, 0 at the end, below 0 on failure. */
static int32_t receive(int socket, HGLOBAL piece)
{
    int32_t size = (int32_t)recv(socket, GlobalLock(piece), PIECE, 0);
    GlobalUnlock(piece);
    return size;
}

/* The picture, which is the caller's, or null and a status. */
HGLOBAL decode_from_socket(int socket, int32_t *status)
{
    HGLOBAL image = NULL;
    HGLOBAL piece = GlobalAlloc(GHND, PIECE);
    int32_t size, result;
    if (piece == NULL) {
        *status = KIRVO_NO_MEMORY;
        return NULL;
    }
    size = receive(socket, piece);
    result = size < 0 ? KIRVO_READ_ERROR : JpgDecFirst(piece, size, &image);
    while (result == 0) {
        size = receive(socket, piece);
        if (size < 0) {
            JpgDecNext(NULL, 0, -1, &image); /* abandon: frees all that the decode holds */
            result = KIRVO_READ_ERROR;
        } else {
            result = JpgDecNext(piece, size, size == 0, &image); /* 1: nothing more will come */
        }
    }
    GlobalFree(piece);
    *status = result < 0 ? result : KIRVO_OK;
    return image;
}
//! [socket]

#include <stdio.h>
#include <unistd.h>

/* Sends a stream of length bytes through a socket and decodes it at the other end. */
static HGLOBAL through_a_socket(HGLOBAL stream, uint32_t length, int32_t *status)
{
    int ends[2];
    HGLOBAL image;
    if (socketpair(AF_UNIX, SOCK_STREAM, 0, ends) != 0)
        return NULL;
    if (write(ends[0], GlobalLock(stream), length) != (ssize_t)length)
        return NULL;
    GlobalUnlock(stream);
    close(ends[0]);
    image = decode_from_socket(ends[1], status);
    close(ends[1]);
    return image;
}

int main(void)
{
    int32_t status = 1;
    uint32_t length = 0;
    HGLOBAL dib = Dib24Gradation3(700, 500, 24, 0xFF, 0xFF00, 0xFF0000, 0xFFFFFF, &status);
    HGLOBAL stream = JpgCodMainHGLOBAL(dib, 0, 0, 700, 500, &length, &status);
    HGLOBAL image = through_a_socket(stream, length, &status);
    if (image == NULL || status != KIRVO_OK)
        return 1;
    GlobalFree(image);
    image = through_a_socket(stream, 100, &status); /* the line breaks within the header */
    GlobalFree(stream);
    GlobalFree(dib);
    return image == NULL && status == KIRVO_JPEG_HEADER ? 0 : 1;
}
