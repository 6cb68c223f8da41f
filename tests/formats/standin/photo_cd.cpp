// PHOTO_CD_INCOMPLETE leaves out every function but the first.
#include "formats/standin/photo_cd.hpp"

#include <cstdarg>
#include <cstdio>
#include <cstring>

#ifdef _WIN32
#define STANDIN_EXPORT extern "C" __declspec(dllexport)
#else
#define STANDIN_EXPORT extern "C" __attribute__((visibility("default")))
#endif

namespace {

PhotoCdStandIn state = {};

void record(const char* format, ...) {
    const size_t used = std::strlen(state.calls);
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(state.calls + used, sizeof state.calls - used, format, arguments);
    va_end(arguments);
}

[[maybe_unused]] int number(const void* handle) {
    return static_cast<int>(reinterpret_cast<intptr_t>(handle));
}

} // namespace

STANDIN_EXPORT PhotoCdStandIn* WINAPI photo_cd_stand_in() { return &state; }

STANDIN_EXPORT uint32_t WINAPI PCDopen(const char* name, void** photo) {
    record("PCDopen(%s) ", name != nullptr ? name : "null");
    *photo = state.photo;
    return state.open;
}

#ifndef PHOTO_CD_INCOMPLETE

STANDIN_EXPORT uint32_t WINAPI PCDreadImageInfo(void* photo, void* information) {
    record("PCDreadImageInfo(%d) ", number(photo));
    std::memset(information, 0xEE, 256);
    return state.read_image_info;
}

STANDIN_EXPORT uint32_t WINAPI PCDsetProgress(void* photo, uintptr_t progress, uintptr_t zero) {
    record("PCDsetProgress(%d %d %d) ", number(photo), static_cast<int>(progress),
           static_cast<int>(zero));
    return state.set_progress;
}

STANDIN_EXPORT uint32_t WINAPI PCDgetRotation(void* photo, int32_t* rotation) {
    record("PCDgetRotation(%d) ", number(photo));
    *rotation = state.rotation;
    return state.get_rotation;
}

STANDIN_EXPORT uint32_t WINAPI PCDsetTransform(void* photo, int32_t rotation) {
    record("PCDsetTransform(%d %d) ", number(photo), rotation);
    return state.set_transform;
}

STANDIN_EXPORT uint32_t WINAPI PCDsetResolution(void* photo, int32_t resolution) {
    record("PCDsetResolution(%d %d) ", number(photo), resolution);
    return state.set_resolution;
}

STANDIN_EXPORT uint32_t WINAPI PCDloadImage(void* photo, uintptr_t zero, HGLOBAL* image) {
    record("PCDloadImage(%d %d) ", number(photo), static_cast<int>(zero));
    *image = state.image;
    return state.load_image;
}

STANDIN_EXPORT uint32_t WINAPI PCDclose(void* photo) {
    record("PCDclose(%d) ", number(photo));
    return state.close;
}

#endif
