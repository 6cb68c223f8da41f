// Reads the Huffman codes of a sequential scan: whether they are all there, and the coefficients for
// those who want them.
#include "jpeg_huffman.hpp"
#include "jpeg_planes.hpp"

namespace kirvo_files {
namespace {

class Walker {
  public:
    Walker(Bytes bytes, const JpegHeaders& headers, Plane (*planes)[3])
        : headers_(headers), planes_(planes), bits_(bytes, headers.scan_at) {}

    Walk walk() {
        Walk result;
        if (!make_tables())
            return result;
        uint32_t to_restart = headers_.restart_interval;
        for (uint32_t y = 0; y < headers_.mcus_down(); ++y) {
            for (uint32_t x = 0; x < headers_.mcus_across(); ++x) {
                if (headers_.restart_interval != 0 && to_restart-- == 0) {
                    if (!bits_.restart())
                        return ended(result);
                    std::memset(last_dc_, 0, sizeof last_dc_);
                    to_restart = headers_.restart_interval - 1;
                }
                if (!mcu(x, y))
                    return ended(result);
            }
            const uint32_t rows = (y + 1) * headers_.mcu_height();
            result.whole_rows = rows < headers_.height ? rows : headers_.height;
        }
        result.complete = true;
        return ended(result);
    }

  private:
    bool make_tables() {
        for (uint32_t i = 0; i < headers_.components; ++i) {
            const JpegComponent& component = headers_.component[i];
            if (!dc_[component.dc].make(headers_.huffman[0][component.dc]) ||
                !ac_[component.ac].make(headers_.huffman[1][component.ac]))
                return false;
        }
        return true;
    }

    Walk ended(Walk result) {
        result.out_of_data = !result.complete && bits_.starved() && !bits_.wrong();
        result.end = bits_.at();
        return result;
    }

    // Values go where they are wanted.
    bool block(uint32_t i, int16_t* values) {
        const JpegComponent& component = headers_.component[i];
        const int32_t size = bits_.symbol(dc_[component.dc]);
        if (size < 0)
            return false;
        if (size > (headers_.precision == 8 ? 11 : 15))
            return wrong();
        if (values != nullptr)
            values[0] = last_dc_[i] =
                static_cast<int16_t>(last_dc_[i] + bits_.value(static_cast<uint32_t>(size)));
        else
            bits_.skip(static_cast<uint32_t>(size));
        const HuffmanTable& ac = ac_[component.ac];
        for (uint32_t k = 1; k < 64; ++k) {
            const int32_t symbol = bits_.symbol(ac);
            if (symbol < 0)
                return false;
            const uint32_t run = static_cast<uint32_t>(symbol) >> 4, bits = symbol & 15;
            if (bits == 0 && run != 15)
                break;
            k += run;
            if (k > 63)
                return wrong();
            if (values != nullptr)
                values[zigzag[k]] = static_cast<int16_t>(bits_.value(bits));
            else
                bits_.skip(bits);
        }
        return !bits_.starved();
    }

    bool wrong() {
        bits_.found_wrong();
        return false;
    }

    bool mcu(uint32_t x, uint32_t y) {
        for (uint32_t i = 0; i < headers_.components; ++i) {
            const uint32_t across = headers_.blocks_across(i), down = headers_.blocks_down(i);
            for (uint32_t row = 0; row < down; ++row)
                for (uint32_t column = 0; column < across; ++column)
                    if (!block(i, planes_ != nullptr
                                      ? (*planes_)[i].block(x * across + column, y * down + row)
                                      : nullptr))
                        return false;
        }
        return true;
    }

    const JpegHeaders& headers_;
    Plane (*planes_)[3];
    EntropyBits bits_;
    HuffmanTable dc_[4], ac_[4];
    int16_t last_dc_[4] = {};
};

} // namespace

Walk read_coefficients(Bytes bytes, const JpegHeaders& headers, Plane (*planes)[3]) {
    return Walker(bytes, headers, planes).walk();
}

Walk walk_scan(Bytes bytes, const JpegHeaders& headers) {
    return read_coefficients(bytes, headers, nullptr);
}

} // namespace kirvo_files
