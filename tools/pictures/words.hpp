// Texts of the library that fills what room there is and answers how much it wants.
#pragma once

#include <cstdint>
#include <string>

template<typename Call>
std::string words_of(Call call) {
    std::string text(call(static_cast<char*>(nullptr), 0u), '\0');
    if (!text.empty())
        text.resize(call(text.data(), static_cast<uint32_t>(text.size())) - 1);
    return text;
}
