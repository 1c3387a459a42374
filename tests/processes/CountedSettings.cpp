#include "processes/CountedSettings.h"

#include <stdexcept>
#include <utility>

#include "refhost/com/ComObject.h"
#include "refhost/settings/HostSettings.h"

namespace test {

namespace {

decltype(&::DllGetClassObject) g_classObject;

// True when this call is to fail.
bool Count() {
    HostCalls& calls = Calls();
    if (++calls.count == calls.endAt) TerminateProcess(GetCurrentProcess(), kEndedAtCall);
    if (const auto during = std::exchange(calls.during, nullptr)) {
        during();
        calls.during = during;
    }
    return calls.count == calls.failAt;
}

template <class Interface>
win32::ComPtr<Interface> CreateReal(REFCLSID classId) {
    win32::ComPtr<IClassFactory> factory;
    win32::ComPtr<Interface> object;
    HRESULT status = g_classObject(classId, __uuidof(IClassFactory), reinterpret_cast<void**>(&factory));
    if (SUCCEEDED(status)) {
        status = factory->CreateInstance(nullptr, __uuidof(Interface), reinterpret_cast<void**>(&object));
    }
    if (FAILED(status)) throw std::runtime_error("the settings store does not give its classes");
    return object;
}

class CountedNode final : public com::Object<ISettingsNode> {
public:
    explicit CountedNode(win32::ComPtr<ISettingsNode> real) : m_real(std::move(real)) {}
    ISettingsNode* Real() const { return m_real.GetInterfacePtr(); }

    HRESULT STDMETHODCALLTYPE Reserved3() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved4() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved5() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved6() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved11() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved14() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved16() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved19() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetSubNodeNames(SAFEARRAY** names) override {
        return Count() ? Calls().failStatus : m_real->GetSubNodeNames(names);
    }
    HRESULT STDMETHODCALLTYPE GetSubNode(BSTR name, ISettingsNode** node) override {
        win32::ComPtr<ISettingsNode> real;
        const HRESULT status = Count() ? Calls().failStatus : m_real->GetSubNode(name, &real);
        *node = SUCCEEDED(status) ? new CountedNode(real) : nullptr;
        return status;
    }
    HRESULT STDMETHODCALLTYPE DeleteSubNode(BSTR name) override {
        return Count() ? Calls().failStatus : m_real->DeleteSubNode(name);
    }
    HRESULT STDMETHODCALLTYPE GetString(BSTR name, BSTR* value) override {
        return Count() ? Calls().failStatus : m_real->GetString(name, value);
    }
    HRESULT STDMETHODCALLTYPE GetInt64(BSTR name, LONGLONG* value) override {
        return Count() ? Calls().failStatus : m_real->GetInt64(name, value);
    }
    HRESULT STDMETHODCALLTYPE GetBool(BSTR name, VARIANT_BOOL* value) override {
        return Count() ? Calls().failStatus : m_real->GetBool(name, value);
    }
    HRESULT STDMETHODCALLTYPE SetString(BSTR name, BSTR value) override {
        return Count() ? Calls().failStatus : m_real->SetString(name, value);
    }
    HRESULT STDMETHODCALLTYPE SetInt64(BSTR name, LONGLONG value) override {
        return Count() ? Calls().failStatus : m_real->SetInt64(name, value);
    }
    HRESULT STDMETHODCALLTYPE SetBool(BSTR name, VARIANT_BOOL value) override {
        return Count() ? Calls().failStatus : m_real->SetBool(name, value);
    }

private:
    win32::ComPtr<ISettingsNode> m_real;
};

ISettingsNode* RealOf(ISettingsNode* node) {
    auto* counted = dynamic_cast<CountedNode*>(node);
    return counted != nullptr ? counted->Real() : node;
}

class CountedTransfer final : public com::Object<com::NoDispatch<ISettingsTransfer>> {
public:
    HRESULT STDMETHODCALLTYPE CopyNode(ISettingsNode* target, ISettingsNode* source) override {
        return Count() ? Calls().failStatus : m_real->CopyNode(RealOf(target), RealOf(source));
    }
    HRESULT STDMETHODCALLTYPE ClearNode(ISettingsNode* target) override {
        return Count() ? Calls().failStatus : m_real->ClearNode(RealOf(target));
    }

private:
    win32::ComPtr<ISettingsTransfer> m_real = CreateReal<ISettingsTransfer>(host::kClsidSettingsTransfer);
};

IUnknown* MakeNode() {
    return new CountedNode(CreateReal<ISettingsNode>(host::kClsidSettingsNode));
}
IUnknown* MakeTransfer() {
    return new CountedTransfer;
}

}  // namespace

HostCalls& Calls() {
    static HostCalls calls;
    return calls;
}

CountedSettings::CountedSettings()
    : m_nodes(host::kClsidSettingsNode, MakeNode, m_status),
      m_transfers(host::kClsidSettingsTransfer, MakeTransfer, m_status) {
    g_classObject = m_store.Export<decltype(::DllGetClassObject)>("DllGetClassObject");
}

CountedSettings::~CountedSettings() = default;

win32::ComPtr<ISettingsNode> CountedSettings::OpenFile(const wchar_t* path) {
    win32::ComPtr<ISettingsNode> root;
    if (FAILED(m_store.Export<decltype(HostSettingsOpenFile)>("HostSettingsOpenFile")(path, &root))) return nullptr;
    return {new CountedNode(root), false};
}

}  // namespace test
