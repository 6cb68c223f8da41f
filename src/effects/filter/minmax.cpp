// The maximum or minimum filter over a square of pixels, at a cost that hardly grows with it.
//
// A square's extreme is found in two steps: up the columns, then along the row. Up the columns
// several squares that begin one row after another are taken together: most of their rows are in all
// of them. Of larger squares these are joined from blocks, the extremes of as many rows, which come
// with the squares that end in these rows. Along the row runs grow until a few of them cover the
// square.
//
// An image is filtered in bands, after which the progress is told, and wide ones in strips.
#include "image/rect_operation.hpp"
#include "simd/kernels.hpp"

#include <cstring>

using namespace kirvo;

namespace {

constexpr int32_t largest_radius = 64;
constexpr int32_t most_abreast = 8;        // squares
constexpr int32_t smallest_of_blocks = 32; // the side of a square that is worth the making
constexpr int32_t kept_blocks = 2 * largest_radius / most_abreast;

// Rows of as many elements, all of which start at one place of their cache lines.
template<typename T>
class AlignedLines {
  public:
    AlignedLines(int32_t rows, size_t count, uintptr_t place)
        : elements_(static_cast<uint64_t>(rows) * in_lines(count)), row_(in_lines(count)),
          memory_(elements_ * sizeof(T) + line_bytes + read_behind_runs), first_(memory_.as<T>()) {
        first_ += (place - reinterpret_cast<uintptr_t>(first_)) % line_bytes / sizeof(T);
    }

    explicit operator bool() const { return static_cast<bool>(memory_); }
    T* operator[](int32_t i) const { return first_ + static_cast<size_t>(i) * row_; }
    void fill(T value) const { std::fill_n(first_, static_cast<size_t>(elements_), value); }

  private:
    static constexpr size_t line_bytes = 64;
    static constexpr size_t in_lines(size_t count) {
        constexpr size_t in_line = line_bytes / sizeof(T);
        return (count + in_line - 1) / in_line * in_line;
    }

    uint64_t elements_;
    size_t row_;
    Scratch memory_;
    T* first_;
};

// A part of the result, and the image around it that its squares reach. Cells and rows of the reach
// are counted from its lowest row and leftmost column, whether or not these lie in the image.
struct Patch {
    int32_t row, rows, column, columns; // of the result
    int64_t first_row, first_column;    // of the image, in the patch's first square
    size_t begin, end;                  // cells inside the image

    size_t cells() const { return end - begin; }
};

// The extreme of `side` cells from each of count elements on, `step` of which are a cell; a and b are
// working rows as long as the line. Two of the longest runs cover nearly all, as the kernel wants it.
template<typename T>
[[gnu::always_inline]] inline void join_along(T* to, const T* line, size_t count, size_t step,
                                              size_t side, Kernels::Join<T> join, T* a, T* b) {
    size_t run = 1;
    while (4 * run < side) {
        T* next = line == a ? b : a;
        const size_t at_once = run * (run < 16 ? 4 : 2); // at the end
        const size_t longer = run * std::min<size_t>(4, (side + at_once - 1) / at_once);
        join(next, line, count + step * (side - longer), step, run, longer);
        line = next;
        run = longer;
    }
    join(to, line, count, step, run, side);
}

// What both kinds of the filter work on.
struct Setting {
    const RectOperation& operation;
    Rows from, to;
    PixelFormat format;
    int32_t radius;
    bool maximum;

    int32_t side() const { return 2 * radius + 1; }
    // Of a row of the reach that lies in the image.
    const uint8_t* pixels(const Patch& patch, int32_t row) const {
        const int64_t column = patch.first_column + static_cast<int64_t>(patch.begin);
        return from[patch.first_row + row] + static_cast<size_t>(column) * format.bytes();
    }
    // Where the pixels of the rectangle begin. What is made of them begins at the same place of its
    // lines of the cache, so that vectors which are whole lines there are so everywhere.
    uintptr_t place() const {
        const int64_t row = bottom_row(operation.source().height(), operation.rect());
        return reinterpret_cast<uintptr_t>(from[row]) +
               static_cast<size_t>(operation.rect().x) * format.bytes();
    }
    // The same of what the squares reach, in cells of so many bytes.
    uintptr_t reach_place(size_t cell_bytes) const {
        return place() - static_cast<size_t>(radius) * cell_bytes;
    }
    uint8_t* result_pixels(const Patch& patch, int32_t row) const {
        return to[patch.row + row] + static_cast<size_t>(patch.column) * format.bytes();
    }
};

// Largest or smallest value of each channel on its own. Pixels whose channels are bytes are cells as
// they lie in the image, others are unpacked.
class ChannelKind {
  public:
    using Element = uint8_t;
    static constexpr int32_t strip = 1 << 14, highest_reach = 384;
    static size_t elements_of(const PixelFormat& format) {
        return format.has_byte_channels() ? format.bytes() : 3;
    }

    ChannelKind(const Setting& setting, size_t cells)
        : pick_rows(setting.maximum ? kernels().highest_rows8 : kernels().lowest_rows8),
          neutral(setting.maximum ? 0 : 255), setting_(setting),
          elements_(elements_of(setting.format)), in_place_(setting.format.has_byte_channels()),
          copy_(copy_for(setting.operation.width() * setting.format.bytes(),
                         static_cast<uint64_t>(setting.operation.rect().height))),
          join_(setting.maximum ? kernels().highest8 : kernels().lowest8),
          buffers_(3, elements_ * cells, setting.reach_place(elements_)) {}

    explicit operator bool() const { return static_cast<bool>(buffers_); }

    bool loads() const { return !in_place_; }
    // The cells of a row of the reach, as far as it lies in the image, if that has them.
    const uint8_t* in_place(const Patch& patch, int32_t row) const {
        return in_place_ ? setting_.pixels(patch, row) : nullptr;
    }
    void load(const Patch& patch, int32_t row, uint8_t* cells) const {
        unpack_row(setting_.format, setting_.pixels(patch, row), cells, patch.cells());
    }
    // Ends a row of the patch from the extremes of its columns. In an image beyond the caches memory
    // brings a row that will be wanted meanwhile, piece by piece: it takes no more at once.
    void finish(const Patch& patch, int32_t row, const uint8_t* line, int32_t wanted) const {
        const auto columns = static_cast<size_t>(patch.columns);
        const auto side = static_cast<size_t>(setting_.side());
        const bool past_caches = in_place_ && copy_ != move_bytes;
        const size_t piece = past_caches ? std::max<size_t>(512, 64 * side) : columns;
        uint8_t* const result = setting_.result_pixels(patch, row);
        uint8_t* const to = in_place_ && !past_caches ? result : buffers_[2];
        for (size_t done = 0; done < columns; done += piece) {
            const size_t at = done * elements_, bytes = std::min(piece, columns - done) * elements_;
            if (past_caches)
                prefetch(setting_.pixels(patch, wanted) + at, bytes);
            join_along(to + at, line + at, bytes, elements_, side, join_, buffers_[0], buffers_[1]);
        }
        if (!in_place_)
            return pack_row(setting_.format, to, result, columns);
        const size_t bytes = columns * elements_;
        if (elements_ == 4)
            kernels().keep_bits(to, to, bytes, setting_.format.masks.sum());
        if (to != result)
            copy_(result, to, bytes);
    }

    const Kernels::PickRows<uint8_t> (&pick_rows)[3];
    const uint8_t neutral;

  private:
    const Setting& setting_;
    size_t elements_; // of a cell
    bool in_place_;
    CopyBytes copy_;
    Kernels::Join<uint8_t> join_;
    AlignedLines<uint8_t> buffers_;
};

// The whole colour of the brightest or darkest pixel, of several the first in the order of storage.
//
// A pixel's score is its luminance, or for the minimum what that lacks to 255. Keys that hold
// score, row and column, both of these counted down, make the pixel wanted the one with the largest
// key. A score of 0 never wins over the colour that the search starts with.
class LuminanceKind {
  public:
    using Element = int16_t; // score and row, less what is half of both
    static constexpr int32_t strip = (1 << 11) - 2 * largest_radius, highest_reach = 256;
    static size_t elements_of(const PixelFormat&) { return 1; }

    LuminanceKind(const Setting& setting, size_t cells)
        : pick_rows(kernels().highest_rows16), setting_(setting),
          memory_((3 * sizeof(uint32_t) + 3 + 1) * uint64_t{cells} + read_behind_runs),
          keys_(memory_.part<uint32_t>(0)), bgr_(memory_.part<uint8_t>(12 * cells)),
          luminance_(memory_.part<uint8_t>(15 * cells)), cells_(cells) {}

    explicit operator bool() const { return static_cast<bool>(memory_); }

    static constexpr bool loads() { return true; }
    const int16_t* in_place(const Patch&, int32_t) const { return nullptr; }
    void load(const Patch& patch, int32_t row, int16_t* cells) const {
        const size_t count = patch.cells();
        const uint8_t* bgr = setting_.pixels(patch, row);
        if (setting_.format.bits != 24) {
            unpack_row(setting_.format, bgr, bgr_, count);
            bgr = bgr_;
        }
        kernels().luminance(luminance_, bgr, count);
        const uint8_t inverted = setting_.maximum ? 0x80 : 0x7F;
        for (size_t i = 0; i < count; ++i)
            cells[i] = static_cast<int16_t>((luminance_[i] ^ inverted) << 8 | (255 - row));
    }

    void finish(const Patch& patch, int32_t row, const int16_t* line, int32_t) const {
        const auto columns = static_cast<size_t>(patch.columns);
        const auto side = static_cast<size_t>(setting_.side());
        uint32_t* keys = keys_;
        for (size_t i = 0; i < columns + side - 1; ++i)
            keys[i] = static_cast<uint32_t>(line[i] - neutral) << column_bits |
                      (column_mask - static_cast<uint32_t>(i));
        const uint32_t* winners = keys_ + 2 * cells_;
        join_along(keys_ + 2 * cells_, keys, columns, 1, side, kernels().highest32, keys_ + cells_,
                   keys_);
        copy_winners(setting_.result_pixels(patch, row), patch, winners, columns);
    }

    const Kernels::PickRows<int16_t> (&pick_rows)[3];
    static constexpr int16_t neutral = INT16_MIN;

  private:
    static constexpr uint32_t column_bits = 11;
    static constexpr uint32_t column_mask = (1u << column_bits) - 1;
    static_assert(strip + 2 * largest_radius <= column_mask + 1);

    static constexpr Rgb black = {0, 0, 0}, white = {255, 255, 255};
    static constexpr uint8_t ones[4] = {0xFF, 0xFF, 0xFF, 0xFF};

    static uint32_t score(uint32_t key) { return key >> (8 + column_bits); }

    // The pixels wanted, from wherever they are.
    void copy_winners(uint8_t* to, const Patch& patch, const uint32_t* keys, size_t count) const {
        const LockedDib& source = setting_.operation.source();
        const Rows rows = setting_.from;
        const size_t bytes = setting_.format.bytes();
        // A block is smaller than 4 GB, so that what wraps in between does not matter.
        const auto first =
            static_cast<uint32_t>(rows[0] - source.data() + patch.first_row * rows.stride +
                                  patch.first_column * static_cast<int64_t>(bytes));
        const auto stride = static_cast<uint32_t>(rows.stride), step = static_cast<uint32_t>(bytes);
        const auto inside = static_cast<uint32_t>(rows[0] - source.data());
        uint32_t* const offsets = keys_;
        uint32_t lacking = 0;
        for (size_t i = 0; i < count; ++i) {
            const uint32_t row = 255 - (keys[i] >> column_bits & 255);
            const uint32_t column = column_mask - (keys[i] & column_mask);
            const uint32_t unfound = score(keys[i]) == 0, found = unfound - 1; // all ones or 0
            offsets[i] = inside + ((first + row * stride + column * step - inside) & found);
            lacking |= unfound;
        }
        kernels().gather[bytes - 1](to, source.data(), offsets, count);
        if (bytes != 3)
            kernels().keep_bits(to, to, bytes * count, channel_bits());
        for (size_t i = 0; lacking != 0 && i < count; ++i)
            if (score(keys[i]) == 0)
                setting_.format.store(to + bytes * i, setting_.maximum ? black : white);
    }
    // What of 4 bytes of pixels belongs to channels.
    uint32_t channel_bits() const {
        const uint32_t bits = setting_.format.pack(setting_.format.load(ones));
        return setting_.format.bits == 16 ? bits * 0x10001u : bits;
    }

    const Setting& setting_;
    Scratch memory_;
    uint32_t* keys_;
    uint8_t *bgr_, *luminance_;
    size_t cells_;
};

template<typename Kind>
class ExtremeFilter {
    using Element = typename Kind::Element;

  public:
    explicit ExtremeFilter(const Setting& setting)
        : setting_(setting), side_(setting.side()), abreast_(side_ < 4   ? 2
                                                             : side_ < 8 ? 4
                                                                         : 8),
          reached_(side_ + abreast_ - 1), of_blocks_(side_ >= smallest_of_blocks),
          elements_(Kind::elements_of(setting.format)),
          band_(std::clamp(4 * side_, 64, Kind::highest_reach - 2 * setting.radius) / abreast_ *
                abreast_),
          cells_(static_cast<size_t>(std::min(setting.operation.rect().width, Kind::strip) + side_ -
                                     1)),
          kind_(setting, cells_),
          rows_(kind_.loads() ? reached_ : 0, cells_ * elements_, setting.place()),
          blocks_(of_blocks_ ? kept_blocks + 1 : 0, cells_ * elements_, setting.place()),
          lines_(abreast_ + 1, cells_ * elements_,
                 setting.reach_place(elements_ * sizeof(Element))) {}

    explicit operator bool() const { return kind_ && rows_ && blocks_ && lines_; }

    // The rows that are reported as done keep pace with the bands.
    void run() {
        const Rect& rect = setting_.operation.rect();
        PassProgress progress(rect.height);
        for (int64_t row = 0; row < rect.height; row += band_) {
            progress.reach(row);
            for (int64_t column = 0; column < rect.width; column += Kind::strip)
                run_patch(patch_at(static_cast<int32_t>(row), static_cast<int32_t>(column)));
        }
        progress.reach(rect.height - 1);
        progress.finish();
    }

  private:
    Patch patch_at(int32_t row, int32_t column) const {
        const LockedDib& image = setting_.operation.source();
        const Rect& rect = setting_.operation.rect();
        Patch patch = {};
        patch.row = row;
        patch.rows = std::min(band_, rect.height - row);
        patch.column = column;
        patch.columns = std::min(Kind::strip, rect.width - column);
        patch.first_row = bottom_row(image.height(), rect) + row - setting_.radius;
        patch.first_column = int64_t{rect.x} + column - setting_.radius;
        const int64_t cells = int64_t{patch.columns} + side_ - 1;
        patch.begin = static_cast<size_t>(std::max<int64_t>(0, -patch.first_column));
        patch.end = static_cast<size_t>(std::min(cells, image.width() - patch.first_column));
        return patch;
    }

    void run_patch(const Patch& patch) {
        loaded_ = static_cast<int32_t>(std::max<int64_t>(0, -patch.first_row));
        joined_ = abreast_ + (side_ - 1) % abreast_;
        lines_.fill(kind_.neutral);
        for (int32_t row = 0; row < patch.rows; row += abreast_) {
            pick_columns(patch, row);
            for (int32_t k = 0; k < std::min(abreast_, patch.rows - row); ++k)
                kind_.finish(patch, row + k, lines_[k], row + k + reached_);
        }
    }

    // The extremes of the columns of the squares that begin at a row and after it. The rows from the
    // last one of the first square on are the next block.
    void pick_columns(const Patch& patch, int32_t first) {
        const Element* rows[2 * largest_radius + 2 * most_abreast];
        size_t n = 0;
        const int32_t last = first + side_ - 1;
        const int32_t blocks_begin =
            of_blocks_ ? first + most_abreast + (side_ - 1) % most_abreast : last;
        for (int32_t row = first; row < blocks_begin; ++row)
            rows[n++] = cells(patch, row);
        for (int32_t row = blocks_begin; row < last; row += most_abreast)
            rows[n++] = block(patch, row);
        for (int32_t row = last; row < first + reached_; ++row)
            rows[n++] = cells(patch, row);
        Element* to[most_abreast + 1];
        for (int32_t k = 0; k < abreast_; ++k)
            to[k] = lines_[k] + patch.begin * elements_;
        to[abreast_] = of_blocks_ ? kept_block(last) : nullptr;
        kind_.pick_rows[abreast_ / 4](to, rows, n + 1 - static_cast<size_t>(abreast_),
                                      patch.cells() * elements_);
        joined_ = last + abreast_;
    }

    // The extreme of the rows from one on. Only those of the first squares are made here.
    const Element* block(const Patch& patch, int32_t row) {
        for (; joined_ <= row; joined_ += most_abreast) {
            const Element* rows[most_abreast + 1];
            for (int32_t k = 0; k < most_abreast; ++k)
                rows[k] = cells(patch, joined_ + k);
            rows[most_abreast] = neutral();
            // The second window's is of no use.
            Element* const to[] = {kept_block(joined_), blocks_[kept_blocks], nullptr};
            kind_.pick_rows[0](to, rows, size_t{most_abreast}, patch.cells() * elements_);
        }
        return kept_block(row);
    }
    Element* kept_block(int32_t row) const { return blocks_[row / most_abreast % kept_blocks]; }

    // A row of the reach: what of it lies in the image.
    const Element* cells(const Patch& patch, int32_t row) {
        const int64_t image_row = patch.first_row + row;
        if (image_row < 0 || image_row >= setting_.operation.source().height())
            return neutral();
        if (const Element* there = kind_.in_place(patch, row))
            return there;
        for (; loaded_ <= row; ++loaded_)
            kind_.load(patch, loaded_, rows_[loaded_ % reached_]);
        return rows_[row % reached_];
    }

    Element* neutral() const { return lines_[abreast_]; }

    const Setting& setting_;
    int32_t side_;
    int32_t abreast_; // squares taken together
    int32_t reached_; // rows that these contain
    bool of_blocks_;
    size_t elements_; // of a cell
    int32_t band_;
    size_t cells_; // in a row of a strip's reach
    Kind kind_;
    AlignedLines<Element> rows_, blocks_; // each in turn
    AlignedLines<Element> lines_;         // the extremes of columns, and a row of neutral elements
    int32_t loaded_ = 0, joined_ = 0;     // rows of the patch before which all are there
};

template<typename Kind>
Status run(const Setting& setting) {
    ExtremeFilter<Kind> filter(setting);
    if (!filter)
        return Status::no_memory;
    filter.run();
    return Status::ok;
}

} // namespace

HGLOBAL WINAPI DibBlockMxM(HGLOBAL dib, int32_t x, int32_t y, int32_t width, int32_t height,
                           int32_t radius, int32_t maximum, int32_t luminance, int32_t* status) {
    RectOperation operation(dib, {x, y, width, height}, check_rect_16_to_32);
    operation.require(radius >= 1 && radius <= largest_radius);
    if (!operation.passed(status))
        return nullptr;
    RectResult result(operation, operation.source().bits());
    Status done = Status::no_memory;
    if (result) {
        const Setting setting = {operation,
                                 operation.source().rows(RowStart::after_header),
                                 result.dib().rows(RowStart::after_header),
                                 operation.format(),
                                 radius,
                                 maximum != 0};
        done = luminance != 0 ? run<LuminanceKind>(setting) : run<ChannelKind>(setting);
    }
    report(status, done);
    return done == Status::ok ? result.release() : nullptr;
}
