// The export that opens "Manage Area Sets".
#include "exports/DialogFrame.h"
#include "manage/SAMgrConfigDlg.h"
#include "trace/Trace.h"
#include "win32/Failure.h"
#include "win32/Resources.h"
#include "zonwick/zonwick.h"

namespace {

using exports::kSource;

bool g_managing = false;

BOOL Configure(HWND hParent, IQuire* stack, int document, int page) {
    const exports::DialogScope scope(g_managing, L"SAConfigure");
    if (scope.Refused()) return FALSE;
    GetApp().SetQuire(stack);
    GetApp().SetStartPosition(document, page);
    const win32::ResourceScope resources;
    if (!exports::LoadSetsOrReport(hParent, __LINE__)) return FALSE;
    CWnd parent(hParent);
    const exports::OpenDialog open;
    CSAMgrConfigDlg(GetAreaSetManager(), &parent).DoModal();
    return TRUE;
}

}  // namespace

extern "C" BOOL WINAPI SAConfigure(HWND hParent, IQuire* stack, int document, int page) {
    if (stack == nullptr) return FALSE;
    try {
        return Configure(hParent, stack, document, page);
    } catch (...) {
        win32::TraceFailure(std::current_exception(), kSource, __LINE__, L"SAConfigure");
        return exports::ReportDialogFailure(hParent, __LINE__, trace::kDiagnostic, L"SAConfigure: dlg.DoModal failed.");
    }
}
