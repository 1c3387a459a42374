#include <cxxabi.h>

#include "module/ZonwickApp.h"

// The static objects are constructed before this runs and destroyed after it: manager first, module object second, and
// the other way round.
extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID processEnds) {
    if (reason == DLL_PROCESS_DETACH && processEnds != nullptr) GetApp().Abandon();
    if (reason != DLL_PROCESS_ATTACH) return TRUE;
    // The window thread's state of exceptions: the runtime takes memory for it with the first one, and ends the process
    // when there is none.
    void* volatile const state = abi::__cxa_get_globals();  // used, or there would be no call
    (void)state;
    try {
        GetApp().InitInstance(instance);
        return TRUE;
    } catch (...) {
        return FALSE;  // no memory for a few strings
    }
}
