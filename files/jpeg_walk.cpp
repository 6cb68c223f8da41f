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
            dc_steps_[component.dc].make_dc(headers_.huffman[0][component.dc], largest_size());
            ac_steps_[component.ac].make_ac(headers_.huffman[1][component.ac]);
        }
        return true;
    }

    Walk ended(Walk result) {
        result.out_of_data = !result.complete && bits_.starved() && !bits_.wrong();
        result.end = bits_.at();
        return result;
    }

    uint32_t largest_size() const { return headers_.precision == 8 ? 11 : 15; }

    // Values go where they are wanted.
    bool first(uint32_t i, int16_t* values) {
        const int32_t size = bits_.symbol(dc_[headers_.component[i].dc]);
        if (size < 0)
            return false;
        if (static_cast<uint32_t>(size) > largest_size())
            return wrong();
        const int32_t difference = bits_.value(static_cast<uint32_t>(size));
        if (values != nullptr)
            values[0] = last_dc_[i] = static_cast<int16_t>(last_dc_[i] + difference);
        return true;
    }

    // The coefficient behind the next run of zeros, or the end of the block.
    bool further(const HuffmanTable& ac, uint32_t& k, int16_t* values) {
        const int32_t symbol = bits_.symbol(ac);
        if (symbol < 0)
            return false;
        const uint32_t run = static_cast<uint32_t>(symbol) >> 4, size = symbol & 15;
        if (size == 0 && run != 15) {
            k = 64;
            return true;
        }
        k += run;
        if (k > 63)
            return wrong();
        const int32_t value = bits_.value(size);
        if (values != nullptr)
            values[zigzag[k]] = static_cast<int16_t>(value);
        ++k;
        return true;
    }

    bool block(uint32_t i, int16_t* values) {
        const HuffmanTable& ac = ac_[headers_.component[i].ac];
        if (!first(i, values))
            return false;
        for (uint32_t k = 1; k < 64;)
            if (!further(ac, k, values))
                return false;
        return !bits_.starved();
    }

    // A block that nobody wants: codes with their values are passed over at once.
    bool skim(uint32_t i) {
        const JpegComponent& component = headers_.component[i];
        const HuffmanTable& ac = ac_[component.ac];
        const HuffmanSteps& steps = ac_steps_[component.ac];
        uint32_t k = 0;
        if (!bits_.step(dc_steps_[component.dc], k)) {
            if (!first(i, nullptr))
                return false;
            k = 1;
        }
        while (k < 64)
            if (!bits_.step(steps, k) && !further(ac, k, nullptr))
                return false;
        if (k > 64 && k < HuffmanSteps::end_of_block)
            return wrong(); // a run leads out of the block
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
                    if (planes_ != nullptr
                            ? !block(i, (*planes_)[i].block(x * across + column, y * down + row))
                            : !skim(i))
                        return false;
        }
        return true;
    }

    const JpegHeaders& headers_;
    Plane (*planes_)[3];
    EntropyBits bits_;
    HuffmanTable dc_[4], ac_[4];
    HuffmanSteps dc_steps_[4], ac_steps_[4];
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
