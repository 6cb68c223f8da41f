// An encode from its first call to its last: one at a time, driven in batches of MCUs.
#pragma once

#include "core/progress.hpp"
#include "jpeg/encode_headers.hpp"
#include "jpeg/encode_tile.hpp"

namespace kirvo {

enum class EncodeProgress { more, done };

// The source and the output block stay locked from the first call to the last.
class Encoder {
  public:
    // True until the encode that was started has ended and its last message has been handled.
    bool busy() const { return state_ != State::idle; }

    // Locks the image, makes the output block and writes the headers. The output block stays the
    // encoder's until the encode is done. Not to be called while busy.
    Status start(const EncodeRequest& request, EncodeSettings& settings, QuantisationSlots& slots,
                 HGLOBAL* output);
    // Encodes the next batch. Done: the stream, of that length, is complete in the output block,
    // which is the caller's now. After an error it has been freed.
    Status advance(EncodeFamily family, EncodeProgress* progress, uint32_t* stream_bytes);
    // Frees everything of the encode in progress, if there is one.
    void abandon();

  private:
    static constexpr size_t staging_threshold = 4000;

    void prepare_geometry(const EncodeRequest& request);
    void prepare_output(OwnedBlock output, uint32_t output_bytes);
    Status encode_mcus(size_t mcus);
    void prefetch(int64_t mcu) const;
    size_t staged_bytes() const { return static_cast<size_t>(bits_.at() - staging_); }
    bool move_staged_bytes();
    int32_t percent_done() const { return static_cast<int32_t>(mcus_done_ * 100 / mcu_count_); }
    int64_t mcus_until_message() const;
    size_t next_batch(int32_t quota) const;
    Status finish(uint32_t* stream_bytes);
    Status fail(Status status);
    void end(bool keep_output);

    enum class State { idle, encoding, telling_the_end } state_ = State::idle;
    uint32_t serial_ = 0; // counts starts and ends: a call sees that a handler ended its encode
    EncodeFamily family_ = EncodeFamily::colour;
    HGLOBAL source_block_ = nullptr, output_block_ = nullptr;
    EncodeSource source_ = {};

    McuShape mcu_ = {};
    int64_t mcus_across_ = 0, mcu_count_ = 0, mcus_done_ = 0;
    int32_t mcus_per_call_ = 0;
    Progress progress_;

    OutputStream stream_ = {};
    BitWriter bits_{nullptr};
    uint8_t staging_[staging_threshold + 6 * longest_block] = {};
    EncodeTile tile_ = {};
};

} // namespace kirvo
