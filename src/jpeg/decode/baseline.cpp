// Baseline decoding: one MCU after the other, rendered in small batches.
#include "jpeg/decode/fast.hpp"
#include "jpeg/decode/scan.hpp"

#include <algorithm>
#include <cstring>

namespace kirvo {

namespace {

// Tables go by position, whatever the scan header assigns.
class McuReader {
  public:
    explicit McuReader(DecodeState& state)
        : state_(state), blocks_(state.picture.frame.layout->blocks()), careful_(state),
          fast_(state), layout_(state.picture.frame.layout) {
        const Frame& frame = state.picture.frame;
        for (int32_t c = 0; c < frame.components; ++c) {
            const uint32_t table = c == 0 ? 0 : 1;
            components_[c] = fast_.baseline_tables_of(
                table, table,
                {&state.dc_tables[table], &state.ac_tables[table], no_quantisation.data(),
                 &state.entropy.predictor[c]});
        }
        for (int32_t i = 0; i < blocks_; ++i)
            tables_[i] = &components_[component_of(*layout_, i)];
    }

    // How much input is left is known exactly once the fast reader has given back what it holds.
    bool may_begin() {
        if (fast_.ahead() >= input_reserve || state_.final != 0)
            return true;
        fast_.leave();
        fast_.enter();
        return may_go_on(state_);
    }
    Status read(Block* blocks, uint8_t* last) {
        if (!exhausted_ && fast_.read_mcu(tables_, blocks_, blocks, last))
            return Status::ok;
        std::fill_n(last, blocks_, uint8_t{63});
        if (exhausted_)
            return read_beyond_end(blocks);
        fast_.leave();
        const Scan& scan = state_.scan;
        const Status status = read_carefully(blocks);
        exhausted_ = state_.input.empty() && scan.spectral_start == 0 && scan.shift == 0;
        fast_.enter();
        return status;
    }

  private:
    // What an MCU reads behind the end of the input, when no predictor is added.
    struct Repeat {
        bool known = false;
        int32_t end; // position of the next bit
        int16_t predictor[3];
        Block blocks[most_blocks];
    };

    // There the current byte is read for ever, so that depends on the bit at which it begins alone.
    Status read_beyond_end(Block* blocks) {
        EntropyState& entropy = state_.entropy;
        if (entropy.eob_run != 0)
            return read_carefully(blocks);
        Repeat& repeat = repeats_[entropy.bit_position];
        int16_t before[3];
        std::memcpy(before, entropy.predictor, sizeof before);
        if (!repeat.known) {
            std::fill(std::begin(entropy.predictor), std::end(entropy.predictor), int16_t{0});
            std::memset(repeat.blocks, 0, sizeof repeat.blocks);
            const Status status = read_carefully(repeat.blocks);
            if (status != Status::ok)
                return status;
            std::memcpy(repeat.predictor, entropy.predictor, sizeof before);
            repeat.end = entropy.bit_position;
            repeat.known = entropy.eob_run == 0;
        }
        std::memcpy(blocks, repeat.blocks, static_cast<size_t>(blocks_) * sizeof(Block));
        for (int32_t i = 0; i < blocks_; ++i)
            blocks[i][0] = wrap16(blocks[i][0] + before[component_of(*layout_, i)]);
        for (int32_t c = 0; c < 3; ++c)
            entropy.predictor[c] = wrap16(before[c] + repeat.predictor[c]);
        entropy.bit_position = repeat.end;
        return Status::ok;
    }

    Status read_carefully(Block* blocks) {
        for (int32_t i = 0; i < blocks_; ++i) {
            state_.entropy.first_block = i == 0;
            const Status status = careful_.read_block(tables_[i]->coding, blocks[i]);
            if (status != Status::ok)
                return status;
        }
        return Status::ok;
    }

    DecodeState& state_;
    const int32_t blocks_; // of an MCU
    CarefulReader careful_;
    FastReader fast_;
    FastReader::Tables components_[3];
    const FastReader::Tables* tables_[most_blocks];
    const Layout* layout_;
    bool exhausted_ = false; // no input is left, and nothing odd about the scan
    Repeat repeats_[9];      // by the position of the bit
};

// MCUs of one MCU row that have been read and not yet rendered.
class Batch {
  public:
    Batch(DecodeState& state, Renderer& renderer)
        : picture_(state.picture), blocks_(state.buffers.batch), last_(state.buffers.batch_last),
          renderer_(renderer), blocks_of_mcu_(picture_.frame.layout->blocks()),
          count_(picture_.next_mcu - picture_.rendered_mcus) {
        find_room();
    }

    // Empty blocks.
    Block* next_blocks() {
        Block* const next = &blocks_[count_ * blocks_of_mcu_];
        std::memset(next, 0, static_cast<size_t>(blocks_of_mcu_) * sizeof(Block));
        return next;
    }
    uint8_t* next_last() { return &last_[count_ * blocks_of_mcu_]; }
    // The next MCU has been read.
    void add() {
        ++picture_.next_mcu;
        if (++count_ == room_)
            render();
    }

  private:
    void find_room() {
        const int32_t across = picture_.mcus_across;
        room_ = std::min(renderer_.batch_mcus(), across - picture_.rendered_mcus % across);
    }
    void render() {
        renderer_.render(picture_.rendered_mcus, count_, blocks_, last_);
        picture_.rendered_mcus = picture_.next_mcu;
        count_ = 0;
        find_room();
    }

    Picture& picture_;
    Block* const blocks_;
    uint8_t* const last_;
    Renderer& renderer_;
    const int32_t blocks_of_mcu_;
    int32_t count_, room_;
};

} // namespace

Step decode_baseline(DecodeState& state, Renderer& renderer) {
    Picture& picture = state.picture;
    McuReader reader(state);
    Batch batch(state, renderer);
    for (;;) {
        if (!reader.may_begin())
            return Step::starved();
        const Status status = reader.read(batch.next_blocks(), batch.next_last());
        if (status != Status::ok)
            return Step::failure(status);
        batch.add();
        if (picture.next_mcu == picture.mcus)
            return finish_picture(state);
        if (progress_enabled())
            state.progress.update(picture.next_mcu * 100 / picture.mcus);
        if (state.abandoned)
            return Step::failure(Status::abandoned);
    }
}

} // namespace kirvo
