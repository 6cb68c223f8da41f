// Writes a sample picture: kirvo_sample FILE.bmp [WIDTH HEIGHT [SEED
// [landscape|portrait|lettering]]]
#include "lettering.hpp"
#include "portrait.hpp"
#include "scene.hpp"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

void put16(uint8_t* to, uint32_t value) {
    to[0] = static_cast<uint8_t>(value);
    to[1] = static_cast<uint8_t>(value >> 8);
}

void put32(uint8_t* to, uint32_t value) {
    put16(to, value);
    put16(to + 2, value >> 16);
}

template<typename Scene>
bool write_bmp(const Scene& scene, const char* name) {
    const auto width = static_cast<uint32_t>(scene.width());
    const auto height = static_cast<uint32_t>(scene.height());
    const uint32_t stride = (width * 3 + 3) & ~3u;
    uint8_t header[54] = {'B', 'M'};
    put32(header + 2, 54 + stride * height);
    put32(header + 10, 54); // where the rows start
    put32(header + 14, 40); // BITMAPINFOHEADER
    put32(header + 18, width);
    put32(header + 22, height);
    put16(header + 26, 1);
    put16(header + 28, 24);
    put32(header + 34, stride * height);

    const std::unique_ptr<std::FILE, FileCloser> file(std::fopen(name, "wb"));
    if (!file || std::fwrite(header, sizeof header, 1, file.get()) != 1)
        return false;
    std::vector<uint8_t> row(stride);
    for (int y = scene.height() - 1; y >= 0; --y) { // bottom row first
        scene.render_row(y, row.data());
        if (std::fwrite(row.data(), stride, 1, file.get()) != 1)
            return false;
    }
    return std::fflush(file.get()) == 0;
}

bool write(const std::string& kind, int width, int height, uint32_t seed, const char* name) {
    if (kind == "portrait")
        return write_bmp(kirvo_sample::Portrait(width, height, seed), name);
    if (kind == "lettering")
        return write_bmp(kirvo_sample::Lettering(width, height, seed), name);
    return write_bmp(kirvo_sample::Scene(width, height, seed), name);
}

} // namespace

int main(int argc, char** argv) {
    const int width = argc > 3 ? std::atoi(argv[2]) : 4000;
    const int height = argc > 3 ? std::atoi(argv[3]) : 3000;
    const auto seed = static_cast<uint32_t>(argc > 4 ? std::atoi(argv[4]) : 1);
    const std::string kind = argc > 5 ? argv[5] : "landscape";
    const bool is_known = kind == "landscape" || kind == "portrait" || kind == "lettering";
    const bool is_named = argc > 1 && argv[1][0] != '-';
    if (!is_named || !is_known || argc == 3 || width < 1 || height < 1 || width > 30000 ||
        height > 20000) {
        std::fprintf(stderr, "usage: kirvo_sample FILE.bmp [WIDTH HEIGHT [SEED "
                             "[landscape|portrait|lettering]]]\n");
        return 2;
    }
    if (!write(kind, width, height, seed, argv[1])) {
        std::perror(argv[1]);
        return 1;
    }
    return 0;
}
