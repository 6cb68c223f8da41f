#include "support/calls.hpp"

#include <algorithm>
#include <climits>
#include <cstring>
#include <limits>

namespace kirvo_test {

namespace {

template<typename Container>
bool has(const Container& values, const typename Container::value_type& value) {
    return std::find(values.begin(), values.end(), value) != values.end();
}

// Sizes and places: small, at the widths of vectors, and such that sums and products wrap.
int32_t hostile_extent(Choices& choices) {
    static const int32_t small[] = {1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 31, 33, 64, 65};
    static const int32_t odd[] = {0,           -1,    INT_MAX, INT_MAX - 1, INT_MIN,
                                  INT_MIN + 1, 65535, 65536,   32768,       -2};
    return choices.once_in(6) ? choices.pick(odd) : choices.pick(small);
}

int32_t hostile_position(Choices& choices) {
    static const int32_t odd[] = {-1, 3, 8, 63, INT_MAX, INT_MIN, 65536};
    return choices.once_in(6) ? choices.pick(odd) : static_cast<int32_t>(choices.below(3));
}

int32_t hostile_number(Choices& choices) {
    static const int32_t odd[] = {-1,   -2,    -100,  -101,   -259,  8,       16,      24,
                                  32,   63,    64,    65,     99,    100,     101,     255,
                                  256,  257,   359,   360,    0x101, 0x102,   0x202,   1024,
                                  1025, 32767, 65535, 0xFF00, 65536, 0x1FF00, INT_MAX, INT_MIN};
    return choices.once_in(3) ? choices.pick(odd) : static_cast<int32_t>(choices.below(7));
}

double hostile_real(Choices& choices) {
    using limits = std::numeric_limits<double>;
    static const double values[] = {1,
                                    0.5,
                                    2.2,
                                    0,
                                    -0.0,
                                    -1,
                                    255,
                                    1e-300,
                                    1e300,
                                    limits::denorm_min(),
                                    limits::infinity(),
                                    -limits::infinity(),
                                    limits::quiet_NaN()};
    return choices.pick(values);
}

uint32_t hostile_mask(Choices& choices) {
    static const uint32_t masks[] = {0xFF0000, 0xFF00,     0xFF,       0xF800,     0x07E0,
                                     0x001F,   0x7C00,     0x03E0,     0,          0xFFFFFFFF,
                                     1,        0x80000000, 0xAAAAAAAA, 0x55555555, 0xFFFF0000,
                                     0xFFFF,   0x00FFFF00, 0x8001};
    return choices.pick(masks);
}

int64_t number_text(const Parameter& parameter, const Value& value) {
    return parameter.width == 4 ? static_cast<int32_t>(value.number)
                                : static_cast<int64_t>(value.number);
}

bool starts_encode(const Export& what) {
    return what.name == "JpgCodFirst" || what.name == "JpgCodFirst_M";
}
bool continues_encode(const Export& what) {
    return what.name == "JpgCodNext" || what.name == "JpgCodNext_M";
}
bool continues_decode(const Export& what) {
    return what.name == "JpgDecFirst" || what.name == "JpgDecNext";
}

} // namespace

void Choices::fill(void* to, size_t bytes) {
    for (size_t i = 0; i < bytes; ++i)
        static_cast<uint8_t*>(to)[i] = byte();
}

uint32_t InputChoices::below(uint32_t n) {
    const size_t wanted = n <= 0x100 ? 1 : n <= 0x10000 ? 2 : 4;
    uint32_t value = 0;
    for (size_t i = 0; i < wanted && first_ != last_; ++i)
        value = value << 8 | *--last_;
    return n != 0 ? value % n : 0;
}

std::vector<uint8_t> hostile_image(Choices& choices) {
    static const uint16_t depths[] = {24, 8, 32, 16, 4, 1};
    static const uint16_t odd_depths[] = {0, 2, 12, 15, 25, 48, 64, 255, 256 + 8, 0x8018, 65535};
    static const uint32_t header_sizes[] = {0,  4,   12,  16,         39,         41,        52,
                                            64, 108, 124, 0x7FFFFFFF, 0xFFFFFFFF, 0x80000000};
    static const uint32_t colours[] = {1,     2,     3,     15,         16,         17,
                                       255,   256,   257,   16383,      16384,      65535,
                                       65536, 65792, 65539, 0x40000000, 0x7FFFFFFF, 0xFFFFFFFF};
    static const uint32_t compressions[] = {1, 2, 4, 6, 0xFFFFFFFF};

    BITMAPINFOHEADER header = {};
    header.biSize = choices.once_in(5) ? choices.pick(header_sizes) : 40;
    header.biWidth = hostile_extent(choices);
    header.biHeight = hostile_extent(choices);
    header.biPlanes = static_cast<WORD>(choices.once_in(8) ? choices.below(65536) : 1);
    header.biBitCount = choices.once_in(10) ? choices.pick(odd_depths) : choices.pick(depths);
    const bool masked = header.biBitCount == 16 || header.biBitCount == 32;
    header.biCompression = choices.once_in(8) ? choices.pick(compressions)
                           : masked           ? BI_BITFIELDS * (choices.below(3) != 0)
                                              : BI_RGB;
    header.biSizeImage = choices.once_in(2) ? 0 : 0xFFFFFFFF;
    header.biClrUsed = choices.once_in(5) ? choices.pick(colours) : 0;

    // The bytes that the header promises, as far as they can be had.
    const bool plausible = header.biWidth > 0 && header.biWidth <= 65 && header.biHeight > 0 &&
                           header.biHeight <= 65 && header.biBitCount <= 64;
    const size_t colour_part = PaletteSize(&header);
    const size_t rows_at = std::min<size_t>(header.biSize, 1024) + colour_part;
    const uint64_t stride = // the same, and so the image, whatever the size of a word
        (uint64_t{header.biBitCount} * static_cast<uint32_t>(header.biWidth) + 31) / 32 * 4;
    const size_t promised =
        rows_at +
        (plausible ? static_cast<size_t>(stride) * static_cast<uint32_t>(header.biHeight) : 256);
    size_t size = promised;
    if (choices.once_in(3)) {
        const size_t cuts[] = {0,
                               choices.below(61),
                               rows_at,
                               rows_at - 1,
                               rows_at + 1,
                               promised - 1,
                               promised - 2,
                               promised - 3,
                               promised - 4,
                               promised - static_cast<size_t>(std::min<uint64_t>(stride, promised)),
                               promised + 1,
                               promised + 13};
        size = std::min(choices.pick(cuts), promised + 64);
    }

    std::vector<uint8_t> bytes(std::max(size, size_t{56}));
    const uint8_t step = choices.byte();
    for (size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<uint8_t>(i * step + (i >> 5));
    std::memcpy(bytes.data(), &header, sizeof header);
    if (masked) {
        for (size_t i = 0; i < 3; ++i) {
            const uint32_t mask = hostile_mask(choices);
            std::memcpy(bytes.data() + 40 + 4 * i, &mask, 4);
        }
    }
    bytes.resize(size);
    return bytes;
}

Pool::~Pool() {
    end_codec_operations();
    for (HGLOBAL block : owned_)
        Pool::release(block);
}

HGLOBAL Pool::allocate(size_t bytes) { return GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, bytes); }

void Pool::release(HGLOBAL block) { GlobalFree(block); }

HGLOBAL Pool::add(const std::vector<uint8_t>& bytes) {
    HGLOBAL block = allocate(bytes.size());
    if (void* to = bytes.empty() ? nullptr : GlobalLock(block)) {
        std::memcpy(to, bytes.data(), bytes.size());
        GlobalUnlock(block);
    }
    keep(block, bytes.data(), bytes.size());
    return block;
}

void Pool::take(HGLOBAL block) {
    if (block == nullptr || has(owned_, block))
        return;
    const void* bytes = GlobalLock(block);
    keep(block, bytes, bytes != nullptr ? GlobalSize(block) : 0);
    if (bytes != nullptr)
        GlobalUnlock(block);
}

void Pool::keep(HGLOBAL block, const void* bytes, size_t size) {
    if (block == nullptr)
        return;
    BITMAPINFOHEADER header = {};
    if (size != 0)
        std::memcpy(&header, bytes, std::min(size, sizeof header));
    owned_.push_back(block);
    handles_.push_back(block);
    headers_.push_back(header);
}

BITMAPINFOHEADER Pool::header_of(HGLOBAL block) const {
    // A handle may have been given out again: the last one counts.
    const auto found = std::find(handles_.rbegin(), handles_.rend(), block);
    return found != handles_.rend() ? headers_[static_cast<size_t>(handles_.rend() - found) - 1]
                                    : BITMAPINFOHEADER{};
}

void Pool::free(HGLOBAL block) {
    const auto found = std::find(owned_.begin(), owned_.end(), block);
    if (found == owned_.end())
        return;
    release(block);
    owned_.erase(found);
}

uint8_t* Pool::memory(size_t bytes) {
    return memory_.emplace_back(std::make_unique<uint8_t[]>(bytes)).get();
}

void end_codec_operations() {
    JpgCodNext(-1, nullptr);
    JpgCodNext_M(-1, nullptr);
    JpgDecNext(nullptr, 0, -1, nullptr);
}

void Call::draw(Choices& choices) {
    const auto turn = [](Kind kind) {
        return kind == Kind::size ? 0 : kind == Kind::image || kind == Kind::stream ? 1 : 2;
    };
    for (int now = 0; now < 3; ++now) {
        for (size_t i = 0; i < what_.parameters.size(); ++i) {
            if (turn(what_.parameters[i].kind) == now)
                draw(choices, i);
        }
    }
}

const void* Call::first_image() const {
    for (size_t i = 0; i < what_.parameters.size(); ++i) {
        if (what_.parameters[i].kind == Kind::image)
            return arguments_[i].pointer;
    }
    return nullptr;
}

void Call::draw(Choices& choices, size_t i) {
    const Parameter& parameter = what_.parameters[i];
    Value& value = arguments_[i];
    const auto number = [](int64_t n) { return Value{static_cast<uint64_t>(n)}; };
    const auto invented = [&] { return reinterpret_cast<void*>(uintptr_t{choices.below(65536)}); };
    const void* const image = parameter.kind == Kind::image ? first_image() : nullptr;
    value = {0};
    switch (parameter.kind) {
    case Kind::image:
    case Kind::stream:
        switch (choices.below(16)) {
        case 0:
            value.pointer = nullptr;
            break;
        case 1:
            value.pointer = invented();
            break;
        case 2:
        case 3:
            if (!pool_.handles().empty())
                value.pointer = choices.pick(pool_.handles());
            break;
        case 4:
        case 5:
        case 6:
            value.pointer = image; // both the same
            if (image != nullptr)
                break;
            [[fallthrough]];
        default:
            if (parameter.kind == Kind::image || pool_.streams.empty()) {
                value.pointer = pool_.add(hostile_image(choices));
            } else {
                std::vector<uint8_t> stream = choices.pick(pool_.streams);
                if (choices.once_in(3) && !stream.empty())
                    stream.resize(choices.below(static_cast<uint32_t>(stream.size())));
                value.pointer = pool_.add(stream);
                // The size was drawn before; mostly it is the block's.
                if (i + 1 < what_.parameters.size() && !choices.once_in(3))
                    arguments_[i + 1] = {stream.size()};
            }
        }
        break;
    case Kind::window:
        if (!pool_.windows.empty() && !choices.once_in(4))
            value.pointer = choices.pick(pool_.windows);
        break;
    case Kind::file_read:
    case Kind::file_written: {
        const auto& files =
            parameter.kind == Kind::file_read ? pool_.files_read : pool_.files_written;
        if (!files.empty() && !choices.once_in(16))
            value.pointer = choices.pick(files).c_str();
        break;
    }
    case Kind::position:
        value = number(choices.once_in(3) ? hostile_position(choices) : 0);
        break;
    case Kind::extent: {
        const BITMAPINFOHEADER header = pool_.header_of(const_cast<void*>(first_image()));
        const bool across = parameter.name.find("width") != std::string_view::npos;
        const int32_t whole = across ? header.biWidth : header.biHeight;
        value = number(whole < 1 || choices.once_in(4) ? hostile_extent(choices)
                       : choices.once_in(3)            ? whole - choices.below(4)
                                                       : whole);
        break;
    }
    case Kind::size: {
        static const int32_t sizes[] = {1, 5, 6, 7, 12, 18, 64, 600, 65533, 65534, 70000, 0};
        value = number(choices.pick(sizes));
        break;
    }
    case Kind::number:
        value = number(hostile_number(choices));
        break;
    case Kind::real:
        value.real = hostile_real(choices);
        break;
    case Kind::input:
    case Kind::output:
    case Kind::output_handle:
        if (!choices.once_in(8))
            give_memory(i, parameter.kind == Kind::input ? choices.byte() : uint8_t{0});
        break;
    }
}

uint8_t* Call::give_memory(size_t i, uint8_t with) {
    const Parameter& parameter = what_.parameters[i];
    size_t bytes = parameter.bytes;
    if (parameter.bytes_per_size != 0)
        bytes += parameter.bytes_per_size * static_cast<uint32_t>(arguments_[i + 1].number);
    uint8_t* memory = pool_.memory(bytes);
    std::memset(memory, with, bytes);
    if (i == what_.status_parameter())
        std::memcpy(memory, &unwritten, sizeof unwritten);
    arguments_[i].pointer = memory;
    return memory;
}

Value Call::make() {
    const Value result = what_.call(arguments_);
    made(result);
    return result;
}

void Call::made(Value result) {
    result_ = result;
    if (what_.result == Result::palette && result.pointer != nullptr)
        DeleteObject(const_cast<void*>(result.pointer));
    if (what_.result == Result::handle) {
        const auto handle = const_cast<void*>(result.pointer);
        if (starts_encode(what_))
            pool_.stream_under_way = handle != nullptr ? handle : pool_.stream_under_way;
        else if (what_.name != "JpgDecGetComment") // the library's own
            pool_.take(handle);
    }
    if (continues_encode(what_) && static_cast<int32_t>(result.number) == 1) {
        pool_.take(pool_.stream_under_way);
        pool_.stream_under_way = nullptr;
    }
    if (continues_decode(what_) && static_cast<int32_t>(result.number) == 1) {
        HGLOBAL image = nullptr; // which the caller may not have asked for
        JpgDecNext(nullptr, 0, 1, &image);
        pool_.take(image);
    }
    for (size_t i = 0; i < what_.parameters.size(); ++i) {
        if (what_.parameters[i].kind == Kind::output_handle && arguments_[i].pointer != nullptr) {
            HGLOBAL handle;
            std::memcpy(&handle, arguments_[i].pointer, sizeof handle);
            pool_.take(handle);
        }
    }
}

const int32_t* Call::status_memory() const {
    const size_t i = what_.status_parameter();
    return i != Export::none ? static_cast<const int32_t*>(arguments_[i].pointer) : nullptr;
}

int32_t Call::status() const {
    if (what_.result == Result::code)
        return static_cast<int32_t>(result_.number);
    const int32_t* status = status_memory();
    return status != nullptr ? *status : int32_t{KIRVO_OK};
}

bool Call::succeeded() const {
    switch (what_.result) {
    case Result::code:
        return status() >= 0;
    case Result::handle:
    case Result::palette:
        return result_.pointer != nullptr;
    default:
        return true;
    }
}

std::string Call::problem() const {
    if (what_.result == Result::code)
        return status() >= 0 || what_.documents(status()) ? "" : "a code that is not documented";
    if (what_.result != Result::handle || status_memory() == nullptr)
        return "";
    if (succeeded()) {
        // An enlargement to the same size is a copy, which leaves the status alone.
        const bool zoom = what_.name == "Dib24ZoomEx" || what_.name == "Dib24ZoomEx2";
        const bool good = status() == KIRVO_OK || (zoom && status() == unwritten);
        return good ? "" : "a result with a bad status";
    }
    if (status() == unwritten)
        return "neither a result nor a status";
    return status() < 0 && what_.documents(status()) ? "" : "a status that is not documented";
}

std::string Call::text() const {
    std::string text(what_.name);
    text += '(';
    for (size_t i = 0; i < what_.parameters.size(); ++i) {
        const Parameter& parameter = what_.parameters[i];
        const Value& value = arguments_[i];
        text.append(i != 0 ? ", " : "").append(parameter.name).append(" ");
        switch (parameter.kind) {
        case Kind::position:
        case Kind::extent:
        case Kind::size:
        case Kind::number:
            text += std::to_string(number_text(parameter, value));
            break;
        case Kind::real:
            text += std::to_string(value.real);
            break;
        case Kind::file_read:
        case Kind::file_written:
            text += value.pointer != nullptr ? static_cast<const char*>(value.pointer) : "null";
            break;
        case Kind::image: {
            uint8_t header[56] = {};
            const auto handle = const_cast<void*>(value.pointer);
            const size_t size = handle != nullptr ? GlobalSize(handle) : 0;
            if (const void* bytes = size != 0 ? GlobalLock(handle) : nullptr) {
                std::memcpy(header, bytes, std::min(size, sizeof header));
                GlobalUnlock(handle);
            }
            static const char digits[] = "0123456789abcdef";
            text += "of " + std::to_string(size) + " bytes";
            for (size_t at = 0; at < std::min(size, sizeof header); ++at) {
                text += at % 4 == 0 ? " " : "";
                text += digits[header[at] >> 4];
                text += digits[header[at] & 15];
            }
            break;
        }
        default:
            text += value.pointer != nullptr ? "given" : "null";
        }
    }
    return text += ')';
}

} // namespace kirvo_test
