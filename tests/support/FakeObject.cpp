#include "support/FakeObject.h"

namespace test {

namespace {

// Not counted among the live objects: COM may keep it as long as it likes.
class FakeFactory final : public IClassFactory {
public:
    FakeFactory(FakeClass::Make make, const HRESULT& status) : m_make(make), m_status(status) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        *object = iid == IID_IUnknown || iid == IID_IClassFactory ? this : nullptr;
        if (*object == nullptr) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++m_references; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --m_references;
        if (left == 0) delete this;
        return left;
    }
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID iid, void** object) override {
        *object = nullptr;
        if (FAILED(m_status)) return m_status;
        if (Host().Fails()) return E_OUTOFMEMORY;
        IUnknown* made = m_make();
        const HRESULT result = made->QueryInterface(iid, object);
        made->Release();
        return result;
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

private:
    virtual ~FakeFactory() = default;

    ULONG m_references = 1;
    FakeClass::Make m_make;
    const HRESULT& m_status;
};

}  // namespace

FakeClass::FakeClass(REFCLSID classId, Make make, const HRESULT& status) {
    auto* factory = new FakeFactory(make, status);
    CoRegisterClassObject(classId, factory, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &m_cookie);
    factory->Release();
}

FakeClass::~FakeClass() {
    CoRevokeClassObject(m_cookie);
}

}  // namespace test
