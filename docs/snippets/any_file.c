/* Any picture file to a JPEG file, with its metadata and a word for whatever is worth one. */
#include <stdio.h>
#include <kirvo_files.h>

//! [say]
/* What the library has to say of a file: why it failed, or what was left out on the way. */
static void say(KirvoFile file, int32_t status)
{
    char words[500];
    uint32_t i;
    if (status != KIRVO_FILES_OK) {
        KirvoFilesText(file, KIRVO_FILES_TEXT_REASON, 0, words, sizeof words);
        fprintf(stderr, "%s\n", words);
    }
    for (i = 0; KirvoFilesNote(file, i) != KIRVO_FILES_NOTE_NONE; ++i) {
        KirvoFilesText(file, KIRVO_FILES_TEXT_NOTE, i, words, sizeof words);
        fprintf(stderr, "note: %s\n", words);
    }
}
//! [say]

//! [convert]
int32_t to_jpeg(const char *in, const char *out, uint32_t quality)
{
    KirvoFilesSaveOptions options = {0};
    KirvoFile source = NULL, made = NULL;
    HGLOBAL dib = NULL;
    int32_t status =
        KirvoFilesOpen(in, NULL, &dib, &source); /* turned upright, checked for damage */
    say(source, status);
    if (status == KIRVO_FILES_OK) {
        options.size = sizeof options;
        options.quality = quality; /* 0: the source's own, if it is a JPEG */
        status = KirvoFilesSave(out, dib, source, &options, &made);
        say(made, status);
        GlobalFree(dib);
    }
    KirvoFilesClose(source);
    KirvoFilesClose(made);
    return status;
}
//! [convert]

int main(void)
{
    int32_t status;
    KirvoFilesDescription about = {0};
    KirvoFile file = NULL;
    HGLOBAL dib = Dib24Solid(64, 48, 24, 0x4080C0, &status);
    about.size = sizeof about;
    if (KirvoFilesSave("any_file_snippet.bmp", dib, NULL, NULL, NULL) != KIRVO_FILES_OK)
        return 1;
    GlobalFree(dib);
    if (to_jpeg("any_file_snippet.bmp", "any_file_snippet.jpg", 75) != KIRVO_FILES_OK ||
        to_jpeg("any_file_snippet.missing", "any_file_snippet.jpg", 75) != KIRVO_FILES_MISSING)
        return 2;
    status = KirvoFilesInfo("any_file_snippet.jpg", NULL, &file);
    KirvoFilesDescribe(file, &about);
    KirvoFilesClose(file);
    remove("any_file_snippet.bmp");
    remove("any_file_snippet.jpg");
    return status == KIRVO_FILES_OK && about.quality == 75 && about.width == 64 ? 0 : 3;
}
