#pragma once
// HostControls.dll beyond src/host/Controls.h. Its boxes are observed and answered through HostSupportSetBoxAnswerer
// (refhost/support/HostSupport.h).
//
// Help is the operator's guide: docs\operator.html beside the program, opened at the dialog's chapter, or
// docs\operator.md, opened as a whole.

#include <windows.h>

extern "C" {

struct HostHelpRequest {
    HWND owner;
    DWORD context;
    const wchar_t* chapter;  // anchor of the chapter, empty for the start of the guide
    const wchar_t* target;   // what would be opened; empty when there is no guide
};
// Nonzero: handled, nothing is opened.
using HostHelpOpener = BOOL(CALLBACK*)(const HostHelpRequest* request, void* context);

// Asked before help is opened; null ends that.
void HostControlsSetHelpOpener(HostHelpOpener opener, void* context);
}
