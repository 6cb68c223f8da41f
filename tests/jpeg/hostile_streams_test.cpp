// Streams that are made to be much work: the results are the stated ones all the same, and the time
// grows with the bytes or the pixels, whichever are more, never with their product or a square.
#include "decode_lockstep.hpp"
#include "support/hostile_streams.hpp"
#include "support/stopwatch.hpp"

using namespace kirvo_test;

namespace {

class HostileStreams : public testing::TestWithParam<HostileStream> {};

int32_t decode_whole(HGLOBAL stream, size_t size) {
    int32_t error = 1;
    const Dib image(
        JpgDecMainHGLOBAL(stream, static_cast<int32_t>(size), nullptr, nullptr, &error));
    EXPECT_EQ(image != nullptr, error == 0);
    return error;
}

// The last result: of the final call, or an earlier failure.
int32_t decode_byte_by_byte(const Bytes& stream) {
    const Dib piece(GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, 1));
    auto* const byte = static_cast<uint8_t*>(GlobalLock(piece));
    HGLOBAL image = nullptr;
    *byte = stream[0];
    int32_t result = JpgDecFirst(piece, 1, &image);
    for (size_t i = 1; i < stream.size() && result == 0; ++i) {
        *byte = stream[i];
        result = JpgDecNext(piece, 1, 0, &image);
    }
    if (result == 0)
        result = JpgDecNext(nullptr, 0, 1, &image);
    GlobalUnlock(piece);
    Dib{image};
    return result;
}

TEST_P(HostileStreams, AnswerAsStated) {
    Lockstep lockstep;
    for (const int scale : {1, 3}) {
        const Bytes stream = GetParam().make(scale);
        EXPECT_EQ(decode_whole(block_of(stream), stream.size()), GetParam().status);
        lockstep.run({stream});
        if (stream.size() > 300000)
            continue;
        for (const size_t piece : {1, 300, 600, 5000}) {
            std::vector<size_t> places;
            for (size_t at = piece; at < std::min(stream.size(), 40 * piece + 1000); at += piece)
                places.push_back(at);
            lockstep.run(cut(stream, places));
        }
    }
}

// Holds the time for a stream against that for one of 8 times the size, which is to be less than a
// quarter of what a square would make of it, plus a moment. A busy machine is given some attempts.
template<typename TimeOf>
void expect_proportion(TimeOf time_of, int scale) {
    constexpr int growth = 8;
    constexpr double most = growth * growth / 4.0, moment = 1;
    double less = 0, more = 1e9;
    for (int attempts = 8; attempts != 0 && more >= less * most + moment; --attempts) {
        less = time_of(scale);
        more = time_of(scale * growth);
    }
    EXPECT_LT(more, less * most + moment);
}

TEST_P(HostileStreams, TakeTimeInProportionToTheirSize) {
    expect_proportion(
        [](int scale) {
            const Bytes stream = GetParam().make(scale);
            const Dib block = block_of(stream);
            return milliseconds_of([&] { decode_whole(block, stream.size()); });
        },
        32);
}

TEST_P(HostileStreams, TakeTimeInProportionByteByByte) {
    expect_proportion(
        [](int scale) {
            const Bytes stream = GetParam().make(scale);
            return milliseconds_of([&] { decode_byte_by_byte(stream); });
        },
        4);
}

INSTANTIATE_TEST_SUITE_P(Jpeg, HostileStreams, testing::ValuesIn(hostile_streams()),
                         [](const auto& instance) { return instance.param.name; });

// Bands that end for many blocks, scans without any, odd bands, and components in any order, often
// more than once: most MCUs of such a scan are empty, and the right ones must be.
Bytes progressive_of_empty_bands(Random& random) {
    constexpr int sizes[] = {1, 8, 9, 15, 16, 17, 33, 64, 100};
    static constexpr uint8_t layouts[][2] = {{0x11, 0x11}, {0x21, 0x11}, {0x12, 0x11},
                                             {0x22, 0x11}, {0x22, 0x21}, {0x22, 0x12}};
    const auto size = [&] { return static_cast<uint8_t>(random.pick(sizes)); };
    Bytes stream{0xFF, 0xD8};
    // 0: end of block; 10: of up to 3 blocks; 110: of up to 31; 1110: of up to 1023; 11110: a
    // value.
    const CodeBook book({1, 1, 1, 1, 1}, {0x00, 0x10, 0x40, 0x90, 0x01});
    Bytes content;
    for (const uint8_t number : {0x00, 0x10}) {
        content.push_back(number);
        content.insert(content.end(), book.counts.begin(), book.counts.end());
        for (const uint8_t symbol : book.symbols)
            content.push_back(number == 0 ? symbol & 15 : symbol);
    }
    add_segment(stream, 0xC4, content);
    const auto& [luma, chroma] = random.pick(layouts);
    const bool grey = random.once_in(4);
    content = {8, 0, size(), 0, size()};
    content.insert(content.end(), {static_cast<uint8_t>(grey ? 1 : 3), 1,
                                   grey ? uint8_t{0x11} : luma, 0, 2, chroma, 0, 3, chroma, 0});
    if (grey)
        content.resize(9);
    add_segment(stream, 0xC2, content);
    for (int scans = random.between(1, 6); scans != 0; --scans) {
        const bool proper = random.once_in(2);
        const int components = proper ? 1 : random.between(0, 4);
        content = {static_cast<uint8_t>(components)};
        for (int i = 0; i < components; ++i)
            content.insert(content.end(), {static_cast<uint8_t>(random.between(0, 3)), 0});
        const int first = random.between(proper ? 1 : 0, 6);
        content.insert(content.end(),
                       {static_cast<uint8_t>(first),
                        static_cast<uint8_t>(random.between(proper ? first : 0, 8)), 0});
        add_segment(stream, 0xDA, content);
        stream.push_back(0x55);
        for (int bytes = random.between(0, 60); bytes != 0; --bytes) {
            stream.push_back(random.byte());
            if (stream.back() == 0xFF)
                stream.push_back(random.once_in(9) ? 0xD3 : 0);
        }
    }
    stream.insert(stream.end(), {0xFF, 0xD9});
    return stream;
}

TEST(EmptyBands, LeaveTheRightBlocksEmpty) {
    Lockstep lockstep;
    Random random(8);
    int finished = 0;
    for (int i = 0; i < 3000 && !testing::Test::HasFailure(); ++i) {
        SCOPED_TRACE(i);
        const Bytes stream = progressive_of_empty_bands(random);
        finished += lockstep.run({stream}) == 1;
        if (i % 8 == 0)
            lockstep.run(cut(stream, {stream.size() / 2}));
    }
    EXPECT_GT(finished, 300);
}

// A picture like a photograph: 4:2:0, about 3 bits a pixel.
TEST(PiecesOfAByte, CostAtMostTwiceTheWholeStream) {
    Random random(3);
    Dib picture = make_dib({.width = 512, .height = 512, .bits = 24});
    for (int y = 0; y < 512; ++y)
        for (int x = 0; x < 512; ++x)
            picture.set_pixel(x, y,
                              0x010101u * static_cast<uint32_t>(64 + (x ^ y) % 128) +
                                  (random.next() & 0x0F0F0F));
    uint32_t size = 0;
    int32_t status = 1;
    const Dib block(JpgCodMainHGLOBAL(picture, 0, 0, 512, 512, &size, &status));
    ASSERT_EQ(status, 0);
    const auto* const bytes = static_cast<const uint8_t*>(GlobalLock(block));
    const Bytes stream(bytes, bytes + size);
    GlobalUnlock(block);
    ASSERT_EQ(decode_byte_by_byte(stream), 1);
#if !defined(_WIN32) && !defined(__SANITIZE_ADDRESS__)
    constexpr double most = 2;
#else
    constexpr double most = 40; // most of it is the locking of the pieces
#endif
    double whole = 0, pieces = 1e9;
    for (int attempts = 8; attempts != 0 && pieces >= most * whole; --attempts) {
        whole = milliseconds_of([&] { decode_whole(block, size); }, 5);
        pieces = milliseconds_of([&] { decode_byte_by_byte(stream); }, 5);
    }
    RecordProperty("percent", static_cast<int>(100 * pieces / whole));
    EXPECT_LT(pieces, most * whole);
}

} // namespace
