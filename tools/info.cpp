#include "info.hpp"

#include "files.hpp"
#include "records.hpp"
#include "settings.hpp"
#include "streams.hpp"
#include "terminal.hpp"
#include "watch.hpp"

#include <cstdio>
#include <cstring>
#include <fstream>

namespace {

// Text of an image file is in no known encoding: what is not ASCII becomes '?'.
std::string printable(const std::string& text) {
    std::string result;
    for (const char c : text)
        result += c >= ' ' && c <= '~' ? c : c == '\n' || c == '\t' ? c : '?';
    return result;
}

std::string hexadecimal(uint32_t value) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%X", value);
    return text;
}

std::string colour_name(const RGBQUAD& c) {
    char text[8];
    std::snprintf(text, sizeof text, "#%02X%02X%02X", c.rgbRed, c.rgbGreen, c.rgbBlue);
    return text;
}

void describe_colour_part(Json& out, const Image& image) {
    const auto* block = static_cast<const uint8_t*>(GlobalLock(image.handle()));
    const size_t size = GlobalSize(image.handle());
    BITMAPINFOHEADER header = image.header();
    const int32_t bits = header.biBitCount;
    if ((bits == 16 || bits == 32) && header.biCompression == BI_BITFIELDS && size >= 52) {
        uint32_t masks[3];
        std::memcpy(masks, block + 40, sizeof masks);
        out["masks"] = {hexadecimal(masks[0]), hexadecimal(masks[1]), hexadecimal(masks[2])};
    } else if (bits <= 8) {
        Json palette = Json::array();
        for (size_t i = 0; i < DibNumColors(&header) && 40 + 4 * (i + 1) <= size; ++i) {
            RGBQUAD entry;
            std::memcpy(&entry, block + 40 + 4 * i, sizeof entry);
            palette.push_back(colour_name(entry));
        }
        out["palette"] = palette;
    }
    GlobalUnlock(image.handle());
}

void describe_image(Json& out, const Image& image) {
    out["width"] = image.width();
    out["height"] = image.height();
    out["bits"] = image.bits();
    describe_colour_part(out, image);
}

// The sampling bytes of a JPEG's frame header, as "2x2,1x1,1x1"; empty when there is none.
std::string jpeg_sampling(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    const std::string data{std::istreambuf_iterator<char>(file), {}};
    const auto byte = [&](size_t i) { return static_cast<unsigned char>(data[i]); };
    for (size_t at = 2; at + 10 < data.size() && byte(at) == 0xFF;) {
        const unsigned marker = byte(at + 1);
        if (marker == 0xFF) {
            ++at;
            continue;
        }
        if (marker == 0xC0 || marker == 0xC2) {
            std::string text;
            for (size_t c = 0; c < byte(at + 9) && at + 11 + 3 * c < data.size(); ++c) {
                const unsigned sampling = byte(at + 11 + 3 * c);
                text += (c == 0 ? "" : ",") + std::to_string(sampling >> 4) + "x" +
                        std::to_string(sampling & 15);
            }
            return text;
        }
        at += 2 + (byte(at + 2) << 8 | byte(at + 3));
    }
    return "";
}

Json jpeg_comments() {
    Json comments = Json::array();
    for (int32_t i = 0; i < JpgDecCommentCounts(); ++i) {
        HGLOBAL handle = JpgDecGetComment(i);
        if (const auto* text = static_cast<const char*>(GlobalLock(handle))) {
            comments.push_back(printable(text));
            GlobalUnlock(handle);
        }
    }
    return comments;
}

Json jpeg_tables() {
    Json tables = Json::object();
    for (int32_t n = 0; n < 4; ++n) {
        uint16_t table[64];
        if (JpgDecGetQtableEx(n, table) == KIRVO_OK)
            tables[std::to_string(n)] = table;
    }
    return tables;
}

void describe_jpeg(Json& out, const std::string& path) {
    JpgDecSpec spec;
    const int32_t status = JpgDecGetSpecEx(path.c_str(), &spec);
    if (status != KIRVO_OK)
        throw Failure(path, status);
    out["width"] = spec.width;
    out["height"] = spec.height;
    out["bits"] = 24;
    out["components"] = spec.components;
    out["sampling"] = jpeg_sampling(path);
    out["restart interval"] = spec.restartInterval;
    // Comments and tables are known once the stream has been decoded.
    JpgDecGetCommentEnable(1);
    try {
        read_image(path);
        out["comments"] = jpeg_comments();
        out["quantisation tables"] = jpeg_tables();
    } catch (const Failure& failure) {
        out["damaged"] = failure.what();
    }
    JpgDecCommentFree();
    JpgDecGetCommentEnable(0);
}

struct IconRecord {
    uint32_t offset;
    uint16_t colours, width, height, unused;
};

void describe_icon(Json& out, const std::string& path) {
    const int32_t count = IcoGetInfoEx(path.c_str(), nullptr, 0);
    if (count < 0)
        throw Failure(path, count);
    std::vector<IconRecord> records(static_cast<size_t>(count));
    // The listing wants room for one record of 12 bytes for every 6 bytes of its buffer size.
    IcoGetInfoEx(path.c_str(), records.data(), static_cast<uint32_t>(count) * 6);
    Json images = Json::array();
    for (size_t i = 0; i < records.size(); ++i) {
        Json image;
        image["index"] = i;
        image["width"] = records[i].width;
        image["height"] = records[i].height;
        image["colours"] = records[i].colours;
        image["offset"] = records[i].offset;
        images.push_back(image);
    }
    out["images"] = images;
}

void describe_content(Json& out, FileFormat format, const std::string& path) {
    if (format == FileFormat::jpeg)
        describe_jpeg(out, path);
    else if (format == FileFormat::icon)
        describe_icon(out, path);
    else
        describe_image(out, read_image(path));
}

Json describe(const std::string& name) {
    const Watch watch("reading");
    const Input input(name);
    const std::string& path = input.path();
    try {
        const FileFormat format = recognise(path);
        Json out;
        out["file"] = json_name(name);
        out["format"] = format_name(format);
        out["bytes"] = std::filesystem::file_size(path_of(path));
        describe_content(out, format, path);
        return out;
    } catch (const Failure& failure) {
        throw failure.about(shown(name, "standard input"));
    }
}

std::string plain(const Json& value) {
    return value.is_string() ? value.get<std::string>() : value.dump();
}

// Tables of numbers eight to a line, everything else on one.
void print_member(const std::string& key, const Json& value, int indent) {
    const std::string margin(static_cast<size_t>(indent), ' ');
    if (value.is_object()) {
        std::printf("%s%s:\n", margin.c_str(), key.c_str());
        for (const auto& [name, member] : value.items())
            print_member(name, member, indent + 2);
        return;
    }
    if (value.is_array() && !value.empty() && value[0].is_object()) {
        std::printf("%s%s:\n", margin.c_str(), key.c_str());
        for (const Json& element : value) {
            std::string line;
            for (const auto& [name, member] : element.items())
                line += (line.empty() ? "" : ", ") + name + " " + plain(member);
            std::printf("%s  %s\n", margin.c_str(), line.c_str());
        }
        return;
    }
    std::string line;
    if (value.is_array()) {
        for (size_t i = 0; i < value.size(); ++i) {
            if (i % 8 == 0 && value.size() > 8)
                line += "\n" + margin + "   ";
            line += (line.empty() ? "" : " ") + plain(value[i]);
        }
    } else {
        line = plain(value);
    }
    std::printf("%s%s: %s\n", margin.c_str(), key.c_str(), line.c_str());
}

void print_text(const Json& description) {
    for (const auto& [key, value] : description.items())
        print_member(key, value, key == "file" ? 0 : 2);
}

} // namespace

bool print_info(const std::vector<std::string>& names) {
    expect_work(names.size());
    Json all = Json::array();
    bool good = true;
    for (const std::string& name : names) {
        try {
            all.push_back(describe(name));
            if (!settings.json)
                print_text(all.back());
        } catch (const std::exception& error) {
            complain(error.what());
            all.push_back(error_record(name, error));
            good = false;
        }
    }
    if (settings.json)
        print_json(all);
    return good;
}
