#include "platform/platform.hpp"

#include <dlfcn.h>

namespace kirvo {

LoadedLibrary::LoadedLibrary(const char* name) : handle_(dlopen(name, RTLD_NOW | RTLD_LOCAL)) {}

LoadedLibrary::~LoadedLibrary() {
    if (handle_ != nullptr)
        dlclose(handle_);
}

void* LoadedLibrary::function(const char* name) const { return dlsym(handle_, name); }

} // namespace kirvo
