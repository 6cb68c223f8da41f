// A JPEG stream in pieces, and whole: as the plain decoder of the tests decodes it. In pieces a
// stream gives what it gives whole, but for a progressive one, whose scans are decoded with
// whatever input is there.
#include "jpeg.hpp"
#include "structure.hpp"
#include "support/jpeg_reference.hpp"

#include <algorithm>
#include <cstdio>

using namespace kirvo_fuzz;
using kirvo_test::JpegReference;

namespace {

std::vector<Bytes> draw_pieces(Input& input) {
    std::vector<size_t> steps(input.below(16));
    for (size_t& step : steps)
        step = input.once_in(2) ? input.below(8) : input.below(1024);
    const bool repeat = input.once_in(2); // the steps over and over, to the end
    const Bytes stream = input.rest();
    std::vector<Bytes> pieces;
    auto from = stream.begin();
    const auto cut = [&](size_t step) {
        const auto to = from + std::min(static_cast<ptrdiff_t>(step), stream.end() - from);
        if (from != to)
            pieces.emplace_back(from, to);
        from = to;
    };
    ptrdiff_t left;
    do {
        left = stream.end() - from;
        std::for_each(steps.begin(), steps.end(), cut);
    } while (repeat && stream.end() - from < left);
    cut(stream.size());
    if (pieces.empty())
        pieces.emplace_back();
    return pieces;
}

Bytes joined(const std::vector<Bytes>& pieces) {
    Bytes stream;
    for (const Bytes& piece : pieces)
        stream.insert(stream.end(), piece.begin(), piece.end());
    return stream;
}

bool may_be_progressive(const Bytes& stream) {
    static constexpr uint8_t marker[] = {0xFF, 0xC2};
    return std::search(stream.begin(), stream.end(), marker, marker + 2) != stream.end();
}

int decode(JpegReference& plain, const std::vector<Bytes>& pieces) {
    int result = plain.first(pieces[0]);
    for (size_t i = 1; i < pieces.size() + 3 && result == 0; ++i)
        result = i < pieces.size() ? plain.next(pieces[i], 0) : plain.next({}, 1);
    return result;
}

// The rows alone: a second frame header changes the plain decoder's idea of the size, not its
// image.
bool same_image(const Bytes& image, const JpegReference& plain) {
    return std::equal(image.begin() + 40, image.end(), plain.rows.begin(), plain.rows.end());
}

bool same_comments(const std::vector<Bytes>& comments, const JpegReference& plain) {
    return std::equal(comments.begin(), comments.end(), plain.comments.begin(),
                      plain.comments.end(), [](const Bytes& comment, const std::string& text) {
                          Bytes expected(text.begin(), text.end());
                          expected.push_back(0);
                          return comment == expected;
                      });
}

void check(const Outcome& outcome, const std::vector<Bytes>& pieces) {
    static const JpegReference reset = [] {
        JpegReference made;
        made.whole(reset_stream());
        made.comments_on = true;
        return made;
    }();
    JpegReference plain = reset;
    const int expected = decode(plain, pieces);
    if (expected == JpegReference::too_large || outcome.result == KIRVO_NO_MEMORY)
        return;
    if (outcome.result != expected)
        std::fprintf(stderr, "%d instead of %d\n", outcome.result, expected);
    require(outcome.result == expected, "the result is the plain decoder's");
    require(outcome.image.empty() || same_image(outcome.image, plain),
            "the image is the plain decoder's");
    require(outcome.marker == plain.marker, "the marker is the plain decoder's");
    require(outcome.comment_count == plain.comment_count,
            "as many comments as the plain decoder's");
    require(same_comments(outcome.comments, plain), "the comments are the plain decoder's");
}

// A fault of the header has a code of its own only as long as more may come.
Outcome with_one_header_code(Outcome outcome) {
    if (outcome.result == KIRVO_JPEG_EARLY_EOI || outcome.result == KIRVO_JPEG_FRAME)
        outcome.result = KIRVO_JPEG_HEADER;
    return outcome;
}

} // namespace

static void run(Input& input) {
    const std::vector<Bytes> pieces = draw_pieces(input);
    const Bytes stream = joined(pieces);
    const Outcome in_pieces = decode_pieces(pieces), whole = decode_whole(stream);
    check(in_pieces, pieces);
    if (in_pieces == whole && !may_be_progressive(stream))
        return;
    check(whole, {stream});
    require(may_be_progressive(stream) ||
                with_one_header_code(in_pieces) == with_one_header_code(whole),
            "pieces give what the whole gives");
}

static const Target target("jpeg_pieces", run, mutate_jpeg);
