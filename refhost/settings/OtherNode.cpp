#include "refhost/settings/OtherNode.h"

#include <comdef.h>
#include <comip.h>

#include <memory>
#include <vector>

#include "host/SafeArray.h"
#include "host/StoredSettings.h"
#include "refhost/settings/Status.h"
#include "refhost/settings/StoreError.h"
#include "refhost/settings/Unicode.h"
#include "refhost/settings/WideText.h"

namespace settings {

namespace {

using NodeReference = _com_ptr_t<_com_IIID<ISettingsNode, &__uuidof(ISettingsNode)>>;
using ListReference = _com_ptr_t<_com_IIID<IHostSettingsList, &__uuidof(IHostSettingsList)>>;

constexpr size_t kMostSubNodes = 1000000;

struct FreeString {
    void operator()(wchar_t* text) const noexcept { SysFreeString(text); }
};
using String = std::unique_ptr<wchar_t, FreeString>;

void Check(HRESULT status) {
    if (FAILED(status)) throw _com_error(status);
}

template <class Interface>
std::vector<std::u16string> Names(Interface* from, HRESULT (STDMETHODCALLTYPE Interface::*list)(SAFEARRAY**)) {
    SAFEARRAY* made = nullptr;
    Check((from->*list)(&made));
    host::ArrayOwner array(made);
    Check(array.Lock(VT_BSTR));
    std::vector<std::u16string> names;
    for (int64_t i = 0; i < array.Count(); ++i) names.push_back(UnitsFrom(array.Data<const BSTR>()[i]));
    return names;
}

NodeReference SubNode(ISettingsNode* node, std::u16string_view name) {
    const String text(NewBstr(name));
    ISettingsNode* found = nullptr;
    Check(node->GetSubNode(text.get(), &found));
    if (found == nullptr) throw _com_error(E_POINTER);
    return {found, false};
}

class Reader {
public:
    void Read(ISettingsNode* from, Node& to) {
        ListReference list;
        from->QueryInterface(__uuidof(IHostSettingsList), reinterpret_cast<void**>(&list));
        if (list != nullptr) {
            for (const auto& name : Names(list.GetInterfacePtr(), &IHostSettingsList::GetValueNames)) {
                ReadValue(from, name, to);
            }
        } else {
            // What modules of this host keep in their nodes.
            for (const std::wstring_view name : host::kStoredValues) {
                ReadValue(from, std::u16string(name.begin(), name.end()), to);
            }
        }
        for (const auto& name : Names(from, &ISettingsNode::GetSubNodeNames)) {
            if (++m_subNodes > kMostSubNodes) {
                throw StoreError(Failure::kTooLarge, "The other store has too many settings to be copied.");
            }
            const NodePtr child = to.Child(name);
            Read(SubNode(from, name), *child);
        }
    }

private:
    // The first kind that the node gives: a number may well come as text too, but not the other way round.
    static void ReadValue(ISettingsNode* from, const std::u16string& name, Node& to) {
        const String text(NewBstr(name));
        LONGLONG number = 0;
        VARIANT_BOOL flag = VARIANT_FALSE;
        BSTR string = nullptr;
        if (SUCCEEDED(from->GetInt64(text.get(), &number))) {
            to.SetValue(name, int64_t{number});
        } else if (SUCCEEDED(from->GetBool(text.get(), &flag))) {
            to.SetValue(name, flag != VARIANT_FALSE);
        } else if (SUCCEEDED(from->GetString(text.get(), &string))) {
            const String owner(string);
            to.SetValue(name, UnitsFrom(string));
        }
    }

    size_t m_subNodes = 0;
};

void WriteMember(ISettingsNode* node, const Member& member) {
    const String name(NewBstr(member.name));
    if (const Node* child = member.SubNode()) {
        WriteOtherNode(SubNode(node, member.name), *child);
    } else if (const auto* text = std::get_if<std::u16string>(&member.content)) {
        const String value(NewBstr(*text));
        Check(node->SetString(name.get(), value.get()));
    } else if (const auto* number = std::get_if<int64_t>(&member.content)) {
        Check(node->SetInt64(name.get(), *number));
    } else if (const auto* flag = std::get_if<bool>(&member.content)) {
        Check(node->SetBool(name.get(), *flag ? VARIANT_TRUE : VARIANT_FALSE));
    }
}

}  // namespace

NodePtr ReadOtherNode(ISettingsNode* node) {
    auto content = std::make_shared<Node>();
    Reader().Read(node, *content);
    return content;
}

void WriteOtherNode(ISettingsNode* node, const Node& content) {
    for (const Member& member : content.Members()) WriteMember(node, member);
}

void ClearOtherNode(ISettingsNode* node) {
    for (const auto& name : Names(node, &ISettingsNode::GetSubNodeNames)) {
        const String text(NewBstr(name));
        Check(node->DeleteSubNode(text.get()));
    }
}

}  // namespace settings
