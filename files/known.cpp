#include "known.hpp"

namespace kirvo_files {

void Known::note(int32_t kind, Text text) {
    if (numbers.notes == max_notes || text.empty())
        return;
    notes[numbers.notes].kind = kind;
    notes[numbers.notes].text = std::move(text);
    ++numbers.notes;
}

Known* known_of(KirvoFile file) {
    auto* known = static_cast<Known*>(file);
    return known != nullptr && known->magic == Known::magic_number ? known : nullptr;
}

Status answer(Status status, const char* name, Known* known, KirvoFile* file) {
    if (status != KIRVO_FILES_OK) {
        char words[100];
        KirvoFilesStatusText(status, words, sizeof words);
        Text& reason = known->text(KIRVO_FILES_TEXT_REASON);
        if (reason.empty())
            reason = Text::format("%s", words);
        const size_t length = std::strlen(name);
        const bool named = std::strncmp(reason.c_str(), name, length) == 0;
        if (length != 0 && !named)
            reason = Text::format("%s: %s", name, Text(std::move(reason)).c_str());
    }
    if (file != nullptr)
        *file = known;
    else
        unmake(known);
    return status;
}

} // namespace kirvo_files
