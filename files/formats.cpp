#include "formats.hpp"

namespace kirvo_files {
namespace {

struct Format {
    const char *name, *extensions;
    Status (*read)(Job& job); // headers and, unless only they are wanted, pixels
};

const Format formats[KIRVO_FILES_FORMATS] = {
    {"", "", nullptr},
    {"BMP", "bmp dib rle", read_bmp},
    {"JPEG", "jpg jpeg jpe jfif", read_jpeg},
    {"PNG", "png apng", read_png},
    {"Targa", "tga icb vda vst", read_targa},
    {"TIFF", "tif tiff", read_tiff},
    {"WebP", "webp", read_webp},
    {"GIF", "gif", read_gif},
    {"icon", "ico", read_icon},
    {"cursor", "cur", read_icon},
    {"Q0", "q0", nullptr},
    {"RAW", "raw", nullptr},
    {"Photo CD", "pcd", nullptr},
    {"HEIF", "heic heif avif hif", read_by_system},
    {"camera", "cr2 cr3 nef arw dng orf rw2 raf pef srw", read_by_system},
};

char lower(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + 32) : letter;
}

// Whether a word is in a list that blanks separate, in any case.
bool listed(const char* word, const char* list) {
    while (*list != 0) {
        const char* at = word;
        while (*at != 0 && lower(*at) == *list) {
            ++at;
            ++list;
        }
        if (*at == 0 && (*list == ' ' || *list == 0))
            return at != word;
        while (*list != 0 && *list++ != ' ') {
        }
    }
    return false;
}

bool is_heif(Bytes bytes) {
    if (!bytes.begins("ftyp", 4))
        return false;
    for (const char* brand : {"heic", "heix", "mif1", "msf1", "hevc", "avif", "avis"})
        if (bytes.has(8, 4) && std::memcmp(bytes.data() + 8, brand, 4) == 0)
            return true;
    return false;
}

bool is_tiff(Bytes bytes) {
    return bytes.begins("II*\0") || bytes.begins("MM\0*") || bytes.begins("II+\0") ||
           bytes.begins("MM\0+");
}

// TIFF structures that are no TIFF pictures, and others that only cameras make.
bool is_camera(Bytes bytes, int32_t named) {
    if (bytes.begins("CR\x02", 8) || bytes.begins("ftypcrx ", 4) ||
        bytes.begins("FUJIFILMCCD-RAW") || bytes.begins("IIRO") || bytes.begins("IIU\0"))
        return true;
    return named == KIRVO_FILES_CAMERA && is_tiff(bytes);
}

} // namespace

const char* format_name(int32_t format) {
    return format > 0 && format < KIRVO_FILES_FORMATS ? formats[format].name : "";
}

const char* format_extensions(int32_t format) {
    return format > 0 && format < KIRVO_FILES_FORMATS ? formats[format].extensions : "";
}

int32_t format_of_name(const char* name) {
    const char* word = name;
    for (const char* at = name; *at != 0; ++at)
        if (*at == '.' || *at == '/' || *at == '\\')
            word = at + 1;
    for (int32_t format = 1; format < KIRVO_FILES_FORMATS; ++format)
        if (listed(word, formats[format].extensions))
            return format;
    return KIRVO_FILES_UNKNOWN;
}

int32_t recognise(Bytes bytes, const char* name) {
    const int32_t named = format_of_name(name);
    if (bytes.begins("\xFF\xD8\xFF"))
        return KIRVO_FILES_JPEG;
    if (bytes.begins("\x89PNG\r\n\x1A\n"))
        return KIRVO_FILES_PNG;
    if (bytes.begins("GIF87a") || bytes.begins("GIF89a"))
        return KIRVO_FILES_GIF;
    if (bytes.begins("RIFF") && bytes.begins("WEBP", 8))
        return KIRVO_FILES_WEBP;
    if (is_heif(bytes))
        return KIRVO_FILES_HEIF;
    if (is_camera(bytes, named))
        return KIRVO_FILES_CAMERA;
    if (is_tiff(bytes))
        return KIRVO_FILES_TIFF;
    if (bytes.begins("mhwanh"))
        return KIRVO_FILES_RAW;
    if (bytes.begins("PCD_IPI", 2048) || bytes.begins("PCD_OPA"))
        return KIRVO_FILES_PHOTO_CD;
    if (looks_like_icon(bytes, 1))
        return KIRVO_FILES_ICON;
    if (looks_like_icon(bytes, 2))
        return KIRVO_FILES_CURSOR;
    if (bytes.begins("BM") || (bytes.begins("BA") && bytes.begins("BM", 14)))
        return KIRVO_FILES_BMP;
    if (named == KIRVO_FILES_Q0)
        return KIRVO_FILES_Q0;
    const bool has_footer =
        bytes.size() >= 26 && bytes.begins("TRUEVISION-XFILE.", bytes.size() - 18);
    if (has_footer || named == KIRVO_FILES_TARGA || looks_like_targa(bytes))
        return KIRVO_FILES_TARGA;
    return KIRVO_FILES_UNKNOWN;
}

Status read_as(int32_t format, Job& job) {
    const auto read = format > 0 && format < KIRVO_FILES_FORMATS ? formats[format].read : nullptr;
    return read != nullptr
               ? read(job)
               : job.known.fail(KIRVO_FILES_NO_CODEC, Text::format("%s files are read by name only",
                                                                   format_name(format)));
}

} // namespace kirvo_files
