// Files by name: any letters, what stands in the way, complete or not at all.
#include "files/opened.hpp"

#include <filesystem>
#include <fstream>

#ifndef _WIN32
#include <sys/stat.h>
#include <unistd.h>
#endif

using namespace kirvo_test;
namespace files = std::filesystem;

namespace {

files::path of(const std::string& utf8) {
    return files::path(std::u8string(utf8.begin(), utf8.end()));
}

std::vector<KirvoWide> wide(const std::string& utf8) {
    std::vector<KirvoWide> units;
    for (char16_t unit : of(utf8).u16string())
        units.push_back(static_cast<KirvoWide>(unit));
    units.push_back(0);
    return units;
}

Bytes content(const std::string& utf8) {
    std::ifstream file(of(utf8), std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(file), {});
}

size_t files_in(const TempFolder& folder) {
    const auto list = files::directory_iterator(folder.path(""));
    return static_cast<size_t>(std::distance(begin(list), end(list)));
}

} // namespace

TEST(Names, any_letters_can_be_saved_and_opened) {
    const TempFolder folder;
    const Picture picture(9, 7);
    for (const char* title : {"plain.bmp", "写真.bmp", "Łódź.jpg", "a b.tga", "😀.bmp"}) {
        const std::string name = folder.path("") + title;
        ASSERT_EQ(KirvoFilesSave(name.c_str(), picture.dib, nullptr, nullptr, nullptr),
                  KIRVO_FILES_OK)
            << title;
        EXPECT_TRUE(files::exists(of(name))) << title;
        EXPECT_EQ(Opened(name).status, KIRVO_FILES_OK) << title;
        const std::string other = folder.path("") + "w-" + title;
        ASSERT_EQ(KirvoFilesSaveW(wide(other).data(), picture.dib, nullptr, nullptr, nullptr),
                  KIRVO_FILES_OK);
        EXPECT_TRUE(files::exists(of(other))) << title;
        HGLOBAL dib = nullptr;
        KirvoFile file = nullptr;
        EXPECT_EQ(KirvoFilesOpenW(wide(other).data(), nullptr, &dib, &file), KIRVO_FILES_OK);
        GlobalFree(dib);
        KirvoFilesClose(file);
        EXPECT_EQ(KirvoFilesInfoW(wide(other).data(), nullptr, &file), KIRVO_FILES_OK);
        KirvoFilesClose(file);
    }
    EXPECT_EQ(files_in(folder), 10u);
}

TEST(Names, what_stands_in_the_way_is_told_apart) {
    const TempFolder folder;
    const std::string missing = folder.path("no.bmp");
    const Opened none(missing);
    EXPECT_EQ(none.status, KIRVO_FILES_MISSING);
    EXPECT_EQ(none.text(KIRVO_FILES_TEXT_REASON).find(missing), 0u);
    EXPECT_GT(none.text(KIRVO_FILES_TEXT_REASON).size(), missing.size() + 5);
    EXPECT_EQ(Opened(folder.path(".")).status, KIRVO_FILES_IS_FOLDER);
    EXPECT_EQ(Opened(folder.write("empty.jpg", Bytes{})).status, KIRVO_FILES_EMPTY);
    EXPECT_EQ(Opened(folder.write("text.txt", std::string("no picture at all"))).status,
              KIRVO_FILES_NOT_A_PICTURE);
    const Picture picture(4, 4);
    const auto save_as = [&](const std::string& name, uint32_t flags = 0) {
        KirvoFilesSaveOptions options = as(0, flags);
        options.size = sizeof options;
        return KirvoFilesSave(name.c_str(), picture.dib, nullptr, &options, nullptr);
    };
    EXPECT_EQ(save_as(folder.path("no/x.bmp")), KIRVO_FILES_MISSING);
    EXPECT_EQ(save_as(folder.path("x.xyz")), KIRVO_FILES_NOT_WRITTEN);
    EXPECT_EQ(save_as(folder.path("x.gif")), KIRVO_FILES_NOT_WRITTEN);
    EXPECT_EQ(save_as(folder.path("x.bmp"), KIRVO_FILES_NEW_ONLY), KIRVO_FILES_OK);
    EXPECT_EQ(save_as(folder.path("x.bmp"), KIRVO_FILES_NEW_ONLY), KIRVO_FILES_EXISTS);
    EXPECT_EQ(save_as(folder.path("x.bmp")), KIRVO_FILES_OK);
    files::create_directory(of(folder.path("d.bmp")));
    EXPECT_EQ(save_as(folder.path("d.bmp")), KIRVO_FILES_IS_FOLDER);
}

TEST(Names, content_decides_what_a_file_is) {
    const TempFolder folder;
    const Picture picture(4, 4);
    const Saved jpeg = save(picture.dib, as(KIRVO_FILES_JPEG));
    const Opened opened(folder.write("called.bmp", jpeg.bytes));
    EXPECT_EQ(opened.about.format, KIRVO_FILES_JPEG);
}

TEST(Names, extensions_tell_formats_in_any_case) {
    EXPECT_EQ(KirvoFilesFormatOf("photo.JPG"), KIRVO_FILES_JPEG);
    EXPECT_EQ(KirvoFilesFormatOf(".jfif"), KIRVO_FILES_JPEG);
    EXPECT_EQ(KirvoFilesFormatOf("dib"), KIRVO_FILES_BMP);
    EXPECT_EQ(KirvoFilesFormatOf("a.b/tif"), KIRVO_FILES_TIFF);
    EXPECT_EQ(KirvoFilesFormatOf("jp"), KIRVO_FILES_UNKNOWN);
    EXPECT_EQ(KirvoFilesFormatOf("jpgx"), KIRVO_FILES_UNKNOWN);
    EXPECT_EQ(KirvoFilesFormatOf(""), KIRVO_FILES_UNKNOWN);
    EXPECT_EQ(KirvoFilesFormatOf("a."), KIRVO_FILES_UNKNOWN);
}

TEST(Names, raw_and_q0_files_are_read_by_name) {
    const TempFolder folder;
    Bytes raw = {'m', 'h', 'w', 'a', 'n', 'h', 0, 4, 0, 2, 0, 1, 0, 0};
    raw.resize(32);
    raw.insert(raw.end(), {1, 2, 3, 4, 5, 6});
    const Opened opened(folder.write("a.raw", raw));
    ASSERT_EQ(opened.status, KIRVO_FILES_OK) << opened.text(KIRVO_FILES_TEXT_REASON);
    EXPECT_EQ(opened.pixel(1, 0), 0x040506u);
    folder.write("b.IPR", std::string("1 1"));
    const Opened q0(folder.write("b.q0", Bytes{7, 8, 9}));
    ASSERT_EQ(q0.status, KIRVO_FILES_OK) << q0.text(KIRVO_FILES_TEXT_REASON);
    EXPECT_EQ(q0.pixel(0, 0), 0x070809u);
    KirvoFile file = nullptr;
    KirvoFilesDescription about = {};
    about.size = sizeof about;
    EXPECT_EQ(KirvoFilesInfo(folder.path("b.q0").c_str(), nullptr, &file), KIRVO_FILES_OK);
    KirvoFilesDescribe(file, &about);
    EXPECT_EQ(about.width, 1u);
    EXPECT_EQ(about.height, 1u);
    KirvoFilesClose(file);
    for (const char* words : {"", "1", "-1 1", "0 5", "2 1", "a b"}) { // 3 bytes are one pixel
        folder.write("b.IPR", words);
        EXPECT_EQ(KirvoFilesInfo(folder.path("b.q0").c_str(), nullptr, &file),
                  KIRVO_FILES_UNSUPPORTED)
            << words;
        KirvoFilesClose(file);
    }
}

#ifndef _WIN32
TEST(Names, a_replaced_file_hands_on_its_permissions_and_a_link_stays) {
    const TempFolder folder;
    const Picture picture(4, 4);
    const std::string name = folder.write("x.bmp", std::string("old")), link = folder.path("l.bmp");
    chmod(name.c_str(), 0640);
    files::create_symlink("x.bmp", link);
    ASSERT_EQ(KirvoFilesSave(link.c_str(), picture.dib, nullptr, nullptr, nullptr), KIRVO_FILES_OK);
    EXPECT_TRUE(files::is_symlink(link));
    struct stat about;
    ASSERT_EQ(stat(name.c_str(), &about), 0);
    EXPECT_EQ(about.st_mode & 0777, 0640u);
    EXPECT_EQ(content(name)[0], 'B');
    const mode_t mask = umask(027);
    const std::string fresh = folder.path("new.bmp");
    KirvoFilesSave(fresh.c_str(), picture.dib, nullptr, nullptr, nullptr);
    umask(mask);
    ASSERT_EQ(stat(fresh.c_str(), &about), 0);
    EXPECT_EQ(about.st_mode & 0777, 0640u);
    EXPECT_EQ(files_in(folder), 3u);
}

TEST(Names, a_full_device_is_told) {
    const Picture picture(40, 40);
    KirvoFilesSaveOptions options = as(KIRVO_FILES_BMP);
    options.size = sizeof options;
    EXPECT_EQ(KirvoFilesSave("/dev/full", picture.dib, nullptr, &options, nullptr),
              KIRVO_FILES_DISK_FULL);
}
#endif

TEST(Names, long_paths_are_no_obstacle) {
    const TempFolder folder;
    std::string name = folder.path("");
    for (int i = 0; i < 5; ++i)
        name += std::string(60, static_cast<char>('a' + i)) + "/";
#ifdef _WIN32
    files::create_directories(of("\\\\?\\" + files::absolute(of(name)).make_preferred().string()));
#else
    files::create_directories(of(name));
#endif
    const Picture picture(4, 4);
    EXPECT_EQ(KirvoFilesSave((name + "x.bmp").c_str(), picture.dib, nullptr, nullptr, nullptr),
              KIRVO_FILES_OK);
    EXPECT_EQ(Opened(name + "x.bmp").status, KIRVO_FILES_OK);
}

TEST(Names, bad_arguments_are_answered) {
    const Picture picture(4, 4);
    KirvoFile file = nullptr;
    HGLOBAL dib = nullptr;
    EXPECT_EQ(KirvoFilesOpen(nullptr, nullptr, &dib, &file), KIRVO_FILES_BAD_PARAMETER);
    EXPECT_EQ(KirvoFilesOpen("x", nullptr, nullptr, &file), KIRVO_FILES_BAD_PARAMETER);
    const KirvoFilesOpenOptions odd = {7, 0, 0, 0};
    EXPECT_EQ(KirvoFilesOpen("x", &odd, &dib, &file), KIRVO_FILES_BAD_PARAMETER);
    EXPECT_EQ(KirvoFilesInfo("x", nullptr, nullptr), KIRVO_FILES_BAD_PARAMETER);
    EXPECT_EQ(KirvoFilesSave("x.bmp", nullptr, nullptr, nullptr, nullptr),
              KIRVO_FILES_BAD_PARAMETER);
    KirvoFilesDescription about = {};
    EXPECT_EQ(KirvoFilesDescribe(nullptr, &about), KIRVO_FILES_BAD_PARAMETER);
    EXPECT_EQ(KirvoFilesText(nullptr, KIRVO_FILES_TEXT_REASON, 0, nullptr, 0), 1u);
    EXPECT_EQ(KirvoFilesTurn("a", "b", 9, 0, 0, nullptr), KIRVO_FILES_BAD_PARAMETER);
    KirvoFilesClose(nullptr);
    // An image whose block is smaller than its header says.
    HGLOBAL small = GlobalAlloc(GHND, 60);
    auto* header = static_cast<BITMAPINFOHEADER*>(GlobalLock(small));
    *header = {40, 100, 100, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
    GlobalUnlock(small);
    EXPECT_EQ(save(small, as(KIRVO_FILES_BMP)).status, KIRVO_FILES_BAD_PARAMETER);
    GlobalFree(small);
}
