// Reads the Huffman codes of a baseline scan without making pixels of them, to learn whether they
// are all there.
#include "jpeg_huffman.hpp"

namespace kirvo_files {
namespace {

class Walker {
  public:
    Walker(Bytes bytes, const JpegHeaders& headers)
        : headers_(headers), bits_(bytes, headers.scan_at) {}

    Walk walk() {
        Walk result;
        const bool grey = headers_.components == 1;
        const uint32_t mcu_width = 8 * (grey ? 1 : headers_.most_across);
        const uint32_t mcu_height = 8 * (grey ? 1 : headers_.most_down);
        const uint32_t across = (headers_.width + mcu_width - 1) / mcu_width;
        const uint32_t down = (headers_.height + mcu_height - 1) / mcu_height;
        if (!make_tables())
            return result;
        uint32_t to_restart = headers_.restart_interval;
        for (uint32_t row = 0; row < down; ++row) {
            for (uint32_t column = 0; column < across; ++column) {
                if (headers_.restart_interval != 0 && to_restart-- == 0) {
                    if (!bits_.restart())
                        return ended(result);
                    to_restart = headers_.restart_interval - 1;
                }
                if (!mcu())
                    return ended(result);
            }
            const uint32_t rows = (row + 1) * mcu_height;
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

    bool block(const JpegComponent& component) {
        const int32_t size = bits_.symbol(dc_[component.dc]);
        if (size < 0)
            return false;
        if (size > 11)
            return wrong();
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
            bits_.skip(bits);
        }
        return !bits_.starved();
    }

    bool wrong() {
        bits_.found_wrong();
        return false;
    }

    bool mcu() {
        const bool grey = headers_.components == 1;
        for (uint32_t i = 0; i < headers_.components; ++i) {
            const JpegComponent& component = headers_.component[i];
            const uint32_t blocks = grey ? 1u : component.across * component.down;
            for (uint32_t k = 0; k < blocks; ++k)
                if (!block(component))
                    return false;
        }
        return true;
    }

    const JpegHeaders& headers_;
    EntropyBits bits_;
    HuffmanTable dc_[4], ac_[4];
};

} // namespace

Walk walk_scan(Bytes bytes, const JpegHeaders& headers) { return Walker(bytes, headers).walk(); }

} // namespace kirvo_files
