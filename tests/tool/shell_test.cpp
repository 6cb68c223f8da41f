// The command line as a shell's user meets it: many files, streams, nothing lost by accident.
#include "support/temp_file.hpp"
#include "tool/run.hpp"

#include <algorithm>
#include <fstream>
#include <sstream>

using namespace kirvo_test;

namespace {

std::vector<std::string> lines_of(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        lines.push_back(line);
    }
    return lines;
}

size_t widest(const std::string& text) {
    size_t width = 0;
    for (const std::string& line : lines_of(text))
        width = std::max(width, line.size());
    return width;
}

// A folder of a test's own with two pictures, a.bmp (blue) and b.bmp (red).
struct Folder {
    Folder() : path(TempFile("").name()) {
        std::filesystem::remove_all(path);
        std::filesystem::create_directories(path);
        EXPECT_EQ(kirvo("make solid 8x6 " + file("a.bmp") + " -c 0000FF").code, 0);
        EXPECT_EQ(kirvo("make solid 8x6 " + file("b.bmp") + " -c FF0000").code, 0);
    }
    ~Folder() { std::filesystem::remove_all(path); }

    std::string file(const std::string& name) const { return path + "/" + name; }
    bool has(const std::string& name) const { return std::filesystem::exists(file(name)); }
    std::vector<uint8_t> bytes(const std::string& name) const {
        std::ifstream stream(file(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    size_t files() const {
        return static_cast<size_t>(std::distance(std::filesystem::directory_iterator(path), {}));
    }

    std::string path;
};

uint32_t first_pixel(const std::string& name) {
    int32_t status = 0;
    const Dib dib(DibReadEx(name.c_str(), nullptr, nullptr, nullptr, &status));
    EXPECT_EQ(status, KIRVO_OK) << name;
    return status == KIRVO_OK ? dib.pixel(0, 0) : 0;
}

} // namespace

TEST(Shell, HelpFitsAScreen) {
    const Outcome top = kirvo("--help");
    EXPECT_LE(lines_of(top.text).size(), 24u);
    EXPECT_TRUE(contains(top.text, "0 done, 1 an input failed, 2 wrong usage, 130 interrupted"));
    EXPECT_LT(widest(kirvo("--help-all").text), 80u);
    EXPECT_LT(widest(kirvo("effects").text), 80u);
    for (const char* command : {"info", "convert", "turn", "make", "effects", "gallery"}) {
        EXPECT_TRUE(contains(top.text, command)) << command;
        const std::string help = kirvo(std::string(command) + " --help").text;
        EXPECT_TRUE(contains(help, "Examples:\n  kirvo " + std::string(command)) ||
                    contains(help, "Examples:\r\n  kirvo " + std::string(command)))
            << help;
    }
    const std::string convert = kirvo("convert --help").text;
    EXPECT_TRUE(contains(convert, "--mosaic-average")) << convert;
    EXPECT_FALSE(contains(convert, "Blocks of their average colour")) << convert;
    EXPECT_TRUE(contains(kirvo("--version").text, "kirvo 1.0.4.2"));
}

TEST(Shell, SeveralInputsGoIntoAFolderThatIsMade) {
    const Folder folder;
    const Outcome run = kirvo("convert " + folder.file("a.bmp") + " " + folder.file("b.bmp") +
                              " --output " + folder.file("new/small") + " --to tga");
    EXPECT_EQ(run.code, 0) << run.text;
    EXPECT_TRUE(contains(run.text, "2 converted, 0 failed")) << run.text;
    EXPECT_TRUE(folder.has("new/small/a.tga"));
    EXPECT_TRUE(folder.has("new/small/b.tga"));

    const Outcome same =
        kirvo("convert " + folder.file("a.bmp") + " -o " + folder.file("same") + " --negative");
    EXPECT_EQ(same.code, 0) << same.text;
    EXPECT_EQ(first_pixel(folder.file("same/a.bmp")), 0xFFFF00u);
}

TEST(Shell, SeveralInputsWithoutAFolderAreWrongUsage) {
    const Folder folder;
    const std::string both = folder.file("a.bmp") + " " + folder.file("b.bmp");
    EXPECT_EQ(kirvo("convert " + both + " " + folder.file("c.bmp")).code, 2);
    EXPECT_EQ(kirvo("convert " + both + " --in-place -o " + folder.file("c")).code, 2);
    EXPECT_EQ(kirvo("convert " + both + " --mask m.bmp -o " + folder.file("c")).code, 2);
    const Outcome file = kirvo("convert " + both + " -o " + folder.file("c.bmp"));
    EXPECT_EQ(file.code, 2);
    EXPECT_TRUE(contains(file.text, "is one file")) << file.text;
    const Outcome twice = kirvo("convert " + folder.file("a.bmp") + " " + folder.file("x/a.bmp") +
                                " -o " + folder.file("c"));
    EXPECT_EQ(twice.code, 2);
    EXPECT_TRUE(contains(twice.text, "would both become")) << twice.text;
    EXPECT_FALSE(folder.has("c"));
    EXPECT_EQ(kirvo("convert " + folder.file("a.bmp") + " --to gif -o " + folder.path).code, 2);
}

TEST(Shell, GoesOnAfterAnInputThatFails) {
    const Folder folder;
    std::ofstream(folder.file("junk.bmp")) << "not a picture at all";
    const Outcome run = kirvo("convert " + folder.file("none.bmp") + " " + folder.file("junk.bmp") +
                              " " + folder.file("b.bmp") + " -o " + folder.file("out"));
    EXPECT_EQ(run.code, 1);
    EXPECT_TRUE(folder.has("out/b.bmp"));
    EXPECT_FALSE(folder.has("out/junk.bmp"));
    EXPECT_TRUE(contains(run.text, "none.bmp: " + no_such_file())) << run.text;
    EXPECT_TRUE(contains(run.text, "junk.bmp: not a picture of a known format")) << run.text;
    EXPECT_TRUE(contains(run.text, "1 converted, 2 failed")) << run.text;
}

TEST(Shell, AFailingEffectNamesTheFileAndTheEffectAndTheSizeOfThePicture) {
    const Folder folder;
    const Outcome run =
        kirvo("convert " + folder.file("a.bmp") + " " + folder.file("c.bmp") + " --crop 1,1,8,3");
    EXPECT_EQ(run.code, 1);
    EXPECT_TRUE(contains(run.text, "a.bmp: --crop: ")) << run.text;
    EXPECT_TRUE(contains(run.text, "8 x 6")) << run.text;
    EXPECT_EQ(folder.files(), 2u);
}

TEST(Shell, FilesAreReplacedOnlyByForce) {
    const Folder folder;
    const std::string a = folder.file("a.bmp"), b = folder.file("b.bmp");
    const auto before = folder.bytes("b.bmp");
    const Outcome refused = kirvo("convert " + a + " " + b);
    EXPECT_EQ(refused.code, 1);
    EXPECT_TRUE(contains(refused.text, "b.bmp: the file exists; --force replaces it"));
    EXPECT_EQ(kirvo("make solid 2x2 " + b + " -c 000000").code, 1);
    EXPECT_EQ(kirvo("convert " + a + " " + b + " -o " + folder.path + " --to bmp").code, 1);
    EXPECT_EQ(folder.bytes("b.bmp"), before);
    EXPECT_EQ(kirvo("convert -f " + a + " " + b).code, 0);
    EXPECT_EQ(first_pixel(b), 0x0000FFu);
    EXPECT_EQ(kirvo("make solid 2x2 --force " + b + " -c 010203").code, 0);
    EXPECT_EQ(first_pixel(b), 0x010203u);
    EXPECT_EQ(folder.files(), 2u); // nothing of another name is left
    std::filesystem::create_directory(folder.file("d.bmp"));
    EXPECT_EQ(kirvo("make solid 2x2 -f " + folder.file("d.bmp") + " -c 010203").code, 1);
    EXPECT_EQ(kirvo("convert -f " + a + " " + folder.file("d.bmp")).code, 0); // goes into it
    EXPECT_TRUE(folder.has("d.bmp/a.bmp"));
}

TEST(Shell, TheInputIsReplacedOnPurposeOnly) {
    const Folder folder;
    const std::string a = folder.file("a.bmp"), b = folder.file("b.bmp");
    const auto before = folder.bytes("a.bmp");
    for (const std::string& attempt :
         {"convert -f " + a + " " + a + " --negative",
          "convert -f " + a + " " + folder.path + "/./a.bmp --negative",
          "convert -f " + a + " -o " + folder.path + " --negative"}) {
        const Outcome run = kirvo(attempt);
        EXPECT_EQ(run.code, 1) << attempt;
        EXPECT_TRUE(contains(run.text, "the input itself")) << run.text;
    }
    EXPECT_EQ(folder.bytes("a.bmp"), before);
    EXPECT_EQ(kirvo("convert --in-place " + a + " " + b + " --negative").code, 0);
    EXPECT_EQ(first_pixel(a), 0xFFFF00u);
    EXPECT_EQ(first_pixel(b), 0x00FFFFu);
    EXPECT_EQ(folder.files(), 2u);
}

TEST(Shell, StandardStreamsCarryPictures) {
    const Folder folder;
    const std::string a = folder.file("a.bmp"), out = folder.file("out");
    for (const char* format : {"bmp", "jpg", "tga"}) {
        const std::string named = folder.file(std::string("named.") + format);
        ASSERT_EQ(kirvo("convert " + a + " " + named + " --mosaic 3").code, 0);
        ASSERT_EQ(run_command(std::string(program) + " convert - - --mosaic 3 --to " + format +
                              " <" + a + " >" + out),
                  0);
        EXPECT_EQ(folder.bytes("out"), folder.bytes(std::string("named.") + format)) << format;
        const Outcome info = kirvo("info - <" + named);
        EXPECT_EQ(info.code, 0) << info.text;
        EXPECT_TRUE(contains(info.text, "8 x 6")) << info.text;
    }
    EXPECT_EQ(run_command(std::string(program) + " make solid 8x6 - --to bmp -c 0000FF >" + out),
              0);
    EXPECT_EQ(folder.bytes("out"), folder.bytes("a.bmp"));
    EXPECT_EQ(kirvo("convert - --to bmp -o " + folder.file("streams") + " <" + a).code, 0);
    EXPECT_EQ(folder.bytes("streams/stdin.bmp"), folder.bytes("a.bmp"));
}

TEST(Shell, StandardStreamsNeedAFormatAndKeepTextAway) {
    const Folder folder;
    const std::string a = folder.file("a.bmp"), out = folder.file("out");
    EXPECT_EQ(kirvo("convert " + a + " -").code, 2);
    EXPECT_EQ(kirvo("convert - -o " + folder.file("d") + " <" + a).code, 2);
    EXPECT_EQ(kirvo("convert " + a + " - --to bmp --json").code, 2);
    EXPECT_EQ(run_command(std::string(program) + " convert " + a +
                          " - --to bmp --time --histogram" + " >" + out + " 2>" +
                          folder.file("text")),
              0);
    EXPECT_EQ(folder.bytes("out"), folder.bytes("a.bmp"));
    EXPECT_GT(folder.bytes("text").size(), 500u);
    std::ofstream(folder.file("empty")).close();
    EXPECT_EQ(kirvo("convert - " + folder.file("c.bmp") + " <" + folder.file("empty")).code, 1);
    std::ofstream(folder.file("junk")) << "no picture";
    const Outcome junk = kirvo("convert - " + folder.file("c.bmp") + " <" + folder.file("junk"));
    EXPECT_EQ(junk.code, 1);
    EXPECT_TRUE(contains(junk.text, "standard input: not a picture")) << junk.text;
}

#ifndef _WIN32
TEST(Shell, WordsThatAreLostAreAFailure) {
    const Folder folder;
    for (const std::string& words :
         {"info " + folder.file("a.bmp"), "info --json " + folder.file("a.bmp"),
          std::string("effects"), std::string("--version")}) {
        const int code =
            run_command(std::string(program) + " " + words + " >/dev/full 2>/dev/null");
        EXPECT_EQ(code, 1) << words;
    }
}
#endif

TEST(Shell, QuietSaysNothingButErrors) {
    const Folder folder;
    const Outcome good = kirvo("--quiet convert " + folder.file("a.bmp") + " " +
                               folder.file("b.bmp") + " --to jpg -o " + folder.file("out"));
    EXPECT_EQ(good.code, 0);
    EXPECT_EQ(good.text, "");
    const Outcome bad = kirvo("convert -q " + folder.file("none.bmp") + " " + folder.file("c.bmp"));
    EXPECT_EQ(bad.code, 1);
    EXPECT_TRUE(contains(bad.text, "none.bmp")) << bad.text;
}

TEST(Shell, NoColoursAndNoBarAwayFromTerminals) {
    const Folder folder;
    for (const std::string& arguments :
         {std::string("--help"), std::string("effects"),
          "convert " + folder.file("none") + " x.bmp",
          "convert " + folder.file("a.bmp") + " " + folder.file("c.bmp") + " --blur"}) {
        const std::string text = kirvo(arguments).text;
        EXPECT_FALSE(contains(text, "\x1b")) << text;
        EXPECT_FALSE(contains(text, "[#")) << text;
    }
}

TEST(Shell, ResultsAsJson) {
    const Folder folder;
    const Outcome run = kirvo("convert --json --histogram " + folder.file("a.bmp") + " " +
                              folder.file("none.bmp") + " -q -o " + folder.file("out"));
    EXPECT_EQ(run.code, 1);
    for (const char* part :
         {"\"output\": \"", "a.bmp\"", "\"width\": 8", "\"height\": 6", "\"bytes\": 198",
          "\"colours\": 1", "\"status\": -103", "\"error\": \""})
        EXPECT_TRUE(contains(run.text, part)) << part << "\n" << run.text;
    EXPECT_FALSE(contains(run.text, "value red green blue"));
    const Outcome info =
        kirvo("info --json " + folder.file("none.bmp") + " " + folder.file("a.bmp"));
    EXPECT_EQ(info.code, 1);
    EXPECT_TRUE(contains(info.text, "\"status\": -103")) << info.text;
    EXPECT_TRUE(contains(info.text, "\"format\": \"BMP\"")) << info.text;
    const Outcome effects = kirvo("effects --json hue");
    EXPECT_EQ(effects.code, 0);
    EXPECT_TRUE(contains(effects.text, "\"option\": \"--hue\"")) << effects.text;
    EXPECT_TRUE(contains(effects.text, "\"example\": \"turn,120\"")) << effects.text;
    for (const char* part : {"\"title\": \"Hue\"", "\"group\": \"Hue\"", "\"label\": \"Degrees\"",
                             "\"kind\": \"mode\"", "\"kind\": \"whole\"", "\"most\": 359.0"})
        EXPECT_TRUE(contains(effects.text, part)) << part << "\n" << effects.text;
    EXPECT_EQ(kirvo("effects no-such-effect").code, 2);
}

TEST(Shell, FitKeepsProportionsAndNeverEnlarges) {
    const Folder folder;
    const std::string wide = folder.file("wide.bmp"), out = folder.file("out.bmp");
    ASSERT_EQ(kirvo("make gradient 40x20 " + wide + " -c 000000 FFFFFF").code, 0);
    const auto size_after = [&](const std::string& room) {
        EXPECT_EQ(kirvo("convert -f " + wide + " " + out + " --fit " + room).code, 0);
        int32_t status = 0;
        const Dib dib(DibReadEx(out.c_str(), nullptr, nullptr, nullptr, &status));
        return std::pair(dib.width(), dib.height());
    };
    EXPECT_EQ(size_after("10x10"), std::pair(10, 5));
    EXPECT_EQ(size_after("100x5"), std::pair(10, 5));
    EXPECT_EQ(size_after("4000x4000"), std::pair(40, 20));
    EXPECT_EQ(size_after("1x1"), std::pair(1, 1));
    EXPECT_EQ(kirvo("convert -f " + wide + " " + out + " --fit 0x5").code, 2);
    EXPECT_EQ(kirvo("convert -f " + wide + " " + out + " --fit 5").code, 2);
}

TEST(Shell, NamesMayHaveSpacesAndForeignLetters) {
    const Folder folder;
    const std::string name = "caf\xC3\xA9 1.bmp";
    const std::string quoted = "\"" + folder.file(name) + "\"";
    EXPECT_EQ(kirvo("make solid 8x6 " + quoted + " -c 0000FF").code, 0);
    EXPECT_EQ(folder.files(), 3u);
    EXPECT_EQ(kirvo("make solid 8x6 " + quoted + " -c 0000FF").code, 1); // it is there
    const Outcome info = kirvo("info --json " + quoted);
    EXPECT_EQ(info.code, 0) << info.text;
    EXPECT_TRUE(contains(info.text, "caf\xC3\xA9 1.bmp")) << info.text;
    const Outcome run = kirvo("convert " + quoted + " -o " + folder.file("out") + " --flip");
    EXPECT_EQ(run.code, 0) << run.text;
    const Outcome again = kirvo("convert " + quoted + " -o " + folder.file("out") + " --flip");
    EXPECT_EQ(again.code, 1) << again.text;
}

TEST(Shell, WildcardsNameSeveralInputs) {
    const Folder folder;
    const Outcome run =
        kirvo("convert " + folder.file("*.bmp") + " --to tga -o " + folder.file("out"));
    EXPECT_EQ(run.code, 0) << run.text;
    EXPECT_TRUE(folder.has("out/a.tga"));
    EXPECT_TRUE(folder.has("out/b.tga"));
}
