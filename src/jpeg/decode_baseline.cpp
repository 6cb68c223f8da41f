// Baseline decoding: one MCU after the other, rendered in small groups.
#include "jpeg/decode_scan.hpp"

#include <cstring>

namespace kirvo {

namespace {

// The MCUs that have been read and not yet rendered.
struct Group {
    Block blocks[most_group_blocks];
    int32_t first; // of the image
    int32_t count;
};

// Tables go by position, whatever the scan header assigns.
Status read_mcu(DecodeState& state, Block* blocks) {
    const Layout& layout = *state.picture.frame.layout;
    CarefulReader reader(state);
    for (int32_t i = 0; i < layout.blocks(); ++i) {
        const int32_t component = component_of(layout, i);
        const uint32_t tables = component == 0 ? 0 : 1;
        state.entropy.first_block = i == 0;
        const Status status = reader.read_block(
            coding_of(state, component, static_cast<uint32_t>(component) + 1, tables, tables),
            blocks[i]);
        if (status != Status::ok)
            return status;
    }
    return Status::ok;
}

void render(Group& group, Renderer& renderer) {
    renderer.render(group.first, group.count, group.blocks, nullptr);
    std::memset(group.blocks, 0, sizeof group.blocks);
    group.first += group.count;
    group.count = 0;
}

} // namespace

Step decode_baseline(DecodeState& state, Renderer& renderer) {
    Picture& picture = state.picture;
    const int32_t blocks = picture.frame.layout->blocks();
    Group group = {};
    group.first = picture.next_mcu;
    while (may_go_on(state)) {
        const Status status = read_mcu(state, &group.blocks[group.count * blocks]);
        if (status != Status::ok)
            return Step::failure(status);
        ++group.count;
        ++picture.next_mcu;
        const bool row_ends = picture.next_mcu % picture.mcus_across == 0;
        if (row_ends || group.count == renderer.group_mcus())
            render(group, renderer);
        if (picture.next_mcu == picture.mcus)
            return finish_picture(state);
        state.progress.update(picture.next_mcu * 100 / picture.mcus);
    }
    if (group.count != 0)
        render(group, renderer);
    return Step::starved();
}

} // namespace kirvo
