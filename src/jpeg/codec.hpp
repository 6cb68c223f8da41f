// What the encoder and the decoder have in common as operations.
#pragma once

namespace kirvo {

// Set from a successful First call of either codec until its operation has finished, failed or been
// abandoned. Every First call is refused meanwhile: one encode or decode runs at a time.
extern bool codec_busy;

} // namespace kirvo
