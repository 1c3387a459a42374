// The exports that hand over settings and answer questions about the area sets.
#include <cwchar>

#include "module/ExportGuard.h"
#include "module/ZonwickApp.h"
#include "resource.h"
#include "trace/Trace.h"
#include "zonwick/zonwick.h"

static_assert(SA_AREAS_IGNORED == kAreasIgnored);
static_assert(sizeof(PageRect) == sizeof(RECT) && offsetof(PageRect, right) == offsetof(RECT, right));

namespace {

constexpr const char* kSource = "Zonwick";

bool LoadSets() {
    if (GetAreaSetManager()->LoadSettings()) return true;
    trace::TraceStringId(trace::kError, kSource, __LINE__, IDS_ERR_READ_SETTINGS);
    return false;
}

// True when the pointer that the caller has to give is there.
bool Given(const void* pointer, const wchar_t* message) {
    if (pointer != nullptr) return true;
    trace::TraceText(trace::kDiagnostic, kSource, __LINE__, message);
    return false;
}

BOOL FillInfo(const CAreaSet& set, SAAreaInfo& info) {
    const std::wstring name = set.GetName();
    const size_t copied = wcsnlen(name.c_str(), SA_NAME_LENGTH - 1);
    std::wmemcpy(info.szName, name.c_str(), copied);
    info.szName[copied] = L'\0';
    if (name.c_str()[copied] != L'\0') {
        trace::TraceText(trace::kError, kSource, __LINE__, L"AreaSet name too long, maximum: %d", SA_NAME_LENGTH);
        return FALSE;
    }
    info.dwID = set.GetID();
    info.nAreas = static_cast<DWORD>(set.GetRectCount());
    info.dwFlags = set.GetFlags();
    return TRUE;
}

void Init(IUnknown* pHost) {
    if (GetApp().IsDialogOpen()) {
        trace::TraceText(trace::kDiagnostic, kSource, __LINE__, L"SAInit: a dialog is open, nothing was changed.");
        return;
    }
    if (GetAreaSetManager()->IsExclusive()) {
        trace::TraceText(trace::kDiagnostic, kSource, __LINE__,
                         L"SAInit: the sets are being loaded or stored, nothing was changed.");
        return;
    }
    ISettingsNodePtr node;
    if (pHost != nullptr) {
        const HRESULT status = pHost->QueryInterface(__uuidof(ISettingsNode), reinterpret_cast<void**>(&node));
        if (FAILED(status) && status != E_NOINTERFACE) win32::ThrowHostError(status, __uuidof(ISettingsNode));
    }
    GetApp().SetHostSettings(node);
}

}  // namespace

extern "C" {

void WINAPI SAInit(IUnknown* pHost) {
    module::Contain(kSource, __LINE__, L"SAInit", 0, [&] {
        Init(pHost);
        return 0;
    });
}

BOOL WINAPI SAGetAreaInfo(DWORD dwID, SAAreaInfo* pInfo) {
    return module::Contain(kSource, __LINE__, L"SAGetAreaInfo", FALSE, [&] {
        if (!LoadSets()) return FALSE;
        const CAreaSet* set = GetAreaSetManager()->GetAreaSet(uint32_t{dwID});
        if (set == nullptr || !Given(pInfo, L"SAGetAreaInfo: pInfo is NULL.")) return FALSE;
        return FillInfo(*set, *pInfo);
    });
}

BOOL WINAPI SAGetAreaRects(DWORD dwID, RECT* pRects) {
    return module::Contain(kSource, __LINE__, L"SAGetAreaRects", FALSE, [&] {
        if (!LoadSets()) return FALSE;
        const CAreaSet* set = GetAreaSetManager()->GetAreaSet(uint32_t{dwID});
        if (set == nullptr) return FALSE;
        const int32_t count = set->GetRectCount();
        if (count > 0 && !Given(pRects, L"SAGetAreaRects: pRects is NULL.")) return FALSE;
        for (int32_t i = 0; i < count; ++i) {
            const PageRect rect = set->GetRect(i)->GetRectangle();
            pRects[i] = {rect.left, rect.top, rect.right, rect.bottom};
        }
        return TRUE;
    });
}

DWORD WINAPI SAMapID2Index(DWORD dwID) {
    return module::Contain(kSource, __LINE__, L"SAMapID2Index", DWORD{0}, [&] {
        if (!LoadSets()) return DWORD{0};
        int32_t position = -1;
        GetAreaSetManager()->GetAreaSet(uint32_t{dwID}, &position);
        return static_cast<DWORD>(position);
    });
}

BOOL WINAPI SAMapIndex2ID(int iIndex, DWORD* pID) {
    return module::Contain(kSource, __LINE__, L"SAMapIndex2ID", FALSE, [&] {
        if (!LoadSets()) return FALSE;
        const CAreaSet* set = GetAreaSetManager()->GetAreaSet(int32_t{iIndex});
        if (set == nullptr || !Given(pID, L"SAMapIndex2ID: pID is NULL.")) return FALSE;
        *pID = set->GetID();
        return TRUE;
    });
}

void WINAPI SAChangeColors(COLORREF first, COLORREF second, COLORREF third) {
    GetAreaColors() = {first, second, third};
}

}  // extern "C"
