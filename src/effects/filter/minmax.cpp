// The maximum or minimum filter over a square of pixels, at a cost that does not grow with it.
//
// A square's extreme is found in two steps: up the columns, then along the row. Up the columns (van
// Herk, Gil and Werman) the squares of a band of result rows all contain one image row. Each square
// joins the extreme of its rows up to that one, kept from a walk down, and of its rows after it,
// which grow by one a result row. Along the row runs grow fourfold until a few of them cover the
// square.
//
// The bands of wide images are filtered in strips, so that what is kept of one and the image
// beneath it stay in the caches. The columns that a strip shares with the one before it are taken
// over. (Narrow strips lose more by reading the image in short pieces than they win.)
#include "image/rect_operation.hpp"
#include "simd/kernels.hpp"

#include <cstring>

using namespace kirvo;

namespace {

constexpr int32_t largest_radius = 64;
constexpr int32_t highest_band = 128;
constexpr int32_t kept_bytes = 384 << 10;
constexpr int32_t strip_step = 64; // pixels: strips begin alike in the lines of the cache

// Rows of as many elements that start on cache lines.
template<typename T>
class AlignedLines {
  public:
    AlignedLines(uint64_t rows, size_t count)
        : row_((count + in_line - 1) / in_line * in_line),
          memory_(rows * row_ * sizeof(T) + line_bytes) {}

    explicit operator bool() const { return static_cast<bool>(memory_); }
    T* operator[](int32_t i) const {
        const auto address = reinterpret_cast<uintptr_t>(memory_.data());
        uint8_t* first = memory_.data() + (line_bytes - address % line_bytes) % line_bytes;
        return reinterpret_cast<T*>(first) + static_cast<size_t>(i) * row_;
    }

  private:
    static constexpr size_t line_bytes = 64, in_line = line_bytes / sizeof(T);
    size_t row_;
    Scratch memory_;
};

// A part of the result, and the image around it that its squares reach. Cells and rows of the reach
// are counted from its lowest row and leftmost column, whether or not these lie in the image.
struct Patch {
    int32_t row, rows, column, columns; // of the result
    int64_t first_row, first_column;    // of the image, in the patch's first square
    size_t begin, end;                  // cells inside the image, but those taken over
    size_t taken_over;                  // cells, the first of the reach
};

// The extreme of `side` cells from each of count cells on. A cell has `step` elements; a and b are
// working rows as long as the line.
template<typename T>
void pick_along(T* to, const T* line, size_t count, size_t step, size_t side,
                Kernels::PickFour<T> pick_four, T* a, T* b) {
    size_t run = 1;
    for (; 4 * run <= side; run *= 4) {
        T* next = line == a ? b : a;
        const size_t one = step * run;
        pick_four(next, line, line + one, line + 2 * one, line + 3 * one,
                  step * (count + side - 4 * run));
        line = next;
    }
    // At most four runs cover the side.
    const size_t last = side - run;
    pick_four(to, line, line + step * std::min(run, last), line + step * std::min(2 * run, last),
              line + step * last, step * count);
}

// What both kinds of the filter work on.
struct Setting {
    const RectOperation& operation;
    const RectResult& result;
    PixelFormat format;
    int32_t radius;
    bool maximum;

    int32_t side() const { return 2 * radius + 1; }
    const uint8_t* pixel(int64_t row, int64_t column) const {
        return operation.source().rows(RowStart::after_header)[row] +
               static_cast<size_t>(column) * format.bytes();
    }
    // Pixels of the image as 24-bit ones: in place, or in the buffer.
    const uint8_t* bgr(int64_t row, int64_t column, size_t count, uint8_t* buffer) const {
        const uint8_t* from = pixel(row, column);
        if (format.bits == 24)
            return from;
        unpack_row(format, from, buffer, count);
        return buffer;
    }
    // Where 24-bit pixels for a row of the patch are put: in place, or into the buffer.
    uint8_t* target(const Patch& patch, int32_t row, uint8_t* buffer) const {
        return format.bits == 24 ? result_pixels(patch, row) : buffer;
    }
    // All of them have been written to target.
    void store(const Patch& patch, int32_t row, const uint8_t* target) const {
        if (format.bits != 24)
            pack_row(format, target, result_pixels(patch, row), static_cast<size_t>(patch.columns));
    }

    uint8_t* result_pixels(const Patch& patch, int32_t row) const {
        return result.row(patch.row + row) + static_cast<size_t>(patch.column) * format.bytes();
    }
};

// Largest or smallest value of each channel on its own.
class ChannelKind {
  public:
    using Element = uint8_t;
    static constexpr int32_t elements = 3; // of a cell
    static constexpr int32_t widest_strip = 1 << 14;

    ChannelKind(const Setting& setting, size_t cells)
        : pick(setting.maximum ? kernels().highest8 : kernels().lowest8),
          pick_two(setting.maximum ? kernels().highest_two8 : kernels().lowest_two8),
          pick_four(setting.maximum ? kernels().highest_four8 : kernels().lowest_four8),
          neutral(setting.maximum ? 0 : 255), setting_(setting), buffers_(4, elements * cells) {}

    explicit operator bool() const { return static_cast<bool>(buffers_); }

    // The cells of a row of the reach that lie in the image.
    const uint8_t* load(const Patch& patch, int32_t row) const {
        return setting_.bgr(patch.first_row + row,
                            patch.first_column + static_cast<int64_t>(patch.begin),
                            patch.end - patch.begin, buffers_[0]);
    }
    // Ends a row of the patch from the extremes of its columns.
    void finish(const Patch& patch, int32_t row, const uint8_t* line) const {
        uint8_t* to = setting_.target(patch, row, buffers_[3]);
        pick_along(to, line, static_cast<size_t>(patch.columns), elements,
                   static_cast<size_t>(setting_.side()), pick_four, buffers_[1], buffers_[2]);
        setting_.store(patch, row, to);
    }

    const Kernels::Pick<uint8_t> pick;
    const Kernels::PickTwo<uint8_t> pick_two;
    const Kernels::PickFour<uint8_t> pick_four;
    const uint8_t neutral;

  private:
    const Setting& setting_;
    AlignedLines<uint8_t> buffers_;
};

// The whole colour of the brightest or darkest pixel, of several the first in the order of storage.
//
// A pixel's score is its luminance, or for the minimum what that lacks to 255. Keys that hold
// score, row and column, both of these counted down, make the pixel wanted the one with the largest
// key. A score of 0 never wins over the colour that the search starts with.
class LuminanceKind {
  public:
    using Element = uint16_t; // score and row
    static constexpr int32_t elements = 1;
    static constexpr int32_t widest_strip = (1 << 11) - 2 * largest_radius;

    LuminanceKind(const Setting& setting, size_t cells)
        : pick(kernels().highest16), pick_two(kernels().highest_two16), neutral(0),
          setting_(setting),
          memory_((3 * sizeof(uint32_t) + sizeof(uint16_t) + 3 + 1) * uint64_t{cells}),
          keys_(memory_.part<uint32_t>(0)), row_keys_(memory_.part<uint16_t>(12 * cells)),
          bgr_(memory_.part<uint8_t>(14 * cells)), luminance_(memory_.part<uint8_t>(17 * cells)),
          cells_(cells) {}

    explicit operator bool() const { return static_cast<bool>(memory_); }

    const uint16_t* load(const Patch& patch, int32_t row) const {
        const size_t count = patch.end - patch.begin;
        const uint8_t* from =
            setting_.bgr(patch.first_row + row,
                         patch.first_column + static_cast<int64_t>(patch.begin), count, bgr_);
        kernels().luminance(luminance_, from, count);
        const uint8_t inverted = setting_.maximum ? 0 : 255;
        for (size_t i = 0; i < count; ++i)
            row_keys_[i] = static_cast<uint16_t>((luminance_[i] ^ inverted) << 8 | (255 - row));
        return row_keys_;
    }

    void finish(const Patch& patch, int32_t row, const uint16_t* line) const {
        const auto columns = static_cast<size_t>(patch.columns);
        const auto side = static_cast<size_t>(setting_.side());
        uint32_t* keys = keys_;
        for (size_t i = 0; i < columns + side - 1; ++i)
            keys[i] = uint32_t{line[i]} << column_bits | (column_mask - static_cast<uint32_t>(i));
        const uint32_t* winners = keys_ + 2 * cells_;
        pick_along(keys_ + 2 * cells_, keys, columns, 1, side, kernels().highest_four32,
                   keys_ + cells_, keys_);
        copy_winners(setting_.result_pixels(patch, row), patch, winners, columns);
    }

    const Kernels::Pick<uint16_t> pick;
    const Kernels::PickTwo<uint16_t> pick_two;
    const uint16_t neutral;

  private:
    static constexpr uint32_t column_bits = 11;
    static constexpr uint32_t column_mask = (1u << column_bits) - 1;
    static_assert(widest_strip + 2 * largest_radius <= column_mask + 1);
    static_assert(highest_band + 2 * largest_radius <= 256);

    static constexpr Rgb black = {0, 0, 0}, white = {255, 255, 255};
    static constexpr uint8_t ones[4] = {0xFF, 0xFF, 0xFF, 0xFF};

    static uint32_t score(uint32_t key) { return key >> (8 + column_bits); }

    // The pixels wanted, from wherever they are.
    void copy_winners(uint8_t* to, const Patch& patch, const uint32_t* keys, size_t count) const {
        const LockedDib& source = setting_.operation.source();
        const Rows rows = source.rows(RowStart::after_header);
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
    uint16_t* row_keys_;
    uint8_t *bgr_, *luminance_;
    size_t cells_;
};

template<typename Kind>
class ExtremeFilter {
    using Element = typename Kind::Element;

  public:
    explicit ExtremeFilter(const Setting& setting)
        : setting_(setting), side_(setting.side()), band_(std::min(side_, highest_band)),
          strip_(std::min(kept_bytes / (band_ * Kind::elements * int32_t{sizeof(Element)}),
                          Kind::widest_strip) /
                 strip_step * strip_step),
          cells_(static_cast<size_t>(std::min(setting.operation.rect().width, strip_) + side_ - 1)),
          kind_(setting, cells_), rows_(static_cast<uint64_t>(band_ + 2), cells_ * Kind::elements),
          shared_(static_cast<uint64_t>(band_), shared_cells() * Kind::elements) {}

    explicit operator bool() const { return kind_ && rows_ && shared_; }

    // The rows that are reported as done keep pace with the bands.
    void run() const {
        const Rect& rect = setting_.operation.rect();
        PassProgress progress(rect.height);
        for (int64_t row = 0; row < rect.height; row += band_) {
            progress.reach(row);
            for (int64_t column = 0; column < rect.width; column += strip_)
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
        patch.columns = std::min(strip_, rect.width - column);
        patch.first_row = bottom_row(image.height(), rect) + row - setting_.radius;
        patch.first_column = int64_t{rect.x} + column - setting_.radius;
        const int64_t cells = int64_t{patch.columns} + side_ - 1;
        patch.taken_over = column != 0 ? shared_cells() : 0;
        patch.begin = std::max(patch.taken_over,
                               static_cast<size_t>(std::max<int64_t>(0, -patch.first_column)));
        patch.end = std::max(
            patch.begin, static_cast<size_t>(std::min(cells, image.width() - patch.first_column)));
        return patch;
    }

    void run_patch(const Patch& patch) const {
        const size_t skipped = patch.begin * Kind::elements;
        const size_t count = (patch.end - patch.begin) * Kind::elements;
        const int32_t shared = patch.rows - 1; // the row that all squares contain
        for (int32_t row = shared; row >= 0; --row) {
            const Element* cells = load(patch, row);
            if (row == shared)
                copy_or_clear(kept(row), cells, count);
            else if (cells != nullptr)
                kind_.pick(kept(row), kept(row + 1), cells, count);
            else
                copy_or_clear(kept(row), kept(row + 1), count);
        }
        copy_or_clear(running(), nullptr, count);
        std::fill_n(line(), cells_ * Kind::elements, kind_.neutral);
        Element* inside = line() + skipped;
        for (int32_t row = patch.rows; row < side_; ++row) {
            if (const Element* cells = load(patch, row))
                kind_.pick_two(inside, running(), cells, cells, count);
        }
        for (int32_t row = 0; row < patch.rows; ++row) {
            const Element* cells = row == 0 ? nullptr : load(patch, row + side_ - 1);
            if (cells != nullptr)
                kind_.pick_two(inside, running(), cells, kept(row), count);
            else
                kind_.pick(inside, running(), kept(row), count);
            std::copy_n(shared_[row], patch.taken_over * Kind::elements, line());
            std::copy_n(line() + static_cast<size_t>(patch.columns) * Kind::elements,
                        shared_cells() * Kind::elements, shared_[row]);
            kind_.finish(patch, row, line());
        }
    }

    // That the reaches of neighbouring squares have in common, from a column to the next strip's.
    size_t shared_cells() const { return static_cast<size_t>(side_ - 1); }

    // Null for a row outside the image.
    const Element* load(const Patch& patch, int32_t row) const {
        const int64_t image_row = patch.first_row + row;
        const bool inside = image_row >= 0 && image_row < setting_.operation.source().height();
        return inside ? kind_.load(patch, row) : nullptr;
    }
    void copy_or_clear(Element* to, const Element* from, size_t count) const {
        if (from != nullptr)
            std::copy_n(from, count, to);
        else
            std::fill_n(to, count, kind_.neutral);
    }

    // The extreme of a row of the reach and those up to the shared one.
    Element* kept(int32_t row) const { return rows_[row]; }
    // The extreme of the rows after the shared one, so far.
    Element* running() const { return rows_[band_]; }
    // The extremes of the columns of a row of squares.
    Element* line() const { return rows_[band_ + 1]; }

    const Setting& setting_;
    int32_t side_, band_, strip_;
    size_t cells_; // in a row of a strip's reach
    Kind kind_;
    AlignedLines<Element> rows_;
    AlignedLines<Element>
        shared_; // the extremes of the last columns of the strip before, row by row
};

template<typename Kind>
Status run(const Setting& setting) {
    const ExtremeFilter<Kind> filter(setting);
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
    const Setting setting = {operation, result, operation.format(), radius, maximum != 0};
    Status done = Status::no_memory;
    if (result)
        done = luminance != 0 ? run<LuminanceKind>(setting) : run<ChannelKind>(setting);
    report(status, done);
    return done == Status::ok ? result.release() : nullptr;
}
