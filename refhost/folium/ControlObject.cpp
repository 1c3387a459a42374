// The control as an embedded object: extent, drawing without a window, what is told about it.
#include "refhost/folium/BackBuffer.h"
#include "refhost/folium/FoliumControl.h"

namespace folium {

namespace {

constexpr LONG kLongestSide = 16384;  // pixels, of a drawing

}  // namespace

HRESULT FoliumControl::GetMoniker(DWORD, DWORD, IMoniker** moniker) noexcept {
    if (moniker == nullptr) return E_POINTER;
    *moniker = nullptr;
    return E_NOTIMPL;
}

HRESULT FoliumControl::GetClipboardData(DWORD, IDataObject** data) noexcept {
    if (data == nullptr) return E_POINTER;
    *data = nullptr;
    return E_NOTIMPL;
}

HRESULT FoliumControl::EnumVerbs(IEnumOLEVERB** verbs) noexcept {
    if (verbs == nullptr) return E_POINTER;
    *verbs = nullptr;
    return OLEOBJ_E_NOVERBS;
}

HRESULT FoliumControl::GetUserType(DWORD, LPOLESTR* type) noexcept {
    if (type == nullptr) return E_POINTER;
    constexpr wchar_t kName[] = L"Folium page display";
    *type = static_cast<LPOLESTR>(CoTaskMemAlloc(sizeof kName));
    if (*type == nullptr) return E_OUTOFMEMORY;
    memcpy(*type, kName, sizeof kName);
    return S_OK;
}

HRESULT FoliumControl::SetExtent(DWORD aspect, SIZEL* size) noexcept {
    if (size == nullptr) return E_POINTER;
    if (aspect != DVASPECT_CONTENT) return DV_E_DVASPECT;
    if (size->cx < 0 || size->cy < 0) return E_INVALIDARG;
    m_extent = *size;
    return S_OK;
}

HRESULT FoliumControl::GetExtent(DWORD aspect, SIZEL* size) noexcept {
    if (size == nullptr) return E_POINTER;
    if (aspect != DVASPECT_CONTENT) return DV_E_DVASPECT;
    *size = m_extent;
    return S_OK;
}

HRESULT FoliumControl::Advise(IAdviseSink* sink, DWORD* cookie) noexcept {
    if (cookie == nullptr) return E_POINTER;
    *cookie = 0;
    if (m_advises == nullptr) {
        const HRESULT status = CreateOleAdviseHolder(&m_advises);
        if (FAILED(status)) return status;
    }
    return m_advises->Advise(sink, cookie);
}

HRESULT FoliumControl::Unadvise(DWORD cookie) noexcept {
    return m_advises == nullptr ? OLE_E_NOCONNECTION : m_advises->Unadvise(cookie);
}

HRESULT FoliumControl::EnumAdvise(IEnumSTATDATA** sinks) noexcept {
    if (sinks == nullptr) return E_POINTER;
    *sinks = nullptr;
    return m_advises == nullptr ? S_OK : m_advises->EnumAdvise(sinks);
}

HRESULT FoliumControl::GetMiscStatus(DWORD aspect, DWORD* status) noexcept {
    if (status == nullptr) return E_POINTER;
    *status = aspect == DVASPECT_CONTENT ? kMiscStatus : 0;
    return S_OK;
}

HRESULT FoliumControl::Draw(DWORD aspect, LONG, void*, DVTARGETDEVICE*, HDC, HDC dc, LPCRECTL bounds, LPCRECTL,
                            BOOL(STDMETHODCALLTYPE*)(ULONG_PTR), ULONG_PTR) noexcept {
    if (aspect != DVASPECT_CONTENT) return DV_E_DVASPECT;
    if (bounds == nullptr) return E_POINTER;
    return com::Guard([&]() -> HRESULT {
        // The context may have a scale of its own; its pixels are what counts.
        POINT corners[] = {{bounds->left, bounds->top}, {bounds->right, bounds->bottom}};
        LPtoDP(dc, corners, 2);
        const int width = static_cast<int>(std::min(std::abs(corners[1].x - corners[0].x), kLongestSide));
        const int height = static_cast<int>(std::min(std::abs(corners[1].y - corners[0].y), kLongestSide));
        if (width == 0 || height == 0) return S_OK;
        BackBuffer buffer;
        if (!buffer.Resize(width, height)) return E_OUTOFMEMORY;
        Surface surface = buffer.GetSurface();
        m_display.PaintWhole(surface, width, height);
        return StretchBlt(dc, bounds->left, bounds->top, bounds->right - bounds->left, bounds->bottom - bounds->top,
                          buffer.Dc(), 0, 0, width, height, SRCCOPY)
                   ? S_OK
                   : E_FAIL;
    });
}

HRESULT FoliumControl::GetColorSet(DWORD, LONG, void*, DVTARGETDEVICE*, HDC, LOGPALETTE** colors) noexcept {
    if (colors == nullptr) return E_POINTER;
    *colors = nullptr;
    return S_FALSE;
}

HRESULT FoliumControl::SetAdvise(DWORD aspects, DWORD flags, IAdviseSink* sink) noexcept {
    m_viewSink = sink;
    m_viewAspects = aspects;
    m_viewFlags = flags;
    return S_OK;
}

HRESULT FoliumControl::GetAdvise(DWORD* aspects, DWORD* flags, IAdviseSink** sink) noexcept {
    if (aspects != nullptr) *aspects = m_viewAspects;
    if (flags != nullptr) *flags = m_viewFlags;
    if (sink != nullptr) {
        *sink = m_viewSink;
        if (*sink != nullptr) (*sink)->AddRef();
    }
    return S_OK;
}

HRESULT FoliumControl::GetClassID(CLSID* classId) noexcept {
    if (classId == nullptr) return E_POINTER;
    *classId = host::kClsidFolium;
    return S_OK;
}

HRESULT FoliumControl::GetSizeMax(ULARGE_INTEGER* size) noexcept {
    if (size == nullptr) return E_POINTER;
    size->QuadPart = 0;
    return S_OK;
}

}  // namespace folium
