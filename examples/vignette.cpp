// An effect of one's own: darkens a picture towards its corners: vignette IN.bmp OUT.bmp
//
// The library's images are ordinary memory. This program shows where their pixels are.
#include <kirvo.h>

#include <algorithm>
#include <cstdio>
#include <memory>

struct Freer {
    void operator()(HGLOBAL block) const { GlobalFree(block); }
};
using Image = std::unique_ptr<void, Freer>;

// The pixels of a 24-bit image, locked in memory for as long as this object lives.
class Pixels {
  public:
    explicit Pixels(HGLOBAL image) : image_(image) {
        const void* block = GlobalLock(image);
        if (!block || GlobalSize(image) < sizeof(BITMAPINFOHEADER))
            return;
        const auto* header = static_cast<const BITMAPINFOHEADER*>(block);
        if (header->biBitCount != 24 || header->biWidth < 1 || header->biHeight < 1)
            return;
        // The rows follow the header and the colour table (which is empty, as a rule, at 24 bits).
        const uint64_t start = uint64_t{header->biSize} + PaletteSize(header);
        // A row is padded to a multiple of 4 bytes.
        const uint64_t stride = (uint64_t(header->biWidth) * 3 + 3) / 4 * 4;
        // A file may promise more pixels than it holds: never trust the header alone.
        if (GlobalSize(image) < start + stride * uint64_t(header->biHeight))
            return;
        rows_ = static_cast<uint8_t*>(const_cast<void*>(block)) + start;
        stride_ = static_cast<size_t>(stride);
        width_ = header->biWidth;
        height_ = header->biHeight;
    }
    ~Pixels() { GlobalUnlock(image_); }
    Pixels(const Pixels&) = delete;
    Pixels& operator=(const Pixels&) = delete;

    explicit operator bool() const { return rows_ != nullptr; }
    int width() const { return width_; }
    int height() const { return height_; }

    // Row y of the picture, counted from its top. In memory the bottom row comes first. Each pixel
    // is three bytes: blue, green, red.
    uint8_t* row(int y) const { return rows_ + stride_ * static_cast<size_t>(height_ - 1 - y); }

  private:
    HGLOBAL image_;
    uint8_t* rows_ = nullptr;
    size_t stride_ = 0;
    int width_ = 0, height_ = 0;
};

// Full light in the centre, a quarter of it in the corners, by the square of the distance.
void darken_corners(const Pixels& pixels) {
    const int64_t right = pixels.width() - 1, bottom = pixels.height() - 1;
    const int64_t corner = std::max<int64_t>(1, right * right + bottom * bottom);
    for (int y = 0; y <= bottom; ++y) {
        uint8_t* pixel = pixels.row(y);
        for (int x = 0; x <= right; ++x, pixel += 3) {
            const int64_t dx = 2 * x - right, dy = 2 * y - bottom;
            const int64_t light = 256 - 192 * (dx * dx + dy * dy) / corner; // of 256
            for (int channel = 0; channel < 3; ++channel)
                pixel[channel] = static_cast<uint8_t>(pixel[channel] * light / 256);
        }
    }
}

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: vignette IN.bmp OUT.bmp\n");
        return 2;
    }
    uint32_t width, height;
    int32_t status;
    const Image image(Dib24Read(argv[1], &width, &height, &status));
    if (!image) {
        std::fprintf(stderr, "%s: status %d%s\n", argv[1], static_cast<int>(status),
                     status == KIRVO_NEEDS_24 ? " (not 24 bits)" : "");
        return 1;
    }
    if (const Pixels pixels{image.get()}) {
        darken_corners(pixels);
    } else {
        std::fprintf(stderr, "%s: the file is damaged\n", argv[1]);
        return 1;
    } // unlocked here
    status = Dib24Write(argv[2], image.get(), 0, 0, -1, -1); // -1, -1: the whole picture
    if (status != KIRVO_OK) {
        std::fprintf(stderr, "%s: status %d\n", argv[2], static_cast<int>(status));
        return 1;
    }
    return 0;
}
