/* What to do with a status. */
#include <stdio.h>
#include <kirvo.h>

//! [help]
/* Takes a picture of any depth to one that every effect accepts. Frees it; null on failure. */
HGLOBAL at_24_bits(HGLOBAL dib, int32_t *status)
{
    HGLOBAL result;
    switch (DibQueryBitCount(dib)) {
    case 24: *status = KIRVO_OK; return dib;
    case 1:
    case 4:
    case 8: result = IncreaseColor16M(dib, status); break;
    default: /* 16 or 32; anything else is refused with KIRVO_NEEDS_16_32 */
        result = DibConvert24bit(dib, status);
    }
    GlobalFree(dib);
    return result;
}
//! [help]

//! [words]
const char *words_for(int32_t status)
{
    switch (status) {
    case KIRVO_OK: return "done";
    case KIRVO_NO_MEMORY: return "There is not enough memory. Close other pictures.";
    case KIRVO_CANNOT_OPEN: return "The file cannot be opened.";
    case KIRVO_READ_ERROR: return "The file is damaged or incomplete.";
    case KIRVO_WRITE_ERROR: return "The disk is full.";
    case KIRVO_NOT_BMP: return "This is not a bitmap file.";
    default:
        return status > -20 && status <= -10 ? "This JPEG file is damaged or of a rare kind."
                                             : "The program has made a mistake.";
    }
}
//! [words]

int main(void)
{
    int32_t status = 1;
    HGLOBAL dib = at_24_bits(DibMemAllocEx(3, 3, 8), &status);
    if (dib == NULL || status != KIRVO_OK || DibQueryBitCount(dib) != 24)
        return 1;
    GlobalFree(dib);
    if (at_24_bits(NULL, &status) != NULL || status != KIRVO_NULL_HANDLE)
        return 1;
    printf("%s\n", words_for(KIRVO_JPEG_HUFFMAN));
    return 0;
}
