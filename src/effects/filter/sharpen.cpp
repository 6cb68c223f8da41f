// Filters on the Laplacian of the luminance: sharpening, edges as grey, edges in colour.
//
// The stated work is done in passes over whole planes: luminance, edge values, result. Here each
// row of the result is made as soon as the three luminance rows around it are there.
#include "effects/filter/neighbourhood.hpp"

#include <cstring>

using namespace kirvo;

namespace {

// The messages are those of one pass after the other.
constexpr Pass edge_passes[] = {{0, 30}, {30, 70}};
constexpr Pass sharpen_passes[] = {{0, 30}, {30, 40}, {70, 30}};

// Working lines, all of the rectangle's width in pixels.
struct WorkLines {
    explicit WorkLines(size_t width)
        : buffer(uint64_t{width} * (2 + 1 + 1 + 3 + 3)), slope(buffer.part<int16_t>(0)),
          first(buffer.part<uint8_t>(2 * width)), second(buffer.part<uint8_t>(3 * width)),
          first3(buffer.part<uint8_t>(4 * width)), second3(buffer.part<uint8_t>(7 * width)) {}
    explicit operator bool() const { return static_cast<bool>(buffer); }

    Scratch buffer;
    int16_t* slope;            // the Laplacian or another measure of change
    uint8_t *first, *second;   // a byte a pixel
    uint8_t *first3, *second3; // three bytes a pixel
};

// Makes a 24-bit image of the rectangle from the luminance around each pixel:
// work(row number, luminance rows, working lines, result row).
template<typename Work>
HGLOBAL from_luminance(const RectOperation& operation, std::span<const Pass> passes,
                       int32_t* status, const Work& work) {
    if (!operation.passed(status))
        return nullptr;
    const size_t width = operation.width();
    const int32_t height = operation.rect().height;
    const Kernels& k = kernels();
    // Beyond the only row of a plane lies nothing, which reads as 0.
    const auto fill = [&](int32_t row, uint8_t* to) {
        const int32_t nearest = nearest_row(row, height);
        if (nearest < height)
            k.luminance(to, operation.row(nearest), width);
        else
            std::memset(to, 0, width);
        extend_ends(to, width, 1);
    };
    Neighbourhood neighbourhood(width, 1, fill);
    WorkLines scratch(width);
    RectResult result(operation, 24);
    if (!neighbourhood || !scratch || !result) {
        report(status, Status::no_memory);
        return nullptr;
    }
    PassProgress progress(height, passes);
    for (int32_t r = 0; r < height; ++r) {
        progress.reach(static_cast<int64_t>(passes.size()) * (r + 1) - 1);
        work(r, neighbourhood.at(r), scratch, result.row(r));
    }
    progress.finish();
    return result.release();
}

HGLOBAL sharpened(const RectOperation& operation, int divisor, int32_t* status) {
    const size_t width = operation.width();
    const Kernels& k = kernels();
    return from_luminance(operation, sharpen_passes, status,
                          [&](int32_t r, ThreeRows luminance, const WorkLines& work, uint8_t* to) {
                              k.laplacian(work.slope, luminance, width);
                              k.correction(work.first, work.second, work.slope, width, divisor);
                              k.triple(work.first3, work.first, width);
                              k.triple(work.second3, work.second, width);
                              k.correct(to, operation.row(r), work.first3, work.second3, 3 * width);
                          });
}

HGLOBAL edges(const RectOperation& operation, int32_t mode, int32_t* status) {
    const size_t width = operation.width();
    const Kernels& k = kernels();
    return from_luminance(operation, edge_passes, status,
                          [&](int32_t, ThreeRows luminance, const WorkLines& work, uint8_t* to) {
                              (mode == 2 ? k.gradient : k.laplacian)(work.slope, luminance, width);
                              if (mode <= 2)
                                  k.relief(work.first, work.slope, width);
                              else
                                  k.dark_edges(work.first, work.slope, width, mode == 4 ? 0 : -255,
                                               mode == 5 ? 0 : 255);
                              k.triple(to, work.first, width);
                          });
}

struct SlopeLimits {
    int16_t low, high;
};

// The Laplacians that are no edges. They lie within +-1020, so that a larger threshold acts as
// +-2000 does.
SlopeLimits flat_slopes(int32_t threshold, int32_t mode) {
    const auto t = static_cast<int16_t>(std::clamp(threshold, -2000, 2000));
    switch (mode) {
    case 0:
        return {static_cast<int16_t>(-t), t};
    case 1:
        return {INT16_MIN, t};
    case 2:
        return {static_cast<int16_t>(-t), INT16_MAX};
    default:
        return {INT16_MIN, INT16_MAX};
    }
}

} // namespace

HGLOBAL WINAPI Dib24Sharpen(HGLOBAL dib, int32_t x, int32_t y, int32_t width, int32_t height,
                            int32_t mode, int32_t* status) {
    RectOperation operation(dib, {x, y, width, height}, check_rect_24);
    operation.require(mode >= 0 && mode <= 5);
    return mode == 0 ? sharpened(operation, 8, status) : edges(operation, mode, status);
}

HGLOBAL WINAPI Dib24SharpenEx(HGLOBAL dib, int32_t x, int32_t y, int32_t width, int32_t height,
                              int32_t strength, int32_t* status) {
    const RectOperation operation(dib, {x, y, width, height}, check_rect_24);
    const bool known = strength >= 0 && strength <= 3;
    return sharpened(operation, known ? 8 - 2 * strength : 8, status);
}

HGLOBAL WINAPI Dib24ColorEdge(HGLOBAL dib, int32_t x, int32_t y, int32_t width, int32_t height,
                              int32_t threshold, int32_t mode, int32_t* status) {
    const RectOperation operation(dib, {x, y, width, height}, check_rect_24);
    const SlopeLimits flat = flat_slopes(threshold, mode);
    const size_t pixels = operation.width(), stride = static_cast<size_t>(row_stride(width, 24));
    const Kernels& k = kernels();
    return from_luminance(operation, edge_passes, status,
                          [&](int32_t r, ThreeRows luminance, const WorkLines& work, uint8_t* to) {
                              k.laplacian(work.slope, luminance, pixels);
                              k.between(work.first, work.slope, pixels, flat.low, flat.high);
                              k.triple(work.first3, work.first, pixels);
                              // The colours come from stored row y + r, as far from the bottom as the rectangle is
                              // from the top.
                              const uint8_t* colours =
                                  operation.source().rows(RowStart::after_header)[int64_t{y} + r] +
                                  size_t{3} * static_cast<uint32_t>(x);
                              std::memcpy(to, colours, 3 * pixels);
                              k.add(to, work.first3, 3 * pixels, ~uint32_t{0});
                              std::memset(to + 3 * pixels, 255,
                                          stride - 3 * pixels); // padding is white too
                          });
}
