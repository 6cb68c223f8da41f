// Makes small JPEG files of a folder's BMP and JPEG files: thumbnails FROM TO [SIZE]
//
// Each thumbnail fits a square of SIZE pixels (160). A file that fails is named and does not stop
// the others.
#include <kirvo.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

namespace fs = std::filesystem;

// Every image that the library returns is the caller's to free: this owner does it on each way out.
struct Freer {
    void operator()(HGLOBAL block) const { GlobalFree(block); }
};
using Image = std::unique_ptr<void, Freer>;

struct Failure {
    int32_t status;
};

// The readers and effects give an image, or null and a status.
Image expect(HGLOBAL image, int32_t status) {
    if (!image)
        throw Failure{status};
    return Image(image);
}

Image read_jpeg(const std::string& name) {
    uint32_t width, height;
    int32_t status;
    const HGLOBAL image = JpgDecMainEx(name.c_str(), &width, &height, &status);
    return expect(image, status);
}

// A BMP file of any depth, as a 24-bit image: what the JPEG encoder takes.
Image read_bmp(const std::string& name) {
    uint32_t width, height, bits;
    int32_t status;
    HGLOBAL block = DibReadEx(name.c_str(), &width, &height, &bits, &status);
    Image image = expect(block, status);
    if (bits == 24)
        return image;
    block = bits <= 8 ? IncreaseColor16M(image.get(), &status)
                      : DibConvert24bit(image.get(), &status);
    return expect(block, status);
}

void write_thumbnail(const Image& image, int32_t size, const std::string& name) {
    const auto* header = static_cast<const BITMAPINFOHEADER*>(GlobalLock(image.get()));
    const int32_t width = header->biWidth, height = header->biHeight;
    GlobalUnlock(image.get());
    if (width < 1 || height < 1) // BMP files may say anything
        throw Failure{KIRVO_BAD_PARAMETER};

    const double scale = std::min(1.0, static_cast<double>(size) / std::max(width, height));
    const int32_t new_width = std::max(1, static_cast<int32_t>(width * scale + 0.5));
    const int32_t new_height = std::max(1, static_cast<int32_t>(height * scale + 0.5));
    int32_t status = KIRVO_OK;
    const HGLOBAL block = Dib24ZoomEx2(image.get(), 0, 0, width, height, new_width, new_height,
                                       &status, 1); // 1: averages, so that small details show
    const Image small = expect(block, status);
    status = JpgCodMainEx(name.c_str(), small.get(), 0, 0, new_width, new_height, 0, 0);
    if (status != KIRVO_OK)
        throw Failure{status};
}

int main(int argc, char** argv) {
    const int size = argc > 3 ? std::atoi(argv[3]) : 160;
    if (argc < 3 || size < 1) {
        std::fprintf(stderr, "usage: thumbnails FROM TO [SIZE]\n");
        return 2;
    }
    std::error_code error;
    const fs::path to = fs::u8path(argv[2]); // names are UTF-8: on Windows the manifest sees to that
    fs::create_directories(to, error);
    fs::directory_iterator files(fs::u8path(argv[1]), error);
    if (error) {
        std::fprintf(stderr, "%s: %s\n", argv[1], error.message().c_str());
        return 1;
    }
    JpgCodSetQEx(2); // for all that follow: 1 is finest, 5 is coarsest

    int made = 0, failed = 0;
    for (; files != fs::directory_iterator(); files.increment(error)) {
        const fs::path from = files->path();
        std::string kind = from.extension().u8string();
        for (char& c : kind)
            c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        const bool jpeg = kind == ".jpg" || kind == ".jpeg";
        if (!jpeg && kind != ".bmp")
            continue;
        fs::path thumbnail = to / from.filename();
        if (!jpeg)
            thumbnail += ".jpg";
        try {
            const Image image = jpeg ? read_jpeg(from.u8string()) : read_bmp(from.u8string());
            write_thumbnail(image, size, thumbnail.u8string());
            ++made;
        } catch (const Failure& failure) {
            std::fprintf(stderr, "%s: status %d\n", from.u8string().c_str(),
                         static_cast<int>(failure.status));
            ++failed;
        }
    }
    std::printf("%d made, %d failed\n", made, failed);
    return failed == 0 ? 0 : 1;
}
