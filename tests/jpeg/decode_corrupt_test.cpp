// Truncated, altered and random streams: whatever the plain decoder answers, the library answers.
#include "jpeg/decode_lockstep.hpp"

using namespace kirvo_test;

namespace {

constexpr int variants = 84000;

void alter(Bytes& stream, Random& random) {
    if (stream.empty())
        return;
    const auto anywhere = [&] {
        return static_cast<size_t>(random.between(0, static_cast<int32_t>(stream.size()) - 1));
    };
    switch (random.between(0, 6)) {
    case 0:
        stream.resize(anywhere() + 1);
        break;
    case 1:
        stream[anywhere()] ^= static_cast<uint8_t>(1 << random.between(0, 7));
        break;
    case 2:
        stream[anywhere()] = random.byte();
        break;
    case 3:
        stream[anywhere()] = 0xFF;
        break;
    case 4: { // a marker
        const size_t at = anywhere();
        stream[at] = 0xFF;
        if (at + 1 < stream.size())
            stream[at + 1] = static_cast<uint8_t>(random.between(0xC0, 0xFE));
        break;
    }
    case 5:
        stream.erase(stream.begin() + static_cast<std::ptrdiff_t>(anywhere()));
        break;
    default:
        stream.insert(stream.begin() + static_cast<std::ptrdiff_t>(anywhere()), random.byte());
    }
}

TEST(DecodeCorrupt, AlteredStreams) {
    Lockstep both;
    both.watched = false;
    Random random(200);
    Bytes original;
    for (int i = 0; i < variants && !testing::Test::HasFailure(); ++i) {
        SCOPED_TRACE(testing::Message() << "variant " << i);
        if (i % 100 == 0)
            original =
                build_jpeg(random_plan(random, i % 1000 == 0 ? 64 : 24, i % 300 == 0), random);
        Bytes stream = original;
        for (int edits = random.between(1, 4); edits > 0; --edits)
            alter(stream, random);
        if (random.once_in(4))
            both.run(cut(stream, {static_cast<size_t>(
                                     random.between(0, static_cast<int32_t>(stream.size())))}),
                     random.once_in(2));
        else
            both.run({stream});
    }
}

TEST(DecodeCorrupt, RandomBytesAfterASoundHeader) {
    Lockstep both;
    both.watched = false;
    Random random(201);
    for (int i = 0; i < variants / 10 && !testing::Test::HasFailure(); ++i) {
        SCOPED_TRACE(testing::Message() << "variant " << i);
        Bytes stream = build_jpeg(random_plan(random, 24, i % 3 == 0), random);
        size_t at = 2;
        while (stream[at + 1] != 0xDA)
            at += 2 + stream[at + 2] * 256u + stream[at + 3];
        stream.resize(at + 2 + stream[at + 3]);
        for (int n = random.between(0, 1500); n > 0; --n)
            stream.push_back(random.once_in(60) ? 0xFF : random.byte());
        both.run({stream});
    }
}

TEST(DecodeCorrupt, RandomBytes) {
    Lockstep both;
    both.watched = false;
    Random random(202);
    for (int i = 0; i < variants / 10; ++i) {
        Bytes stream{0xFF, 0xD8};
        for (int n = random.between(0, 200); n > 0; --n)
            stream.push_back(random.once_in(4) ? 0xFF : random.byte());
        both.run({stream});
    }
}

} // namespace
