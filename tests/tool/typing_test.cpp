// What people type: sizes, colours and modes by name, options before and behind the files, names
// for outputs, and mistakes.
#include "support/temp_folder.hpp"
#include "tool/run.hpp"

#include <algorithm>
#include <fstream>

using namespace kirvo_test;

namespace {

struct Pictures {
    Pictures() {
        EXPECT_EQ(kirvo("make gradient 40x30 " + file("a.bmp") + " -c 000000 FFFFFF").code, 0);
    }
    // UTF-8, which paths of other systems would not leave as it is.
    std::string file(const std::string& name) const { return folder.path("") + name; }
    bool has(const std::string& name) const { return std::filesystem::exists(file(name)); }

    TempFolder folder;
};

std::string size_of(const std::string& name) {
    int32_t status = 0;
    const Dib dib(DibReadEx(name.c_str(), nullptr, nullptr, nullptr, &status));
    return status == KIRVO_OK ? std::to_string(dib.width()) + "x" + std::to_string(dib.height())
                              : "none";
}

std::vector<uint8_t> bytes_of(const std::string& name) {
    std::ifstream stream(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

// Whoever cleans up finds the names too long on Windows.
void remove_long(std::string folder) {
#ifdef _WIN32
    std::replace(folder.begin(), folder.end(), '/', '\\');
    std::wstring name = L"\\\\?\\" + std::wstring(folder.begin(), folder.end());
    DeleteFileW((name + L"\\a.jpg").c_str());
    for (; name.size() > 200; name.resize(name.rfind(L'\\')))
        RemoveDirectoryW(name.c_str());
#else
    (void)folder;
#endif
}

} // namespace

TEST(Typing, OptionsStandBeforeBetweenAndBehindTheFiles) {
    const Pictures p;
    const std::string in = p.file("a.bmp"), out = p.file("out.bmp");
    for (const std::string& order :
         {"convert --rotate 90 " + in + " " + out, "convert " + in + " --rotate 90 " + out,
          "convert " + in + " " + out + " --rotate 90",
          "--force convert --rotate=90 " + in + " " + out,
          "convert --rotate 90 --sharpen strong --brightness -5 " + in + " " + out}) {
        EXPECT_EQ(kirvo(order + " -f").code, 0) << order;
        EXPECT_EQ(size_of(out), "30x40") << order;
        std::filesystem::remove(out);
    }
    for (const std::string& order :
         {"make gradient 8x6 " + out + " -c red blue", "make gradient -c red blue 8x6 " + out,
          "make gradient 8x6 --color red,blue " + out,
          "make gradient -c '#F00' --colour 0000FF 8x6 " + out}) {
#ifdef _WIN32
        if (contains(order, "'"))
            continue;
#endif
        EXPECT_EQ(kirvo(order + " -f").code, 0) << order << kirvo(order + " -f").text;
        EXPECT_EQ(size_of(out), "8x6") << order;
    }
}

TEST(Typing, SizesAreWrittenInFourWays) {
    const Pictures p;
    const std::string call = "convert -f " + p.file("a.bmp") + " " + p.file("out.bmp") + " ";
    const std::pair<const char*, const char*> sizes[] = {
        {"50%", "20x15"}, {"20x", "20x15"}, {"x10", "13x10"}, {"7x9", "7x9"}, {"200%", "80x60"}};
    for (const auto& [typed, made] : sizes) {
        EXPECT_EQ(kirvo(call + "--resize " + typed).code, 0) << typed;
        EXPECT_EQ(size_of(p.file("out.bmp")), made) << typed;
    }
    for (const char* wrong : {"x", "0x5", "5", "-5x5", "0%", "5x5x5", "%", "axb"})
        EXPECT_EQ(kirvo(call + "--resize " + wrong).code, 2) << wrong;
}

TEST(Typing, ShrinkingAveragesUnlessByNearest) {
    const Pictures p;
    const std::string call = "convert -f " + p.file("a.bmp") + " " + p.file("out.bmp") + " ";
    const auto made = [&](const std::string& options) {
        EXPECT_EQ(kirvo(call + options).code, 0) << options;
        return bytes_of(p.file("out.bmp"));
    };
    EXPECT_NE(made("--resize 10x6"), made("--resize 10x6 --nearest"));
    EXPECT_EQ(made("--resize 10x6"), made("--resize 10x6 --smooth"));
    EXPECT_EQ(made("--resize 80x60"), made("--resize 80x60 --nearest"));
}

TEST(Typing, ModesHaveNamesBesideNumbers) {
    const Pictures p;
    const auto made = [&](const std::string& options) {
        const Outcome run =
            kirvo("convert -f " + p.file("a.bmp") + " " + p.file("out.bmp") + " " + options);
        EXPECT_EQ(run.code, 0) << options << run.text;
        return bytes_of(p.file("out.bmp"));
    };
    const std::pair<std::string, std::string> same[] = {
        {"--sharpen emboss", "--sharpen 1"},
        {"--sharpen strong", "--sharpen-more 2"},
        {"--sharpen strongest", "--sharpen-more 3"},
        {"--sharpen-more medium", "--sharpen-more 1"},
        {"--hue turn,90", "--hue 2,90"},
        {"--swap-channels bgr", "--swap-channels 5"},
        {"--edges 20,bright", "--edges 20,1"},
        {"--edges 20", "--edges 20,0"},
        {"--compose " + p.file("a.bmp") + ",subtract", "--compose " + p.file("a.bmp") + ",3"},
        {"--keep rgb,10,90,inside,0,0,none,0,0,outside", "--keep rgb,10,90,1,0,0,0,0,0,2"},
        {"--xor red", "--xor FF0000"},
        {"--xor 0000ff", "--xor Blue"},
    };
    for (const auto& [name, number] : same)
        EXPECT_EQ(made(name), made(number)) << name;
}

TEST(Typing, NamesMayHaveCommas) {
    const Pictures p;
    std::filesystem::copy(p.file("a.bmp"), p.file("a, b,3.bmp"));
    const Outcome run = kirvo("convert " + p.file("a.bmp") + " " + p.file("out.bmp") +
                              " --compose \"" + p.file("a, b,3.bmp") + ",subtract,1,2\"");
    EXPECT_EQ(run.code, 0) << run.text;
}

TEST(Typing, MistakesAreToldBeforeAFileIsOpened) {
    const std::pair<const char*, const char*> wrong[] = {
        {"--brightness 101", "--brightness: -100 to 100"},
        {"--brightness -101", "--brightness: -100 to 100"},
        {"--brightness much", "--brightness: -100 to 100"},
        {"--posterise 1", "--posterise: 2 to 256"},
        {"--dilate 65", "--dilate: 1 to 64"},
        {"--hue turn,360", "--hue: DEGREES: 0 to 359"},
        {"--rotate 45", "--rotate: 90, 180, 270"},
        {"--sharpen 6", "--sharpen: 0 soft"},
        {"--sharpen storng", "did you mean strong?"},
        {"--crop 1,2,3", "--crop: X,Y,W,H is wanted"},
        {"--crop -1,0,5,5", "--crop: X: 0 or more"},
        {"--xor gren", "did you mean green?"},
        {"--quality 0", "--quality: 1 to 100"},
        {"--level 6", "--level: 1 to 5"},
        {"--to gif", "--to gif: pictures are written as"},
        {"--size large", "a file's size is written"},
        {"-j 0", "--jobs: 1 to 1024"},
        {"--sharpn 3", "no option --sharpn; did you mean --sharpen?"},
        {"--gamma -1", "--gamma: G: 0 or more"},
        {"--tone 0,4", "--tone: of a fraction"},
        {"--compression zip", "--compression: none, lzw"},
    };
    for (const auto& [typed, told] : wrong) {
        const Outcome run = kirvo(std::string("convert missing.bmp out.bmp ") + typed);
        EXPECT_EQ(run.code, 2) << typed;
        EXPECT_TRUE(contains(run.text, told)) << typed << "\n" << run.text;
        EXPECT_FALSE(contains(run.text, "missing.bmp")) << run.text;
    }
    EXPECT_TRUE(
        contains(kirvo("convert a.bmp -o x -o y").text, "--output is given more than once"));
    for (const char* line : {"turn 90 -", "turn 90 - b.jpg", "turn 90 a.jpg -"}) {
        const Outcome stream = kirvo(line);
        EXPECT_EQ(stream.code, 2) << line;
        EXPECT_TRUE(contains(stream.text, "works on files, not on standard input")) << stream.text;
    }
    EXPECT_TRUE(contains(kirvo("convrt a b").text, "did you mean convert?"));
    EXPECT_TRUE(contains(kirvo("effects blurr").text, "did you mean blur?"));
    const Outcome unknown = kirvo("help convrt");
    EXPECT_EQ(unknown.code, 2);
    EXPECT_TRUE(contains(unknown.text, "'convrt' is no command; did you mean convert?"));
    EXPECT_EQ(kirvo("help convert").code, 0);
    EXPECT_TRUE(contains(kirvo("convert a b --hue").text, "--hue: MODE,DEGREES is wanted"));
    EXPECT_TRUE(contains(kirvo("make").text, "kirvo make: solid or gradient is wanted"));
}

TEST(Typing, OptionsMayStandBeforeTheCommand) {
    const Pictures p;
    EXPECT_EQ(kirvo("-j 2 --negative convert " + p.file("a.bmp") + " " + p.file("n.bmp")).code, 0);
    EXPECT_TRUE(p.has("n.bmp"));
    EXPECT_TRUE(contains(kirvo("-j 0 convert a b").text, "--jobs: 1 to 1024"));
    EXPECT_TRUE(contains(kirvo("-j 2").text, "no option -j"));
    EXPECT_FALSE(std::filesystem::exists("out.bmp"));
}

TEST(Typing, OutputsAreNamedByFoldersPatternsAndSuffixes) {
    const Pictures p;
    std::filesystem::copy(p.file("a.bmp"), p.file("b.bmp"));
    const std::string both = p.file("a.bmp") + " " + p.file("b.bmp") + " ";
    std::filesystem::create_directory(p.file("there"));
    EXPECT_EQ(kirvo("convert " + both + p.file("there")).code, 0);
    EXPECT_TRUE(p.has("there/a.bmp") && p.has("there/b.bmp"));
    EXPECT_EQ(kirvo("convert " + both + p.file("new/") + " --to tga").code, 0);
    EXPECT_TRUE(p.has("new/a.tga") && p.has("new/b.tga"));
    EXPECT_EQ(kirvo("convert " + both + p.file("made")).code, 0);
    EXPECT_TRUE(p.has("made/a.bmp") && p.has("made/b.bmp"));
    std::filesystem::copy(p.file("a.bmp"), p.file("bare"));
    const Outcome bare = kirvo("convert " + p.file("bare") + " -o " + p.file("bares"));
    EXPECT_EQ(bare.code, 2);
    EXPECT_EQ(kirvo("convert " + p.file("bare") + " --in-place --rotate 90").code, 0);
    EXPECT_EQ(size_of(p.file("bare")), "30x40");
    EXPECT_TRUE(contains(bare.text, "bare has no extension: name the format with --to"))
        << bare.text;
    EXPECT_EQ(
        kirvo("convert " + both + "-o " + p.file("{name}_{width}x{height}.tga") + " --resize 20x")
            .code,
        0);
    EXPECT_TRUE(p.has("a_20x15.tga") && p.has("b_20x15.tga"));
    EXPECT_EQ(kirvo("convert " + both + p.file("deep/{number}-{ext}.tga")).code, 0);
    EXPECT_TRUE(p.has("deep/1-bmp.tga") && p.has("deep/2-bmp.tga"));
    EXPECT_EQ(kirvo("convert " + both + "--suffix _small --fit 10x10").code, 0);
    EXPECT_EQ(size_of(p.file("a_small.bmp")), "10x7");
    EXPECT_EQ(kirvo("convert " + both + "-o " + p.file("{width}.bmp")).code, 2); // both the same
    EXPECT_EQ(kirvo("convert " + both + "-o " + p.file("{nam}.bmp")).code, 2);
    for (const char* ending : {"jpe", "jfif", "dib"}) {
        const std::string name = p.file(std::string("x.") + ending);
        EXPECT_EQ(kirvo("convert " + p.file("a.bmp") + " " + name).code, 0) << ending;
        EXPECT_EQ(kirvo("info " + name).code, 0) << ending;
    }
}

TEST(Typing, ATurnedFileIsNamedAsWhatItIs) {
    const Pictures p;
    ASSERT_EQ(kirvo("convert " + p.file("a.bmp") + " " + p.file("a.jpg")).code, 0);
    const Outcome png = kirvo("turn 90 " + p.file("a.jpg") + " " + p.file("a.png"));
    EXPECT_EQ(png.code, 1);
    EXPECT_TRUE(contains(png.text, "a.png: what was turned is a JPEG: name it .jpg")) << png.text;
    EXPECT_FALSE(p.has("a.png"));
    const Outcome sizes =
        kirvo("turn 90 " + p.file("a.jpg") + " -o " + p.file("{name}_{width}.jpg"));
    EXPECT_EQ(sizes.code, 2);
    EXPECT_TRUE(contains(sizes.text, "are not known before a turn")) << sizes.text;
    EXPECT_EQ(kirvo("turn 90 " + p.file("a.jpg") + " -o " + p.file("{name}_{number}.jpg")).code, 0);
    EXPECT_TRUE(p.has("a_1.jpg"));
    const Outcome grey = kirvo("convert " + p.file("a.jpg") + " " + p.file("g.png") + " --grey");
    EXPECT_EQ(grey.code, 2);
    EXPECT_TRUE(contains(grey.text, "--grey: only JPEG files are written so")) << grey.text;
}

TEST(Typing, FoldersAreSearchedOnRequest) {
    const Pictures p;
    std::filesystem::create_directories(p.file("tree/inner"));
    std::filesystem::copy(p.file("a.bmp"), p.file("tree/a.bmp"));
    std::filesystem::copy(p.file("a.bmp"), p.file("tree/inner/a.bmp"));
    std::ofstream(p.file("tree/notes.txt")) << "no picture";
    EXPECT_EQ(kirvo("convert " + p.file("tree") + " " + p.file("out/")).code, 1);
    for (int again = 0; again < 2; ++again) { // what was made is not taken for an input
        const Outcome run = kirvo("convert -f -r " + p.file("tree") + " -o " + p.file("tree/out"));
        EXPECT_EQ(run.code, 0) << run.text;
        EXPECT_TRUE(contains(run.text, "2 converted, 0 failed")) << run.text;
    }
    EXPECT_TRUE(p.has("tree/out/a.bmp") && p.has("tree/out/inner/a.bmp"));
    const Outcome info = kirvo("info -r " + p.file("tree"));
    EXPECT_EQ(std::count(info.text.begin(), info.text.end(), '\n'), 4) << info.text;
    std::filesystem::create_directory(p.file("empty"));
    EXPECT_EQ(kirvo("convert -r " + p.file("empty") + " -o " + p.file("o")).code, 1);
}

TEST(Typing, ARehearsalWritesNothing) {
    const Pictures p;
    std::filesystem::copy(p.file("a.bmp"), p.file("b.bmp"));
    const Outcome run = kirvo("convert --dry-run " + p.file("a.bmp") + " " + p.file("b.bmp") + " " +
                              p.file("none.bmp") + " -o " + p.file("new"));
    EXPECT_EQ(run.code, 1) << run.text;
    EXPECT_TRUE(contains(run.text, "a.bmp -> ")) << run.text;
    EXPECT_TRUE(contains(run.text, "none.bmp: ")) << run.text;
    EXPECT_FALSE(p.has("new"));
    EXPECT_EQ(kirvo("convert --dry-run " + p.file("a.bmp") + " " + p.file("b.bmp")).code, 1);
}

TEST(Typing, EachFileIsTakenOnce) {
    const Pictures p;
    const std::string a = p.file("a.bmp");
    const std::vector<uint8_t> before = bytes_of(a);
    EXPECT_EQ(kirvo("convert --in-place --negative " + a + " " + p.file("./a.bmp") + " " + a).code,
              0);
    EXPECT_NE(bytes_of(a), before); // once, not twice
}

TEST(Typing, InPlaceKeepsTheFormat) {
    const Pictures p;
    ASSERT_EQ(kirvo("convert " + p.file("a.bmp") + " " + p.file("x.jpg")).code, 0);
    const std::vector<uint8_t> before = bytes_of(p.file("x.jpg"));
    EXPECT_EQ(kirvo("convert --in-place --to bmp " + p.file("x.jpg")).code, 2);
    EXPECT_EQ(bytes_of(p.file("x.jpg")), before);
    std::filesystem::copy(p.file("a.bmp"), p.file("lies.jpg")); // a BMP file
    EXPECT_EQ(kirvo("convert --in-place --negative " + p.file("lies.jpg")).code, 0);
    EXPECT_TRUE(contains(kirvo("info " + p.file("lies.jpg")).text, ": BMP"));
}

TEST(Typing, AFileGetsNoLargerThanWanted) {
    const Pictures p;
    ASSERT_EQ(kirvo("convert " + p.file("a.bmp") + " " + p.file("big.bmp") +
                    " --resize 640x480 --sharpen emboss --hue turn,10")
                  .code,
              0);
    const Outcome run = kirvo("convert " + p.file("big.bmp") + " " + p.file("s.jpg") +
                              " --size 9k --comment hello");
    EXPECT_EQ(run.code, 0) << run.text;
    EXPECT_LE(bytes_of(p.file("s.jpg")).size(), 9000u);
    EXPECT_EQ(kirvo("convert " + p.file("big.bmp") + " " + p.file("t.jpg") + " --size 300").code,
              1);
    EXPECT_FALSE(p.has("t.jpg"));
    EXPECT_EQ(kirvo("convert " + p.file("big.bmp") + " " + p.file("t.tga") + " --size 9k").code, 2);
}

TEST(Typing, NamesOfEveryAlphabet) {
    const Pictures p;
    const TempFolder outside;
    std::filesystem::create_directory(std::filesystem::path(p.file("")) / u8"写真");
    for (const char* name : {"写真/Łódź.bmp", "Ελλάδα.jpg", "école.tga"}) {
        const std::string file = "\"" + p.file(name) + "\"";
        EXPECT_EQ(kirvo("convert " + p.file("a.bmp") + " " + file).code, 0) << name;
        const Outcome info = kirvo("info " + file);
        EXPECT_EQ(info.code, 0) << info.text;
        EXPECT_TRUE(contains(info.text, name)) << info.text;
        EXPECT_TRUE(std::filesystem::exists(
            std::filesystem::path(p.file("")) /
            std::u8string(name, name + std::char_traits<char>::length(name))))
            << name;
    }
}

TEST(Typing, NamesOfAnyLength) {
    const Pictures p;
    std::string folder = p.file("long");
    for (int i = 0; i < 5; ++i)
        folder += "/" + std::string(60, static_cast<char>('a' + i));
    const Outcome run = kirvo("convert " + p.file("a.bmp") + " " + folder + "/ --to jpg");
    EXPECT_EQ(run.code, 0) << run.text;
    const Outcome info = kirvo("info " + folder + "/a.jpg");
    EXPECT_EQ(info.code, 0) << info.text;
    EXPECT_EQ(kirvo("convert --in-place --negative " + folder + "/a.jpg").code, 0);
    remove_long(folder);
}

TEST(Typing, JsonKeysHaveNoSpaces) {
    const Pictures p;
    ASSERT_EQ(kirvo("convert " + p.file("a.bmp") + " " + p.file("x.jpg")).code, 0);
    const std::string text =
        kirvo("info --json " + p.file("x.jpg") + " " + p.file("a.bmp")).text +
        kirvo("convert --json --time " + p.file("a.bmp") + " " + p.file("y.jpg")).text;
    EXPECT_TRUE(contains(text, "\"quantisation_tables\":")) << text;
    for (size_t end = text.find("\":"); end != std::string::npos; end = text.find("\":", end + 1)) {
        const size_t begin = text.rfind('"', end - 1);
        EXPECT_EQ(text.substr(begin, end - begin).find(' '), std::string::npos)
            << text.substr(begin, end - begin);
    }
}

TEST(Typing, AGalleryOfNothingLeavesNothing) {
    const Pictures p;
    EXPECT_EQ(kirvo("gallery " + p.file("none.jpg") + " " + p.file("gallery")).code, 1);
    EXPECT_FALSE(p.has("gallery"));
}
