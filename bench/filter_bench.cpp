// Neighbourhood filters, extremes, mosaics, histograms and colour counts.
#include "support/pictures.hpp"
#include "support/row.hpp"

namespace {

using namespace kirvo_bench;

using Filter = HGLOBAL (*)(HGLOBAL photo, int32_t* status);
std::function<Work()> ours(Filter filter) {
    return [filter] {
        return [filter, photo = photo_dib()] {
            int32_t status;
            GlobalFree(filter(photo, &status));
        };
    };
}

const int32_t &w = photo_width, &h = photo_height;

const Row blur("filter/blur/ours", ours([](HGLOBAL photo, int32_t* status) {
                   return Dib24Gausian(photo, 0, 0, w, h, status);
               }));
const Row kernel("filter/kernel/ours", ours([](HGLOBAL photo, int32_t* status) {
                     SetFilter3x3(-1, -2, 3, 4, 20, -4, 3, -2, -1, 20);
                     return DibFilter3x3(photo, 0, 0, w, h, status);
                 }));
const Row wide_kernel("filter/kernel-256ths/ours", ours([](HGLOBAL photo, int32_t* status) {
                          SetFilter3x3(10, 31, 12, 33, 81, 28, 9, 34, 18, 256);
                          return DibFilter3x3(photo, 0, 0, w, h, status);
                      }));
// The same steps: luminance, its Laplacian over 8, added to all channels.
const Row sharpen("filter/sharpen/ours", ours([](HGLOBAL photo, int32_t* status) {
                      return Dib24Sharpen(photo, 0, 0, w, h, 0, status);
                  }));
template<int radius>
HGLOBAL dilated(HGLOBAL photo, int32_t* status) {
    return DibBlockMxM(photo, 0, 0, w, h, radius, 1, 0, status);
}
template<int radius>
HGLOBAL brightest(HGLOBAL photo, int32_t* status) {
    return DibBlockMxM(photo, 0, 0, w, h, radius, 1, 1, status);
}
const Row dilate1("filter/dilate-1/ours", ours(dilated<1>));
const Row dilate3("filter/dilate-3/ours", ours(dilated<3>));
const Row dilate10("filter/dilate-10/ours", ours(dilated<10>));
const Row dilate64("filter/dilate-64/ours", ours(dilated<64>));
const Row brightest3("filter/brightest-3/ours", ours(brightest<3>));
const Row brightest64("filter/brightest-64/ours", ours(brightest<64>));

const Row mosaic("filter/mosaic/ours", ours([](HGLOBAL photo, int32_t* status) {
                     return DibMosaicEx(photo, 0, 0, w, h, 8, status);
                 }));
const Row average("filter/mosaic-average/ours", ours([](HGLOBAL photo, int32_t* status) {
                      return DibMosaicEx2(photo, 0, 0, w, h, 8, status);
                  }));
const Row histogram("filter/histogram/ours", ours([](HGLOBAL photo, int32_t*) -> HGLOBAL {
                        uint32_t red[256], green[256], blue[256];
                        DibHistgram(photo, 0, 0, w, h, red, green, blue);
                        return nullptr;
                    }));
// OpenCV counts no colours; this marks them in one of its matrices and counts the marks.
const Row colours("filter/colours/ours", ours([](HGLOBAL photo, int32_t*) -> HGLOBAL {
                      uint32_t count;
                      DibCountColors(photo, &count);
                      return nullptr;
                  }));
const Row range("filter/range of hues/ours", ours([](HGLOBAL photo, int32_t* status) {
                    return Dib24FilterEx(photo, 0, 0, w, h, 20 << 16 | 0x202, 1 << 16 | 140, 0, 0,
                                         0, status);
                }));
const Row range_rgb("filter/range of colours/ours", ours([](HGLOBAL photo, int32_t* status) {
                        return Dib24FilterEx(photo, 0, 0, w, h, 60 << 16 | 0x102, 1 << 16 | 200,
                                             200 << 16 | 40, 1, 1 << 16 | 180, status);
                    }));

} // namespace
