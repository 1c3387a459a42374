// The exports that open "Configure Area Set": for one stored set, and for the host's indexing fields.
#include <algorithm>
#include <memory>
#include <new>

#include "configure/SASetConfigDlg.h"
#include "exports/DialogFrame.h"
#include "host/ConfigObjects.h"
#include "module/ExportGuard.h"
#include "resource.h"
#include "trace/Trace.h"
#include "win32/Resources.h"
#include "zonwick/zonwick.h"

namespace {

using exports::kSource;
using win32::CallHost;

constexpr const wchar_t* kHint = L"Hint: check if Folium.dll is registered properly.";
constexpr const wchar_t* kDoModalFailed = L"SAConfigureSet: dlg.DoModal failed.";
constexpr INT_PTR kNotCreated = -1;

_COM_SMARTPTR_TYPEDEF(IConfigScope, __uuidof(IConfigScope));

bool g_configuringSet = false;
bool g_configuringPage = false;

// Runs the dialog. False when it could not be opened or ended by an exception, which was reported then.
bool RunDialog(CSASetConfigDlg& dialog, HWND hParent, INT_PTR& result) {
    try {
        result = dialog.DoModal();
    } catch (...) {
        win32::TraceFailure(std::current_exception(), kSource, __LINE__, L"CSASetConfigDlg");
        exports::ReportDialogFailure(hParent, __LINE__, trace::kError, kHint);
        return false;
    }
    if (result != kNotCreated && result != IDABORT) return true;
    exports::ReportDialogFailure(hParent, __LINE__, trace::kDiagnostic, kDoModalFailed);
    return false;
}

// The body's result; when it throws, the failure is traced and the user is told.
template <class Body>
BOOL ReportFailure(HWND hParent, int line, const wchar_t* name, Body body) noexcept {
    try {
        return body();
    } catch (...) {
        win32::TraceFailure(std::current_exception(), kSource, line, name);
        return exports::ReportDialogFailure(hParent, line, trace::kDiagnostic, kDoModalFailed);
    }
}

// A copy of the set to work on; null when there is no such set, or no memory.
std::unique_ptr<CAreaSet> CopyOf(DWORD dwID) {
    try {
        const CAreaSet* pSet = GetAreaSetManager()->GetAreaSet(uint32_t{dwID});
        if (pSet == nullptr) return nullptr;
        auto copy = std::make_unique<CAreaSet>();
        *copy = *pSet;
        return copy;
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

BOOL ConfigureSet(HWND hParent, DWORD dwID) {
    if (!GetApp().GetQuire()) return FALSE;
    const exports::DialogScope scope(g_configuringSet, L"SAConfigureSet");
    if (scope.Refused()) return FALSE;
    const win32::ResourceScope resources;
    if (!exports::LoadSetsOrReport(hParent, __LINE__)) return FALSE;
    if (!IsWindow(hParent)) {
        return exports::ReportDialogFailure(hParent, __LINE__, trace::kDiagnostic,
                                            L"SAConfigureSet: CWnd::FromHandle(hParent) returned NULL.");
    }
    CAreaSetManager& manager = *GetAreaSetManager();
    const std::unique_ptr<CAreaSet> pNewSet = CopyOf(dwID);
    if (pNewSet == nullptr) {
        return exports::ReportDialogFailure(hParent, __LINE__, trace::kDiagnostic,
                                            L"SAConfigureSet: pSet or pNewSet is NULL.");
    }
    CWnd parent(hParent);
    const exports::OpenDialog open;
    CSASetConfigDlg dialog(pNewSet.get(), GetAreaColors(), {}, &parent);
    INT_PTR result = 0;
    if (!RunDialog(dialog, hParent, result)) return FALSE;
    if (result == IDOK && manager.UpdateSet(*pNewSet)) manager.StoreAreaSet(uint32_t{dwID});
    return TRUE;
}

// The host's Begin, and its End whatever happens in between. A failing End is traced: the work is done by then.
class HostScope {
public:
    explicit HostScope(IConfigHost* host) {
        const HRESULT status = host->QueryInterface(__uuidof(IConfigScope), reinterpret_cast<void**>(&m_scope));
        if (FAILED(status) && status != E_NOINTERFACE) win32::ThrowHostError(status, __uuidof(IConfigScope));
        CallHost(m_scope.GetInterfacePtr(), &IConfigScope::Begin);
    }
    ~HostScope() {
        module::Contain(kSource, __LINE__, L"ConfigurePage: IConfigScope::End", 0, [this] {
            CallHost(m_scope.GetInterfacePtr(), &IConfigScope::End);
            return 0;
        });
    }
    HostScope(const HostScope&) = delete;
    HostScope& operator=(const HostScope&) = delete;

private:
    IConfigScopePtr m_scope;
};

std::wstring NameOf(const SAIndexField& field) {
    return field.pszName != nullptr ? field.pszName : L"";
}

void TakeFields(const SAIndexField* fields, int count, CAreaSet& set, std::vector<std::wstring>& names) {
    for (int i = 0; i < count; ++i) {
        const SAIndexField& field = fields[i];
        names.push_back(NameOf(field));
        if ((field.left | field.top | field.right | field.bottom) == 0) continue;
        set.AddRect({field.left, field.top, field.right, field.bottom}, names.back());
    }
}

void GiveFields(CSASetConfigDlg& dialog, SAIndexField* fields, int count) {
    // All or none: a name may find no memory.
    std::vector<PageRect> rects;
    rects.reserve(static_cast<size_t>(std::max(count, 0)));
    for (int i = 0; i < count; ++i) rects.push_back(dialog.GetFieldRect(NameOf(fields[i])));
    for (int i = 0; i < count; ++i) {
        const PageRect rect = rects[static_cast<size_t>(i)];
        fields[i].top = rect.top;
        fields[i].bottom = rect.bottom;
        fields[i].right = rect.right;
        fields[i].left = rect.left;
    }
}

BOOL ConfigureFields(HWND a_hParent, LPCWSTR name, SAIndexField* fields, int count) {
    const win32::ResourceScope resources;
    if (!exports::LoadSetsOrReport(a_hParent, __LINE__)) return FALSE;
    if (!IsWindow(a_hParent)) {
        return exports::ReportDialogFailure(a_hParent, __LINE__, trace::kDiagnostic,
                                            L"SAConfigureSet: CWnd::FromHandle(a_hParent) returned NULL.");
    }
    CAreaSet set;
    if (name != nullptr) set.SetName(name);
    std::vector<std::wstring> names;
    TakeFields(fields, count, set, names);
    CWnd parent(a_hParent);
    const exports::OpenDialog open;
    CSASetConfigDlg dialog(&set, GetAreaColors(), std::move(names), &parent);
    INT_PTR result = 0;
    if (!RunDialog(dialog, a_hParent, result)) return FALSE;
    if (result == IDOK) GiveFields(dialog, fields, count);
    return TRUE;
}

BOOL ConfigurePageFields(HWND a_hParent, LPCWSTR name, SAIndexField* fields, int count, IConfigHost* host, int document,
                         int page) {
    if (host == nullptr) return FALSE;
    const exports::DialogScope scope(g_configuringPage, L"ConfigurePage");
    if (scope.Refused()) return FALSE;
    if (fields == nullptr && count > 0) {
        trace::TraceText(trace::kDiagnostic, kSource, __LINE__, L"ConfigurePage: fields is NULL.");
        return FALSE;
    }
    const HostScope hostScope(host);
    IQuirePtr quire;
    CallHost(host, &IConfigHost::GetQuire, &quire);
    GetApp().SetQuire(quire);
    quire = nullptr;
    GetApp().SetStartPosition(document, page);
    return ReportFailure(a_hParent, __LINE__, L"ConfigurePage",
                         [&] { return ConfigureFields(a_hParent, name, fields, count); });
}

}  // namespace

extern "C" {

BOOL WINAPI SAConfigureSet(HWND hParent, DWORD dwID) {
    return ReportFailure(hParent, __LINE__, L"SAConfigureSet", [&] { return ConfigureSet(hParent, dwID); });
}

BOOL WINAPI ConfigurePage(HWND a_hParent, LPCWSTR name, SAIndexField* fields, int count, IConfigHost* host,
                          int document, int page) {
    return module::Contain(kSource, __LINE__, L"ConfigurePage", FALSE,
                           [&] { return ConfigurePageFields(a_hParent, name, fields, count, host, document, page); });
}

}  // extern "C"
