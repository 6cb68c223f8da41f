// Marker segments, what they make of the decoder's state, and what a stream says of itself.
#include "jpeg/decode_lockstep.hpp"
#include "support/temp_file.hpp"

using namespace kirvo_test;

namespace {

constexpr uint8_t SOI = 0xD8, EOI = 0xD9, SOS = 0xDA, DQT = 0xDB, DNL = 0xDC, DRI = 0xDD,
                  SOF0 = 0xC0, DHT = 0xC4, APP0 = 0xE0, COM = 0xFE;

struct Segment {
    uint8_t marker;
    Bytes content;
};

Bytes join(const std::vector<Segment>& segments, const Bytes& data = {}) {
    Bytes stream{0xFF, SOI};
    for (const Segment& segment : segments)
        add_segment(stream, segment.marker, segment.content);
    stream.insert(stream.end(), data.begin(), data.end());
    return stream;
}

Bytes quantisation(int slot, int value) {
    Bytes content(65, static_cast<uint8_t>(value));
    content[0] = static_cast<uint8_t>(slot);
    return content;
}

// One code, 0, for one symbol.
Bytes one_code(int class_and_number, int symbol) {
    Bytes content(17);
    content[0] = static_cast<uint8_t>(class_and_number);
    content[1] = 1;
    content.push_back(static_cast<uint8_t>(symbol));
    return content;
}

Bytes frame(int width, int height, const Bytes& components) {
    Bytes content{8,
                  static_cast<uint8_t>(height >> 8),
                  static_cast<uint8_t>(height),
                  static_cast<uint8_t>(width >> 8),
                  static_cast<uint8_t>(width),
                  static_cast<uint8_t>(components.size() / 3)};
    content.insert(content.end(), components.begin(), components.end());
    return content;
}

const Bytes grey_component{1, 0x11, 0};
const Bytes grey_scan{1, 1, 0x00, 0, 63, 0};

// 8 x 8 grey: a DC difference of 6 bits, no AC. The data 0 101000 0 is the difference 40.
std::vector<Segment> grey_segments(int width = 8, int height = 8) {
    return {{DQT, quantisation(0, 8)},
            {SOF0, frame(width, height, grey_component)},
            {DHT, one_code(0x00, 6)},
            {DHT, one_code(0x10, 0)},
            {SOS, grey_scan}};
}
const Bytes grey_data{0x50, 0xFF, EOI};

struct Result {
    Dib image;
    int32_t error;
};

Result decode(const Bytes& stream) {
    uint32_t width = 0, height = 0;
    int32_t error = 1;
    const Dib data = block_of(stream);
    Dib image(
        JpgDecMainHGLOBAL(data, static_cast<int32_t>(stream.size()), &width, &height, &error));
    EXPECT_EQ(error == 0, image != nullptr);
    EXPECT_TRUE(is_unlocked(data));
    return {std::move(image), error};
}

// What First answers to a stream; the decode is abandoned then.
int32_t first(const Bytes& stream) {
    HGLOBAL image = nullptr;
    const int32_t result = decode_first(stream, &image);
    if (result == 0) {
        EXPECT_EQ(decode_next({}, -1, &image), -16);
    }
    return result;
}

// Both ways in which a fault of the header is reported.
void expect_fault(const Bytes& stream, int32_t code) {
    EXPECT_EQ(first(stream), code);
    HGLOBAL image = nullptr;
    const Bytes start(stream.begin(), stream.begin() + 1);
    const Bytes rest(stream.begin() + 1, stream.end());
    EXPECT_EQ(decode_first(start, &image), 0);
    EXPECT_EQ(decode_next(rest, 1, &image), -13);
}

std::vector<Segment> with(std::vector<Segment> segments, size_t at, const Segment& changed) {
    segments[at] = changed;
    return segments;
}

std::vector<Segment> before(std::vector<Segment> segments, const Segment& added) {
    segments.insert(segments.begin(), added);
    return segments;
}

TEST(DecodeHeaders, GreyLevelsByHand) {
    const Result result = decode(join(grey_segments(), grey_data));
    ASSERT_EQ(result.error, 0);
    for (int i = 0; i < 64; ++i)
        EXPECT_EQ(result.image.pixel(i % 8, i / 8), 0xA8A8A8u); // 128 + 40 * 8 / 8
}

// Y 0, Cb 40, Cr -40.
TEST(DecodeHeaders, ColoursByHand) {
    const Result result = decode(join({{DQT, quantisation(0, 8)},
                                       {SOF0, frame(1, 1, {1, 0x11, 0, 2, 0x11, 0, 3, 0x11, 0})},
                                       {DHT, one_code(0x00, 0)},
                                       {DHT, one_code(0x10, 0)},
                                       {DHT, one_code(0x01, 6)},
                                       {DHT, one_code(0x11, 0)},
                                       {SOS, {3, 1, 0x00, 2, 0x11, 3, 0x11, 0, 63, 0}}},
                                      // 0 0, 0 101000 0, 0 010111 0
                                      {0b00010100, 0b00001011, 0b10111111, 0xFF, EOI}));
    ASSERT_EQ(result.error, 0);
    // 128 + floor(1.77 * 40), floor((-0.3437 + 0.7143) * 40), floor(-1.402 * 40)
    EXPECT_EQ(result.image.pixel(0, 0), (128u - 57) << 16 | (128u + 14) << 8 | (128u + 70));
}

TEST(DecodeHeaders, ImageHeader) {
    const Result result = decode(join(grey_segments(5, 3), grey_data));
    ASSERT_EQ(result.error, 0);
    const BITMAPINFOHEADER header = result.image.header();
    EXPECT_EQ(header.biSize, 40u);
    EXPECT_EQ(header.biWidth, 5);
    EXPECT_EQ(header.biHeight, 3);
    EXPECT_EQ(header.biPlanes, 1);
    EXPECT_EQ(header.biBitCount, 24);
    EXPECT_EQ(header.biCompression, 0u);
    EXPECT_EQ(header.biSizeImage, 0u);
    EXPECT_EQ(header.biXPelsPerMeter, 0);
    EXPECT_EQ(header.biYPelsPerMeter, 0);
    EXPECT_EQ(header.biClrUsed, 0u);
    EXPECT_EQ(header.biClrImportant, 0u);
    EXPECT_GE(GlobalSize(result.image), 40u + 16 * 3);
    const Bytes rows = result.image.rows();
    EXPECT_EQ(rows[14], 0xA8);
    EXPECT_EQ(rows[15], 0); // padding
    EXPECT_TRUE(is_unlocked(result.image));
}

TEST(DecodeHeaders, WhatStandsBeforeTheStartOfImageIsSkipped) {
    Lockstep both;
    Bytes stream = join(grey_segments(), grey_data);
    const Bytes garbage{0x00, 0xFF, 0xFF, 0x00, 0xD8, 0x12, 0xFF, 0xC0, 0xFF};
    stream.insert(stream.begin(), garbage.begin(), garbage.end());
    for (size_t at = 0; at <= stream.size(); ++at)
        EXPECT_EQ(both.run(cut(stream, {at})), 1) << at;
}

TEST(DecodeHeaders, NoStartOfImage) {
    const Bytes stream{0xFF, 0xC0, 0xD8, 0xFF, 0x00, 0xD8};
    EXPECT_EQ(decode(stream).error, -10);
    HGLOBAL image = nullptr;
    EXPECT_EQ(decode_first(stream, &image), 0);
    EXPECT_EQ(decode_next({0x01}, 0, &image), 0);
    EXPECT_EQ(decode_next({0x02}, 2, &image), 0); // only 1 says that the stream has ended
    EXPECT_EQ(decode_next({}, 1, &image), -10);
    EXPECT_EQ(decode({}).error, -10);
}

TEST(DecodeHeaders, EndOfImageBeforeTheFirstScan) {
    expect_fault({0xFF, SOI, 0xFF, EOI}, -12);
    EXPECT_EQ(decode({0xFF, SOI, 0xFF, EOI}).error, -12);
    EXPECT_EQ(decode({0xFF, SOI}).error, -13);
}

TEST(DecodeHeaders, OtherFrameTypes) {
    for (int type : {0xC1, 0xC3, 0xC5, 0xC6, 0xC7, 0xC9, 0xCA, 0xCB, 0xCD, 0xCE, 0xCF})
        expect_fault(join(with(grey_segments(), 1,
                               {static_cast<uint8_t>(type), frame(8, 8, grey_component)})),
                     -19);
}

TEST(DecodeHeaders, MarkersWithoutMeaningAreIgnored) {
    for (int marker = 0xC8; marker < 0xFE; ++marker) {
        const bool ignored = marker == 0xC8 || marker == 0xCC ||
                             (marker >= 0xD0 && marker <= 0xD8) || marker == 0xDE ||
                             marker == 0xDF || marker >= 0xF0;
        if (!ignored)
            continue;
        Bytes stream = join(grey_segments(), grey_data);
        const Bytes extra{0xFF, static_cast<uint8_t>(marker), 0x12, 0x34};
        stream.insert(stream.begin() + 2, extra.begin(), extra.end());
        EXPECT_EQ(decode(stream).error, 0) << marker;
    }
}

TEST(DecodeHeaders, FillBytesAndStrayBytesBeforeMarkers) {
    Lockstep both;
    Bytes stream = join(grey_segments(), grey_data);
    const Bytes extra{0xE0, 0x00, 0xC4, 0xFF, 0x01, 0xDA, 0xFF, 0xFF, 0xFF};
    stream.insert(stream.begin() + 2, extra.begin(), extra.end());
    for (size_t at = 0; at <= stream.size(); ++at)
        EXPECT_EQ(both.run(cut(stream, {at})), 1) << at;
}

TEST(DecodeHeaders, SkippedSegments) {
    EXPECT_EQ(decode(join(before(before(grey_segments(), {APP0, {1, 2, 3}}), {0xEF, {0xFF, 0xDA}}),
                          grey_data))
                  .error,
              0);
    EXPECT_EQ(decode(join(before(grey_segments(), {DNL, {0, 8}}), grey_data)).error, 0);
}

TEST(DecodeHeaders, EmptySegmentsAreFaultsButComments) {
    for (uint8_t marker : {SOF0, DHT, SOS, DQT, DNL, DRI, APP0})
        expect_fault(join(before(grey_segments(), {marker, {}})), -13);
    const Result result = decode(join(before(grey_segments(), {COM, {}}), grey_data));
    EXPECT_EQ(result.error, 0);
    EXPECT_EQ(JpgDecCommentCounts(), 0);
}

TEST(DecodeHeaders, LengthsBelowTwo) {
    for (uint8_t marker : {SOF0, DHT, SOS, DQT, APP0, COM})
        for (uint8_t length : {0, 1})
            expect_fault({0xFF, SOI, 0xFF, marker, 0, length, 1, 2, 3, 4, 5, 6}, -13);
}

TEST(DecodeHeaders, FramesThatAreRefused) {
    const auto refused = [](const Bytes& content) {
        expect_fault(join(with(grey_segments(), 1, {SOF0, content}), grey_data), -13);
    };
    Bytes twelve_bits = frame(8, 8, grey_component);
    twelve_bits[0] = 12;
    refused(twelve_bits);
    refused(frame(8, 8, {1, 0x11, 0, 2, 0x11, 0}));
    refused(frame(8, 8, {1, 0x11, 0, 2, 0x11, 0, 3, 0x11, 0, 4, 0x11, 0}));
    refused(frame(8, 8, {}));
    refused(frame(8, 8, {0, 0x11, 0}));
    refused(frame(8, 8, {4, 0x11, 0}));
    refused(frame(8, 8, {1, 0x11, 4}));
    refused(frame(8, 8, {1, 0x22, 0}));
    refused(frame(8, 8, {0, 0x11, 0, 1, 0x11, 0, 2, 0x11, 0}));
    refused(frame(8, 8, {1, 0x11, 0, 2, 0x11, 0, 4, 0x11, 0}));
    refused(frame(8, 8, {1, 0x11, 0, 0, 0x11, 0, 3, 0x11, 0}));
    refused(frame(8, 8, {1, 0x11, 0, 2, 0x11, 0, 3, 0x11, 4}));
    Bytes cut_short = frame(8, 8, grey_component);
    for (size_t size : {1u, 5u, 6u, 8u}) {
        cut_short = frame(8, 8, grey_component);
        cut_short.resize(size);
        refused(cut_short);
    }
}

TEST(DecodeHeaders, SamplingsThatAreAccepted) {
    for (int first_byte = 0; first_byte < 256; ++first_byte)
        for (int second : {0x11, 0x21, 0x12, 0x22, 0x41})
            for (int third : {0x11, 0x21, 0x12}) {
                const bool accepted =
                    second == third &&
                    ((second == 0x11 && (first_byte == 0x11 || first_byte == 0x21 ||
                                         first_byte == 0x12 || first_byte == 0x22)) ||
                     (first_byte == 0x22 && (second == 0x21 || second == 0x12)));
                const Bytes content =
                    frame(8, 8,
                          {1, static_cast<uint8_t>(first_byte), 0, 2, static_cast<uint8_t>(second),
                           0, 3, static_cast<uint8_t>(third), 0});
                EXPECT_EQ(first(join({{SOF0, content}})), accepted ? 0 : -13)
                    << first_byte << " " << second << " " << third;
            }
}

TEST(DecodeHeaders, ComponentIdsNeedNotBeInOrder) {
    Lockstep both;
    Random random(300);
    JpegPlan plan;
    plan.ids = {3, 1, 1};
    plan.selectors = {2, 0, 3};
    EXPECT_EQ(both.run({build_jpeg(plan, random)}), 1);
}

TEST(DecodeHeaders, ZeroSizes) {
    for (const auto& [width, height] : {std::pair{0, 8}, {8, 0}, {0, 0}})
        EXPECT_EQ(decode(join(grey_segments(width, height), grey_data)).error, -13);
}

TEST(DecodeHeaders, ImagesThatCannotBeMade) {
    EXPECT_EQ(decode(join(grey_segments(65535, 65535), grey_data)).error, -2);
}

TEST(DecodeHeaders, AScanWithoutAFrame) {
    EXPECT_EQ(decode(join({{SOS, grey_scan}}, grey_data)).error, -13);
}

TEST(DecodeHeaders, QuantisationTablesThatAreRefused) {
    const auto refused = [](const Bytes& content) {
        expect_fault(join(with(grey_segments(), 0, {DQT, content}), grey_data), -13);
    };
    Bytes content = quantisation(0x10, 1); // 16 bits
    refused(content);
    refused(quantisation(4, 1));
    content = quantisation(0, 1);
    content.resize(64);
    refused(content);
    content = quantisation(0, 1);
    content.push_back(1); // the start of another
    refused(content);
}

TEST(DecodeHeaders, HuffmanTablesThatAreRefused) {
    const auto refused = [](const Bytes& content) {
        expect_fault(join(with(grey_segments(), 2, {DHT, content}), grey_data), -13);
    };
    refused(one_code(0x04, 6));
    refused(one_code(0x1F, 6));
    Bytes content = one_code(0, 6);
    content.resize(16);
    refused(content);
    content = one_code(0, 6);
    content.pop_back();
    refused(content);
    content = one_code(0, 6);
    content.push_back(0);
    refused(content);
    content.assign(17, 17); // 272 codes
    content[0] = 0;
    content.resize(17 + 272);
    refused(content);
}

TEST(DecodeHeaders, SeveralTablesInOneSegment) {
    Bytes slots = quantisation(1, 3);
    const Bytes slot0 = quantisation(0, 8);
    slots.insert(slots.end(), slot0.begin(), slot0.end());
    Bytes books = one_code(0x00, 6);
    const Bytes ac = one_code(0x10, 0);
    books.insert(books.end(), ac.begin(), ac.end());
    const Result result = decode(
        join({{DQT, slots}, {SOF0, frame(8, 8, grey_component)}, {DHT, books}, {SOS, grey_scan}},
             grey_data));
    ASSERT_EQ(result.error, 0);
    EXPECT_EQ(result.image.pixel(3, 3), 0xA8A8A8u);
}

// A DC table may list more than 16 codes of one length; those beyond cannot be decoded.
TEST(DecodeHeaders, TheSeventeenthDcCodeOfALength) {
    Bytes content(17);
    content[5] = 20; // codes of 5 bits, 00000 to 10011
    for (int i = 0; i < 20; ++i)
        content.push_back(6);
    const auto segments = with(grey_segments(), 2, {DHT, content});
    EXPECT_EQ(decode(join(segments, {0b01111101, 0b00001111, 0xFF, EOI})).error, 0);
    EXPECT_EQ(decode(join(segments, {0b10000101, 0b00001111, 0xFF, EOI})).error, -14);
}

TEST(DecodeHeaders, ScansThatAreRefused) {
    for (const Bytes& content :
         {Bytes{1, 4, 0x00, 0, 63, 0}, Bytes{1, 1, 0x40, 0, 63, 0}, Bytes{1, 1, 0x04, 0, 63, 0},
          Bytes{9, 1, 0x00, 0, 63, 0}, Bytes{0}, Bytes{0, 1}})
        expect_fault(join(with(grey_segments(), 4, {SOS, content}), grey_data), -13);
}

// The spectral selection stands at the end of the segment, however many components are listed.
TEST(DecodeHeaders, ScanParametersAreTheLastThreeBytes) {
    const auto segments =
        with(grey_segments(), 4, {SOS, {1, 1, 0x00, 0x77, 0x88, 0x99, 0x03, 0, 63, 0}});
    EXPECT_EQ(decode(join(segments, grey_data)).error, 0);
}

TEST(DecodeHeaders, FaultyTablesLeaveThoseBeforeThem) {
    Bytes content = quantisation(2, 77);
    const Bytes bad = quantisation(4, 1);
    content.insert(content.end(), bad.begin(), bad.end());
    EXPECT_EQ(first(join({{DQT, content}})), -13);
    EXPECT_EQ(decode(join(with(grey_segments(), 0, {DQT, quantisation(0, 8)}), grey_data)).error,
              0);
    uint16_t table[64];
    EXPECT_EQ(JpgDecGetQtableEx(2, table), -3); // not by this stream
}

TEST(DecodeHeaders, Comments) {
    std::vector<Segment> segments = grey_segments();
    for (const char* text : {"six", "five", "four", "three", "two", "one"})
        segments = before(segments, {COM, Bytes(text, text + std::strlen(text))});
    segments = before(segments, {COM, {}});
    const Bytes stream = join(segments, grey_data);

    JpgDecGetCommentEnable(1);
    EXPECT_EQ(decode(stream).error, 0);
    EXPECT_EQ(JpgDecCommentCounts(), 5);
    const char* texts[] = {"one", "two", "three", "four", "five"};
    for (int i = 0; i < 5; ++i) {
        HGLOBAL comment = JpgDecGetComment(i);
        ASSERT_NE(comment, nullptr);
        EXPECT_STREQ(static_cast<char*>(GlobalLock(comment)), texts[i]);
        GlobalUnlock(comment);
        EXPECT_GE(GlobalSize(comment), std::strlen(texts[i]) + 1);
    }
    EXPECT_EQ(JpgDecGetComment(-1), nullptr);
    EXPECT_EQ(JpgDecGetComment(5), nullptr);
    JpgDecGetCommentEnable(2);
    EXPECT_EQ(JpgDecGetComment(0), nullptr); // retrieval is off
    JpgDecGetCommentEnable(1);
    EXPECT_NE(JpgDecGetComment(0), nullptr);
    JpgDecCommentFree();
    EXPECT_EQ(JpgDecCommentCounts(), 0);
    EXPECT_EQ(JpgDecGetComment(0), nullptr);

    JpgDecGetCommentEnable(0);
    EXPECT_EQ(decode(stream).error, 0);
    EXPECT_EQ(JpgDecCommentCounts(), 5); // counted only
    JpgDecGetCommentEnable(1);
    EXPECT_EQ(JpgDecGetComment(0), nullptr);
    JpgDecGetCommentEnable(0);
    EXPECT_EQ(decode(join(grey_segments(), grey_data)).error, 0);
    EXPECT_EQ(JpgDecCommentCounts(), 0); // of the last stream
}

TEST(DecodeHeaders, QuantisationTablesAreGivenRowByRow) {
    Bytes content(65);
    for (int k = 0; k < 64; ++k)
        content[static_cast<size_t>(k + 1)] = static_cast<uint8_t>(100 + k);
    content[0] = 1;
    std::vector<Segment> segments = before(grey_segments(), {DQT, content});
    EXPECT_EQ(decode(join(segments, grey_data)).error, 0);
    uint16_t luma[64] = {}, chroma[64] = {}, table[64] = {};
    EXPECT_EQ(JpgDecGetQtable(luma, chroma), 1);
    EXPECT_EQ(luma[0], 8);
    EXPECT_EQ(luma[63], 8);
    const int first_row[] = {100, 101, 105, 106, 114, 115, 127, 128};
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(chroma[i], first_row[i]);
    EXPECT_EQ(chroma[8], 102);
    EXPECT_EQ(chroma[63], 163);
    EXPECT_EQ(JpgDecGetQtable(nullptr, nullptr), 1);
    EXPECT_EQ(JpgDecGetQtableEx(1, table), 0);
    EXPECT_EQ(std::memcmp(table, chroma, sizeof table), 0);
    EXPECT_EQ(JpgDecGetQtableEx(0, table), 0);
    EXPECT_EQ(JpgDecGetQtableEx(2, table), -3);
    EXPECT_EQ(JpgDecGetQtableEx(3, table), -3);
    EXPECT_EQ(JpgDecGetQtableEx(-1, table), -1);
    EXPECT_EQ(JpgDecGetQtableEx(4, table), -1);
    // A stream without tables uses those of the last one.
    std::vector<Segment> bare = grey_segments();
    bare.erase(bare.begin());
    const Result result = decode(join(bare, grey_data));
    ASSERT_EQ(result.error, 0);
    EXPECT_EQ(result.image.pixel(0, 0), 0xA8A8A8u);
    EXPECT_EQ(JpgDecGetQtableEx(0, table), -3);
}

TEST(DecodeHeaders, UnexpectedMarkers) {
    uint32_t position = 0;
    const Bytes header = join(grey_segments(64, 64));
    Bytes stream = header;
    for (uint8_t byte : {0x50, 0x50, 0xFF, 0x00, 0xFF, 0x00, 0xFF, 0xC4})
        stream.push_back(byte);
    // 0xFF 0x00 is the byte 0xFF: after 16 ones the marker does not matter.
    EXPECT_EQ(decode(stream).error, -14);
    stream = header;
    for (uint8_t byte : {0x50, 0x50, 0xFF, 0xFF, 0xC4, 0x00})
        stream.push_back(byte);
    EXPECT_EQ(decode(stream).error, -11);
    EXPECT_EQ(JpgDecGetLastUexMarker(&position), 0xC4);
    EXPECT_EQ(position, header.size() + 5);
    EXPECT_EQ(JpgDecGetLastUexMarker(nullptr), 0xC4);
    // At the very start no marker may stand, not even a restart marker.
    stream = header;
    for (uint8_t byte : {0xFF, 0xFF, 0xD3, 0x50})
        stream.push_back(byte);
    EXPECT_EQ(decode(stream).error, -11);
    EXPECT_EQ(JpgDecGetLastUexMarker(&position), 0xD3);
    EXPECT_EQ(position, header.size() + 3);
    // A good decode does not clear the record.
    EXPECT_EQ(decode(join(grey_segments(), grey_data)).error, 0);
    EXPECT_EQ(JpgDecGetLastUexMarker(nullptr), 0xD3);
}

TEST(DecodeHeaders, RestartMarkersNeedNoInterval) {
    // Two blocks of +40 each: without the marker the second one is at 80.
    const Result without = decode(join(grey_segments(16, 8), {0x50, 0x50, 0xFF, EOI}));
    ASSERT_EQ(without.error, 0);
    EXPECT_EQ(without.image.pixel(15, 0), 0xD0D0D0u);
    const Result restarted =
        decode(join(grey_segments(16, 8), {0x50, 0xFF, 0xD5, 0x50, 0xFF, EOI}));
    ASSERT_EQ(restarted.error, 0);
    EXPECT_EQ(restarted.image.pixel(15, 0), 0xA8A8A8u);
}

// The last byte is read again and again.
TEST(DecodeHeaders, DataThatEndsEarly) {
    const Result result = decode(join(grey_segments(24, 8), {0x50}));
    ASSERT_EQ(result.error, 0);
    EXPECT_EQ(result.image.pixel(0, 0), 0xA8A8A8u);
    EXPECT_EQ(result.image.pixel(8, 0), 0xD0D0D0u);
    EXPECT_EQ(result.image.pixel(16, 0), 0xF8F8F8u);
}

TEST(DecodeHeaders, StreamInformation) {
    Random random(301);
    const int luma_blocks[] = {1, 1, 2, 2, 4, 4, 4};
    for (Sampling sampling : all_samplings) {
        JpegPlan plan;
        plan.sampling = sampling;
        plan.width = 300;
        plan.height = 20;
        plan.restart_every = 259;
        plan.comments = {"a", "b"};
        const Bytes stream = build_jpeg(plan, random);
        const TempFile file(".jpg", stream);
        JpgDecSpec spec = {};
        EXPECT_EQ(JpgDecGetSpecEx(file.name(), &spec), 0);
        EXPECT_EQ(spec.width, 300u);
        EXPECT_EQ(spec.height, 20u);
        EXPECT_EQ(spec.components, sampling == Sampling::grey ? 1u : 3u);
        EXPECT_EQ(spec.lumaBlocks, static_cast<uint32_t>(luma_blocks[static_cast<int>(sampling)]));
        EXPECT_EQ(spec.restartInterval, 259u);
        EXPECT_EQ(spec.commentCount, 2u);
        EXPECT_EQ(spec.fileSize, stream.size());
        uint32_t width = 0, height = 0, components = 0, blocks = 0;
        EXPECT_EQ(JpgDecGetSpec(file.name(), &width, &height, &components, &blocks), 0);
        EXPECT_EQ(width, spec.width);
        EXPECT_EQ(height, spec.height);
        EXPECT_EQ(components, spec.components);
        EXPECT_EQ(blocks, spec.lumaBlocks);
        EXPECT_EQ(JpgDecGetSpecEx(file.name(), nullptr), 0);
    }
}

TEST(DecodeHeaders, StreamInformationCountsFiveCommentsAtMostAndStoresNone) {
    Random random(302);
    JpegPlan plan;
    plan.comments = {"1", "2", "", "3", "4", "5", "6"};
    const TempFile file(".jpg", build_jpeg(plan, random));
    JpgDecGetCommentEnable(1);
    JpgDecSpec spec = {};
    EXPECT_EQ(JpgDecGetSpecEx(file.name(), &spec), 0);
    EXPECT_EQ(spec.commentCount, 5u);
    EXPECT_EQ(spec.restartInterval, 0u);
    EXPECT_EQ(JpgDecGetComment(0), nullptr);
    JpgDecGetCommentEnable(0);
}

TEST(DecodeHeaders, StreamInformationFaults) {
    JpgDecSpec spec;
    std::memset(&spec, 0x5A, sizeof spec);
    const JpgDecSpec untouched = spec;
    const auto status = [&](const Bytes& stream) {
        const TempFile file(".jpg", stream);
        return JpgDecGetSpecEx(file.name(), &spec);
    };
    EXPECT_EQ(JpgDecGetSpecEx("no such file.jpg", &spec), -4);
    EXPECT_EQ(JpgDecGetSpecEx(nullptr, &spec), -4);
    EXPECT_EQ(status({}), -10);
    EXPECT_EQ(status({1, 2, 3}), -10);
    EXPECT_EQ(status({0xFF, SOI}), -13);
    EXPECT_EQ(status({0xFF, SOI, 0xFF, EOI}), -13);
    EXPECT_EQ(status(join(with(grey_segments(), 1, {0xC1, frame(8, 8, grey_component)}))), -13);
    Bytes cut_short = join(grey_segments());
    cut_short.pop_back();
    EXPECT_EQ(status(cut_short), -13);
    EXPECT_EQ(std::memcmp(&spec, &untouched, sizeof spec), 0);
    uint32_t width = 7, height = 7, components = 7, blocks = 7;
    EXPECT_EQ(JpgDecGetSpec("no such file.jpg", &width, &height, &components, &blocks), -4);
    EXPECT_EQ(width + height + components + blocks, 28u);
    EXPECT_EQ(status(join(grey_segments())), 0);
}

} // namespace
