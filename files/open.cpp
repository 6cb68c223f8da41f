// The functions that open and inform.
#include "codec.hpp"
#include "formats.hpp"
#include "system.hpp"

#include <cstdlib>

namespace kirvo_files {
namespace {

bool read_options(const KirvoFilesOpenOptions* given, OpenOptions& options) {
    if (given == nullptr)
        return true;
    if (given->size != sizeof *given || given->flags >= KIRVO_FILES_BACKGROUND * 2)
        return false;
    options.flags = given->flags;
    if (options.has(KIRVO_FILES_BACKGROUND))
        options.background = given->background & 0xFFFFFF;
    options.frame = given->frame;
    return true;
}

// Formats without headers that the room reads: Kirvo opens the file itself.
bool is_by_name(int32_t format) {
    return format == KIRVO_FILES_Q0 || format == KIRVO_FILES_RAW || format == KIRVO_FILES_PHOTO_CD;
}

// A Q0 file has no header: a text file beside it, of its name and another extension, tells the size.
Status size_of_q0(const char* name, Job& job) {
    const char* end = name + std::strlen(name);
    for (const char* at = end; at != name && at[-1] != '/' && at[-1] != '\\'; --at)
        if (at[-1] == '.') {
            end = at - 1;
            break;
        }
    const Text companion = Text::format("%.*s.IPR", static_cast<int>(end - name), name);
    Known unheard;
    Buffer words;
    int64_t width = 0, height = 0;
    if (read_file(companion.c_str(), words, unheard) == KIRVO_FILES_OK && words.append("", 1)) {
        char* rest = nullptr;
        width = std::strtol(reinterpret_cast<const char*>(words.data()), &rest, 10);
        height = std::strtol(rest, nullptr, 10);
    }
    if (width <= 0 || height <= 0 || width > INT32_MAX || height > INT32_MAX ||
        uint64_t{3} * static_cast<uint32_t>(width) >
            job.bytes.size() / static_cast<uint32_t>(height))
        return job.known.fail(KIRVO_FILES_UNSUPPORTED,
                              Text::format("companion .IPR file missing, or the Q0 file is too"
                                           " short"));
    job.known.numbers.width = static_cast<uint32_t>(width);
    job.known.numbers.height = static_cast<uint32_t>(height);
    return KIRVO_FILES_OK;
}

Status inform_by_name(int32_t format, const char* name, Job& job) {
    Status status = KIRVO_FILES_OK;
    if (format == KIRVO_FILES_RAW) {
        job.known.numbers.width = job.bytes.be16(8);
        job.known.numbers.height = job.bytes.be16(10);
    } else if (format == KIRVO_FILES_Q0) {
        status = size_of_q0(name, job);
    }
    job.known.numbers.wholeRows = job.known.numbers.height;
    job.known.numbers.channels = 3;
    job.known.numbers.fileBits = 24;
    return status;
}

Status turn_upright(Job& job) {
    Known& known = job.known;
    const uint32_t orientation = known.numbers.orientation;
    if (orientation < 2 || job.options.has(KIRVO_FILES_NO_TURN))
        return KIRVO_FILES_OK;
    if (orientation >= 5) {
        std::swap(known.numbers.width, known.numbers.height);
        std::swap(known.numbers.dpiAcross, known.numbers.dpiDown);
    }
    known.upright = true;
    if (!job.dib)
        return KIRVO_FILES_OK;
    Dib upright;
    const Status status = turned(job.dib, orientation, upright);
    if (status != KIRVO_FILES_OK)
        return status;
    job.dib = std::move(upright);
    known.note(KIRVO_FILES_NOTE_TURNED,
               Text::format("turned upright (orientation %u)", orientation));
    return KIRVO_FILES_OK;
}

// A picture inside of another file, such as the small one of a format that is not known here, is not
// the picture of that file.
Status unknown_format(Job& job) {
    for (uint64_t at = 1; at < 65536 && job.bytes.has(at, 4); ++at)
        if (job.bytes.begins("\xFF\xD8\xFF", at) && job.bytes[at + 3] >= 0xC0)
            return job.known.fail(
                KIRVO_FILES_NOT_A_PICTURE,
                Text::format("not a picture of a known format: a JPEG begins in it,"
                             " behind %u other bytes",
                             static_cast<uint32_t>(at)));
    return job.known.fail(KIRVO_FILES_NOT_A_PICTURE,
                          Text::format("not a picture of a known format"));
}

Status read_any(const char* name, Job& job) {
    if (job.bytes.empty())
        return job.known.fail(KIRVO_FILES_EMPTY, Text::format("the file is empty"));
    const int32_t format = recognise(job.bytes, name);
    job.known.numbers.format = format;
    job.known.numbers.fileBytes = static_cast<uint32_t>(job.bytes.size());
    if (format == KIRVO_FILES_UNKNOWN || (is_by_name(format) && name[0] == 0))
        return unknown_format(job);
    Status status = !is_by_name(format) ? read_as(format, job)
                    : job.headers_only  ? inform_by_name(format, name, job)
                                        : kirvo_read_named(format, name, job);
    if (status != KIRVO_FILES_OK)
        return status;
    if (!job.headers_only && !job.dib)
        return KIRVO_FILES_NO_MEMORY;
    if (job.dib)
        job.dib.set_dpi(job.known.numbers.dpiAcross, job.known.numbers.dpiDown);
    status = turn_upright(job);
    if (job.dib) {
        job.known.numbers.dibBits = job.dib.bits();
        if (job.known.text(KIRVO_FILES_TEXT_DECODER).empty())
            job.known.text(KIRVO_FILES_TEXT_DECODER) = Text::format("KirvoFiles");
    }
    return status;
}

Status open(const char* name, const Bytes* memory, const KirvoFilesOpenOptions* given,
            bool headers_only, HGLOBAL* dib, KirvoFile* file) {
    if (dib != nullptr)
        *dib = nullptr;
    if (file != nullptr)
        *file = nullptr;
    OpenOptions options;
    if (!read_options(given, options) || (headers_only ? file == nullptr : dib == nullptr))
        return KIRVO_FILES_BAD_PARAMETER;
    Known* known = make<Known>();
    if (known == nullptr)
        return KIRVO_FILES_NO_MEMORY;
    Buffer content;
    Status status = KIRVO_FILES_OK;
    if (memory == nullptr)
        status = read_file(name, content, *known);
    Job job{
        memory != nullptr ? *memory : content.bytes(), options, headers_only, *known, {}, false};
    if (status == KIRVO_FILES_OK)
        status = read_any(name, job);
    if (status == KIRVO_FILES_OK && !headers_only)
        *dib = job.dib.hand_over();
    return answer(status, name, known, file);
}

Status open_wide(const KirvoWide* name, const KirvoFilesOpenOptions* options, bool headers_only,
                 HGLOBAL* dib, KirvoFile* file) {
    const Text spelled = utf8_of(name);
    if (spelled.empty() && name[0] != 0) {
        if (dib != nullptr)
            *dib = nullptr;
        if (file != nullptr)
            *file = nullptr;
        return KIRVO_FILES_NO_MEMORY;
    }
    return open(spelled.c_str(), nullptr, options, headers_only, dib, file);
}

} // namespace
} // namespace kirvo_files

using namespace kirvo_files;

int32_t WINAPI KirvoFilesOpen(const char* name, const KirvoFilesOpenOptions* options, HGLOBAL* dib,
                              KirvoFile* file) {
    return name != nullptr ? open(name, nullptr, options, false, dib, file)
                           : KIRVO_FILES_BAD_PARAMETER;
}

int32_t WINAPI KirvoFilesOpenW(const KirvoWide* name, const KirvoFilesOpenOptions* options,
                               HGLOBAL* dib, KirvoFile* file) {
    return name != nullptr ? open_wide(name, options, false, dib, file) : KIRVO_FILES_BAD_PARAMETER;
}

int32_t WINAPI KirvoFilesOpenMemory(const void* bytes, uint32_t count,
                                    const KirvoFilesOpenOptions* options, HGLOBAL* dib,
                                    KirvoFile* file) {
    const Bytes memory(static_cast<const uint8_t*>(bytes), count);
    return bytes != nullptr || count == 0 ? open("", &memory, options, false, dib, file)
                                          : KIRVO_FILES_BAD_PARAMETER;
}

int32_t WINAPI KirvoFilesInfo(const char* name, const KirvoFilesOpenOptions* options,
                              KirvoFile* file) {
    return name != nullptr ? open(name, nullptr, options, true, nullptr, file)
                           : KIRVO_FILES_BAD_PARAMETER;
}

int32_t WINAPI KirvoFilesInfoW(const KirvoWide* name, const KirvoFilesOpenOptions* options,
                               KirvoFile* file) {
    return name != nullptr ? open_wide(name, options, true, nullptr, file)
                           : KIRVO_FILES_BAD_PARAMETER;
}

int32_t WINAPI KirvoFilesInfoMemory(const void* bytes, uint32_t count,
                                    const KirvoFilesOpenOptions* options, KirvoFile* file) {
    const Bytes memory(static_cast<const uint8_t*>(bytes), count);
    return bytes != nullptr || count == 0 ? open("", &memory, options, true, nullptr, file)
                                          : KIRVO_FILES_BAD_PARAMETER;
}

void WINAPI KirvoFilesClose(KirvoFile file) { unmake(known_of(file)); }
