#pragma once
// Hears what a list tells its parent before the parent does.

#include <windows.h>

namespace listtable {

// What is sent to the list instead, with the lParam that the parent would get. Drawing and measuring are answered by
// that; a notification that the list answers with 0 goes on to the parent.
struct ReflectedMessages {
    UINT draw;
    UINT measure;
    UINT notify;
};

// False when there is no memory.
bool HookParent(HWND parent, HWND list, const ReflectedMessages& messages) noexcept;
void UnhookParent(HWND parent, HWND list) noexcept;

}  // namespace listtable
