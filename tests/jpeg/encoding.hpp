// What the encoder's tests share: default settings around each test, whole streams, and the streams
// that are expected.
#pragma once

#include "support/dib_builder.hpp"
#include "support/reference_encoder.hpp"

#include <gtest/gtest.h>

namespace kirvo_test {

struct Region {
    int32_t left, top, width, height;
};

inline Region whole(const Dib& dib) { return {0, 0, dib.width(), dib.height()}; }

using Table = std::array<int16_t, 64>;

inline Table filled(int16_t value) {
    Table table;
    table.fill(value);
    return table;
}

inline void reset_encoder() {
    JpgCodNext(-1, nullptr);
    JpgCodSetSubsample(4);
    JpgCodSetQEx(4);
    const Table ones = filled(1);
    JpgCodSetQtable(ones.data(), ones.data());
    JpgCodSetComment(nullptr, 0);
}

class Encoding : public testing::Test {
  protected:
    void SetUp() override { reset_encoder(); }
    void TearDown() override { reset_encoder(); }
};

inline std::vector<uint8_t> first_bytes(HGLOBAL block, size_t count) {
    const auto* bytes = static_cast<const uint8_t*>(GlobalLock(block));
    std::vector<uint8_t> copy;
    if (bytes != nullptr && count <= GlobalSize(block))
        copy.assign(bytes, bytes + count);
    GlobalUnlock(block);
    return copy;
}

// Takes the block.
inline std::vector<uint8_t> take_stream(HGLOBAL block, uint32_t length) {
    std::vector<uint8_t> bytes = first_bytes(block, length);
    GlobalFree(block);
    return bytes;
}

inline std::vector<uint8_t> encode(const Dib& dib, const Region& r) {
    uint32_t length = 0;
    int32_t status = 1;
    HGLOBAL block = JpgCodMainHGLOBAL(dib, r.left, r.top, r.width, r.height, &length, &status);
    EXPECT_EQ(status, 0);
    EXPECT_NE(block, nullptr);
    return take_stream(block, length);
}

inline std::vector<uint8_t> encode_grey(const Dib& dib, const Region& r, int32_t grey_mode) {
    uint32_t length = 0;
    int32_t status = 1;
    HGLOBAL block =
        JpgCodMainHGLOBAL_M(dib, r.left, r.top, r.width, r.height, grey_mode, &length, &status);
    EXPECT_EQ(status, 0);
    EXPECT_NE(block, nullptr);
    return take_stream(block, length);
}

// Entry of the colour table that starts right after the header, whatever its length.
inline ReferencePixel table_entry(const Dib& dib, uint32_t index) {
    const std::vector<uint8_t> bytes = first_bytes(dib, GlobalSize(dib));
    const size_t at = dib.header().biSize + size_t{index} * 4;
    const auto byte = [&](size_t i) { return i < bytes.size() ? bytes[i] : 0; };
    return {byte(at + 2), byte(at + 1), byte(at)};
}

inline ReferencePixel colour_pixel(const Dib& dib, int x, int y) {
    const uint32_t pixel = dib.pixel(x, y);
    if (dib.bits() == 8)
        return table_entry(dib, pixel);
    return {static_cast<int>(pixel >> 16 & 255), static_cast<int>(pixel >> 8 & 255),
            static_cast<int>(pixel & 255)};
}

inline ReferenceJob colour_job(const Dib& dib, const Region& r) {
    return {r.width, r.height,
            [&dib, r](int x, int y) { return colour_pixel(dib, r.left + x, r.top + y); }};
}

inline ReferenceJob grey_job(const Dib& dib, const Region& r, int32_t grey_mode) {
    ReferenceJob job{
        r.width, r.height, [&dib, r, grey_mode](int x, int y) {
            const uint32_t index = dib.pixel(r.left + x, r.top + y);
            const auto grey = static_cast<int>(index);
            return grey_mode == 1 ? table_entry(dib, index) : ReferencePixel{grey, grey, grey};
        }};
    job.grey = true;
    return job;
}

} // namespace kirvo_test
