#include "pictures/known.hpp"

#include "pictures/image.hpp"
#include "pictures/words.hpp"
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

KirvoFilesDescription Known::description() const {
    KirvoFilesDescription description = {};
    description.size = sizeof description;
    KirvoFilesDescribe(file_, &description);
    return description;
}

std::string Known::text(KirvoFilesTextKind kind, uint32_t index) const {
    return words_of(
        [&](char* text, uint32_t room) { return KirvoFilesText(file_, kind, index, text, room); });
}

std::vector<uint8_t> Known::data(KirvoFilesDataKind kind) const {
    std::vector<uint8_t> bytes(KirvoFilesData(file_, kind, nullptr, 0));
    KirvoFilesData(file_, kind, bytes.data(), static_cast<uint32_t>(bytes.size()));
    return bytes;
}

void Known::set_comment(const std::string& text) {
    expect(KirvoFilesSetData(&file_, KIRVO_FILES_DATA_COMMENT, text.data(),
                             static_cast<uint32_t>(text.size())),
           *this, "--comment");
}

std::vector<std::string> Known::notes() const {
    std::vector<std::string> all;
    for (uint32_t i = 0; i < description().notes; ++i) {
        if (settings.verbose || tells_of_a_loss(KirvoFilesNote(file_, i)))
            all.push_back(text(KIRVO_FILES_TEXT_NOTE, i));
    }
    return all;
}

void expect(int32_t status, const Known& known, const std::string& name) {
    if (status == KIRVO_FILES_OK)
        return;
    std::string reason = known.handle() == nullptr ? "" : known.text(KIRVO_FILES_TEXT_REASON);
    if (reason.starts_with(name + ": "))
        reason.erase(0, name.size() + 2);
    if (reason.empty())
        reason = meaning(status);
    if (status == KIRVO_FILES_IS_FOLDER)
        reason += "; -r takes the pictures in it";
    throw Failure(name, reason, status);
}
