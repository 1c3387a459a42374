#include "refhost/app/StoredSets.h"

#include <comdef.h>

#include <memory>

#include "refhost/app/Console.h"
#include "refhost/app/StoredLayout.h"
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

struct DestroyArray {
    void operator()(SAFEARRAY* array) const noexcept { SafeArrayDestroy(array); }
};

std::vector<std::string> SubNodeNames(ISettingsNode* node) {
    SAFEARRAY* raw = nullptr;
    Check(node->GetSubNodeNames(&raw));
    if (!raw) _com_raise_error(E_POINTER);
    const std::unique_ptr<SAFEARRAY, DestroyArray> array(raw);
    LONG low = 0;
    LONG high = -1;
    Check(SafeArrayGetLBound(raw, 1, &low));
    Check(SafeArrayGetUBound(raw, 1, &high));
    std::vector<std::string> names;
    for (LONG i = low; i <= high; ++i) {
        BSTR name = nullptr;
        Check(SafeArrayGetElement(raw, &i, &name));
        const _bstr_t owner(name, false);
        names.push_back(Utf8FromWide({name ? name : L"", owner.length()}));
    }
    return names;
}

// Writes rectangles under the names of their values, which are made once for all of them.
class RectWriter {
public:
    void Write(ISettingsNode* node, const _bstr_t& name, const Rect& rect) const {
        const ISettingsNodePtr sub = SubNode(node, name);
        for (size_t i = 0; i < std::size(kCoordinates); ++i) {
            Check(sub->SetInt64(m_names[i], rect.*kCoordinates[i].coordinate));
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
    constexpr std::string_view kArea =
        R"("": {"Position:bottom": , "Position:left": , "Position:right": , "Position:top": },)";
    size_t size = 0;
    for (const AreaSetRecord& set : sets) {
        for (const Rect& area : set.areas) {
            size += kArea.size() + 1 + Digits(area.bottom) + Digits(area.left) + Digits(area.right) + Digits(area.top);
        }
    }
    if (size <= kSettingsMaxFileSize) return;
    throw CommandError(ExitCode::kNothingDone,
                       "the sets to be imported take more than the " + std::to_string(kSettingsMaxFileSize >> 20) +
                           " MiB that a settings file can have; import fewer of them with --set");
}

void WriteSet(ISettingsNode* root, const PlannedSet& planned) {
    const ISettingsNodePtr node = SubNode(root, Name(planned.key));
    Check(node->SetString(_bstr_t(L"Name"), Name(planned.set.name)));
    Check(node->SetInt64(_bstr_t(L"Flags"), planned.set.flags));
    const RectWriter writer;
    writer.Write(node, L"DisplayRect", planned.set.page);
    const ISettingsNodePtr areas = SubNode(node, L"Rect");
    for (const std::string& old : SubNodeNames(areas)) Check(areas->DeleteSubNode(Name(old)));
    for (size_t i = 0; i < planned.set.areas.size(); ++i) {
        writer.Write(areas, std::to_wstring(i).c_str(), planned.set.areas[i]);
    }
}

}  // namespace zonhost
