// An effect of one's own: darkens a picture towards its corners: vignette IN OUT
//
// The library's images are ordinary memory. This program changes their pixels.
#include <kirvo.hpp>

#include <cstdio>

// Full light in the centre, a quarter of it in the corners, by the square of the distance. A pixel
// of 24 bits is three bytes: blue, green, red.
static void darken_corners(kirvo::Image& image)
{
    const kirvo::Rows rows = image.rows();
    const int64_t right = rows.width() - 1, bottom = rows.height() - 1;
    const int64_t square = right * right + bottom * bottom, corner = square > 0 ? square : 1;
    for (int y = 0; y <= bottom; ++y) {
        const kirvo::Row row = rows[y];
        for (int x = 0; x <= right; ++x) {
            const int64_t dx = 2 * x - right, dy = 2 * y - bottom;
            const int64_t light = 256 - 192 * (dx * dx + dy * dy) / corner; // of 256
            for (size_t i = 3 * static_cast<size_t>(x); i < 3 * static_cast<size_t>(x) + 3; ++i)
                row[i] = static_cast<uint8_t>(row[i] * light / 256);
        }
    }
}

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::fprintf(stderr, "usage: vignette IN OUT\n");
        return 2;
    }
    try {
        kirvo::Image image = kirvo::Image::open(argv[1]).convert(24);
        darken_corners(image);
        image.save(argv[2]);
    } catch (const kirvo::Error& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
