#pragma once
// ActiveX controls in the system's own container: a window of the container's class holds one control.

#include <windows.h>

#include "win32/ComPtr.h"

namespace win32 {

// The container's window class: what a dialog template names for a control, with an empty text.
inline constexpr const wchar_t* kControlHostClass = L"AtlAxWin";

// A control of a dialog template, made while the dialog opens.
struct HostedControl {
    UINT id;  // of a kControlHostClass window in the template
    const CLSID* classId;
    const IID* events;  // dispatch interface of its events; null: not listened to
};

// Registers the container's window class, once.
bool EnableControlHosting() noexcept;

// Makes a control in a container's window and checks that it is there.
HRESULT CreateControlIn(HWND host, REFCLSID classId) noexcept;

// Makes a container's window with a control in it; null when either cannot be made.
HWND CreateControl(REFCLSID classId, const wchar_t* text, DWORD style, const RECT& rect, HWND parent, UINT id) noexcept;

// The control in a container's window; null when there is none.
ComPtr<IUnknown> GetControlUnknown(HWND host) noexcept;

}  // namespace win32
