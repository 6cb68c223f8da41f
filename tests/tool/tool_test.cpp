// The command line, run as a user runs it. Its results are held against the library's own calls.
#include "formats/made_elsewhere.hpp"
#include "support/dib_builder.hpp"
#include "support/temp_file.hpp"
#include "support/temp_folder.hpp"
#include "tool/run.hpp"

#include <fstream>

using namespace kirvo_test;

namespace {

// A small picture in a file.
struct Photo {
    explicit Photo(int32_t width = 40, int32_t height = 30) : file(".bmp") {
        Random random(7);
        dib = make_random_dib({width, height, 24}, random);
        EXPECT_EQ(DibWriteEx(file.name(), dib, 0, 0, -1, -1), KIRVO_OK);
    }
    std::string name() const { return file.name(); }

    TempFile file;
    Dib dib;
};

Dib read(const TempFile& file) {
    int32_t status = 0;
    Dib dib(DibReadEx(file.name(), nullptr, nullptr, nullptr, &status));
    EXPECT_EQ(status, KIRVO_OK);
    return dib;
}

// Size, depth, colour table and pixels. The rest of the header may say the same in other words.
std::vector<uint32_t> content(const Dib& dib) {
    const auto width = static_cast<uint32_t>(dib.width()),
               height = static_cast<uint32_t>(dib.height());
    const auto bits = static_cast<uint32_t>(dib.bits());
    std::vector<uint32_t> all = {width, height, bits};
    const std::vector<uint8_t> bytes = dib.bytes();
    for (size_t i = 40; bits <= 8 && i < 40 + (4u << bits); ++i)
        all.push_back(bytes[i]);
    for (uint32_t y = 0; y < height; ++y) {
        for (uint32_t x = 0; x < width; ++x)
            all.push_back(dib.pixel(static_cast<int32_t>(x), static_cast<int32_t>(y)));
    }
    return all;
}

// The picture that the tool makes of the photo with these options.
Dib converted(const Photo& photo, const std::string& options) {
    const TempFile out(".bmp");
    const Outcome run = kirvo("convert " + photo.name() + " " + out.name() + " " + options);
    EXPECT_EQ(run.code, 0) << options << ": " << run.text;
    return run.code == 0 ? read(out) : Dib();
}

} // namespace

TEST(Tool, HelpAndUsageErrors) {
    EXPECT_EQ(kirvo("--help").code, 0);
    EXPECT_EQ(kirvo("convert --help").code, 0);
    EXPECT_EQ(kirvo("").code, 0); // which asks for help
    EXPECT_EQ(kirvo("").text, kirvo("--help").text);
    EXPECT_EQ(kirvo("help convert").text, kirvo("convert --help").text);
    EXPECT_EQ(kirvo("paint").code, 2);
    EXPECT_EQ(kirvo("convert onlyone.bmp").code, 2);
    EXPECT_EQ(kirvo("convert a.bmp b.bmp --no-such-option").code, 2);
    const Photo photo;
    EXPECT_EQ(kirvo("convert " + photo.name() + " out.gif").code, 2);
    EXPECT_EQ(kirvo("convert " + photo.name() + " out.bmp --brightness much").code, 2);
    EXPECT_EQ(kirvo("convert " + photo.name() + " out.bmp --rotate 45").code, 2);
    EXPECT_EQ(kirvo("convert " + photo.name() + " out.jpg --level 6").code, 2);
    EXPECT_FALSE(std::filesystem::exists("out.bmp"));
}

TEST(Tool, FailuresNameTheFileAndTheReasonAndOnRequestTheStatus) {
    const Outcome missing = kirvo("convert missing.bmp out.bmp");
    EXPECT_EQ(missing.code, 1);
    EXPECT_TRUE(contains(missing.text, "missing.bmp: " + no_such_file())) << missing.text;
    EXPECT_FALSE(contains(missing.text, "-1")) << missing.text;
    const Outcome verbose = kirvo("--verbose convert missing.bmp out.bmp");
    EXPECT_TRUE(contains(verbose.text, "(status -103)")) << verbose.text;
    const TempFile junk(".bmp", std::vector<uint8_t>(100, 'x'));
    EXPECT_EQ(kirvo(std::string("convert ") + junk.name() + " out.bmp").code, 1);
    const TempFile cut(".bmp", {'B', 'M', 0, 0});
    const Outcome short_file = kirvo(std::string("info ") + cut.name());
    EXPECT_EQ(short_file.code, 1);
    EXPECT_TRUE(contains(short_file.text, "ends early")) << short_file.text;
    const Photo photo;
    EXPECT_EQ(kirvo("convert " + photo.name() + " no/such/folder/out.bmp").code, 1);
}

TEST(Tool, InfoDescribesFiles) {
    const Photo photo;
    const Outcome line = kirvo("info " + photo.name());
    EXPECT_EQ(line.code, 0);
    EXPECT_TRUE(contains(line.text, photo.name() + ": BMP, 40 x 30, 24 bits")) << line.text;
    EXPECT_EQ(std::count(line.text.begin(), line.text.end(), '\n'), 1) << line.text;
    const Outcome text = kirvo("info --long " + photo.name());
    EXPECT_EQ(text.code, 0);
    for (const char* part : {"format: BMP", "width: 40", "height: 30", "bits: 24"})
        EXPECT_TRUE(contains(text.text, part)) << text.text;
    const Outcome json = kirvo("info --json " + photo.name() + " " + photo.name());
    EXPECT_EQ(json.code, 0);
    for (const char* part : {"\"format\": \"BMP\"", "\"width\": 40", "\"height\": 30"})
        EXPECT_TRUE(contains(json.text, part)) << json.text;
}

TEST(Tool, InfoShowsPalettesAndMasks) {
    const Photo photo;
    const TempFile grey(".bmp"), masked(".bmp");
    ASSERT_EQ(kirvo("convert " + photo.name() + " " + grey.name() + " --palette 16").code, 0);
    const Outcome palette = kirvo(std::string("info --long ") + grey.name());
    EXPECT_TRUE(contains(palette.text, "bits: 4")) << palette.text;
    EXPECT_TRUE(contains(palette.text, "#C0C0C0")) << palette.text;
    ASSERT_EQ(kirvo("convert " + photo.name() + " " + masked.name() + " --depth 16").code, 0);
    const Outcome masks = kirvo(std::string("info --long ") + masked.name());
    EXPECT_TRUE(contains(masks.text, ", masks F800 7E0 1F")) << masks.text;
}

TEST(Tool, JpegKeepsItsSettings) {
    const Photo photo(64, 48);
    const TempFile jpeg(".jpg");
    ASSERT_EQ(kirvo("convert " + photo.name() + " " + jpeg.name() +
                    " --level 2 --subsample 1 --comment hello")
                  .code,
              0);
    const Outcome info = kirvo(std::string("info --long ") + jpeg.name());
    EXPECT_EQ(info.code, 0);
    for (const char* part : {"format: JPEG", "width: 64", "height: 48", "channels: 3",
                             "sampling: 1x1", "comment: hello", "quantisation_tables:"})
        EXPECT_TRUE(contains(info.text, part)) << part << "\n" << info.text;

    JpgCodSetQEx(2);
    JpgCodSetSubsample(1);
    JpgCodSetComment(reinterpret_cast<const uint8_t*>("hello"), 5);
    const TempFile own(".jpg");
    ASSERT_EQ(JpgCodMainEx(own.name(), photo.dib, 0, 0, 64, 48, 0, 0), KIRVO_OK);
    JpgCodSetQEx(4);
    JpgCodSetSubsample(4);

    const TempFile grey(".jpg");
    ASSERT_EQ(kirvo("convert " + photo.name() + " " + grey.name() + " --grey").code, 0);
    EXPECT_TRUE(contains(kirvo(std::string("info --long ") + grey.name()).text, "channels: 1"));

    const TempFile back(".bmp");
    const Outcome decoded = kirvo(std::string("convert --time ") + jpeg.name() + " " + back.name());
    EXPECT_EQ(decoded.code, 0);
    EXPECT_TRUE(contains(decoded.text, "MP/s")) << decoded.text;
    int32_t status = 0;
    const Dib want(JpgDecMainEx(own.name(), nullptr, nullptr, &status));
    EXPECT_EQ(content(read(back)), content(want));
}

TEST(Tool, TargaThereAndBack) {
    const Photo photo;
    const TempFile targa(".tga"), back(".bmp");
    ASSERT_EQ(kirvo("convert " + photo.name() + " " + targa.name()).code, 0);
    ASSERT_EQ(kirvo(std::string("convert ") + targa.name() + " " + back.name()).code, 0);
    EXPECT_EQ(read(back).bytes(), photo.dib.bytes());
}

TEST(Tool, ReadsIconsAndSavesTheirMasks) {
    const TempFile icon(".ico", made_elsewhere::icon_four_colours), out(".bmp"), mask(".bmp");
    const Outcome info = kirvo(std::string("info ") + icon.name());
    EXPECT_EQ(info.code, 0);
    EXPECT_TRUE(contains(info.text, ": icon, 12 x 5")) << info.text;
    ASSERT_EQ(kirvo(std::string("convert --index 0 --mask ") + mask.name() + " " + icon.name() +
                    " " + out.name())
                  .code,
              0);
    EXPECT_EQ(read(out).width(), 12);
    EXPECT_EQ(read(mask).bits(), 1);
    EXPECT_EQ(read(mask).pixel(2, 2), 1u); // transparent
    EXPECT_EQ(read(mask).pixel(3, 2), 0u);
    const Outcome beyond =
        kirvo(std::string("convert --force --index 9 ") + icon.name() + " " + out.name());
    EXPECT_EQ(beyond.code, 1);
}

TEST(Tool, ReadsTargaRawAndQ0) {
    const TempFile out(".bmp"), targa(".tga", made_elsewhere::targa_top_left);
    ASSERT_EQ(kirvo(std::string("convert ") + targa.name() + " " + out.name()).code, 0);
    EXPECT_EQ(read(out).pixel(3, 2), made_elsewhere::targa_pixel(3, 2));

    const std::vector<uint8_t> pixels = {1, 2, 3, 4, 5, 6}; // two pixels of red, green, blue
    std::vector<uint8_t> raw_file(32);
    std::copy_n("mhwanh", 6, raw_file.begin());
    raw_file[9] = 2;
    raw_file[11] = 1;
    raw_file.insert(raw_file.end(), pixels.begin(), pixels.end());
    const TempFile raw(".raw", raw_file);
    ASSERT_EQ(kirvo(std::string("convert -f ") + raw.name() + " " + out.name()).code, 0);
    EXPECT_EQ(read(out).pixel(0, 0), 0x010203u);

    const TempFile q0(".q0", pixels);
    const std::string name = q0.name();
    const std::string companion = name.substr(0, name.size() - 3) + ".IPR";
    EXPECT_EQ(kirvo("convert " + name + " " + out.name()).code, 1); // no companion yet
    std::ofstream(companion) << "1 2\n";
    const Outcome info = kirvo("info " + name);
    EXPECT_TRUE(contains(info.text, ": Q0, ")) << info.text;
    ASSERT_EQ(kirvo("convert -f " + name + " " + out.name()).code, 0);
    EXPECT_EQ(read(out).pixel(0, 1), 0x040506u);
    std::filesystem::remove(companion);
}

TEST(Tool, EffectsAreTheLibrarysOperations) {
    const Photo photo;
    const HGLOBAL dib = photo.dib;
    int32_t s = 0;
    const auto same = [&](const std::string& options, HGLOBAL want) {
        const Dib expected(want);
        ASSERT_TRUE(expected) << options << " " << s;
        EXPECT_EQ(content(converted(photo, options)), content(expected)) << options;
    };
    same("--crop 3,4,10,11", Dib24DupEx(dib, 3, 4, 10, 11, &s));
    same("--resize 20x15", Dib24ZoomEx2(dib, 0, 0, 40, 30, 20, 15, &s, 1));
    same("--resize 80x15 --nearest", Dib24ZoomEx2(dib, 0, 0, 40, 30, 80, 15, &s, 0));
    same("--rotate 90", Dib24Rotate(dib, 0, 0, 40, 30, 0, &s));
    same("--rotate 270", Dib24Rotate(dib, 0, 0, 40, 30, 1, &s));
    same("--brightness -20", Dib24Brightness(dib, 0, 0, 40, 30, -20, &s));
    same("--contrast 30", Dib24Contrast(dib, 0, 0, 40, 30, 30, &s));
    same("--gamma 0.5,1,2", DibGammaEx(dib, 0, 0, 40, 30, 0.5, 1, 2, &s));
    same("--tone 3,2", Dib24ToneCtrl(dib, 0, 0, 40, 30, 3, 2, &s));
    same("--tone 1.5,1,0.25", Dib24ToneCtrlEx(dib, 0, 0, 40, 30, 1.5, 1, 0.25, &s));
    same("--hue 2,90", DibModifyHueEx(dib, 0, 0, 40, 30, 2, 90, &s));
    same("--mono", Dib24Monochrome(dib, 0, 0, 40, 30, &s));
    same("--halftone", Dib24HalfTone(dib, 0, 0, 40, 30, &s));
    same("--blur", Dib24Gausian(dib, 0, 0, 40, 30, &s));
    same("--sharpen 3", Dib24Sharpen(dib, 0, 0, 40, 30, 3, &s));
    same("--sharpen-more 1", Dib24SharpenEx(dib, 0, 0, 40, 30, 1, &s));
    same("--edges 10,1", Dib24ColorEdge(dib, 0, 0, 40, 30, 10, 1, &s));
    same("--mosaic 7", DibMosaicEx(dib, 0, 0, 40, 30, 7, &s));
    same("--mosaic-average 7", DibMosaicEx2(dib, 0, 0, 40, 30, 7, &s));
    same("--dilate 2", DibBlockMxM(dib, 0, 0, 40, 30, 2, 1, 0, &s));
    same("--erode 2", DibBlockMxM(dib, 0, 0, 40, 30, 2, 0, 0, &s));
    same("--palette 256", DecreaseColor256(dib, &s));
    same("--palette 16", DecreaseColor16(dib, &s));
    same("--palette grey", DecreaseColorMono256(dib, &s));
    same("--palette fast", Decrease256Fast(dib, &s));
    same("--depth 32", DibConvert32bit(dib, &s));
    same("--bits 3,3,2", DibCutDepth(dib, 3, 3, 2, &s));
    SetFilter3x3(1, 2, 1, 0, 0, 0, -1, -2, -1, 1);
    same("--kernel 1,2,1,0,0,0,-1,-2,-1,1", DibFilter3x3(dib, 0, 0, 40, 30, &s));
    same("--keep rgb,10,90,1,0,0,0,100,200,2",
         Dib24FilterEx(dib, 0, 0, 40, 30, 0x101 | 10 << 16, 90 | 1 << 16, 0, 100 << 16,
                       200 | 2 << 16, &s));
}

TEST(Tool, EffectsInPlaceAndInTheOrderGiven) {
    const Photo photo;
    const auto changed = [&](auto operation) {
        Dib copy = copy_of(photo.dib);
        EXPECT_EQ(operation(static_cast<HGLOBAL>(copy)), KIRVO_OK);
        return copy.bytes();
    };
    EXPECT_EQ(converted(photo, "--flip").bytes(),
              changed([](HGLOBAL h) { return Dib24Flip(h, 0, 0, 40, 30); }));
    EXPECT_EQ(converted(photo, "--mirror").bytes(),
              changed([](HGLOBAL h) { return Dib24Mirror(h, 0, 0, 40, 30); }));
    EXPECT_EQ(converted(photo, "--rotate 180").bytes(),
              changed([](HGLOBAL h) { return Dib24FlipMirror(h, 0, 0, 40, 30); }));
    EXPECT_EQ(converted(photo, "--negative").bytes(),
              changed([](HGLOBAL h) { return Dib24Negative(h, 0, 0, 40, 30); }));
    EXPECT_EQ(converted(photo, "--swap-channels 4").bytes(),
              changed([](HGLOBAL h) { return Dib24RGBChange(h, 4, 0, 0, 40, 30); }));
    EXPECT_EQ(converted(photo, "--xor FF8001").bytes(),
              changed([](HGLOBAL h) { return Dib24XOR(h, 0, 0, 40, 30, 0x0180FF); }));
    EXPECT_EQ(converted(photo, "--brush 5,6").bytes(),
              changed([](HGLOBAL h) { return Dib24Mix3X3(h, 5, 6); }));
    EXPECT_EQ(converted(photo, "--brush 5,6,5").bytes(),
              changed([](HGLOBAL h) { return Dib24Mix5X5(h, 5, 6); }));
    EXPECT_EQ(converted(photo, "--compose " + photo.name() + ",3").bytes(),
              changed([&](HGLOBAL h) { return Dib24Add(h, 0, 0, photo.dib, 0, 0, 40, 30, 3); }));
    EXPECT_EQ(converted(photo, "--paste " + photo.name() + ",7,5").bytes(),
              changed([&](HGLOBAL h) { return Dib24CopyEx(h, 7, 5, photo.dib, 0, 0, 33, 25); }));

    int32_t s = 0;
    const auto brightness = [&](HGLOBAL h, int32_t n) {
        return Dib(Dib24Brightness(h, 0, 0, 40, 30, n, &s));
    };
    const auto contrast = [&](HGLOBAL h, int32_t n) {
        return Dib(Dib24Contrast(h, 0, 0, 40, 30, n, &s));
    };
    EXPECT_EQ(converted(photo, "--contrast 50 --brightness 50 --contrast -50").bytes(),
              contrast(brightness(contrast(photo.dib, 50), 50), -50).bytes());
    EXPECT_EQ(converted(photo, "--brightness 50 --contrast 50 --brightness -10").bytes(),
              brightness(contrast(brightness(photo.dib, 50), 50), -10).bytes());
}

TEST(Tool, HistogramCountsAndCarriesOn) {
    const TempFile flat(".bmp"), out(".bmp");
    ASSERT_EQ(kirvo(std::string("make solid 4x3 ") + flat.name() + " --colour 0A0B0C").code, 0);
    const Outcome run =
        kirvo(std::string("convert ") + flat.name() + " " + out.name() + " --histogram");
    EXPECT_EQ(run.code, 0);
    EXPECT_TRUE(contains(run.text, "1 colours")) << run.text;
    EXPECT_TRUE(contains(run.text, "\n10 12 0 0")) << run.text;
    EXPECT_TRUE(contains(run.text, "\n11 0 12 0")) << run.text;
}

TEST(Tool, MakesPictures) {
    const TempFile solid(".bmp"), across(".bmp"), corners(".bmp");
    ASSERT_EQ(kirvo(std::string("make solid 5x4 ") + solid.name() + " -c 102030").code, 0);
    EXPECT_EQ(read(solid).pixel(0, 0), 0x102030u);
    EXPECT_EQ(read(solid).width(), 5);
    ASSERT_EQ(kirvo(std::string("make gradient 3x2 ") + across.name() + " -c 000000 FFFFFF").code,
              0);
    EXPECT_EQ(read(across).pixel(1, 0), 0x7F7F7Fu);
    ASSERT_EQ(kirvo(std::string("make gradient 2x2 ") + corners.name() +
                    " -c 000001 000002 000003 000004")
                  .code,
              0);
    EXPECT_EQ(read(corners).pixel(0, 0), 1u);
    EXPECT_EQ(read(corners).pixel(1, 1), 4u);
    EXPECT_EQ(kirvo(std::string("make solid 0x4 ") + solid.name() + " -c 102030").code, 2);
    EXPECT_EQ(kirvo(std::string("make solid 4 ") + solid.name() + " -c 102030").code, 2);
    EXPECT_EQ(kirvo(std::string("make solid 4x4 ") + solid.name() + " -c gren").code, 2);
}

TEST(Tool, ListsEveryEffect) {
    const Outcome list = kirvo("effects");
    EXPECT_EQ(list.code, 0);
    for (const char* option : {"--brightness N", "-100 to 100", "--compose",
                               "--sharpen-more STRENGTH", "--mosaic-average", "--palette"})
        EXPECT_TRUE(contains(list.text, option)) << option;
}

TEST(Tool, GalleryShowsEveryEffect) {
    const Photo photo(64, 48);
    const TempFolder own;
    const std::string folder = own.path("gallery");
    const Outcome run = kirvo("gallery " + photo.name() + " " + folder);
    ASSERT_EQ(run.code, 0) << run.text;
    for (const char* file : {"index.html", "contact-sheet.jpg", "00-original.jpg", "01-crop.jpg"})
        EXPECT_TRUE(std::filesystem::exists(folder + "/" + file)) << file;
    size_t pictures = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        pictures += entry.path().extension() == ".jpg";
    EXPECT_GT(pictures, 60u);
    const Outcome again = kirvo("gallery " + photo.name() + " " + folder);
    EXPECT_EQ(again.code, 1);
    EXPECT_TRUE(contains(again.text, "--force")) << again.text;
    EXPECT_EQ(kirvo("gallery --force " + photo.name() + " " + folder).code, 0);
}
