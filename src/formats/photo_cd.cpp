// Photo CD images, decoded by an external library that is loaded for the length of a call.
#include "formats/answer.hpp"

namespace kirvo {

namespace {

constexpr char library_name[] = "PCDLIB32.DLL";

// The codes mean something else than usual here.
constexpr Status unusable = Status::bad_parameter;
constexpr Status not_opened = Status::no_memory;
constexpr Status not_loaded = Status::null_handle;
constexpr Status no_information = Status::cannot_open;

constexpr int32_t default_resolution = 3;
constexpr int32_t highest_resolution = 5;

// More than the image information can take; nobody reads it.
constexpr size_t information_bytes = 4096;

class PhotoCdLibrary {
  public:
    explicit operator bool() const { return static_cast<bool>(library_); }

    Status read(const char* name, int32_t resolution, uintptr_t progress, OwnedBlock& image) const;

  private:
    // Calls a function of the library, which answers 0 on success. One that is missing fails.
    template<typename... Arguments>
    uint32_t call(const char* function_name, Arguments... arguments) const {
        using Function = uint32_t(WINAPI*)(Arguments...);
        const auto function = reinterpret_cast<Function>(library_.function(function_name));
        return function != nullptr ? function(arguments...) : UINT32_MAX;
    }
    // As call, for functions whose answer has 16 bits.
    template<typename... Arguments>
    bool call16(const char* function_name, Arguments... arguments) const {
        return (call(function_name, arguments...) & 0xFFFF) == 0;
    }

    LoadedLibrary library_{library_name};
};

// A failure leaves the photo open: unloading the library closes it.
Status PhotoCdLibrary::read(const char* name, int32_t resolution, uintptr_t progress,
                            OwnedBlock& image) const {
    void* photo = nullptr;
    if (!call16("PCDopen", name, &photo))
        return not_opened;
    alignas(16) uint8_t information[information_bytes];
    if (!call16("PCDreadImageInfo", photo, static_cast<void*>(information)))
        return no_information;
    if (progress != 0 && !call16("PCDsetProgress", photo, progress, uintptr_t{0}))
        return unusable;

    uintptr_t rotation = 0; // wide enough for whatever the library stores
    call("PCDgetRotation", photo, &rotation);
    const uint32_t transform_failed = call("PCDsetTransform", photo, rotation);
    if (resolution < 0 || resolution > highest_resolution)
        resolution = default_resolution;
    const uint32_t resolution_failed = call("PCDsetResolution", photo, resolution);
    if (transform_failed != 0 || resolution_failed != 0)
        return unusable;

    HGLOBAL loaded = nullptr;
    const uint32_t load_failed = call("PCDloadImage", photo, uintptr_t{0}, &loaded);
    image.reset(loaded);
    if (load_failed != 0 || !LockedBlock(image.get()))
        return not_loaded;
    return call16("PCDclose", photo) ? Status::ok : unusable;
}

Status read_photo(const char* name, int32_t resolution, uintptr_t progress, OwnedBlock& image) {
    const PhotoCdLibrary library;
    if (!library)
        return unusable;
    const Status status = library.read(name, resolution, progress, image);
    if (status != Status::ok)
        image.reset();
    return status;
}

} // namespace

} // namespace kirvo

using namespace kirvo;

HGLOBAL WINAPI PcdRead(LPCSTR name, int32_t resolution, uintptr_t progress, uint32_t* width,
                       uint32_t* height, int32_t* status) {
    OwnedBlock image;
    const Status result = read_photo(name, resolution, progress, image);
    return answer(std::move(image), result, width, height, nullptr, status);
}
