#include "jpeg/decode/markers.hpp"

#include "jpeg/decode/lookup.hpp"

#include <cstring>
#include <optional>
#include <span>

namespace kirvo {

namespace {

using Content = std::span<const uint8_t>;

enum Marker : uint8_t {
    SOF0 = 0xC0,
    SOF2 = 0xC2,
    DHT = 0xC4,
    JPG = 0xC8,
    DAC = 0xCC,
    SOI = 0xD8,
    EOI = 0xD9,
    SOS = 0xDA,
    DQT = 0xDB,
    DNL = 0xDC,
    DRI = 0xDD,
    APP0 = 0xE0,
    APP15 = 0xEF,
    COM = 0xFE,
};

constexpr uint8_t lowest_marker = SOF0;

bool is_other_frame(uint8_t marker) {
    return marker > SOF0 && marker <= 0xCF && marker != SOF2 && marker != DHT && marker != JPG &&
           marker != DAC;
}

bool has_segment(uint8_t marker) {
    return marker == SOF0 || marker == SOF2 || marker == DHT || marker == COM ||
           (marker >= SOS && marker <= DRI) || (marker >= APP0 && marker <= APP15);
}

uint32_t word_at(Content content, size_t at) { return content[at] * 256u + content[at + 1]; }

const Layout* find_layout(int32_t components, uint8_t first, uint8_t second, uint8_t third) {
    if (components == 1)
        return first == grey_layout.luma_sampling ? &grey_layout : nullptr;
    for (const Layout& layout : colour_layouts) {
        if (first == layout.luma_sampling && second == layout.chroma_sampling && third == second)
            return &layout;
    }
    return nullptr;
}

bool read_frame(DecodeState& state, Content content, FrameMode mode) {
    constexpr size_t fixed = 6;
    if (content.size() < fixed || content[0] != 8)
        return false;
    Frame& frame = state.frame;
    frame.height = static_cast<int32_t>(word_at(content, 1));
    frame.width = static_cast<int32_t>(word_at(content, 3));
    const size_t components = content[5];
    if ((components != 1 && components != 3) || content.size() < fixed + 3 * components)
        return false;
    frame.components = static_cast<int32_t>(components);

    const auto listed = content.subspan(fixed, 3 * components); // id, sampling, selector of each
    const Layout* layout = find_layout(frame.components, listed[1], components == 3 ? listed[4] : 0,
                                       components == 3 ? listed[7] : 0);
    if (layout == nullptr)
        return false;
    frame.layout = layout;
    for (size_t i = 0; i < components; ++i) {
        const uint8_t id = listed[3 * i], selector = listed[3 * i + 2];
        if (id < 1 || id > 3 || selector > 3)
            return false;
        state.quantisation_of[id] = selector;
    }
    frame.mode = mode;
    return true;
}

bool read_scan(DecodeState& state, Content content) {
    Scan& scan = state.scan;
    const size_t count = content[0];
    if (content.size() < 3 || content.size() < 1 + 2 * count)
        return false;
    scan.has_component_1 = false;
    scan.count = static_cast<int32_t>(count);
    for (size_t i = 0; i < count; ++i) {
        const uint8_t id = content[1 + 2 * i], tables = content[2 + 2 * i];
        scan.components[i] = {id, static_cast<uint8_t>(tables >> 4),
                              static_cast<uint8_t>(tables & 15)};
        if (id > 3 || tables >> 4 > 3 || (tables & 15) > 3)
            return false;
        scan.has_component_1 |= id == 1;
    }
    const Content last = content.last(3);
    scan.spectral_start = last[0];
    scan.spectral_end = last[1];
    scan.refined_from = last[2] >> 4;
    scan.shift = last[2] & 15;
    if (scan.refined_from != 0)
        state.stop = true;
    return true;
}

bool read_quantisation(DecodeState& state, Content content) {
    constexpr size_t table_bytes = 65;
    for (; !content.empty(); content = content.subspan(table_bytes)) {
        const uint8_t slot = content[0]; // the precision in the high nibble must be 0
        if (slot > 3 || content.size() < table_bytes)
            return false;
        std::memcpy(state.slots[slot].data(), &content[1], 64);
        state.quantisation.defined[slot] = true;
    }
    return true;
}

bool read_huffman(DecodeState& state, Content content) {
    constexpr size_t fixed = 1 + longest_code;
    while (!content.empty()) {
        const uint32_t number = content[0] & 15;
        const bool ac = (content[0] & 0x10) != 0;
        if (number > 3 || content.size() < fixed)
            return false;
        size_t symbols = 0;
        for (size_t i = 1; i < fixed; ++i)
            symbols += content[i];
        if (symbols > 256 || content.size() < fixed + symbols)
            return false;
        (ac ? state.ac_defined : state.dc_defined)[number] = true;
        DecodeTable& table = (ac ? state.ac_tables : state.dc_tables)[number];
        if (table.set(&content[1], content.data() + fixed))
            state.buffers.lookups.forget(ac, number);
        content = content.subspan(fixed + symbols);
    }
    return true;
}

bool read_restart_interval(DecodeState& state, Content content) {
    if (content.size() < 2)
        return false;
    state.restart_interval = word_at(content, 0);
    return true;
}

// The text with a zero byte after it; null when there is no memory.
HGLOBAL make_comment(Content text) {
    OwnedBlock block(allocate_block(text.size() + 1));
    const LockedBlock lock(block.get());
    if (lock)
        std::memcpy(lock.data(), text.data(), text.size());
    return block.release();
}

void read_comment(Comments& comments, Content text, bool store) {
    if (text.empty() || comments.count == comment_slots)
        return;
    if (store)
        comments.stored[comments.count] = make_comment(text);
    ++comments.count;
}

// An empty segment is an error, save an empty comment.
bool read_content(DecodeState& state, uint8_t marker, Content content, bool store_comments) {
    if (marker == COM) {
        read_comment(state.comments, content, store_comments);
        return true;
    }
    if (content.empty())
        return false;
    switch (marker) {
    case SOF0:
        return read_frame(state, content, FrameMode::baseline);
    case SOF2:
        return read_frame(state, content, FrameMode::progressive);
    case DHT:
        return read_huffman(state, content);
    case SOS:
        return read_scan(state, content);
    case DQT:
        return read_quantisation(state, content);
    case DRI:
        return read_restart_interval(state, content);
    default: // DNL, APPn
        return true;
    }
}

// The cursor stands after the marker's second byte; it goes back onto that when not all of the
// segment is here.
Step read_segment(DecodeState& state, uint8_t marker, bool store_comments) {
    constexpr size_t length_bytes = 2;
    DecodeInput& input = state.input;
    const Content rest(input.bytes + input.position, input.remaining());
    const size_t length = rest.size() < length_bytes ? length_bytes : word_at(rest, 0);
    if (rest.size() < std::max(length, length_bytes)) {
        --input.position;
        return Step::starved();
    }
    if (length < length_bytes)
        return Step::failure(Status::jpeg_header);
    input.position += length;
    if (!read_content(state, marker, rest.subspan(length_bytes, length - length_bytes),
                      store_comments))
        return Step::failure(Status::jpeg_header);
    return Step::finished();
}

// Acts on a marker; nothing when reading goes on.
std::optional<Step> act_on(DecodeState& state, uint8_t marker, bool store_comments) {
    state.marker_prefix = false;
    if (is_other_frame(marker))
        return Step::failure(Status::jpeg_frame);
    if (marker == EOI)
        return Step::failure(Status::jpeg_early_eoi);
    if (!has_segment(marker))
        return {};
    const Step step = read_segment(state, marker, store_comments);
    state.marker_prefix = step.kind == Step::need_more;
    if (step.kind == Step::done && marker != SOS)
        return {};
    return step;
}

} // namespace

bool find_start_of_image(DecodeState& state) {
    while (!state.input.empty()) {
        const uint8_t byte = state.input.take();
        const bool found = state.start_prefix && byte == SOI;
        state.start_prefix = byte == 0xFF;
        if (found)
            return true;
    }
    return false;
}

Step read_segments(DecodeState& state, bool store_comments) {
    while (!state.input.empty()) {
        const uint8_t byte = state.input.take();
        if (byte == 0xFF) {
            state.marker_prefix = true;
        } else if (byte < lowest_marker) {
            state.marker_prefix = false;
        } else if (state.marker_prefix) {
            if (const auto step = act_on(state, byte, store_comments))
                return *step;
        }
    }
    return Step::starved();
}

} // namespace kirvo
