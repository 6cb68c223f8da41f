// Progressive decoding: the first pass of each band is gathered into a store of coefficients, which
// is rendered at the end. Refinement is not supported: its first MCU ends the gathering.
#include "jpeg/decode/fast.hpp"
#include "jpeg/decode/markers.hpp"
#include "jpeg/decode/scan.hpp"

#include <algorithm>

namespace kirvo {

namespace {

// The blocks of one component in the order of a scan of that component alone: row by row over the
// picture, without those that only fill up MCUs.
struct Plane {
    int32_t width, height;            // in blocks
    int32_t first_slot, across, down; // its blocks in an MCU

    int32_t blocks() const { return width * height; }
};

class ProgressiveDecoder {
  public:
    ProgressiveDecoder(DecodeState& state, Renderer& renderer, Block* store)
        : state_(state), picture_(state.picture), scan_(state.scan),
          layout_(*picture_.frame.layout), renderer_(renderer), store_(store), careful_(state),
          fast_(state) {}

    Step decode();

  private:
    Step begin_next_scan();
    void pass_over_idle_mcus();
    int64_t idle_blocks() const;
    int64_t blocks_of_mcu() const;
    Status read_mcu();
    Status read_component(const Scan::Component& component);
    Status read_blocks(const FastReader::Tables& tables, int32_t first_slot, int32_t count);
    Status read_from_plane(const FastReader::Tables& tables, const Plane& plane);
    Status read_block(const FastReader::Tables& tables, Block& block);
    FastReader::Tables tables_of(int32_t component, const Scan::Component& from);
    bool is_plane_scan(uint8_t id) const;
    Plane plane_of(uint8_t id) const;
    Block& block_at(int32_t mcu, int32_t slot);
    void render_all();

    DecodeState& state_;
    Picture& picture_;
    const Scan& scan_;
    const Layout& layout_;
    Renderer& renderer_;
    Block* store_;
    CarefulReader careful_;
    FastReader fast_;
    Block dropped_ = {};
};

// Planes of the 1x2 layout reach beyond the last MCU, for they are laid out as those of 2x1.
Block& ProgressiveDecoder::block_at(int32_t mcu, int32_t slot) {
    return mcu < picture_.mcus ? store_[int64_t{mcu} * layout_.blocks() + slot] : dropped_;
}

Step ProgressiveDecoder::decode() {
    if (!may_go_on(state_))
        return Step::starved();
    for (;;) {
        if (picture_.next_mcu == picture_.mcus) {
            const Step step = begin_next_scan();
            if (step.kind != Step::done)
                return step;
        }
        if (picture_.next_mcu < picture_.mcus) {
            pass_over_idle_mcus();
            const Status status = read_mcu();
            if (status != Status::ok)
                return Step::failure(status);
        }
        if (state_.stop) {
            render_all();
            return finish_picture(state_);
        }
        ++picture_.next_mcu;
        if (picture_.next_mcu == picture_.mcus && scan_.has_component_1)
            picture_.coverage += scan_.spectral_end - scan_.spectral_start + 1;
        const int64_t percent = std::min<int64_t>(picture_.coverage * 100 / 64, 100);
        state_.progress.update(static_cast<int32_t>(percent));
        if (state_.abandoned)
            return Step::failure(Status::abandoned);
    }
}

// Done also at the end of the image, where no MCU is left to read.
Step ProgressiveDecoder::begin_next_scan() {
    fast_.leave();
    const Step step = read_segments(state_, false);
    if (step.kind == Step::done) {
        picture_.next_mcu = 0;
        state_.entropy.bit_position = 8;
        state_.entropy.eob_run = 0;
        fast_.enter();
        return step;
    }
    if (step.kind == Step::failed && step.status == Status::jpeg_early_eoi) {
        state_.stop = true;
        return Step::finished();
    }
    return state_.is_final() ? Step::failure(Status::jpeg_header) : step;
}

// MCUs for which no bit is read cost nothing: an end of band may stand for many, and a scan without
// a component or without a band for all of them. The first and the last are read like any other.
void ProgressiveDecoder::pass_over_idle_mcus() {
    const int64_t idle = idle_blocks();
    const int64_t left = picture_.mcus - 1 - picture_.next_mcu;
    if (idle == 0 || left <= 0 || picture_.next_mcu == 0 || state_.stop)
        return;
    const int64_t blocks = blocks_of_mcu();
    const int64_t mcus = blocks == 0 ? left : std::min(left, idle / blocks);
    int64_t passed = mcus * blocks;
    if (scan_.count == 1 && is_plane_scan(scan_.components[0].id)) {
        const int32_t all = plane_of(scan_.components[0].id).blocks();
        passed = std::min<int64_t>(passed, all - picture_.next_plane_block);
        picture_.next_plane_block += static_cast<int32_t>(passed);
    }
    if (state_.entropy.eob_run > 0)
        state_.entropy.eob_run -= static_cast<int32_t>(passed);
    picture_.next_mcu += static_cast<int32_t>(mcus);
}

// Blocks of the scan, from the next one on, for which no bit is read.
int64_t ProgressiveDecoder::idle_blocks() const {
    constexpr int64_t all = INT64_MAX;
    const auto end = scan_.components + scan_.count;
    const bool grey = picture_.frame.components == 1;
    if (std::all_of(scan_.components, end, [=](const auto& c) { return !grey && c.id == 0; }))
        return all;
    if (scan_.spectral_start == 0)
        return 0;
    if (state_.entropy.eob_run > 0)
        return state_.entropy.eob_run;
    return scan_.spectral_start > scan_.spectral_end ? all : 0;
}

int64_t ProgressiveDecoder::blocks_of_mcu() const {
    if (picture_.frame.components == 1)
        return 1;
    int64_t blocks = 0;
    for (int32_t i = 0; i < scan_.count; ++i) {
        const uint8_t id = scan_.components[i].id;
        if (id != 0)
            blocks += id == 1 ? layout_.luma_blocks : layout_.chroma_blocks;
    }
    return blocks;
}

Status ProgressiveDecoder::read_mcu() {
    if (picture_.next_mcu == 0)
        picture_.next_plane_block = 0;
    for (int32_t i = 0; i < scan_.count; ++i) {
        const Status status = read_component(scan_.components[i]);
        if (status != Status::ok || picture_.frame.components == 1)
            return status;
    }
    return Status::ok;
}

Status ProgressiveDecoder::read_component(const Scan::Component& component) {
    const auto [id, dc, ac] = component;
    if ((scan_.spectral_start == 0 && !state_.dc_defined[dc]) ||
        (scan_.spectral_end > 0 && !state_.ac_defined[ac]))
        return Status::jpeg_huffman;
    bool& first_block = state_.entropy.first_block;
    if (picture_.frame.components == 1) {
        first_block = true;
        return read_blocks(tables_of(0, component), 0, 1);
    }
    if (id == 0)
        return Status::ok;
    const FastReader::Tables tables = tables_of(id - 1, component);
    if (is_plane_scan(id)) {
        first_block |= id == 1;
        return read_from_plane(tables, plane_of(id));
    }
    if (id != 1)
        return read_blocks(tables, layout_.luma_blocks + (id - 2) * layout_.chroma_blocks,
                           layout_.chroma_blocks);
    first_block = true;
    const Status status = read_blocks(tables, 0, layout_.luma_blocks);
    first_block = false;
    return status;
}

FastReader::Tables ProgressiveDecoder::tables_of(int32_t component, const Scan::Component& from) {
    return fast_.tables_of(from.dc_table, from.ac_table,
                           coding_of(state_, component, from.id, from.dc_table, from.ac_table));
}

Status ProgressiveDecoder::read_block(const FastReader::Tables& tables, Block& block) {
    if (fast_.read_block(tables, block))
        return Status::ok;
    fast_.leave();
    const Status status = careful_.read_block(tables.coding, block);
    fast_.enter();
    return status;
}

Status ProgressiveDecoder::read_blocks(const FastReader::Tables& tables, int32_t first_slot,
                                       int32_t count) {
    for (int32_t slot = first_slot; slot < first_slot + count; ++slot) {
        const Status status = read_block(tables, block_at(picture_.next_mcu, slot));
        if (status != Status::ok)
            return status;
    }
    return Status::ok;
}

bool ProgressiveDecoder::is_plane_scan(uint8_t id) const {
    return scan_.count == 1 && (id == 1 ? layout_.luma_blocks : layout_.chroma_blocks) > 1;
}

Plane ProgressiveDecoder::plane_of(uint8_t id) const {
    const Frame& frame = picture_.frame;
    if (id == 1)
        return {(frame.width + 7) / 8, (frame.height + 7) / 8, 0, 2, layout_.luma_blocks / 2};
    const int32_t across = layout_.chroma_across(), down = layout_.chroma_blocks / across;
    const int32_t covers_x = layout_.mcu_width / across, covers_y = layout_.mcu_height / down;
    return {(frame.width + covers_x - 1) / covers_x, (frame.height + covers_y - 1) / covers_y,
            layout_.luma_blocks + (id - 2) * layout_.chroma_blocks, across, down};
}

// As many blocks of the plane as an MCU has of them.
Status ProgressiveDecoder::read_from_plane(const FastReader::Tables& tables, const Plane& plane) {
    int32_t& next = picture_.next_plane_block;
    for (int32_t i = 0; i < plane.across * plane.down && next < plane.blocks(); ++i, ++next) {
        const int32_t x = next % plane.width, y = next / plane.width;
        const int32_t mcu = y / plane.down * picture_.mcus_across + x / plane.across;
        const int32_t slot = plane.first_slot + y % plane.down * plane.across + x % plane.across;
        const Status status = read_block(tables, block_at(mcu, slot));
        if (status != Status::ok)
            return status;
    }
    return Status::ok;
}

void ProgressiveDecoder::render_all() {
    for (int32_t mcu = 0; mcu < picture_.mcus;) {
        const int32_t left_in_row = picture_.mcus_across - mcu % picture_.mcus_across;
        const int32_t count = std::min(renderer_.batch_mcus(), left_in_row);
        renderer_.render(mcu, count, &block_at(mcu, 0), nullptr);
        mcu += count;
    }
}

bool make_store(Picture& picture) {
    if (picture.coefficients == nullptr) {
        const int64_t bytes = int64_t{picture.mcus} * picture.frame.layout->blocks() *
                              static_cast<int64_t>(sizeof(Block));
        picture.coefficients = allocate_block(static_cast<uint64_t>(bytes));
    }
    return picture.coefficients != nullptr;
}

} // namespace

Step decode_progressive(DecodeState& state, Renderer& renderer) {
    if (!make_store(state.picture))
        return Step::failure(Status::no_memory);
    Step step;
    {
        const LockedBlock store(state.picture.coefficients);
        step = ProgressiveDecoder(state, renderer, reinterpret_cast<Block*>(store.data())).decode();
    }
    if (step.kind == Step::done)
        state.picture.discard_coefficients();
    return step;
}

} // namespace kirvo
