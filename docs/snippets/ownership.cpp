// Images that free themselves.
#include <kirvo.h>

//! [owner]
#include <memory>
#include <type_traits>

struct ImageFreer {
    void operator()(HGLOBAL image) const { GlobalFree(image); }
};
using Image = std::unique_ptr<std::remove_pointer_t<HGLOBAL>, ImageFreer>;

Image half_size(const Image& image, int32_t& status)
{
    const auto* header = static_cast<const BITMAPINFOHEADER*>(GlobalLock(image.get()));
    if (header == nullptr) {
        status = KIRVO_NULL_HANDLE;
        return nullptr;
    }
    const int32_t width = header->biWidth, height = header->biHeight;
    GlobalUnlock(image.get());
    return Image(Dib24ZoomEx2(image.get(), 0, 0, width, height, (width + 1) / 2, (height + 1) / 2,
                              &status, 1));
}
//! [owner]

int main()
{
    int32_t status = 1;
    const Image image(Dib24Solid(9, 7, 24, 0x00FF00, &status));
    const Image half = half_size(image, status);
    if (!half || status != KIRVO_OK)
        return 1;
    return half_size(nullptr, status) == nullptr && status == KIRVO_NULL_HANDLE ? 0 : 1;
}
