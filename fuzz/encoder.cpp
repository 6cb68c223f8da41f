// The JPEG encoder: any image, settings, tables and rectangle. In slices, and at any level of the
// processor, it makes the same stream; that stream decodes to an image of the rectangle's size.
#include "image/dib.hpp"
#include "simd/cpu.hpp"
#include "support.hpp"

#include <algorithm>
#include <cstring>

using namespace kirvo_fuzz;

namespace {

struct Area {
    int32_t left, top, width, height;
};

struct Stream {
    int32_t status;
    Bytes bytes;

    bool operator==(const Stream&) const = default;
};

struct Job {
    kirvo::OwnedBlock image;
    Area area;
    bool grey;
    int32_t grey_mode;
    Bytes comment;

    Stream encode() const {
        JpgCodSetComment(comment.data(), static_cast<uint32_t>(comment.size()));
        const auto& [left, top, width, height] = area;
        uint32_t length = 0;
        int32_t status = 1;
        const kirvo::OwnedBlock block(
            grey ? JpgCodMainHGLOBAL_M(image.get(), left, top, width, height, grey_mode, &length,
                                       &status)
                 : JpgCodMainHGLOBAL(image.get(), left, top, width, height, &length, &status));
        require(block ? status == KIRVO_OK : status < 0, "a stream or a code");
        return {status, stream(block, length)};
    }

    Stream encode_slices(int32_t mcus_per_call, uint32_t most_calls) const {
        JpgCodSetComment(comment.data(), static_cast<uint32_t>(comment.size()));
        const auto& [left, top, width, height] = area;
        int32_t status = 1;
        const HGLOBAL handle =
            grey ? JpgCodFirst_M(image.get(), left, top, width, height, grey_mode, mcus_per_call,
                                 &status)
                 : JpgCodFirst(image.get(), left, top, width, height, mcus_per_call, &status);
        require(handle != nullptr ? status == KIRVO_OK : status < 0, "a block or a code");
        if (handle == nullptr)
            return {status, {}};
        uint32_t length = 0;
        int32_t result = 0;
        for (uint32_t calls = 0; result == 0; ++calls) {
            const int32_t control = calls < most_calls ? 0 : -1;
            result = grey ? JpgCodNext_M(control, &length) : JpgCodNext(control, &length);
        }
        if (result < 0)
            return {result, {}};
        require(result == 1, "an encode ends with 1");
        return {KIRVO_OK, stream(kirvo::OwnedBlock(handle), length)};
    }

  private:
    static Bytes stream(const kirvo::OwnedBlock& block, uint32_t length) {
        if (!block)
            return {};
        Bytes bytes = bytes_of(block.get());
        require(length <= bytes.size(), "a stream fits into its block");
        bytes.resize(length);
        return bytes;
    }
};

// With a header that fits its pixels mostly, else nothing but the bytes of the input.
kirvo::OwnedBlock draw_image(Input& input, bool grey) {
    const uint32_t kind = input.below(16);
    if (kind == 15)
        return block_of(input.rest());
    BITMAPINFOHEADER header = {};
    header.biSize = sizeof header;
    header.biWidth = input.between(1, 81) + (kind == 14 ? 3000 : 0);
    header.biHeight = input.between(1, kind == 14 ? 3 : 81);
    header.biPlanes = 1;
    header.biBitCount = grey || input.once_in(2) ? 8 : 24;
    header.biClrUsed = kind == 13 ? input.below(300) : 0;
    const size_t table =
        header.biBitCount == 8 ? 4 * (header.biClrUsed != 0 ? header.biClrUsed : 256) : 0;
    const size_t stride = (static_cast<size_t>(header.biWidth) * header.biBitCount / 8 + 3) & ~3u;
    Bytes bytes(sizeof header + table + stride * static_cast<size_t>(header.biHeight));
    std::memcpy(bytes.data(), &header, sizeof header);
    const Bytes content = input.rest();
    for (size_t at = sizeof header; at < bytes.size() && !content.empty(); ++at)
        bytes[at] = content[(at - sizeof header) % content.size()];
    if (kind == 12) // the last row may go without its padding, the whole block as well
        bytes.resize(bytes.size() - std::min<size_t>(input.below(64), bytes.size()));
    return block_of(bytes);
}

Area draw_area(Input& input, HGLOBAL image) {
    const kirvo::LockedDib dib(image);
    Area area = {0, 0, dib.width(), dib.height()};
    switch (input.below(4)) {
    case 1: // inside
        area.left = input.between(0, std::clamp(area.width, 1, 256) - 1);
        area.top = input.between(0, std::clamp(area.height, 1, 256) - 1);
        area.width -= area.left;
        area.height -= area.top;
        area.width -= area.width > 1 ? input.between(0, std::min(area.width, 256) - 1) : 0;
        break;
    case 2: // about
        area = {input.between(-2, 40), input.between(-2, 40), input.between(-2, 80),
                input.between(-2, 80)};
        break;
    }
    return area;
}

void draw_settings(Input& input) {
    static constexpr int32_t modes[] = {4, 2, 1};
    JpgCodSetSubsample(input.pick(modes));
    const int32_t level = input.between(0, 5);
    JpgCodSetQEx(level);
    int16_t tables[2][64];
    const uint32_t kind = level == 0 ? input.below(3) : 0;
    for (auto& table : tables) {
        for (int16_t& quantiser : table)
            quantiser = static_cast<int16_t>(kind == 0   ? 1
                                             : kind == 1 ? input.between(1, 255)
                                                         : 255);
    }
    JpgCodSetQtableEx(tables[0], tables[1], level == 0 ? input.between(0, 65) : 64);
}

void decode_again(const Stream& stream, const Area& area) {
    const kirvo::OwnedBlock data = block_of(stream.bytes);
    uint32_t width = 0, height = 0;
    int32_t error = 1;
    const kirvo::OwnedBlock image(JpgDecMainHGLOBAL(
        data.get(), static_cast<int32_t>(stream.bytes.size()), &width, &height, &error));
    if (error == KIRVO_NO_MEMORY) // an image above what a case may take
        return;
    require(error == KIRVO_OK, "the stream decodes");
    require(width == static_cast<uint32_t>(area.width) &&
                height == static_cast<uint32_t>(area.height),
            "the stream has the rectangle's size");
    look_at(image.get());
}

} // namespace

static void run(Input& input) {
    Job job;
    const uint32_t failing = draw_surroundings(input);
    kirvo::fail_allocation(0);
    job.grey = input.once_in(2);
    job.grey_mode = input.between(0, 2);
    draw_settings(input);
    static constexpr int32_t slices[] = {-1, 1, 2, 3, 7, 100, 0, -2};
    const int32_t mcus_per_call = input.pick(slices);
    const uint32_t most_calls = input.once_in(2) ? input.below(8) : 100000;
    job.comment.assign(input.below(20), 0xFE);
    job.image = draw_image(input, job.grey);
    job.area = draw_area(input, job.image.get());

    kirvo::fail_allocation(failing);
    const Stream whole = job.encode();
    kirvo::fail_allocation(failing);
    const Stream slices_made = job.encode_slices(
        mcus_per_call, mcus_per_call >= 1 || mcus_per_call == -1 ? most_calls : 3);
    kirvo::fail_allocation(0);
    if (failing != 0)
        return;
    require(slices_made == whole || slices_made.status == KIRVO_ABANDONED,
            "slices give what the whole gives");
    kirvo::lower_cpu_level(kirvo::CpuLevel::scalar);
    require(job.encode() == whole, "scalar code gives what the level gives");
    if (whole.status == KIRVO_OK)
        decode_again(whole, job.area);
}

static const Target target("encoder", run);
