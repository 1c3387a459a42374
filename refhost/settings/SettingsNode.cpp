#include "refhost/settings/SettingsNode.h"

#include <limits>

#include "refhost/settings/Status.h"
#include "refhost/settings/WideText.h"

namespace settings {

namespace {

void CheckOut(const void* out) {
    if (out == nullptr) throw StatusError(E_POINTER, L"A setting was asked for without a place to put it.");
}

struct DestroyArray {
    void operator()(SAFEARRAY* array) const noexcept { SafeArrayDestroy(array); }
};

SAFEARRAY* NewArray(const std::vector<std::u16string_view>& names) {
    if (names.size() > static_cast<size_t>(std::numeric_limits<LONG>::max())) throw std::bad_alloc();
    std::unique_ptr<SAFEARRAY, DestroyArray> array(SafeArrayCreateVector(VT_BSTR, 0, static_cast<ULONG>(names.size())));
    if (array == nullptr) throw std::bad_alloc();
    auto* elements = static_cast<BSTR*>(array->pvData);
    for (size_t i = 0; i < names.size(); ++i) elements[i] = NewBstr(names[i]);
    return array.release();
}

template <class Wanted>
HRESULT ListNames(const Node& node, SAFEARRAY** names, Wanted&& wanted) noexcept {
    return Edge([&] {
        CheckOut(names);
        *names = nullptr;
        std::vector<std::u16string_view> found;
        for (const Member& member : node.Members()) {
            if (wanted(member)) found.push_back(member.name);
        }
        *names = NewArray(found);
    });
}

}  // namespace

HRESULT SettingsNode::GetSubNodeNames(SAFEARRAY** names) {
    return ListNames(*m_node, names, [](const Member& member) { return member.SubNode() != nullptr; });
}

HRESULT SettingsNode::GetValueNames(SAFEARRAY** names) {
    return ListNames(*m_node, names, [](const Member& member) {
        return member.SubNode() == nullptr && !std::holds_alternative<RawJson>(member.content);
    });
}

HRESULT SettingsNode::GetSubNode(BSTR name, ISettingsNode** node) {
    return Edge([&] {
        CheckOut(node);
        *node = nullptr;
        *node = new SettingsNode(m_node->Child(Units(name)));
    });
}

HRESULT SettingsNode::DeleteSubNode(BSTR name) {
    return Edge([&] { m_node->RemoveChild(Units(name)); });
}

HRESULT SettingsNode::GetString(BSTR name, BSTR* value) {
    return Edge([&] {
        CheckOut(value);
        *value = nullptr;
        *value = NewBstr(m_node->Value<std::u16string>(Units(name)));
    });
}

HRESULT SettingsNode::GetInt64(BSTR name, LONGLONG* value) {
    return Edge([&] {
        CheckOut(value);
        *value = 0;
        *value = m_node->Value<int64_t>(Units(name));
    });
}

HRESULT SettingsNode::GetBool(BSTR name, VARIANT_BOOL* value) {
    return Edge([&] {
        CheckOut(value);
        *value = VARIANT_FALSE;
        *value = m_node->Value<bool>(Units(name)) ? VARIANT_TRUE : VARIANT_FALSE;
    });
}

HRESULT SettingsNode::SetString(BSTR name, BSTR value) {
    return Edge([&] { m_node->SetValue(Units(name), UnitsFrom(value)); });
}

HRESULT SettingsNode::SetInt64(BSTR name, LONGLONG value) {
    return Edge([&] { m_node->SetValue(Units(name), int64_t{value}); });
}

HRESULT SettingsNode::SetBool(BSTR name, VARIANT_BOOL value) {
    return Edge([&] { m_node->SetValue(Units(name), value != VARIANT_FALSE); });
}

}  // namespace settings
