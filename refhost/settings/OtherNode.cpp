#include "refhost/settings/OtherNode.h"

#include <comdef.h>
#include <comip.h>

#include <memory>
#include <vector>

#include "refhost/settings/Status.h"
#include "refhost/settings/StoreError.h"
#include "refhost/settings/Unicode.h"
#include "refhost/settings/WideText.h"

namespace settings {

namespace {

using NodeReference = _com_ptr_t<_com_IIID<ISettingsNode, &__uuidof(ISettingsNode)>>;
using ListReference = _com_ptr_t<_com_IIID<IHostSettingsList, &__uuidof(IHostSettingsList)>>;

constexpr size_t kMostSubNodes = 1000000;

// What modules of this host keep in their nodes, for nodes that cannot list their values.
constexpr const char16_t* kKnownValues[] = {
    u"Name",         u"Flags",           u"Position:left",
    u"Position:top", u"Position:right",  u"Position:bottom",
    u"PageFormat",   u"RadioPageOrient", u"RadioPageType",
    u"CustomWidth",  u"CustomHeight",    u"RealWidth",
    u"RealHeight",   u"RadioPageSource", u"LastGrey",
    u"LastScale",    u"ColumnsWidth",    u"ColumnsWidthWithIndexing",
};

struct FreeString {
    void operator()(wchar_t* text) const noexcept { SysFreeString(text); }
};
using String = std::unique_ptr<wchar_t, FreeString>;

struct FreeArray {
    void operator()(SAFEARRAY* array) const noexcept { SafeArrayDestroy(array); }
};

void Check(HRESULT status) {
    if (FAILED(status)) throw _com_error(status);
}

template <class Interface>
std::vector<std::u16string> Names(Interface* from, HRESULT (STDMETHODCALLTYPE Interface::*list)(SAFEARRAY**)) {
    SAFEARRAY* made = nullptr;
    Check((from->*list)(&made));
    const std::unique_ptr<SAFEARRAY, FreeArray> array(made);
    VARTYPE type = VT_EMPTY;
    if (array == nullptr || SafeArrayGetDim(made) != 1 || FAILED(SafeArrayGetVartype(made, &type)) || type != VT_BSTR) {
        throw _com_error(E_INVALIDARG);
    }
    const auto* elements = static_cast<const BSTR*>(made->pvData);
    std::vector<std::u16string> names;
    for (ULONG i = 0; i < made->rgsabound[0].cElements; ++i) names.push_back(UnitsFrom(elements[i]));
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
            for (const char16_t* name : kKnownValues) ReadValue(from, name, to);
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
