#pragma once
// The control's one connection point, for its events.

#include <ocidl.h>

#include <vector>

#include "refhost/com/ComObject.h"
#include "refhost/folium/Display.h"

namespace folium {

// Part of the control, whose references it shares. Without one, once the control is gone, it holds no sinks either.
class ConnectionPoint final : public IConnectionPoint {
public:
    explicit ConnectionPoint(IConnectionPointContainer& control) : m_control(control) {}

    // Calls every sink that is connected, in the order of connecting. A sink may connect and disconnect others.
    void Fire(DISPID event, std::initializer_list<LONG> arguments) noexcept;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) noexcept override;
    ULONG STDMETHODCALLTYPE AddRef() noexcept override { return m_control.AddRef(); }
    ULONG STDMETHODCALLTYPE Release() noexcept override { return m_control.Release(); }
    HRESULT STDMETHODCALLTYPE GetConnectionInterface(IID* iid) noexcept override;
    HRESULT STDMETHODCALLTYPE GetConnectionPointContainer(IConnectionPointContainer** container) noexcept override;
    HRESULT STDMETHODCALLTYPE Advise(IUnknown* sink, DWORD* cookie) noexcept override;
    HRESULT STDMETHODCALLTYPE Unadvise(DWORD cookie) noexcept override;
    HRESULT STDMETHODCALLTYPE EnumConnections(IEnumConnections** enumerator) noexcept override;

private:
    struct Sink {
        DWORD cookie;
        ComPtr<IDispatch> sink;
    };
    bool IsConnected(DWORD cookie) const;

    IConnectionPointContainer& m_control;
    std::vector<Sink> m_sinks;
    DWORD m_lastCookie = 0;
};

HRESULT MakePointEnumerator(IConnectionPoint* point, IEnumConnectionPoints** enumerator) noexcept;

}  // namespace folium
