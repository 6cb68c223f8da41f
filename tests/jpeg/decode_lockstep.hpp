// Drives the library and the plain decoder with the same pieces and holds everything that can be
// seen of one against the other.
#pragma once

#include "support/dib_builder.hpp"
#include "support/jpeg_builder.hpp"
#include "support/progress_recorder.hpp"

#include <cstring>
#include <gtest/gtest.h>

namespace kirvo_test {

// A block with exactly these bytes.
inline Dib block_of(const Bytes& bytes) {
    Dib block(GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, bytes.empty() ? 1 : bytes.size()));
    if (!bytes.empty())
        std::memcpy(GlobalLock(block), bytes.data(), bytes.size());
    else
        GlobalLock(block);
    GlobalUnlock(block);
    return block;
}

inline int32_t decode_first(const Bytes& bytes, HGLOBAL* image) {
    return JpgDecFirst(block_of(bytes), static_cast<int32_t>(bytes.size()), image);
}

inline int32_t decode_next(const Bytes& bytes, int final_flag, HGLOBAL* image) {
    if (bytes.empty())
        return JpgDecNext(nullptr, 0, final_flag, image);
    return JpgDecNext(block_of(bytes), static_cast<int32_t>(bytes.size()), final_flag, image);
}

// Pieces of a stream that is cut at the given places.
inline std::vector<Bytes> cut(const Bytes& stream, const std::vector<size_t>& places) {
    std::vector<Bytes> pieces;
    size_t from = 0;
    for (size_t place : places) {
        pieces.emplace_back(stream.begin() + static_cast<std::ptrdiff_t>(from),
                            stream.begin() + static_cast<std::ptrdiff_t>(place));
        from = place;
    }
    pieces.emplace_back(stream.begin() + static_cast<std::ptrdiff_t>(from), stream.end());
    return pieces;
}

class Lockstep {
  public:
    // Gives both the same tables, since they outlive a decode.
    Lockstep() {
        Random random(1);
        JpegPlan plan;
        plan.selectors = {1, 2, 3};
        Bytes stream = build_jpeg(plan, random);
        Bytes books;
        for (int i = 0; i < 8; ++i) {
            const CodeBook book = i < 4 ? random_book(dc_categories(), random)
                                        : random_book(kirvo_test::ac_symbols(true), random);
            books.push_back(static_cast<uint8_t>(i < 4 ? i : 0x10 + i - 4));
            books.insert(books.end(), book.counts.begin(), book.counts.end());
            books.insert(books.end(), book.symbols.begin(), book.symbols.end());
        }
        Bytes segment;
        add_segment(segment, 0xC4, books);
        stream.insert(stream.begin() + 2, segment.begin(), segment.end());
        EXPECT_EQ(run({stream}), 1);
    }

    JpegReference reference;
    bool watched = true;

    // The result of the last call. The last piece is followed by an empty one with final 1, or
    // carries it itself.
    int run(const std::vector<Bytes>& pieces, bool final_with_piece = false) {
        HGLOBAL image = nullptr;
        const int expected_first = reference.first(pieces[0]);
        if (expected_first == JpegReference::too_large)
            return expected_first;
        if (watched)
            recorder_.watch();
        int result = decode_first(pieces[0], &image);
        EXPECT_EQ(result, expected_first);
        for (size_t i = 1; result == 0 && i <= pieces.size(); ++i) {
            const bool last = i == pieces.size();
            const int final_flag = last || (final_with_piece && i + 1 == pieces.size()) ? 1 : 0;
            const Bytes piece = last ? Bytes() : pieces[i];
            if (!last && piece.empty())
                continue;
            const int expected = reference.next(piece, final_flag);
            if (expected == JpegReference::too_large) {
                decode_next({}, -1, nullptr);
                return expected;
            }
            result = decode_next(piece, final_flag, &image);
            EXPECT_EQ(result, expected) << "piece " << i;
            if (result != expected)
                break;
        }
        compare(result, Dib(image));
        return result;
    }

  private:
    void compare(int result, const Dib& image) {
        EXPECT_EQ(image != nullptr, result == 1);
        if (result == 1 && image != nullptr) {
            const BITMAPINFOHEADER header = image.header();
            EXPECT_EQ(header.biWidth, reference.width);
            EXPECT_EQ(header.biHeight, reference.height);
            EXPECT_TRUE(image.rows() == reference.rows) << "pixels differ";
        }
        if (watched) {
            EXPECT_EQ(recorder_.percents(), reference.progress);
        }
        if (result == -11) {
            uint32_t position = 0;
            EXPECT_EQ(JpgDecGetLastUexMarker(&position), reference.marker);
            EXPECT_EQ(position, reference.position);
        }
        EXPECT_EQ(JpgDecCommentCounts(), reference.comment_count);
        if (result == 0)
            decode_next({}, -1, nullptr);
    }

    ProgressRecorder recorder_;
};

} // namespace kirvo_test
