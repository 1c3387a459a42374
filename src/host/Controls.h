#pragma once
// The host controls library: closed, imported by ordinal only (cmake/HostLibraries.cmake).

#include <windows.h>

extern "C" {
// Ordinal 103: the application's name, for the caption of message boxes. Owned by the library, never null.
const wchar_t* HostApplicationName(void);
// Ordinal 104: a message box with the application's name as caption; `style` as for MessageBoxW.
int HostMessageBox(HWND owner, const wchar_t* text, UINT style);
// Ordinal 105: opens the help chapter of a help context over `owner`; the last argument is 0.
void HostHelp(HWND owner, DWORD context, DWORD_PTR reserved);
}
