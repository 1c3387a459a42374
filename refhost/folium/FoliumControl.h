#pragma once
// The ActiveX control: its own interface, and what a container asks of a control.

#include <ocidl.h>
#include <olectl.h>
#include <oleidl.h>

#include "refhost/com/ComObject.h"
#include "refhost/folium/ConnectionPoint.h"
#include "refhost/folium/Display.h"
#include "refhost/folium/FoliumWindow.h"

namespace folium {

// How a container is to treat the control.
inline constexpr DWORD kMiscStatus = OLEMISC_RECOMPOSEONRESIZE | OLEMISC_CANTLINKINSIDE | OLEMISC_INSIDEOUT |
                                     OLEMISC_ACTIVATEWHENVISIBLE | OLEMISC_SETCLIENTSITEFIRST;

class FoliumControl final
    : public com::Object<IFolium, IDispatch, IOleObject, IOleInPlaceObject, IOleInPlaceActiveObject, IOleControl,
                         IViewObject2, IPersistStreamInit, IProvideClassInfo2, IConnectionPointContainer>,
      private WindowOwner {
public:
    FoliumControl();
    ~FoliumControl() override;

    // IFolium
    HRESULT STDMETHODCALLTYPE ShowPage(IPageImage* page, LONGLONG* unused) noexcept override;
    HRESULT STDMETHODCALLTYPE SetZoom(const FoliumZoom* zoom) noexcept override;
    HRESULT STDMETHODCALLTYPE GetDisplayOptions(FoliumDisplayOptions* options) noexcept override;
    HRESULT STDMETHODCALLTYPE SetDisplayOptions(const FoliumDisplayOptions* options) noexcept override;
    HRESULT STDMETHODCALLTYPE InsertRect(const FoliumRect* rect, LONG* id) noexcept override;
    HRESULT STDMETHODCALLTYPE DeleteRect(LONG id) noexcept override;
    HRESULT STDMETHODCALLTYPE SelectRect(LONG id) noexcept override;
    HRESULT STDMETHODCALLTYPE SetMode(LONG mode) noexcept override;
    HRESULT STDMETHODCALLTYPE QueryRect(LONG id, FoliumRect* rect) noexcept override;
    HRESULT STDMETHODCALLTYPE GetPositionOffset(POINT* offset) noexcept override;
    HRESULT STDMETHODCALLTYPE UpdateView() noexcept override;
    HRESULT STDMETHODCALLTYPE UpdateRect(LONG id, const FoliumRect* rect) noexcept override;
    HRESULT STDMETHODCALLTYPE Reserved3() noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved4() noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved5() noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved6() noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved8() noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved9() noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved10() noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved12() noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved13() noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved14() noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved15() noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved16() noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved17() noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved18() noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved19() noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved22() noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved23() noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved27() noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved28() noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved31() noexcept override { return E_NOTIMPL; }

    // IDispatch: no properties and methods of its own
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) noexcept override;
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) noexcept override;
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID locale,
                                            DISPID* ids) noexcept override;
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                     UINT*) noexcept override {
        return DISP_E_MEMBERNOTFOUND;
    }

    // IOleObject
    HRESULT STDMETHODCALLTYPE SetClientSite(IOleClientSite* site) noexcept override;
    HRESULT STDMETHODCALLTYPE GetClientSite(IOleClientSite** site) noexcept override;
    HRESULT STDMETHODCALLTYPE SetHostNames(LPCOLESTR, LPCOLESTR) noexcept override { return S_OK; }
    HRESULT STDMETHODCALLTYPE Close(DWORD option) noexcept override;
    HRESULT STDMETHODCALLTYPE SetMoniker(DWORD, IMoniker*) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetMoniker(DWORD, DWORD, IMoniker** moniker) noexcept override;
    HRESULT STDMETHODCALLTYPE InitFromData(IDataObject*, BOOL, DWORD) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetClipboardData(DWORD, IDataObject** data) noexcept override;
    HRESULT STDMETHODCALLTYPE DoVerb(LONG verb, LPMSG message, IOleClientSite* site, LONG index, HWND parent,
                                     LPCRECT rect) noexcept override;
    HRESULT STDMETHODCALLTYPE EnumVerbs(IEnumOLEVERB** verbs) noexcept override;
    HRESULT STDMETHODCALLTYPE Update() noexcept override { return S_OK; }
    HRESULT STDMETHODCALLTYPE IsUpToDate() noexcept override { return S_OK; }
    HRESULT STDMETHODCALLTYPE GetUserClassID(CLSID* classId) noexcept override { return GetClassID(classId); }
    HRESULT STDMETHODCALLTYPE GetUserType(DWORD form, LPOLESTR* type) noexcept override;
    HRESULT STDMETHODCALLTYPE SetExtent(DWORD aspect, SIZEL* size) noexcept override;
    HRESULT STDMETHODCALLTYPE GetExtent(DWORD aspect, SIZEL* size) noexcept override;
    HRESULT STDMETHODCALLTYPE Advise(IAdviseSink* sink, DWORD* cookie) noexcept override;
    HRESULT STDMETHODCALLTYPE Unadvise(DWORD cookie) noexcept override;
    HRESULT STDMETHODCALLTYPE EnumAdvise(IEnumSTATDATA** sinks) noexcept override;
    HRESULT STDMETHODCALLTYPE GetMiscStatus(DWORD aspect, DWORD* status) noexcept override;
    HRESULT STDMETHODCALLTYPE SetColorScheme(LOGPALETTE*) noexcept override { return E_NOTIMPL; }

    // IOleInPlaceObject, IOleInPlaceActiveObject
    HRESULT STDMETHODCALLTYPE GetWindow(HWND* window) noexcept override;
    HRESULT STDMETHODCALLTYPE ContextSensitiveHelp(BOOL) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE InPlaceDeactivate() noexcept override;
    HRESULT STDMETHODCALLTYPE UIDeactivate() noexcept override;
    HRESULT STDMETHODCALLTYPE SetObjectRects(LPCRECT position, LPCRECT clip) noexcept override;
    HRESULT STDMETHODCALLTYPE ReactivateAndUndo() noexcept override { return INPLACE_E_NOTUNDOABLE; }
    HRESULT STDMETHODCALLTYPE TranslateAccelerator(LPMSG message) noexcept override;
    HRESULT STDMETHODCALLTYPE OnFrameWindowActivate(BOOL) noexcept override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnDocWindowActivate(BOOL) noexcept override { return S_OK; }
    HRESULT STDMETHODCALLTYPE ResizeBorder(LPCRECT, IOleInPlaceUIWindow*, BOOL) noexcept override { return S_OK; }
    HRESULT STDMETHODCALLTYPE EnableModeless(BOOL) noexcept override { return S_OK; }

    // IOleControl
    HRESULT STDMETHODCALLTYPE GetControlInfo(CONTROLINFO* info) noexcept override;
    HRESULT STDMETHODCALLTYPE OnMnemonic(MSG*) noexcept override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnAmbientPropertyChange(DISPID) noexcept override { return S_OK; }
    HRESULT STDMETHODCALLTYPE FreezeEvents(BOOL freeze) noexcept override;

    // IViewObject2
    HRESULT STDMETHODCALLTYPE Draw(DWORD aspect, LONG index, void* aspectInfo, DVTARGETDEVICE* device, HDC reference,
                                   HDC dc, LPCRECTL bounds, LPCRECTL windowBounds, BOOL(STDMETHODCALLTYPE*)(ULONG_PTR),
                                   ULONG_PTR) noexcept override;
    HRESULT STDMETHODCALLTYPE GetColorSet(DWORD, LONG, void*, DVTARGETDEVICE*, HDC,
                                          LOGPALETTE** colors) noexcept override;
    HRESULT STDMETHODCALLTYPE Freeze(DWORD, LONG, void*, DWORD*) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Unfreeze(DWORD) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetAdvise(DWORD aspects, DWORD flags, IAdviseSink* sink) noexcept override;
    HRESULT STDMETHODCALLTYPE GetAdvise(DWORD* aspects, DWORD* flags, IAdviseSink** sink) noexcept override;
    HRESULT STDMETHODCALLTYPE GetExtent(DWORD aspect, LONG, DVTARGETDEVICE*, LPSIZEL size) noexcept override {
        return GetExtent(aspect, size);
    }

    // IPersistStreamInit: nothing is kept, the container sets up the control anew each time
    HRESULT STDMETHODCALLTYPE GetClassID(CLSID* classId) noexcept override;
    HRESULT STDMETHODCALLTYPE IsDirty() noexcept override { return S_FALSE; }
    HRESULT STDMETHODCALLTYPE Load(IStream*) noexcept override { return S_OK; }
    HRESULT STDMETHODCALLTYPE Save(IStream*, BOOL) noexcept override { return S_OK; }
    HRESULT STDMETHODCALLTYPE GetSizeMax(ULARGE_INTEGER* size) noexcept override;
    HRESULT STDMETHODCALLTYPE InitNew() noexcept override { return S_OK; }

    // IProvideClassInfo2
    HRESULT STDMETHODCALLTYPE GetClassInfo(ITypeInfo** info) noexcept override;
    HRESULT STDMETHODCALLTYPE GetGUID(DWORD kind, GUID* guid) noexcept override;

    // IConnectionPointContainer
    HRESULT STDMETHODCALLTYPE EnumConnectionPoints(IEnumConnectionPoints** points) noexcept override;
    HRESULT STDMETHODCALLTYPE FindConnectionPoint(REFIID iid, IConnectionPoint** point) noexcept override;

protected:
    HRESULT QueryOther(REFIID iid, void** object) override;

private:
    void Hold() noexcept override { AddRef(); }
    void LetGo() noexcept override { Release(); }
    void OnPointerMoved(Point position) noexcept override;
    void OnContextMenu(int32_t id, int x, int y) noexcept override;
    void OnFocus(bool has) noexcept override;
    bool LeaveByTab(const MSG& message) noexcept override;
    void OnWindowGone() noexcept override;

    // Runs an operation of IFolium: the control stays alive until its end, and its window shows what came of it.
    template <class Body>
    HRESULT Operate(Body body) noexcept;
    void Fire(DISPID event, std::initializer_list<LONG> arguments) noexcept;
    HRESULT Activate(IOleClientSite* site, HWND parent, LPCRECT rect);
    HRESULT ActivateUi();

    ConnectionPoint m_events{*this};
    Display m_display;
    FoliumWindow m_window{m_display, *this};

    ComPtr<IOleClientSite> m_site;
    ComPtr<IOleInPlaceSite> m_inPlaceSite;  // while active
    ComPtr<IOleInPlaceFrame> m_frame;
    ComPtr<IOleAdviseHolder> m_advises;
    ComPtr<IAdviseSink> m_viewSink;
    DWORD m_viewAspects = 0, m_viewFlags = 0;
    SIZEL m_extent = {};  // hundredths of a millimetre
    bool m_uiActive = false;
    int m_frozen = 0;
};

}  // namespace folium
