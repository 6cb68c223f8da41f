// Images that free themselves.
//! [owner]
#include <kirvo.hpp>

kirvo::Image half_size(const kirvo::Image& image)
{
    return image.resize((image.width() + 1) / 2, (image.height() + 1) / 2);
}
//! [owner]

//! [flat]
int32_t flat_function(const kirvo::Image& image)
{
    return Dib24Negative(image.handle(), 0, 0, image.width(), image.height());
}
//! [flat]

int main()
{
    const kirvo::Image image = kirvo::Image::solid(9, 7, 0x00FF00);
    const kirvo::Image half = half_size(image);
    if (half.width() != 5 || half.height() != 4 || flat_function(half) != KIRVO_OK)
        return 1;
    try {
        half_size(kirvo::Image());
    } catch (const kirvo::Error& error) {
        return error.status() == KIRVO_NULL_HANDLE && half.get_pixel(0, 0) == 0xFF00FF ? 0 : 1;
    }
    return 1;
}
