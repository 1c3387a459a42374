#pragma once
// The least that is an ActiveX control: a window in its container and one connection point.

#include <ocidl.h>
#include <oleidl.h>

#include "refhost/com/ComObject.h"

namespace test {

// {6C2C9B47-6A5A-4F0E-9D0B-0B6E2A1C7F31} and the next
inline constexpr CLSID kFakeControlClass = {
    0x6c2c9b47, 0x6a5a, 0x4f0e, {0x9d, 0x0b, 0x0b, 0x6e, 0x2a, 0x1c, 0x7f, 0x31}};
inline constexpr IID kFakeControlEvents = {
    0x6c2c9b47, 0x6a5a, 0x4f0e, {0x9d, 0x0b, 0x0b, 0x6e, 0x2a, 0x1c, 0x7f, 0x32}};

class FakeActiveX final
    : public com::Object<IOleObject, IOleInPlaceObject, IConnectionPointContainer, IConnectionPoint> {
public:
    static inline FakeActiveX* s_last = nullptr;

    FakeActiveX() { s_last = this; }
    ~FakeActiveX() override {
        if (s_last == this) s_last = nullptr;
    }

    // Fires an event with integers, in the order of its parameters.
    HRESULT Fire(DISPID event, std::initializer_list<LONG> values) {
        VARIANTARG arguments[8] = {};
        UINT count = static_cast<UINT>(values.size());
        UINT position = count;
        for (const LONG value : values) {
            arguments[--position].vt = VT_I4;
            arguments[position].lVal = value;
        }
        DISPPARAMS parameters = {arguments, nullptr, count, 0};
        return m_sink->Invoke(event, IID_NULL, 0, DISPATCH_METHOD, &parameters, nullptr, nullptr, nullptr);
    }
    bool IsConnected() const { return m_sink != nullptr; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        if (iid == __uuidof(IOleWindow)) return Object::QueryInterface(__uuidof(IOleInPlaceObject), object);
        return Object::QueryInterface(iid, object);
    }

    HRESULT STDMETHODCALLTYPE SetClientSite(IOleClientSite* site) override {
        if (site != nullptr) site->AddRef();
        if (m_site != nullptr) m_site->Release();
        m_site = site;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetClientSite(IOleClientSite**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetHostNames(LPCOLESTR, LPCOLESTR) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE Close(DWORD) override {
        if (IsWindow(m_window)) DestroyWindow(m_window);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE SetMoniker(DWORD, IMoniker*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetMoniker(DWORD, DWORD, IMoniker**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE InitFromData(IDataObject*, BOOL, DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetClipboardData(DWORD, IDataObject**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE DoVerb(LONG, LPMSG, IOleClientSite*, LONG, HWND parent, LPCRECT rect) override {
        if (m_window == nullptr) {
            m_window =
                CreateWindowExW(0, L"EDIT", L"", WS_CHILD | WS_VISIBLE, rect->left, rect->top, rect->right - rect->left,
                                rect->bottom - rect->top, parent, nullptr, nullptr, nullptr);
        }
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE EnumVerbs(IEnumOLEVERB**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Update() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE IsUpToDate() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE GetUserClassID(CLSID* id) override {
        *id = kFakeControlClass;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetUserType(DWORD, LPOLESTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetExtent(DWORD, SIZEL*) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE GetExtent(DWORD, SIZEL*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Advise(IAdviseSink*, DWORD*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE EnumAdvise(IEnumSTATDATA**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetMiscStatus(DWORD, DWORD* status) override {
        *status = OLEMISC_INSIDEOUT | OLEMISC_ACTIVATEWHENVISIBLE;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE SetColorScheme(LOGPALETTE*) override { return E_NOTIMPL; }

    HRESULT STDMETHODCALLTYPE GetWindow(HWND* window) override {
        *window = m_window;
        return m_window == nullptr ? E_FAIL : S_OK;
    }
    HRESULT STDMETHODCALLTYPE ContextSensitiveHelp(BOOL) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE InPlaceDeactivate() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE UIDeactivate() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE SetObjectRects(LPCRECT rect, LPCRECT) override {
        SetWindowPos(m_window, nullptr, rect->left, rect->top, rect->right - rect->left, rect->bottom - rect->top,
                     SWP_NOZORDER | SWP_NOACTIVATE);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE ReactivateAndUndo() override { return E_NOTIMPL; }

    HRESULT STDMETHODCALLTYPE EnumConnectionPoints(IEnumConnectionPoints**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE FindConnectionPoint(REFIID iid, IConnectionPoint** point) override {
        *point = nullptr;
        if (iid != kFakeControlEvents) return CONNECT_E_NOCONNECTION;
        return QueryInterface(__uuidof(IConnectionPoint), reinterpret_cast<void**>(point));
    }
    HRESULT STDMETHODCALLTYPE GetConnectionInterface(IID* iid) override {
        *iid = kFakeControlEvents;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetConnectionPointContainer(IConnectionPointContainer**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Advise(IUnknown* sink, DWORD* cookie) override {
        *cookie = 1;
        return sink->QueryInterface(kFakeControlEvents, reinterpret_cast<void**>(&m_sink));
    }
    HRESULT STDMETHODCALLTYPE Unadvise(DWORD) override {
        m_sink->Release();
        m_sink = nullptr;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE EnumConnections(IEnumConnections**) override { return E_NOTIMPL; }

private:
    IOleClientSite* m_site = nullptr;
    IDispatch* m_sink = nullptr;
    HWND m_window = nullptr;
};

}  // namespace test
