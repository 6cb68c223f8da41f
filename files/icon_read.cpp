// Icons and cursors: a directory of bitmaps and PNG files.
#include "formats.hpp"

namespace kirvo_files {
namespace {

struct Entry {
    uint32_t width, height, bits;
    Bytes bytes;
};

constexpr uint32_t directory_at = 6, entry_bytes = 16;

Entry entry_at(Bytes file, uint32_t index) {
    const uint64_t at = directory_at + uint64_t{entry_bytes} * index;
    Entry entry = {file[at], file[at + 1], file.le16(at + 6),
                   file.part(file.le32(at + 12), file.le32(at + 8))};
    const Bytes& image = entry.bytes;
    if (image.begins("\x89PNG")) {
        entry.width = image.be32(16);
        entry.height = image.be32(20);
        entry.bits = 32;
    } else if (image.le32(0) >= 40) {
        entry.width = image.le32(4);
        entry.height = image.le32(8) / 2;
        entry.bits = image.le16(14); // cursors keep their hot spot in the directory
    }
    return entry;
}

uint32_t best_entry(Bytes file, uint32_t count) {
    uint32_t best = 0;
    uint64_t most = 0;
    for (uint32_t i = 0; i < count; ++i) {
        const Entry entry = entry_at(file, i);
        const uint64_t area = uint64_t{entry.width & 0xFFFF} * (entry.height & 0xFFFF);
        const uint64_t weight = area * 64 + (entry.bits < 64 ? entry.bits : 63);
        if (weight > most) {
            most = weight;
            best = i;
        }
    }
    return best;
}

} // namespace

bool looks_like_icon(Bytes bytes, uint32_t type) {
    return bytes.le16(0) == 0 && bytes.le16(2) == type && bytes.le16(4) != 0 &&
           bytes.has(directory_at, entry_bytes) && bytes.le32(directory_at + 12) >= 22 &&
           bytes.le32(directory_at + 12) < bytes.size();
}

Status read_icon(Job& job) {
    const Bytes file = job.bytes;
    const uint32_t count = file.le16(4);
    if (!file.has(directory_at, uint64_t{entry_bytes} * count))
        return job.ends_early_in_headers();
    const uint32_t wanted = job.options.frame;
    if (wanted > count)
        return job.known.fail(KIRVO_FILES_NO_FRAME,
                              Text::format("it has %u images, no number %u", count, wanted));
    const uint32_t index = wanted != 0 ? wanted - 1 : best_entry(file, count);
    job.known.numbers.frames = count;
    job.known.numbers.frame = index + 1;
    job.bytes = entry_at(file, index).bytes;
    job.known.set(KIRVO_FILES_LOSSLESS);
    Status status;
    if (job.bytes.begins("\x89PNG")) {
        status = read_as(KIRVO_FILES_PNG, job);
        job.known.text(KIRVO_FILES_TEXT_VARIANT) = Text::format("a PNG inside");
    } else {
        status = job.bytes.size() < 40 ? job.ends_early_in_headers() : read_icon_dib(job);
        job.known.set(KIRVO_FILES_HAS_ALPHA);
    }
    job.bytes = file;
    return status;
}

} // namespace kirvo_files
