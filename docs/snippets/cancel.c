/* Encodes in slices; the user may cancel between them. */
#include <stdio.h>
#include <kirvo.h>

static int asked_to_cancel;

static int user_wants_to_stop(void)
{
    return asked_to_cancel;
}

//! [cancel]
/* The stream is the first *length bytes of the block returned, which is the caller's. */
HGLOBAL encode_unless_cancelled(HGLOBAL dib, int32_t width, int32_t height, uint32_t *length,
                                int32_t *status)
{
    HGLOBAL block = JpgCodFirst(dib, 0, 0, width, height, 500, status); /* 500 MCUs a call */
    int32_t result = 0;
    if (block == NULL)
        return NULL;
    while (result == 0)
        result = JpgCodNext(user_wants_to_stop() ? -1 : 0, length);
    if (result == 1)
        return block;
    *status = result; /* KIRVO_ABANDONED after -1; the block has been freed */
    return NULL;
}
//! [cancel]

int main(void)
{
    int32_t status = 1;
    uint32_t length = 0;
    HGLOBAL dib = Dib24Solid(640, 480, 24, 0x4080C0, &status);
    HGLOBAL stream = encode_unless_cancelled(dib, 640, 480, &length, &status);
    if (stream == NULL || status != KIRVO_OK || length < 600)
        return 1;
    GlobalFree(stream);
    asked_to_cancel = 1;
    stream = encode_unless_cancelled(dib, 640, 480, &length, &status);
    GlobalFree(dib);
    return stream == NULL && status == KIRVO_ABANDONED ? 0 : 1;
}
