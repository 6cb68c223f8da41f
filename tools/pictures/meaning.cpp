#include "kirvo_files.h"
#include "pictures/image.hpp"
#include "pictures/words.hpp"

std::string meaning(int32_t status) {
    return words_of(
        [=](char* text, uint32_t room) { return KirvoFilesStatusText(status, text, room); });
}
