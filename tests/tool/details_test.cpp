// What the command line computes, offers and draws itself, held against values worked out by hand.
#include "support/dib_builder.hpp"
#include "support/temp_file.hpp"
#include "support/temp_folder.hpp"
#include "tool/run.hpp"

using namespace kirvo_test;

namespace {

Dib read(const std::string& name) {
    int32_t status = 0;
    Dib dib(DibReadEx(name.c_str(), nullptr, nullptr, nullptr, &status));
    EXPECT_EQ(status, KIRVO_OK) << name;
    return dib;
}

std::string write(const TempFolder& folder, const std::string& title, const Dib& picture) {
    const std::string name = folder.path(title);
    EXPECT_EQ(DibWriteEx(name.c_str(), picture, 0, 0, -1, -1), KIRVO_OK);
    return name;
}

// Every grey in a row.
Dib greys() {
    Dib picture = make_dib({256, 1, 24});
    for (int32_t x = 0; x < 256; ++x)
        picture.set_pixel(x, 0, static_cast<uint32_t>(x) * 0x10101);
    return picture;
}

} // namespace

TEST(ToolDetails, PosterisingMakesStepsOfOneSize) {
    const TempFolder folder;
    const std::string in = write(folder, "in.bmp", greys()), out = folder.path("out.bmp");
    const auto posterised = [&](const std::string& levels) {
        EXPECT_EQ(kirvo("--force convert " + in + " " + out + " --posterise " + levels).code, 0);
        return read(out);
    };
    const Dib four = posterised("4"), all = posterised("256"), two = posterised("2");
    for (int32_t x = 0; x < 256; ++x) {
        EXPECT_EQ(four.pixel(x, 0) & 255, static_cast<uint32_t>(x / 64 * 85)) << x;
        EXPECT_EQ(all.pixel(x, 0) & 255, static_cast<uint32_t>(x)) << x;
        EXPECT_EQ(two.pixel(x, 0) & 255, x < 128 ? 0u : 255u) << x;
    }
}

TEST(ToolDetails, AChannelIsKeptInItsPlace) {
    const TempFolder folder;
    Dib picture = make_dib({2, 1, 24});
    picture.set_pixel(0, 0, 0x102030);
    picture.set_pixel(1, 0, 0xF0E0D0);
    const std::string in = write(folder, "in.bmp", picture), out = folder.path("out.bmp");
    for (const auto& [name, mask] :
         {std::pair{"red", 0xFF0000u}, {"green", 0xFF00u}, {"blue", 0xFFu}}) {
        ASSERT_EQ(kirvo("--force convert " + in + " " + out + " --channel " + name).code, 0);
        EXPECT_EQ(read(out).pixel(0, 0), 0x102030 & mask) << name;
        EXPECT_EQ(read(out).pixel(1, 0), 0xF0E0D0 & mask) << name;
    }
}

TEST(ToolDetails, SizesInPerCentAndInProportionAreRounded) {
    const TempFolder folder;
    const std::string in = write(folder, "in.bmp", make_dib({200, 150, 24})),
                      out = folder.path("out.bmp");
    const auto size = [&](const std::string& wanted) {
        EXPECT_EQ(kirvo("--force convert " + in + " " + out + " --resize " + wanted).code, 0);
        const Dib made = read(out);
        return std::to_string(made.width()) + "x" + std::to_string(made.height());
    };
    EXPECT_EQ(size("50%"), "100x75");
    EXPECT_EQ(size("200%"), "400x300");
    EXPECT_EQ(size("100x"), "100x75");
    EXPECT_EQ(size("x50"), "67x50"); // 66.7
    EXPECT_EQ(size("0.1%"), "1x1");  // at least a pixel
    EXPECT_EQ(size("200x60"), "200x60");
    EXPECT_EQ(size("200x300"), "200x300");
    EXPECT_EQ(size("90x150"), "90x150");
    EXPECT_EQ(size("400x150"), "400x150");
}

TEST(ToolDetails, TheHistogramListsTheHighestValuesOfEachChannel) {
    for (const char* colour : {"FF0A00", "0AFF00", "0A00FF"}) {
        const TempFolder folder;
        const std::string in = folder.path("in.bmp");
        ASSERT_EQ(kirvo("make solid 3x2 " + in + " --colour " + colour).code, 0);
        const Outcome run = kirvo("convert " + in + " " + folder.path("out.bmp") + " --histogram");
        const std::string text = colour;
        const auto count = [&](size_t at, const char* value) {
            return text.substr(at, 2) == value ? std::string(" 6") : std::string(" 0");
        };
        const std::string line = "\n255" + count(0, "FF") + count(2, "FF") + count(4, "FF");
        EXPECT_TRUE(contains(run.text, line)) << colour << "\n" << run.text;
    }
}

TEST(ToolDetails, NumbersEndWhereTheLibrarysEnd) {
    const TempFolder folder;
    const std::string in = write(folder, "in.bmp", make_dib({8, 8, 24}));
    const auto code = [&](const std::string& value) {
        return kirvo("--force convert " + in + " " + folder.path("out.bmp") + " --edges " + value)
            .code;
    };
    EXPECT_EQ(code("2147483647"), 0);
    EXPECT_EQ(code("2147483648"), 2);
    EXPECT_EQ(code("-2147483648"), 0);
    EXPECT_EQ(code("-2147483649"), 2);
}

TEST(ToolDetails, RangesEndWhereTheySay) {
    const TempFolder folder;
    const std::string in = write(folder, "in.bmp", make_dib({8, 8, 24}));
    const auto code = [&](const std::string& effect) {
        return kirvo("--force convert " + in + " " + folder.path("out.bmp") + " --" + effect).code;
    };
    for (const char* good : {"bits 8,8,8", "bits 0,0,0", "crop 0,0,1,1", "crop 7,7,1,1",
                             "posterise 2", "posterise 256", "dilate 64", "mosaic-average 1024",
                             "hue set,359", "brightness 100", "brightness -100"})
        EXPECT_EQ(code(good), 0) << good;
    for (const char* bad :
         {"bits 9,8,8", "bits 8,9,8", "bits 8,8,9", "bits 8,8,-1", "crop 0,0,0,1", "crop 0,0,1,0",
          "crop -1,0,1,1", "posterise 1", "posterise 257", "dilate 65", "dilate 0",
          "mosaic-average 1025", "hue set,360", "brightness 101", "brightness -101"})
        EXPECT_EQ(code(bad), 2) << bad;
}

TEST(ToolDetails, SlidersOfTheCatalogueHaveTheRangesOfTheirNumbers) {
    const std::string json = kirvo("effects --json").text;
    // What stands between an effect's name and the end of its first slider, without blanks.
    const auto slider = [&](const std::string& option) {
        const size_t at = json.find("\"slider\"", json.find("\"--" + option + "\""));
        std::string text = json.substr(at, json.find('}', at) - at);
        std::erase_if(text, [](char c) { return c == ' ' || c == '\n' || c == '\r'; });
        return text;
    };
    EXPECT_EQ(slider("edges"), "\"slider\":{\"least\":0,\"most\":255,\"steps\":1.0");
    EXPECT_EQ(slider("brightness"), "\"slider\":{\"least\":-100,\"most\":100,\"steps\":1.0");
    EXPECT_EQ(slider("gamma"), "\"slider\":{\"least\":0,\"most\":400,\"steps\":100.0");
    EXPECT_EQ(slider("posterise"), "\"slider\":{\"least\":2,\"most\":256,\"steps\":1.0");
    EXPECT_EQ(slider("mosaic"), "\"slider\":{\"least\":1,\"most\":64,\"steps\":1.0");
}

TEST(ToolDetails, SizesOfFilesAreToldInReadableUnits) {
    const TempFolder folder;
    const std::string name = write(folder, "in.bmp", make_dib({8, 8, 24}));
    for (const auto& [bytes, words] : {std::pair{999, ", 999 bytes"},
                                       {1000, ", 1.0 kB"},
                                       {999000, ", 999.0 kB"},
                                       {1500000, ", 1.5 MB"}}) {
        std::filesystem::resize_file(name, static_cast<uintmax_t>(bytes));
        const Outcome info = kirvo("info " + name);
        EXPECT_TRUE(contains(info.text, words)) << info.text;
    }
}

TEST(ToolDetails, ColoursMayStandBehindEachSpellingOfTheirOption) {
    for (const char* option : {"-c", "--colour", "--color"}) {
        const TempFolder folder;
        const std::string out = folder.path("out.bmp");
        EXPECT_EQ(kirvo("make gradient 3x1 " + out + " " + option + " 000000 646464").code, 0);
        EXPECT_EQ(read(out).pixel(1, 0), 0x323232u) << option;
    }
}

TEST(ToolDetails, WhatIsNearlyRightIsSuggested) {
    const auto suggests = [](const std::string& typed, const std::string& word) {
        return contains(kirvo(typed).text, "did you mean " + word + "?");
    };
    EXPECT_TRUE(suggests("inof", "info"));    // two letters exchanged count as one mistake
    EXPECT_TRUE(suggests("turm", "turn"));    // another letter
    EXPECT_TRUE(suggests("tur", "turn"));     // one is missing
    EXPECT_TRUE(suggests("tuurn", "turn"));   // one too many
    EXPECT_TRUE(suggests("conv", "convert")); // begun
    const std::string none = "did you mean";
    EXPECT_FALSE(contains(kirvo("infxy").text, none)); // two mistakes in five letters
    EXPECT_FALSE(contains(kirvo("paint").text, none));
    EXPECT_TRUE(suggests("convert a.bmp b.bmp --filp", "--flip"));
    EXPECT_FALSE(contains(kirvo("convert a.bmp b.bmp --filxq").text, none)); // three in seven
}

TEST(ToolDetails, OnlyTheProgramsHelpExplainsTheOptionForHelp) {
    EXPECT_TRUE(contains(kirvo("--help").text, "\n  -h, --help   Help of the program"));
    for (const char* command : {"info", "convert", "turn", "make", "gallery"}) {
        const std::string text = kirvo(std::string(command) + " --help").text;
        EXPECT_FALSE(contains(text, "\n  -h, --help")) << command;
        EXPECT_TRUE(contains(text, "Everywhere: -h --help")) << command;
    }
}

// The sheet's fields are 168 x 126 with 8 between them, six in a row, letters of 9 rows below.
TEST(ToolDetails, TheContactSheetHasAFieldAndANameForEachPicture) {
    const TempFolder folder;
    const std::string in = folder.path("in.bmp"), made = folder.path("gallery");
    ASSERT_EQ(kirvo("make solid 65x49 " + in + " --colour 3060C0").code, 0);
    ASSERT_EQ(kirvo("gallery " + in + " " + made).code, 0);
    const auto bitmap = [&](const std::string& title) {
        const std::string out = folder.path(title + ".bmp");
        EXPECT_EQ(kirvo("convert " + made + "/" + title + ".jpg " + out).code, 0);
        return read(out);
    };
    int pictures = -1; // without the sheet
    for (const auto& entry : std::filesystem::directory_iterator(made))
        pictures += entry.path().extension() == ".jpg";
    const Dib sheet = bitmap("contact-sheet");
    EXPECT_EQ(sheet.width(), 8 + 6 * 176);
    EXPECT_EQ(sheet.height(), 8 + (pictures + 5) / 6 * (126 + 9 + 16));
    // The first field: the picture in its middle, its name below.
    const auto green = [&](int32_t x, int32_t y) { return sheet.pixel(x, y) >> 8 & 255; };
    EXPECT_NEAR(static_cast<int>(green(8 + 84, 8 + 63)), 0x60, 12);
    EXPECT_NEAR(static_cast<int>(green(8 + 84 - 40, 8 + 63)), 0xF4, 12);
    const char* letter_o[] = {".....", ".....", ".###.", "#...#", "#...#", "#...#", ".###."};
    for (int32_t y = 0; y < 7; ++y)
        for (int32_t x = 0; x < 5; ++x)
            EXPECT_EQ(green(8 + x, 8 + 126 + 4 + y) < 140, letter_o[y][x] == '#')
                << x << ", " << y << ": " << green(8 + x, 8 + 126 + 4 + y);
    const Dib crop = bitmap("01-crop"); // of the middle
    EXPECT_EQ(crop.width(), 33);
    EXPECT_EQ(crop.height(), 25);
}
