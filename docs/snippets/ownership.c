/* A chain of effects that frees what it no longer needs. */
#include <kirvo.h>

//! [chain]
/* Blurs and brightens; the caller owns the result, and still owns the source. */
HGLOBAL soften(HGLOBAL source, int32_t width, int32_t height, int32_t *status)
{
    HGLOBAL bright = NULL;
    HGLOBAL blurred = Dib24Gausian(source, 0, 0, width, height, status);
    if (blurred != NULL) {
        bright = Dib24Brightness(blurred, 0, 0, width, height, 5, status);
        GlobalFree(blurred);
    }
    return bright;
}
//! [chain]

int main(void)
{
    int32_t status = 0, unused;
    HGLOBAL dib = Dib24Solid(8, 8, 24, 0x808080, &status);
    HGLOBAL soft = soften(dib, 8, 8, &status);
    if (soft == NULL || status != KIRVO_OK)
        return 1;
    GlobalFree(soft);
    if (soften(dib, 9, 8, &status) != NULL || status != KIRVO_BAD_PARAMETER)
        return 1;
    GlobalFree(dib);
    return soften(NULL, 8, 8, &unused) == NULL && unused == KIRVO_NULL_HANDLE ? 0 : 1;
}
