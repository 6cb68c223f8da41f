// JPEG of 12 bits a channel, which neither Kirvo's decoder nor libjpeg-turbo's is built for: the
// formulas of T.81 as they stand there.
#include "jpeg_deep.hpp"

#include "jpeg_planes.hpp"

#include <cmath>

namespace kirvo_files {
namespace {

constexpr float middle = 2048, most = 4095;

uint8_t narrowed(float value) {
    const float level = value * (255 / most) + 0.5f;
    return static_cast<uint8_t>(level < 0 ? 0 : level > 255 ? 255 : level);
}

class Deep {
  public:
    Deep(Job& job, const JpegHeaders& headers) : job_(job), headers_(headers) {
        for (uint32_t x = 0; x < 8; ++x)
            for (uint32_t u = 0; u < 8; ++u)
                cosines_[x][u] = std::cos(static_cast<float>((2 * x + 1) * u) * 0.19634954f) *
                                 (u == 0 ? 0.35355339f : 0.5f);
    }

    Status decode() {
        if (!make_planes(headers_, planes_))
            return KIRVO_FILES_NO_MEMORY;
        const Walk walk = read_coefficients(job_.bytes, headers_, planes_);
        Status status = KIRVO_FILES_OK;
        if (walk.unknown)
            return job_.unsupported("a JPEG of 12 bits whose quantisers change on the way");
        if (!walk.complete)
            status = not_whole(job_, walk);
        return status == KIRVO_FILES_OK ? pixels() : status;
    }

  private:
    Status pixels() {
        const bool grey = headers_.components == 1;
        Raster raster(job_);
        const Status status =
            raster.make(grey ? Pixels::grey : Pixels::rgb, headers_.width, headers_.height);
        if (status != KIRVO_FILES_OK)
            return status;
        for (uint32_t i = 0; i < headers_.components; ++i)
            if (!bands_[i].resize(uint64_t{sizeof(float)} * 64 * planes_[i].across *
                                  planes_[i].per_mcu_down))
                return KIRVO_FILES_NO_MEMORY;
        if (!line_.resize(uint64_t{3} * headers_.width))
            return KIRVO_FILES_NO_MEMORY;
        for (uint32_t y = 0; y < headers_.height; ++y) {
            if (y % headers_.mcu_height() == 0)
                fill_bands(y / headers_.mcu_height());
            convert_row(y % headers_.mcu_height(), grey);
            raster.put(y, line_.data());
        }
        job_.known.note(KIRVO_FILES_NOTE_REDUCED, Text::format("12 bits a channel reduced to 8"));
        return KIRVO_FILES_OK;
    }

    // The samples of one row of MCUs.
    void fill_bands(uint32_t mcu_row) {
        for (uint32_t i = 0; i < headers_.components; ++i) {
            const Plane& plane = planes_[i];
            const uint16_t* steps = job_.known.jpeg.tables[headers_.component[i].quantiser];
            for (uint32_t row = 0; row < plane.per_mcu_down; ++row)
                for (uint32_t x = 0; x < plane.across; ++x)
                    transform(plane.block(x, mcu_row * plane.per_mcu_down + row), steps,
                              band(i, 8 * row) + 8 * x, size_t{8} * plane.across);
        }
    }

    float* band(uint32_t i, uint32_t row) {
        return reinterpret_cast<float*>(bands_[i].data()) + size_t{8} * planes_[i].across * row;
    }

    // The inverse cosine transform, columns first.
    void transform(const int16_t* block, const uint16_t* steps, float* out, size_t stride) const {
        float half[64];
        for (uint32_t v = 0; v < 8; ++v)
            for (uint32_t x = 0; x < 8; ++x) {
                float sum = 0;
                for (uint32_t u = 0; u < 8; ++u)
                    sum += cosines_[x][u] * static_cast<float>(block[8 * v + u]) *
                           static_cast<float>(steps[8 * v + u]);
                half[8 * v + x] = sum;
            }
        for (uint32_t y = 0; y < 8; ++y)
            for (uint32_t x = 0; x < 8; ++x) {
                float sum = middle;
                for (uint32_t v = 0; v < 8; ++v)
                    sum += cosines_[y][v] * half[8 * v + x];
                out[stride * y + x] = sum;
            }
    }

    void convert_row(uint32_t row, bool grey) {
        const float* samples[3] = {};
        for (uint32_t i = 0; i < headers_.components; ++i)
            samples[i] = band(i, row * 8 * headers_.blocks_down(i) / headers_.mcu_height());
        uint8_t* out = line_.data();
        for (uint32_t x = 0; x < headers_.width; ++x) {
            if (grey) {
                *out++ = narrowed(samples[0][x]);
                continue;
            }
            float value[3];
            for (uint32_t i = 0; i < 3; ++i)
                value[i] =
                    samples[i][size_t{x} * 8 * headers_.blocks_across(i) / headers_.mcu_width()];
            if (!headers_.is_rgb()) {
                const float light = value[0], blue = value[1] - middle, red = value[2] - middle;
                value[0] = light + 1.402f * red;
                value[1] = light - 0.344136f * blue - 0.714136f * red;
                value[2] = light + 1.772f * blue;
            }
            for (const float each : value)
                *out++ = narrowed(each);
        }
    }

    Job& job_;
    const JpegHeaders& headers_;
    Plane planes_[4];
    Buffer bands_[3], line_;
    float cosines_[8][8]; // of sample and frequency, with the transform's factors
};

} // namespace

bool is_deep(const JpegHeaders& headers) {
    return headers.precision == 12 && has_huffman_codes(headers) &&
           (headers.components == 1 || headers.components == 3);
}

Status deep_decode(Job& job, const JpegHeaders& headers) { return Deep(job, headers).decode(); }

} // namespace kirvo_files
