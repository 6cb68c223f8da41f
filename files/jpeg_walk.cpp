// Reads the Huffman codes of scans: whether they are all there, and the coefficients for those who
// want them.
#include "jpeg_huffman.hpp"
#include "jpeg_planes.hpp"

#include <optional>

namespace kirvo_files {
namespace {

constexpr uint32_t most_scans = 500; // no real file has more; each costs a pass over the picture

// One scan.
class Walker {
  public:
    Walker(Bytes bytes, const JpegHeaders& headers, Plane (*planes)[4])
        : headers_(headers), planes_(planes), bits_(bytes, headers.scan_at),
          first_(headers.spectral_start), last_(headers.spectral_end),
          low_(headers.is_progressive() ? headers.approximation & 15 : 0),
          high_(headers.approximation >> 4) {}

    Walk walk() {
        Walk result;
        if (!is_possible() || !make_tables())
            return result;
        const uint32_t alone = headers_.scanned[0];
        const uint32_t across = is_alone() ? headers_.own_across(alone) : headers_.mcus_across();
        const uint32_t down = is_alone() ? headers_.own_down(alone) : headers_.mcus_down();
        uint32_t to_restart = headers_.restart_interval;
        for (uint32_t y = 0; y < down; ++y) {
            for (uint32_t x = 0; x < across; ++x) {
                if (headers_.restart_interval != 0 && to_restart-- == 0) {
                    if (!bits_.restart())
                        return ended(result);
                    std::memset(last_dc_, 0, sizeof last_dc_);
                    blocks_ended_ = 0;
                    to_restart = headers_.restart_interval - 1;
                }
                if (!mcu(x, y))
                    return ended(result);
            }
            const uint32_t rows =
                (y + 1) * headers_.mcu_height() / (is_alone() ? headers_.blocks_down(alone) : 1);
            result.whole_rows = rows < headers_.height ? rows : headers_.height;
        }
        result.left_over = !bits_.is_at_end();
        result.complete = !result.left_over;
        return ended(result);
    }

  private:
    bool is_alone() const { return headers_.scan_components == 1; }

    // Each component once; in a progressive file one band, for the first time or a bit finer.
    bool is_possible() const {
        uint32_t seen = 0;
        for (uint32_t n = 0; n < headers_.scan_components; ++n) {
            const uint32_t i = n < 4 ? headers_.scanned[n] : 255;
            if (i >= headers_.components || (seen >> i & 1) != 0)
                return false;
            seen |= 1u << i;
        }
        if (!headers_.is_progressive())
            return seen != 0;
        const bool band = first_ == 0 ? last_ == 0 : first_ <= last_ && last_ < 64 && is_alone();
        return seen != 0 && band && low_ <= 13 && (high_ == 0 || high_ == low_ + 1);
    }

    // A file without any, as cameras' films have them, means the usual ones.
    Bytes table(uint32_t kind, uint32_t number) const {
        const Bytes own = headers_.huffman[kind][number];
        return own.empty() && number < 2 ? usual_huffman_table(kind, number) : own;
    }

    bool make_tables() {
        const bool progressive = headers_.is_progressive();
        for (uint32_t n = 0; n < headers_.scan_components; ++n) {
            const JpegComponent& component = headers_.component[headers_.scanned[n]];
            auto& dc = dc_[component.dc];
            auto& ac = ac_[component.ac];
            if ((!progressive || (first_ == 0 && high_ == 0)) && !dc) {
                if (!dc.emplace().make(table(0, component.dc)))
                    return false;
            }
            if ((!progressive || first_ != 0) && !ac) {
                if (!ac.emplace().make(table(1, component.ac)))
                    return false;
                if (planes_ == nullptr)
                    ac_steps_[component.ac].emplace().make(table(1, component.ac));
            }
        }
        block_ = !progressive  ? &Walker::block
                 : first_ == 0 ? (high_ == 0 ? &Walker::first : &Walker::finer_first)
                               : (high_ == 0 ? &Walker::band : &Walker::finer_band);
        return true;
    }

    Walk ended(Walk result) {
        result.out_of_data = !result.complete && bits_.starved() && !bits_.wrong();
        result.end = bits_.at();
        return result;
    }

    uint32_t largest_size() const { return headers_.precision == 8 ? 11 : 15; }

    int16_t shifted(int32_t value) const { return static_cast<int16_t>(value * (1 << low_)); }

    // ---- what is coded of a block: values go where they are wanted ----

    bool first(uint32_t i, int16_t* values) {
        const int32_t size = bits_.symbol(*dc_[headers_.component[i].dc]);
        if (size < 0)
            return false;
        if (static_cast<uint32_t>(size) > largest_size())
            return wrong();
        const int32_t value = last_dc_[i] + bits_.value(static_cast<uint32_t>(size));
        const int32_t most = headers_.component[i].largest_dc;
        if (value * (1 << low_) > most || value * (1 << low_) < -most)
            return wrong();
        last_dc_[i] = static_cast<int16_t>(value);
        if (values != nullptr)
            values[0] = shifted(value);
        return !bits_.starved();
    }

    bool finer_first(uint32_t, int16_t* values) {
        if (bits_.raw(1) != 0)
            values[0] = static_cast<int16_t>(values[0] | 1 << low_);
        return !bits_.starved();
    }

    // Whether no picture has so large a number as the coefficient k.
    bool is_too_large(uint32_t i, uint32_t k, uint32_t size) const {
        return size + low_ > headers_.component[i].largest_size[k];
    }

    // The coefficient behind the next run of zeros, or the end of the block.
    bool further(uint32_t i, uint32_t& k, int16_t* values) {
        const int32_t symbol = bits_.symbol(*ac_[headers_.component[i].ac]);
        if (symbol < 0)
            return false;
        const uint32_t run = static_cast<uint32_t>(symbol) >> 4, size = symbol & 15;
        if (size == 0 && run != 15) {
            k = 64;
            return true;
        }
        k += run;
        if (k > 63 || (size != 0 && is_too_large(i, k, size)))
            return wrong();
        const int32_t value = bits_.value(size);
        if (values != nullptr)
            values[zigzag[k]] = static_cast<int16_t>(value);
        ++k;
        return true;
    }

    bool block(uint32_t i, int16_t* values) {
        if (!first(i, values))
            return false;
        for (uint32_t k = 1; k < 64;)
            if (!further(i, k, values))
                return false;
        return !bits_.starved();
    }

    // A block that nobody wants: codes with their values are passed over at once.
    bool skim(uint32_t i) {
        const JpegComponent& component = headers_.component[i];
        const HuffmanSteps& steps = *ac_steps_[component.ac];
        if (!first(i, nullptr))
            return false;
        uint32_t k = 1;
        int32_t least_room = 0; // below 0 once a value is too large
        while (k < 64) {
            if (const uint16_t step = bits_.step(steps, k)) {
                const int32_t room = component.largest_size[(k - 1) & 63];
                least_room |= room - static_cast<int32_t>(HuffmanSteps::size(step));
            } else if (!further(i, k, nullptr)) {
                return false;
            }
        }
        if (least_room < 0 || (k > 64 && k < HuffmanSteps::end_of_block))
            return wrong(); // or a run leads out of the block
        return !bits_.starved();
    }

    // A symbol of a band: so many blocks end, this one first; or a run of zeros and a size.
    bool band_symbol(uint32_t i, uint32_t& run, uint32_t& size) {
        const int32_t symbol = bits_.symbol(*ac_[headers_.component[i].ac]);
        if (symbol < 0)
            return false;
        run = static_cast<uint32_t>(symbol) >> 4;
        size = symbol & 15;
        if (size == 0 && run != 15)
            blocks_ended_ = (1u << run) + bits_.raw(run);
        return true;
    }

    bool band(uint32_t i, int16_t* values) {
        for (uint32_t k = first_; k <= last_ && blocks_ended_ == 0; ++k) {
            uint32_t run = 0, size = 0;
            if (!band_symbol(i, run, size))
                return false;
            if (blocks_ended_ != 0)
                break;
            k += run;
            if (k > last_ || (size != 0 && is_too_large(i, k, size)))
                return wrong();
            values[zigzag[k]] = shifted(bits_.value(size));
        }
        return block_done();
    }

    // Coefficients that there are already take a bit each wherever they are passed.
    bool finer_band(uint32_t i, int16_t* values) {
        uint32_t k = first_;
        while (k <= last_ && blocks_ended_ == 0) {
            uint32_t run = 0, size = 0;
            if (!band_symbol(i, run, size))
                return false;
            if (blocks_ended_ != 0)
                break;
            if (size > 1)
                return wrong();
            const int32_t value = size == 0 ? 0 : bits_.raw(1) != 0 ? 1 : -1;
            for (; k <= last_; ++k)
                if (values[zigzag[k]] != 0)
                    correct(values[zigzag[k]]);
                else if (run-- == 0)
                    break;
            if (value != 0 && (k > last_ || is_too_large(i, k, 1)))
                return wrong();
            if (value != 0)
                values[zigzag[k]] = shifted(value);
            ++k;
        }
        for (; k <= last_; ++k)
            if (values[zigzag[k]] != 0)
                correct(values[zigzag[k]]);
        return block_done();
    }

    void correct(int16_t& value) {
        if (bits_.raw(1) != 0 && (value >> low_ & 1) == 0)
            value = static_cast<int16_t>(value + shifted(value < 0 ? -1 : 1));
    }

    bool block_done() {
        if (blocks_ended_ != 0)
            --blocks_ended_;
        return !bits_.starved();
    }

    bool wrong() {
        bits_.found_wrong();
        return false;
    }

    // A component alone comes block by block.
    bool mcu(uint32_t x, uint32_t y) {
        for (uint32_t n = 0; n < headers_.scan_components; ++n) {
            const uint32_t i = headers_.scanned[n];
            const uint32_t across = is_alone() ? 1 : headers_.blocks_across(i);
            const uint32_t down = is_alone() ? 1 : headers_.blocks_down(i);
            for (uint32_t row = 0; row < down; ++row)
                for (uint32_t column = 0; column < across; ++column)
                    if (planes_ == nullptr
                            ? !skim(i)
                            : !(this->*block_)(
                                  i, (*planes_)[i].block(x * across + column, y * down + row)))
                        return false;
        }
        return true;
    }

    const JpegHeaders& headers_;
    Plane (*planes_)[4];
    EntropyBits bits_;
    const uint32_t first_, last_; // coefficients of the band
    const uint32_t low_, high_;   // bits that are left for later scans; were left by earlier ones
    bool (Walker::*block_)(uint32_t, int16_t*) = nullptr;
    uint32_t blocks_ended_ = 0; // of the band, from the next one on
    // Those that the scan needs: the tables are large.
    std::optional<HuffmanTable> dc_[4], ac_[4];
    std::optional<HuffmanSteps> ac_steps_[4];
    int16_t last_dc_[4] = {};
};

// How many bits of each coefficient are still to come.
class Progress {
  public:
    explicit Progress(const JpegHeaders& headers) : components_(headers.components) {
        std::memset(missing_, untouched, sizeof missing_);
    }

    // False for a scan that does not go on from the ones before.
    bool add(const JpegHeaders& headers) {
        const bool progressive = headers.is_progressive();
        const uint32_t first = progressive ? headers.spectral_start : 0;
        const uint32_t last = progressive ? headers.spectral_end : 63;
        const auto high = static_cast<uint8_t>(headers.approximation >> 4);
        const auto low = static_cast<uint8_t>(headers.approximation & 15);
        for (uint32_t n = 0; n < headers.scan_components; ++n)
            for (uint32_t k = first; k <= last; ++k) {
                uint8_t& missing = missing_[headers.scanned[n]][k];
                if (missing != (progressive && high != 0 ? high : untouched))
                    return false;
                missing = progressive ? low : uint8_t{0};
            }
        return true;
    }

    bool is_complete() const {
        for (uint32_t i = 0; i < components_; ++i)
            for (const uint8_t missing : missing_[i])
                if (missing != 0)
                    return false;
        return true;
    }

  private:
    static constexpr uint8_t untouched = 255;
    uint32_t components_;
    uint8_t missing_[4][64];
};

} // namespace

bool has_huffman_codes(const JpegHeaders& headers) {
    return headers.frame >= 0xC0 && headers.frame <= 0xC2 &&
           (headers.precision == 8 || headers.precision == 12);
}

// Rows are whole as far as the scan that fails is the only one.
Walk read_coefficients(Bytes bytes, const JpegHeaders& headers, Plane (&planes)[4]) {
    JpegHeaders now = headers;
    Progress progress(headers);
    Walk walk;
    bool more = true;
    for (uint32_t scans = 0; more; ++scans) {
        walk = Walker(bytes, now, &planes).walk();
        if (!walk.complete)
            break;
        walk.complete = false;
        if (!progress.add(now))
            return walk;
        if (progress.is_complete()) {
            walk.complete = true;
            return walk;
        }
        const Status status = read_next_scan(bytes, walk.end, now);
        walk.out_of_data = status == KIRVO_FILES_ENDS_EARLY;
        walk.unknown = status == KIRVO_FILES_UNSUPPORTED || scans == most_scans;
        more = status == KIRVO_FILES_OK && !walk.unknown;
    }
    if (now.is_progressive() || now.scan_components != now.components)
        walk.whole_rows = 0;
    return walk;
}

Status not_whole(Job& job, const Walk& walk) {
    return walk.out_of_data ? job.ends_early(walk.whole_rows)
           : walk.left_over ? job.damaged_somewhere()
                            : job.damaged_below(walk.whole_rows);
}

Walk walk_scan(Bytes bytes, const JpegHeaders& headers) {
    return Walker(bytes, headers, nullptr).walk();
}

} // namespace kirvo_files
