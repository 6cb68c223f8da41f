#include "system.hpp"

namespace kirvo_files {

static bool append_utf8(Buffer& text, uint32_t letter) {
    uint8_t bytes[4];
    size_t count = 1;
    if (letter < 0x80) {
        bytes[0] = static_cast<uint8_t>(letter);
    } else if (letter < 0x800) {
        count = 2;
        bytes[0] = static_cast<uint8_t>(0xC0 | letter >> 6);
    } else if (letter < 0x10000) {
        count = 3;
        bytes[0] = static_cast<uint8_t>(0xE0 | letter >> 12);
    } else {
        count = 4;
        bytes[0] = static_cast<uint8_t>(0xF0 | letter >> 18);
    }
    for (size_t i = 1; i < count; ++i)
        bytes[i] = static_cast<uint8_t>(0x80 | (letter >> 6 * (count - 1 - i) & 0x3F));
    return text.append(bytes, count);
}

Text utf8_of(const KirvoWide* wide) {
    Buffer text;
    for (size_t i = 0; wide[i] != 0; ++i) {
        uint32_t letter = wide[i];
        const uint32_t next = wide[i + 1];
        if (letter >= 0xD800 && letter < 0xDC00 && next >= 0xDC00 && next < 0xE000) {
            letter = 0x10000 + ((letter - 0xD800) << 10) + (next - 0xDC00);
            ++i;
        }
        if (!append_utf8(text, letter))
            return {};
    }
    return text.append("", 1) ? Text::format("%s", reinterpret_cast<char*>(text.data())) : Text();
}

bool wide_of(const char* text, Buffer& units) {
    const auto* at = reinterpret_cast<const uint8_t*>(text);
    while (*at != 0) {
        uint32_t letter = *at++;
        uint32_t more = letter >= 0xF0 ? 3 : letter >= 0xE0 ? 2 : letter >= 0xC0 ? 1 : 0;
        if (more != 0)
            letter &= 0x3Fu >> more;
        for (; more != 0 && (*at & 0xC0) == 0x80; --more)
            letter = letter << 6 | (*at++ & 0x3Fu);
        const bool pair = letter >= 0x10000;
        if (pair && !units.append_le16(0xD800 + ((letter - 0x10000) >> 10 & 0x3FF)))
            return false;
        if (!units.append_le16(pair ? 0xDC00 + (letter & 0x3FF) : letter))
            return false;
    }
    return units.append_le16(0);
}

} // namespace kirvo_files
