// GIF by giflib: the first frame, on its canvas.
#include "codecs/codecs.hpp"

#include <gif_lib.h>

namespace kirvo_files {
namespace {

int feed(GifFileType* file, GifByteType* to, int count) {
    auto* rest = static_cast<Bytes*>(file->UserData);
    const auto wanted = static_cast<size_t>(count);
    const size_t given = wanted < rest->size() ? wanted : rest->size();
    if (given != 0)
        std::memcpy(to, rest->data(), given);
    *rest = rest->part(given);
    return static_cast<int>(given);
}

class Decoder {
  public:
    explicit Decoder(Job& job) : job_(job), rest_(job.bytes) {}
    ~Decoder() {
        int error;
        DGifCloseFile(file_, &error);
    }

    Status run() {
        int error = 0;
        file_ = DGifOpen(&rest_, feed, &error);
        if (file_ == nullptr)
            return error == D_GIF_ERR_NOT_ENOUGH_MEM ? KIRVO_FILES_NO_MEMORY
                                                     : job_.ends_early_in_headers();
        GifRecordType record;
        do {
            if (DGifGetRecordType(file_, &record) == GIF_ERROR)
                return stopped(0);
            if (record == EXTENSION_RECORD_TYPE && !extension())
                return stopped(0);
        } while (record != IMAGE_DESC_RECORD_TYPE && record != TERMINATE_RECORD_TYPE);
        if (record == TERMINATE_RECORD_TYPE)
            return job_.known.fail(KIRVO_FILES_DAMAGED, Text::format("there is no picture in it"));
        return DGifGetImageDesc(file_) == GIF_ERROR ? stopped(0) : frame();
    }

  private:
    bool extension() {
        int code;
        GifByteType* block;
        if (DGifGetExtension(file_, &code, &block) == GIF_ERROR)
            return false;
        GraphicsControlBlock control;
        if (code == GRAPHICS_EXT_FUNC_CODE && block != nullptr &&
            DGifExtensionToGCB(block[0], block + 1, &control) == GIF_OK)
            transparent_ = control.TransparentColor;
        while (block != nullptr)
            if (DGifGetExtensionNext(file_, &block) == GIF_ERROR)
                return false;
        return true;
    }

    Status frame() {
        const GifImageDesc& image = file_->Image;
        const ColorMapObject* map = image.ColorMap != nullptr ? image.ColorMap : file_->SColorMap;
        const uint32_t width = job_.known.numbers.width, height = job_.known.numbers.height;
        if (map == nullptr || image.Width <= 0 || image.Height <= 0)
            return job_.known.fail(KIRVO_FILES_DAMAGED, Text::format("a frame without colours"));
        const bool whole = image.Left == 0 && image.Top == 0 &&
                           static_cast<uint32_t>(image.Width) >= width &&
                           static_cast<uint32_t>(image.Height) >= height;
        const auto colours = static_cast<uint32_t>(map->ColorCount);
        // What the frame leaves free is transparent: that takes an entry of its own.
        const uint32_t empty = transparent_ >= 0 ? static_cast<uint32_t>(transparent_) : colours;
        const uint32_t needed = whole ? colours : empty + 1 > colours ? empty + 1 : colours;
        const uint32_t bits = bits_for_colours(needed < 256 ? needed : 256);
        Status status = job_.dib.make(width, height, bits, 1u << bits);
        if (status != KIRVO_FILES_OK)
            return status;
        uint8_t alpha[256];
        std::memset(alpha, 255, sizeof alpha);
        for (uint32_t i = 0; i < colours && i < 256; ++i)
            job_.dib.set_colour(i, map->Colors[i].Red, map->Colors[i].Green, map->Colors[i].Blue);
        if (empty < 256 && (transparent_ >= 0 || !whole))
            alpha[empty] = 0;
        keep_palette(job_, colours);
        status = rows(image, whole, static_cast<uint8_t>(empty < 256 ? empty : 0));
        const Status applied = apply_palette_alpha(job_, alpha, 1u << bits);
        return status != KIRVO_FILES_OK ? status : applied;
    }

    Status rows(const GifImageDesc& image, bool whole, uint8_t empty) {
        const uint32_t width = job_.dib.width(), height = job_.dib.height();
        const auto left = static_cast<uint32_t>(image.Left), top = static_cast<uint32_t>(image.Top);
        const auto across = static_cast<uint32_t>(image.Width);
        const auto down = static_cast<uint32_t>(image.Height);
        Buffer in, line;
        if (!in.resize(across) || !line.resize(uint64_t{width} + 1))
            return KIRVO_FILES_NO_MEMORY;
        std::memset(line.data(), empty, line.size());
        for (uint32_t y = 0; y < height && !whole; ++y)
            put_indices(job_.dib, y, line.data());
        static const uint32_t starts[] = {0, 4, 2, 1}, steps[] = {8, 8, 4, 2};
        uint32_t stored = 0;
        for (uint32_t pass = 0; pass < (image.Interlace ? 4u : 1u); ++pass)
            for (uint32_t y = image.Interlace ? starts[pass] : 0; y < down;
                 y += image.Interlace ? steps[pass] : 1, ++stored) {
                if (DGifGetLine(file_, in.data(), static_cast<int>(across)) == GIF_ERROR)
                    return stopped(image.Interlace ? 0 : top + stored);
                if (top + y >= height)
                    continue;
                for (uint32_t x = 0; x < across && left + x < width; ++x)
                    line[left + x] = in[x];
                std::memset(job_.dib.row(top + y), 0, job_.dib.stride());
                put_indices(job_.dib, top + y, line.data());
            }
        return KIRVO_FILES_OK;
    }

    Status stopped(uint32_t whole) {
        const int error = file_->Error;
        if (error == D_GIF_ERR_NOT_ENOUGH_MEM)
            return KIRVO_FILES_NO_MEMORY;
        const bool early = rest_.empty();
        if (!job_.dib)
            return early ? job_.ends_early_in_headers()
                         : job_.known.fail(KIRVO_FILES_DAMAGED, Text::format("a bad header"));
        return early ? job_.ends_early(whole)
                     : job_.damaged(
                           Text::format("damaged: whole to row %u of %u", whole, job_.dib.height()),
                           whole);
    }

    Job& job_;
    Bytes rest_;
    GifFileType* file_ = nullptr;
    int transparent_ = NO_TRANSPARENT_COLOR;
};

} // namespace

Status gif_decode(Job& job) { return Decoder(job).run(); }

#define KIRVO_WORD(number) #number
#define KIRVO_WORDS(number) KIRVO_WORD(number)
const char* gif_name() {
    return "giflib " KIRVO_WORDS(GIFLIB_MAJOR) "." KIRVO_WORDS(GIFLIB_MINOR) "." KIRVO_WORDS(
        GIFLIB_RELEASE);
}

} // namespace kirvo_files
