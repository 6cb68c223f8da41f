/* Opens a JPEG file and saves it as a BMP file. */
#include <stdio.h>

//! [first]
#include <kirvo.h>

int jpeg_to_bmp(const char *in, const char *out)
{
    uint32_t width, height;
    int32_t status;
    HGLOBAL dib = JpgDecMainEx(in, &width, &height, &status);
    if (dib == NULL)
        return status; /* a negative KirvoStatus */
    status = DibWriteEx(out, dib, 0, 0, (int32_t)width, (int32_t)height);
    GlobalFree(dib);
    return status; /* KIRVO_OK */
}
//! [first]

int main(void)
{
    int32_t status;
    HGLOBAL dib = Dib24Gradation1(64, 48, 24, 0x000080, 0xFFFF00, &status);
    if (dib == NULL || JpgCodMainEx("guide.jpg", dib, 0, 0, 64, 48, 0, 0) != KIRVO_OK)
        return 1;
    GlobalFree(dib);
    return jpeg_to_bmp("guide.jpg", "guide.bmp") == KIRVO_OK &&
                   jpeg_to_bmp("there is no such file", "guide.bmp") == KIRVO_CANNOT_OPEN
               ? 0
               : 1;
}
