#include "formats/companion.hpp"

#include <algorithm>
#include <cstring>

namespace kirvo {

namespace {

constexpr size_t title_room = 256;
constexpr size_t path_room = 4096;
constexpr char extension[] = ".IPR";

size_t length_without_extension(const char* title) {
    const size_t length = std::strlen(title);
    for (size_t i = length; i-- > 0 && title[i] != '\\';) {
        if (title[i] == '.')
            return i;
    }
    return length;
}

// False for a name that no file can have.
bool companion_name(const char* name, char (&companion)[path_room]) {
    char title[title_room];
    if (!file_title(name, title, title_room))
        return false;
    const size_t folder = std::strlen(name) - std::strlen(title);
    const size_t stem = length_without_extension(title);
    if (folder + stem + sizeof extension > path_room)
        return false;
    std::memcpy(companion, name, folder);
    std::memcpy(companion + folder, title, stem);
    std::memcpy(companion + folder + stem, extension, sizeof extension);
    return true;
}

// The characters of a file, with a look at the next one.
class Characters {
  public:
    explicit Characters(InputFile& file) : file_(file) { advance(); }

    int next() const { return next_; } // -1 at the end
    void advance() {
        if (at_ == filled_) {
            at_ = 0;
            filled_ = file_.read_some(buffer_, sizeof buffer_);
        }
        next_ = at_ < filled_ ? buffer_[at_++] : -1;
    }

  private:
    InputFile& file_;
    uint8_t buffer_[512];
    uint32_t at_ = 0;
    uint32_t filled_ = 0;
    int next_;
};

bool is_space(int c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
bool is_digit(int c) { return c >= '0' && c <= '9'; }

// A decimal integer behind any white space, as "%d" takes it.
bool read_integer(Characters& text, int32_t& value) {
    while (is_space(text.next()))
        text.advance();
    const bool negative = text.next() == '-';
    if (negative || text.next() == '+')
        text.advance();
    if (!is_digit(text.next()))
        return false;
    int64_t magnitude = 0;
    for (; is_digit(text.next()); text.advance())
        magnitude = std::min<int64_t>(magnitude * 10 + (text.next() - '0'), INT32_MAX);
    value = static_cast<int32_t>(negative ? -magnitude : magnitude);
    return true;
}

} // namespace

bool read_companion(const char* name, int32_t& width, int32_t& height) {
    char companion[path_room];
    InputFile file;
    if (!companion_name(name, companion) || !file.open(companion, Share::anyone))
        return false;
    Characters text(file);
    return read_integer(text, width) && read_integer(text, height);
}

} // namespace kirvo
