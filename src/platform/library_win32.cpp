#include "platform/platform.hpp"

namespace kirvo {

LoadedLibrary::LoadedLibrary(const char* name) : handle_(LoadLibraryA(name)) {}

LoadedLibrary::~LoadedLibrary() {
    if (handle_ != nullptr)
        FreeLibrary(static_cast<HMODULE>(handle_));
}

void* LoadedLibrary::function(const char* name) const {
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(handle_), name));
}

} // namespace kirvo
