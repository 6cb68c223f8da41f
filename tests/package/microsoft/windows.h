/* The few names of <windows.h> that kirvo.h needs, for a compiler that comes without it. */
#define WINAPI __stdcall
typedef const char* LPCSTR;
typedef void *HGLOBAL, *HMODULE;
typedef struct HWND__* HWND;
typedef struct HPALETTE__* HPALETTE;

__declspec(dllimport) HMODULE WINAPI GetModuleHandleA(LPCSTR name);
__declspec(dllimport) void* WINAPI GetProcAddress(HMODULE module, LPCSTR name);
__declspec(dllimport) void WINAPI ExitProcess(unsigned code);
