// The functions that tell what is known of a file, and of formats.
#include "codec.hpp"
#include "formats.hpp"

using namespace kirvo_files;

int32_t WINAPI KirvoFilesDescribe(KirvoFile file, KirvoFilesDescription* description) {
    const Known* known = known_of(file);
    if (known == nullptr || description == nullptr || description->size != sizeof *description)
        return KIRVO_FILES_BAD_PARAMETER;
    *description = known->numbers;
    description->size = sizeof *description;
    return KIRVO_FILES_OK;
}

int32_t WINAPI KirvoFilesNote(KirvoFile file, uint32_t index) {
    const Known* known = known_of(file);
    return known != nullptr && index < known->numbers.notes ? known->notes[index].kind
                                                            : KIRVO_FILES_NOTE_NONE;
}

uint32_t WINAPI KirvoFilesText(KirvoFile file, int32_t kind, uint32_t index, char* text,
                               uint32_t capacity) {
    const Known* known = known_of(file);
    const Text nothing;
    const Text* found = &nothing;
    if (known != nullptr && kind == KIRVO_FILES_TEXT_NOTE && index < known->numbers.notes)
        found = &known->notes[index].text;
    else if (known != nullptr && kind >= 0 && kind <= KIRVO_FILES_TEXT_COMMENT && index == 0)
        found = &known->texts[kind];
    return found->copy_to(text, capacity);
}

// The tables that there are, one after the other.
static uint32_t copy_quantisers(const JpegTables& tables, void* bytes, uint32_t capacity) {
    uint32_t count = 0;
    for (uint32_t i = 0; i < 4; ++i) {
        if (!tables.present[i])
            continue;
        if (bytes != nullptr && count < capacity)
            std::memcpy(static_cast<uint8_t*>(bytes) + count, tables.tables[i],
                        capacity - count < 128 ? capacity - count : 128);
        count += 128;
    }
    return count;
}

uint32_t WINAPI KirvoFilesData(KirvoFile file, int32_t kind, void* bytes, uint32_t capacity) {
    const Known* known = known_of(file);
    if (known == nullptr)
        return 0;
    if (kind == KIRVO_FILES_DATA_QUANTISERS)
        return copy_quantisers(known->jpeg, bytes, capacity);
    const Buffer* data = kind == KIRVO_FILES_DATA_EXIF      ? &known->exif
                         : kind == KIRVO_FILES_DATA_ICC     ? &known->icc
                         : kind == KIRVO_FILES_DATA_XMP     ? &known->xmp
                         : kind == KIRVO_FILES_DATA_PALETTE ? &known->palette
                         : kind == KIRVO_FILES_DATA_COMMENT ? &known->comment
                                                            : nullptr;
    if (data == nullptr)
        return 0;
    const size_t count = data->size() < capacity ? data->size() : capacity;
    if (bytes != nullptr && count != 0)
        std::memcpy(bytes, data->data(), count);
    return static_cast<uint32_t>(data->size());
}

int32_t WINAPI KirvoFilesSetData(KirvoFile* file, int32_t kind, const void* bytes, uint32_t count) {
    if (file == nullptr || (bytes == nullptr && count != 0))
        return KIRVO_FILES_BAD_PARAMETER;
    Known* known = *file != nullptr ? known_of(*file) : make<Known>();
    if (known == nullptr)
        return *file != nullptr ? KIRVO_FILES_BAD_PARAMETER : KIRVO_FILES_NO_MEMORY;
    Buffer* data = kind == KIRVO_FILES_DATA_EXIF      ? &known->exif
                   : kind == KIRVO_FILES_DATA_ICC     ? &known->icc
                   : kind == KIRVO_FILES_DATA_XMP     ? &known->xmp
                   : kind == KIRVO_FILES_DATA_COMMENT ? &known->comment
                                                      : nullptr;
    Buffer kept;
    Status status = KIRVO_FILES_OK;
    if (data == nullptr)
        status = KIRVO_FILES_BAD_PARAMETER;
    else if (!kept.append(bytes, count))
        status = KIRVO_FILES_NO_MEMORY;
    else {
        data->swap(kept);
        known->of_caller |= 1u << kind;
    }
    if (*file == nullptr && status != KIRVO_FILES_OK)
        unmake(known);
    else
        *file = known;
    return status;
}

// Formats that the room or Kirvo reads by itself.
static bool reads_itself(int32_t format) {
    switch (format) {
    case KIRVO_FILES_BMP:
    case KIRVO_FILES_JPEG:
    case KIRVO_FILES_TARGA:
    case KIRVO_FILES_ICON:
    case KIRVO_FILES_CURSOR:
    case KIRVO_FILES_Q0:
    case KIRVO_FILES_RAW:
    case KIRVO_FILES_PHOTO_CD:
        return true;
    default:
        return false;
    }
}

static bool writes_itself(int32_t format) {
    return format == KIRVO_FILES_BMP || format == KIRVO_FILES_JPEG || format == KIRVO_FILES_TARGA;
}

uint32_t WINAPI KirvoFilesAbilities(int32_t format) {
    uint32_t abilities = 0;
    if (reads_itself(format) || decoder_name(format) != nullptr)
        abilities |= KIRVO_FILES_READS;
    if (writes_itself(format) || encoder_name(format) != nullptr)
        abilities |= KIRVO_FILES_WRITES;
    return abilities;
}

static Text codec_of(int32_t format) {
    const char* own = format == KIRVO_FILES_JPEG || format == KIRVO_FILES_Q0 ||
                              format == KIRVO_FILES_RAW || format == KIRVO_FILES_PHOTO_CD
                          ? "Kirvo"
                      : reads_itself(format) ? "KirvoFiles"
                                             : nullptr;
    const char* other = decoder_name(format);
    if (own != nullptr && other != nullptr)
        return Text::format("%s, %s", own, other);
    return own != nullptr ? Text::format("%s", own) : Text::format("%s", other ? other : "");
}

uint32_t WINAPI KirvoFilesFormatText(int32_t format, int32_t word, char* text, uint32_t capacity) {
    switch (word) {
    case KIRVO_FILES_FORMAT_NAME:
        return copy_text(format_name(format), text, capacity);
    case KIRVO_FILES_FORMAT_EXTENSIONS:
        return copy_text(format_extensions(format), text, capacity);
    case KIRVO_FILES_FORMAT_CODEC:
        return codec_of(format).copy_to(text, capacity);
    default:
        return copy_text("", text, capacity);
    }
}

int32_t WINAPI KirvoFilesFormatOf(const char* name) {
    return name != nullptr ? format_of_name(name) : KIRVO_FILES_UNKNOWN;
}
