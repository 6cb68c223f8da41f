/* Decodes a JPEG stream while it arrives over a socket of WinSock. */
//! [socket]
#include <winsock2.h>
#include <kirvo.h>

enum { PIECE = 16384 };

/* Receives up to PIECE bytes into the block. The number, 0 at the end, below 0 on failure. */
static int32_t receive(SOCKET connection, HGLOBAL piece)
{
    int32_t size = recv(connection, GlobalLock(piece), PIECE, 0);
    GlobalUnlock(piece);
    return size;
}

/* The picture, which is the caller's, or null and a status. */
HGLOBAL decode_from_socket(SOCKET connection, int32_t *status)
{
    HGLOBAL image = NULL;
    HGLOBAL piece = GlobalAlloc(GHND, PIECE);
    int32_t size, result;
    if (piece == NULL) {
        *status = KIRVO_NO_MEMORY;
        return NULL;
    }
    size = receive(connection, piece);
    result = size < 0 ? KIRVO_READ_ERROR : JpgDecFirst(piece, size, &image);
    while (result == 0) {
        size = receive(connection, piece);
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

/* Two ends of a connection of this machine with itself. */
static int connect_ends(SOCKET ends[2])
{
    struct sockaddr_in place = {0};
    int size = sizeof place;
    SOCKET door = socket(AF_INET, SOCK_STREAM, 0);
    place.sin_family = AF_INET;
    place.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (bind(door, (struct sockaddr *)&place, sizeof place) != 0 || listen(door, 1) != 0)
        return 0;
    getsockname(door, (struct sockaddr *)&place, &size);
    ends[0] = socket(AF_INET, SOCK_STREAM, 0);
    if (connect(ends[0], (struct sockaddr *)&place, sizeof place) != 0)
        return 0;
    ends[1] = accept(door, NULL, NULL);
    closesocket(door);
    return ends[1] != INVALID_SOCKET;
}

/* Sends a stream of length bytes through a socket and decodes it at the other end. */
static HGLOBAL through_a_socket(HGLOBAL stream, uint32_t length, int32_t *status)
{
    SOCKET ends[2];
    HGLOBAL image;
    if (!connect_ends(ends))
        return NULL;
    if (send(ends[0], GlobalLock(stream), (int)length, 0) != (int)length)
        return NULL;
    GlobalUnlock(stream);
    closesocket(ends[0]);
    image = decode_from_socket(ends[1], status);
    closesocket(ends[1]);
    return image;
}

int main(void)
{
    WSADATA data;
    int32_t status = 1;
    uint32_t length = 0;
    HGLOBAL dib = Dib24Gradation3(300, 200, 24, 0xFF, 0xFF00, 0xFF0000, 0xFFFFFF, &status);
    HGLOBAL stream = JpgCodMainHGLOBAL(dib, 0, 0, 300, 200, &length, &status);
    HGLOBAL image;
    if (WSAStartup(MAKEWORD(2, 2), &data) != 0)
        return 1;
    image = through_a_socket(stream, length, &status);
    if (image == NULL || status != KIRVO_OK)
        return 1;
    GlobalFree(image);
    image = through_a_socket(stream, 100, &status); /* the line breaks within the header */
    GlobalFree(stream);
    GlobalFree(dib);
    WSACleanup();
    return image == NULL && status == KIRVO_JPEG_HEADER ? 0 : 1;
}
