#pragma once
// Registers the window class of the list control (host/ListTable.h) for the process; for the library's start and
// unload.

#include <windows.h>

namespace listtable {

// False when the class could not be registered. Safe in DllMain: the system's list view is looked up only when the
// first window is created, among the common controls that are active then.
bool RegisterListTable(HINSTANCE instance) noexcept;
void UnregisterListTable(HINSTANCE instance) noexcept;

}  // namespace listtable
