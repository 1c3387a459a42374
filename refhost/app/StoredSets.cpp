#include "refhost/app/StoredSets.h"

#include <comdef.h>

#include "host/SafeArray.h"
#include "host/StoredSettings.h"
#include "refhost/app/Console.h"
#include "refhost/app/Text.h"
#include "refhost/settings/HostSettings.h"

_COM_SMARTPTR_TYPEDEF(ISettingsNode, __uuidof(ISettingsNode));

namespace zonhost {

namespace {

void Check(HRESULT result) {
    if (FAILED(result)) _com_raise_error(result);
}

_bstr_t Name(const std::string& text) {
    return WideFromUtf8(text).c_str();
}

ISettingsNodePtr SubNode(ISettingsNode* node, const _bstr_t& name) {
    ISettingsNodePtr sub;
    Check(node->GetSubNode(name, &sub));
    if (!sub) _com_raise_error(E_POINTER);
    return sub;
}

std::vector<std::string> SubNodeNames(ISettingsNode* node) {
    SAFEARRAY* raw = nullptr;
    Check(node->GetSubNodeNames(&raw));
    host::ArrayOwner array(raw);
    Check(array.Lock(VT_BSTR));
    std::vector<std::string> names;
    for (int64_t i = 0; i < array.Count(); ++i) {
        const BSTR name = array.Data<const BSTR>()[i];
        names.push_back(Utf8FromWide({name ? name : L"", SysStringLen(name)}));
    }
    return names;
}

constexpr auto& kCoordinates = host::kStoredCoordinates<Rect>;

// Writes rectangles under the names of their values, which are made once for all of them.
class RectWriter {
public:
    void Write(ISettingsNode* node, const _bstr_t& name, const Rect& rect) const {
        const ISettingsNodePtr sub = SubNode(node, name);
        for (size_t i = 0; i < std::size(kCoordinates); ++i) {
            Check(sub->SetInt64(m_names[i], rect.*kCoordinates[i].member));
        }
    }

private:
    const _bstr_t m_names[std::size(kCoordinates)] = {kCoordinates[0].name, kCoordinates[1].name, kCoordinates[2].name,
                                                      kCoordinates[3].name};
};

size_t Digits(int64_t value) {
    size_t digits = value < 0 ? 2 : 1;
    for (; value > 9 || value < -9; value /= 10) ++digits;
    return digits;
}

}  // namespace

void ExpectRoom(const std::vector<AreaSetRecord>& sets) {
    // An area as it stands in the file, without its numbers: "": {"Position:bottom": , ... "Position:top": },
    constexpr size_t kArea = [] {
        size_t length = std::string_view(R"("": {},)").size() - 2;
        for (const auto& coordinate : kCoordinates) length += std::wstring_view(coordinate.name).size() + 6;
        return length;
    }();
    size_t size = 0;
    for (const AreaSetRecord& set : sets) {
        for (const Rect& area : set.areas) {
            size += kArea + 1 + Digits(area.bottom) + Digits(area.left) + Digits(area.right) + Digits(area.top);
        }
    }
    if (size <= kSettingsMaxFileSize) return;
    throw CommandError(ExitCode::kNothingDone,
                       "the sets to be imported take more than the " + std::to_string(kSettingsMaxFileSize >> 20) +
                           " MiB that a settings file can have; import fewer of them with --set");
}

void WriteSet(ISettingsNode* root, const PlannedSet& planned) {
    const ISettingsNodePtr node = SubNode(root, Name(planned.key));
    Check(node->SetString(_bstr_t(host::kKeyName), Name(planned.set.name)));
    Check(node->SetInt64(_bstr_t(host::kKeyFlags), planned.set.flags));
    const RectWriter writer;
    writer.Write(node, host::kKeyDisplayRect, planned.set.page);
    const ISettingsNodePtr areas = SubNode(node, host::kKeyRect);
    for (const std::string& old : SubNodeNames(areas)) Check(areas->DeleteSubNode(Name(old)));
    for (size_t i = 0; i < planned.set.areas.size(); ++i) {
        writer.Write(areas, std::to_wstring(i).c_str(), planned.set.areas[i]);
    }
}

}  // namespace zonhost
