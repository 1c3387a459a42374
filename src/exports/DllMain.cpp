#include "exports/MemoryReserve.h"
#include "module/ZonwickApp.h"

// The static objects are constructed before this runs and destroyed after it: manager first, module object second, and
// the other way round.
extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID processEnds) {
    if (reason == DLL_PROCESS_DETACH && processEnds != nullptr) GetApp().Abandon();
    if (reason != DLL_PROCESS_ATTACH) return TRUE;
    exports::PrepareForLackOfMemory();
    try {
        GetApp().InitInstance(instance);
        return TRUE;
    } catch (...) {
        return FALSE;  // no memory for a few strings
    }
}
