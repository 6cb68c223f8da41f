#include "files.hpp"

#include "settings.hpp"
#include "streams.hpp"
#include "watch.hpp"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstring>
#include <fstream>

namespace {

using Head = std::array<unsigned char, 18>;

Head first_bytes(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    Head head = {};
    if (!file || !(file.read(reinterpret_cast<char*>(head.data()), head.size()) || file.eof()))
        throw Failure(path, KIRVO_CANNOT_OPEN);
    return head;
}

bool is_icon(const Head& head) {
    return head[0] == 0 && head[1] == 0 && (head[2] == 1 || head[2] == 2) && head[3] == 0 &&
           (head[4] != 0 || head[5] != 0);
}

// Uncompressed true colour of 24 bits, without a colour map.
bool is_targa(const Head& head) { return head[1] == 0 && head[2] == 2 && head[16] == 24; }

// The status is looked at once the call that wrote it is over: hence a reference.
Image checked(HGLOBAL handle, const std::string& path, const int32_t& status) {
    Image image(handle);
    if (!image)
        throw Failure(path, status);
    return image;
}

Image read_icon(const std::string& path, const ReadOptions& options) {
    uint32_t width, height, bits;
    int32_t status = 0;
    HGLOBAL mask = nullptr;
    Image image = checked(IcoGetData(path.c_str(), options.icon_index, &width, &height, &bits,
                                     &status, options.mask_path.empty() ? nullptr : &mask),
                          path, status);
    Image owned_mask(mask);
    if (owned_mask)
        write_image(options.mask_path, std::move(owned_mask));
    return image;
}

// 8-bit image whose indices are the luminances of a 24-bit one.
Image luminance(const Image& image) {
    int32_t status = 0;
    const Image grey = checked(Dib24Monochrome(image.handle(), 0, 0, image.width(),
                                               image.height(), &status),
                               "grey", status);
    const int32_t width = grey.width(), height = grey.height();
    Image result = checked(DibMemAllocEx(static_cast<uint32_t>(width), height, 8), "grey",
                           KIRVO_NO_MEMORY);
    const auto* from = static_cast<const uint8_t*>(GlobalLock(grey.handle())) + 40;
    auto* to = static_cast<uint8_t*>(GlobalLock(result.handle()));
    for (int32_t i = 0; i < 256; ++i)
        std::memset(to + 40 + 4 * i, i, 3);
    to += 40 + 1024;
    const size_t from_stride = (static_cast<size_t>(width) * 3 + 3) / 4 * 4;
    const size_t to_stride = (static_cast<size_t>(width) + 3) / 4 * 4;
    for (int32_t y = 0; y < height; ++y, from += from_stride, to += to_stride) {
        for (int32_t x = 0; x < width; ++x)
            to[x] = from[3 * x];
    }
    GlobalUnlock(grey.handle());
    GlobalUnlock(result.handle());
    return result;
}

int32_t write_jpeg(const std::string& path, Image image, const WriteOptions& options) {
    if (options.quality && JpgCodSetQEx(*options.quality) != KIRVO_OK)
        throw UsageError("the quality level goes from 1 (finest) to 5");
    if (options.subsample && JpgCodSetSubsample(*options.subsample) != KIRVO_OK)
        throw UsageError("subsampling is 1, 2 or 4");
    if (!options.comment.empty())
        JpgCodSetComment(reinterpret_cast<const uint8_t*>(options.comment.data()),
                         static_cast<int32_t>(options.comment.size()));
    image = to_24_bits(std::move(image));
    if (options.grey)
        image = luminance(image);
    const int32_t width = image.width(), height = image.height();
    return options.grey
               ? JpgCodMainEx_M(path.c_str(), image.handle(), 0, 0, width, height, 0)
               : JpgCodMainEx(path.c_str(), image.handle(), 0, 0, width, height, 0, 0);
}

Image read_photo_cd(const std::string& path, uint32_t* width, uint32_t* height) {
    int32_t status = 0;
    HGLOBAL handle = PcdRead(path.c_str(), 3, 0, width, height, &status);
    if (handle == nullptr)
        throw Failure(path, "status " + std::to_string(status) +
                                (status == -1 ? ": PCDLIB32.DLL is not here or failed"
                                              : ": PCDLIB32.DLL refused the file"));
    return Image(handle);
}

Image read_file(const std::string& path, const ReadOptions& options) {
    const FileFormat format = recognise(path);
    uint32_t width, height, bits;
    int32_t status = 0;
    const char* name = path.c_str();
    switch (format) {
    case FileFormat::bmp:
        return checked(DibReadEx(name, &width, &height, &bits, &status), path, status);
    case FileFormat::jpeg:
        return checked(JpgDecMainEx(name, &width, &height, &status), path, status);
    case FileFormat::targa:
        return checked(Targa24Read(name, &width, &height, &status), path, status);
    case FileFormat::q0:
        return checked(Q0Read(name, &width, &height, &bits, &status), path, status);
    case FileFormat::raw:
        return checked(RawRead(name, &width, &height, &bits, &status), path, status);
    case FileFormat::photo_cd:
        return read_photo_cd(path, &width, &height);
    case FileFormat::icon:
        return read_icon(path, options);
    case FileFormat::unknown:
        break;
    }
    throw Failure(path, "not a picture of a known format");
}

int32_t write_file(const std::string& path, const std::string& ending, Image image,
                   const WriteOptions& options) {
    if (ending == "bmp")
        return DibWriteEx(path.c_str(), image.handle(), 0, 0, -1, -1);
    if (ending == "tga") {
        image = to_24_bits(std::move(image));
        return Targa24Write(path.c_str(), image.handle(), 0, 0, -1, -1);
    }
    return write_jpeg(path, std::move(image), options);
}

} // namespace

std::string extension(const std::string& path) {
    const size_t dot = path.find_last_of("./\\");
    if (dot == std::string::npos || path[dot] != '.')
        return "";
    std::string result = path.substr(dot + 1);
    std::transform(result.begin(), result.end(), result.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return result;
}

const char* format_name(FileFormat format) {
    switch (format) {
    case FileFormat::bmp: return "BMP";
    case FileFormat::jpeg: return "JPEG";
    case FileFormat::targa: return "Targa";
    case FileFormat::q0: return "Q0";
    case FileFormat::raw: return "RAW";
    case FileFormat::photo_cd: return "Photo CD";
    case FileFormat::icon: return "icon";
    case FileFormat::unknown: break;
    }
    return "unknown";
}

FileFormat recognise(const std::string& path) {
    const Head head = first_bytes(path);
    const std::string ending = extension(path);
    if (ending == "q0")
        return FileFormat::q0;
    if (ending == "pcd")
        return FileFormat::photo_cd;
    if (std::memcmp(head.data(), "BM", 2) == 0)
        return FileFormat::bmp;
    if (std::memcmp(head.data(), "\xFF\xD8", 2) == 0)
        return FileFormat::jpeg;
    if (std::memcmp(head.data(), "mhwanh", 6) == 0)
        return FileFormat::raw;
    if (is_icon(head))
        return FileFormat::icon;
    if (is_targa(head) || ending == "tga")
        return FileFormat::targa;
    return FileFormat::unknown;
}

Image read_image(const std::string& name, const ReadOptions& options) {
    const Watch watch("reading");
    const Input input(name);
    try {
        return read_file(input.path(), options);
    } catch (const Failure& failure) {
        throw failure.subject() == input.path() ? failure.about(shown(name, "standard input"))
                                                : failure;
    }
}

Image copy_at_24_bits(const Image& image) {
    const int32_t bits = image.bits();
    int32_t status = 0;
    HGLOBAL copy = bits == 24 ? Dib24DupEx(image.handle(), 0, 0, image.width(), image.height(),
                                           &status)
                   : bits <= 8 ? IncreaseColor16M(image.handle(), &status)
                               : DibConvert24bit(image.handle(), &status);
    return checked(copy, "conversion to 24 bits", status);
}

Image to_24_bits(Image image) {
    return image.bits() == 24 ? std::move(image) : copy_at_24_bits(image);
}

void check_writable(const std::string& path, const std::string& to) {
    if (path == "-" && to.empty())
        throw UsageError("standard output has no extension: name the format with --to");
    const std::string ending = to.empty() ? extension(path) : to;
    if (ending != "bmp" && ending != "jpg" && ending != "jpeg" && ending != "tga")
        throw UsageError(path + ": the output's extension must be .bmp, .jpg or .tga");
}

void write_image(const std::string& path, Image image, const WriteOptions& options) {
    check_writable(path, options.to);
    const Watch watch("writing");
    Output output(path, options.replace || settings.force);
    const int32_t status =
        write_file(output.path(), options.to.empty() ? extension(path) : options.to,
                   std::move(image), options);
    if (status != KIRVO_OK)
        throw Failure(shown(path, "standard output"), status);
    output.complete();
}
