#pragma once
// The node class: a view on a place in a tree.

#include <memory>
#include <vector>

#include "refhost/com/ComObject.h"
#include "refhost/settings/FileStore.h"
#include "refhost/settings/HostSettings.h"
#include "refhost/settings/Tree.h"

// clang-format off
#define HOST_IID_OWN_NODE 0x5c6d10b0, 0x9c34, 0x43de, 0x95, 0x19, 0x71, 0xa3, 0x6d, 0xbd, 0x2a, 0xc4
// clang-format on

// How the store knows its own nodes.
struct IOwnNode : IUnknown {
    virtual settings::NodePtr STDMETHODCALLTYPE Tree() = 0;
    // The store of a root of a file, else null.
    virtual settings::FileStore* STDMETHODCALLTYPE Store() = 0;
};
ZONWICK_UUID(IOwnNode, HOST_IID_OWN_NODE)

namespace settings {

class SettingsNode final : public com::Object<ISettingsNode, IHostSettingsList, IOwnNode> {
public:
    SettingsNode() : m_node(std::make_shared<Node>()) {}
    explicit SettingsNode(NodePtr node) : m_node(std::move(node)) {}
    explicit SettingsNode(std::unique_ptr<FileStore> store) : m_store(std::move(store)), m_node(m_store->Root()) {}

    HRESULT STDMETHODCALLTYPE GetSubNodeNames(SAFEARRAY** names) override;
    HRESULT STDMETHODCALLTYPE GetSubNode(BSTR name, ISettingsNode** node) override;
    HRESULT STDMETHODCALLTYPE DeleteSubNode(BSTR name) override;
    HRESULT STDMETHODCALLTYPE GetString(BSTR name, BSTR* value) override;
    HRESULT STDMETHODCALLTYPE GetInt64(BSTR name, LONGLONG* value) override;
    HRESULT STDMETHODCALLTYPE GetBool(BSTR name, VARIANT_BOOL* value) override;
    HRESULT STDMETHODCALLTYPE SetString(BSTR name, BSTR value) override;
    HRESULT STDMETHODCALLTYPE SetInt64(BSTR name, LONGLONG value) override;
    HRESULT STDMETHODCALLTYPE SetBool(BSTR name, VARIANT_BOOL value) override;

    HRESULT STDMETHODCALLTYPE GetValueNames(SAFEARRAY** names) override;

    NodePtr STDMETHODCALLTYPE Tree() override { return m_node; }
    FileStore* STDMETHODCALLTYPE Store() override { return m_store.get(); }

    HRESULT STDMETHODCALLTYPE Reserved3() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved4() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved5() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved6() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved11() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved14() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved16() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved19() override { return E_NOTIMPL; }

private:
    std::unique_ptr<FileStore> m_store;
    NodePtr m_node;
};

}  // namespace settings
