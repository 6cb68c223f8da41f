// Makes small JPEG files of a folder's pictures: thumbnails FROM TO [SIZE]
//
// Each thumbnail fits a square of SIZE pixels (160). A file that fails is named and does not stop
// the others.
#include <kirvo.hpp>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>

#ifdef _WIN32
#include <windows.h> // which calls two of its macros min and max: programs have (std::min)(a, b)
#endif

namespace fs = std::filesystem;

static void write_thumbnail(const fs::path& from, const fs::path& to, int size)
{
    const kirvo::Image image = kirvo::Image::open(from);
    const double scale =
        (std::min)(1.0, static_cast<double>(size) / (std::max)(image.width(), image.height()));
    const auto scaled = [&](int side) {
        return (std::max)(1, static_cast<int>(side * scale + 0.5));
    };
    kirvo::SaveOptions options;
    options.format = KIRVO_FILES_JPEG;
    options.flags = KIRVO_FILES_STRIP; // a thumbnail needs no metadata
    image.resize(scaled(image.width()), scaled(image.height())).save(to, options);
}

// Every picture that can be opened by its name; the rest of the folder is left alone.
static bool is_picture(const fs::path& name)
{
    return fs::is_regular_file(name) &&
           KirvoFilesFormatOf(name.extension().string().c_str()) != KIRVO_FILES_UNKNOWN;
}

int main(int argc, char** argv)
{
    const int size = argc > 3 ? std::atoi(argv[3]) : 160;
    if (argc < 3 || size < 1) {
        std::fprintf(stderr, "usage: thumbnails FROM TO [SIZE]\n");
        return 2;
    }
    std::error_code error;
    const fs::path to =
        fs::u8path(argv[2]); // names are UTF-8: on Windows the manifest sees to that
    fs::create_directories(to, error);
    fs::directory_iterator files(fs::u8path(argv[1]), error);
    if (error) {
        std::fprintf(stderr, "%s: %s\n", argv[1], error.message().c_str());
        return 1;
    }
    int made = 0, failed = 0;
    for (; files != fs::directory_iterator(); files.increment(error)) {
        const fs::path from = files->path();
        if (!is_picture(from))
            continue;
        fs::path thumbnail = to / from.filename();
        if (KirvoFilesFormatOf(from.extension().string().c_str()) != KIRVO_FILES_JPEG)
            thumbnail += ".jpg";
        try {
            write_thumbnail(from, thumbnail, size);
            ++made;
        } catch (const kirvo::Error& failure) {
            std::fprintf(stderr, "%s\n", failure.what());
            ++failed;
        }
    }
    std::printf("%d made, %d failed\n", made, failed);
    return failed == 0 ? 0 : 1;
}
