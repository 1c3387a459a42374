#include "refhost/folium/ConnectionPoint.h"

#include <olectl.h>

#include <algorithm>

namespace folium {

namespace {

// Walks a copy of the list, as enumerators of connections do.
template <class Interface, class Element>
class Enumerator final : public com::Object<Interface> {
public:
    explicit Enumerator(std::vector<Element> elements, size_t next = 0)
        : m_elements(std::move(elements)), m_next(next) {
        for (Element& element : m_elements) Unknown(element)->AddRef();
    }
    ~Enumerator() override {
        for (Element& element : m_elements) Unknown(element)->Release();
    }
    HRESULT STDMETHODCALLTYPE Next(ULONG count, Element* elements, ULONG* fetched) noexcept override {
        if (elements == nullptr || (fetched == nullptr && count != 1)) return E_POINTER;
        ULONG given = 0;
        for (; given < count && m_next < m_elements.size(); ++given, ++m_next) {
            elements[given] = m_elements[m_next];
            Unknown(elements[given])->AddRef();
        }
        if (fetched != nullptr) *fetched = given;
        return given == count ? S_OK : S_FALSE;
    }
    HRESULT STDMETHODCALLTYPE Skip(ULONG count) noexcept override {
        const size_t left = m_elements.size() - m_next;
        m_next += std::min<size_t>(count, left);
        return count <= left ? S_OK : S_FALSE;
    }
    HRESULT STDMETHODCALLTYPE Reset() noexcept override {
        m_next = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Clone(Interface** clone) noexcept override {
        if (clone == nullptr) return E_POINTER;
        return com::Guard([&] {
            *clone = new Enumerator(m_elements, m_next);
            return S_OK;
        });
    }

private:
    static IUnknown* Unknown(IConnectionPoint* point) { return point; }
    static IUnknown* Unknown(CONNECTDATA& data) { return data.pUnk; }

    std::vector<Element> m_elements;
    size_t m_next;
};

}  // namespace

bool ConnectionPoint::IsConnected(DWORD cookie) const {
    return std::any_of(m_sinks.begin(), m_sinks.end(), [cookie](const Sink& sink) { return sink.cookie == cookie; });
}

void ConnectionPoint::Fire(DISPID event, std::initializer_list<LONG> arguments) noexcept try {
    const std::vector<Sink> sinks = m_sinks;
    for (const Sink& sink : sinks) {
        if (!IsConnected(sink.cookie)) continue;
        // The last parameter stands first. Each sink gets its own: it may write to them.
        std::vector<VARIANTARG> reversed(arguments.size());
        auto place = reversed.rbegin();
        for (const LONG argument : arguments) {
            V_VT(&*place) = VT_I4;
            V_I4(&*place++) = argument;
        }
        DISPPARAMS parameters = {reversed.data(), nullptr, static_cast<UINT>(reversed.size()), 0};
        sink.sink->Invoke(event, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters, nullptr, nullptr,
                          nullptr);
    }
} catch (...) {
    // Out of memory: the event is lost, the control goes on.
}

HRESULT ConnectionPoint::QueryInterface(REFIID iid, void** object) noexcept {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (iid != IID_IUnknown && iid != IID_IConnectionPoint) return E_NOINTERFACE;
    *object = static_cast<IConnectionPoint*>(this);
    AddRef();
    return S_OK;
}

HRESULT ConnectionPoint::GetConnectionInterface(IID* iid) noexcept {
    if (iid == nullptr) return E_POINTER;
    *iid = host::kDiidFoliumEvents;
    return S_OK;
}

HRESULT ConnectionPoint::GetConnectionPointContainer(IConnectionPointContainer** container) noexcept {
    if (container == nullptr) return E_POINTER;
    *container = &m_control;
    m_control.AddRef();
    return S_OK;
}

HRESULT ConnectionPoint::Advise(IUnknown* sink, DWORD* cookie) noexcept {
    if (sink == nullptr || cookie == nullptr) return E_POINTER;
    *cookie = 0;
    return com::Guard([&]() -> HRESULT {
        // What answers to the events' identifier is called by it, what only knows IDispatch as that.
        ComPtr<IDispatch> dispatch;
        void* object = nullptr;
        if (FAILED(sink->QueryInterface(host::kDiidFoliumEvents, &object)) &&
            FAILED(sink->QueryInterface(IID_IDispatch, &object))) {
            return CONNECT_E_CANNOTCONNECT;
        }
        dispatch.Attach(static_cast<IDispatch*>(object));
        m_sinks.push_back({++m_lastCookie, dispatch});
        *cookie = m_lastCookie;
        return S_OK;
    });
}

HRESULT ConnectionPoint::Unadvise(DWORD cookie) noexcept {
    const auto found =
        std::find_if(m_sinks.begin(), m_sinks.end(), [cookie](const Sink& sink) { return sink.cookie == cookie; });
    if (found == m_sinks.end()) return CONNECT_E_NOCONNECTION;
    // Out of the list before its release, which may call back.
    const ComPtr<IDispatch> last = found->sink;
    m_sinks.erase(found);
    return S_OK;
}

HRESULT ConnectionPoint::EnumConnections(IEnumConnections** enumerator) noexcept {
    if (enumerator == nullptr) return E_POINTER;
    *enumerator = nullptr;
    return com::Guard([&] {
        std::vector<CONNECTDATA> connections;
        for (const Sink& sink : m_sinks) connections.push_back({sink.sink.GetInterfacePtr(), sink.cookie});
        *enumerator = new Enumerator<IEnumConnections, CONNECTDATA>(std::move(connections));
        return S_OK;
    });
}

HRESULT MakePointEnumerator(IConnectionPoint* point, IEnumConnectionPoints** enumerator) noexcept {
    if (enumerator == nullptr) return E_POINTER;
    *enumerator = nullptr;
    return com::Guard([&] {
        *enumerator = new Enumerator<IEnumConnectionPoints, IConnectionPoint*>({point});
        return S_OK;
    });
}

}  // namespace folium
