#include "host/Controls.h"

extern "C" {

const wchar_t* HostApplicationName(void) {
    return L"Fake Host";
}
int HostMessageBox(HWND, const wchar_t*, UINT) {
    return IDOK;
}
void HostHelp(HWND, DWORD, DWORD_PTR) {}

}  // extern "C"
