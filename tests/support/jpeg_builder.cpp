#include "support/jpeg_builder.hpp"

#include <algorithm>
#include <cstdlib>

namespace kirvo_test {

CodeBook::CodeBook(const std::array<uint8_t, 16>& counts_, const Bytes& symbols_)
    : counts(counts_), symbols(symbols_) {
    uint32_t next = 0;
    size_t at = 0;
    for (int l = 1; l <= 16; ++l, next *= 2)
        for (int i = 0; i < counts[static_cast<size_t>(l - 1)] && at < symbols.size(); ++i) {
            code[symbols[at]] = next++;
            length[symbols[at++]] = l;
        }
}

// Leaves of a tree that grows by splitting one leaf after the other; one of the deepest stays free.
CodeBook random_book(const Bytes& symbols, Random& random) {
    std::vector<int> depths{0};
    while (depths.size() < symbols.size() + 1) {
        const auto i = static_cast<size_t>(random.between(0, static_cast<int>(depths.size()) - 1));
        if (depths[i] == 16)
            continue;
        depths.push_back(++depths[i]);
    }
    std::sort(depths.begin(), depths.end());
    std::array<uint8_t, 16> counts{};
    for (size_t i = 0; i + 1 < depths.size(); ++i)
        ++counts[static_cast<size_t>(depths[i] - 1)];
    Bytes shuffled = symbols;
    for (size_t i = shuffled.size(); i > 1; --i)
        std::swap(shuffled[i - 1],
                  shuffled[static_cast<size_t>(random.between(0, static_cast<int>(i) - 1))]);
    return {counts, shuffled};
}

Bytes dc_categories(int highest) {
    Bytes all;
    for (int s = 0; s <= highest; ++s)
        all.push_back(static_cast<uint8_t>(s));
    return all;
}

Bytes ac_symbols(bool with_bands) {
    Bytes all{0x00, 0xF0};
    for (int run = 0; run < 16; ++run)
        for (int size = 1; size <= 10; ++size)
            all.push_back(static_cast<uint8_t>(run * 16 + size));
    for (int run = 1; with_bands && run <= 14; ++run)
        all.push_back(static_cast<uint8_t>(run * 16));
    return all;
}

void EntropyWriter::put(uint32_t bits, int count) {
    for (int i = count - 1; i >= 0; --i) {
        held_ = held_ * 2 + (bits >> i & 1);
        if (++count_ == 8) {
            bytes.push_back(static_cast<uint8_t>(held_));
            if (bytes.back() == 0xFF)
                bytes.push_back(0);
            held_ = 0;
            count_ = 0;
        }
    }
}

void EntropyWriter::put_symbol(const CodeBook& book, int symbol) {
    const auto s = static_cast<size_t>(symbol);
    put(book.code[s], book.length[s]);
}

void EntropyWriter::put_value(int value, int size) {
    put(static_cast<uint32_t>(value < 0 ? value + (1 << size) - 1 : value), size);
}

void EntropyWriter::align() {
    while (count_ != 0)
        put(1, 1);
}

void EntropyWriter::put_marker(int code, int fill_bytes) {
    align();
    bytes.insert(bytes.end(), static_cast<size_t>(fill_bytes) + 1, 0xFF);
    bytes.push_back(static_cast<uint8_t>(code));
}

int size_of(int value) {
    int size = 0;
    for (int m = std::abs(value); m != 0; m /= 2)
        ++size;
    return size;
}

void add_segment(Bytes& stream, int marker, const Bytes& content) {
    const size_t length = content.size() + 2;
    stream.push_back(0xFF);
    stream.push_back(static_cast<uint8_t>(marker));
    stream.push_back(static_cast<uint8_t>(length >> 8));
    stream.push_back(static_cast<uint8_t>(length));
    stream.insert(stream.end(), content.begin(), content.end());
}

namespace {

struct SamplingBytes {
    uint8_t luma, chroma;
};

SamplingBytes sampling_bytes(Sampling sampling) {
    switch (sampling) {
    case Sampling::grey:
        return {0x11, 0};
    case Sampling::s1x1:
        return {0x11, 0x11};
    case Sampling::s2x1:
        return {0x21, 0x11};
    case Sampling::s1x2:
        return {0x12, 0x11};
    case Sampling::s2x2:
        return {0x22, 0x11};
    case Sampling::s2x2_2x1:
        return {0x22, 0x21};
    default:
        return {0x22, 0x12};
    }
}

// Writes one scan of random coefficients.
class ScanWriter {
  public:
    ScanWriter(const JpegPlan& plan, const ScanPlan& scan, const std::array<CodeBook, 2>& dc,
               const std::array<CodeBook, 2>& ac, Random& random)
        : plan_(plan), scan_(scan), dc_(dc), ac_(ac), random_(random) {}

    Bytes write() {
        const auto [luma, chroma] = sampling_bytes(plan_.sampling);
        const int mcu_w = (luma >> 4) * 8, mcu_h = (luma & 15) * 8;
        const int across = (plan_.width + mcu_w - 1) / mcu_w;
        const int mcus = across * ((plan_.height + mcu_h - 1) / mcu_h);
        const int lumas = (luma >> 4) * (luma & 15), chromas = (chroma >> 4) * (chroma & 15);
        int plane = 0;
        if (scan_.ids.size() == 1 && scan_.ids[0] == plan_.ids[0] && lumas > 1)
            plane = ((plan_.width + 7) / 8) * ((plan_.height + 7) / 8);
        else if (scan_.ids.size() == 1 && scan_.ids[0] != plan_.ids[0] && chromas > 1)
            plane = ((plan_.width + mcu_w / (chroma >> 4) - 1) / (mcu_w / (chroma >> 4))) *
                    ((plan_.height + mcu_h / (chroma & 15) - 1) / (mcu_h / (chroma & 15)));
        int restarts = 0;
        const int units = plane != 0 ? plane : mcus;
        for (int unit = 0; unit < units; ++unit) {
            if (plan_.restart_every != 0 && unit != 0 && unit % plan_.restart_every == 0) {
                flush_band();
                out_.put_marker(0xD0 + restarts++ % 8,
                                plan_.fill_bytes ? random_.between(0, 3) : 0);
            }
            for (int id : scan_.ids) {
                const bool is_luma = id == plan_.ids[0];
                const int blocks = plane != 0 ? 1 : is_luma ? lumas : chromas;
                for (int b = 0; b < blocks; ++b)
                    write_block(is_luma ? 0 : 1);
            }
        }
        flush_band();
        out_.align();
        return out_.bytes;
    }

  private:
    void write_block(size_t table) {
        int first = scan_.ss;
        if (first == 0) {
            const int difference = random_.between(-40, 40) * (random_.once_in(4) ? 8 : 1);
            const int size = size_of(difference);
            out_.put_symbol(dc_[table], size);
            out_.put_value(difference, size);
            first = 1;
        }
        band_table_ = table;
        int run = 0;
        for (int k = first; k <= scan_.se; ++k) {
            const int band = scan_.se - first + 1;
            if (random_.between(1, band) > std::max(1, plan_.coefficients * band / 64) ||
                (k > 4 && random_.once_in(3))) {
                ++run;
                continue;
            }
            flush_band();
            for (; run > 15; run -= 16)
                out_.put_symbol(ac_[table], 0xF0);
            int value = random_.between(-3, 3);
            if (random_.once_in(8))
                value = random_.between(-plan_.largest, plan_.largest);
            if (value == 0)
                value = 1;
            const int size = size_of(value);
            out_.put_symbol(ac_[table], run * 16 + size);
            out_.put_value(value, size);
            run = 0;
        }
        if (run > 0) {
            ++band_;
            if (plan_.scans.empty() || scan_.ss == 0)
                flush_band();
        }
    }

    // The blocks that end here, as one band or as several.
    void flush_band() {
        while (band_ != 0) {
            int run = 0;
            while (run < 14 && (2 << run) <= band_)
                ++run;
            if (plan_.scans.empty())
                run = 0;
            out_.put_symbol(ac_[band_table_], run * 16);
            const int rest = std::min(band_ - (1 << run), (1 << run) - 1);
            out_.put(static_cast<uint32_t>(rest), run);
            band_ -= (1 << run) + rest;
        }
    }

    const JpegPlan& plan_;
    const ScanPlan& scan_;
    const std::array<CodeBook, 2>& dc_;
    const std::array<CodeBook, 2>& ac_;
    Random& random_;
    EntropyWriter out_;
    int band_ = 0;
    size_t band_table_ = 0;
};

void add_book(Bytes& content, int class_and_number, const CodeBook& book) {
    content.push_back(static_cast<uint8_t>(class_and_number));
    content.insert(content.end(), book.counts.begin(), book.counts.end());
    content.insert(content.end(), book.symbols.begin(), book.symbols.end());
}

} // namespace

Bytes build_jpeg(const JpegPlan& plan, Random& random) {
    const bool progressive = !plan.scans.empty();
    const bool colour = plan.sampling != Sampling::grey;
    const auto [luma, chroma] = sampling_bytes(plan.sampling);
    const size_t components = colour ? 3 : 1;

    Bytes stream{0xFF, 0xD8};
    for (const std::string& comment : plan.comments)
        add_segment(stream, 0xFE, Bytes(comment.begin(), comment.end()));
    Bytes tables;
    for (int slot = 0; slot <= *std::max_element(plan.selectors.begin(), plan.selectors.end());
         ++slot) {
        tables.push_back(static_cast<uint8_t>(slot));
        for (int k = 0; k < 64; ++k)
            tables.push_back(static_cast<uint8_t>(random.between(1, 4 + k / 2)));
    }
    add_segment(stream, 0xDB, tables);
    Bytes frame{8,
                static_cast<uint8_t>(plan.height >> 8),
                static_cast<uint8_t>(plan.height),
                static_cast<uint8_t>(plan.width >> 8),
                static_cast<uint8_t>(plan.width),
                static_cast<uint8_t>(components)};
    for (size_t i = 0; i < components; ++i) {
        frame.push_back(static_cast<uint8_t>(plan.ids[i]));
        frame.push_back(i == 0 ? luma : chroma);
        frame.push_back(static_cast<uint8_t>(plan.selectors[i]));
    }
    add_segment(stream, progressive ? 0xC2 : 0xC0, frame);
    if (plan.restart_every != 0)
        add_segment(stream, 0xDD,
                    {static_cast<uint8_t>(plan.restart_every >> 8),
                     static_cast<uint8_t>(plan.restart_every)});

    std::vector<ScanPlan> scans = plan.scans;
    if (!progressive)
        scans.push_back({colour ? std::vector<int>(plan.ids.begin(), plan.ids.end())
                                : std::vector<int>{plan.ids[0]}});
    for (const ScanPlan& scan : scans) {
        const std::array<CodeBook, 2> dc{random_book(dc_categories(), random),
                                         random_book(dc_categories(), random)};
        const std::array<CodeBook, 2> ac{random_book(ac_symbols(progressive), random),
                                         random_book(ac_symbols(progressive), random)};
        Bytes books;
        for (int i = 0; i < 2; ++i) {
            add_book(books, i, dc[static_cast<size_t>(i)]);
            add_book(books, 0x10 + i, ac[static_cast<size_t>(i)]);
        }
        add_segment(stream, 0xC4, books);
        Bytes header{static_cast<uint8_t>(scan.ids.size())};
        for (int id : scan.ids) {
            header.push_back(static_cast<uint8_t>(id));
            header.push_back(id == plan.ids[0] ? 0x00 : 0x11);
        }
        header.push_back(static_cast<uint8_t>(scan.ss));
        header.push_back(static_cast<uint8_t>(scan.se));
        header.push_back(static_cast<uint8_t>(scan.ah * 16 + scan.al));
        add_segment(stream, 0xDA, header);
        const Bytes data = ScanWriter(plan, scan, dc, ac, random).write();
        stream.insert(stream.end(), data.begin(), data.end());
    }
    stream.insert(stream.end(), {0xFF, 0xD9});
    stream.insert(stream.end(), plan.after.begin(), plan.after.end());
    return stream;
}

JpegPlan random_plan(Random& random, int largest_side, bool progressive) {
    JpegPlan plan;
    plan.width = random.between(1, largest_side);
    plan.height = random.between(1, largest_side);
    plan.sampling = random.pick(all_samplings);
    for (int& selector : plan.selectors)
        selector = random.between(0, 3);
    if (random.once_in(3))
        plan.restart_every = random.between(1, 5);
    plan.fill_bytes = random.once_in(2);
    plan.coefficients = random.between(1, 40);
    plan.largest = random.once_in(3) ? 1000 : 60;
    if (!progressive)
        return plan;
    const bool colour = plan.sampling != Sampling::grey;
    if (colour && random.once_in(2))
        plan.scans.push_back({{1, 2, 3}, 0, 0, 0, random.between(0, 2)});
    else
        for (int id = 1; id <= (colour ? 3 : 1); ++id)
            plan.scans.push_back({{id}, 0, 0, 0, random.between(0, 1)});
    for (int id = colour ? 3 : 1; id >= 1; --id) {
        const int split = random.between(1, 62);
        plan.scans.push_back({{id}, 1, split, 0, random.between(0, 2)});
        plan.scans.push_back({{id}, split + 1, 63, 0, random.between(0, 1)});
    }
    return plan;
}

} // namespace kirvo_test
