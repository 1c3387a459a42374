#include "win32/EventSink.h"

#include <algorithm>
#include <atomic>
#include <iterator>
#include <utility>

#include "win32/Failure.h"

namespace win32 {

namespace {

bool IsNumber(VARTYPE type) {
    constexpr VARTYPE kNumbers[] = {VT_I1, VT_UI1, VT_I2, VT_UI2, VT_I4, VT_UI4, VT_I8, VT_UI8, VT_INT, VT_UINT};
    return std::find(std::begin(kNumbers), std::end(kNumbers), type) != std::end(kNumbers);
}

}  // namespace

void EventArguments::RequireCount(size_t count) const {
    if (m_parameters.cArgs != count) throw _com_error(DISP_E_BADPARAMCOUNT);
}

LONG EventArguments::Integer(size_t position) const {
    if (position >= m_parameters.cArgs) throw _com_error(DISP_E_BADPARAMCOUNT);
    // The last parameter stands first.
    VARIANTARG& argument = m_parameters.rgvarg[m_parameters.cArgs - 1 - position];
    VARIANT value;
    VariantInit(&value);
    HRESULT status = VariantCopyInd(&value, &argument);
    if (SUCCEEDED(status)) {
        // Texts, objects and missing arguments are no integers, even where Automation could convert them.
        status = IsNumber(V_VT(&value)) ? VariantChangeType(&value, &value, 0, VT_I4) : DISP_E_TYPEMISMATCH;
    }
    const LONG result = SUCCEEDED(status) ? V_I4(&value) : 0;
    VariantClear(&value);
    if (FAILED(status)) throw _com_error(status);
    return result;
}

// Outlives its connection when the control keeps a reference; the handler is gone then.
class EventSink final : public IDispatch {
public:
    EventSink(REFIID events, EventHandler handler) : m_events(events), m_handler(std::move(handler)) {}

    void Disconnect() noexcept { m_handler = nullptr; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) noexcept override {
        if (object == nullptr) return E_POINTER;
        const bool known = iid == IID_IUnknown || iid == IID_IDispatch || iid == m_events;
        *object = known ? static_cast<IDispatch*>(this) : nullptr;
        if (!known) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() noexcept override { return ++m_references; }
    ULONG STDMETHODCALLTYPE Release() noexcept override {
        const ULONG left = --m_references;
        if (left == 0) delete this;
        return left;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) noexcept override {
        if (count == nullptr) return E_POINTER;
        *count = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) noexcept override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID event, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT*, EXCEPINFO*,
                                     UINT*) noexcept override {
        DISPPARAMS none = {};
        try {
            // A copy: the handler may end the connection that it came through.
            const EventHandler handler = m_handler;
            if (handler) handler(event, EventArguments(parameters == nullptr ? none : *parameters));
            return S_OK;
        } catch (...) {
            return StatusOf(std::current_exception());
        }
    }

private:
    std::atomic<ULONG> m_references = 1;
    IID m_events;
    EventHandler m_handler;
};

// The system's AtlAdvise would do the same but hides which step failed.
EventConnection::EventConnection(IUnknown* source, REFIID events, EventHandler handler)
    : m_sink(new EventSink(events, std::move(handler))) {
    ComPtr<IConnectionPointContainer> container;
    HRESULT status = source == nullptr ? E_POINTER : source->QueryInterface(&container);
    if (SUCCEEDED(status)) status = container->FindConnectionPoint(events, &m_point);
    if (SUCCEEDED(status)) status = m_point->Advise(m_sink, &m_cookie);
    if (SUCCEEDED(status)) return;
    m_sink->Release();
    throw _com_error(status);
}

EventConnection::~EventConnection() {
    m_sink->Disconnect();
    m_point->Unadvise(m_cookie);
    m_sink->Release();
}

}  // namespace win32
