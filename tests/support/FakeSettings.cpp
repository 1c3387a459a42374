#include "support/FakeSettings.h"

#include <utility>

namespace test {

std::shared_ptr<FakeTree> FakeTree::Share(const std::wstring& name) {
    for (auto& child : children) {
        if (child.first == name) return child.second;
    }
    return children.emplace_back(name, std::make_shared<FakeTree>()).second;
}

FakeTree* FakeTree::Child(const std::wstring& name) {
    return Share(name).get();
}

void FakeTree::AddSet(const wchar_t* key, const wchar_t* name, int64_t flags, const std::vector<RECT>& rects) {
    FakeTree* set = Child(key);
    set->strings[L"Name"] = name;
    set->integers[L"Flags"] = flags;
    FakeTree* list = set->Child(L"Rect");
    for (size_t i = 0; i < rects.size(); ++i) {
        list->Child(std::to_wstring(i))->integers = {{L"Position:left", rects[i].left},
                                                     {L"Position:top", rects[i].top},
                                                     {L"Position:right", rects[i].right},
                                                     {L"Position:bottom", rects[i].bottom}};
    }
}

std::wstring FakeTree::Dump() const {
    std::wstring text = L"{";
    for (const auto& [name, value] : strings) text += name + L"='" + value + L"' ";
    for (const auto& [name, value] : integers) text += name + L"=" + std::to_wstring(value) + L" ";
    for (const auto& [name, value] : booleans) text += name + (value ? L"=yes " : L"=no ");
    for (const auto& [name, child] : children) text += name + child->Dump();
    return text + L"}";
}

std::shared_ptr<FakeTree> FakeTree::Clone() const {
    auto copy = std::make_shared<FakeTree>(*this);
    for (auto& child : copy->children) child.second = child.second->Clone();
    return copy;
}

namespace {

std::wstring Text(BSTR text) {
    return text == nullptr ? std::wstring() : std::wstring(text, SysStringLen(text));
}

class FakeNode final : public FakeObject<ISettingsNode> {
public:
    FakeNode(std::shared_ptr<FakeTree> tree, HRESULT queryStatus) : FakeObject(queryStatus), m_tree(std::move(tree)) {}

    const std::shared_ptr<FakeTree>& Tree() const { return m_tree; }
    void Replace(const FakeTree& content) { *m_tree = content; }

    HRESULT STDMETHODCALLTYPE GetSubNodeNames(SAFEARRAY** names) override {
        *names = nullptr;
        if (Host().Fails()) return Host().giveNull ? S_OK : Host().failStatus;
        *names = SafeArrayCreateVector(VT_BSTR, 0, static_cast<ULONG>(m_tree->children.size()));
        LONG i = 0;
        for (const auto& child : m_tree->children) {
            BSTR name = SysAllocStringLen(child.first.data(), static_cast<UINT>(child.first.size()));
            SafeArrayPutElement(*names, &i, name);
            SysFreeString(name);
            ++i;
        }
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetSubNode(BSTR name, ISettingsNode** node) override {
        *node = nullptr;
        if (Host().Fails()) return Host().giveNull ? S_OK : Host().failStatus;
        *node = MakeFakeNode(m_tree->Share(Text(name)));
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE DeleteSubNode(BSTR name) override {
        if (Host().Fails()) return Host().failStatus;
        std::erase_if(m_tree->children, [&](const auto& child) { return child.first == Text(name); });
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetString(BSTR name, BSTR* value) override {
        *value = nullptr;
        if (Host().Fails()) return Host().giveNull ? S_OK : Host().failStatus;
        const auto found = m_tree->strings.find(Text(name));
        if (found == m_tree->strings.end()) return E_INVALIDARG;
        *value = SysAllocStringLen(found->second.data(), static_cast<UINT>(found->second.size()));
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetInt64(BSTR name, LONGLONG* value) override {
        return Get(m_tree->integers, name, value);
    }
    HRESULT STDMETHODCALLTYPE GetBool(BSTR name, VARIANT_BOOL* value) override {
        return Get(m_tree->booleans, name, value);
    }
    HRESULT STDMETHODCALLTYPE SetString(BSTR name, BSTR value) override {
        return Set(m_tree->strings, name, Text(value));
    }
    HRESULT STDMETHODCALLTYPE SetInt64(BSTR name, LONGLONG value) override {
        return Set(m_tree->integers, name, value);
    }
    HRESULT STDMETHODCALLTYPE SetBool(BSTR name, VARIANT_BOOL value) override {
        return Set(m_tree->booleans, name, value != 0);
    }

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
    template <class Values, class Value>
    static HRESULT Get(const Values& values, BSTR name, Value* value) {
        if (Host().Fails()) return Host().failStatus;
        const auto found = values.find(Text(name));
        if (found == values.end()) return E_INVALIDARG;
        *value = static_cast<Value>(found->second);
        return S_OK;
    }
    template <class Values, class Value>
    static HRESULT Set(Values& values, BSTR name, Value value) {
        if (Host().Fails()) return Host().failStatus;
        values[Text(name)] = std::move(value);
        return S_OK;
    }

    std::shared_ptr<FakeTree> m_tree;
};

// As a store with a file has it: a cleared target that gets no copy, because that fails or never comes, is again what
// it was.
class FakeTransfer final : public FakeDispatch<ISettingsTransfer> {
public:
    ~FakeTransfer() override { PutBack(); }

    HRESULT STDMETHODCALLTYPE CopyNode(ISettingsNode* target, ISettingsNode* source) override {
        const bool fails = Host().Fails();
        if (fails && !Host().copyHalf) {
            PutBack();
            return E_FAIL;
        }
        m_cleared = nullptr;
        const auto copy = TreeOf(source)->Clone();
        if (fails) copy->children.resize(copy->children.size() / 2);
        static_cast<FakeNode*>(target)->Replace(*copy);
        return fails ? E_FAIL : S_OK;
    }
    HRESULT STDMETHODCALLTYPE ClearNode(ISettingsNode* target) override {
        if (Host().Fails()) return E_FAIL;
        PutBack();
        m_cleared = TreeOf(target);
        m_before = std::exchange(*m_cleared, {});
        return S_OK;
    }

private:
    void PutBack() {
        if (const auto tree = std::exchange(m_cleared, nullptr)) *tree = std::move(m_before);
    }

    std::shared_ptr<FakeTree> m_cleared;
    FakeTree m_before;
};

}  // namespace

FakeSettingsClasses::FakeSettingsClasses()
    : m_nodes(
          host::kClsidSettingsNode, [] { return static_cast<IUnknown*>(MakeFakeNode(std::make_shared<FakeTree>())); },
          Host().createSettingsNode),
      m_transfers(
          host::kClsidSettingsTransfer, [] { return static_cast<IUnknown*>(new FakeTransfer); },
          Host().createTransfer) {}

ISettingsNode* MakeFakeNode(std::shared_ptr<FakeTree> tree, HRESULT queryStatus) {
    return new FakeNode(std::move(tree), queryStatus);
}

std::shared_ptr<FakeTree> TreeOf(ISettingsNode* node) {
    return static_cast<FakeNode*>(node)->Tree();
}

}  // namespace test
