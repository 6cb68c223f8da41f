// Q0 files and the companion file that holds their size.
#include "formats/reader.hpp"

#include <filesystem>

using namespace kirvo_test;

namespace {

// A picture of the size given, with a companion file of the given text.
Read read_with_companion(const std::string& companion, int32_t width, int32_t height) {
    const TempFolder folder;
    folder.write("p.IPR", companion);
    const std::string name = folder.write("p.q0", rgb_rows(width, height));
    Read r = read_q0(name);
    EXPECT_FALSE(is_open(name));
    EXPECT_FALSE(is_open(folder.path("p.IPR")));
    return r;
}

std::string size_text(int32_t width, int32_t height) {
    return std::to_string(width) + " " + std::to_string(height);
}

// The picture is found with this companion.
void expect_companion(const std::string& title, const std::string& companion) {
    const TempFolder folder;
    folder.write(companion, size_text(3, 2));
    const Read r = read_q0(folder.write(title, rgb_rows(3, 2)));
    expect_picture(r, 3, 2);
}

} // namespace

TEST(Q0Read, reads_red_green_blue_rows_from_the_top_down) {
    for (int32_t width = 1; width <= 40; ++width) {
        const Read r = read_with_companion(size_text(width, 5), width, 5);
        expect_picture(r, width, 5);
        EXPECT_EQ(r.bits, 24u);
    }
}

TEST(Q0Read, reads_a_single_pixel) { expect_picture(read_with_companion("1 1", 1, 1), 1, 1); }

TEST(Q0Read, puts_the_files_first_row_at_the_top) {
    const TempFolder folder;
    folder.write("p.IPR", "1 2");
    const Read r = read_q0(folder.write("p.q0", Bytes{1, 2, 3, 4, 5, 6}));
    ASSERT_EQ(r.status, KIRVO_OK);
    EXPECT_EQ(r.dib.rows(), (Bytes{6, 5, 4, 0, 3, 2, 1, 0}));
}

TEST(Q0Read, finds_the_companion_by_the_title) {
    expect_companion("photo.q0", "photo.IPR");
    expect_companion("photo", "photo.IPR");
    expect_companion("photo.", "photo.IPR");
    expect_companion("two.dots.q0", "two.dots.IPR");
    expect_companion("long.extension", "long.IPR");
    expect_companion("with blank.q0", "with blank.IPR");
    expect_companion(".q0", ".IPR");
}

#ifndef _WIN32
TEST(Q0Read, looks_for_the_extension_behind_a_backslash) {
    expect_companion("a.b\\photo", "a.b\\photo.IPR");
    expect_companion("a.b\\photo.q0", "a.b\\photo.IPR");
}
#endif

TEST(Q0Read, does_not_take_a_dot_of_the_folder_for_an_extension) {
    const TempFolder folder;
    std::filesystem::create_directory(folder.path("a.b"));
    const std::string title = (std::filesystem::path("a.b") / "photo").string();
    folder.write(title + ".IPR", size_text(3, 2));
    expect_picture(read_q0(folder.write(title, rgb_rows(3, 2))), 3, 2);
}

TEST(Q0Read, finds_both_files_in_the_current_folder) {
    const TempFolder folder;
    folder.write("here.IPR", size_text(3, 2));
    folder.write("here.q0", rgb_rows(3, 2));
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(std::filesystem::path(folder.path("x")).parent_path());
    const Read r = read_q0("here.q0");
    const Read dotted = read_q0("./here.q0");
    std::filesystem::current_path(before);
    expect_picture(r, 3, 2);
    expect_picture(dotted, 3, 2);
}

TEST(Q0Read, reads_a_file_that_is_its_own_companion_no_further_than_its_text) {
    const TempFolder folder;
    const Read r = read_q0(folder.write("p.IPR", "1 1"));
    ASSERT_EQ(r.status, KIRVO_OK);
    EXPECT_EQ(r.dib.rows(), (Bytes{'1', ' ', '1', 0}));
}

TEST(Q0Read, takes_two_integers_however_they_are_set_apart) {
    for (const char* companion :
         {"3 2", "3\n2", "3\r\n2\r\n", "\t\v\f\r\n  3   \n\n 2", "+3 +2", "003 0002", "3+2",
          "3 2 1", "3 2x", "3 2\x1A", "3 2.5", " 3 2 comment\nmore"})
        expect_picture(read_with_companion(companion, 3, 2), 3, 2);
    for (const size_t count : {509, 5000}) {
        std::string blanks(count, ' '), zeros(count, '0');
        expect_picture(read_with_companion(blanks.append("0003 0002"), 3, 2), 3, 2);
        expect_picture(read_with_companion(zeros.append("3 2"), 3, 2), 3, 2);
    }
}

TEST(Q0Read, tells_a_companion_without_two_integers) {
    for (const std::string companion :
         {"", " ", "3", "3 ", "3 x", "x 2", "3,2", "0x3 2", "3 - 2", "3 +-2", "--3 2", ". 2",
          "3.0 2", "\x1A 3 2", "3 \x1A 2", "width 3 height 2",
          "\xEF\xBB\xBF"
          "3 2"})
        expect_failure(read_with_companion(companion, 3, 2), KIRVO_Q0_SIZE);
    expect_failure(read_with_companion(std::string("\0 3 2", 6), 3, 2), KIRVO_Q0_SIZE);
    expect_failure(read_with_companion(std::string("3\0 2", 4), 3, 2), KIRVO_Q0_SIZE);
}

TEST(Q0Read, tells_a_missing_companion_even_when_the_file_is_missing_too) {
    const TempFolder folder;
    expect_failure(read_q0(folder.write("p.q0", rgb_rows(3, 2))), KIRVO_Q0_SIZE);
    expect_failure(read_q0(folder.path("missing.q0")), KIRVO_Q0_SIZE);
    std::filesystem::create_directory(folder.path("p.IPR"));
    expect_failure(read_q0(folder.path("p.q0")), KIRVO_Q0_SIZE);
}

TEST(Q0Read, tells_a_missing_file_with_a_companion) {
    const TempFolder folder;
    folder.write("p.IPR", "3 2");
    expect_failure(read_q0(folder.path("p.q0")), KIRVO_CANNOT_OPEN);
    std::filesystem::create_directory(folder.path("p.q0"));
    expect_failure(read_q0(folder.path("p.q0")), KIRVO_CANNOT_OPEN);
}

TEST(Q0Read, tells_names_that_no_file_has) {
    for (const std::string& name : impossible_names(".q0"))
        expect_failure(read_q0(name), KIRVO_Q0_SIZE);
    expect_failure(read_q0(temp_folder()), KIRVO_Q0_SIZE);
    int32_t status = 99;
    EXPECT_EQ(Q0Read(nullptr, nullptr, nullptr, nullptr, &status), nullptr);
    EXPECT_EQ(status, KIRVO_Q0_SIZE);
}

TEST(Q0Read, wants_a_file_of_at_least_the_pixels) {
    const TempFolder folder;
    folder.write("p.IPR", "3 2");
    Bytes bytes = rgb_rows(3, 2);
    for (size_t length = 0; length < bytes.size(); ++length) {
        const std::string name =
            folder.write("p.q0", Bytes(bytes.begin(), bytes.begin() + ptrdiff_t(length)));
        expect_failure(read_q0(name), KIRVO_Q0_SIZE);
        EXPECT_FALSE(is_open(name));
    }
    expect_picture(read_q0(folder.write("p.q0", bytes)), 3, 2);
    bytes.insert(bytes.end(), 100, 0xEE);
    expect_picture(read_q0(folder.write("p.q0", bytes)), 3, 2);
}

TEST(Q0Read, holds_huge_sizes_against_the_file) {
    for (const char* companion :
         {"2147483647 2147483647", "65536 65536", "1431655766 1", "65536 21846",
          "99999999999999999999 1", "1 99999999999999999999", "-2147483648 -2147483648", "-9 -9",
          "4294967297 1", "18446744073709551617 1"})
        expect_failure(read_with_companion(companion, 3, 2), KIRVO_Q0_SIZE);
}

TEST(Q0Read, has_no_memory_for_a_size_below_1) {
    for (const char* companion :
         {"0 0", "0 5", "5 0", "-3 2", "3 -2", "-1 -1", "-99999999999999999999 1", "1 -2147483648"})
        expect_failure(read_with_companion(companion, 3, 2), KIRVO_NO_MEMORY);
}

TEST(Q0Read, takes_null_out_pointers) {
    const TempFolder folder;
    folder.write("p.IPR", "3 2");
    const std::string name = folder.write("p.q0", rgb_rows(3, 2));
    const Dib dib(Q0Read(name.c_str(), nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(dib.width(), 3);
    EXPECT_EQ(Q0Read(nullptr, nullptr, nullptr, nullptr, nullptr), nullptr);
}

TEST(Q0Read, sends_progress_by_rows_and_switches_it_off) {
    const TempFolder folder;
    ProgressRecorder recorder;
    for (const int32_t height : {1, 2, 7, 20, 200}) {
        folder.write("p.IPR", size_text(2, height));
        const std::string name = folder.write("p.q0", rgb_rows(2, height));
        recorder.watch(42);
        EXPECT_EQ(read_q0(name).status, KIRVO_OK);
        EXPECT_EQ(recorder.percents(), single_pass_percents(height));
        EXPECT_EQ(recorder.messages().front().command, 42u);
        const size_t sent = recorder.messages().size();
        EXPECT_EQ(read_q0(name).status, KIRVO_OK);
        EXPECT_EQ(recorder.messages().size(), sent);
    }
}

TEST(Q0Read, sends_no_progress_for_what_fails_before_the_rows) {
    const TempFolder folder;
    ProgressRecorder recorder;
    recorder.watch();
    folder.write("p.IPR", "0 0");
    EXPECT_EQ(read_q0(folder.write("p.q0", rgb_rows(3, 2))).status, KIRVO_NO_MEMORY);
    folder.write("p.IPR", "3 3");
    EXPECT_EQ(read_q0(folder.path("p.q0")).status, KIRVO_Q0_SIZE);
    EXPECT_TRUE(recorder.messages().empty());
}

TEST(Q0Read, tells_a_file_that_shrinks_while_it_is_read) {
    const TempFolder folder;
    folder.write("p.IPR", "100 100");
    const std::string name = folder.write("p.q0", rgb_rows(100, 100));
    ProgressRecorder recorder;
    recorder.on_message = [&](const ProgressMessage& message) {
        if (message.percent == 50)
            std::filesystem::resize_file(name, 300 * 60);
    };
    recorder.watch();
    expect_failure(read_q0(name), KIRVO_READ_ERROR);
    EXPECT_EQ(recorder.percents(), (std::vector{0, 5, 10, 15, 20, 25, 30, 35, 40, 45, 50, 55, 60}));
    EXPECT_FALSE(is_open(name));
}
