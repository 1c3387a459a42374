#pragma once
// What fake COM objects of the host have in common: counted references and lives, failures at the n-th call.

#include <oaidl.h>

namespace test {

// Shared by all fake host objects of a test.
struct HostControl {
    int calls = 0;
    int failAt = 0;  // 1 is the next call; 0 never
    bool keepFailing = false;
    bool giveNull = false;               // the failing call succeeds but hands out null where it can
    bool copyHalf = false;               // a failing CopyNode has copied the first half
    bool held = false;                   // calls are neither counted nor failed
    HRESULT failStatus = E_FAIL;         // of a settings node's failing call
    void (*during)(int call) = nullptr;  // what the host does in each call
    int liveObjects = 0;
    HRESULT createSettingsNode = S_OK;  // results of the class factories
    HRESULT createTransfer = S_OK;

    void Reset() {
        calls = 0;
        failAt = 0;
        keepFailing = giveNull = copyHalf = false;
    }
    // True when this call is to fail.
    bool Fails() {
        if (held) return false;
        ++calls;
        if (during != nullptr) during(calls);
        return failAt != 0 && (calls == failAt || (keepFailing && calls > failAt));
    }
};
inline HostControl& Host() {
    static HostControl control;
    return control;
}

// Counts references and itself among the live objects; one interface beside IUnknown.
template <class Interface>
class FakeObject : public Interface {
public:
    explicit FakeObject(HRESULT queryStatus = S_OK) : m_queryStatus(queryStatus) { ++Host().liveObjects; }
    virtual ~FakeObject() { --Host().liveObjects; }
    FakeObject(const FakeObject&) = delete;
    FakeObject& operator=(const FakeObject&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        *object = nullptr;
        if (iid != IID_IUnknown) {
            if (FAILED(m_queryStatus)) return m_queryStatus;
            if (iid != __uuidof(Interface)) return E_NOINTERFACE;
        }
        if (Host().Fails()) return E_FAIL;
        AddRef();
        *object = static_cast<Interface*>(this);
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++m_references; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --m_references;
        if (left == 0) delete this;
        return left;
    }

private:
    ULONG m_references = 1;
    HRESULT m_queryStatus;
};

// The same for the host's dispatch interfaces, which the module calls by position only.
template <class Interface>
class FakeDispatch : public FakeObject<Interface> {
public:
    using FakeObject<Interface>::FakeObject;

    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
        return E_NOTIMPL;
    }
};

// A class of the host registered in this process while it lives; `make` gives an object with one reference.
class FakeClass {
public:
    using Make = IUnknown* (*)();

    // `status` is looked at in each creation: a failure there is the result.
    FakeClass(REFCLSID classId, Make make, const HRESULT& status);
    ~FakeClass();
    FakeClass(const FakeClass&) = delete;
    FakeClass& operator=(const FakeClass&) = delete;

private:
    DWORD m_cookie = 0;
};

}  // namespace test
