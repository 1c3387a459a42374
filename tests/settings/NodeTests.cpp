// Nodes and copies through their COM interfaces.
#include <map>
#include <vector>

#include "StoreFixture.h"
#include "refhost/com/ComObject.h"

namespace test {
namespace {

using NodeTest = StoreTest;

TEST_F(NodeTest, KeepsValuesUnderTheirKinds) {
    const NodePtr node = NewNode();
    const _bstr_t text(SysAllocStringLen(L"a\0\xD83D", 3), false);
    EXPECT_EQ(S_OK, node->SetString(_bstr_t(L"text"), text));
    EXPECT_EQ(S_OK, node->SetString(_bstr_t(L"none"), nullptr));
    EXPECT_EQ(S_OK, node->SetInt64(_bstr_t(L"number"), INT64_MIN));
    EXPECT_EQ(S_OK, node->SetBool(_bstr_t(L"flag"), 1));
    EXPECT_EQ(S_OK, node->SetInt64(_bstr_t(L"none again"), 1));

    _bstr_t read;
    EXPECT_EQ(S_OK, node->GetString(_bstr_t(L"text"), read.GetAddress()));
    EXPECT_EQ(3u, read.length());
    EXPECT_EQ(S_OK, node->GetString(_bstr_t(L"none"), read.GetAddress()));
    EXPECT_EQ(0u, read.length());
    VARIANT_BOOL flag = 0;
    EXPECT_EQ(S_OK, node->GetBool(_bstr_t(L"flag"), &flag));
    EXPECT_NE(0, flag);
    EXPECT_EQ(INT64_MIN, Number(node, L"number"));
    EXPECT_EQ(L"text none number flag none again ",
              List(ListPtr(node).GetInterfacePtr(), &IHostSettingsList::GetValueNames));
    EXPECT_EQ(L"", SubNodes(node));
}

TEST_F(NodeTest, RefusesWhatCannotBe) {
    const NodePtr node = NewNode(1);
    Child(node, L"group");
    LONGLONG number = 7;
    BSTR string = nullptr;
    NodePtr child;
    const _bstr_t half(L"\xDC00");
    EXPECT_EQ(kSettingsMissing, node->GetInt64(_bstr_t(L"other"), &number));
    EXPECT_EQ(0, number);
    EXPECT_EQ(kSettingsMissing, node->DeleteSubNode(nullptr));
    EXPECT_EQ(kSettingsWrongKind, node->GetString(_bstr_t(L"n"), &string));
    EXPECT_EQ(kSettingsWrongKind, node->GetInt64(_bstr_t(L"group"), &number));
    EXPECT_EQ(kSettingsWrongKind, node->GetSubNode(_bstr_t(L"n"), &child));
    EXPECT_EQ(kSettingsWrongKind, node->SetInt64(_bstr_t(L"group"), 1));
    EXPECT_EQ(kSettingsBadName, node->SetInt64(nullptr, 1));
    EXPECT_EQ(kSettingsBadName, node->GetSubNode(half, &child));
    EXPECT_EQ(kSettingsBadName, node->SetString(_bstr_t(std::wstring(100000, L'x').c_str()), nullptr));
    EXPECT_EQ(E_POINTER, node->GetSubNodeNames(nullptr));
    EXPECT_EQ(E_POINTER, node->GetSubNode(_bstr_t(L"group"), nullptr));
    EXPECT_EQ(E_POINTER, node->GetString(_bstr_t(L"n"), nullptr));
    EXPECT_EQ(E_NOTIMPL, node->Reserved8());
    EXPECT_EQ(E_INVALIDARG, HostSettingsCommit(node));
    EXPECT_EQ(E_INVALIDARG, HostSettingsCommit(nullptr));
    for (int i = 1; i < kSettingsMaxDepth; ++i) node->GetSubNode(_bstr_t(L"d"), &child);
    NodePtr inner = node;
    for (int i = 1; i < kSettingsMaxDepth; ++i) inner = Child(inner, L"d");
    EXPECT_EQ(kSettingsTooDeep, inner->GetSubNode(_bstr_t(L"d"), &child));
    EXPECT_NE(std::wstring::npos, LastMessage().find(L"100 levels"));
}

TEST_F(NodeTest, LetsADeletedNodeLiveApart) {
    const NodePtr node = NewNode();
    const NodePtr first = Child(node, L"group");
    const NodePtr same = Child(node, L"group");
    first->SetInt64(_bstr_t(L"n"), 1);
    EXPECT_EQ(1, Number(same, L"n"));
    EXPECT_EQ(S_OK, node->DeleteSubNode(_bstr_t(L"group")));
    EXPECT_EQ(S_OK, first->SetInt64(_bstr_t(L"n"), 2));
    EXPECT_EQ(L"", SubNodes(node));
    EXPECT_EQ(-1, Number(Child(node, L"group"), L"n"));
}

// A node of another maker. Without the list its values can only be asked for by name.
class OtherNode final : public com::Object<ISettingsNode, IHostSettingsList> {
public:
    explicit OtherNode(bool lists) : m_lists(lists) {}
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        if (iid == __uuidof(IHostSettingsList) && !m_lists) {
            *object = nullptr;
            return E_NOINTERFACE;
        }
        return Object::QueryInterface(iid, object);
    }
    HRESULT STDMETHODCALLTYPE GetSubNodeNames(SAFEARRAY** names) override { return Names(m_children, names); }
    HRESULT STDMETHODCALLTYPE GetValueNames(SAFEARRAY** names) override { return Names(m_values, names); }
    HRESULT STDMETHODCALLTYPE GetSubNode(BSTR name, ISettingsNode** node) override {
        if (m_children[name] == nullptr) m_children[name].Attach(new OtherNode(m_lists));
        *node = m_children[name];
        (*node)->AddRef();
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE DeleteSubNode(BSTR name) override { return m_children.erase(name) == 1 ? S_OK : E_FAIL; }
    HRESULT STDMETHODCALLTYPE GetString(BSTR, BSTR*) override { return E_FAIL; }
    HRESULT STDMETHODCALLTYPE GetInt64(BSTR name, LONGLONG* value) override {
        if (m_values.count(name) == 0) return E_FAIL;
        *value = m_values[name];
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetBool(BSTR, VARIANT_BOOL*) override { return E_FAIL; }
    HRESULT STDMETHODCALLTYPE SetString(BSTR, BSTR) override { return DISP_E_TYPEMISMATCH; }
    HRESULT STDMETHODCALLTYPE SetInt64(BSTR name, LONGLONG value) override {
        m_values[name] = value;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE SetBool(BSTR, VARIANT_BOOL) override { return S_OK; }
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
    template <class Map>
    static HRESULT Names(const Map& map, SAFEARRAY** names) {
        *names = SafeArrayCreateVector(VT_BSTR, 0, static_cast<ULONG>(map.size()));
        LONG i = 0;
        for (const auto& entry : map) SafeArrayPutElement(*names, &i, _bstr_t(entry.first.c_str()).GetBSTR()), ++i;
        return S_OK;
    }

    bool m_lists;
    std::map<std::wstring, NodePtr> m_children;
    std::map<std::wstring, LONGLONG> m_values;
};

TEST_F(NodeTest, CopiesToAndFromOtherStores) {
    TransferPtr transfer;
    ASSERT_EQ(S_OK, transfer.CreateInstance(host::kClsidSettingsTransfer, nullptr, CLSCTX_ALL));
    const NodePtr own = NewNode();
    own->SetInt64(_bstr_t(L"Flags"), 5);
    own->SetInt64(_bstr_t(L"something"), 6);
    Child(Child(own, L"Rect"), L"0")->SetInt64(_bstr_t(L"Position:left"), -7);
    for (const bool lists : {false, true}) {
        const NodePtr other(new OtherNode(lists), false);
        Child(other, L"before");
        EXPECT_EQ(S_OK, transfer->ClearNode(other));
        EXPECT_EQ(S_OK, transfer->CopyNode(other, own));
        EXPECT_EQ(L"Rect ", SubNodes(other));
        EXPECT_EQ(6, Number(other, L"something"));

        const NodePtr back = NewNode();
        EXPECT_EQ(S_OK, transfer->CopyNode(back, other));
        EXPECT_EQ(5, Number(back, L"Flags"));
        EXPECT_EQ(lists ? 6 : -1, Number(back, L"something"));
        EXPECT_EQ(-7, Number(Child(Child(back, L"Rect"), L"0"), L"Position:left"));
    }
    // A failing target is told, not passed over.
    own->SetString(_bstr_t(L"text"), nullptr);
    const NodePtr other(new OtherNode(true), false);
    EXPECT_EQ(DISP_E_TYPEMISMATCH, transfer->CopyNode(other, own));
    EXPECT_EQ(E_POINTER, transfer->CopyNode(nullptr, own));
    EXPECT_EQ(E_POINTER, transfer->CopyNode(own, nullptr));
    EXPECT_EQ(E_POINTER, transfer->ClearNode(nullptr));
    // A node onto itself and into one below it.
    EXPECT_EQ(S_OK, transfer->CopyNode(own, own));
    EXPECT_EQ(S_OK, transfer->CopyNode(Child(own, L"Rect"), own));
    EXPECT_EQ(L"0 Rect ", SubNodes(Child(own, L"Rect")));
}

}  // namespace
}  // namespace test
