#include "pictures/formats.hpp"

#include "pictures/words.hpp"

#include <algorithm>
#include <cctype>
#include <iterator>
#include <sstream>

namespace {

std::string word(Format format, KirvoFilesFormatWord which) {
    return words_of(
        [=](char* text, uint32_t room) { return KirvoFilesFormatText(format, which, text, room); });
}

} // namespace

std::string format_name(Format format) { return word(format, KIRVO_FILES_FORMAT_NAME); }

std::vector<std::string> extensions(Format format) {
    std::istringstream words(word(format, KIRVO_FILES_FORMAT_EXTENSIONS));
    return {std::istream_iterator<std::string>(words), {}};
}

std::string codec(Format format) { return word(format, KIRVO_FILES_FORMAT_CODEC); }

std::string written_formats(const char* between) {
    std::string all;
    for (Format format = 1; format < KIRVO_FILES_FORMATS; ++format) {
        if (KirvoFilesAbilities(format) & KIRVO_FILES_WRITES)
            all += (all.empty() ? "" : between) + extensions(format).front();
    }
    return all;
}

Format written_format(const std::string& name) {
    const Format format = KirvoFilesFormatOf(name.c_str());
    return KirvoFilesAbilities(format) & KIRVO_FILES_WRITES ? format : KIRVO_FILES_UNKNOWN;
}

bool is_readable(const std::string& name) {
    return (KirvoFilesAbilities(KirvoFilesFormatOf(name.c_str())) & KIRVO_FILES_READS) != 0;
}

bool keeps_alpha(Format format) {
    return format == KIRVO_FILES_PNG || format == KIRVO_FILES_TIFF || format == KIRVO_FILES_WEBP ||
           format == KIRVO_FILES_TARGA;
}

std::string extension(const std::string& name) {
    const size_t dot = name.find_last_of("./\\");
    if (dot == std::string::npos || name[dot] != '.')
        return "";
    std::string result = name.substr(dot + 1);
    std::transform(result.begin(), result.end(), result.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return result;
}
