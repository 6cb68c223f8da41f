#include "pictures/alpha.hpp"
#include "pictures/picture.hpp"
#include "running/watch.hpp"
#include "system/settings.hpp"

namespace {

struct Compression {
    const char* name;
    Format format;
    uint32_t flags;
    int32_t compression;
};

constexpr Compression compressions[] = {
    {"none", KIRVO_FILES_TIFF, 0, KIRVO_FILES_COMPRESSION_NONE},
    {"lzw", KIRVO_FILES_TIFF, 0, KIRVO_FILES_COMPRESSION_LZW},
    {"deflate", KIRVO_FILES_TIFF, 0, KIRVO_FILES_COMPRESSION_DEFLATE},
    {"packbits", KIRVO_FILES_TIFF, 0, KIRVO_FILES_COMPRESSION_PACKBITS},
    {"rle", KIRVO_FILES_TARGA, KIRVO_FILES_RLE, 0},
    {"lossless", KIRVO_FILES_WEBP, KIRVO_FILES_WEBP_LOSSLESS, 0},
};

void choose_compression(KirvoFilesSaveOptions& how, const std::string& name) {
    for (const Compression& each : compressions) {
        if (name == each.name && how.format == each.format) {
            how.flags |= each.flags;
            how.compression = each.compression;
            return;
        }
    }
    throw Failure("--compression " + name, format_name(how.format) + " files have no such");
}

KirvoFilesSaveOptions as_structure(const WriteOptions& options, Format format) {
    KirvoFilesSaveOptions how = {};
    how.size = sizeof how;
    how.format = format;
    how.flags = (options.strip ? KIRVO_FILES_STRIP : 0) | (options.grey ? KIRVO_FILES_GREY : 0);
    how.quality = static_cast<uint32_t>(options.quality.value_or(0));
    how.level = static_cast<uint32_t>(options.level.value_or(0));
    how.subsample = static_cast<uint32_t>(options.subsample.value_or(0));
    how.sizeLimit = options.largest.value_or(0);
    how.dpiAcross = how.dpiDown = options.dpi.value_or(0);
    if (!options.compression.empty())
        choose_compression(how, options.compression);
    return how;
}

// The bytes of a file that the library has made, freed when they are written.
class Encoded {
  public:
    Encoded(const Picture& picture, const KirvoFilesSaveOptions& how, const std::string& name) {
        HGLOBAL block = nullptr;
        const int32_t status = KirvoFilesSaveMemory(picture.image.handle(), picture.known.handle(),
                                                    &how, &block, &count_, known_.receiver());
        block_.reset(block);
        expect(status, known_, name);
        bytes_.emplace(block);
    }

    const uint8_t* bytes() const { return bytes_->address(); }
    size_t count() const { return count_; }
    std::vector<std::string> notes() const { return told_notes(known_); }

  private:
    kirvo::Block block_;
    std::optional<kirvo::Locked> bytes_;
    uint32_t count_ = 0;
    Known known_;
};

} // namespace

Format format_for(const std::string& name, const std::string& to) {
    return written_format(to.empty() ? name : to);
}

void check_writable(const std::string& name, const std::string& to) {
    if (name == "-" && to.empty())
        throw UsageError("standard output has no extension: name the format with --to");
    if (to.empty() && extension(name).empty())
        throw UsageError(name +
                         " has no extension: name the format with --to, or a folder with -o");
    if (format_for(name, to) == KIRVO_FILES_UNKNOWN)
        throw UsageError((to.empty() ? name : "--to " + to) + ": pictures are written as ." +
                         written_formats(", ."));
}

Written fill(Output& file, const std::string& name, Picture picture, const WriteOptions& options) {
    const Watch watch("writing");
    const Format format = format_for(name, options.to);
    KirvoFilesSaveOptions how = as_structure(options, format);
    if (picture.alpha) {
        picture.image = with_alpha(std::move(picture.image), picture.alpha);
        how.flags |= KIRVO_FILES_WITH_ALPHA;
    }
    if (!options.comment.empty())
        picture.known.set_data(KIRVO_FILES_DATA_COMMENT, options.comment.data(),
                               options.comment.size());
    const Encoded encoded(picture, how, shown(name, "standard output"));
    file.write(encoded.bytes(), encoded.count());
    return {encoded.count(), encoded.notes()};
}

Written write_picture(const std::string& name, Picture picture, const WriteOptions& options) {
    check_writable(name, options.to);
    Output output(name, options.replace || settings.force);
    const Written written = fill(output, name, std::move(picture), options);
    output.complete();
    return written;
}

Written write_image(const std::string& name, Image image, const WriteOptions& options) {
    Picture picture;
    picture.image = std::move(image);
    return write_picture(name, std::move(picture), options);
}
