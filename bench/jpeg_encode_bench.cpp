// Encoding into memory, beside libjpeg-turbo with its standard tables, its accurate DCT and the
// quality that gives a stream of the same length.
#include "support/pictures.hpp"
#include "support/row.hpp"

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <turbojpeg.h>

namespace {

using namespace kirvo_bench;

struct Case {
    int sampling; // ours; 0: grey
    TJSAMP peer_sampling;
    int level = 4; // the one at first
};

constexpr Case s420 = {4, TJSAMP_420}, s422 = {2, TJSAMP_422}, s444 = {1, TJSAMP_444},
               grey = {0, TJSAMP_GRAY, 2}, finest = {1, TJSAMP_444, 1};

HGLOBAL encode(const Case& c, uint32_t* length) {
    int32_t status;
    JpgCodSetQEx(c.level);
    if (c.sampling == 0)
        return JpgCodMainHGLOBAL_M(grey_dib(), 0, 0, photo_width, photo_height, 0, length, &status);
    JpgCodSetSubsample(c.sampling);
    return JpgCodMainHGLOBAL(photo_dib(), 0, 0, photo_width, photo_height, length, &status);
}

// The stream of a picture with much detail may not fit into the room made for it: no row is measured
// then.
uint32_t length_of(const Case& c) {
    uint32_t length = 0;
    HGLOBAL stream = encode(c, &length);
    if (stream == nullptr) {
        std::fprintf(stderr, "a picture cannot be encoded at level %d\n", c.level);
        std::exit(1);
    }
    GlobalFree(stream);
    return length;
}

class Peer {
  public:
    explicit Peer(const Case& c)
        : sampling_(c.peer_sampling), buffer_(tjBufSize(photo_width, photo_height, sampling_)),
          encoder_(tjInitCompress(), tjDestroy) {}

    unsigned long encode(int quality) {
        unsigned char* bytes = buffer_.data();
        unsigned long count = buffer_.size();
        const bool is_grey = sampling_ == TJSAMP_GRAY;
        const std::vector<uint8_t>& picture = is_grey ? photo_grey() : photo_bgr();
        tjCompress2(encoder_.get(), picture.data(), photo_width, 0, photo_height,
                    is_grey ? TJPF_GRAY : TJPF_BGR, &bytes, &count, sampling_, quality,
                    TJFLAG_ACCURATEDCT | TJFLAG_NOREALLOC);
        return count;
    }

    int quality_for(unsigned long length) {
        int low = 1, high = 100; // the lowest quality that gives at least the length, or one less
        while (low < high) {
            const int middle = (low + high) / 2;
            if (encode(middle) < length)
                low = middle + 1;
            else
                high = middle;
        }
        const auto distance = [&](int quality) {
            const auto difference = static_cast<long>(encode(quality)) - static_cast<long>(length);
            return std::labs(difference);
        };
        return low > 1 && distance(low - 1) < distance(low) ? low - 1 : low;
    }

  private:
    TJSAMP sampling_;
    std::vector<unsigned char> buffer_;
    std::shared_ptr<void> encoder_;
};

Work ours(const Case& c) {
    length_of(c);
    return [c] {
        uint32_t length;
        GlobalFree(encode(c, &length));
    };
}

Work peer(const Case& c) {
    auto encoder = std::make_shared<Peer>(c);
    return [encoder, quality = encoder->quality_for(length_of(c))] { encoder->encode(quality); };
}

const Row rows[] = {
    {"jpegenc/420/ours", [] { return ours(s420); }},
    {"jpegenc/420/libjpeg-turbo", [] { return peer(s420); }},
    {"jpegenc/422/ours", [] { return ours(s422); }},
    {"jpegenc/422/libjpeg-turbo", [] { return peer(s422); }},
    {"jpegenc/444/ours", [] { return ours(s444); }},
    {"jpegenc/444/libjpeg-turbo", [] { return peer(s444); }},
    {"jpegenc/grey/ours", [] { return ours(grey); }},
    {"jpegenc/grey/libjpeg-turbo", [] { return peer(grey); }},
    {"jpegenc/finest/ours", [] { return ours(finest); }},
    {"jpegenc/finest/libjpeg-turbo", [] { return peer(finest); }},
};

} // namespace
