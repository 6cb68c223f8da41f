// Where effects of two pictures get the second one from: the catalogue leaves that to the program.
#include "pictures/picture.hpp"

#include "calls/recorder.hpp"
#include "pictures/known.hpp"

Image read_image(const std::string& name) {
    Known known;
    HGLOBAL handle = nullptr;
    const int32_t status = KirvoFilesOpen(name.c_str(), nullptr, &handle, known.receiver());
    Image image = Image::adopt(handle);
    expect(status, known, name);
    if (calls::noted != nullptr) {
        calls::Call call = {"KirvoFilesOpen", {}, calls::Answer::image};
        call.image = handle;
        call.file = name;
        calls::noted->push_back(call);
    }
    return image;
}
