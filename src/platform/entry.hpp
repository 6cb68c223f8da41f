// What the entry point of the DLL records.
#pragma once

#include "platform/platform.hpp"

#ifdef _WIN32
namespace kirvo {

// Set once when the process loads the library.
extern HINSTANCE module_instance;

} // namespace kirvo
#endif
