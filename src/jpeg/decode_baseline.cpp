// Baseline decoding: one MCU after the other, rendered in small groups.
#include "jpeg/decode_fast.hpp"
#include "jpeg/decode_scan.hpp"

#include <algorithm>
#include <cstring>

namespace kirvo {

namespace {

// Tables go by position, whatever the scan header assigns.
class McuReader {
  public:
    explicit McuReader(DecodeState& state)
        : state_(state), blocks_(state.picture.frame.layout->blocks()), careful_(state),
          fast_(state) {
        const Layout& layout = *state.picture.frame.layout;
        for (uint32_t c = 0; c < 3; ++c) {
            const uint32_t table = c == 0 ? 0 : 1;
            components_[c] = fast_.baseline_tables_of(
                table, table, coding_of(state, static_cast<int32_t>(c), c + 1, table, table));
        }
        for (int32_t i = 0; i < blocks_; ++i)
            tables_[i] = &components_[component_of(layout, i)];
    }

    // Need_more when an MCU may not be begun.
    Step read(Block* blocks, uint8_t* last) {
        if (fast_.read_mcu(tables_, blocks_, blocks, last))
            return Step::finished();
        fast_.leave();
        if (!may_go_on(state_))
            return Step::starved();
        const Status status = read_carefully(blocks);
        std::fill_n(last, blocks_, uint8_t{63});
        fast_.enter();
        return status == Status::ok ? Step::finished() : Step::failure(status);
    }

  private:
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
};

// MCUs of one MCU row that have been read and not yet rendered.
class Group {
  public:
    Group(const Picture& picture, Renderer& renderer)
        : renderer_(renderer), blocks_of_mcu_(picture.frame.layout->blocks()),
          across_(picture.mcus_across), first_(picture.next_mcu) {
        open();
    }

    Block* next_blocks() { return &blocks_[count_ * blocks_of_mcu_]; }
    uint8_t* next_last() { return &last_[count_ * blocks_of_mcu_]; }
    // The next MCU has been read.
    void add() {
        if (++count_ == room_)
            render();
    }
    void render() {
        if (count_ == 0)
            return;
        renderer_.render(first_, count_, blocks_, last_);
        std::memset(blocks_, 0, sizeof blocks_);
        first_ += count_;
        open();
    }

  private:
    void open() {
        count_ = 0;
        room_ = std::min(renderer_.group_mcus(), across_ - first_ % across_);
    }

    Renderer& renderer_;
    Block blocks_[most_group_blocks] = {};
    uint8_t last_[most_group_blocks];
    const int32_t blocks_of_mcu_, across_;
    int32_t first_; // of the image
    int32_t count_, room_;
};

} // namespace

Step decode_baseline(DecodeState& state, Renderer& renderer) {
    Picture& picture = state.picture;
    McuReader reader(state);
    Group group(picture, renderer);
    for (;;) {
        const Step step = reader.read(group.next_blocks(), group.next_last());
        if (step.kind != Step::done) {
            group.render();
            return step;
        }
        group.add();
        ++picture.next_mcu;
        if (picture.next_mcu == picture.mcus)
            return finish_picture(state);
        if (progress_enabled())
            state.progress.update(picture.next_mcu * 100 / picture.mcus);
    }
}

} // namespace kirvo
