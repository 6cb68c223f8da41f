#include "commands/description.hpp"

#include "pictures/picture.hpp"
#include "system/names.hpp"

#include <cstdio>
#include <cstring>

namespace {

constexpr std::pair<const char*, KirvoFilesTextKind> texts[] = {
    {"camera", KIRVO_FILES_TEXT_CAMERA},     {"lens", KIRVO_FILES_TEXT_LENS},
    {"date", KIRVO_FILES_TEXT_DATE},         {"exposure", KIRVO_FILES_TEXT_EXPOSURE},
    {"profile", KIRVO_FILES_TEXT_PROFILE},   {"title", KIRVO_FILES_TEXT_TITLE},
    {"artist", KIRVO_FILES_TEXT_ARTIST},     {"copyright", KIRVO_FILES_TEXT_COPYRIGHT},
    {"software", KIRVO_FILES_TEXT_SOFTWARE}, {"comment", KIRVO_FILES_TEXT_COMMENT},
};

constexpr std::pair<const char*, uint32_t> properties[] = {
    {"alpha", KIRVO_FILES_HAS_ALPHA},   {"progressive", KIRVO_FILES_PROGRESSIVE},
    {"lossless", KIRVO_FILES_LOSSLESS}, {"cmyk", KIRVO_FILES_CMYK},
    {"top_down", KIRVO_FILES_TOP_DOWN}, {"arithmetic", KIRVO_FILES_ARITHMETIC},
};

Json palette(const std::vector<uint8_t>& bytes) {
    Json colours = Json::array();
    for (size_t i = 0; i + 4 <= bytes.size(); i += 4) {
        char text[8];
        std::snprintf(text, sizeof text, "#%02X%02X%02X", bytes[i + 2], bytes[i + 1], bytes[i]);
        colours.push_back(text);
    }
    return colours;
}

Json quantisers(const std::vector<uint8_t>& bytes) {
    Json tables = Json::array();
    for (size_t at = 0; at + 128 <= bytes.size(); at += 128) {
        uint16_t table[64];
        std::memcpy(table, &bytes[at], sizeof table);
        tables.push_back(table);
    }
    return tables;
}

// Of the properties of a file those that others of its format have not.
uint32_t worth_telling(Format format) {
    const bool either_way_up = format == KIRVO_FILES_BMP || format == KIRVO_FILES_TARGA;
    return ~((either_way_up ? 0u : KIRVO_FILES_TOP_DOWN) |
             (format == KIRVO_FILES_WEBP ? 0u : KIRVO_FILES_LOSSLESS));
}

void add_numbers(Json& out, const KirvoFilesDescription& d) {
    out["width"] = d.width;
    out["height"] = d.height;
    out["bits"] = d.fileBits;
    out["channels"] = d.channels;
    for (const auto& [name, flag] : properties) {
        if (d.flags & flag & worth_telling(d.format))
            out[name] = true;
    }
    if (d.quality != 0)
        out["quality"] = d.quality;
    if (d.sampleAcross != 0)
        out["sampling"] = std::to_string(d.sampleAcross) + "x" + std::to_string(d.sampleDown);
    if (d.orientation > 1)
        out["orientation"] = d.orientation;
    if (d.dpiAcross > 0)
        out["dpi"] = {d.dpiAcross, d.dpiDown};
    if (d.flags & KIRVO_FILES_HAS_PLACE)
        out["place"] = {{"latitude", d.latitude}, {"longitude", d.longitude}};
}

void add_texts(Json& out, const Known& known) {
    for (const auto& [name, kind] : texts) {
        if (const std::string text = known.text(kind); !text.empty())
            out[name] = text;
    }
}

void add_data(Json& out, const Known& known) {
    if (const auto bytes = known.data(KIRVO_FILES_DATA_PALETTE); !bytes.empty())
        out["palette"] = palette(bytes);
    if (const auto bytes = known.data(KIRVO_FILES_DATA_QUANTISERS); !bytes.empty())
        out["quantisation_tables"] = quantisers(bytes);
    for (const std::string& note : told_notes(known))
        out["notes"].push_back(note);
}

// The images of an icon, or the pages of another file.
void add_images(Json& out, const std::string& name, uint32_t count) {
    constexpr uint32_t most = 1000;
    for (uint32_t i = 0; count > 1 && i < std::min(count, most); ++i) {
        ReadOptions which;
        which.index = static_cast<int32_t>(i);
        Json image = {{"index", i}};
        try {
            const KirvoFilesDescription d = read_headers(name, which).description();
            image["width"] = d.width;
            image["height"] = d.height;
            image["bits"] = d.fileBits;
        } catch (const Failure& failure) {
            image["error"] = failure.reason();
        }
        out["images"].push_back(image);
    }
}

std::string in_bytes(uint64_t count) {
    char text[32];
    if (count < 1000)
        std::snprintf(text, sizeof text, "%u bytes", static_cast<unsigned>(count));
    else if (count < 1000000)
        std::snprintf(text, sizeof text, "%.1f kB", static_cast<double>(count) / 1e3);
    else
        std::snprintf(text, sizeof text, "%.1f MB", static_cast<double>(count) / 1e6);
    return text;
}

std::string plain(const Json& value) {
    return value.is_string() ? value.get<std::string>()
                             : value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

// Tables of numbers eight to a line, everything else on one.
std::string member(const std::string& key, const Json& value, size_t indent) {
    const std::string margin(indent, ' '), head = margin + key + ":";
    std::string text;
    if (value.is_object()) {
        for (const auto& [name, inner] : value.items())
            text += member(name, inner, indent + 2);
        return head + "\n" + text;
    }
    if (value.is_array() && !value.empty() && value[0].is_array()) {
        for (size_t i = 0; i < value.size(); ++i)
            text += member(std::to_string(i), value[i], indent + 2);
        return head + "\n" + text;
    }
    if (value.is_array() && !value.empty() && value[0].is_object()) {
        for (const Json& element : value) {
            std::string line;
            for (const auto& [name, inner] : element.items())
                line += (line.empty() ? "" : ", ") + name + " " + plain(inner);
            text += margin + "  " + line + "\n";
        }
        return head + "\n" + text;
    }
    if (!value.is_array())
        return head + " " + plain(value) + "\n";
    for (size_t i = 0; i < value.size(); ++i)
        text +=
            (i % 8 == 0 && value.size() > 8 ? "\n" + margin + "   " : "") + " " + plain(value[i]);
    return head + text + "\n";
}

} // namespace

Json describe(const std::string& name) {
    const Known known = read_headers(name);
    const KirvoFilesDescription d = known.description();
    Json out = {{"file", name}, {"format", format_name(d.format)}, {"bytes", d.fileBytes}};
    if (const std::string variant = known.text(KIRVO_FILES_TEXT_VARIANT); !variant.empty())
        out["variant"] = variant;
    add_numbers(out, d);
    add_texts(out, known);
    add_data(out, known);
    if (d.frames > 1)
        out["frames"] = d.frames;
    add_images(out, name, d.frames);
    return out;
}

std::string in_a_line(const Json& d) {
    std::string line = plain(d["file"]) + ": " + plain(d["format"]) + ", " + plain(d["width"]) +
                       " x " + plain(d["height"]) + ", " + plain(d["bits"]) +
                       (d["bits"] == 1 ? " bit" : " bits");
    if (d.contains("variant"))
        line += ", " + plain(d["variant"]);
    if (d.contains("quality"))
        line += ", quality " + plain(d["quality"]);
    if (d.contains("orientation"))
        line += ", orientation " + plain(d["orientation"]);
    if (d.contains("frames"))
        line += ", " + plain(d["frames"]) + " images";
    line += ", " + in_bytes(d["bytes"]);
    for (const char* name : {"camera", "date"}) {
        if (d.contains(name))
            line += ", " + plain(d[name]);
    }
    return line + "\n";
}

std::string in_tables(const Json& description) {
    std::string text;
    for (const auto& [key, value] : description.items())
        text += member(key, value, key == "file" ? 0 : 2);
    return text;
}
