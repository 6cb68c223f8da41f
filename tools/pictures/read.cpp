#include "pictures/alpha.hpp"
#include "pictures/picture.hpp"
#include "running/watch.hpp"
#include "system/streams.hpp"

KirvoFilesOpenOptions ReadOptions::as_structure() const {
    KirvoFilesOpenOptions how = {};
    how.size = sizeof how;
    how.frame = index ? static_cast<uint32_t>(*index) + 1 : 0;
    how.background = background.value_or(0);
    how.flags = (background ? KIRVO_FILES_BACKGROUND : 0) |
                (keep_alpha && !background ? KIRVO_FILES_KEEP_ALPHA : 0) |
                (no_turn ? KIRVO_FILES_NO_TURN : 0) | (keep_going ? KIRVO_FILES_KEEP_GOING : 0) |
                (no_limits ? KIRVO_FILES_NO_LIMITS : 0) | (kirvo_only ? KIRVO_FILES_KIRVO_ONLY : 0);
    return how;
}

Picture read_picture(const std::string& name, const ReadOptions& options) {
    const Watch watch("reading");
    const KirvoFilesOpenOptions how = options.as_structure();
    Picture picture;
    HGLOBAL handle = nullptr;
    int32_t status = 0;
    if (name == "-") {
        const std::string bytes = standard_input();
        status = KirvoFilesOpenMemory(bytes.data(), static_cast<uint32_t>(bytes.size()), &how,
                                      &handle, picture.known.receiver());
    } else {
        status = KirvoFilesOpen(name.c_str(), &how, &handle, picture.known.receiver());
    }
    picture.image = Image::adopt(handle);
    expect(status, picture.known, shown(name, "standard input"));
    if (how.flags & KIRVO_FILES_KEEP_ALPHA)
        split_alpha(picture);
    return picture;
}

Image read_image(const std::string& name) { return read_picture(name).image; }

Known read_headers(const std::string& name, const ReadOptions& options) {
    const KirvoFilesOpenOptions how = options.as_structure();
    Known known;
    int32_t status = 0;
    if (name == "-") {
        static const std::string bytes = standard_input(); // its pictures are asked for one by one
        status = KirvoFilesInfoMemory(bytes.data(), static_cast<uint32_t>(bytes.size()), &how,
                                      known.receiver());
    } else {
        status = KirvoFilesInfo(name.c_str(), &how, known.receiver());
    }
    expect(status, known, shown(name, "standard input"));
    return known;
}
