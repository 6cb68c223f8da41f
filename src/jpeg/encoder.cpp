#include "jpeg/encoder.hpp"

#include <algorithm>

namespace kirvo {

namespace {

McuShape mcu_shape(const EncodeRequest& request, int32_t sampling) {
    if (request.grey() || sampling == 1)
        return {8, 8};
    return {16, sampling == 2 ? 8 : 16};
}

// Products and quotients wrap and truncate as unsigned 32-bit ones do.
uint32_t output_estimate(const EncodeRequest& request, int32_t level) {
    static constexpr uint32_t divisors[] = {1, 1, 7, 15, 25, 40};
    const uint32_t samples = static_cast<uint32_t>(request.region.width) *
                             static_cast<uint32_t>(request.region.height) *
                             (request.grey() ? 1 : 3);
    const uint32_t estimate =
        level < 2 ? samples : samples * 4 / divisors[static_cast<size_t>(level)];
    return std::max<uint32_t>(estimate, 32768);
}

Status check(const EncodeRequest& request, const LockedDib& dib) {
    if (!request.grey())
        return DibCheckRect8or24(dib, request.region, RowStart::after_header);
    return DibCheckRect(dib, request.region,
                        {[](int32_t bits) { return bits == 8; }, Status::needs_8},
                        RowStart::after_header);
}

uint32_t source_bytes(const EncodeRequest& request, const LockedDib& dib) {
    const uint32_t pixels =
        static_cast<uint32_t>(request.region.width) * static_cast<uint32_t>(request.region.height);
    return dib.bits() == 24 ? pixels * 3 : pixels;
}

} // namespace

Status Encoder::start(const EncodeRequest& request, EncodeSettings& settings,
                      QuantisationSlots& slots, HGLOBAL* output) {
    const LockedDib dib(request.dib);
    const Status status = check(request, dib);
    if (status != Status::ok)
        return status;
    settings.source_bytes = source_bytes(request, dib);
    const uint32_t output_bytes =
        settings.comment_bytes + header_room + output_estimate(request, settings.level);
    OwnedBlock block(allocate_block(output_bytes));
    if (!block)
        return Status::no_memory;
    source_block_ = request.dib;
    GlobalLock(source_block_);
    source_.open(request, dib);
    mcu_ = mcu_shape(request, settings.sampling);
    prepare_geometry(request);
    settings.fill(slots);
    tile_.prepare(request.grey(), mcu_, slots, settings.coded_count());
    prepare_output(std::move(block), output_bytes);
    const auto sampling = static_cast<uint8_t>(mcu_.across() << 4 | mcu_.down());
    write_headers(stream_, {source_.width(), source_.height(), request.grey(), sampling}, slots,
                  settings);
    state_ = State::encoding;
    const uint32_t serial = ++serial_;
    *output = output_block_;
    progress_.start();
    return serial_ == serial ? Status::ok : Status::abandoned;
}

void Encoder::prepare_geometry(const EncodeRequest& request) {
    const auto mcus = [](int32_t size, int32_t mcu) { return (int64_t{size} + mcu - 1) / mcu; };
    family_ = request.family;
    mcus_across_ = mcus(source_.width(), mcu_.width);
    mcu_count_ = mcus_across_ * mcus(source_.height(), mcu_.height);
    mcus_done_ = 0;
    mcus_per_call_ =
        request.mcus_per_call == -1 ? static_cast<int32_t>(mcu_count_) : request.mcus_per_call;
}

void Encoder::prepare_output(OwnedBlock output, uint32_t output_bytes) {
    output_block_ = output.release();
    stream_ = {static_cast<uint8_t*>(GlobalLock(output_block_)), output_bytes, 0};
    bits_ = BitWriter(staging_);
}

Status Encoder::advance(EncodeFamily family, EncodeProgress* progress, uint32_t* stream_bytes) {
    if (state_ != State::encoding || family_ != family)
        return Status::bad_parameter;
    const uint32_t serial = serial_;
    for (int32_t quota = mcus_per_call_; quota > 0;) {
        if (mcus_done_ == mcu_count_) {
            *progress = EncodeProgress::done;
            return finish(stream_bytes);
        }
        const size_t batch = next_batch(quota);
        const Status status = encode_mcus(batch);
        if (status != Status::ok)
            return fail(status);
        quota -= static_cast<int32_t>(batch);
        progress_.update(percent_done());
        if (serial_ != serial)
            return Status::abandoned;
    }
    *progress = EncodeProgress::more;
    return Status::ok;
}

// How many MCUs can be encoded at once: in one row and one tile, within what the call may do, and
// so that each message goes out right after its MCU.
size_t Encoder::next_batch(int32_t quota) const {
    const int64_t in_row = mcus_across_ - mcus_done_ % mcus_across_;
    const int64_t in_tile = static_cast<int64_t>(EncodeTile::width) / mcu_.width;
    const int64_t batch = std::min({in_row, in_tile, int64_t{quota}});
    return static_cast<size_t>(progress_enabled() ? std::min(batch, mcus_until_message()) : batch);
}

int64_t Encoder::mcus_until_message() const {
    const int64_t due = (progress_.next_due() * mcu_count_ + 99) / 100;
    return std::max<int64_t>(due - mcus_done_, 1);
}

// MCUs side by side that fit into a tile.
Status Encoder::encode_mcus(size_t mcus) {
    const auto column = static_cast<int32_t>(mcus_done_ % mcus_across_);
    const auto row = static_cast<int32_t>(mcus_done_ / mcus_across_);
    tile_.fill(source_, column * mcu_.width, row * mcu_.height, mcus);
    for (size_t mcu = 0; mcu < mcus; ++mcu) {
        prefetch(mcus_done_ + static_cast<int64_t>(mcus + mcu));
        if (!tile_.put(bits_, mcu))
            return Status::jpeg_category;
        if (staged_bytes() >= staging_threshold && !move_staged_bytes())
            return Status::no_memory;
    }
    mcus_done_ += static_cast<int64_t>(mcus);
    return Status::ok;
}

// Pixels that the MCU at that place will be made of. Tiles are read in so many rows at once that
// the processor does not foresee it; asked for while another MCU is coded, they come in time.
void Encoder::prefetch(int64_t mcu) const {
    if (mcu >= mcu_count_)
        return;
    const auto x = static_cast<ptrdiff_t>(mcu % mcus_across_) * mcu_.width;
    const auto y = static_cast<ptrdiff_t>(mcu / mcus_across_) * mcu_.height;
    source_.prefetch(x, y, mcu_.height);
}

bool Encoder::move_staged_bytes() {
    const size_t count = staged_bytes();
    bits_.move_to(staging_);
    return stream_.append_stuffed(staging_, count);
}

Status Encoder::finish(uint32_t* stream_bytes) {
    bits_.finish();
    if (!move_staged_bytes() || !write_end_of_image(stream_))
        return fail(Status::no_memory);
    report(stream_bytes, stream_.position);
    end(true);
    state_ = State::telling_the_end;
    progress_.finish();
    stop_progress();
    state_ = State::idle;
    return Status::ok;
}

Status Encoder::fail(Status status) {
    end(false);
    return status;
}

void Encoder::abandon() {
    if (state_ != State::encoding)
        return;
    end(false);
    stop_progress();
}

// The encode is over; the output block is kept or freed.
void Encoder::end(bool keep_output) {
    GlobalUnlock(source_block_);
    GlobalUnlock(output_block_);
    if (!keep_output)
        GlobalFree(output_block_);
    state_ = State::idle;
    ++serial_;
}

} // namespace kirvo
