// A packed DIB that the program owns.
#pragma once

#include "kirvo.hpp"
#include "system/errors.hpp"

using kirvo::Image;

// What a call has made; throws Failure with the status in words where that is nothing. The status
// is looked at once the call that wrote it is over: hence a reference.
Image checked(HGLOBAL handle, const std::string& subject, const int32_t& status);

// What a status of either library means, in words.
std::string meaning(int32_t status);

// A copy of the image, expanded or converted.
Image copy_at_24_bits(const Image& image);
// The image itself when it has 24 bits, else such a copy.
Image to_24_bits(Image image);
