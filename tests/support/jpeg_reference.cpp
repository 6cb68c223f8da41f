#include "support/jpeg_reference.hpp"

#include <algorithm>
#include <cmath>

namespace kirvo_test {

namespace {

// From T.81, Figure A.6, by walking the diagonals.
int natural_index(int k) {
    int x = 0, y = 0;
    for (; k > 0; --k) {
        const bool up = (x + y) % 2 == 0;
        if (up ? x == 7 : y == 7)
            ++(up ? y : x);
        else if (up ? y == 0 : x == 0)
            ++(up ? x : y);
        else {
            x += up ? 1 : -1;
            y += up ? -1 : 1;
        }
    }
    return y * 8 + x;
}

int64_t factor(int x, int u) {
    static const int64_t c[] = {0, 32137, 30272, 27244, 23169, 18204, 12539, 6392};
    if (u == 0)
        return 23169;
    const double angle = (2 * x + 1) * u * std::acos(-1.0) / 16;
    const int quarter = (2 * x + 1) * u % 16;
    const int64_t magnitude = c[quarter <= 8 ? quarter : 16 - quarter];
    return std::cos(angle) < 0 ? -magnitude : magnitude;
}

int64_t floor_shift(int64_t value, int bits) {
    const int64_t unit = int64_t{1} << bits;
    return value >= 0 ? value / unit : -((-value + unit - 1) / unit);
}

int64_t wrap32(int64_t value) { return static_cast<int32_t>(static_cast<uint32_t>(value)); }

std::array<int, 64> inverse_dct(const std::array<int16_t, 64>& block) {
    static const auto table = [] {
        std::array<std::array<int64_t, 8>, 8> t{};
        for (int x = 0; x < 8; ++x)
            for (int u = 0; u < 8; ++u)
                t[x][u] = factor(x, u);
        return t;
    }();
    std::array<int64_t, 64> rows{};
    std::array<int, 64> out{};
    for (int r = 0; r < 8; ++r)
        for (int x = 0; x < 8; ++x) {
            int64_t sum = 0;
            for (int u = 0; u < 8; ++u)
                sum += block[r * 8 + u] * table[x][u] * 8;
            rows[r * 8 + x] = floor_shift(wrap32(sum), 16);
        }
    for (int x = 0; x < 8; ++x)
        for (int y = 0; y < 8; ++y) {
            int64_t sum = 1 << 18;
            for (int v = 0; v < 8; ++v)
                sum += rows[v * 8 + x] * table[y][v];
            out[y * 8 + x] = static_cast<int>(floor_shift(wrap32(sum), 19));
        }
    return out;
}

uint8_t clamp(int64_t value) { return static_cast<uint8_t>(std::clamp<int64_t>(value, 0, 255)); }

} // namespace

int JpegReference::first(const Bytes& bytes) {
    luma_sampling_ = 0x22;
    chroma_sampling_ = 0x11;
    luma_blocks = 4;
    width = height = restart_interval = 0;
    predictor_ = {};
    eob_run_ = 0;
    mode_ = -1;
    soi_flag_ = prefix_ = stop_ = done_ = false;
    comments.clear();
    comment_count = 0;
    progress.clear();
    state_ = 0;
    final_ = 0;
    buffer_ = bytes;
    at_ = 0;
    return step();
}

int JpegReference::next(const Bytes& bytes, int final_flag) {
    final_ = final_flag;
    if (!bytes.empty()) {
        buffer_.erase(buffer_.begin(), buffer_.begin() + static_cast<std::ptrdiff_t>(at_));
        at_ = 0;
        buffer_.insert(buffer_.end(), bytes.begin(), bytes.end());
    } else if (final_flag != 1) {
        return -3;
    }
    if (final_flag == 0 && buffer_.size() - at_ < 512)
        return 0;
    return step();
}

int JpegReference::whole(const Bytes& bytes) {
    const int result = first(bytes);
    return result == 0 ? next({}, 1) : result;
}

int JpegReference::step() {
    try {
        if (state_ == 0) {
            slot_defined = {};
            dc_defined_ = ac_defined_ = {};
            bool found = false;
            while (at_ < buffer_.size() && !found) {
                const int b = buffer_[at_++];
                found = soi_flag_ && b == 0xD8;
                soi_flag_ = b == 0xFF;
            }
            if (!found)
                return final_ == 1 ? -10 : 0;
            state_ = 1;
            if (at_ == buffer_.size())
                return 0;
        }
        if (state_ == 1) {
            const int result = read_segments(comments_on);
            if (result != 1)
                return final_ == 1 ? -13 : result;
            state_ = 2;
            if (at_ == buffer_.size())
                return 0;
        }
        if (state_ == 2) {
            const auto rest = buffer_.begin() + static_cast<std::ptrdiff_t>(at_);
            if (final_ == 0 && std::all_of(rest, buffer_.end(), [](int b) { return b == 0xFF; }))
                return 0;
            start();
            state_ = 3;
            send(0);
            last_percent_ = 0;
        }
        loop();
        return done_ ? 1 : 0;
    } catch (const Failure& failure) {
        return failure.code;
    }
}

int JpegReference::read_segments(bool store) {
    try {
        while (at_ < buffer_.size()) {
            const int b = buffer_[at_++];
            if (b < 0xC0)
                prefix_ = false;
            else if (b == 0xFF)
                prefix_ = true;
            else if (prefix_) {
                switch (b) {
                case 0xC1:
                case 0xC3:
                case 0xC5:
                case 0xC6:
                case 0xC7:
                case 0xC9:
                case 0xCA:
                case 0xCB:
                case 0xCD:
                case 0xCE:
                case 0xCF:
                    return -19;
                case 0xD9:
                    prefix_ = false;
                    return -12;
                case 0xC0:
                case 0xC2:
                case 0xC4:
                case 0xDA:
                case 0xDB:
                case 0xDC:
                case 0xDD:
                case 0xFE:
                    break;
                default:
                    if (b >= 0xE0 && b <= 0xEF)
                        break;
                    prefix_ = false;
                    continue;
                }
                if (!segment(b, store))
                    return 0;
                prefix_ = false;
                if (b == 0xDA)
                    return 1;
            }
        }
        return 0;
    } catch (const Failure& failure) {
        prefix_ = false;
        return failure.code;
    }
}

// False when not all of it is here; the marker is then to be read again.
bool JpegReference::segment(int m, bool store) {
    const size_t left = buffer_.size() - at_;
    if (left < 2) {
        at_ -= 1;
        return false;
    }
    const int length = buffer_[at_] * 256 + buffer_[at_ + 1];
    if (length >= 2 && left < static_cast<size_t>(length)) {
        at_ -= 1;
        return false;
    }
    if (length < 2)
        throw Failure{-13};
    const auto begin = buffer_.begin() + static_cast<std::ptrdiff_t>(at_) + 2;
    const Bytes c(begin, begin + length - 2);
    at_ += static_cast<size_t>(length);
    if (m == 0xFE) {
        if (c.empty())
            return true;
        if (comment_count < 5) {
            if (store)
                comments.emplace_back(c.begin(), c.end());
            ++comment_count;
        }
        return true;
    }
    if (c.empty())
        throw Failure{-13};
    if (m == 0xC0 || m == 0xC2) {
        frame_header(c);
        mode_ = m == 0xC0 ? 0 : 2;
    } else if (m == 0xDA) {
        scan_header(c);
    } else if (m == 0xDB) {
        for (size_t i = 0; i < c.size(); i += 65) {
            if (c[i] > 3 || i + 65 > c.size())
                throw Failure{-13};
            for (size_t k = 0; k < 64; ++k)
                slots[c[i]][k] = c[i + 1 + k];
            slot_defined[c[i]] = true;
        }
    } else if (m == 0xC4) {
        huffman(c);
    } else if (m == 0xDD) {
        if (c.size() < 2)
            throw Failure{-13};
        restart_interval = c[0] * 256 + c[1];
    }
    return true;
}

void JpegReference::frame_header(const Bytes& c) {
    if (c.size() < 6 || c[0] != 8)
        throw Failure{-13};
    height = c[1] * 256 + c[2];
    width = c[3] * 256 + c[4];
    const size_t n = c[5];
    if ((n != 1 && n != 3) || c.size() < 6 + 3 * n)
        throw Failure{-13};
    components = static_cast<int>(n);
    const int h = c[7], h2 = n == 3 ? c[10] : 0, h3 = n == 3 ? c[13] : 0;
    if (n == 1 ? h != 0x11
               : h2 != h3 || !((h2 == 0x11 && (h == 0x11 || h == 0x21 || h == 0x12 || h == 0x22)) ||
                               (h == 0x22 && (h2 == 0x21 || h2 == 0x12))))
        throw Failure{-13};
    luma_sampling_ = h;
    chroma_sampling_ = h2;
    luma_blocks = (h >> 4) * (h & 15);
    for (size_t i = 0; i < n; ++i) {
        const int id = c[6 + 3 * i], q = c[8 + 3 * i];
        if (id < 1 || id > 3 || q > 3)
            throw Failure{-13};
        selector_[static_cast<size_t>(id)] = q;
    }
}

void JpegReference::scan_header(const Bytes& c) {
    const size_t n = c[0];
    if (c.size() < 3 || c.size() < 1 + 2 * n)
        throw Failure{-13};
    has_one_ = false;
    scan_.clear();
    for (size_t i = 0; i < n; ++i) {
        const int id = c[1 + 2 * i], dc = c[2 + 2 * i] / 16, ac = c[2 + 2 * i] % 16;
        scan_.push_back({id, dc, ac});
        if (id > 3 || dc > 3 || ac > 3)
            throw Failure{-13};
        has_one_ = has_one_ || id == 1;
    }
    ss_ = c[c.size() - 3];
    se_ = c[c.size() - 2];
    ah_ = c[c.size() - 1] / 16;
    al_ = c[c.size() - 1] % 16;
    if (ah_ != 0)
        stop_ = true;
}

void JpegReference::huffman(const Bytes& c) {
    for (size_t i = 0; i < c.size();) {
        const size_t number = c[i] % 16;
        const bool ac = (c[i] / 16) % 2 == 1;
        if (number > 3 || i + 17 > c.size())
            throw Failure{-13};
        size_t sum = 0;
        for (size_t l = 1; l <= 16; ++l)
            sum += c[i + l];
        if (sum > 256 || i + 17 + sum > c.size())
            throw Failure{-13};
        Table table;
        size_t at = i + 17;
        int code = 0;
        for (size_t l = 1; l <= 16; ++l) {
            table.count[l] = c[i + l];
            table.place[l] = static_cast<int>(at - i - 17);
            for (int s = 0; s < table.count[l]; ++s, ++at)
                table.symbols[at - i - 17] = c[at];
            table.first[l] = code & 0xFFFF;
            code = (code + table.count[l]) * 2;
        }
        (ac ? ac_ : dc_)[number] = table;
        (ac ? ac_defined_ : dc_defined_)[number] = true;
        i = at;
    }
}

void JpegReference::start() {
    if (width == 0 || height == 0)
        throw Failure{-13};
    if (int64_t{width} * height > most_pixels)
        throw Failure{too_large};
    picture_width_ = width;
    picture_height_ = height;
    picture_mode_ = mode_;
    picture_components_ = components;
    mcu_w_ = (luma_sampling_ >> 4) * 8;
    mcu_h_ = (luma_sampling_ & 15) * 8;
    lumas_ = luma_blocks;
    chroma_across_ = components == 1 ? 0 : chroma_sampling_ >> 4;
    chromas_ = components == 1 ? 0 : (chroma_sampling_ >> 4) * (chroma_sampling_ & 15);
    across_ = (width + mcu_w_ - 1) / mcu_w_;
    total_ = across_ * ((height + mcu_h_ - 1) / mcu_h_);
    counter_ = 0;
    coverage_ = 0;
    store_.clear();
    pixels_.assign(static_cast<size_t>((width * 3 + 3) / 4 * 4) * static_cast<size_t>(height), 0);
    wide_ = slots;
    pending_ = false;
    bit_position_ = 0;
    current_ = at_ < buffer_.size() ? buffer_[at_++] : 0;
    if (current_ != 0xFF)
        return;
    int b = 0xFF;
    while (b == 0xFF && at_ < buffer_.size())
        b = buffer_[at_++];
    if (b == 0xFF) {
        pending_ = true;
    } else if (b != 0) {
        marker = b;
        position = static_cast<int64_t>(at_);
        throw Failure{-11};
    }
}

void JpegReference::send(int percent) { progress.push_back(percent); }

void JpegReference::complete() {
    done_ = true;
    rows = pixels_;
    send(100);
}

void JpegReference::loop() {
    const auto enough = [this] { return final_ != 0 || buffer_.size() - at_ >= 512; };
    if (picture_mode_ == 2) {
        if (enough())
            progressive();
        return;
    }
    while (enough()) {
        baseline_mcu();
        ++counter_;
        if (counter_ == total_) {
            complete();
            return;
        }
        const int percent = counter_ * 100 / total_;
        if (percent - last_percent_ >= 5) {
            send(percent);
            last_percent_ = percent;
        }
    }
}

void JpegReference::baseline_mcu() {
    Mcu blocks{};
    for (int i = 0; i < lumas_; ++i) {
        first_block_ = i == 0;
        block(blocks[static_cast<size_t>(i)], dc_[0], ac_[0], selector_[1], 0);
    }
    first_block_ = false;
    for (int c = 0; c < 2; ++c)
        for (int i = 0; i < chromas_; ++i)
            block(blocks[static_cast<size_t>(lumas_ + c * chromas_ + i)], dc_[1], ac_[1],
                  selector_[static_cast<size_t>(2 + c)], 1 + c);
    if (lumas_ + 2 * chromas_ == 1)
        first_block_ = true;
    render(counter_, blocks);
}

JpegReference::Block& JpegReference::stored(int mcu, int slot) {
    if (mcu < total_)
        return store_[static_cast<size_t>(mcu)][static_cast<size_t>(slot)];
    lost_ = {};
    return lost_;
}

void JpegReference::progressive() {
    if (store_.empty())
        store_.assign(static_cast<size_t>(total_), Mcu{});
    for (;;) {
        bool image_ends = false;
        if (counter_ == total_) {
            const int result = read_segments(false);
            if (result == 1) {
                counter_ = 0;
                bit_position_ = 8;
                eob_run_ = 0;
            } else if (result == -12) {
                image_ends = stop_ = true;
            } else if (final_ == 1) {
                throw Failure{-13};
            } else if (result < 0) {
                throw Failure{result};
            } else {
                return;
            }
        }
        if (!image_ends)
            progressive_mcu();
        if (stop_) {
            for (int m = 0; m < total_; ++m)
                render(m, store_[static_cast<size_t>(m)]);
            complete();
            return;
        }
        ++counter_;
        if (counter_ == total_ && has_one_)
            coverage_ += se_ - ss_ + 1;
        const int percent = static_cast<int>(std::min<int64_t>(coverage_ * 100 / 64, 100));
        if (percent - last_percent_ >= 5) {
            send(percent);
            last_percent_ = percent;
        }
    }
}

void JpegReference::progressive_mcu() {
    if (counter_ == 0)
        plane_counter_ = 0;
    for (const auto& [id, dc, ac] : scan_) {
        if ((ss_ == 0 && !dc_defined_[static_cast<size_t>(dc)]) ||
            (se_ > 0 && !ac_defined_[static_cast<size_t>(ac)]))
            throw Failure{-14};
        const Table& d = dc_[static_cast<size_t>(dc)];
        const Table& a = ac_[static_cast<size_t>(ac)];
        const int q = selector_[static_cast<size_t>(id)];
        if (picture_components_ == 1) {
            first_block_ = true;
            block(stored(counter_, 0), d, a, q, 0);
            return;
        }
        if (id == 0)
            continue;
        const int blocks = id == 1 ? lumas_ : chromas_;
        const int first = id == 1 ? 0 : lumas_ + (id - 2) * chromas_;
        if (scan_.size() == 1 && blocks > 1) {
            int w = (picture_width_ + 7) / 8, h = (picture_height_ + 7) / 8;
            int sa = 2, sd = blocks / 2;
            if (id == 1) {
                first_block_ = true;
            } else {
                sa = chroma_across_;
                sd = blocks / sa;
                w = (picture_width_ + mcu_w_ / sa - 1) / (mcu_w_ / sa);
                h = (picture_height_ + mcu_h_ / sd - 1) / (mcu_h_ / sd);
            }
            for (int i = 0; i < blocks && plane_counter_ < w * h; ++i, ++plane_counter_) {
                const int row = plane_counter_ / w, col = plane_counter_ % w;
                block(stored(row / sd * across_ + col / sa, first + col % sa + sa * (row % sd)), d,
                      a, q, id - 1);
            }
            continue;
        }
        if (id == 1)
            first_block_ = true;
        for (int i = 0; i < blocks; ++i)
            block(stored(counter_, first + i), d, a, q, id - 1);
        if (id == 1)
            first_block_ = false;
    }
}

void JpegReference::block(Block& coefficients, const Table& dc, const Table& ac, int q,
                          int predictor) {
    for (bool again = true; again;) {
        again = false;
        try {
            block_once(coefficients, dc, ac, q, predictor);
        } catch (const Restart&) {
            again = true;
        }
        for (bool restart = again; restart;) {
            restart = false;
            try {
                load();
            } catch (const Restart&) {
                restart = true;
            }
        }
    }
}

void JpegReference::block_once(Block& coefficients, const Table& dc, const Table& ac, int q,
                               int predictor) {
    const auto& quant = wide_[static_cast<size_t>(q)];
    const auto put = [&](int k, int product) {
        const auto value = static_cast<int16_t>(static_cast<int16_t>(product) * (1 << al_));
        static const auto natural = [] {
            std::array<size_t, 64> table{};
            for (int i = 0; i < 64; ++i)
                table[static_cast<size_t>(i)] = static_cast<size_t>(natural_index(i));
            return table;
        }();
        int16_t& place = coefficients[natural[static_cast<size_t>(k)]];
        place = static_cast<int16_t>(ah_ != 0 ? place + value : value);
    };
    const auto signed_bits = [&](int s) {
        const int v = receive(s);
        return static_cast<int16_t>(v < 1 << (s - 1) ? v - ((1 << s) - 1) : v);
    };
    int k = ss_;
    if (ss_ == 0) {
        const int s = symbol(dc, 16);
        if (s > 16)
            throw Failure{-14};
        int16_t& pred = predictor_[static_cast<size_t>(predictor)];
        if (s > 0) {
            const int16_t v = signed_bits(s);
            pred = static_cast<int16_t>(pred + v);
        }
        put(0, quant[0] * pred);
        if (se_ < 1)
            return;
        k = 1;
    }
    if (eob_run_ > 0) {
        --eob_run_;
        return;
    }
    while (k <= se_) {
        const int rs = symbol(ac, 256);
        const int r = rs / 16, s = rs % 16;
        if (rs == 0) {
            eob_run_ = 0;
            return;
        }
        if (rs >= 16 && r <= 14 && s == 0) {
            const int v = receive(r);
            eob_run_ = (1 << r) + v - 1;
            return;
        }
        k += r;
        if (s != 0) {
            const int16_t v = signed_bits(s);
            if (k < 64)
                put(k, quant[static_cast<size_t>(k)] * v);
        }
        ++k;
    }
}

void JpegReference::load() {
    bit_position_ = 0;
    for (;;) {
        if (at_ == buffer_.size())
            return;
        if (!pending_) {
            current_ = buffer_[at_++];
            if (current_ < 0xFF)
                return;
        }
        pending_ = false;
        int b;
        do {
            if (at_ == buffer_.size()) {
                pending_ = true;
                return;
            }
            b = buffer_[at_++];
        } while (b == 0xFF);
        if (b == 0x00)
            return;
        if (b == 0xD9) {
            stop_ = true;
            return;
        }
        if (b == 0xDA)
            return;
        if (b < 0xD0 || b > 0xD7) {
            marker = b;
            position = static_cast<int64_t>(at_);
            throw Failure{-11};
        }
        predictor_ = {};
        code_ = length_ = 0;
        if (first_block_)
            throw Restart{};
    }
}

int JpegReference::bit() {
    if (bit_position_ == 8)
        load();
    return (current_ >> (7 - bit_position_++)) & 1;
}

int JpegReference::receive(int n) {
    int v = 0;
    while (n-- > 0) {
        const int b = bit();
        v = v * 2 + b;
    }
    return v;
}

int JpegReference::symbol(const Table& table, int row) {
    code_ = length_ = 0;
    for (;;) {
        const int b = bit();
        ++length_;
        code_ = 2 * code_ + b;
        if (b == 0)
            break;
        if (length_ > 15)
            throw Failure{-14};
    }
    for (;;) {
        if (length_ > 16)
            throw Failure{-14};
        const auto l = static_cast<size_t>(length_);
        if (table.count[l] != 0) {
            const int index = (code_ & 0xFFFF) - table.first[l];
            if (index < table.count[l]) {
                if (index < 0 || index >= row)
                    throw Failure{-14};
                return table.symbols[static_cast<size_t>(table.place[l] + index)];
            }
        }
        const int b = bit();
        code_ = 2 * code_ + b;
        ++length_;
    }
}

void JpegReference::render(int mcu, const Mcu& blocks) {
    std::array<std::array<int, 64>, 8> samples;
    for (size_t i = 0; i < static_cast<size_t>(lumas_ + 2 * chromas_); ++i)
        samples[i] = inverse_dct(blocks[i]);
    const auto at = [&](int first, int across, int x, int y) {
        return samples[static_cast<size_t>(first + y / 8 * across + x / 8)]
                      [static_cast<size_t>(y % 8 * 8 + x % 8)];
    };
    const int chroma_w = chroma_across_ * 8;
    const int chroma_h = chroma_across_ != 0 ? chromas_ / chroma_across_ * 8 : 0;
    const size_t stride = static_cast<size_t>((picture_width_ * 3 + 3) / 4 * 4);
    const int x0 = mcu % across_ * mcu_w_, y0 = mcu / across_ * mcu_h_;
    for (int r = 0; r < mcu_h_ && y0 + r < picture_height_; ++r)
        for (int c = 0; c < mcu_w_ && x0 + c < picture_width_; ++c) {
            uint8_t* pixel = &pixels_[static_cast<size_t>(picture_height_ - 1 - y0 - r) * stride +
                                      static_cast<size_t>(x0 + c) * 3];
            const int64_t y = at(0, mcu_w_ / 8, c, r);
            if (chromas_ == 0) {
                pixel[0] = pixel[1] = pixel[2] = clamp(y + 128);
                continue;
            }
            const int cx = c * chroma_w / mcu_w_, cy = r * chroma_h / mcu_h_;
            const int64_t cb = at(lumas_, chroma_across_, cx, cy);
            const int64_t cr = at(lumas_ + chromas_, chroma_across_, cx, cy);
            const int64_t t = (y + 128) * 65536;
            pixel[0] = clamp(floor_shift(t + 115999 * cb, 16));
            pixel[1] = clamp(floor_shift(t - 22525 * cb - 46812 * cr, 16));
            pixel[2] = clamp(floor_shift(t + 91881 * cr, 16));
        }
}

} // namespace kirvo_test
