// The control in its container: site, activation in place, focus and keys.
#include "refhost/folium/FoliumControl.h"

namespace folium {

HRESULT FoliumControl::SetClientSite(IOleClientSite* site) noexcept {
    const ComPtr<IFolium> keep(this);
    return com::Guard([&] {
        if (site == nullptr) InPlaceDeactivate();
        m_site = site;
        return S_OK;
    });
}

HRESULT FoliumControl::GetClientSite(IOleClientSite** site) noexcept {
    if (site == nullptr) return E_POINTER;
    *site = m_site;
    if (*site != nullptr) (*site)->AddRef();
    return S_OK;
}

HRESULT FoliumControl::Close(DWORD) noexcept {
    const ComPtr<IFolium> keep(this);
    InPlaceDeactivate();
    if (m_advises != nullptr) m_advises->SendOnClose();
    return S_OK;
}

HRESULT FoliumControl::DoVerb(LONG verb, LPMSG, IOleClientSite* site, LONG, HWND parent, LPCRECT rect) noexcept {
    const ComPtr<IFolium> keep(this);
    return com::Guard([&]() -> HRESULT {
        switch (verb) {
            case OLEIVERB_HIDE:
                if (m_window.Handle() != nullptr) ShowWindow(m_window.Handle(), SW_HIDE);
                return S_OK;
            case OLEIVERB_PRIMARY:
            case OLEIVERB_SHOW:
            case OLEIVERB_INPLACEACTIVATE:
            case OLEIVERB_UIACTIVATE: {
                HRESULT status = Activate(site, parent, rect);
                if (SUCCEEDED(status) && verb == OLEIVERB_UIACTIVATE) status = ActivateUi();
                return status;
            }
            default:
                // There is nothing to open; verbs beyond the standard ones count as the primary one.
                return verb > 0 ? Activate(site, parent, rect) : E_NOTIMPL;
        }
    });
}

HRESULT FoliumControl::Activate(IOleClientSite* site, HWND parent, LPCRECT rect) {
    if (m_window.Handle() != nullptr) {
        ShowWindow(m_window.Handle(), SW_SHOW);
        return S_OK;
    }
    ComPtr<IOleInPlaceSite> inPlaceSite;
    IOleClientSite* const from = site != nullptr ? site : m_site.GetInterfacePtr();
    if (from == nullptr || FAILED(from->QueryInterface(&inPlaceSite))) return E_UNEXPECTED;
    if (inPlaceSite->CanInPlaceActivate() != S_OK) return OLE_E_NOT_INPLACEACTIVE;
    HRESULT status = inPlaceSite->OnInPlaceActivate();
    if (FAILED(status)) return status;
    m_inPlaceSite = inPlaceSite;

    ComPtr<IOleInPlaceUIWindow> document;
    RECT position = {}, clip = {};
    OLEINPLACEFRAMEINFO info = {};
    info.cb = sizeof info;
    HWND window = parent;
    inPlaceSite->GetWindow(&window);
    if (FAILED(inPlaceSite->GetWindowContext(&m_frame, &document, &position, &clip, &info)) && rect != nullptr) {
        position = *rect;
    }
    // Containers may leave the place to the argument.
    if (IsRectEmpty(&position) && rect != nullptr) position = *rect;
    status = m_window.Create(window != nullptr ? window : parent, position);
    if (FAILED(status)) {
        InPlaceDeactivate();
        return status;
    }
    // The container may have ended it all while the window came up.
    if (m_site != nullptr) m_site->ShowObject();
    return S_OK;
}

HRESULT FoliumControl::ActivateUi() {
    if (m_inPlaceSite == nullptr) return E_UNEXPECTED;
    if (!m_uiActive) {
        m_uiActive = true;
        m_inPlaceSite->OnUIActivate();
        if (m_frame != nullptr) m_frame->SetActiveObject(this, L"Folium");
    }
    const HWND window = m_window.Handle();
    if (window != nullptr && GetFocus() != window) SetFocus(window);
    return S_OK;
}

void FoliumControl::OnFocus(bool has) noexcept {
    com::Guard([&]() -> HRESULT {
        ComPtr<IOleControlSite> controlSite;
        if (m_site != nullptr) m_site.GetInterfacePtr()->QueryInterface(&controlSite);
        if (has) ActivateUi();
        if (controlSite != nullptr) controlSite->OnFocus(has);
        return S_OK;
    });
}

bool FoliumControl::LeaveByTab(const MSG& message) noexcept {
    ComPtr<IOleControlSite> controlSite;
    if (m_site == nullptr || FAILED(m_site.GetInterfacePtr()->QueryInterface(&controlSite))) return false;
    MSG copy = message;
    const bool shift = GetKeyState(VK_SHIFT) < 0;
    return controlSite->TranslateAccelerator(&copy, shift ? 1 : 0) == S_OK;
}

void FoliumControl::OnWindowGone() noexcept {
    m_uiActive = false;
}

HRESULT FoliumControl::GetWindow(HWND* window) noexcept {
    if (window == nullptr) return E_POINTER;
    *window = m_window.Handle();
    return *window == nullptr ? E_FAIL : S_OK;
}

HRESULT FoliumControl::InPlaceDeactivate() noexcept {
    const ComPtr<IFolium> keep(this);
    UIDeactivate();
    m_window.Destroy();
    m_frame = nullptr;
    if (m_inPlaceSite != nullptr) {
        const ComPtr<IOleInPlaceSite> site = m_inPlaceSite;
        m_inPlaceSite = nullptr;
        site->OnInPlaceDeactivate();
    }
    return S_OK;
}

HRESULT FoliumControl::UIDeactivate() noexcept {
    if (!m_uiActive) return S_OK;
    const ComPtr<IFolium> keep(this);
    m_uiActive = false;
    if (m_frame != nullptr) m_frame->SetActiveObject(nullptr, nullptr);
    if (m_inPlaceSite != nullptr) m_inPlaceSite->OnUIDeactivate(FALSE);
    return S_OK;
}

HRESULT FoliumControl::SetObjectRects(LPCRECT position, LPCRECT) noexcept {
    if (position == nullptr) return E_POINTER;
    const HWND window = m_window.Handle();
    if (window == nullptr) return OLE_E_NOT_INPLACEACTIVE;
    const ComPtr<IFolium> keep(this);
    SetWindowPos(window, nullptr, position->left, position->top, position->right - position->left,
                 position->bottom - position->top, SWP_NOZORDER | SWP_NOACTIVATE);
    return S_OK;
}

// For containers that ask before they treat a key themselves.
HRESULT FoliumControl::TranslateAccelerator(LPMSG message) noexcept {
    if (message == nullptr) return E_POINTER;
    const ComPtr<IFolium> keep(this);
    if (message->hwnd == m_window.Handle() && m_window.WantsKey(*message)) {
        SendMessageW(message->hwnd, message->message, message->wParam, message->lParam);
        return S_OK;
    }
    return LeaveByTab(*message) ? S_OK : S_FALSE;
}

HRESULT FoliumControl::GetControlInfo(CONTROLINFO* info) noexcept {
    if (info == nullptr) return E_POINTER;
    *info = {};
    info->cb = sizeof *info;
    return S_OK;
}

}  // namespace folium
