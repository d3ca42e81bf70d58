// The start of the library as a Windows DLL, the only build that has this file: it asks for no notices of
// threads.

#include "platform/win32.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, void* /*reserved*/) {
    if (reason == DLL_PROCESS_ATTACH) DisableThreadLibraryCalls(module);
    return TRUE;
}
