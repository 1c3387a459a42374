// The library's window class is there as long as the library is.
#include <windows.h>

#include "refhost/controls/list/ListTable.h"

BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, void*) {
    // A dialog that lacks the class reports that a control could not be made; box and help work without it.
    if (reason == DLL_PROCESS_ATTACH) listtable::RegisterListTable(instance);
    if (reason == DLL_PROCESS_DETACH) listtable::UnregisterListTable(instance);
    return TRUE;
}
