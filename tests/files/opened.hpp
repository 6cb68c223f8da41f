// A picture opened for a test, its pixels read by a plain formulation of the packed DIB.
#pragma once

#include "support/temp_folder.hpp"

#include <gtest/gtest.h>
#include <kirvo_files.h>

#include <cstring>
#include <string>
#include <vector>

namespace kirvo_test {

using Bytes = std::vector<uint8_t>;

inline void add_words(Bytes& to, std::initializer_list<uint32_t> words, uint32_t size) {
    for (uint32_t word : words)
        for (uint32_t i = 0; i < size; ++i)
            to.push_back(static_cast<uint8_t>(word >> 8 * i));
}
inline void add16(Bytes& to, std::initializer_list<uint32_t> words) { add_words(to, words, 2); }
inline void add32(Bytes& to, std::initializer_list<uint32_t> words) { add_words(to, words, 4); }

class Opened {
  public:
    explicit Opened(const Bytes& bytes, uint32_t flags = 0, uint32_t frame = 0,
                    uint32_t background = 0) {
        const KirvoFilesOpenOptions options = {sizeof options, flags, background, frame};
        status = KirvoFilesOpenMemory(bytes.data(), static_cast<uint32_t>(bytes.size()), &options,
                                      &dib, &file);
        look();
    }
    explicit Opened(const std::string& name, uint32_t flags = 0) {
        const KirvoFilesOpenOptions options = {sizeof options, flags, 0, 0};
        status = KirvoFilesOpen(name.c_str(), &options, &dib, &file);
        look();
    }
    ~Opened() {
        if (dib != nullptr)
            GlobalFree(dib);
        KirvoFilesClose(file);
    }
    Opened(const Opened&) = delete;
    Opened& operator=(const Opened&) = delete;

    int32_t status;
    HGLOBAL dib = nullptr;
    KirvoFile file = nullptr;
    KirvoFilesDescription about = {};

    std::string text(int32_t kind, uint32_t index = 0) const {
        char words[500];
        KirvoFilesText(file, kind, index, words, sizeof words);
        return words;
    }
    bool has_note(int32_t kind) const {
        for (uint32_t i = 0; i < about.notes; ++i)
            if (KirvoFilesNote(file, i) == kind)
                return true;
        return false;
    }
    Bytes data(int32_t kind) const {
        Bytes bytes(KirvoFilesData(file, kind, nullptr, 0));
        KirvoFilesData(file, kind, bytes.data(), static_cast<uint32_t>(bytes.size()));
        return bytes;
    }
    uint32_t bits() const { return block_.size() < 40 ? 0 : block_[14]; }
    // 0xAARRGGBB, counted from the top left; alpha 0 but at 32 bits. 16 bits as they are.
    uint32_t pixel(uint32_t x, uint32_t y) const {
        const uint32_t width = word(4), height = word(8), depth = bits();
        const size_t rows = 40 + (depth == 16 || depth == 32 ? 12 : 4 * size_t{word(32)});
        const size_t stride = (size_t{width} * depth + 31) / 32 * 4;
        const size_t row = rows + stride * (height - 1 - y);
        uint32_t value = 0;
        if (depth >= 16) {
            for (uint32_t i = 0; i < depth / 8; ++i)
                value |= uint32_t{block_.at(row + depth / 8 * x + i)} << 8 * i;
            return value;
        }
        const uint8_t byte = block_.at(row + size_t{x} * depth / 8);
        const uint32_t index = byte >> (8 - depth - x * depth % 8) & ((1u << depth) - 1);
        return word(40 + 4 * size_t{index}) & 0xFFFFFF;
    }
    uint32_t word(size_t at) const {
        uint32_t value;
        std::memcpy(&value, block_.data() + at, 4);
        return value;
    }

  private:
    void look() {
        about.size = sizeof about;
        KirvoFilesDescribe(file, &about);
        EXPECT_EQ(dib != nullptr, status == KIRVO_FILES_OK);
        if (dib == nullptr)
            return;
        block_.resize(GlobalSize(dib));
        std::memcpy(block_.data(), GlobalLock(dib), block_.size());
        GlobalUnlock(dib);
        EXPECT_EQ(word(0), 40u);
        EXPECT_EQ(block_[12], 1);
        EXPECT_EQ(word(16), bits() == 16 || bits() == 32 ? 3u : 0u);
        EXPECT_EQ(word(4), about.width);
        EXPECT_EQ(word(8), about.height);
        EXPECT_EQ(bits(), about.dibBits);
        EXPECT_EQ(word(20), (about.width * bits() + 31) / 32 * 4 * about.height);
    }
    Bytes block_;
};

// A picture of 24 bits of a plain formula, owned.
class Picture {
  public:
    Picture(uint32_t width, uint32_t height, uint32_t bits = 24)
        : dib(DibMemAllocEx(width, static_cast<int32_t>(height), bits)) {
        const size_t stride = (size_t{width} * bits + 31) / 32 * 4;
        auto* data = static_cast<uint8_t*>(GlobalLock(dib));
        if (bits == 32) {
            const uint32_t masks[] = {0xFF0000, 0xFF00, 0xFF};
            std::memcpy(data + 40, masks, 12);
        } else if (bits == 8) {
            for (uint32_t i = 0; i < 256; ++i) // a ramp of greys
                std::memset(data + 40 + 4 * i, static_cast<int>(i), 3);
        }
        uint8_t* rows = data + 40 + (bits == 32 ? 12 : bits == 8 ? 1024 : 0);
        for (uint32_t y = 0; y < height; ++y)
            for (uint32_t x = 0; x < width; ++x)
                for (uint32_t i = 0; i < bits / 8; ++i)
                    rows[stride * (height - 1 - y) + bits / 8 * x + i] =
                        static_cast<uint8_t>(colour(x, y, bits) >> 8 * i);
        GlobalUnlock(dib);
    }
    ~Picture() { GlobalFree(dib); }
    Picture(const Picture&) = delete;
    Picture& operator=(const Picture&) = delete;

    static uint32_t colour(uint32_t x, uint32_t y, uint32_t bits = 24) {
        const uint32_t red = (x * 5 + y) & 255, green = (y * 4) & 255, blue = (x * 3 + 40) & 255;
        return bits == 8 ? red
                         : (bits == 32 ? ((x * 11 + y * 7) & 255) << 24 : 0) | red << 16 |
                               green << 8 | blue;
    }

    HGLOBAL dib;
};

// What a save into memory gives.
struct Saved {
    int32_t status;
    Bytes bytes;
    std::vector<std::string> notes;
};
inline Saved save(HGLOBAL dib, KirvoFilesSaveOptions options, KirvoFile source = nullptr) {
    options.size = sizeof options;
    HGLOBAL block = nullptr;
    uint32_t count = 0;
    KirvoFile file = nullptr;
    Saved saved;
    saved.status = KirvoFilesSaveMemory(dib, source, &options, &block, &count, &file);
    if (block != nullptr) {
        const auto* data = static_cast<const uint8_t*>(GlobalLock(block));
        saved.bytes.assign(data, data + count);
        GlobalUnlock(block);
        GlobalFree(block);
    }
    for (uint32_t i = 0; KirvoFilesNote(file, i) != KIRVO_FILES_NOTE_NONE; ++i) {
        char words[300];
        KirvoFilesText(file, KIRVO_FILES_TEXT_NOTE, i, words, sizeof words);
        saved.notes.push_back(words);
    }
    KirvoFilesClose(file);
    return saved;
}
inline KirvoFilesSaveOptions as(int32_t format, uint32_t flags = 0, uint32_t quality = 0) {
    KirvoFilesSaveOptions options = {};
    options.format = format;
    options.flags = flags;
    options.quality = quality;
    return options;
}

} // namespace kirvo_test
