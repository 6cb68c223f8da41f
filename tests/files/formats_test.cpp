// The other formats, as far as this build and this system have codecs for them; texts; threads.
#include "files/opened.hpp"
#include "support/import_patch.hpp"

#include <atomic>

#ifdef _WIN32
#include <objbase.h>
#else
#include <pthread.h>
#endif

using namespace kirvo_test;

namespace {

bool writes(int32_t format) { return (KirvoFilesAbilities(format) & KIRVO_FILES_WRITES) != 0; }

#ifdef _WIN32
template<typename Work>
DWORD WINAPI run_one(void* work) {
    (*static_cast<Work*>(work))();
    return 0;
}
#else
template<typename Work>
void* run_one(void* work) {
    (*static_cast<Work*>(work))();
    return nullptr;
}
#endif

// Runs work in several threads and waits for all.
template<uint32_t count, typename Work>
void in_threads(Work& work) {
#ifdef _WIN32
    HANDLE threads[count];
    for (HANDLE& thread : threads)
        thread = CreateThread(nullptr, 0, run_one<Work>, &work, 0, nullptr);
    WaitForMultipleObjects(count, threads, TRUE, INFINITE);
    for (HANDLE thread : threads)
        CloseHandle(thread);
#else
    pthread_t threads[count];
    for (pthread_t& thread : threads)
        pthread_create(&thread, nullptr, run_one<Work>, &work);
    for (pthread_t thread : threads)
        pthread_join(thread, nullptr);
#endif
}

// A TIFF file with offsets of 64 bits: 24 bits, uncompressed, one strip.
class BigTiff {
  public:
    explicit BigTiff(bool little) : little_(little) {}

    Bytes write(uint32_t width, uint32_t height) {
        const uint32_t row = 3 * width, pixels = 16 + 8 + 20 * 11 + 8;
        out_ = little_ ? Bytes{'I', 'I'} : Bytes{'M', 'M'};
        put(43, 2), put(8, 2), put(0, 2), put(16, 8), put(11, 8);
        entry(256, 4, width);
        entry(257, 16, height); // numbers of 64 bits may be anywhere
        entry(258, 3, 8, 3);
        entry(259, 3, 1);
        entry(262, 3, 2);
        entry(273, 16, pixels);
        entry(274, 3, 6); // a quarter clockwise
        entry(277, 3, 3);
        entry(278, 3, height);
        entry(279, 16, row * height);
        put(305, 2), put(2, 2), put(8, 8); // eight letters have room beside the tag
        out_.insert(out_.end(), {'a', ' ', 't', 'e', 's', 't', '!', 0});
        put(0, 8);
        for (uint32_t y = 0; y < height; ++y)
            for (uint32_t x = 0; x < width; ++x)
                for (uint32_t shift : {16, 8, 0})
                    out_.push_back(static_cast<uint8_t>(Picture::colour(x, y) >> shift));
        return out_;
    }

  private:
    void put(uint64_t value, uint32_t count) {
        for (uint32_t i = 0; i < count; ++i)
            out_.push_back(static_cast<uint8_t>(value >> 8 * (little_ ? i : count - 1 - i)));
    }
    void entry(uint32_t tag, uint32_t type, uint64_t value, uint32_t count = 1) {
        const uint32_t size = type == 3 ? 2 : type == 4 ? 4 : 8;
        put(tag, 2), put(type, 2), put(count, 8);
        for (uint32_t i = 0; i < count; ++i)
            put(value, size);
        put(0, 8 - size * count);
    }

    bool little_;
    Bytes out_;
};

} // namespace

TEST(Formats, a_tiff_of_64_bits_is_read_in_both_byte_orders) {
    if ((KirvoFilesAbilities(KIRVO_FILES_TIFF) & KIRVO_FILES_READS) == 0)
        return;
    for (bool little : {true, false}) {
        const Opened opened(BigTiff(little).write(19, 7));
        EXPECT_EQ(opened.text(KIRVO_FILES_TEXT_VARIANT), "BigTIFF, uncompressed, 3 x 8 bits");
        EXPECT_EQ(opened.text(KIRVO_FILES_TEXT_SOFTWARE), "a test!");
#ifdef _WIN32
        if (opened.status != KIRVO_FILES_OK) { // as the system's codec is able to
            EXPECT_NE(opened.text(KIRVO_FILES_TEXT_REASON), "");
            continue;
        }
#endif
        ASSERT_EQ(opened.status, KIRVO_FILES_OK) << opened.text(KIRVO_FILES_TEXT_REASON);
        ASSERT_EQ(opened.about.width, 7u);
        ASSERT_EQ(opened.about.height, 19u);
        for (uint32_t y = 0; y < 19; ++y)
            for (uint32_t x = 0; x < 7; ++x)
                EXPECT_EQ(opened.pixel(x, y), Picture::colour(y, 6 - x));
    }
}

TEST(Formats, what_loses_nothing_comes_back_as_it_was) {
    for (int32_t format : {KIRVO_FILES_PNG, KIRVO_FILES_TIFF, KIRVO_FILES_WEBP}) {
        if (!writes(format))
            continue;
        for (uint32_t bits : {8u, 24u, 32u}) {
            const Picture picture(37, 11, bits);
            const Saved saved =
                save(picture.dib, as(format, KIRVO_FILES_WITH_ALPHA | KIRVO_FILES_WEBP_LOSSLESS));
            ASSERT_EQ(saved.status, KIRVO_FILES_OK) << format;
            const Opened opened(saved.bytes, KIRVO_FILES_KEEP_ALPHA);
            ASSERT_EQ(opened.status, KIRVO_FILES_OK)
                << format << ", " << bits << opened.text(KIRVO_FILES_TEXT_REASON);
            EXPECT_EQ(opened.about.format, format);
            for (uint32_t y = 0; y < 11; ++y)
                for (uint32_t x = 0; x < 37; ++x) {
                    const uint32_t colour = Picture::colour(x, y, bits);
                    EXPECT_EQ(opened.pixel(x, y), bits == 8 ? colour * 0x010101 : colour)
                        << format << ", " << bits;
                }
        }
    }
}

TEST(Formats, every_colour_of_a_palette_comes_back) {
    const auto colour = [](uint32_t i) { return (i * 37 & 255) << 16 | (255 - i) << 8 | i; };
    for (const uint32_t bits : {1u, 4u, 8u}) {
        const uint32_t colours = 1u << bits;
        HGLOBAL dib = DibMemAllocEx(colours, 1, bits); // each index once
        auto* data = static_cast<uint8_t*>(GlobalLock(dib));
        for (uint32_t i = 0; i < colours; ++i) {
            const uint32_t entry = colour(i);
            std::memcpy(data + 40 + 4 * i, &entry, 4);
            data[40 + 4 * colours + i * bits / 8] |=
                static_cast<uint8_t>(i << (8 - bits - i * bits % 8));
        }
        GlobalUnlock(dib);
        for (int32_t format : {KIRVO_FILES_BMP, KIRVO_FILES_TARGA, KIRVO_FILES_PNG,
                               KIRVO_FILES_TIFF, KIRVO_FILES_WEBP}) {
            if (!writes(format))
                continue;
            const Opened opened(save(dib, as(format, KIRVO_FILES_WEBP_LOSSLESS)).bytes);
            ASSERT_EQ(opened.status, KIRVO_FILES_OK) << format;
            for (uint32_t i = 0; i < colours; ++i)
                EXPECT_EQ(opened.pixel(i, 0), colour(i)) << format << ", " << bits;
        }
        GlobalFree(dib);
    }
}

TEST(Formats, every_compression_of_tiff_comes_back) {
    if (!writes(KIRVO_FILES_TIFF))
        return;
    const Picture picture(50, 30);
    for (int32_t compression = 0; compression <= KIRVO_FILES_COMPRESSION_PACKBITS; ++compression) {
        KirvoFilesSaveOptions options = as(KIRVO_FILES_TIFF);
        options.compression = compression;
        const Saved saved = save(picture.dib, options);
        const Opened opened(saved.bytes);
        ASSERT_EQ(opened.status, KIRVO_FILES_OK) << compression;
        EXPECT_EQ(opened.pixel(49, 29), Picture::colour(49, 29));
    }
}

TEST(Formats, without_a_codec_the_answer_says_so) {
    Bytes webp = {'R', 'I', 'F', 'F', 22, 0, 0, 0, 'W', 'E', 'B', 'P', 'V', 'P', '8',
                  'X', 10,  0,   0,   0,  0, 0, 0, 0,   7,   0,   0,   7,   0,   0};
    const Opened opened(webp);
    EXPECT_NE(opened.status, KIRVO_FILES_OK);
    EXPECT_EQ(opened.about.width, 8u);
    if ((KirvoFilesAbilities(KIRVO_FILES_WEBP) & KIRVO_FILES_READS) == 0) {
        EXPECT_EQ(opened.status, KIRVO_FILES_NO_CODEC);
        EXPECT_EQ(opened.text(KIRVO_FILES_TEXT_REASON),
                  "this system has no decoder for WebP files");
    }
}

TEST(Formats, cut_anywhere_no_file_passes_for_whole) {
    const Picture picture(40, 30);
    for (int32_t format : {KIRVO_FILES_BMP, KIRVO_FILES_TARGA, KIRVO_FILES_PNG, KIRVO_FILES_TIFF,
                           KIRVO_FILES_WEBP}) {
        if (!writes(format))
            continue;
        const Bytes whole = save(picture.dib, as(format)).bytes;
        ASSERT_FALSE(whole.empty());
        const Opened all(whole);
        for (size_t size = 0; size < whole.size(); size += size < 200 ? 1 : 41) {
            const Bytes cut(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(size));
            const Opened opened(cut);
            const Opened going(cut, KIRVO_FILES_KEEP_GOING);
            if (opened.status != KIRVO_FILES_OK)
                continue;
            // What opens has every pixel: the file's end held none.
            for (uint32_t y = 0; y < 30; ++y)
                for (uint32_t x = 0; x < 40; ++x)
                    ASSERT_EQ(opened.pixel(x, y), all.pixel(x, y)) << format << ", " << size;
        }
    }
}

TEST(Formats, grey_is_saved_as_grey) {
    const Picture picture(20, 10);
    for (int32_t format = KIRVO_FILES_BMP; format <= KIRVO_FILES_TIFF; ++format) {
        if (!writes(format))
            continue;
        const Opened opened(save(picture.dib, as(format, KIRVO_FILES_GREY)).bytes);
        ASSERT_EQ(opened.status, KIRVO_FILES_OK);
        EXPECT_EQ(opened.bits(), 8u) << format;
    }
}

TEST(Formats, depths_are_converted_where_nothing_has_to_be_chosen) {
    const Picture picture(20, 10);
    for (uint32_t bits : {16u, 24u, 32u}) {
        KirvoFilesSaveOptions options = as(KIRVO_FILES_BMP);
        options.bits = bits;
        EXPECT_EQ(Opened(save(picture.dib, options).bytes).bits(), bits);
    }
    KirvoFilesSaveOptions options = as(KIRVO_FILES_BMP);
    options.bits = 8;
    EXPECT_EQ(save(picture.dib, options).status, KIRVO_FILES_UNSUPPORTED);
}

TEST(Formats, have_names_and_extensions) {
    for (int32_t format = 1; format < KIRVO_FILES_FORMATS; ++format) {
        char name[40], extensions[80];
        EXPECT_GT(KirvoFilesFormatText(format, KIRVO_FILES_FORMAT_NAME, name, sizeof name), 1u);
        EXPECT_GT(KirvoFilesFormatText(format, KIRVO_FILES_FORMAT_EXTENSIONS, extensions,
                                       sizeof extensions),
                  1u);
        if (char* blank = std::strchr(extensions, ' '))
            *blank = 0;
        EXPECT_EQ(KirvoFilesFormatOf(extensions), format);
    }
    EXPECT_EQ(KirvoFilesFormatText(99, KIRVO_FILES_FORMAT_NAME, nullptr, 0), 1u);
}

TEST(Formats, nobody_else_reads_those_that_only_kirvo_knows) {
    const struct {
        int32_t format;
        const char* codec;
    } cases[] = {{KIRVO_FILES_BMP, "KirvoFiles"},
                 {KIRVO_FILES_TARGA, "KirvoFiles"},
                 {KIRVO_FILES_ICON, "KirvoFiles"},
                 {KIRVO_FILES_RAW, "Kirvo"},
                 {KIRVO_FILES_Q0, "Kirvo"}};
    for (const auto& each : cases) {
        char codec[80];
        KirvoFilesFormatText(each.format, KIRVO_FILES_FORMAT_CODEC, codec, sizeof codec);
        EXPECT_STREQ(codec, each.codec);
    }
    EXPECT_EQ(KirvoFilesAbilities(KIRVO_FILES_UNKNOWN), 0u);
    EXPECT_EQ(KirvoFilesAbilities(99), 0u);
}

#ifdef _WIN32
static HRESULT WINAPI no_component(const CLSID&, IUnknown*, DWORD, const IID&, void** made) {
    *made = nullptr;
    return REGDB_E_CLASSNOTREG;
}

TEST(Formats, where_the_system_gives_no_component_there_is_no_codec) {
    const Bytes bytes = save(Picture(8, 8).dib, as(KIRVO_FILES_PNG)).bytes;
    ASSERT_EQ(Opened(bytes).status, KIRVO_FILES_OK); // what the system has is asked for once
    const ImportPatch none("KirvoFiles.dll", "CoCreateInstance",
                           reinterpret_cast<void*>(no_component));
    ASSERT_TRUE(none.in_place());
    EXPECT_EQ(Opened(bytes).status, KIRVO_FILES_NO_CODEC);
}
#endif

TEST(Formats, every_status_has_words_of_its_own) {
    std::vector<std::string> all;
    for (int32_t status = KIRVO_FILES_ABANDONED; status <= KIRVO_FILES_BAD_PARAMETER; ++status) {
        char words[100], less[5];
        const uint32_t size = KirvoFilesStatusText(status, words, sizeof words);
        EXPECT_EQ(size, std::strlen(words) + 1);
        EXPECT_EQ(KirvoFilesStatusText(status, less, sizeof less), size);
        EXPECT_EQ(std::string(less), std::string(words).substr(0, 4));
        EXPECT_EQ(std::count(all.begin(), all.end(), words), 0) << words;
        EXPECT_STRNE(words, "unknown status");
        all.push_back(words);
    }
}

TEST(Threads, any_of_them_opens_and_saves_at_any_time) {
    const Picture picture(64, 48);
    const Bytes expected = save(picture.dib, as(KIRVO_FILES_JPEG, 0, 80)).bytes;
    ASSERT_FALSE(expected.empty());
    std::atomic<uint32_t> wrong{0};
    auto work = [&] {
        for (int i = 0; i < 30; ++i) {
            const Saved saved = save(picture.dib, as(KIRVO_FILES_JPEG, 0, 80));
            wrong += saved.bytes != expected;
            HGLOBAL dib = nullptr;
            wrong +=
                KirvoFilesOpenMemory(saved.bytes.data(), static_cast<uint32_t>(saved.bytes.size()),
                                     nullptr, &dib, nullptr) != KIRVO_FILES_OK;
            GlobalFree(dib);
        }
    };
    in_threads<6>(work);
    EXPECT_EQ(wrong, 0u);
}
