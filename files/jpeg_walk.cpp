// Reads the Huffman codes of a baseline scan without making pixels of them, to learn whether they
// are all there.
#include "jpeg_headers.hpp"

namespace kirvo_files {
namespace {

// Codes of up to 9 bits by one look; longer ones by their lengths.
class HuffmanTable {
  public:
    bool make(Bytes table) {
        if (table.size() < 16)
            return false;
        uint32_t code = 0, symbol = 0;
        for (uint32_t length = 1; length <= 16; ++length) {
            first_code_[length] = code;
            first_symbol_[length] = symbol;
            const uint32_t count = table[length - 1];
            if (code + count > 1u << length)
                return false;
            for (uint32_t i = 0; i < count; ++i, ++code, ++symbol) {
                symbols_[symbol & 255] = table[16 + symbol];
                if (length <= look)
                    for (uint32_t k = 0; k < 1u << (look - length); ++k)
                        quick_[(code << (look - length)) + k] =
                            static_cast<uint16_t>(length << 8 | table[16 + symbol]);
            }
            end_code_[length] = code;
            code <<= 1;
        }
        return true;
    }

    static constexpr uint32_t look = 9;
    uint16_t quick_[1 << look] = {};
    uint32_t first_code_[17] = {}, end_code_[17] = {}, first_symbol_[17] = {};
    uint8_t symbols_[256] = {};
};

class Walker {
  public:
    Walker(Bytes bytes, const JpegHeaders& headers)
        : headers_(headers), data_(bytes.data()), at_(static_cast<size_t>(headers.scan_at)),
          size_(bytes.size()) {}

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
                    if (!restart())
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
        result.out_of_data = !result.complete && starved_ && !wrong_;
        result.end = at_;
        return result;
    }

    // At least 25 bits, zeros behind the end of the data.
    void fill() {
        while (count_ <= 56) {
            uint8_t byte = 0;
            if (marker_ || at_ >= size_) {
                starved_by_ += 8;
            } else if (data_[at_] != 0xFF) {
                byte = data_[at_++];
            } else if (at_ + 1 < size_ && data_[at_ + 1] == 0) {
                byte = 0xFF;
                at_ += 2;
            } else {
                marker_ = true;
                starved_by_ += 8;
            }
            bits_ |= static_cast<uint64_t>(byte) << (56 - count_);
            count_ += 8;
        }
    }

    void drop(uint32_t n) {
        bits_ <<= n;
        count_ -= n;
        if (count_ < starved_by_)
            starved_ = true;
    }

    // The next symbol; -1 where there is no such code.
    int32_t symbol(const HuffmanTable& table) {
        if (count_ < 32)
            fill();
        const uint16_t quick = table.quick_[bits_ >> (64 - HuffmanTable::look)];
        if (quick != 0) {
            drop(quick >> 8);
            return quick & 255;
        }
        for (uint32_t length = HuffmanTable::look + 1; length <= 16; ++length) {
            const auto code = static_cast<uint32_t>(bits_ >> (64 - length));
            if (code < table.end_code_[length] && code >= table.first_code_[length]) {
                drop(length);
                return table
                    .symbols_[(table.first_symbol_[length] + code - table.first_code_[length]) &
                              255];
            }
        }
        if (count_ - (count_ < starved_by_ ? count_ : starved_by_) < 16)
            starved_ = true; // the code is cut
        else
            wrong_ = true;
        return -1;
    }

    bool block(const JpegComponent& component) {
        const int32_t size = symbol(dc_[component.dc]);
        if (size < 0)
            return false;
        if (size > 11)
            return wrong();
        drop(static_cast<uint32_t>(size));
        const HuffmanTable& ac = ac_[component.ac];
        for (uint32_t k = 1; k < 64;) {
            const int32_t run_size = symbol(ac);
            if (run_size < 0)
                return false;
            const uint32_t run = static_cast<uint32_t>(run_size) >> 4, bits = run_size & 15;
            if (bits == 0 && run != 15)
                break;
            k += run + (bits != 0 || run == 15 ? 1 : 0);
            if (k > 64)
                return wrong();
            drop(bits);
        }
        return !starved_;
    }

    bool wrong() {
        wrong_ = !starved_;
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

    // At most a byte of filling is left, then the next marker of the eight follows.
    bool restart() {
        const uint32_t left = count_ - (count_ < starved_by_ ? count_ : starved_by_);
        while (at_ + 1 < size_ && data_[at_] == 0xFF && data_[at_ + 1] == 0xFF)
            ++at_;
        if (at_ + 1 >= size_) {
            starved_ = true;
            return false;
        }
        if (left >= 8 || data_[at_] != 0xFF || data_[at_ + 1] != (0xD0 | restarts_)) {
            wrong_ = data_[at_ + 1] != 0xD9; // an end in place of it: the rest was cut
            starved_ = !wrong_;
            return false;
        }
        restarts_ = (restarts_ + 1) & 7;
        at_ += 2;
        bits_ = 0;
        count_ = starved_by_ = 0;
        marker_ = false;
        return true;
    }

    const JpegHeaders& headers_;
    const uint8_t* data_;
    size_t at_, size_;
    HuffmanTable dc_[4], ac_[4];
    uint64_t bits_ = 0;
    uint32_t count_ = 0, starved_by_ = 0, restarts_ = 0;
    bool marker_ = false, starved_ = false, wrong_ = false;
};

} // namespace

Walk walk_scan(Bytes bytes, const JpegHeaders& headers) {
    return Walker(bytes, headers).walk();
}

} // namespace kirvo_files
