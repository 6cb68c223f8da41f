// Every reader of image files on good files changed at random: never a crash, a byte outside a
// block, a leak, a file left open, or a long wait.
#include "formats/made_elsewhere.hpp"
#include "formats/reader.hpp"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <functional>

#ifdef _WIN32
constexpr int rounds = 300;
#else
#include <ctime>
constexpr int rounds = 25000;
#endif

using namespace kirvo_test;

namespace {

constexpr double longest_milliseconds = 10;

// Time that the calling thread has worked, which a busy machine does not stretch.
double milliseconds_worked() {
#ifdef _WIN32
    FILETIME made, gone, kernel, user;
    GetThreadTimes(GetCurrentThread(), &made, &gone, &kernel, &user);
    return (kernel.dwLowDateTime + user.dwLowDateTime) / 1e4;
#else
    timespec now;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
#endif
}

template<typename Work>
double time_of(Work work) {
    const double start = milliseconds_worked();
    work();
    return milliseconds_worked() - start;
}

// Mostly near the start, where headers are.
size_t random_place(const Bytes& bytes, Random& random) {
    const size_t reach = random.once_in(2) ? std::min<size_t>(bytes.size(), 48) : bytes.size();
    return static_cast<size_t>(random.between(0, static_cast<int32_t>(reach) - 1));
}

void change_once(Bytes& bytes, Random& random) {
    constexpr uint8_t telling[] = {0x00, 0x01, 0x02, 0x7F, 0x80, 0xFE, 0xFF};
    const size_t at = random_place(bytes, random);
    const auto here = bytes.begin() + static_cast<ptrdiff_t>(at);
    const auto some = static_cast<size_t>(random.between(1, 40));
    switch (random.between(0, 6)) {
    case 0:
        bytes[at] ^= static_cast<uint8_t>(1 << random.between(0, 7));
        break;
    case 1:
        bytes[at] = random.byte();
        break;
    case 2:
        bytes[at] = random.pick(telling);
        break;
    case 3: { // a whole 16- or 32-bit number
        const uint8_t low = random.pick(telling), high = random.pick(telling);
        const size_t width = random.once_in(2) ? 2 : 4;
        for (size_t i = 0; i < width && at + i < bytes.size(); ++i)
            bytes[at + i] = i + 1 == width ? high : low;
        break;
    }
    case 4:
        bytes.resize(at + 1);
        break;
    case 5:
        bytes.insert(here, some, random.byte());
        break;
    case 6:
        bytes.erase(here + 1,
                    here + 1 + std::min<ptrdiff_t>(ptrdiff_t(some), bytes.end() - here - 1));
        break;
    }
}

Bytes changed(Bytes bytes, Random& random) {
    for (int32_t n = random.between(1, 4); n > 0; --n)
        change_once(bytes, random);
    return bytes;
}

// An image that a reader has made can be looked at, wherever its header leads.
void look_at(const Read& r) {
    if (r.status != KIRVO_OK) {
        ASSERT_LT(r.status, 0);
        ASSERT_EQ(static_cast<HGLOBAL>(r.dib), nullptr);
        return;
    }
    ASSERT_NE(static_cast<HGLOBAL>(r.dib), nullptr);
    const auto width = static_cast<int32_t>(r.width), height = static_cast<int32_t>(r.height);
    uint32_t colour;
    for (const int32_t x : {0, width / 2, width - 1})
        for (const int32_t y : {0, height / 2, height - 1})
            DibGetPixelColor(r.dib, x, y, &colour);
    ASSERT_TRUE(is_unlocked(r.dib));
}

#ifndef _WIN32
size_t open_files() {
    const std::filesystem::directory_iterator all("/proc/self/fd");
    return static_cast<size_t>(std::distance(begin(all), end(all)));
}
#endif

// Writes each changed file under the same name and reads it.
void try_changed(const std::vector<Bytes>& good, const std::string& name,
                 const std::function<void(const char*)>& read) {
    Random random(good.size());
    double longest = 0;
#ifndef _WIN32
    const size_t open_before = open_files();
#endif
    for (int round = 0; round < rounds && !testing::Test::HasFatalFailure(); ++round) {
        const Bytes file = changed(good[static_cast<size_t>(round) % good.size()], random);
        FILE* out = std::fopen(name.c_str(), "wb");
        ASSERT_NE(out, nullptr);
        std::fwrite(file.data(), 1, file.size(), out);
        std::fclose(out);
        double taken = time_of([&] { read(name.c_str()); });
        for (int again = 0; again < 3 && taken >= longest_milliseconds; ++again)
            taken = time_of([&] { read(name.c_str()); }); // was it the file or the machine?
        longest = std::max(longest, taken);
        if (testing::Test::HasFailure()) {
            std::string bytes;
            for (const uint8_t byte : file)
                bytes += std::to_string(byte) + ",";
            FAIL() << "round " << round << ": " << bytes;
        }
    }
#ifndef _WIN32
    EXPECT_EQ(open_files(), open_before);
    EXPECT_LT(longest, longest_milliseconds);
#endif
}

Bytes with(Bytes header, const Bytes& more) {
    header.insert(header.end(), more.begin(), more.end());
    return header;
}

Bytes bmp_of(const DibSpec& spec, Random& random) {
    const Bytes block = make_random_dib(spec, random).bytes();
    return with({'B', 'M', 0, 0, 0, 0, 0, 0, 0, 0, 54, 0, 0, 0}, block);
}

} // namespace

TEST(ChangedFiles, bmp) {
    Random random(1);
    std::vector<Bytes> good;
    for (const int bits : {1, 4, 8, 16, 24, 32})
        good.push_back(bmp_of({.width = 5, .height = 3, .bits = bits}, random));
    good.push_back(bmp_of({.width = 5, .height = 3, .bits = 16, .masks = masks_565}, random));
    good.push_back(bmp_of({.width = 5, .height = 3, .bits = 4, .colours_used = 3}, random));
    const TempFile file(".bmp");
    try_changed(good, file.name(), [](const char* name) {
        Read r;
        r.dib = Dib(DibReadEx(name, &r.width, &r.height, &r.bits, &r.status));
        look_at(r);
        r.dib = Dib(Dib24Read(name, &r.width, &r.height, &r.status));
        look_at(r);
    });
}

TEST(ChangedFiles, targa) {
    const TempFile file(".tga");
    try_changed({made_elsewhere::targa_bottom_left, made_elsewhere::targa_top_left}, file.name(),
                [](const char* name) { look_at(read_targa(name)); });
}

TEST(ChangedFiles, raw) {
    Bytes header = {'m', 'h', 'w', 'a', 'n', 'h', 0, 4, 0, 5, 0, 3};
    header.resize(32);
    const TempFile file(".raw");
    try_changed({with(header, rgb_rows(5, 3))}, file.name(),
                [](const char* name) { look_at(read_raw(name)); });
}

TEST(ChangedFiles, q0_companion) {
    const TempFolder folder;
    const std::string name = folder.write("p.q0", rgb_rows(5, 3));
    std::vector<Bytes> good;
    for (const std::string text :
         {"5 3", "5\r\n3\r\n", "+1 15", "15 0001", "2147483647 2147483647"})
        good.emplace_back(text.begin(), text.end());
    try_changed(good, folder.path("p.IPR"), [&](const char*) { look_at(read_q0(name)); });
}

TEST(ChangedFiles, icons) {
    const TempFile file(".ico");
    const std::vector<Bytes> good = {made_elsewhere::icon_four_colours,
                                     made_elsewhere::cursor_four_colours,
                                     made_elsewhere::icon_24_bits, made_elsewhere::icon_32_bits};
    Random random(2);
    try_changed(good, file.name(), [&](const char* name) {
        uint8_t records[12 * 16];
        ASSERT_GE(IcoGetInfo(name, records, sizeof records), -35);
        ASSERT_GE(IcoGetInfoEx(name, records, sizeof records / 2), -35);
        Read r;
        HGLOBAL mask = nullptr;
        const int32_t index = random.once_in(4) ? random.between(-1, 3) : 0;
        r.dib = Dib(IcoGetData(name, index, &r.width, &r.height, &r.bits, &r.status, &mask));
        look_at(r);
        r.dib = Dib(mask);
        ASSERT_EQ(r.status == KIRVO_OK, mask != nullptr);
        look_at(r);
    });
}
