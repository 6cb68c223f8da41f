// A photo made ready for a page, 800 pixels wide: photo IN OUT
#include <kirvo.hpp>

#include <cstdio>

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::fprintf(stderr, "usage: photo IN OUT\n");
        return 2;
    }
    try {
        const kirvo::Watch watch([](int percent) { std::printf(" %d%%", percent); });
        const kirvo::Image photo = kirvo::Image::open(argv[1]); // upright, as its camera was held
        const int width = photo.width() * 9 / 10, height = photo.height() * 9 / 10;
        photo.crop(photo.width() / 20, photo.height() / 20, width, height)
            .resize(800, height * 800 / width)
            .sharpen()
            .save(argv[2]);
    } catch (const kirvo::Error& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
