#include "module/Report.h"

#include "host/Support.h"
#include "resource.h"
#include "trace/Trace.h"
#include "win32/Resources.h"

namespace module {

bool LoadSets(CAreaSetManager& manager, const char* source, int line, bool whole) {
    if (manager.LoadSettings() && (!whole || manager.WasLastLoadComplete())) return true;
    trace::TraceStringId(trace::kError, source, line, IDS_ERR_READ_SETTINGS);
    return false;
}

void ShowFailure(HWND parent) noexcept {
    QWMessageBoxExW(parent, nullptr, nullptr, MB_ICONERROR, 0, 0, 0, win32::ModuleInstance());
}

}  // namespace module
