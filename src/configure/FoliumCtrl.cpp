#include "configure/FoliumCtrl.h"

bool CFolium::Create(const wchar_t* windowName, DWORD style, const RECT& rect, HWND parent, UINT id) {
    Attach(win32::CreateControl(host::kClsidFolium, windowName, style, rect, parent, id));
    return GetSafeHwnd() != nullptr;
}

IFoliumPtr CFolium::GetFolium() const {
    IFolium* folium = nullptr;
    const auto control = win32::GetControlUnknown(GetSafeHwnd());
    if (!control) return nullptr;
    const HRESULT status = control->QueryInterface(__uuidof(IFolium), reinterpret_cast<void**>(&folium));
    return FAILED(status) ? nullptr : IFoliumPtr(folium, false);
}
