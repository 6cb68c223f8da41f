#include "platform/entry.hpp"

namespace kirvo {

HINSTANCE module_instance = nullptr;

} // namespace kirvo

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH)
        kirvo::module_instance = instance;
    return TRUE;
}
