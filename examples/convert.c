/* Converts a picture: convert IN OUT
 *
 * IN is a BMP, JPEG or Targa file, whatever it is called. The name of OUT says what is written:
 * .bmp, .jpg or .tga. */
#include <kirvo.h>

#include <stdio.h>
#include <string.h>

/* The first bytes of a file tell its kind better than its name does. Targa files begin with
 * nothing in particular; their reader says whether it can use the file. */
static HGLOBAL open_picture(const char *name, int32_t *status)
{
    unsigned char start[2] = {0, 0};
    uint32_t width, height, bits;
    FILE *file = fopen(name, "rb");
    if (file == NULL) {
        *status = KIRVO_CANNOT_OPEN;
        return NULL;
    }
    if (fread(start, 1, 2, file) < 2)
        start[0] = 0;
    fclose(file);

    if (start[0] == 0xFF && start[1] == 0xD8)
        return JpgDecMainEx(name, &width, &height, status);
    if (start[0] == 'B' && start[1] == 'M')
        return DibReadEx(name, &width, &height, &bits, status);
    return Targa24Read(name, &width, &height, status);
}

/* JPEG and Targa files are made of 24-bit pictures. A BMP file may hold another depth: the picture
 * is then replaced by its conversion. */
static int32_t make_24_bits(HGLOBAL *picture)
{
    int32_t status = KIRVO_OK;
    HGLOBAL converted;
    const int32_t bits = DibQueryBitCount(*picture);
    if (bits == 24)
        return KIRVO_OK;
    if (bits <= 8)
        converted = IncreaseColor16M(*picture, &status); /* colours from the colour table */
    else
        converted = DibConvert24bit(*picture, &status); /* from 16 or 32 bits */
    if (converted != NULL) {
        GlobalFree(*picture);
        *picture = converted;
    }
    return status;
}

static int32_t write_jpeg(const char *name, HGLOBAL picture)
{
    const BITMAPINFOHEADER *header = GlobalLock(picture);
    const int32_t width = header->biWidth, height = header->biHeight;
    GlobalUnlock(picture);
    JpgCodSetQEx(2); /* quality: 1 is finest, 5 is coarsest */
    return JpgCodMainEx(name, picture, 0, 0, width, height, 0, 0);
}

static int ends_with(const char *name, const char *extension)
{
    const size_t length = strlen(name), end = strlen(extension);
    return length > end && strcmp(name + length - end, extension) == 0;
}

static int32_t write_picture(const char *name, HGLOBAL *picture)
{
    int32_t status;
    if (ends_with(name, ".bmp"))
        return DibWriteEx(name, *picture, 0, 0, -1, -1); /* -1, -1: the whole picture */
    status = make_24_bits(picture);
    if (status != KIRVO_OK)
        return status;
    if (ends_with(name, ".jpg"))
        return write_jpeg(name, *picture);
    return Targa24Write(name, *picture, 0, 0, -1, -1);
}

int main(int argc, char **argv)
{
    int32_t status = KIRVO_OK;
    HGLOBAL picture;
    if (argc != 3 ||
        !(ends_with(argv[2], ".bmp") || ends_with(argv[2], ".jpg") || ends_with(argv[2], ".tga"))) {
        fprintf(stderr, "usage: convert IN OUT.bmp|OUT.jpg|OUT.tga\n");
        return 2;
    }
    picture = open_picture(argv[1], &status);
    if (picture == NULL) {
        fprintf(stderr, "%s cannot be read: status %d\n", argv[1], (int)status);
        return 1;
    }
    status = write_picture(argv[2], &picture);
    GlobalFree(picture); /* what the library returns is ours to free */
    if (status != KIRVO_OK) {
        fprintf(stderr, "%s cannot be written: status %d\n", argv[2], (int)status);
        if (status == KIRVO_WRITE_ERROR)
            remove(argv[2]); /* the part that did fit on the disk */
        return 1;
    }
    return 0;
}
