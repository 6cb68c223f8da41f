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

// The MCUs that have been read and not yet rendered.
struct Group {
    Block blocks[most_group_blocks];
    uint8_t last[most_group_blocks];
    int32_t first; // of the image
    int32_t count;

    void render(Renderer& renderer) {
        renderer.render(first, count, blocks, last);
        std::memset(blocks, 0, sizeof blocks);
        first += count;
        count = 0;
    }
};

} // namespace

Step decode_baseline(DecodeState& state, Renderer& renderer) {
    Picture& picture = state.picture;
    const int32_t blocks = picture.frame.layout->blocks();
    McuReader reader(state);
    Group group = {};
    group.first = picture.next_mcu;
    for (;;) {
        const int32_t at = group.count * blocks;
        const Step step = reader.read(&group.blocks[at], &group.last[at]);
        if (step.kind != Step::done) {
            if (group.count != 0)
                group.render(renderer);
            return step;
        }
        ++group.count;
        ++picture.next_mcu;
        const bool row_ends = picture.next_mcu % picture.mcus_across == 0;
        if (row_ends || group.count == renderer.group_mcus())
            group.render(renderer);
        if (picture.next_mcu == picture.mcus)
            return finish_picture(state);
        state.progress.update(picture.next_mcu * 100 / picture.mcus);
    }
}

} // namespace kirvo
