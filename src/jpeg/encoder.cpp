// The state of the encode in progress and its steps. The source and the output block stay locked
// from the first call to the last.
#include "jpeg/encoder.hpp"

#include "core/pixels.hpp"
#include "core/progress.hpp"
#include "jpeg/codec.hpp"
#include "jpeg/encode_entropy.hpp"
#include "jpeg/encode_headers.hpp"
#include "jpeg/encode_settings.hpp"
#include "jpeg/quantiser.hpp"
#include "jpeg/tables.hpp"
#include "simd/kernels.hpp"

#include <algorithm>
#include <cstring>

namespace kirvo {

namespace {

// What one MCU covers.
struct McuShape {
    int32_t width, height;

    int32_t across() const { return width / 8; }
    int32_t down() const { return height / 8; }
};

// MCUs are prepared side by side in tiles that stay in the first-level cache.
constexpr size_t tile_width = 256;
constexpr size_t luminance_groups = tile_width / 8 / blocks_abreast;

struct Tile {
    alignas(64) int8_t y[16][tile_width];
    alignas(64) int8_t cb[16][tile_width];
    alignas(64) int8_t cr[16][tile_width];
    alignas(64) int8_t half[8][tile_width];

    BlockGroup y_groups[2][luminance_groups];
    BlockGroup cb_groups[luminance_groups];
    BlockGroup cr_groups[luminance_groups];
};

// The samples of each index of an 8-bit image.
struct IndexSamples {
    int8_t y[256], cb[256], cr[256];
    bool plain_grey; // Y is the index but for the level shift
};

int8_t shifted(uint8_t grey) { return static_cast<int8_t>(grey - 128); }

constexpr size_t staging_threshold = 4000;

struct Encoder {
    bool active;
    uint32_t serial; // counts starts and ends, so that a call sees that a handler ended its encode
    EncodeFamily family;
    HGLOBAL source, output;

    const Kernels* kernels;
    const uint8_t* first_pixel; // of the region's top row
    ptrdiff_t row_step;         // to the next row down
    bool indexed;
    IndexSamples index_samples;
    Rect region;

    McuShape mcu;
    int64_t mcus_across, mcu_count, mcus_done;
    int32_t mcus_per_call;
    Progress progress;

    Quantiser luminance, chrominance;
    int16_t y_predictor, cb_predictor, cr_predictor;
    McuPart parts[4];
    size_t part_count;
    OutputStream stream;
    BitWriter bits{nullptr};
    uint8_t staging[staging_threshold + 6 * longest_block];
    Tile tile;
};

constinit Encoder encoder = {};

bool is_grey(EncodeFamily family) { return family == EncodeFamily::grey; }

McuShape mcu_shape(EncodeFamily family) {
    if (is_grey(family) || encode_settings.sampling == 1)
        return {8, 8};
    return {16, encode_settings.sampling == 2 ? 8 : 16};
}

// Products and quotients wrap and truncate as unsigned 32-bit ones do.
uint32_t output_estimate(const EncodeRequest& request) {
    static constexpr uint32_t divisors[] = {1, 1, 7, 15, 25, 40};
    const auto level = static_cast<size_t>(encode_settings.level);
    const uint32_t samples = static_cast<uint32_t>(request.region.width) *
                             static_cast<uint32_t>(request.region.height) *
                             (is_grey(request.family) ? 1 : 3);
    const uint32_t estimate = level < 2 ? samples : samples * 4 / divisors[level];
    return std::max<uint32_t>(estimate, 32768);
}

Status check(const EncodeRequest& request, const LockedDib& dib) {
    if (!is_grey(request.family))
        return DibCheckRect8or24(dib, request.region, RowStart::after_header);
    return DibCheckRect(dib, request.region,
                        {[](int32_t bits) { return bits == 8; }, Status::needs_8},
                        RowStart::after_header);
}

// The 256 entries after the header, whatever the table's length.
void prepare_index_samples(const EncodeRequest& request, const LockedDib& dib) {
    IndexSamples& samples = encoder.index_samples;
    const ColourTable table(dib, dib.header.biSize);
    samples.plain_grey = true;
    for (int32_t i = 0; i < 256; ++i) {
        const auto index = static_cast<uint8_t>(i);
        const RGBQUAD& entry = table.entry[i];
        const uint8_t bgr[] = {entry.rgbBlue, entry.rgbGreen, entry.rgbRed};
        encoder.kernels->samples_of(bgr, 1, samples.y + i, samples.cb + i, samples.cr + i);
        if (is_grey(request.family))
            samples.y[i] = shifted(request.grey_from_table ? entry.rgbBlue : index);
        samples.plain_grey = samples.plain_grey && samples.y[i] == shifted(index);
    }
}

void prepare_source(const EncodeRequest& request, const LockedDib& dib) {
    const Rect& region = request.region;
    const uint32_t pixels = static_cast<uint32_t>(region.width) *
                            static_cast<uint32_t>(region.height);
    encode_settings.source_bytes = dib.bits() == 24 ? pixels * 3 : pixels;
    const Rows rows = dib.rows(RowStart::after_header);
    encoder.first_pixel = rows[int64_t{dib.height()} - region.y - 1] +
                          static_cast<ptrdiff_t>(region.x) * (dib.bits() / 8);
    encoder.row_step = -rows.stride;
    encoder.region = region;
    encoder.indexed = dib.bits() == 8;
    encoder.kernels = &kernels();
    if (encoder.indexed)
        prepare_index_samples(request, dib);
}

void prepare_geometry(const EncodeRequest& request) {
    encoder.mcu = mcu_shape(request.family);
    const auto mcus = [](int32_t size, int32_t mcu) { return (int64_t{size} + mcu - 1) / mcu; };
    encoder.mcus_across = mcus(request.region.width, encoder.mcu.width);
    encoder.mcu_count = encoder.mcus_across * mcus(request.region.height, encoder.mcu.height);
    encoder.mcus_done = 0;
    encoder.mcus_per_call = request.mcus_per_call == -1 ? static_cast<int32_t>(encoder.mcu_count)
                                                        : request.mcus_per_call;
}

void prepare_parts() {
    const auto across = static_cast<size_t>(encoder.mcu.across());
    encoder.part_count = 0;
    const auto add = [](const BlockGroup* groups, size_t blocks, const EntropyCodes& codes,
                        int16_t& predictor) {
        predictor = 0;
        encoder.parts[encoder.part_count++] = {groups, blocks, &codes, &predictor};
    };
    for (int32_t row = 0; row < encoder.mcu.down(); ++row)
        add(encoder.tile.y_groups[row], across, luminance_codes, encoder.y_predictor);
    if (is_grey(encoder.family))
        return;
    add(encoder.tile.cb_groups, 1, chrominance_codes, encoder.cb_predictor);
    add(encoder.tile.cr_groups, 1, chrominance_codes, encoder.cr_predictor);
}

void prepare_coding(OwnedBlock output, uint32_t output_bytes) {
    const int32_t count = prepare_tables();
    set_quantiser(encoder.luminance, quantisation_slots[0].data(), count);
    set_quantiser(encoder.chrominance, quantisation_slots[1].data(), count);
    prepare_parts();
    encoder.bits = BitWriter(encoder.staging);
    encoder.output = output.release();
    encoder.stream = {static_cast<uint8_t*>(GlobalLock(encoder.output)), output_bytes, 0};
}

// The encode is over; the output block is kept or freed.
void end_encode(bool keep_output) {
    GlobalUnlock(encoder.source);
    GlobalUnlock(encoder.output);
    if (!keep_output)
        GlobalFree(encoder.output);
    encoder.active = false;
    ++encoder.serial;
}

Status fail(Status status) {
    end_encode(false);
    codec_busy = false;
    return status;
}

void look_up(const int8_t* samples, const uint8_t* indexes, size_t count, int8_t* out) {
    for (size_t i = 0; i < count; ++i)
        out[i] = samples[indexes[i]];
}

// Samples of the picture row y (from the region's top), columns from x on, into row i of the tile.
void sample_row(int32_t x, int32_t y, size_t i, size_t count) {
    Tile& tile = encoder.tile;
    const uint8_t* row = encoder.first_pixel + y * encoder.row_step;
    if (!encoder.indexed) {
        encoder.kernels->samples_of(row + static_cast<ptrdiff_t>(x) * 3, count, tile.y[i], tile.cb[i],
                              tile.cr[i]);
        return;
    }
    const IndexSamples& samples = encoder.index_samples;
    const uint8_t* indexes = row + x;
    if (samples.plain_grey)
        std::transform(indexes, indexes + count, tile.y[i], shifted);
    else
        look_up(samples.y, indexes, count, tile.y[i]);
    if (!is_grey(encoder.family)) {
        look_up(samples.cb, indexes, count, tile.cb[i]);
        look_up(samples.cr, indexes, count, tile.cr[i]);
    }
}

// Columns past the region repeat its last one.
void extend_row(size_t i, size_t count, size_t padded) {
    Tile& tile = encoder.tile;
    for (int8_t* row : {tile.y[i], tile.cb[i], tile.cr[i]})
        std::memset(row + count, row[count - 1], padded - count);
}

// Rows past the region repeat its last one.
void repeat_row(size_t i, size_t padded) {
    Tile& tile = encoder.tile;
    for (auto* plane : {tile.y, tile.cb, tile.cr})
        std::memcpy(plane[i], plane[i - 1], padded);
}

void sample_tile(int32_t x, int32_t y, size_t padded) {
    const size_t count = std::min(padded, static_cast<size_t>(encoder.region.width - x));
    for (int32_t i = 0; i < encoder.mcu.height; ++i) {
        if (i < encoder.region.height - y) {
            sample_row(x, y + i, static_cast<size_t>(i), count);
            if (count < padded)
                extend_row(static_cast<size_t>(i), count, padded);
        } else {
            repeat_row(static_cast<size_t>(i), padded);
        }
    }
}

size_t groups_of(size_t blocks) { return (blocks + blocks_abreast - 1) / blocks_abreast; }

// The chroma blocks of the tile: made smaller as the MCU's shape says, then transformed.
void code_chroma(int8_t (*plane)[tile_width], size_t mcus, BlockGroup* groups) {
    Tile& tile = encoder.tile;
    for (size_t i = 0; i < 8 && encoder.mcu.width == 16; ++i) {
        if (encoder.mcu.height == 16)
            encoder.kernels->halve_both(plane[2 * i], plane[2 * i + 1], 8 * mcus, tile.half[i]);
        else
            encoder.kernels->halve_across(plane[i], 8 * mcus, tile.half[i]);
    }
    encoder.kernels->code_groups(encoder.mcu.width == 16 ? tile.half[0] : plane[0], tile_width,
                              groups_of(mcus), encoder.chrominance, groups);
}

void code_tile(size_t mcus) {
    Tile& tile = encoder.tile;
    const size_t groups = groups_of(mcus * static_cast<size_t>(encoder.mcu.across()));
    for (int32_t row = 0; row < encoder.mcu.down(); ++row)
        encoder.kernels->code_groups(tile.y[8 * row], tile_width, groups, encoder.luminance,
                                  tile.y_groups[row]);
    if (is_grey(encoder.family))
        return;
    code_chroma(tile.cb, mcus, tile.cb_groups);
    code_chroma(tile.cr, mcus, tile.cr_groups);
}

size_t staged_bytes() { return static_cast<size_t>(encoder.bits.at() - encoder.staging); }

bool move_staged_bytes() {
    const size_t count = staged_bytes();
    encoder.bits.move_to(encoder.staging);
    return encoder.stream.append_stuffed(encoder.staging, count);
}

// Pixels that the MCU at that place will be made of. Tiles are read in so many rows at once that
// the processor does not foresee it; asked for while another MCU is coded, they come in time.
void prefetch_mcu(int64_t mcu) {
    if (mcu >= encoder.mcu_count)
        return;
    const auto x = static_cast<ptrdiff_t>(mcu % encoder.mcus_across) * encoder.mcu.width;
    const auto y = static_cast<ptrdiff_t>(mcu / encoder.mcus_across) * encoder.mcu.height;
    const int32_t rows = std::min<int32_t>(encoder.mcu.height,
                                           encoder.region.height - static_cast<int32_t>(y));
    const uint8_t* pixels =
        encoder.first_pixel + y * encoder.row_step + x * (encoder.indexed ? 1 : 3);
    for (int32_t i = 0; i < rows; ++i)
        __builtin_prefetch(pixels + i * encoder.row_step);
}

// MCUs side by side that fit into a tile.
Status encode_mcus(size_t mcus) {
    const auto column = static_cast<int32_t>(encoder.mcus_done % encoder.mcus_across);
    const auto row = static_cast<int32_t>(encoder.mcus_done / encoder.mcus_across);
    sample_tile(column * encoder.mcu.width, row * encoder.mcu.height,
                mcus * static_cast<size_t>(encoder.mcu.width));
    code_tile(mcus);
    for (size_t mcu = 0; mcu < mcus; ++mcu) {
        prefetch_mcu(encoder.mcus_done + static_cast<int64_t>(mcus + mcu));
        if (!put_mcu(encoder.bits, encoder.parts, encoder.part_count, mcu))
            return Status::jpeg_category;
        if (staged_bytes() >= staging_threshold && !move_staged_bytes())
            return Status::no_memory;
    }
    encoder.mcus_done += static_cast<int64_t>(mcus);
    return Status::ok;
}

int32_t percent_done() {
    return static_cast<int32_t>(encoder.mcus_done * 100 / encoder.mcu_count);
}

int64_t mcus_until_message() {
    const int64_t due = (encoder.progress.next_due() * encoder.mcu_count + 99) / 100;
    return std::max<int64_t>(due - encoder.mcus_done, 1);
}

// How many MCUs can be encoded at once: in one row and one tile, within what the call may do, and
// so that each message goes out right after its MCU.
size_t next_batch(int32_t quota) {
    const int64_t in_row = encoder.mcus_across - encoder.mcus_done % encoder.mcus_across;
    const int64_t in_tile = static_cast<int64_t>(tile_width) / encoder.mcu.width;
    const int64_t batch = std::min({in_row, in_tile, int64_t{quota}});
    return static_cast<size_t>(progress_enabled() ? std::min(batch, mcus_until_message()) : batch);
}

Status finish_encode(uint32_t* stream_bytes) {
    encoder.bits.finish();
    if (!move_staged_bytes() || !write_end_of_image(encoder.stream))
        return fail(Status::no_memory);
    report(stream_bytes, encoder.stream.position);
    end_encode(true);
    encoder.progress.finish();
    stop_progress();
    codec_busy = false;
    return Status::ok;
}

} // namespace

Status start_encode(const EncodeRequest& request, HGLOBAL* output) {
    if (codec_busy)
        return Status::busy;
    const LockedDib dib(request.dib);
    const Status status = check(request, dib);
    if (status != Status::ok)
        return status;
    if (encoder.active)
        end_encode(false);
    prepare_source(request, dib);
    const uint32_t output_bytes =
        encode_settings.comment_bytes + header_room + output_estimate(request);
    OwnedBlock block(allocate_block(output_bytes));
    if (!block)
        return Status::no_memory;
    encoder.family = request.family;
    encoder.source = request.dib;
    GlobalLock(encoder.source);
    prepare_geometry(request);
    prepare_coding(std::move(block), output_bytes);
    const auto sampling =
        static_cast<uint8_t>(encoder.mcu.across() << 4 | encoder.mcu.down());
    write_headers(encoder.stream, {request.region.width, request.region.height,
                                   is_grey(request.family), sampling});
    encoder.active = true;
    codec_busy = true;
    const uint32_t serial = ++encoder.serial;
    *output = encoder.output;
    encoder.progress.start();
    return encoder.serial == serial ? Status::ok : Status::abandoned;
}

Status continue_encode(EncodeFamily family, EncodeProgress* progress, uint32_t* stream_bytes) {
    if (!encoder.active || encoder.family != family)
        return Status::bad_parameter;
    const uint32_t serial = encoder.serial;
    for (int32_t quota = encoder.mcus_per_call; quota > 0;) {
        if (encoder.mcus_done == encoder.mcu_count) {
            *progress = EncodeProgress::done;
            return finish_encode(stream_bytes);
        }
        const size_t batch = next_batch(quota);
        const Status status = encode_mcus(batch);
        if (status != Status::ok)
            return fail(status);
        quota -= static_cast<int32_t>(batch);
        encoder.progress.update(percent_done());
        if (encoder.serial != serial)
            return Status::abandoned;
    }
    *progress = EncodeProgress::more;
    return Status::ok;
}

void abandon_encode() {
    if (!encoder.active)
        return;
    end_encode(false);
    stop_progress();
    codec_busy = false;
}

} // namespace kirvo
