// Kirvo's exports, one call at a time.
#include "codec.hpp"
#include "lock.hpp"
#include "system.hpp"

namespace kirvo_files {
namespace {

Status from_kirvo(Known& known, int32_t status) {
    char words[100];
    KirvoFilesStatusText(status, words, sizeof words);
    const auto fail = [&](Status own) { return known.fail(own, Text::format("%s", words)); };
    switch (status) {
    case KIRVO_OK:
        return KIRVO_FILES_OK;
    case KIRVO_NO_MEMORY:
        return KIRVO_FILES_NO_MEMORY;
    case KIRVO_ABANDONED:
        return KIRVO_FILES_ABANDONED;
    case KIRVO_CANNOT_OPEN:
        return fail(KIRVO_FILES_CANNOT_OPEN);
    case KIRVO_READ_ERROR:
        return fail(KIRVO_FILES_ENDS_EARLY);
    case KIRVO_NOT_RAW:
        return fail(KIRVO_FILES_DAMAGED);
    default:
        return fail(KIRVO_FILES_UNSUPPORTED);
    }
}

// A block with these bytes, for as long as the object lives.
class Block {
  public:
    explicit Block(Bytes bytes) : handle_(allocate_block(bytes.size())) {
        if (void* data = handle_ != nullptr ? GlobalLock(handle_) : nullptr) {
            std::memcpy(data, bytes.data(), bytes.size());
            GlobalUnlock(handle_);
        }
    }
    ~Block() {
        if (handle_ != nullptr)
            GlobalFree(handle_);
    }
    Block(const Block&) = delete;
    Block& operator=(const Block&) = delete;
    HGLOBAL handle() const { return handle_; }

  private:
    HGLOBAL handle_;
};

// The grey picture of one that has three equal channels.
Status narrowed(Dib& dib) {
    Dib wide = std::move(dib);
    const Status status = dib.make(wide.width(), wide.height(), 8, 256);
    if (status != KIRVO_FILES_OK)
        return status;
    dib.set_greys();
    for (uint32_t y = 0; y < wide.height(); ++y) {
        const uint8_t* in = wide.row(y);
        uint8_t* out = dib.row(y);
        for (uint32_t x = 0; x < wide.width(); ++x)
            out[x] = in[3 * x];
    }
    return KIRVO_FILES_OK;
}

} // namespace

Status kirvo_decode(Job& job, bool grey) {
    const Block block(job.bytes);
    if (block.handle() == nullptr)
        return KIRVO_FILES_NO_MEMORY;
    uint32_t width, height;
    int32_t status;
    HGLOBAL image;
    {
        const KirvoLock lock;
        image = JpgDecMainHGLOBAL(block.handle(), static_cast<int32_t>(job.bytes.size()), &width,
                                  &height, &status);
    }
    if (image == nullptr)
        return status == KIRVO_NO_MEMORY   ? KIRVO_FILES_NO_MEMORY
               : status == KIRVO_ABANDONED ? KIRVO_FILES_ABANDONED
                                           : KIRVO_FILES_NO_CODEC;
    if (!job.dib.adopt(image))
        return KIRVO_FILES_NO_MEMORY;
    job.known.text(KIRVO_FILES_TEXT_DECODER) = Text::format("Kirvo");
    return grey ? narrowed(job.dib) : KIRVO_FILES_OK;
}

Status kirvo_read_named(int32_t format, const char* name, Job& job) {
    const Text spelled = ansi_name(name); // Kirvo takes names in the system's code page
    if (spelled.empty())
        return job.known.fail(KIRVO_FILES_CANNOT_OPEN,
                              Text::format("the system has no short name for it that Kirvo can"
                                           " open"));
    uint32_t width, height, bits;
    int32_t status;
    HGLOBAL image;
    {
        const KirvoLock lock;
        image = format == KIRVO_FILES_Q0 ? Q0Read(spelled.c_str(), &width, &height, &bits, &status)
                : format == KIRVO_FILES_RAW
                    ? RawRead(spelled.c_str(), &width, &height, &bits, &status)
                    : PcdRead(spelled.c_str(), 3, 0, &width, &height, &status);
    }
    if (image == nullptr && format == KIRVO_FILES_PHOTO_CD)
        return job.known.fail(KIRVO_FILES_NO_CODEC,
                              Text::format("Photo CD files need their maker's library, "
                                           "PCDLIB32.DLL"));
    if (image == nullptr)
        return from_kirvo(job.known, status);
    if (!job.dib.adopt(image))
        return KIRVO_FILES_NO_MEMORY;
    job.known.numbers.width = job.dib.width();
    job.known.numbers.height = job.dib.height();
    job.known.numbers.wholeRows = job.dib.height();
    job.known.text(KIRVO_FILES_TEXT_DECODER) = Text::format("Kirvo");
    return KIRVO_FILES_OK;
}

bool JpegPlan::for_kirvo() const {
    if (grey) {
        for (uint16_t value : tables[table_of[0]])
            if (value < 1 || value > 255)
                return false;
        return true;
    }
    if (across[1] != 1 || down[1] != 1 || across[2] != 1 || down[2] != 1)
        return false;
    const bool known_sampling = (across[0] == 1 && down[0] == 1) ||
                                (across[0] == 2 && down[0] == 1) ||
                                (across[0] == 2 && down[0] == 2);
    if (!known_sampling)
        return false;
    if (std::memcmp(tables[table_of[1]], tables[table_of[2]], sizeof tables[0]) != 0)
        return false;
    for (uint8_t number : table_of)
        for (uint16_t value : tables[number])
            if (value < 1 || value > 255)
                return false;
    return true;
}

namespace {

// The picture as Kirvo's encoder takes it: 24 bits, or 8 bits grey.
Status prepared(const View& view, bool grey, Dib& dib) {
    const Status status = dib.make(view.width(), view.height(), grey ? 8 : 24, grey ? 256 : 0);
    if (status != KIRVO_FILES_OK)
        return status;
    Buffer line;
    if (!line.resize(uint64_t{3} * view.width()))
        return KIRVO_FILES_NO_MEMORY;
    if (grey)
        dib.set_greys();
    for (uint32_t y = 0; y < view.height(); ++y) {
        uint8_t* out = dib.row(y);
        if (grey && view.is_grey_ramp()) {
            std::memcpy(out, view.row(y), view.width());
            continue;
        }
        view.rgb_row(y, line.data());
        const uint8_t* in = line.data();
        for (uint32_t x = 0; x < view.width(); ++x, in += 3)
            if (grey) {
                out[x] = static_cast<uint8_t>(
                    (19595 * in[0] + 38470 * in[1] + 7471 * in[2] + 32768) >> 16);
            } else {
                out[3 * x] = in[2];
                out[3 * x + 1] = in[1];
                out[3 * x + 2] = in[0];
            }
    }
    return KIRVO_FILES_OK;
}

Status stream_of(HGLOBAL block, uint32_t count, int32_t status, Buffer& out) {
    if (block == nullptr)
        return status == KIRVO_ABANDONED ? KIRVO_FILES_ABANDONED : KIRVO_FILES_NO_CODEC;
    const void* data = GlobalLock(block);
    const bool copied = data != nullptr && out.assign({static_cast<const uint8_t*>(data), count});
    if (data != nullptr)
        GlobalUnlock(block);
    GlobalFree(block);
    return copied ? KIRVO_FILES_OK : KIRVO_FILES_NO_MEMORY;
}

} // namespace

Status kirvo_encode(const View& view, const JpegPlan& plan, Buffer& out) {
    Dib dib;
    Status status = prepared(view, plan.grey, dib);
    if (status != KIRVO_FILES_OK)
        return status;
    const auto width = static_cast<int32_t>(dib.width()),
               height = static_cast<int32_t>(dib.height());
    int16_t luma[64], chroma[64];
    for (uint32_t i = 0; i < 64; ++i) {
        luma[i] = static_cast<int16_t>(plan.tables[plan.table_of[0]][i]);
        chroma[i] = static_cast<int16_t>(plan.grey ? luma[i] : plan.tables[plan.table_of[1]][i]);
    }
    HGLOBAL image = dib.hand_over(), block;
    uint32_t count = 0;
    int32_t result;
    {
        const KirvoLock lock;
        JpgCodSetSubsample(plan.across[0] * plan.down[0]);
        JpgCodSetQEx(0);
        JpgCodSetQtableEx(luma, chroma, static_cast<int32_t>(plan.coefficients));
        JpgCodSetComment(nullptr, 0);
        block = plan.grey ? JpgCodMainHGLOBAL_M(image, 0, 0, width, height, 0, &count, &result)
                          : JpgCodMainHGLOBAL(image, 0, 0, width, height, &count, &result);
        JpgCodSetSubsample(4);
        JpgCodSetQEx(4);
    }
    GlobalFree(image);
    return stream_of(block, count, result, out);
}

Status kirvo_level(uint32_t level, JpegPlan& plan) {
    Dib dib;
    Status status = dib.make(8, 8, 24);
    if (status != KIRVO_FILES_OK)
        return status;
    HGLOBAL image = dib.hand_over(), block;
    uint32_t count = 0;
    int32_t result;
    {
        const KirvoLock lock;
        JpgCodSetQEx(static_cast<int32_t>(level));
        block = JpgCodMainHGLOBAL(image, 0, 0, 8, 8, &count, &result);
        JpgCodSetQEx(4);
    }
    GlobalFree(image);
    Buffer stream;
    status = stream_of(block, count, result, stream);
    if (status != KIRVO_FILES_OK)
        return status;
    Known known;
    JpegHeaders headers;
    status = read_jpeg_headers(stream.bytes(), known, headers);
    for (uint32_t i = 0; i < 2; ++i)
        std::memcpy(plan.tables[i], known.jpeg.tables[i], sizeof plan.tables[i]);
    if (level == 5)
        plan.coefficients = 21;
    return status;
}

} // namespace kirvo_files
