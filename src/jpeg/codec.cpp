#include "jpeg/codec.hpp"

namespace kirvo {

bool codec_busy = false;

} // namespace kirvo
