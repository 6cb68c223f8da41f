// Counts of each channel value in a rectangle.
#include "image/rect_operation.hpp"
#include "simd/kernels.hpp"

#include <cstring>

using namespace kirvo;

namespace {

using Counters = uint32_t[256];

// Counts of bytes that stand `channels` to a pixel. Pixels take turns with several tables, so that
// equal neighbours do not wait for each other's counter.
template<size_t channels>
class Tally {
  public:
    void add(const uint8_t* row, size_t pixels) {
        if (kernels().tally == nullptr)
            return add_singly(row, channels * pixels);
        for (size_t left = channels * pixels; left != 0;) {
            const size_t n = std::min(left, sizeof waiting_ - waits_);
            std::memcpy(waiting_ + waits_, row, n);
            waits_ += n, row += n, left -= n;
            if (waits_ == sizeof waiting_) {
                kernels().tally(counts_, waiting_, row);
                waits_ = 0;
            }
        }
    }
    void end() { add_singly(waiting_, waits_); }
    uint32_t operator()(size_t channel, size_t value) const {
        uint32_t sum = 0;
        for (size_t t = channel; t < tables; t += channels)
            sum += counts_[t][value];
        return sum;
    }

  private:
    [[gnu::noinline]] void add_singly(const uint8_t* bytes, size_t count) {
        for (; count >= tables; count -= tables, bytes += tables) {
#pragma GCC unroll 12
            for (size_t i = 0; i < tables; ++i)
                ++counts_[i][bytes[i]];
        }
        for (size_t i = 0; i < count; ++i)
            ++counts_[i][bytes[i]];
    }

    static constexpr size_t tables = 4 * channels;
    Counters counts_[tables] = {};
    size_t waits_ = 0;
    uint8_t waiting_[3 * tally_pixels]; // to be counted together
};

struct Histogram {
    Counters red = {}, green = {}, blue = {};
};

Histogram count_indexed(const RectOperation& operation) {
    Tally<1> tally;
    operation.each_row([&](int32_t r) { tally.add(operation.row(r), operation.width()); });
    tally.end();
    const ColourTable table(operation.source(), operation.source().header.biSize);
    Histogram histogram;
    for (size_t index = 0; index < 256; ++index) {
        const Rgb colour = table[static_cast<uint8_t>(index)];
        const uint32_t count = tally(0, index);
        histogram.red[colour.red] += count;
        histogram.green[colour.green] += count;
        histogram.blue[colour.blue] += count;
    }
    return histogram;
}

Histogram count_direct(const RectOperation& operation) {
    Tally<3> tally;
    const PixelFormat format = operation.format();
    operation.each_row([&](int32_t r) {
        read_row(format, operation.row(r), operation.width(),
                 [&](const uint8_t* bgr, size_t count) { tally.add(bgr, count); });
    });
    tally.end();
    Histogram histogram;
    for (size_t value = 0; value < 256; ++value) {
        histogram.blue[value] = tally(0, value);
        histogram.green[value] = tally(1, value);
        histogram.red[value] = tally(2, value);
    }
    return histogram;
}

void hand_over(uint32_t* to, const Counters& counters) {
    if (to != nullptr)
        std::memcpy(to, counters, sizeof counters);
}

} // namespace

int32_t WINAPI DibHistgram(HGLOBAL dib, int32_t x, int32_t y, int32_t width, int32_t height,
                           uint32_t* red, uint32_t* green, uint32_t* blue) {
    const RectOperation operation(dib, {x, y, width, height}, check_rect_8_to_32);
    if (operation.status() != Status::ok)
        return code(operation.status());
    const Histogram histogram =
        operation.source().bits() == 8 ? count_indexed(operation) : count_direct(operation);
    hand_over(red, histogram.red);
    hand_over(green, histogram.green);
    hand_over(blue, histogram.blue);
    return code(Status::ok);
}
