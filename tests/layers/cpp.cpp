// What include/kirvo.hpp promises, by plain assertions, so that every compiler and standard builds it.
#include <kirvo.hpp>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <functional>
#include <thread>
#include <type_traits>

namespace fs = std::filesystem;
using kirvo::Image;

#if __cplusplus >= 202002L
#define PHOTO fs::path(u8"写真 ü.bmp")
#else
#define PHOTO fs::u8path("写真 ü.bmp")
#endif

static_assert(std::is_nothrow_move_constructible_v<Image> && !std::is_copy_constructible_v<Image>);
static_assert(std::is_same_v<decltype(std::declval<const Image&>().rows()), kirvo::ConstRows>);

static int failures = 0;

#define EXPECT(condition)                                                                          \
    do {                                                                                           \
        if (!(condition)) {                                                                        \
            std::printf("line %d: not %s\n", __LINE__, #condition);                                \
            ++failures;                                                                            \
        }                                                                                          \
    } while (0)

template<typename Call>
static kirvo::Error failure_of(const Call& call) {
    try {
        call();
    } catch (const kirvo::Error& error) {
        return error;
    }
    return {0, "nothing was thrown"};
}

static bool has(const std::string& text, const char* part) {
    return text.find(part) != std::string::npos;
}

static Image striped(int32_t width, int32_t height) {
    Image image(width, height);
    int32_t y = 0;
    for (const kirvo::Row row : image.rows()) {
        for (size_t i = 0; i < row.size(); ++i)
            row[i] = static_cast<uint8_t>(i * 7 + static_cast<size_t>(y) * 13);
        ++y;
    }
    return image;
}

static void pixels_are_seen_from_the_top() {
    Image image(3, 2);
    image.rows()[0][0] = 10; // blue of the top left pixel
    image.rows()[1][8] = 30; // red of the bottom right pixel
    EXPECT(image.width() == 3 && image.height() == 2 && image.bits() == 24);
    EXPECT(image.get_pixel(0, 0) == kirvo::rgb(0, 0, 10));
    EXPECT(image.get_pixel(2, 1) == kirvo::rgb(30, 0, 0));
    EXPECT(image.rows()[0].size() == 9);
    const kirvo::Rows rows = image.rows();
    EXPECT(rows.pixels().size() == 2 * 12); // the bottom row comes first
    EXPECT(rows.pixels()[12] == 10 && rows.pixels()[8] == 30);
    EXPECT(image.flip().get_pixel(0, 1) == kirvo::rgb(0, 0, 10));
    EXPECT(image.get_pixel(0, 0) == kirvo::rgb(0, 0, 10)); // its own is left alone
}

static void effects_take_areas_and_options() {
    const Image grey = Image::solid(4, 4, kirvo::rgb(100, 100, 100));
    const Image brighter = grey.brightness(20); // 100 + 20 * 255 / 100
    EXPECT(brighter.get_pixel(3, 3) == kirvo::rgb(151, 151, 151));
    EXPECT(grey.brightness(20, {1, 1, 2}).width() == 2);
    EXPECT(grey.brightness(20, {1, 1, 2}).height() == 3);
    const Image half = grey.negative({0, 0, 2, 4});
    EXPECT(half.get_pixel(1, 0) == kirvo::rgb(155, 155, 155));
    EXPECT(half.get_pixel(2, 0) == kirvo::rgb(100, 100, 100));
}

static void other_depths_become_24_bits_first() {
    Image palette(5, 4, 8);
    XPaletteQuad(palette.handle(), 0, kirvo::rgb(9, 8, 7));
    EXPECT(palette.sharpen().bits() == 24);
    EXPECT(palette.blur().bits() == 24);
    EXPECT(palette.crop(0, 0, 2, 2).bits() == 8);
    EXPECT(palette.exclusive_or(0).get_pixel(4, 3) == kirvo::rgb(9, 8, 7));
    EXPECT(palette.convert(32).get_pixel(0, 0) == kirvo::rgb(9, 8, 7));
    EXPECT(Image(2, 2, 1).reduce_16().bits() == 4);
    Image target(5, 4, 8);
    target.compose(palette); // 8 bits are not composed
    EXPECT(target.bits() == 24 && target.get_pixel(0, 0) == kirvo::rgb(9, 8, 7));
}

// Of one colour, which 16 bits hold exactly.
static Image plain(int bits) {
    Image image(12, 8, bits);
    if (bits == 8)
        XPaletteQuad(image.handle(), 0, kirvo::rgb(80, 160, 240));
    else
        for (int32_t y = 0; y < 8; ++y)
            image.set_line(0, 11, y, kirvo::rgb(80, 160, 240));
    return image;
}

// By what kirvo.h says of the images that each function takes.
static void depths_that_a_function_takes_stay() {
    struct Case {
        std::vector<int> depths;
        std::function<Image(Image)> call;
    };
    const std::vector<int> all = {8, 16, 24, 32}, direct = {16, 24, 32}, deep = {24, 32},
                           one = {24};
    uint8_t map[256] = {};
    const int32_t middle[9] = {0, 0, 0, 0, 1, 0, 0, 0, 0};
    const kirvo::Range any{};
    const Case cases[] = {
        {all, [](Image i) { return i.crop(1, 1, 3, 3); }},
        {direct, [](Image i) { return i.resize(6, 4); }},
        {all, [](Image i) { return i.flip(); }},
        {all, [](Image i) { return i.mirror(); }},
        {all, [](Image i) { return i.rotate_180(); }},
        {all, [](Image i) { return i.rotate_90(); }},
        {deep, [](Image i) { return i.brightness(10); }},
        {deep, [](Image i) { return i.contrast(10); }},
        {one, [](Image i) { return i.gamma(1.5); }},
        {all, [](Image i) { return i.gamma_channels(); }},
        {deep, [](Image i) { return i.tone(1, 2); }},
        {deep, [](Image i) { return i.tone_channels(); }},
        {direct, [](Image i) { return i.negative(); }},
        {one, [](Image i) { return i.monochrome(); }},
        {deep, [](Image i) { return i.half_tone(); }},
        {deep, [](Image i) { return i.swap_channels(1); }},
        {all, [&](Image i) { return i.map_channels(map); }},
        {direct, [](Image i) { return i.change_hue(0, 10); }},
        {direct, [](Image i) { return i.exclusive_or(1); }},
        {one, [](Image i) { return i.blur(); }},
        {one, [](Image i) { return i.sharpen(); }},
        {one, [](Image i) { return i.colour_edges(); }},
        {direct, [](Image i) { return i.dilate(); }},
        {direct, [](Image i) { return i.erode(); }},
        {deep, [&](Image i) { return i.keep_channels(any, any, any); }},
        {all, [](Image i) { return i.mosaic(3); }},
        {all, [](Image i) { return i.mosaic_average(3); }},
        {one, [](Image i) { return i.keep_bits(3, 3, 3); }},
        {deep, [](Image i) { return i.interleave(i); }},
        {direct, [](Image i) { return std::move(i.paste(plain(24))); }},
        {deep, [](Image i) { return std::move(i.compose(plain(24))); }},
        {direct, [](Image i) { return std::move(i.set_pixel(1, 1, 0)); }},
        {direct, [](Image i) { return std::move(i.set_line(1, 2, 1, 0)); }},
        {direct, [](Image i) { return std::move(i.mix_3x3(4, 4)); }},
        {direct, [](Image i) { return std::move(i.mix_5x5(4, 4)); }},
        {direct, [&](Image i) { return i.filter_3x3(middle); }},
    };
    for (const Case& each : cases)
        for (const int bits : all) {
            const bool taken =
                std::find(each.depths.begin(), each.depths.end(), bits) != each.depths.end();
            const int made = each.call(plain(bits)).bits();
            if (made != (taken ? bits : 24))
                std::printf("case %d: %d bits became %d\n", static_cast<int>(&each - cases), bits,
                            made);
            EXPECT(made == (taken ? bits : 24));
        }
}

static void changes_are_made_at_every_direct_depth() {
    const uint32_t white = kirvo::rgb(255, 255, 255);
    for (const int bits : {16, 24, 32}) {
        const Image before = plain(bits);
        const uint32_t old = before.get_pixel(5, 4);
        for (const bool wide : {false, true}) {
            Image image = plain(bits);
            image.set_pixel(4, 4, white);
            EXPECT(image.get_pixel(4, 4) != old);
            wide ? image.mix_5x5(4, 4) : image.mix_3x3(4, 4);
            EXPECT(image.get_pixel(5, 4) != old);
        }
        Image image = plain(bits);
        image.set_line(2, 3, 1, white);
        EXPECT(image.get_pixel(2, 1) != old && image.get_pixel(4, 1) == old);
        image.paste(Image::solid(1, 1, white), {7, 7});
        EXPECT(image.get_pixel(7, 7) != old && image.get_pixel(6, 7) == old);
    }
}

static void defaults_are_those_of_the_documentation() {
    kirvo::SaveOptions jpeg;
    jpeg.format = KIRVO_FILES_JPEG;
    const std::vector<uint8_t> bytes = striped(40, 30).encode(jpeg);
    EXPECT(Image::open(bytes.data(), bytes.size()).description().quality == 90);
    // What the smaller size leaves out is averaged.
    Image two(2, 2);
    two.set_pixel(0, 0, kirvo::rgb(40, 80, 120)).set_pixel(1, 1, kirvo::rgb(40, 80, 120));
    EXPECT(two.resize(1, 1).get_pixel(0, 0) == kirvo::rgb(20, 40, 60));
    // A row of this, a row of the other.
    Image first(2, 2), second(2, 2);
    for (int32_t y = 0; y < 2; ++y) {
        first.set_pixel(0, y, kirvo::rgb(1, 1, 1)).set_pixel(1, y, kirvo::rgb(2, 2, 2));
        second.set_pixel(0, y, kirvo::rgb(3, 3, 3)).set_pixel(1, y, kirvo::rgb(4, 4, 4));
    }
    const Image rows = first.interleave(second);
    int sum[2] = {};
    for (int32_t y = 0; y < rows.height(); ++y)
        for (int32_t x = 0; x < 2; ++x)
            sum[x] += static_cast<int>(rows.get_pixel(x, y) & 255);
    EXPECT(sum[0] * 2 == 4 * rows.height() && sum[1] * 2 == 6 * rows.height());
    // Exact reductions are those of mode 1.
    const auto same = [](const Image& made, HGLOBAL wanted) {
        const Image other = Image::adopt(wanted);
        const auto ours = made.rows(), theirs = other.rows();
        const auto a = ours.pixels(), b = theirs.pixels();
        return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin());
    };
    int32_t status = 0;
    const Image few = striped(4, 3);
    EXPECT(same(few.exact_256(), Decrease256PaletteEx(few.handle(), 1, &status)));
    EXPECT(same(few.exact_16(), Decrease16PaletteEx(few.handle(), 1, &status)));
    const kirvo::Range any{}, outside{0, 120, kirvo::Test::outside};
    const Image colour = Image::solid(1, 1, kirvo::rgb(50, 100, 150));
    EXPECT(colour.keep_channels(outside, outside, outside).get_pixel(0, 0) ==
           kirvo::rgb(0, 0, 150));
    EXPECT(colour.keep_channels(any, any, any).get_pixel(0, 0) == kirvo::rgb(50, 100, 150));
}

static void errors_say_what_and_why() {
    const Image image(3, 2);
    const kirvo::Error level = failure_of([&] { image.brightness(101); });
    EXPECT(level.status() == KIRVO_BAD_PARAMETER);
    EXPECT(has(level.what(), "brightness: ") && has(level.what(), "out of its range"));
    EXPECT(failure_of([&] { image.crop(2, 0, 2, 1); }).status() == KIRVO_BAD_PARAMETER);
    EXPECT(failure_of([] { Image().width(); }).status() == KIRVO_NULL_HANDLE);
    EXPECT(failure_of([] { Image(0, 1); }).status() == KIRVO_BAD_PARAMETER);
    const kirvo::Error missing = failure_of([] { Image::open("no such picture.jpg"); });
    EXPECT(missing.status() == KIRVO_FILES_MISSING);
    EXPECT(has(missing.what(), "no such picture.jpg"));
    EXPECT(failure_of([] { Image::open("not a picture", 13); }).status() ==
           KIRVO_FILES_NOT_A_PICTURE);
}

static void what_is_no_picture_is_told() {
    Image first = striped(4, 3);
    Image second = std::move(first);
    EXPECT(failure_of([&] { first.width(); }).status() == KIRVO_NULL_HANDLE);
    EXPECT(failure_of([&] { first.sharpen(); }).status() == KIRVO_NULL_HANDLE);
    EXPECT(failure_of([&] { first.save("never.bmp"); }).status() == KIRVO_NULL_HANDLE);
    first = second.mirror();
    EXPECT(first.width() == 4 && second.width() == 4);
    const Image stub = Image::adopt(GlobalAlloc(GMEM_MOVEABLE, 20)); // half a header
    EXPECT(failure_of([&] { stub.width(); }).status() == KIRVO_BAD_PARAMETER);
    EXPECT(failure_of([&] { stub.rows(); }).status() == KIRVO_BAD_PARAMETER);
    const kirvo::Area outside = {INT32_MIN, INT32_MIN};
    EXPECT(failure_of([&] { second.brightness(1, outside); }).status() == KIRVO_BAD_PARAMETER);
}

static void files_tell_of_themselves(const fs::path& folder) {
    const fs::path name = folder / PHOTO;
    striped(7, 5).save(name);
    const kirvo::File file = kirvo::File::read(name);
    EXPECT(file.description().width == 7 && file.description().height == 5);
    EXPECT(file.description().format == KIRVO_FILES_BMP && file.notes().empty());
    EXPECT(!file.text(KIRVO_FILES_TEXT_VARIANT).empty() && file.text(-1).empty());
    EXPECT(Image::open(name).file().description().fileBytes == fs::file_size(name));
    EXPECT(Image(1, 1).file().handle() == nullptr);
    EXPECT(failure_of([&] { kirvo::File::read(folder / "none.bmp"); }).status() ==
           KIRVO_FILES_MISSING);
    kirvo::File fresh;
    EXPECT(fresh.description().width == 0 && fresh.data(KIRVO_FILES_DATA_EXIF).empty());
    fresh.set_data(KIRVO_FILES_DATA_COMMENT, "said", 4);
    EXPECT(fresh.data(KIRVO_FILES_DATA_COMMENT) == std::vector<uint8_t>({'s', 'a', 'i', 'd'}));
    kirvo::File moved = std::move(fresh);
    EXPECT(moved.data(KIRVO_FILES_DATA_COMMENT).size() == 4);
    EXPECT(*moved.receiver() == nullptr && moved.data(KIRVO_FILES_DATA_COMMENT).empty());
}

static void files_of_any_name_are_saved_and_opened(const fs::path& folder) {
    const fs::path name = folder / PHOTO;
    const Image image = striped(7, 5);
    image.save(name);
    EXPECT(fs::exists(name));
    int last = -1;
    const Image again = Image::open(name, [&](int percent) { last = percent; });
    EXPECT(last == 100);
    EXPECT(again.width() == 7 && again.get_pixel(6, 4) == image.get_pixel(6, 4));
    EXPECT(again.description().format == KIRVO_FILES_BMP && again.notes().empty());
    EXPECT(again.mirror().description().format == KIRVO_FILES_BMP); // it is remembered
    kirvo::SaveOptions jpeg;
    jpeg.format = KIRVO_FILES_JPEG;
    const std::vector<uint8_t> bytes = image.encode(jpeg);
    EXPECT(bytes.size() > 100 && bytes[0] == 0xFF && bytes[1] == 0xD8);
    EXPECT(Image::open(bytes.data(), bytes.size()).height() == 5);
    EXPECT(failure_of([&] { image.save(folder / "picture.unknown"); }).status() ==
           KIRVO_FILES_NOT_WRITTEN);
}

static void progress_may_throw() {
    const Image image = striped(64, 400);
    std::vector<int> seen;
    {
        const kirvo::Watch watch([&](int percent) { seen.push_back(percent); });
        EXPECT(image.blur().width() == 64);
    }
    EXPECT(seen.size() > 2 && seen.front() == 0 && seen.back() == 100);
    for (size_t i = 1; i < seen.size(); ++i)
        EXPECT(seen[i] > seen[i - 1]);
    const size_t before = seen.size();
    image.blur();
    EXPECT(seen.size() == before); // the watch has ended

    const kirvo::Watch silent{kirvo::Progress()};
    EXPECT(image.blur().width() == 64);

    int reports = 0;
    {
        const kirvo::Watch watch([&](int) {
            image.mirror().crop(0, 0, 8, 8).blur(); // of which nothing is reported
            ++reports;
        });
        image.sharpen();
    }
    EXPECT(reports > 2 && reports <= 21);

    struct Enough {};
    bool arrived = false;
    kirvo::SaveOptions jpeg;
    jpeg.format = KIRVO_FILES_JPEG;
    const std::vector<uint8_t> bytes = image.encode(jpeg);
    for (int round = 0; round < 2; ++round) {
        const kirvo::Watch watch([](int percent) {
            if (percent >= 20)
                throw Enough();
        });
        try {
            arrived = false;
            if (round == 0)
                image.sharpen();
            else
                image.encode(jpeg);
        } catch (const Enough&) {
            arrived = true;
        }
        EXPECT(arrived);
    }
    EXPECT(Image::open(bytes.data(), bytes.size()).height() == 400); // the codec is free again
}

static void jpeg_comes_and_goes_in_pieces() {
    const Image image = striped(100, 60);
    kirvo::SaveOptions whole;
    whole.format = KIRVO_FILES_JPEG;
    std::vector<uint8_t> stream;
    int steps = 0;
    {
        kirvo::JpegEncoder encoder(image, 5);
        while (!encoder.step())
            ++steps;
        stream = encoder.finish();
    }
    EXPECT(steps > 2 && stream.size() > 100);
    kirvo::JpegDecoder decoder;
    for (size_t at = 0; at < stream.size(); at += 64)
        decoder.write(stream.data() + at, stream.size() - at < 64 ? stream.size() - at : 64);
    const Image decoded = decoder.finish();
    EXPECT(decoded.width() == 100 && decoded.height() == 60);
    {
        kirvo::JpegDecoder broken;
        broken.write(stream.data(), 200); // and ends in the middle
        EXPECT(failure_of([] { kirvo::JpegDecoder().finish(); }).status() == KIRVO_JPEG_NO_SOI);
    }
    EXPECT(Image::open(stream.data(), stream.size()).width() == 100);

    auto earlier = std::make_unique<kirvo::JpegDecoder>(); // which ends before the later one
    const auto later = std::make_unique<kirvo::JpegDecoder>();
    earlier.reset();
    later->write(stream.data(), stream.size());
    EXPECT(later->finish().height() == 60);
}

static void masks_and_ranges() {
    const Image image = Image::solid(3, 3, kirvo::rgb(50, 100, 150));
    const int32_t middle[9] = {0, 0, 0, 0, 1, 0, 0, 0, 0};
    EXPECT(image.filter_3x3(middle).get_pixel(1, 1) == kirvo::rgb(50, 100, 150));
    const int32_t from_above[9] = {0, 1, 0, 0, 0, 0, 0, 0, 0};
    EXPECT(image.filter_3x3(from_above).get_pixel(1, 0) == 0);
    EXPECT(image.filter_3x3(from_above).get_pixel(1, 2) == kirvo::rgb(50, 100, 150));
    const kirvo::Range any{}, low{0, 120, kirvo::Test::inside};
    EXPECT(image.keep_channels(any, low, low).get_pixel(0, 0) == kirvo::rgb(50, 100, 0));
    EXPECT(failure_of([&] {
               image.keep_channels(kirvo::Range{0, 300}, low, low);
           }).status() == KIRVO_BAD_PARAMETER);
    EXPECT(image.keep_colours(0x102, any, low, low).get_pixel(0, 0) == 0);
    EXPECT(image.separate()[2].get_pixel(0, 0) == kirvo::rgb(0, 0, 150));
    EXPECT(image.histogram().green[100] == 9 && image.count_colours() == 1);
}

#ifndef _WIN32 // Wine's and GCC's threads differ in what they offer
static void threads_take_turns() {
    const Image image = striped(300, 200);
    kirvo::SaveOptions jpeg;
    jpeg.format = KIRVO_FILES_JPEG;
    const std::vector<uint8_t> bytes = image.encode(jpeg);
    int wrong[4] = {};
    std::vector<std::thread> threads;
    for (int& mine : wrong)
        threads.emplace_back([&] {
            for (int round = 0; round < 20; ++round) {
                kirvo::JpegDecoder decoder;
                decoder.write(bytes.data(), bytes.size());
                mine += decoder.finish().blur().width() != 300;
                mine += image.encode(jpeg) != bytes;
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    for (const int mine : wrong)
        EXPECT(mine == 0);
}
#endif

int main(int argc, char** argv) {
    try {
        pixels_are_seen_from_the_top();
        effects_take_areas_and_options();
        other_depths_become_24_bits_first();
        depths_that_a_function_takes_stay();
        changes_are_made_at_every_direct_depth();
        defaults_are_those_of_the_documentation();
        errors_say_what_and_why();
        what_is_no_picture_is_told();
        files_of_any_name_are_saved_and_opened(argc > 1 ? argv[1] : ".");
        files_tell_of_themselves(argc > 1 ? argv[1] : ".");
        jpeg_comes_and_goes_in_pieces();
        progress_may_throw();
        masks_and_ranges();
#ifndef _WIN32
        threads_take_turns();
#endif
    } catch (const std::exception& error) {
        std::printf("thrown: %s\n", error.what());
        ++failures;
    }
    EXPECT(KIRVO_VERSION == GetVerKirvoDll());
    PFN_Dib24Flip flip = Dib24Flip;
    EXPECT(flip(nullptr, 0, 0, 1, 1) == KIRVO_NULL_HANDLE);
    return failures == 0 ? 0 : 1;
}
