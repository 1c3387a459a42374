#include "exports/DialogFrame.h"

#include "host/Support.h"
#include "module/ZonwickApp.h"
#include "resource.h"
#include "trace/Trace.h"
#include "win32/Resources.h"

namespace exports {

void ShowFailure(HWND parent) noexcept {
    QWMessageBoxExW(parent, nullptr, nullptr, MB_ICONERROR, 0, 0, 0, win32::ModuleInstance());
}

BOOL ReportDialogFailure(HWND parent, int line, int severity, const wchar_t* text) noexcept {
    trace::TraceStringId(trace::kError, kSource, line, IDS_ERR_OPEN_DIALOG);
    trace::TraceText(severity, kSource, line, text);
    ShowFailure(parent);
    return FALSE;
}

bool LoadSetsOrReport(HWND parent, int line) {
    if (GetAreaSetManager()->LoadSettings()) return true;
    trace::TraceStringId(trace::kError, kSource, line, IDS_ERR_READ_SETTINGS);
    ShowFailure(parent);
    return false;
}

DialogScope::DialogScope(bool& running, const wchar_t* name) : m_running(running) {
    const bool exclusive = GetAreaSetManager()->IsExclusive();
    m_refused = running || exclusive;
    if (!m_refused) {
        m_running = true;
        return;
    }
    trace::TraceText(trace::kDiagnostic, kSource, __LINE__,
                     exclusive ? L"%ls: called while the sets are being loaded or stored."
                               : L"%ls: called again while its dialog is open.",
                     name);
}

DialogScope::~DialogScope() {
    if (!m_refused) m_running = false;
}

OpenDialog::OpenDialog() {
    GetApp().DialogOpened();
}
OpenDialog::~OpenDialog() {
    GetApp().DialogClosed();
}

}  // namespace exports
