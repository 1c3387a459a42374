#pragma once

#include "host/PageDisplay.h"
#include "win32/ControlHost.h"
#include "win32/Wnd.h"

_COM_SMARTPTR_TYPEDEF(IFolium, __uuidof(IFolium));

// The window of the host's page display control.
class CFolium final : public CWnd {
public:
    // Makes the control in code; a dialog template names it instead. False when it cannot be made.
    bool Create(const wchar_t* windowName, DWORD style, const RECT& rect, HWND parent, UINT id);
    // The control's own interface; null when it has none.
    IFoliumPtr GetFolium() const;
};
