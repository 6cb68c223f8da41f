// What the operations that work through a rectangle row by row have in common: the check, the lock,
// the result and the progress. An operation adds the test of its parameters and a function over rows
// of 24-bit pixels, and runs at every depth that its check accepts.
#pragma once

#include "image/pixels.hpp"
#include "image/progress.hpp"

namespace kirvo {

// A function of bytes that does the same to each, whichever channel it is.
template<typename F>
struct OnEachByte {
    F function;
};
template<typename F>
OnEachByte(F) -> OnEachByte<F>;

// A function from count 24-bit pixels (blue, green, red bytes) to as many; both rows may be the
// same. Refers to a function object that must outlive it.
class RowFunction {
  public:
    template<typename F>
    RowFunction(const F& function) : RowFunction(&function, call<F>, false) {}
    template<typename F>
    RowFunction(const OnEachByte<F>& bytes) : RowFunction(&bytes.function, call<F>, true) {}

    void operator()(uint8_t* to, const uint8_t* from, size_t pixels) const {
        call_(function_, to, from, on_each_byte_ ? 3 * pixels : pixels);
    }
    // Whether it can be given bytes of other pixels.
    bool on_each_byte() const { return on_each_byte_; }
    void on_bytes(uint8_t* to, const uint8_t* from, size_t bytes) const {
        call_(function_, to, from, bytes);
    }

  private:
    using Call = void (*)(const void*, uint8_t*, const uint8_t*, size_t);

    RowFunction(const void* function, Call call, bool on_each_byte)
        : function_(function), call_(call), on_each_byte_(on_each_byte) {}

    template<typename F>
    static void call(const void* f, uint8_t* to, const uint8_t* from, size_t count) {
        (*static_cast<const F*>(f))(to, from, count);
    }

    const void* function_;
    Call call_;
    bool on_each_byte_;
};

// Pixels of a row that are handled together as 24-bit ones: they stay in the first-level cache.
constexpr size_t pixels_at_once = 1024;

// Runs a function over pixels of 16, 24 or 32 bits. The rows may be the same if the formats are.
void run_row(const RowFunction& function, const PixelFormat& from_format, const uint8_t* from,
             const PixelFormat& to_format, uint8_t* to, size_t count);

// Hands a row of pixels of 16, 24 or 32 bits to work(bgr, count) as 24-bit pixels, piece by piece.
template<typename Work>
void read_row(const PixelFormat& format, const uint8_t* row, size_t count, const Work& work) {
    if (format.bits == 24)
        return work(row, count);
    uint8_t bgr[3 * pixels_at_once];
    while (count != 0) {
        const size_t n = std::min(count, pixels_at_once);
        unpack_row(format, row, bgr, n);
        work(bgr, n);
        row += n * format.bytes();
        count -= n;
    }
}

// An operation on a rectangle of one image, which stays locked as long as the object lives.
class RectOperation {
  public:
    using Check = Status (*)(const LockedDib&, const Rect&, RowStart);

    RectOperation(HGLOBAL dib, const Rect& rect, Check check,
                  RowStart start = RowStart::after_header);

    // Adds the test of a parameter, which counts once the rectangle has passed.
    void require(bool valid) {
        if (status_ == Status::ok && !valid)
            status_ = Status::bad_parameter;
    }
    Status status() const { return status_; }
    // Reports the status; true when it is ok.
    bool passed(int32_t* status) const {
        report(status, status_);
        return status_ == Status::ok;
    }

    // Changes the rectangle where it lies.
    Status change(const RowFunction& function) const;
    // Makes a new image of the rectangle, at its depth or as a 24-bit one.
    HGLOBAL make(const RowFunction& function, int32_t* status) const {
        return make(function, status, format());
    }
    HGLOBAL make24(const RowFunction& function, int32_t* status) const {
        return make(function, status, {24, {}});
    }
    // The same with pixels stored in a format of the operation's own.
    HGLOBAL make(const RowFunction& function, int32_t* status, const PixelFormat& to) const;

    // What follows is for a rectangle that has passed.
    const LockedDib& source() const { return source_; }
    const Rect& rect() const { return rect_; }
    size_t width() const { return static_cast<size_t>(rect_.width); }
    PixelFormat format() const { return PixelFormat::of(source_); }
    // Leftmost pixel of the rectangle in its row r, counted from the bottom as rows are stored.
    uint8_t* row(int32_t r) const {
        return rows_[bottom_row(source_.height(), rect_) + r] +
               static_cast<size_t>(rect_.x) * static_cast<size_t>(source_.bits() / 8);
    }
    ptrdiff_t stride() const { return rows_.stride; }
    // Calls work(r) for the rectangle's rows in the order of storage and reports the progress.
    template<typename F>
    void each_row(const F& work) const {
        each_step(rect_.height, work);
    }

  private:
    LockedDib source_;
    Rect rect_;
    Status status_;
    Rows rows_;
};

// A new image of the rectangle's size with the source's masks, freed unless released. Its pixels
// are anything until they are written.
class RectResult {
  public:
    RectResult(const RectOperation& operation, int32_t bits);

    explicit operator bool() const { return static_cast<bool>(dib_); }
    const LockedDib& dib() const { return dib_; }
    uint8_t* row(int32_t r) const { return dib_.rows(RowStart::after_header)[r]; }
    HGLOBAL release() { return block_.release(); }

  private:
    OwnedBlock block_;
    LockedDib dib_;
};

} // namespace kirvo
