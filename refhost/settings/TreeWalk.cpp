// HostSettingsWalk.
#include <comdef.h>

#include "refhost/settings/HostSettings.h"
#include "refhost/settings/SettingsNode.h"
#include "refhost/settings/Status.h"

using namespace settings;

namespace {

using OwnReference = _com_ptr_t<_com_IIID<IOwnNode, &__uuidof(IOwnNode)>>;

const wchar_t* Wide(std::u16string_view text) {
    static_assert(sizeof(wchar_t) == sizeof(char16_t));
    return reinterpret_cast<const wchar_t*>(text.data());
}

HostSettingsMember Describe(const Member& member) {
    HostSettingsMember told{kHostSettingsOther, Wide(member.name), member.name.size(), nullptr, 0, 0};
    if (member.SubNode() != nullptr) {
        told.kind = kHostSettingsNode;
    } else if (const auto* text = std::get_if<std::u16string>(&member.content)) {
        told.kind = kHostSettingsText;
        told.text = Wide(*text);
        told.textLength = text->size();
    } else if (const auto* number = std::get_if<int64_t>(&member.content)) {
        told.kind = kHostSettingsNumber;
        told.number = *number;
    } else if (std::holds_alternative<bool>(member.content)) {
        told.kind = kHostSettingsTruth;
    }
    return told;
}

bool Walk(const Node& node, HostSettingsVisit visit, void* context) {
    for (const Member& member : node.Members()) {
        HostSettingsMember told = Describe(member);
        if (!visit(&told, context)) return false;
        if (told.kind != kHostSettingsNode) continue;
        if (!Walk(*member.SubNode(), visit, context)) return false;
        told.kind = kHostSettingsEnd;
        if (!visit(&told, context)) return false;
    }
    return true;
}

}  // namespace

HRESULT HostSettingsWalk(ISettingsNode* node, HostSettingsVisit visit, void* context) {
    return Edge([&] {
        OwnReference own;
        if (node != nullptr) node->QueryInterface(__uuidof(IOwnNode), reinterpret_cast<void**>(&own));
        if (own == nullptr || visit == nullptr) {
            throw StatusError(E_INVALIDARG, L"Only nodes of this settings store can be walked.");
        }
        Walk(*own->Tree(), visit, context);
    });
}
