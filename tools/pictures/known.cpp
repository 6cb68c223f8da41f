#include "pictures/known.hpp"

#include "pictures/image.hpp"
#include "system/settings.hpp"

namespace {

bool tells_of_a_loss(int32_t kind) {
    switch (kind) {
    case KIRVO_FILES_NOTE_TURNED:
    case KIRVO_FILES_NOTE_DECODER:
    case KIRVO_FILES_NOTE_TEXT:
        return false;
    default:
        return true;
    }
}

} // namespace

std::vector<std::string> told_notes(const Known& known) {
    std::vector<std::string> all;
    for (uint32_t i = 0; i < known.description().notes; ++i) {
        if (settings.verbose || tells_of_a_loss(KirvoFilesNote(known.handle(), i)))
            all.push_back(known.text(KIRVO_FILES_TEXT_NOTE, i));
    }
    return all;
}

void expect(int32_t status, const Known& known, const std::string& name) {
    if (status == KIRVO_FILES_OK)
        return;
    std::string reason = known.text(KIRVO_FILES_TEXT_REASON);
    if (reason.starts_with(name + ": "))
        reason.erase(0, name.size() + 2);
    if (reason.empty())
        reason = meaning(status);
    if (status == KIRVO_FILES_IS_FOLDER)
        reason += "; -r takes the pictures in it";
    throw Failure(name, reason, status);
}
