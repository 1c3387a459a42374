#include "win32/ControlHost.h"

#include <commctrl.h>
#include <oleidl.h>

#include "win32/Resources.h"

// Exports of the system's atl.dll; the toolchain has its import library but no header.
extern "C" {
BOOL WINAPI AtlAxWinInit(void);
HRESULT WINAPI AtlAxCreateControl(LPCOLESTR name, HWND window, IStream* stream, IUnknown** container);
HRESULT WINAPI AtlAxGetControl(HWND window, IUnknown** control);
}

namespace win32 {
namespace {

constexpr UINT_PTR kHostSubclass = 1;
constexpr size_t kClassIdLength = 40;

ComPtr<IOleInPlaceObject> GetInPlaceObject(HWND host) noexcept {
    ComPtr<IOleInPlaceObject> object;
    const ComPtr<IUnknown> control = GetControlUnknown(host);
    if (control) control.GetInterfacePtr()->QueryInterface(&object);
    return object;
}

// The system's container leaves its control behind when it is sized or given the focus.
LRESULT CALLBACK HostProc(HWND host, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR, DWORD_PTR) noexcept {
    if (message == WM_NCDESTROY) RemoveWindowSubclass(host, HostProc, kHostSubclass);
    const LRESULT result = DefSubclassProc(host, message, wParam, lParam);
    if (message != WM_SIZE && message != WM_SETFOCUS) return result;

    const ComPtr<IOleInPlaceObject> object = GetInPlaceObject(host);
    if (!object) return result;
    if (message == WM_SIZE) {
        RECT rect = {};
        GetClientRect(host, &rect);
        object.GetInterfacePtr()->SetObjectRects(&rect, &rect);
    } else {
        HWND window = nullptr;
        object.GetInterfacePtr()->GetWindow(&window);
        if (window != nullptr && window != host && !IsChild(window, GetFocus())) SetFocus(window);
    }
    return result;
}

}  // namespace

bool EnableControlHosting() noexcept {
    static const bool enabled = [] {
        // The class outlives this module, and so does its code.
        HMODULE container = nullptr;
        GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN, L"atl.dll", &container);
        if (AtlAxWinInit()) return true;
        // Refused as well when the host, or this module when it was loaded before, has registered it.
        WNDCLASSEXW known = {};
        known.cbSize = sizeof known;
        return GetClassInfoExW(container, kControlHostClass, &known) != FALSE;
    }();
    return enabled;
}

HRESULT CreateControlIn(HWND host, REFCLSID classId) noexcept {
    if (host == nullptr) return E_INVALIDARG;
    wchar_t name[kClassIdLength];
    StringFromGUID2(classId, name, static_cast<int>(std::size(name)));
    const HRESULT status = AtlAxCreateControl(name, host, nullptr, nullptr);
    if (FAILED(status)) return status;
    // Success does not say that there is a control.
    if (!GetControlUnknown(host)) return E_FAIL;
    SetWindowSubclass(host, HostProc, kHostSubclass, 0);
    return S_OK;
}

HWND CreateControl(REFCLSID classId, const wchar_t* text, DWORD style, const RECT& rect, HWND parent,
                   UINT id) noexcept {
    if (!EnableControlHosting()) return nullptr;
    const ResourceScope scope;
    // With a text the container would take it for the name of the control.
    const HWND host = CreateWindowExW(0, kControlHostClass, L"", style | WS_CHILD, rect.left, rect.top,
                                      rect.right - rect.left, rect.bottom - rect.top, parent,
                                      reinterpret_cast<HMENU>(static_cast<UINT_PTR>(id)), ModuleInstance(), nullptr);
    if (host == nullptr) return nullptr;
    if (FAILED(CreateControlIn(host, classId))) {
        DestroyWindow(host);
        return nullptr;
    }
    if (text != nullptr) SetWindowTextW(host, text);
    return host;
}

ComPtr<IUnknown> GetControlUnknown(HWND host) noexcept {
    IUnknown* control = nullptr;
    if (FAILED(AtlAxGetControl(host, &control))) control = nullptr;
    return {control, false};
}

}  // namespace win32
