#pragma once
// For DLLs that serve COM classes in process: a reference counted base, a class factory, and the count of live objects
// that DllCanUnloadNow and tests ask for. Header-only, so every DLL has its own count.
//
//     class Clock final : public com::Object<IClock> { ... };
//     STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, void** object) {
//         return com::GetClassObject<Clock>(kClsidClock, clsid, iid, object);
//     }
//     STDAPI DllCanUnloadNow() { return com::CanUnloadNow(); }

#include <comdef.h>
#include <oaidl.h>

#include <atomic>
#include <new>
#include <type_traits>
#include <utility>

namespace com {

// Objects and server locks of this module.
inline std::atomic<LONG> g_liveObjects{0};

inline LONG LiveObjects() noexcept {
    return g_liveObjects;
}

inline HRESULT CanUnloadNow() noexcept {
    return LiveObjects() == 0 ? S_OK : S_FALSE;
}

// The translator at the edge: runs `body`, which gives an HRESULT, and turns what it throws into a failing status.
template <class Body>
HRESULT Guard(Body&& body) noexcept {
    try {
        return body();
    } catch (const _com_error& error) {
        return FAILED(error.Error()) ? error.Error() : E_FAIL;
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    } catch (...) {
        return E_FAIL;
    }
}

// The four operations of IDispatch for an interface that is called by its table of operations alone:
// com::Object<com::NoDispatch<IQuire>>.
template <class Interface>
class NoDispatch : public Interface {
public:
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
        if (count == nullptr) return E_POINTER;
        *count = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo** info) override {
        if (info != nullptr) *info = nullptr;
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT count, LCID, DISPID* ids) override {
        for (UINT i = 0; ids != nullptr && i < count; ++i) ids[i] = DISPID_UNKNOWN;
        return DISP_E_UNKNOWNNAME;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
        return DISP_E_MEMBERNOTFOUND;
    }
};

// The interface that a base class of an object implements.
template <class Base>
struct InterfaceOf {
    using Type = Base;
};
template <class Interface>
struct InterfaceOf<NoDispatch<Interface>> {
    using Type = Interface;
};

// Base of a COM object: counts references and answers QueryInterface for the listed interfaces (and for IDispatch where
// one of them derives from it). It starts with one reference, its maker's.
template <class First, class... Others>
class Object : public First, public Others... {
public:
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        if (object == nullptr) return E_POINTER;
        *object = nullptr;
        if (iid == __uuidof(IUnknown)) {
            *object = static_cast<First*>(this);
        } else if (!(Answer<First>(iid, object) || ... || Answer<Others>(iid, object))) {
            return QueryOther(iid, object);
        }
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++m_references; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --m_references;
        if (left == 0) delete this;
        return left;
    }

protected:
    Object() noexcept { ++g_liveObjects; }
    virtual ~Object() { --g_liveObjects; }
    // For identifiers beyond the list. An override that knows `iid` sets *object and adds a reference.
    virtual HRESULT QueryOther(REFIID, void**) { return E_NOINTERFACE; }

private:
    template <class Base>
    bool Answer(REFIID iid, void** object) noexcept {
        using Interface = typename InterfaceOf<Base>::Type;
        bool known = iid == __uuidof(Interface);
        if constexpr (std::is_base_of_v<IDispatch, Interface>) known = known || iid == __uuidof(IDispatch);
        if (known) *object = static_cast<Interface*>(static_cast<Base*>(this));
        return known;
    }

    std::atomic<ULONG> m_references{1};
};

// Creates an object and asks it for an interface, which is what a class factory does.
template <class Class, class... Arguments>
HRESULT Create(REFIID iid, void** object, Arguments&&... arguments) noexcept {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    return Guard([&] {
        auto* made = new Class(std::forward<Arguments>(arguments)...);
        const HRESULT status = made->QueryInterface(iid, object);
        made->Release();
        return status;
    });
}

// Does not count as a live object itself: whoever registered it holds the module as well.
template <class Class>
class Factory final : public Object<IClassFactory> {
public:
    Factory() noexcept { --g_liveObjects; }
    ~Factory() override { ++g_liveObjects; }
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) override {
        if (object == nullptr) return E_POINTER;
        *object = nullptr;
        if (outer != nullptr) return CLASS_E_NOAGGREGATION;
        return Create<Class>(iid, object);
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
        g_liveObjects += lock ? 1 : -1;
        return S_OK;
    }
};

// The class object of `Class`, when `wanted` is its identifier; chain several with CLASS_E_CLASSNOTAVAILABLE.
template <class Class>
HRESULT GetClassObject(REFCLSID clsid, REFCLSID wanted, REFIID iid, void** object) noexcept {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (clsid != wanted) return CLASS_E_CLASSNOTAVAILABLE;
    return Create<Factory<Class>>(iid, object);
}

}  // namespace com
